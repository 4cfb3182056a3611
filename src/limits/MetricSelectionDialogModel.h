#pragma once

#include <vector>

#include <QString>
#include <QStringList>

#include "core/MetricDefinitions.h"
#include "limits/ChoiceList.h"
#include "limits/MetricSelection.h"

namespace ombrelle {

// The dialog that chooses and edits metric selections ("Select metrics to
// view"), without its widgets: the list of selections, a tab per metric
// class, the checked list of that class's metrics, the description label and
// the buttons. The shown selection is saved before another is shown and when
// the dialog ends; questions and input boxes go through the user-interface
// service.
class MetricSelectionDialogModel {
 public:
  // One row of the list view.
  struct Row {
    QString key;  // "mtr" and the metric number
    MetricId metric = 0;
    QString abbreviation;  // column "Metric"
    QString description;   // column "Description"
    bool checked = false;
  };

  static QString Title() { return QStringLiteral("Select metrics to view"); }
  static QString ReadOnlyText() {
    return QStringLiteral(
        "This is a default selection. You cannot modify it. Click Add to create a custom "
        "selection.");
  }
  static QString ColumnCaption(int column);  // 1 "Metric", 2 "Description"
  // Captions of the tabs, one per metric class.
  static QStringList TabCaptions();

  // Display: fills the list and shows the current selection.
  MetricSelectionDialogModel();

  // Selections.
  const ChoiceList& Selections() const { return m_list; }
  // Picking an item: the shown selection is saved, the picked one shown.
  void PickSelection(int index);
  const MetricSelection& Shown() const { return m_shown; }

  // Tabs: the class whose metrics the list view holds.
  int TabIndex() const { return m_tab; }
  void SetTabIndex(int index);

  // MetricListview.
  const std::vector<Row>& Rows() const { return m_rows; }
  // The user changed the check of `row` (0-based); the check then shows the
  // state the selection took, which a read-only selection keeps. Returns it.
  bool SetChecked(int row, bool checked);
  // The row under the cursor; lblDescription describes its metric.
  void SetCurrentRow(int row);
  const QString& DescriptionText() const { return m_description; }

  // lblReadOnly, bRename and bDelete follow the kind of the shown selection.
  bool ReadOnlyLabelVisible() const { return m_shown.ReadOnly(); }
  bool RenameEnabled() const { return !m_shown.ReadOnly(); }
  bool DeleteEnabled() const { return !m_shown.ReadOnly(); }

  // bAdd, bRename, bDelete.
  void Add();
  void Rename();
  void Delete();
  // bClose (and ending the dialog otherwise): the shown selection is saved
  // and becomes current. True when the pages must be loaded again: another
  // selection is current, or the current one holds other metrics.
  bool Close();

 private:
  void Show(std::int32_t selectionNr);
  void FillRows();
  void RefillList();

  MetricDefinitions m_catalogue;
  ChoiceList m_list;
  MetricSelection m_shown;
  int m_tab = 0;
  std::vector<Row> m_rows;
  QString m_description;
  std::int32_t m_startNr = 0;
  std::vector<MetricId> m_startMetrics;
};

}  // namespace ombrelle
