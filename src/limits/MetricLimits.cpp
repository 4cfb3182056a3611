#include "limits/MetricLimits.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <QSet>

#include "limits/ChoiceList.h"
#include "limits/LimitNumbers.h"
#include "stats/CStats.h"
#include "support/SettingsStore.h"

namespace ombrelle {

namespace {

const QString kLimitsSection = QStringLiteral("Limits");

QString RuleSection(std::int32_t limitNr, int position) {
  return MetricLimits::SetSection(limitNr) + QStringLiteral("\\Rule") + QString::number(position);
}

std::int32_t ReadWhole(const QString& section, const QString& key, const QString& defaultValue) {
  return ToWholeNumber(ParseLimitNumber(GetSetting(section, key, defaultValue)),
                       std::numeric_limits<std::int32_t>::min(),
                       std::numeric_limits<std::int32_t>::max());
}

double ReadNumber(const QString& section, const QString& key) {
  return ParseLimitNumber(GetSetting(section, key, QStringLiteral("0")));
}

struct BuiltInRule {
  std::int32_t metric;
  std::int32_t type;
  double min;
  double max;
};

constexpr BuiltInRule kDefaultRules[] = {
    {1404, LimitAtMost, 5, 0},     // maxDIT
    {1501, LimitAtLeast, 1, 0},    // AHF
    {2012, LimitAtLeast, 1, 0},    // LLOC of a file
    {3001, LimitRange, 1, 50},     // WMC
    {3213, LimitAtMost, 0, 0},     // VARSnp
    {3010, LimitAtMost, 0, 0},     // LCOM1
    {3012, LimitAtMost, 0.99, 0},  // LCOM3
    {3013, LimitAtMost, 1, 0},     // LCOM4
    {3112, LimitAtLeast, 3, 0},    // LLOC of a class
    {3002, LimitAtMost, 5, 0},     // DIT
    {4001, LimitAtMost, 66, 0},    // LINES of a procedure
    {4012, LimitAtLeast, 3, 0},    // LLOC of a procedure
    {4020, LimitAtLeast, 1, 0},    // MCOMM
    {4120, LimitAtMost, 10, 0},    // CC
    {4140, LimitAtMost, 5, 0},     // DCOND
    {4141, LimitAtMost, 2, 0},     // DLOOP
    {4030, LimitAtMost, 5, 0},     // PARAMS
};

constexpr BuiltInRule kRequireCommentsRules[] = {
    {1016, LimitAtLeast, 0.2, 0},  // MCOMM% of the project
    {1014, LimitRange, 0.1, 0.3},  // LLOW% of the project
    {2021, LimitAtLeast, 0.2, 0},  // MCOMM% of a file
    {2017, LimitRange, 0.1, 0.3},  // LLOW% of a file
    {4020, LimitAtLeast, 1, 0},    // MCOMM
};

}  // namespace

QString MetricLimits::SetSection(std::int32_t LimitNr) {
  return kLimitsSection + QLatin1Char('\\') + QString::number(LimitNr);
}

QString MetricLimits::BuiltInName(std::int32_t LimitNr) {
  switch (LimitNr) {
    case LimitSet::Default:
      return QStringLiteral("<Default limits>");
    case LimitSet::RequireComments:
      return QStringLiteral("<Require comments>");
    case LimitSet::None:
      return QStringLiteral("<No limits>");
    case LimitSet::Outliers:
      return QStringLiteral("<Outliers>");
    case LimitSet::ExtremeOutliers:
      return QStringLiteral("<Outliers, extreme>");
    default:
      return {};
  }
}

void MetricLimits::AddLimit(std::int32_t metric, std::int32_t type, double min, double max) {
  if (m_rules.size() >= static_cast<size_t>(std::numeric_limits<std::int16_t>::max())) return;
  m_rules.push_back({metric, type, min, max});
}

bool MetricLimits::Load(std::int32_t LimitNr) {
  m_rules.clear();
  m_limitNr = static_cast<std::int16_t>(std::clamp<std::int32_t>(
      LimitNr, std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max()));
  if (m_limitNr > 0) {
    if (LoadFromSettings(m_limitNr)) return true;
    Generate();
    return false;
  }
  LoadBuiltIn(m_limitNr);
  return true;
}

void MetricLimits::LoadBuiltIn(std::int32_t LimitNr) {
  m_name = BuiltInName(LimitNr);
  switch (LimitNr) {
    case LimitSet::Default:
      for (const BuiltInRule& r : kDefaultRules) AddLimit(r.metric, r.type, r.min, r.max);
      break;
    case LimitSet::RequireComments:
      for (const BuiltInRule& r : kRequireCommentsRules) AddLimit(r.metric, r.type, r.min, r.max);
      break;
    case LimitSet::Outliers:
    case LimitSet::ExtremeOutliers: {
      const std::int32_t type =
          LimitNr == LimitSet::Outliers ? LimitNoOutliers : LimitNoExtremeOutliers;
      // Every metric but DATE and DAYS, which are never judged.
      for (MetricId id = kFirstMetricId + 2; id <= kLastMetricId; ++id)
        if (m_catalogue.MetricSupported(id)) AddLimit(id, type, 0.0, 0.0);
      break;
    }
    default:
      break;
  }
}

bool MetricLimits::LoadFromSettings(std::int32_t LimitNr) {
  const QString section = SetSection(LimitNr);
  m_name = GetSetting(section, QStringLiteral("Name"), QStringLiteral("New rules"));
  if (ParseLimitNumber(GetSetting(section, QStringLiteral("Version"), QStringLiteral("0"))) !=
      1.0) {
    ErrorMessage = QStringLiteral("Unsupported version number");
    return false;
  }
  // The count is 16-bit; a negative one counts as none.
  const std::int32_t count = ToWholeNumber(
      ParseLimitNumber(GetSetting(section, QStringLiteral("Rules"), QStringLiteral("0"))), 0,
      std::numeric_limits<std::int16_t>::max());
  for (int i = 1; i <= count; ++i) {
    const QString ruleSection = RuleSection(LimitNr, i);
    MetricLimitRule rule;
    rule.Metric = ReadWhole(ruleSection, QStringLiteral("Metric"), QStringLiteral("0"));
    rule.LimitType = ReadWhole(ruleSection, QStringLiteral("LimitType"), QStringLiteral("-1"));
    if (rule.LimitType == LimitRange) {
      rule.LimitMin = ReadNumber(ruleSection, QStringLiteral("LimitMin"));
      rule.LimitMax = ReadNumber(ruleSection, QStringLiteral("LimitMax"));
    } else if (rule.LimitType == LimitAtMost || rule.LimitType == LimitAtLeast) {
      rule.LimitMin = ReadNumber(ruleSection, QStringLiteral("Limit"));
    }
    m_rules.push_back(rule);
  }
  RemoveInvalidRules();
  return true;
}

void MetricLimits::RemoveInvalidRules() {
  std::erase_if(m_rules, [this](const MetricLimitRule& rule) {
    return rule.LimitType < LimitAtMost || rule.LimitType > LimitNoExtremeOutliers ||
           !m_catalogue.MetricSupported(rule.Metric);
  });
}

void MetricLimits::Save() {
  if (ReadOnly()) return;
  const SettingsBatch batch;
  Delete(m_limitNr);
  const QString section = SetSection(m_limitNr);
  SaveSetting(section, QStringLiteral("Name"), m_name);
  SaveSetting(section, QStringLiteral("Rules"), QString::number(m_rules.size()));
  SaveSetting(section, QStringLiteral("Version"), QStringLiteral("1.0"));
  for (size_t i = 0; i < m_rules.size(); ++i) {
    const MetricLimitRule& rule = m_rules[i];
    const QString ruleSection = RuleSection(m_limitNr, static_cast<int>(i + 1));
    SaveSetting(ruleSection, QStringLiteral("Metric"), QString::number(rule.Metric));
    SaveSetting(ruleSection, QStringLiteral("LimitType"), QString::number(rule.LimitType));
    if (rule.LimitType == LimitRange) {
      SaveSetting(ruleSection, QStringLiteral("LimitMin"), LimitNumberText(rule.LimitMin));
      SaveSetting(ruleSection, QStringLiteral("LimitMax"), LimitNumberText(rule.LimitMax));
    } else if (rule.LimitType != LimitNoOutliers && rule.LimitType != LimitNoExtremeOutliers) {
      SaveSetting(ruleSection, QStringLiteral("Limit"), LimitNumberText(rule.LimitMin));
    }
  }
}

void MetricLimits::FillList(ChoiceList& list) const {
  list.Clear();
  for (std::int32_t nr : {LimitSet::Default, LimitSet::RequireComments, LimitSet::None,
                          LimitSet::Outliers, LimitSet::ExtremeOutliers})
    list.AddItem(BuiltInName(nr), nr);
  const QStringList names = EnumSubkeys(kLimitsSection);
  for (const QString& name : names) {
    const double value = ParseLimitNumber(name);
    if (value <= 0) continue;
    const std::int32_t nr = ToWholeNumber(value, 1, std::numeric_limits<std::int16_t>::max());
    list.AddItem(GetSavedName(nr), nr);
  }
  list.SetSelected(list.FindData(GetCurrentLimitID()));
}

QString MetricLimits::GetSavedName(std::int32_t LimitNr) {
  return GetSetting(SetSection(LimitNr), QStringLiteral("Name"), QStringLiteral("New rules"));
}

std::int16_t MetricLimits::GetCurrentLimitID() {
  const std::int32_t nr = ToWholeNumber(
      ParseLimitNumber(
          GetSetting(kLimitsSection, QStringLiteral("CurrentLimit"), QStringLiteral("0"))),
      std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int32_t>::max());
  if (nr <= 0) return static_cast<std::int16_t>(nr);
  if (nr > std::numeric_limits<std::int16_t>::max()) return -1;
  const QString section = SetSection(nr);
  const double version =
      ParseLimitNumber(GetSetting(section, QStringLiteral("Version"), QStringLiteral("0")));
  if (GetSetting(section, QStringLiteral("Name")).isEmpty() || std::trunc(version) != 1.0)
    return -1;
  return static_cast<std::int16_t>(nr);
}

void MetricLimits::SetCurrentLimitID(std::int32_t NewID) {
  SaveSetting(kLimitsSection, QStringLiteral("CurrentLimit"), QString::number(NewID));
}

std::int16_t MetricLimits::FindFreeLimitID() {
  const QStringList names = EnumSubkeys(kLimitsSection);
  const QSet<QString> taken(names.begin(), names.end());
  std::int16_t nr = 1;
  while (nr < std::numeric_limits<std::int16_t>::max() && taken.contains(QString::number(nr))) ++nr;
  return nr;
}

void MetricLimits::Generate() {
  m_limitNr = FindFreeLimitID();
  m_rules.clear();
  m_name = QStringLiteral("New limits");
}

void MetricLimits::Delete(std::int16_t LimitID) {
  if (LimitID > 0) DeleteSettingsTree(SetSection(LimitID));
}

void MetricLimits::SetRules(const QString& name, std::vector<MetricLimitRule> rules) {
  m_name = name;
  m_rules = std::move(rules);
  if (m_rules.size() > static_cast<size_t>(std::numeric_limits<std::int16_t>::max()))
    m_rules.resize(static_cast<size_t>(std::numeric_limits<std::int16_t>::max()));
}

const MetricLimitRule* MetricLimits::FindRule(MetricId metric) const {
  for (const MetricLimitRule& rule : m_rules)
    if (rule.Metric == metric) return &rule;
  return nullptr;
}

std::int32_t MetricLimits::LimitType(MetricId metric) const {
  const MetricLimitRule* rule = FindRule(metric);
  return rule ? rule->LimitType : 0;
}

QString MetricLimits::RuleText(const MetricLimitRule& rule) const {
  switch (rule.LimitType) {
    case LimitAtMost:
      return QStringLiteral("<= ") + LimitNumberText(rule.LimitMin);
    case LimitRange:
      return QStringLiteral("[") + LimitNumberText(rule.LimitMin) + QStringLiteral(", ") +
             LimitNumberText(rule.LimitMax) + QStringLiteral("]");
    case LimitAtLeast:
      return QStringLiteral(">= ") + LimitNumberText(rule.LimitMin);
    case LimitNoOutliers:
      return QStringLiteral("Outliers");
    case LimitNoExtremeOutliers:
      return QStringLiteral("Extreme outliers");
    default:
      return {};
  }
}

QString MetricLimits::GetRuleString(MetricId metric, bool IncludeMetricName) const {
  const MetricLimitRule* rule = FindRule(metric);
  if (!rule) return {};
  const QString text = RuleText(*rule);
  if (!IncludeMetricName) return text;
  const QString name = m_catalogue.GetMetricName(metric, NameAbbreviation);
  return name + (rule->LimitType == LimitRange ? QStringLiteral(" in ") : QStringLiteral(" ")) +
         text;
}

bool MetricLimits::IsInsideLimits(MetricId metric, double value, CStats& Stats) const {
  const MetricLimitRule* rule = FindRule(metric);
  if (!rule) return true;
  switch (rule->LimitType) {
    case LimitAtMost:
      return value <= rule->LimitMin;
    case LimitRange:
      return rule->LimitMin <= value && value <= rule->LimitMax;
    case LimitAtLeast:
      return value >= rule->LimitMin;
    case LimitNoOutliers:
      return Stats.count() < 10 ||
             (Stats.OutlierLowerTail() <= value && value <= Stats.OutlierUpperTail());
    case LimitNoExtremeOutliers:
      return Stats.count() < 10 ||
             (Stats.ExtremeOutlierLowerTail() <= value && value <= Stats.ExtremeOutlierUpperTail());
    default:
      return true;
  }
}

std::int32_t MetricLimits::CalcOutsideLimits(CStats& Stats, MetricId metric) const {
  const MetricLimitRule* rule = FindRule(metric);
  if (!rule) return 0;
  double low = 0.0;
  double high = 0.0;
  switch (rule->LimitType) {
    case LimitAtMost:
      low = Stats.Min;
      high = rule->LimitMin;
      break;
    case LimitRange:
      low = rule->LimitMin;
      high = rule->LimitMax;
      break;
    case LimitAtLeast:
      low = rule->LimitMin;
      high = Stats.Max;
      break;
    case LimitNoOutliers:
      low = Stats.OutlierLowerTail();
      high = Stats.OutlierUpperTail();
      break;
    case LimitNoExtremeOutliers:
      low = Stats.ExtremeOutlierLowerTail();
      high = Stats.ExtremeOutlierUpperTail();
      break;
    default:
      // A rule of no known kind accepts every value.
      return 0;
  }
  return Stats.count() - Stats.ValueCountRange(low, high);
}

}  // namespace ombrelle
