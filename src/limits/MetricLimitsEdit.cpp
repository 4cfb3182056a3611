// Editing and viewing a limit set through the rules dialog, which the windows
// hand down as a function.

#include "limits/MetricLimits.h"
#include "limits/MetricLimitsDialogModel.h"

namespace ombrelle {

namespace {

MetricLimits::DialogRunner& Runner() {
  static MetricLimits::DialogRunner runner;
  return runner;
}

}  // namespace

void MetricLimits::SetDialogRunner(DialogRunner runner) { Runner() = std::move(runner); }

void MetricLimits::FillEditor(MetricLimitsDialogModel& dialog) const {
  dialog.SetName(m_name);
  for (const MetricLimitRule& rule : m_rules)
    dialog.AddRule(rule.Metric, rule.LimitType, rule.LimitMin, rule.LimitMax);
}

bool MetricLimits::Edit() {
  if (!Runner()) return false;
  MetricLimitsDialogModel dialog(false);
  FillEditor(dialog);
  if (!Runner()(dialog) || !dialog.Accepted()) return false;
  std::vector<MetricLimitRule> rules;
  for (int i = 1; i <= dialog.GetRules(); ++i) {
    MetricLimitRule rule;
    dialog.GetRule(i, rule.Metric, rule.LimitType, rule.LimitMin, rule.LimitMax);
    rules.push_back(rule);
  }
  // A set without a name would not count as stored: an emptied field keeps the old one.
  SetRules(dialog.Name().trimmed().isEmpty() ? m_name : dialog.Name(), std::move(rules));
  Save();
  return true;
}

void MetricLimits::View() {
  if (!Runner()) return;
  MetricLimitsDialogModel dialog(true);
  FillEditor(dialog);
  Runner()(dialog);
}

}  // namespace ombrelle
