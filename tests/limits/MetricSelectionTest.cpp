#include <gtest/gtest.h>

#include <vector>

#include "core/MetricDefinitions.h"
#include "limits/ChoiceList.h"
#include "limits/LimitsTestSettings.h"
#include "limits/MetricSelection.h"
#include "support/SettingsStore.h"

namespace ombrelle {
namespace {

using test::LimitsSettingsTest;

std::vector<MetricId> Ids(std::initializer_list<MetricId> ids) { return ids; }

// Abbreviations of the selections' metrics, as users know them: a wrong
// number in a table shows here as a wrong name.
QStringList Abbreviations(const MetricSelection& selection) {
  MetricDefinitions catalogue;
  QStringList names;
  for (MetricId id : selection.Selected()) names << catalogue.GetMetricName(id, NameAbbreviation);
  return names;
}

TEST(MetricSelectionBuiltIn, ListedSelectionsEndWithDateAndDays) {
  const struct {
    std::int16_t nr;
    const char* name;
    const char* metrics;  // abbreviations, blank-separated, DATE and DAYS included
  } cases[] = {
      {-1, "<Simple metrics>",
       "LINES LLOC LINES LLOC LINES LLOC WMC VARS LINES LLOC CC DCOND STMT STMT STMT STMT READS "
       "WRITES RW DATE DAYS"},
      {-6, "<Line counts>",
       "LINES LLINES LLOC LLOC' LLOW LLOC% LLOC'% LLOW% LINES LLINES LLOC LLOC' LLOW LLOC% LLOC'% "
       "LLOW% "
       "LINES LLINES LLOC LLOC' LLOW LINES LLINES LLOC LLOC' LLOW DATE DAYS"},
      {-2, "<Tarnwick Classic>",
       "LINES LLOC LLOC' LLOW MCOMM LEN LENP LENV LENC UNIQ LINES LLOC LLOC' LLOW MCOMM SFIN SFOUT "
       "LINES LLOC "
       "LLOC' LLOW LINES LLOC LLOC' LLOW MCOMM CC DCOND DLOOP IFIN IFOUT IFIO IC1 SFIN SFOUT LENP "
       "DATE DAYS"},
      {-5, "<Complexity metrics>",
       "CC CC2 CC3 TCC DECDENS SYSC RSYSC IC1 SC DC SYSC maxDCALLT maxSCALLT LLOC LLOC LLOC DCOND "
       "DLOOP DCALLT "
       "SCALLT SFOUT SFIN SFOUT SFIN TCC CTRL CTRL CTRL CTRL READS WRITES RW FLOWS DATE DAYS"},
      {-11, "<Starter metrics>",
       "LINES LLOC LLOC' LLOC'% kB STMT FILES PROCS VARS CONSTS UDTS ENUMS ENUMCS VARSgm VARSloc "
       "FORMS MDLS DEAD "
       "CLS LINES LLOC LLOC' LLOC'% PROCS VARS WMC LINES VARS LINES LLOC LLOC' PARAMS CC DCOND "
       "READS WRITES RW "
       "DATE DAYS"},
      {-10, "<Constant metrics>",
       "CONSTS dCONSTS ENUMS ENUMCS dENUMS dENUMCS ENUMSZ ENUMR Rc CONSTS DATE DAYS"},
      {-7, "<Statement counts>",
       "STMT STMTd STMTx STMTc STMTnc XQT CTRL STMT STMTd STMTx STMTc STMTnc XQT CTRL STMT STMTd "
       "STMTx STMTc "
       "STMTnc XQT CTRL STMT STMTd STMTx STMTc STMTnc XQT CTRL DATE DAYS"},
      {-8, "<Documentation metrics>",
       "LLINES LLOC LLOC' LLOC'% MCOMM MCOMM% LEN LENP LENV LENC LLINES LLOC LLOC' LLOC'% LLINES "
       "LLOC LLOC' "
       "LLINES LLOC LLOC' MCOMM LENP DATE DAYS"},
  };
  for (const auto& c : cases) {
    MetricSelection selection;
    selection.Load(c.nr);
    EXPECT_EQ(selection.GetName().toStdString(), c.name);
    EXPECT_EQ(Abbreviations(selection).join(QLatin1Char(' ')).toStdString(), c.metrics) << c.name;
    EXPECT_TRUE(selection.ReadOnly());
    EXPECT_EQ(selection.GetID(), c.nr);
  }
}

TEST(MetricSelectionBuiltIn, ComputedSelectionsFollowTheCatalogue) {
  MetricDefinitions catalogue;
  std::vector<MetricId> all, classMetrics, variableMetrics;
  for (MetricId id = 1000; id <= 5101; ++id) {
    if (!catalogue.MetricSupported(id)) continue;
    all.push_back(id);
    if (id >= 3000 && id < 4000) classMetrics.push_back(id);
    if (id >= 5000) variableMetrics.push_back(id);
  }

  MetricSelection selection;
  selection.Load(SelectionSet::All);
  EXPECT_EQ(selection.GetName(), QStringLiteral("<All>"));
  EXPECT_EQ(selection.Selected(), all);  // DATE and DAYS are supported, so nothing is added

  selection.Load(SelectionSet::ObjectOriented);
  std::vector<MetricId> expected = {1500, 1501, 1490, 1491, 1504, 1505, 1510, 1511, 1512, 1513,
                                    1400, 1405, 1406, 1401, 1402, 1403, 1404, 1421, 1420};
  expected.insert(expected.end(), classMetrics.begin(), classMetrics.end());
  expected.insert(expected.end(), {1000, 1001});
  EXPECT_EQ(selection.Selected(), expected);

  selection.Load(SelectionSet::Variables);
  expected = {1202, 1207, 1208, 1222, 1241, 1600, 1601, 1602, 1603, 1622,
              2035, 3212, 3213, 3214, 4030, 4035, 4080, 4081, 4082};
  expected.insert(expected.end(), variableMetrics.begin(), variableMetrics.end());
  expected.insert(expected.end(), {1000, 1001});
  EXPECT_EQ(selection.Selected(), expected);
}

TEST(MetricSelectionBuiltIn, UnknownNumberHoldsOnlyDateAndDays) {
  MetricSelection selection;
  selection.Load(-12);
  EXPECT_EQ(selection.Selected(), Ids({1000, 1001}));
  EXPECT_EQ(selection.GetName(), QString());
  selection.Load(0);
  EXPECT_EQ(selection.Selected(), Ids({1000, 1001}));
}

TEST(MetricSelectionBuiltIn, ReadOnlySelectionsIgnoreChanges) {
  MetricSelection selection;
  selection.Load(SelectionSet::Constants);
  const std::vector<MetricId> before = selection.Selected();
  selection.SetIsSelected(4120, true);
  selection.SetIsSelected(1203, false);
  selection.Rename(QStringLiteral("Mine"));
  EXPECT_EQ(selection.Selected(), before);
  EXPECT_TRUE(selection.IsSelected(1203));
  EXPECT_FALSE(selection.IsSelected(4120));
  EXPECT_EQ(selection.GetName(), QStringLiteral("<Constant metrics>"));
}

TEST_F(LimitsSettingsTest, CreateSaveLoadRenameDelete) {
  MetricSelection selection;
  selection.Create(QStringLiteral("Sizes"));
  EXPECT_EQ(selection.GetID(), 1);
  EXPECT_FALSE(selection.ReadOnly());
  EXPECT_EQ(selection.Count(), 0);
  selection.SetIsSelected(4120, true);
  selection.SetIsSelected(1009, true);
  selection.SetIsSelected(4120, true);  // already selected: no second entry
  selection.SetIsSelected(2012, true);
  selection.SetIsSelected(1009, false);
  EXPECT_EQ(selection.Selected(), Ids({4120, 2012}));
  selection.Save();

  EXPECT_EQ(GetSetting(QStringLiteral("Selections\\1"), QStringLiteral("Name")),
            QStringLiteral("Sizes"));
  EXPECT_EQ(GetSetting(QStringLiteral("Selections\\1"), QStringLiteral("Count")),
            QStringLiteral("2"));
  EXPECT_EQ(GetSetting(QStringLiteral("Selections\\1"), QStringLiteral("Selected2")),
            QStringLiteral("2012"));

  MetricSelection loaded;
  loaded.Load(1);
  EXPECT_EQ(loaded.GetName(), QStringLiteral("Sizes"));
  EXPECT_EQ(loaded.Selected(), Ids({4120, 2012, 1000, 1001}));

  // Save replaces the whole section.
  loaded.SetIsSelected(4120, false);
  loaded.Rename(QStringLiteral("Smaller"));
  loaded.Save();
  EXPECT_EQ(GetSetting(QStringLiteral("Selections\\1"), QStringLiteral("Selected4")), QString());
  selection.Load(1);
  EXPECT_EQ(selection.GetName(), QStringLiteral("Smaller"));
  EXPECT_EQ(selection.Selected(), Ids({2012, 1000, 1001}));

  MetricSelection second;
  second.Create(QStringLiteral("Other"));
  EXPECT_EQ(second.GetID(), 2);
  second.Save();
  MetricSelection::Delete(1);
  MetricSelection::Delete(-11);
  MetricSelection::Delete(0);
  EXPECT_EQ(EnumSubkeys(QStringLiteral("Selections")), QStringList{QStringLiteral("2")});
  second.Create(QStringLiteral("Third"));
  EXPECT_EQ(second.GetID(), 1);
}

TEST_F(LimitsSettingsTest, StoredSelectionWithCountBeyondItsKeys) {
  SaveSetting(QStringLiteral("Selections\\4"), QStringLiteral("Name"), QStringLiteral("Short"));
  SaveSetting(QStringLiteral("Selections\\4"), QStringLiteral("Count"), QStringLiteral("3"));
  SaveSetting(QStringLiteral("Selections\\4"), QStringLiteral("Selected1"), QStringLiteral("1000"));
  SaveSetting(QStringLiteral("Selections\\4"), QStringLiteral("Selected2"), QStringLiteral("4120"));
  MetricSelection selection;
  selection.Load(4);
  EXPECT_EQ(selection.Selected(), Ids({1000, 4120, 0, 1001}));

  selection.Load(9);  // section gone
  EXPECT_EQ(selection.GetName(), QString());
  EXPECT_EQ(selection.Selected(), Ids({1000, 1001}));
}

TEST_F(LimitsSettingsTest, CurrentFallsBackToStarterMetrics) {
  EXPECT_EQ(MetricSelection::Current(), SelectionSet::Starter);  // fresh installation
  const struct {
    const char* stored;
    std::int16_t expected;
  } cases[] = {{"-1000", -11}, {"-5", -5}, {"0", 0}, {"-40", -40}, {"3", -11}, {"8", 8}};
  SaveSetting(QStringLiteral("Selections\\8"), QStringLiteral("Name"), QStringLiteral("Eight"));
  SaveSetting(QStringLiteral("Selections\\3"), QStringLiteral("Count"),
              QStringLiteral("0"));  // no name
  for (const auto& c : cases) {
    SaveSetting(QStringLiteral("Selections"), QStringLiteral("CurrentSelection"),
                QString::fromUtf8(c.stored));
    EXPECT_EQ(MetricSelection::Current(), c.expected) << c.stored;
  }
  MetricSelection::SetCurrent(-7);
  EXPECT_EQ(GetSetting(QStringLiteral("Selections"), QStringLiteral("CurrentSelection")),
            QStringLiteral("-7"));
  MetricSelection::Delete(8);
  MetricSelection::SetCurrent(8);
  EXPECT_EQ(MetricSelection::Current(), SelectionSet::Starter);
}

TEST_F(LimitsSettingsTest, SelectionFillListOrderAndCurrentItem) {
  MetricSelection stored;
  stored.Create(QStringLiteral("Mine"));
  stored.Save();
  MetricSelection::SetCurrent(1);

  ChoiceList list;
  stored.FillList(list);
  QStringList texts;
  std::vector<std::int32_t> data;
  for (const ChoiceList::Item& item : list.Items()) {
    texts << item.text;
    data.push_back(item.data);
  }
  EXPECT_EQ(texts.join(QLatin1Char('|')).toStdString(),
            "<Simple metrics>|<Tarnwick Classic>|<Line counts>|<Object Oriented>|<Complexity "
            "metrics>|<All>|"
            "<Statement counts>|<Documentation metrics>|<Variable metrics>|<Constant "
            "metrics>|<Starter metrics>|Mine");
  EXPECT_EQ(data, (std::vector<std::int32_t>{-1, -2, -6, -4, -5, -3, -7, -8, -9, -10, -11, 1}));
  EXPECT_EQ(list.Selected(), 11);

  MetricSelection::Delete(1);
  stored.FillList(list);
  EXPECT_EQ(list.Count(), 11);
  EXPECT_EQ(list.Selected(), 10);  // <Starter metrics>
}

}  // namespace
}  // namespace ombrelle
