#pragma once

#include <QDialog>

class QLabel;
class QListWidget;
class QPushButton;
class QTabBar;
class QTreeWidget;
class QTreeWidgetItem;

namespace ombrelle {

class MetricSelectionDialogModel;

// The dialog of the metric selections ("Select metrics to view"): a thin
// window over a MetricSelectionDialogModel. The selections on the left, a tab
// per metric class over the checked list of its metrics on the right.
class frmMetricSelection : public QDialog {
  Q_OBJECT

 public:
  explicit frmMetricSelection(MetricSelectionDialogModel& model, QWidget* parent = nullptr);

  // Shows the dialog modally; true when the selection in force changed.
  static bool Display(QWidget* parent = nullptr);

  // However the dialog ends, the shown selection is saved and made current.
  void done(int result) override;
  bool Changed() const { return m_changed; }

 private:
  void Sync();
  void FillList();
  void FillRows();
  void CheckChanged(QTreeWidgetItem* item, int column);

  MetricSelectionDialogModel& m_model;
  QListWidget* m_selections = nullptr;
  QPushButton* m_add = nullptr;
  QPushButton* m_rename = nullptr;
  QPushButton* m_delete = nullptr;
  QTabBar* m_tabs = nullptr;
  QTreeWidget* m_metrics = nullptr;
  QLabel* m_readOnly = nullptr;
  QLabel* m_description = nullptr;
  bool m_changed = false;
  bool m_done = false;
};

}  // namespace ombrelle
