#include "limits/MetricLimitsDialogModel.h"

#include <cmath>
#include <limits>

#include <QStringList>

#include "support/UiServices.h"

namespace ombrelle {

namespace {

// DATE and DAYS belong to every analysis and are never judged.

// The most rules a set holds (its count is 16-bit).
constexpr size_t kMaxRules = static_cast<size_t>(std::numeric_limits<std::int16_t>::max());

// A bound as the dialog shows it: plain general form, "." as decimal point.
QString BoundText(double value) { return QString::number(value, 'g', 15); }

}  // namespace

const QStringList& MetricLimitsDialogModel::ConditionItems() {
  static const QStringList items = {QStringLiteral("<="), QStringLiteral("range"),
                                    QStringLiteral(">="), QStringLiteral("Outliers"),
                                    QStringLiteral("Extreme outliers")};
  return items;
}

const QStringList& MetricLimitsDialogModel::ClassItems() {
  static const QStringList items = [] {
    QStringList names;
    for (int c = ClassProject; c <= ClassVariable; ++c)
      names << MetricDefinitions::GetMetricClassName(c, false);
    return names;
  }();
  return items;
}

MetricLimitsDialogModel::MetricLimitsDialogModel(bool readOnly) : m_readOnly(readOnly) {
  SetClassIndex(0);
}

void MetricLimitsDialogModel::AddRule(MetricId metric, std::int32_t type, double min, double max) {
  if (m_rules.size() >= kMaxRules) return;
  m_rules.push_back({metric, type, min, max});
  if (m_currentRow == 0) m_currentRow = 1;
}

void MetricLimitsDialogModel::GetRule(int position, MetricId& metric, std::int32_t& type,
                                      double& min, double& max) const {
  if (position < 1 || position > GetRules()) return;
  const MetricLimitRule& rule = m_rules[static_cast<size_t>(position - 1)];
  metric = rule.Metric;
  type = rule.LimitType;
  min = rule.LimitMin;
  max = rule.LimitMax;
}

QString MetricLimitsDialogModel::ColumnCaption(int column) {
  switch (column) {
    case 1:
      return QStringLiteral("Metric");
    case 2:
      return QStringLiteral("Rule");
    default:
      return {};
  }
}

QString MetricLimitsDialogModel::CellText(int row, int column) const {
  if (row < 1 || row > GetRules()) return {};
  const MetricLimitRule& rule = m_rules[static_cast<size_t>(row - 1)];
  if (column == 1) return m_catalogue.GetMetricName(rule.Metric, NameAbbreviation);
  if (column != 2) return {};
  switch (rule.LimitType) {
    case LimitAtMost:
      return QStringLiteral("<= ") + BoundText(rule.LimitMin);
    case LimitRange:
      return QStringLiteral("[ ") + BoundText(rule.LimitMin) + QStringLiteral(", ") +
             BoundText(rule.LimitMax) + QStringLiteral(" ]");
    case LimitAtLeast:
      return QStringLiteral(">= ") + BoundText(rule.LimitMin);
    case LimitNoOutliers:
      return QStringLiteral("Outliers");
    case LimitNoExtremeOutliers:
      return QStringLiteral("Extreme outliers");
    default:
      return {};
  }
}

void MetricLimitsDialogModel::SetCurrentRow(int row) {
  m_currentRow = (row >= 1 && row <= GetRules()) ? row : 0;
}

QString MetricLimitsDialogModel::CancelCaption() const {
  return m_readOnly ? QStringLiteral("Close") : QStringLiteral("Cancel");
}

void MetricLimitsDialogModel::Message(const QString& text) const {
  Ui().MsgBox(text, MsgStyle::Exclamation, UiServices::AppTitle());
}

void MetricLimitsDialogModel::Add() {
  if (m_readOnly) return;
  MetricLimitRule rule;
  rule.LimitType = LimitAtMost;
  // The new rule starts in the class of the rule under the cursor.
  rule.Metric = m_currentRow > 0 ? m_rules[static_cast<size_t>(m_currentRow - 1)].Metric
                                 : kFirstMetricId + 1000 * m_classIndex;
  OpenFrame(0, rule);
  m_metrics.SetSelected(-1);
  m_longName.clear();
}

void MetricLimitsDialogModel::EditRule() {
  if (m_readOnly) return;
  if (m_currentRow < 1) {
    Message(QStringLiteral("No rule selected."));
    return;
  }
  OpenFrame(m_currentRow, m_rules[static_cast<size_t>(m_currentRow - 1)]);
}

void MetricLimitsDialogModel::DeleteRule() {
  if (m_readOnly) return;
  if (m_currentRow < 1) {
    Message(QStringLiteral("No rule selected."));
    return;
  }
  m_rules.erase(m_rules.begin() + (m_currentRow - 1));
  if (m_currentRow > GetRules()) m_currentRow = GetRules();
}

void MetricLimitsDialogModel::OpenFrame(int row, const MetricLimitRule& rule) {
  m_frameOpen = true;
  m_editRow = row;
  SetClassIndex(MetricDefinitions::GetMetricClass(rule.Metric));
  SetMetricIndex(m_metrics.FindData(rule.Metric));
  m_condition = (rule.LimitType >= LimitAtMost && rule.LimitType <= LimitNoExtremeOutliers)
                    ? rule.LimitType
                    : LimitAtMost;
  m_limitText[0] = BoundText(rule.LimitMin);
  m_limitText[1] = BoundText(rule.LimitType == LimitRange ? rule.LimitMax : rule.LimitMin);
}

void MetricLimitsDialogModel::SetClassIndex(int index) {
  if (index < ClassProject || index > ClassVariable) index = ClassProject;
  m_classIndex = index;
  m_metrics.Clear();
  m_longName.clear();
  for (MetricId id = kFirstMetricId; id <= kLastMetricId; ++id) {
    if (id == kMetricDate || id == kMetricDays) continue;
    if (MetricDefinitions::GetMetricClass(id) != index || !m_catalogue.MetricSupported(id))
      continue;
    m_metrics.AddItem(m_catalogue.GetMetricName(id, NameAbbreviation), id);
  }
}

void MetricLimitsDialogModel::SetMetricIndex(int index) {
  m_metrics.SetSelected(index);
  m_longName = m_metrics.Selected() >= 0
                   ? m_catalogue.GetMetricName(m_metrics.SelectedData(0), NameLong)
                   : QString();
}

void MetricLimitsDialogModel::SetConditionIndex(int index) {
  if (index < 0 || index >= ConditionItems().size()) return;
  m_condition = index;
  if (index != LimitRange) return;
  double low = 0.0;
  double high = 0.0;
  if (ParseLimitText(m_limitText[0], low) && ParseLimitText(m_limitText[1], high) && low > high)
    std::swap(m_limitText[0], m_limitText[1]);
}

bool MetricLimitsDialogModel::LimitVisible(int box) const {
  if (m_condition == LimitNoOutliers || m_condition == LimitNoExtremeOutliers) return false;
  return box == 0 || m_condition == LimitRange;
}

bool MetricLimitsDialogModel::ParseLimitText(const QString& text, double& value) {
  QString plain = text.trimmed();
  plain.replace(QLatin1Char(','), QLatin1Char('.'));
  bool ok = false;
  const double parsed = plain.toDouble(&ok);
  if (!ok || !std::isfinite(parsed)) return false;
  value = parsed;
  return true;
}

bool MetricLimitsDialogModel::SaveRule() {
  if (!m_frameOpen) return false;
  if (m_metrics.Selected() < 0) {
    Message(QStringLiteral("No metric selected."));
    return false;
  }
  MetricLimitRule rule;
  rule.Metric = m_metrics.SelectedData(0);
  rule.LimitType = m_condition;
  for (int box = 0; box < 2; ++box) {
    if (!LimitVisible(box)) continue;
    double value = 0.0;
    if (!ParseLimitText(m_limitText[box], value)) {
      Message(QStringLiteral("Invalid limit. Enter a number."));
      return false;
    }
    (box == 0 ? rule.LimitMin : rule.LimitMax) = value;
  }
  if (rule.LimitType == LimitRange && rule.LimitMin > rule.LimitMax) {
    Message(QStringLiteral("Invalid range. Lower limit must not exceed upper limit."));
    return false;
  }
  if (m_editRow > 0 && m_editRow <= GetRules()) {
    m_rules[static_cast<size_t>(m_editRow - 1)] = rule;
    m_currentRow = m_editRow;
  } else {
    if (m_rules.size() >= kMaxRules) return false;
    m_rules.push_back(rule);
    m_currentRow = GetRules();
  }
  m_frameOpen = false;
  m_editRow = 0;
  return true;
}

void MetricLimitsDialogModel::Discard() {
  m_frameOpen = false;
  m_editRow = 0;
}

}  // namespace ombrelle
