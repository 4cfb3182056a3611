#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <QString>

#include "core/MetricDefinitions.h"

namespace ombrelle {

class CStats;
class ChoiceList;
class MetricLimitsDialogModel;

// One rule of a limit set: which values of one metric are acceptable.
struct MetricLimitRule {
  std::int32_t Metric = 0;
  std::int32_t LimitType = -1;  // a MetricLimitType value; others are invalid
  double LimitMin = 0.0;        // lower bound of a range, or the single bound
  double LimitMax = 0.0;        // upper bound of a range

  bool operator==(const MetricLimitRule&) const = default;
};

// Kinds of rule.
enum MetricLimitType : std::int32_t {
  LimitAtMost = 0,            // value <= bound
  LimitRange = 1,             // LimitMin <= value <= LimitMax
  LimitAtLeast = 2,           // value >= bound
  LimitNoOutliers = 3,        // value inside the outlier fences
  LimitNoExtremeOutliers = 4  // value inside the extreme outlier fences
};

// Numbers of the built-in sets; stored sets are numbered from 1 up.
namespace LimitSet {
constexpr std::int16_t Default = -1;
constexpr std::int16_t RequireComments = -2;
constexpr std::int16_t None = 0;
constexpr std::int16_t Outliers = -3;
constexpr std::int16_t ExtremeOutliers = -4;
}  // namespace LimitSet

// One limit rule set, built in or stored per user under "Limits\<n>": loads
// and saves it, exchanges it with `.mtl` files, and judges values against it.
// The current set's number lives in "Limits" / "CurrentLimit".
class MetricLimits {
 public:
  // Text of the last failure of a stored set to load.
  QString ErrorMessage;

  QString GetName() const { return m_name; }

  // Loads set `LimitNr`. A stored set that fails to load becomes a new empty
  // set (Generate) and the result is false; built-in sets always load.
  bool Load(std::int32_t LimitNr);

  // Writes a stored set to the settings, replacing what was there; nothing
  // for a built-in set.
  void Save();

  // Shows the rules dialog over `dialog` until the user ends it; true when
  // the user accepted. The windows install it; without one nothing is shown.
  using DialogRunner = std::function<bool(MetricLimitsDialogModel& dialog)>;
  static void SetDialogRunner(DialogRunner runner);
  // Lets the user edit the rules and name; on acceptance takes them and
  // saves the set. True when the user accepted.
  bool Edit();
  // Shows the rules read-only.
  void View();

  // Writes the set to an `.mtl` file; errors are shown to the user. True
  // when the file was written.
  bool Export(const QString& fileName);

  // Copies an `.mtl` file into a new stored set, asking the user for its
  // name; the new set's number, 0 when nothing was imported.
  std::int32_t Import(const QString& fileName);

  // Built-in sets, then the stored ones, each with its number as item data;
  // selects the current set.
  void FillList(ChoiceList& list) const;

  // The current set's number: 0 when none was chosen, -1 when the chosen
  // stored set is gone or unreadable.
  static std::int16_t GetCurrentLimitID();
  static void SetCurrentLimitID(std::int32_t NewID);

  // Makes this a new empty stored set named "New limits" with the smallest
  // free number; nothing is written until Save.
  void Generate();

  // Removes stored set `LimitID` from the settings; other numbers do nothing.
  static void Delete(std::int16_t LimitID);

  // Values of `Stats` outside the rule of `metric`; 0 when it has none.
  std::int32_t CalcOutsideLimits(CStats& Stats, MetricId metric) const;

  // The rule of `metric` as text ("<= 10", "[.1, .3]", "Outliers"), with the
  // metric's abbreviation before it when asked; empty without a rule.
  QString GetRuleString(MetricId metric, bool IncludeMetricName) const;
  bool RuleExists(MetricId metric) const { return FindRule(metric) != nullptr; }
  // The rule's type, 0 when there is no rule.
  std::int32_t LimitType(MetricId metric) const;
  bool ReadOnly() const { return m_limitNr < 1; }

  // True when `value` of `metric` satisfies its rule, or there is none.
  // Outlier rules use the fences of `Stats` (computed and cached on first use).
  bool IsInsideLimits(MetricId metric, double value, CStats& Stats) const;

  // The set as the editing dialog sees it: number, rules 1..RuleCount.
  std::int16_t GetID() const { return m_limitNr; }
  int RuleCount() const { return static_cast<int>(m_rules.size()); }
  const MetricLimitRule& GetRule(int position) const {
    return m_rules.at(static_cast<size_t>(position - 1));
  }
  // Replaces name and rules, as an accepted edit does (followed by Save).
  void SetRules(const QString& name, std::vector<MetricLimitRule> rules);

  // Name of the built-in set `LimitNr`; empty for other numbers.
  static QString BuiltInName(std::int32_t LimitNr);
  // The settings section of stored set `LimitNr`: "Limits\<n>".
  static QString SetSection(std::int32_t LimitNr);

 private:
  void AddLimit(std::int32_t metric, std::int32_t type, double min, double max = 0.0);
  bool LoadFromSettings(std::int32_t LimitNr);
  void RemoveInvalidRules();
  void LoadBuiltIn(std::int32_t LimitNr);
  static std::int16_t FindFreeLimitID();
  static QString GetSavedName(std::int32_t LimitNr);
  void FillEditor(MetricLimitsDialogModel& dialog) const;
  const MetricLimitRule* FindRule(MetricId metric) const;
  QString RuleText(const MetricLimitRule& rule) const;

  MetricDefinitions m_catalogue;
  std::vector<MetricLimitRule> m_rules;  // position i holds rule i + 1
  QString m_name;
  std::int16_t m_limitNr = 0;
};

}  // namespace ombrelle
