#include <gtest/gtest.h>

#include <vector>

#include "core/MetricDefinitions.h"
#include "limits/ChoiceList.h"
#include "limits/LimitsTestSettings.h"
#include "limits/MetricLimits.h"
#include "support/SettingsStore.h"

namespace ombrelle {
namespace {

using test::Rules;

using test::LimitsSettingsTest;

// Writes a stored set by hand, as a hand-edited or newer file would leave it.
void WriteRule(int set, int position, const QString& metric, const QString& type,
               std::initializer_list<std::pair<const char*, const char*>> bounds = {}) {
  const QString section = QStringLiteral("Limits\\%1\\Rule%2").arg(set).arg(position);
  SaveSetting(section, QStringLiteral("Metric"), metric);
  SaveSetting(section, QStringLiteral("LimitType"), type);
  for (const auto& [key, value] : bounds)
    SaveSetting(section, QString::fromUtf8(key), QString::fromUtf8(value));
}

void WriteSetHead(int set, const QString& name, const QString& version, const QString& rules) {
  const QString section = QStringLiteral("Limits\\%1").arg(set);
  SaveSetting(section, QStringLiteral("Name"), name);
  SaveSetting(section, QStringLiteral("Version"), version);
  SaveSetting(section, QStringLiteral("Rules"), rules);
}

TEST(MetricLimitsBuiltIn, DefaultAndRequireCommentsRulesInOrder) {
  MetricLimits limits;
  ASSERT_TRUE(limits.Load(LimitSet::Default));
  EXPECT_EQ(limits.GetName(), QStringLiteral("<Default limits>"));
  const std::vector<MetricLimitRule> defaults = {
      {1404, 0, 5, 0},  {1501, 2, 1, 0},    {2012, 2, 1, 0}, {3001, 1, 1, 50}, {3213, 0, 0, 0},
      {3010, 0, 0, 0},  {3012, 0, 0.99, 0}, {3013, 0, 1, 0}, {3112, 2, 3, 0},  {3002, 0, 5, 0},
      {4001, 0, 66, 0}, {4012, 2, 3, 0},    {4020, 2, 1, 0}, {4120, 0, 10, 0}, {4140, 0, 5, 0},
      {4141, 0, 2, 0},  {4030, 0, 5, 0}};
  EXPECT_EQ(Rules(limits), defaults);
  EXPECT_TRUE(limits.ReadOnly());

  ASSERT_TRUE(limits.Load(LimitSet::RequireComments));
  EXPECT_EQ(limits.GetName(), QStringLiteral("<Require comments>"));
  const std::vector<MetricLimitRule> comments = {{1016, 2, 0.2, 0},
                                                 {1014, 1, 0.1, 0.3},
                                                 {2021, 2, 0.2, 0},
                                                 {2017, 1, 0.1, 0.3},
                                                 {4020, 2, 1, 0}};
  EXPECT_EQ(Rules(limits), comments);

  ASSERT_TRUE(limits.Load(LimitSet::None));
  EXPECT_EQ(limits.GetName(), QStringLiteral("<No limits>"));
  EXPECT_EQ(limits.RuleCount(), 0);
  EXPECT_TRUE(limits.ReadOnly());
}

TEST(MetricLimitsBuiltIn, OutlierSetsCoverTheSupportedCatalogue) {
  MetricDefinitions catalogue;
  std::vector<MetricId> supported;
  for (MetricId id = 1002; id <= 5101; ++id)
    if (catalogue.MetricSupported(id)) supported.push_back(id);
  ASSERT_GT(supported.size(), 100u);

  for (const auto& [nr, type, name] :
       {std::tuple{LimitSet::Outliers, 3, "<Outliers>"},
        std::tuple{LimitSet::ExtremeOutliers, 4, "<Outliers, extreme>"}}) {
    MetricLimits limits;
    ASSERT_TRUE(limits.Load(nr));
    EXPECT_EQ(limits.GetName().toStdString(), name);
    ASSERT_EQ(limits.RuleCount(), static_cast<int>(supported.size()));
    for (int i = 1; i <= limits.RuleCount(); ++i)
      EXPECT_EQ(limits.GetRule(i), (MetricLimitRule{supported[i - 1], type, 0, 0}));
    EXPECT_FALSE(limits.RuleExists(1000));
    EXPECT_FALSE(limits.RuleExists(1001));
  }
}

TEST(MetricLimitsRules, GetRuleStringAndLookup) {
  MetricLimits limits;
  ASSERT_TRUE(limits.Load(LimitSet::Default));
  EXPECT_EQ(limits.GetRuleString(4120, true), QStringLiteral("CC <= 10"));
  EXPECT_EQ(limits.GetRuleString(4120, false), QStringLiteral("<= 10"));
  EXPECT_EQ(limits.GetRuleString(3112, true), QStringLiteral("LLOC >= 3"));
  EXPECT_EQ(limits.GetRuleString(3001, true), QStringLiteral("WMC in [1, 50]"));
  EXPECT_EQ(limits.GetRuleString(3012, false), QStringLiteral("<= .99"));
  EXPECT_EQ(limits.GetRuleString(1009, true), QString());
  EXPECT_EQ(limits.LimitType(3001), 1);
  EXPECT_EQ(limits.LimitType(1009), 0);
  EXPECT_TRUE(limits.RuleExists(4030));

  ASSERT_TRUE(limits.Load(LimitSet::RequireComments));
  EXPECT_EQ(limits.GetRuleString(1014, true), QStringLiteral("LLOW% in [.1, .3]"));
  EXPECT_EQ(limits.GetRuleString(1014, false), QStringLiteral("[.1, .3]"));
  EXPECT_EQ(limits.GetRuleString(1016, true), QStringLiteral("MCOMM% >= .2"));

  ASSERT_TRUE(limits.Load(LimitSet::Outliers));
  EXPECT_EQ(limits.GetRuleString(3002, true), QStringLiteral("DIT Outliers"));
  ASSERT_TRUE(limits.Load(LimitSet::ExtremeOutliers));
  EXPECT_EQ(limits.GetRuleString(3002, true), QStringLiteral("DIT Extreme outliers"));
  EXPECT_EQ(limits.LimitType(3002), 4);
}

TEST(MetricLimitsRules, FirstRuleOfAMetricWins) {
  MetricLimits limits;
  limits.SetRules(QStringLiteral("Twice"), {{4120, 0, 10, 0}, {4120, 2, 20, 0}});
  EXPECT_EQ(limits.GetRuleString(4120, true), QStringLiteral("CC <= 10"));
  EXPECT_EQ(limits.LimitType(4120), 0);
}

TEST_F(LimitsSettingsTest, SaveThenLoadGivesTheSameSet) {
  MetricLimits limits;
  limits.Generate();
  EXPECT_EQ(limits.GetID(), 1);
  EXPECT_EQ(limits.GetName(), QStringLiteral("New limits"));
  EXPECT_FALSE(limits.ReadOnly());
  const std::vector<MetricLimitRule> rules = {{4120, 0, 10, 0}, {1014, 1, 0.1, 0.3},
                                              {3112, 2, 3, 0},  {3002, 3, 0, 0},
                                              {4001, 4, 0, 0},  {4012, 2, -0.5, 0}};
  limits.SetRules(QStringLiteral("Mine"), rules);
  limits.Save();

  EXPECT_EQ(GetSetting(QStringLiteral("Limits\\1"), QStringLiteral("Version")),
            QStringLiteral("1.0"));
  EXPECT_EQ(GetSetting(QStringLiteral("Limits\\1"), QStringLiteral("Rules")), QStringLiteral("6"));
  EXPECT_EQ(GetSetting(QStringLiteral("Limits\\1\\Rule2"), QStringLiteral("LimitMin")),
            QStringLiteral(".1"));
  EXPECT_EQ(GetSetting(QStringLiteral("Limits\\1\\Rule2"), QStringLiteral("LimitMax")),
            QStringLiteral(".3"));
  EXPECT_EQ(GetSetting(QStringLiteral("Limits\\1\\Rule6"), QStringLiteral("Limit")),
            QStringLiteral("-.5"));
  // Outlier rules carry no bound in the store.
  const auto outlierKeys = GetAllSettings(QStringLiteral("Limits\\1\\Rule4"));
  EXPECT_EQ(outlierKeys.size(), 2u);

  MetricLimits loaded;
  ASSERT_TRUE(loaded.Load(1));
  EXPECT_EQ(loaded.GetName(), QStringLiteral("Mine"));
  EXPECT_EQ(Rules(loaded), rules);

  // A shorter set saved over it leaves no old rule behind.
  limits.SetRules(QStringLiteral("Mine"), {{4120, 0, 12, 0}});
  limits.Save();
  EXPECT_TRUE(EnumSubkeys(QStringLiteral("Limits\\1")) == QStringList{QStringLiteral("Rule1")});
}

TEST_F(LimitsSettingsTest, BuiltInSetsAreNeverSaved) {
  MetricLimits limits;
  ASSERT_TRUE(limits.Load(LimitSet::Default));
  limits.Save();
  EXPECT_TRUE(EnumSubkeys(QStringLiteral("Limits")).isEmpty());
  EXPECT_TRUE(GetAllSettings(QStringLiteral("Limits\\-1")).empty());
}

TEST_F(LimitsSettingsTest, NegativeRuleCountAndMissingNameReadAsDefaults) {
  SaveSetting(QStringLiteral("Limits\\4"), QStringLiteral("Version"), QStringLiteral("1.0"));
  SaveSetting(QStringLiteral("Limits\\4"), QStringLiteral("Rules"), QStringLiteral("-3"));
  WriteRule(4, 1, QStringLiteral("4120"), QStringLiteral("0"), {{"Limit", "12"}});
  MetricLimits limits;
  ASSERT_TRUE(limits.Load(4));
  EXPECT_EQ(limits.GetName(), QStringLiteral("New rules"));
  EXPECT_EQ(limits.RuleCount(), 0);
}

TEST_F(LimitsSettingsTest, UnloadableSetsBecomeANewEmptySet) {
  const struct {
    const char* version;  // nullptr: the set's section is absent
  } cases[] = {{nullptr}, {"2.0"}, {"1.5"}, {"abc"}};
  for (const auto& c : cases) {
    DeleteSettingsTree(QStringLiteral("Limits"));
    if (c.version)
      WriteSetHead(3, QStringLiteral("Future"), QString::fromUtf8(c.version), QStringLiteral("0"));
    SaveSetting(QStringLiteral("Limits\\1"), QStringLiteral("Name"), QStringLiteral("Taken"));
    MetricLimits limits;
    EXPECT_FALSE(limits.Load(3)) << (c.version ? c.version : "absent");
    EXPECT_EQ(limits.ErrorMessage, QStringLiteral("Unsupported version number"));
    EXPECT_EQ(limits.GetName(), QStringLiteral("New limits"));
    EXPECT_EQ(limits.RuleCount(), 0);
    EXPECT_EQ(limits.GetID(), 2);  // the smallest number no set uses
  }
}

TEST_F(LimitsSettingsTest, CurrentLimitIdAndItsStalenessRule) {
  EXPECT_EQ(MetricLimits::GetCurrentLimitID(), 0);  // fresh installation
  MetricLimits::SetCurrentLimitID(-3);
  EXPECT_EQ(MetricLimits::GetCurrentLimitID(), -3);

  MetricLimits::SetCurrentLimitID(5);
  EXPECT_EQ(MetricLimits::GetCurrentLimitID(), -1);  // no such set
  WriteSetHead(5, QStringLiteral("Five"), QStringLiteral("1.0"), QStringLiteral("0"));
  EXPECT_EQ(MetricLimits::GetCurrentLimitID(), 5);
  SaveSetting(QStringLiteral("Limits\\5"), QStringLiteral("Version"), QStringLiteral("1.7"));
  EXPECT_EQ(MetricLimits::GetCurrentLimitID(), 5);  // the whole part counts
  SaveSetting(QStringLiteral("Limits\\5"), QStringLiteral("Version"), QStringLiteral("2.0"));
  EXPECT_EQ(MetricLimits::GetCurrentLimitID(), -1);
  SaveSetting(QStringLiteral("Limits\\5"), QStringLiteral("Version"), QStringLiteral("1.0"));
  SaveSetting(QStringLiteral("Limits\\5"), QStringLiteral("Name"), QString());
  EXPECT_EQ(MetricLimits::GetCurrentLimitID(), -1);
  SaveSetting(QStringLiteral("Limits\\5"), QStringLiteral("Name"), QStringLiteral("Five"));
  MetricLimits::Delete(5);
  EXPECT_EQ(MetricLimits::GetCurrentLimitID(), -1);
  MetricLimits::SetCurrentLimitID(70000);
  EXPECT_EQ(MetricLimits::GetCurrentLimitID(), -1);
}

TEST_F(LimitsSettingsTest, FillListShowsBuiltInsThenStoredSets) {
  WriteSetHead(2, QStringLiteral("Second"), QStringLiteral("1.0"), QStringLiteral("0"));
  SaveSetting(QStringLiteral("Limits\\7"), QStringLiteral("Version"),
              QStringLiteral("1.0"));  // no name
  SaveSetting(QStringLiteral("Limits\\junk"), QStringLiteral("Name"), QStringLiteral("Ignored"));
  MetricLimits::SetCurrentLimitID(2);

  MetricLimits limits;
  ChoiceList list;
  list.AddItem(QStringLiteral("old"), 99);
  limits.FillList(list);
  std::vector<std::pair<QString, std::int32_t>> items;
  for (const ChoiceList::Item& item : list.Items()) items.emplace_back(item.text, item.data);
  const std::vector<std::pair<QString, std::int32_t>> expected = {
      {QStringLiteral("<Default limits>"), -1},
      {QStringLiteral("<Require comments>"), -2},
      {QStringLiteral("<No limits>"), 0},
      {QStringLiteral("<Outliers>"), -3},
      {QStringLiteral("<Outliers, extreme>"), -4},
      {QStringLiteral("Second"), 2},
      {QStringLiteral("New rules"), 7}};
  EXPECT_EQ(items, expected);
  EXPECT_EQ(list.Selected(), 5);

  MetricLimits::SetCurrentLimitID(-4);
  limits.FillList(list);
  EXPECT_EQ(list.Selected(), 4);
  // A stale set reads as -1, which is the number of <Default limits>.
  MetricLimits::SetCurrentLimitID(7);
  limits.FillList(list);
  EXPECT_EQ(list.Selected(), 0);
  MetricLimits::SetCurrentLimitID(-9);  // no such built-in set: nothing is selected
  limits.FillList(list);
  EXPECT_EQ(list.Selected(), -1);
}

TEST_F(LimitsSettingsTest, GenerateTakesTheSmallestFreeNumberAndDeleteRemovesOnlyStoredSets) {
  WriteSetHead(1, QStringLiteral("One"), QStringLiteral("1.0"), QStringLiteral("0"));
  WriteSetHead(3, QStringLiteral("Three"), QStringLiteral("1.0"), QStringLiteral("0"));
  MetricLimits limits;
  limits.Generate();
  EXPECT_EQ(limits.GetID(), 2);
  limits.Save();
  limits.Generate();
  EXPECT_EQ(limits.GetID(), 4);

  MetricLimits::Delete(0);
  MetricLimits::Delete(-1);
  EXPECT_EQ(EnumSubkeys(QStringLiteral("Limits")).size(), 3);
  MetricLimits::Delete(2);
  EXPECT_EQ(EnumSubkeys(QStringLiteral("Limits")),
            (QStringList{QStringLiteral("1"), QStringLiteral("3")}));
  limits.Generate();
  EXPECT_EQ(limits.GetID(), 2);
}

}  // namespace
}  // namespace ombrelle
