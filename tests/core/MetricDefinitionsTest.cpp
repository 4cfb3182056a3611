#include <gtest/gtest.h>

#include "core/MetricDefinitions.h"

#include <climits>
#include <vector>

using namespace ombrelle;

namespace {

// The metrics of each class as the catalogue lists them.
const std::vector<std::vector<int>> kExpectedByClass = {
    {1000, 1001, 1002, 1008, 1009, 1010, 1011, 1012, 1013, 1014, 1015, 1016, 1019, 1021,
     1100, 1101, 1102, 1103, 1104, 1110, 1111, 1112, 1200, 1201, 1202, 1203, 1204, 1205,
     1206, 1207, 1208, 1210, 1211, 1221, 1222, 1223, 1226, 1227, 1228, 1229, 1230, 1240,
     1241, 1242, 1243, 1244, 1280, 1285, 1300, 1301, 1302, 1303, 1320, 1321, 1325, 1326,
     1330, 1340, 1400, 1401, 1402, 1403, 1404, 1405, 1406, 1420, 1421, 1490, 1491, 1500,
     1501, 1504, 1505, 1510, 1511, 1512, 1513, 1600, 1601, 1602, 1603, 1622},
    {2001, 2011, 2012, 2013, 2014, 2015, 2016, 2017, 2020, 2021, 2030, 2031,
     2034, 2035, 2036, 2040, 2041, 2100, 2101, 2102, 2103, 2104, 2110, 2111},
    {3001, 3002, 3003, 3004, 3005, 3006, 3010, 3011, 3012, 3013, 3015, 3016, 3017,
     3018, 3020, 3101, 3111, 3112, 3113, 3114, 3150, 3151, 3152, 3153, 3154, 3160,
     3161, 3200, 3210, 3211, 3212, 3213, 3214, 3215, 3216, 3217, 3218, 3320},
    {4001, 4011, 4012, 4013, 4014, 4020, 4025, 4030, 4035, 4050, 4051, 4052,
     4053, 4054, 4060, 4061, 4080, 4081, 4082, 4100, 4101, 4102, 4103, 4120,
     4121, 4122, 4140, 4141, 4142, 4143, 4160, 4161, 4162, 4180, 4200, 4201},
    {5001, 5002, 5010, 5013, 5020, 5100},
};

std::vector<int> SupportedIds(const MetricDefinitions& defs) {
  std::vector<int> ids;
  for (int id = kFirstMetricId; id <= kLastMetricId; ++id)
    if (defs.MetricSupported(id)) ids.push_back(id);
  return ids;
}

}  // namespace

// The catalogue in ascending order, each metric in its class (82, 24, 38,
// 36 and 6 of them).
TEST(MetricDefinitionsCatalogue, ListsEveryMetricOnceInAscendingOrderInItsClass) {
  MetricDefinitions defs;
  std::vector<int> expected;
  const size_t counts[kMetricClassCount] = {82, 24, 38, 36, 6};
  for (int cls = 0; cls < kMetricClassCount; ++cls) {
    EXPECT_EQ(kExpectedByClass[cls].size(), counts[cls]);
    for (int id : kExpectedByClass[cls]) {
      EXPECT_EQ(MetricDefinitions::GetMetricClass(id), cls) << id;
      expected.push_back(id);
    }
  }
  EXPECT_EQ(SupportedIds(defs), expected);
}

TEST(MetricDefinitionsCatalogue, EverySupportedMetricHasTextsAndAKnownFormat) {
  MetricDefinitions defs;
  for (int id : SupportedIds(defs)) {
    EXPECT_FALSE(defs.GetMetricName(id, NameAbbreviation).isEmpty()) << id;
    EXPECT_FALSE(defs.GetMetricName(id, NameDescription).isEmpty()) << id;
    const int format = defs.GetMetricFormat(id);
    EXPECT_GE(format, 0) << id;
    EXPECT_LE(format, 10) << id;
    // Texts are trimmed and the formula text is part of the description text.
    const QString description = defs.GetMetricName(id, NameDescription);
    EXPECT_EQ(description, description.trimmed()) << id;
    const QString formula = defs.GetMetricName(id, NameFormula);
    if (!formula.isEmpty()) {
      EXPECT_TRUE(description.endsWith(QLatin1Char('=') + formula)) << id;
    }
  }
}

TEST(MetricDefinitionsNames, AnswersEachKindForChosenMetrics) {
  struct Row {
    int id;
    const char* abbreviation;
    const char* name;
    const char* formula;
  };
  const Row rows[] = {
      {1000, "DATE", "Project date", ""},
      {1013, "LLOC'%", "Comment percentage", "LLOC/LLINES"},
      {2016, "LLOC'%", "Comment percentage", "LLOC/LLINES"},
      {1230, "DEAD", "Deadness index", "(dPROCS + dVARS + dCONSTS) / (PROCS + VARS + CONSTS)"},
      {1301, "TCC", "Total cyclomatic complexity", "Sum(CC)-Count(CC)+1"},
      {3013, "LCOM4", "Lack of Cohesion of Methods (4)", ""},
      {4102, "IFIO", "Informational fan-in x fan-out", "IFIN*IFOUT"},
      {4160, "SC", "Structural complexity", "SFOUT^2"},
      {5100, "LENVgm", "Length of variable name", ""},
  };
  MetricDefinitions defs;
  for (const Row& r : rows) {
    EXPECT_EQ(defs.GetMetricName(r.id, 0), QString::fromUtf8(r.abbreviation)) << r.id;
    EXPECT_EQ(defs.GetMetricName(r.id, 1), QString::fromUtf8(r.name)) << r.id;
    EXPECT_EQ(defs.GetMetricName(r.id, 3), QString::fromUtf8(r.formula)) << r.id;
    EXPECT_TRUE(defs.GetMetricName(r.id, -1).isEmpty()) << r.id;
    EXPECT_TRUE(defs.GetMetricName(r.id, 4).isEmpty()) << r.id;
  }
}

TEST(MetricDefinitionsNames, DescriptionTextWithAndWithoutFormula) {
  MetricDefinitions defs;
  EXPECT_EQ(defs.GetMetricName(1000, 2), "Date of newest file in project.");
  EXPECT_EQ(defs.GetMetricName(1013, 2),
            "Percentage of comment lines. Counted as full-line comments per logical lines. "
            "LLOC'%=LLOC/LLINES");
  EXPECT_EQ(defs.GetMetricName(2016, 2),
            "Percentage of comment lines. Counted as full-line comments per logical lines. "
            "LLOC'%=LLOC/LLINES");
  EXPECT_EQ(defs.GetMetricName(4160, 2),
            "Measures the external complexity of a procedure. Equals the number of other "
            "procedures called squared. Defined by Card & Agresti, also known as S(i). Used to "
            "calculate SYSC. SC=SFOUT^2");
  // The stray closing quotation mark of these two descriptions is kept.
  EXPECT_EQ(defs.GetMetricName(3016, 2),
            "LCCi is 'LCC with inheritance'. LCC describes the connectedness of the methods in a "
            "class. LCC<1 indicates a non-cohesive class. LCC=1 indicates a cohesive class.\"");
  EXPECT_EQ(defs.GetMetricName(3018, 2),
            "LCCl is 'LCC without inheritance'. LCC describes the connectedness of the methods in "
            "a class. LCC<1 indicates a non-cohesive class. LCC=1 indicates a cohesive class.\"");
  EXPECT_FALSE(defs.GetMetricName(3017, 2).endsWith(QLatin1Char('"')));
}

TEST(MetricDefinitionsNames, SharedDescriptionsAreTheSameText) {
  MetricDefinitions defs;
  const std::vector<std::vector<int>> groups = {
      {1002, 2001, 3101, 4001}, {1100, 2100, 3150, 4050}, {1015, 2020, 4020}, {1301, 3320}};
  for (const auto& group : groups) {
    const QString first = defs.GetMetricName(group[0], 2);
    for (int id : group) EXPECT_EQ(defs.GetMetricName(id, 2), first) << id;
  }
  EXPECT_EQ(defs.GetMetricName(3101, 2),
            "Physical source lines, including code, comments, empty comments and empty lines. "
            "This metric is what you would see with a simple text editor or line count program.");
}

TEST(MetricDefinitionsNames, GapsAndNumbersOutsideTheCatalogueHaveNothing) {
  MetricDefinitions defs;
  for (int id : {1003, 1018, 1020, 999, 0, -1, 2000, 3000, 4000, 5000, 5101, 5102, 9000}) {
    for (int kind = 0; kind <= 3; ++kind) EXPECT_TRUE(defs.GetMetricName(id, kind).isEmpty()) << id;
    EXPECT_FALSE(defs.MetricSupported(id)) << id;
    EXPECT_EQ(defs.GetMetricFormat(id), 0) << id;
    EXPECT_EQ(defs.GetMetricRange(id), MetricRange{}) << id;
    MetricFormula formula;
    EXPECT_FALSE(defs.GetMetricFormula(id, formula)) << id;
  }
}

TEST(MetricDefinitionsNames, NamelessNumbersHaveAFormatAndARecipeOnly) {
  const struct {
    int id;
    int format;
  } rows[] = {{1017, 7}, {1620, 1}, {1621, 1}, {5011, 8}, {5012, 1}};
  MetricDefinitions defs;
  for (const auto& r : rows) {
    for (int kind = 0; kind <= 3; ++kind) EXPECT_TRUE(defs.GetMetricName(r.id, kind).isEmpty());
    EXPECT_FALSE(defs.MetricSupported(r.id)) << r.id;
    EXPECT_EQ(defs.GetMetricFormat(r.id), r.format) << r.id;
    MetricFormula formula;
    EXPECT_TRUE(defs.GetMetricFormula(r.id, formula)) << r.id;
  }
}

TEST(MetricDefinitionsClasses, ClassOfAnyInteger) {
  const struct {
    int id;
    MetricClass cls;
  } rows[] = {{INT_MIN, ClassProject}, {-1, ClassProject},      {0, ClassProject},
              {999, ClassProject},     {1000, ClassProject},    {1999, ClassProject},
              {2000, ClassFile},       {2999, ClassFile},       {3000, ClassClass},
              {3999, ClassClass},      {4000, ClassProcedure},  {4999, ClassProcedure},
              {5000, ClassVariable},   {5101, ClassVariable},   {5102, ClassVariable},
              {9000, ClassVariable},   {INT_MAX, ClassVariable}};
  for (const auto& r : rows) EXPECT_EQ(MetricDefinitions::GetMetricClass(r.id), r.cls) << r.id;
}

TEST(MetricDefinitionsClasses, ClassNames) {
  const char* longNames[] = {"Project", "File", "Class", "Procedure", "Variable"};
  const char* shortNames[] = {"proj", "file", "cls", "proc", "var"};
  for (int cls = 0; cls < kMetricClassCount; ++cls) {
    EXPECT_EQ(MetricDefinitions::GetMetricClassName(cls, false), longNames[cls]);
    EXPECT_EQ(MetricDefinitions::GetMetricClassName(cls, true), shortNames[cls]);
  }
  for (int cls : {-1, 5, 100}) {
    EXPECT_TRUE(MetricDefinitions::GetMetricClassName(cls, false).isEmpty());
    EXPECT_TRUE(MetricDefinitions::GetMetricClassName(cls, true).isEmpty());
  }
}

TEST(MetricDefinitionsSupported, NumbersOutsideTheSearchRangeDoNotBuildTheTable) {
  MetricDefinitions defs;
  for (int id : {5102, 999, -1, INT_MAX, INT_MIN}) EXPECT_FALSE(defs.MetricSupported(id)) << id;
  EXPECT_FALSE(defs.SupportTableBuilt());
  EXPECT_TRUE(defs.MetricSupported(1000));
  EXPECT_TRUE(defs.SupportTableBuilt());
  EXPECT_TRUE(defs.MetricSupported(5100));
  EXPECT_FALSE(defs.MetricSupported(5101));
  EXPECT_FALSE(defs.MetricSupported(5102));
  EXPECT_FALSE(defs.MetricSupported(1003));
}

TEST(MetricDefinitionsFormats, UseFormatOfDatesAndOfEachFormatCode) {
  const struct {
    int id;
    int plain, use1, use2, use3;
  } rows[] = {
      {1000, 9, 9, 1, 9},  // date
      {2031, 9, 9, 1, 9},  // date
      {1112, 0, 7, 7, 7},  // automatic
      {1001, 1, 7, 7, 7},  // whole number
      {1002, 2, 1, 1, 1},  // large whole number
      {1016, 3, 3, 3, 3},  // percentage
      {1012, 5, 5, 5, 5},  // percentage
      {1420, 6, 6, 6, 6},  // ratio
      {1240, 7, 8, 8, 8},  // average
      {1300, 8, 8, 8, 8},  // ratio
      {1003, 0, 7, 7, 7},  // unknown: format 0
      {1017, 7, 8, 8, 8},  // nameless
  };
  MetricDefinitions defs;
  for (const auto& r : rows) {
    EXPECT_EQ(defs.GetMetricFormat(r.id), r.plain) << r.id;
    EXPECT_EQ(defs.GetMetricUseFormat(r.id, 0), r.plain) << r.id;
    EXPECT_EQ(defs.GetMetricUseFormat(r.id, 1), r.use1) << r.id;
    EXPECT_EQ(defs.GetMetricUseFormat(r.id, 2), r.use2) << r.id;
    EXPECT_EQ(defs.GetMetricUseFormat(r.id, 3), r.use3) << r.id;
  }
}

TEST(MetricDefinitionsRanges, StatedRanges) {
  const MetricRange none{};
  const MetricRange zeroToOne{BoundClosed, 0, BoundClosed, 1};
  const struct {
    int id;
    MetricRange range;
  } rows[] = {
      {1000, none},
      {1012, zeroToOne},
      {1244, {BoundOpen, 0, BoundClosed, 1}},
      {1330, {BoundClosed, 0, BoundOpen, 1}},
      {1340, {BoundClosed, 0, BoundNone, 0}},
      {1240, {BoundClosed, 1, BoundNone, 0}},
      {3011, zeroToOne},
      {3012, {BoundClosed, 0, BoundClosed, 2}},
      {3013, {BoundClosed, 0, BoundNone, 0}},
      {4050, {BoundClosed, 2, BoundNone, 0}},
      {4120, {BoundClosed, 1, BoundNone, 0}},
      {5011, none},
  };
  MetricDefinitions defs;
  for (const auto& r : rows) EXPECT_EQ(defs.GetMetricRange(r.id), r.range) << r.id;
}

TEST(MetricDefinitionsRanges, PercentagesAndRatiosLieBetweenZeroAndOne) {
  MetricDefinitions defs;
  int seen = 0;
  for (int id : SupportedIds(defs)) {
    const int format = defs.GetMetricFormat(id);
    if (format != 5 && format != 6) continue;
    ++seen;
    const MetricRange r = defs.GetMetricRange(id);
    EXPECT_NE(r.LowKind, BoundNone) << id;
    EXPECT_NE(r.HighKind, BoundNone) << id;
    EXPECT_EQ(r.Low, 0.0) << id;
    EXPECT_EQ(r.High, 1.0) << id;
  }
  EXPECT_EQ(seen, 34);
}

TEST(MetricDefinitionsRanges, FormatsFiveAndSixWithoutStatedRangeGetZeroToOne) {
  const struct {
    int format, lowKind;
    double low;
    int highKind;
    double high;
    MetricRange expected;
  } rows[] = {
      {5, 0, 0, 0, 0, {BoundClosed, 0, BoundClosed, 1}},
      {6, 0, 0, 0, 0, {BoundClosed, 0, BoundClosed, 1}},
      {6, 2, 0, 1, 1, {BoundOpen, 0, BoundClosed, 1}},
      {5, 1, 0, 0, 0, {BoundClosed, 0, BoundNone, 0}},
      {3, 0, 0, 0, 0, {}},
      {8, 0, 0, 0, 0, {}},
  };
  for (const auto& r : rows) {
    const MetricCatalogEntry entry{1, "X", "X", r.format, r.lowKind, r.low, r.highKind, r.high, ""};
    EXPECT_EQ(CatalogRange(entry), r.expected) << r.format;
  }
}

TEST(MetricDefinitionsSize, SizeCategoryBoundaries) {
  const struct {
    double lines;
    const char* text;
  } rows[] = {{0, "Small"},           {9999, "Small"},       {10000, "Medium"}, {49999, "Medium"},
              {50000, "Semi-large"},  {99999, "Semi-large"}, {100000, "Large"}, {499999, "Large"},
              {500000, "Very large"}, {1e9, "Very large"}};
  for (const auto& r : rows) EXPECT_EQ(MetricDefinitions::SizeCategory(r.lines), r.text) << r.lines;
}
