#pragma once

#include <cstdint>
#include <vector>

#include <QString>

#include "core/MetricDefinitions.h"
#include "limits/ChoiceList.h"
#include "limits/MetricLimits.h"

namespace ombrelle {

// The rules dialog of one limit set without its widgets: the name field, the
// table of rules (columns "Metric" and "Rule"), the edit frame with class,
// metric, condition and the two limit boxes, and the buttons. A window shows
// what it holds and passes the user's actions in; messages go through the
// user-interface service. In the read-only view only Close is left.
class MetricLimitsDialogModel {
 public:
  // The edit frame's condition items; their indexes are the limit types.
  static const QStringList& ConditionItems();
  // The edit frame's class items, "Project" to "Variable".
  static const QStringList& ClassItems();
  // The title before the dialog is shown.
  static QString DesignTitle() { return QStringLiteral("Metric limits - Configuration of rules"); }

  explicit MetricLimitsDialogModel(bool readOnly = false);

  // --- What MetricLimits::Edit and View use ---------------------------------
  void AddRule(MetricId metric, std::int32_t type, double min, double max);
  // Number of rules, and rule `position` (1-based).
  int GetRules() const { return static_cast<int>(m_rules.size()); }
  void GetRule(int position, MetricId& metric, std::int32_t& type, double& min, double& max) const;
  const std::vector<MetricLimitRule>& Rules() const { return m_rules; }
  // txtMetricLimitName.
  const QString& Name() const { return m_name; }
  void SetName(const QString& name) { m_name = name; }
  // The title while shown: "Metric limits - " and the set's name.
  QString Title() const { return QStringLiteral("Metric limits - ") + m_name; }
  bool ReadOnly() const { return m_readOnly; }

  // --- The table of rules ----------------------------------------------------
  static QString ColumnCaption(int column);  // 1 "Metric", 2 "Rule"
  // Text of a cell, row 1..GetRules(), column 1 or 2; empty outside.
  QString CellText(int row, int column) const;
  // The rule under the table's cursor; 0 for none.
  int CurrentRow() const { return m_currentRow; }
  void SetCurrentRow(int row);

  // --- Buttons ---------------------------------------------------------------------
  // bAdd: opens the frame for a new rule of the class of the rule under the
  // cursor. bEdit: opens it on the current rule. bDelete: removes the current
  // rule. Without a current rule, edit and delete say "No rule selected.".
  void Add();
  void EditRule();
  void DeleteRule();
  // bSave: checks the frame, writes the rule into the row under edit (a new
  // rule is appended) and closes the frame. False, with a message and nothing
  // changed, when a check fails.
  bool SaveRule();
  // bDiscard: closes the frame.
  void Discard();
  // bOK and bCancel (or Close): end the dialog.
  void Accept() { m_accepted = true; }
  bool Accepted() const { return m_accepted; }

  // Which controls are there and usable.
  bool FrameOpen() const { return m_frameOpen; }
  bool ListButtonsEnabled() const { return !m_readOnly && !m_frameOpen; }
  // The caption of bCancel: "Close" in the read-only view.
  QString CancelCaption() const;
  // lblReadOnly shows in the read-only view only.
  static QString ReadOnlyText() { return QStringLiteral("Default limits are not editable"); }

  // --- The edit frame ---------------------------------------------------------------
  // The row under edit; 0 while a new rule is edited.
  int EditRow() const { return m_editRow; }
  int ClassIndex() const { return m_classIndex; }
  // cboMetricClass: fills the metric list with the supported metrics of the
  // class, leaving out DATE and DAYS; no metric is chosen after it.
  void SetClassIndex(int index);
  // cboMetricName: the metrics by abbreviation, each with its number.
  const ChoiceList& MetricChoices() const { return m_metrics; }
  int MetricIndex() const { return m_metrics.Selected(); }
  void SetMetricIndex(int index);
  // lblMetricName: the long name of the chosen metric.
  const QString& MetricLongName() const { return m_longName; }
  int ConditionIndex() const { return m_condition; }
  // cboCondition: a range shows both boxes and puts their values in order,
  // the outlier kinds hide both, the others show the first box only.
  void SetConditionIndex(int index);
  // Limit(0) and Limit(1).
  const QString& LimitText(int box) const { return m_limitText[box ? 1 : 0]; }
  void SetLimitText(int box, const QString& text) { m_limitText[box ? 1 : 0] = text; }
  bool LimitVisible(int box) const;
  bool RangeLineVisible() const { return m_condition == LimitRange; }

  // A limit box's text as a number: blanks around it allowed, "," read as
  // the decimal point. False for text that is no number.
  static bool ParseLimitText(const QString& text, double& value);

 private:
  void OpenFrame(int row, const MetricLimitRule& rule);
  void Message(const QString& text) const;

  MetricDefinitions m_catalogue;
  bool m_readOnly = false;
  bool m_accepted = false;
  QString m_name = QStringLiteral("My rules");
  std::vector<MetricLimitRule> m_rules;
  int m_currentRow = 0;

  bool m_frameOpen = false;
  int m_editRow = 0;
  int m_classIndex = 0;
  ChoiceList m_metrics;
  QString m_longName;
  int m_condition = 0;
  QString m_limitText[2];
};

}  // namespace ombrelle
