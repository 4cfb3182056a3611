#include <gtest/gtest.h>

#include "core/MetricDefinitions.h"
#include "stats/FormulaCalculator.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <vector>

using namespace ombrelle;

namespace {

// The derived metrics and stored summaries as the evaluator of derived metrics
// expects them, listed apart from the catalogue's own recipe table.
struct FormulaRow {
  int id;
  const char* abbreviation;  // empty for the numbers without a name
  std::vector<int> terms;
  std::vector<int> operators;
  bool whole;
  int summaryMetric;
  int summaryKind;
};

const std::vector<FormulaRow> kFormulaTable = {
    {1008, "LLINES", {1009, 1010, 1011}, {0, 0}, true, 0, 0},
    {1012, "LLOC%", {1009, 1008}, {2}, false, 0, 0},
    {1013, "LLOC'%", {1010, 1008}, {2}, false, 0, 0},
    {1014, "LLOW%", {1011, 1008}, {2}, false, 0, 0},
    {1016, "MCOMM%", {1015, 1009}, {2}, false, 0, 0},
    {1017, "", {1009, 1015}, {2}, false, 0, 0},
    {1102, "STMTx", {1100, 1101}, {3}, true, 0, 0},
    {1104, "STMTnc", {1102, 1103}, {3}, true, 0, 0},
    {1110, "XQT", {1102, 1100}, {2}, false, 0, 0},
    {1111, "CTRL", {1103, 1102}, {2}, false, 0, 0},
    {1112, "SDENS", {1100, 1009}, {2}, false, 0, 0},
    {1230, "DEAD", {1221, 1222, 1223, 1201, 1202, 1203}, {0, 0, 4, 0, 0, 5, 2}, false, 0, 0},
    {1280, "ENUMSZ", {1206, 1205}, {2}, false, 0, 0},
    {1285, "ENUMR", {1206, 1206, 1203}, {4, 0, 5, 2}, false, 0, 0},
    {1321, "CALLDENS", {1320, 1009}, {2}, false, 0, 0},
    {1406, "CLSc", {1400, 1405}, {3}, true, 0, 0},
    {1420, "U", {1400, 1402, 1400}, {3, 2}, false, 0, 0},
    {1421, "S", {1400, 1401, 1400, 1402}, {3, 4, 3, 5, 2}, false, 0, 0},
    {1602, "TRW", {1600, 1601}, {0}, true, 0, 0},
    {1603, "DATADENS", {1602, 1009}, {2}, false, 0, 0},
    {1622, "IOg%", {1620, 1621, 1620}, {4, 0, 5, 2}, false, 0, 0},
    {2011, "LLINES", {2012, 2013, 2014}, {0, 0}, true, 0, 0},
    {2015, "LLOC%", {2012, 2011}, {2}, false, 0, 0},
    {2016, "LLOC'%", {2013, 2011}, {2}, false, 0, 0},
    {2017, "LLOW%", {2014, 2011}, {2}, false, 0, 0},
    {2021, "MCOMM%", {2020, 2012}, {2}, false, 0, 0},
    {2102, "STMTx", {2100, 2101}, {3}, true, 0, 0},
    {2104, "STMTnc", {2102, 2103}, {3}, true, 0, 0},
    {2110, "XQT", {2102, 2100}, {2}, false, 0, 0},
    {2111, "CTRL", {2103, 2102}, {2}, false, 0, 0},
    {3111, "LLINES", {3112, 3113, 3114}, {0, 0}, true, 0, 0},
    {3152, "STMTx", {3150, 3151}, {3}, true, 0, 0},
    {3154, "STMTnc", {3152, 3153}, {3}, true, 0, 0},
    {3160, "XQT", {3152, 3150}, {2}, false, 0, 0},
    {3161, "CTRL", {3153, 3152}, {2}, false, 0, 0},
    {3217, "CSZ", {3001, 3212}, {0}, true, 0, 0},
    {3218, "CIS", {3210, 3213}, {0}, true, 0, 0},
    {4011, "LLINES", {4012, 4013, 4014}, {0, 0}, true, 0, 0},
    {4052, "STMTx", {4050, 4051}, {3}, true, 0, 0},
    {4054, "STMTnc", {4052, 4053}, {3}, true, 0, 0},
    {4060, "XQT", {4052, 4050}, {2}, false, 0, 0},
    {4061, "CTRL", {4053, 4052}, {2}, false, 0, 0},
    {4082, "IOvars", {4080, 4081}, {0}, true, 0, 0},
    {4102, "IFIO", {4100, 4101}, {1}, false, 0, 0},
    {4103, "IC1", {4102, 4012}, {1}, false, 0, 0},
    {4160, "SC", {4201}, {6}, false, 0, 0},
    {4162, "SYSC", {4160, 4161}, {0}, true, 0, 0},
    {5010, "RW", {5001, 5002}, {0}, true, 0, 0},
    {5011, "", {5002, 5001, 5010}, {3, 2}, false, 0, 0},
    {5012, "", {5002, 5001}, {7, 0}, true, 0, 0},
    {5013, "FLOWS", {5001, 5002}, {1}, false, 0, 0},
    {1100, "STMT", {}, {}, true, 2100, 0},
    {1101, "STMTd", {}, {}, true, 2101, 0},
    {1103, "STMTc", {}, {}, true, 2103, 0},
    {1208, "VARSloc", {}, {}, true, 4035, 0},
    {1325, "maxDCALLT", {}, {}, true, 4142, 1},
    {1326, "maxSCALLT", {}, {}, true, 4143, 1},
    {1600, "TREADS", {}, {}, true, 5001, 0},
    {1601, "TWRITES", {}, {}, true, 5002, 0},
    {1620, "", {}, {}, true, 4080, 0},
    {1621, "", {}, {}, true, 4081, 0},
};

const int kNameless[] = {1017, 1620, 1621, 5011, 5012};

bool IsNameless(int id) {
  return std::find(std::begin(kNameless), std::end(kNameless), id) != std::end(kNameless);
}

// One recipe run by the program's evaluator on single values, each term's
// value looked up by its metric number.
double Evaluate(const MetricFormula& f, const std::map<int, double>& values) {
  CStats result;
  const auto read = [&](std::int32_t metric, CStats& column) {
    column = CStats();
    column.Init(1, false);
    column.AddValue(values.count(metric) ? values.at(metric) : 0);
    return true;
  };
  EXPECT_TRUE(FormulaCalculator().Evaluate(f, read, result));
  return result.count() == 1 ? result.ValueAtIndex(1) : std::nan("");
}

}  // namespace

TEST(MetricDefinitionsFormula, EveryDerivedMetricHasItsRecipe) {
  MetricDefinitions defs;
  for (const FormulaRow& row : kFormulaTable) {
    SCOPED_TRACE(row.id);
    MetricFormula f;
    ASSERT_TRUE(defs.GetMetricFormula(row.id, f));
    EXPECT_EQ(defs.GetMetricName(row.id, NameAbbreviation), QString::fromUtf8(row.abbreviation));
    EXPECT_EQ(f.StepCount, row.operators.size());
    EXPECT_EQ(f.TermCount(), static_cast<int>(row.terms.size()));
    for (int i = 0; i < MetricFormula::MaxTerms; ++i) {
      EXPECT_EQ(f.Terms[i], i < static_cast<int>(row.terms.size()) ? row.terms[i] : 0) << i;
      EXPECT_EQ(f.Operators[i], i < static_cast<int>(row.operators.size()) ? row.operators[i] : 0)
          << i;
    }
    EXPECT_EQ(f.WholeNumber, row.whole);
    EXPECT_EQ(f.SummaryMetric, row.summaryMetric);
    EXPECT_EQ(f.SummaryKind, row.summaryKind);
  }
}

TEST(MetricDefinitionsFormula, NoOtherNumberHasARecipe) {
  MetricDefinitions defs;
  std::vector<int> withRecipe;
  for (int id = -10; id <= 10000; ++id) {
    MetricFormula f;
    if (defs.GetMetricFormula(id, f)) withRecipe.push_back(id);
  }
  std::vector<int> expected;
  for (const FormulaRow& row : kFormulaTable) expected.push_back(row.id);
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(withRecipe, expected);
}

TEST(MetricDefinitionsFormula, TermsAndSummariesAreKnownNumbers) {
  MetricDefinitions defs;
  for (const FormulaRow& row : kFormulaTable) {
    SCOPED_TRACE(row.id);
    MetricFormula f;
    ASSERT_TRUE(defs.GetMetricFormula(row.id, f));
    EXPECT_TRUE(defs.MetricSupported(row.id) || IsNameless(row.id));
    const MetricClass cls = MetricDefinitions::GetMetricClass(row.id);
    for (int i = 0; i < f.TermCount(); ++i) {
      EXPECT_TRUE(defs.MetricSupported(f.Terms[i]) || IsNameless(f.Terms[i])) << f.Terms[i];
      EXPECT_EQ(MetricDefinitions::GetMetricClass(f.Terms[i]), cls) << f.Terms[i];
    }
    if (f.SummaryMetric != 0) {
      // A summary is a project value taken from a stored metric of a lower class.
      EXPECT_TRUE(defs.MetricSupported(f.SummaryMetric));
      EXPECT_EQ(cls, ClassProject);
      EXPECT_GT(MetricDefinitions::GetMetricClass(f.SummaryMetric), ClassProject);
      EXPECT_EQ(f.StepCount, 0);
      EXPECT_EQ(f.TermCount(), 0);
      EXPECT_TRUE(f.WholeNumber);
      EXPECT_TRUE(f.SummaryKind == SummarySum || f.SummaryKind == SummaryMaximum);
    } else {
      EXPECT_GT(f.StepCount, 0);
    }
  }
}

// Every recipe evaluates within the slots, and its result depends on each of
// its terms: no term is left unused.
TEST(MetricDefinitionsFormula, StepsUseEveryTermAndStayInsideTheSlots) {
  MetricDefinitions defs;
  const FormulaCalculator calculator;
  for (const FormulaRow& row : kFormulaTable) {
    if (row.summaryMetric != 0) continue;
    SCOPED_TRACE(row.id);
    MetricFormula f;
    ASSERT_TRUE(defs.GetMetricFormula(row.id, f));
    const auto run = [&](int changed) {
      FormulaCalculator::TermSeries series;
      for (int i = 0; i < f.TermCount(); ++i) {
        series[i].Init(1, false);
        series[i].AddValue(i == changed ? 7.0 * (i + 2) + 1 : i + 2.0);
      }
      CStats result;
      EXPECT_TRUE(calculator.Calculate(f, series, result));
      return result.count() == 1 ? result.ValueAtIndex(1) : std::nan("");
    };
    const double base = run(-1);
    for (int i = 0; i < f.TermCount(); ++i) EXPECT_NE(run(i), base) << "term " << i;
  }
}

TEST(MetricDefinitionsFormula, RecipesComputeWhatTheirFormulaSays) {
  const struct {
    int id;
    std::map<int, double> values;
    double expected;
  } rows[] = {
      {1008, {{1009, 10}, {1010, 4}, {1011, 6}}, 20},
      {1013, {{1010, 5}, {1008, 20}}, 0.25},
      {1012, {{1009, 7}, {1008, 0}}, 0},  // no lines: 0, no error
      {1230, {{1221, 1}, {1222, 2}, {1223, 3}, {1201, 4}, {1202, 5}, {1203, 6}}, 0.4},
      {1285, {{1206, 6}, {1203, 2}}, 0.75},
      {1420, {{1400, 10}, {1402, 4}}, 0.6},
      {1421, {{1400, 10}, {1401, 4}, {1402, 5}}, 1.2},
      {1622, {{1620, 3}, {1621, 9}}, 0.25},
      {4103, {{4102, 6}, {4012, 7}}, 42},
      {4160, {{4201, 5}}, 25},
      {5011, {{5002, 3}, {5001, 4}, {5010, 7}}, -1.0 / 7},
      {5012, {{5002, 3}, {5001, 4}}, 10},
  };
  MetricDefinitions defs;
  for (const auto& r : rows) {
    MetricFormula f;
    ASSERT_TRUE(defs.GetMetricFormula(r.id, f)) << r.id;
    EXPECT_DOUBLE_EQ(Evaluate(f, r.values), r.expected) << r.id;
  }
}

TEST(MetricDefinitionsFormula, WholeNumberIsSetEvenWithoutARecipe) {
  MetricDefinitions defs;
  MetricFormula f;
  f.WholeNumber = false;
  f.StepCount = 3;
  f.Terms[0] = 7;
  f.SummaryMetric = 9;
  EXPECT_FALSE(defs.GetMetricFormula(1009, f));
  EXPECT_TRUE(f.WholeNumber);
  EXPECT_EQ(f.StepCount, 0);
  EXPECT_EQ(f.TermCount(), 0);
  EXPECT_EQ(f.SummaryMetric, 0);

  ASSERT_TRUE(defs.GetMetricFormula(4102, f));
  EXPECT_FALSE(f.WholeNumber);
}

TEST(MetricDefinitionsFormula, FormulaTextOfCommentPercentageDiffersFromItsRecipe) {
  // The text says LLOC/LLINES while the recipe divides comment lines: both stand.
  MetricDefinitions defs;
  const struct { int id, comments, lines; } rows[] = {{1013, 1010, 1008}, {2016, 2013, 2011}};
  for (const auto& r : rows) {
    EXPECT_EQ(defs.GetMetricName(r.id, NameFormula), "LLOC/LLINES");
    MetricFormula f;
    ASSERT_TRUE(defs.GetMetricFormula(r.id, f));
    EXPECT_EQ(f.Terms[0], r.comments);
    EXPECT_EQ(f.Terms[1], r.lines);
    EXPECT_EQ(f.Operators[0], FormulaDivide);
  }
}
