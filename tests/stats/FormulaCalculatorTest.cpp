#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "stats/FormulaCalculator.h"

using namespace ombrelle;

namespace {

using Column = std::vector<double>;

CStats MakeColumn(const Column& values) {
  CStats s;
  s.Init(static_cast<std::int32_t>(values.size()), false);
  for (double v : values) s.AddValue(v);
  return s;
}

Column Values(const CStats& s) {
  Column out;
  for (std::int32_t i = 1; i <= s.count(); ++i) out.push_back(s.ValueAtIndex(i));
  return out;
}

MetricFormula Formula(std::vector<std::int32_t> terms, std::vector<std::int32_t> operators) {
  MetricFormula f;
  f.StepCount = static_cast<std::uint8_t>(operators.size());
  for (size_t i = 0; i < terms.size(); ++i) f.Terms[i] = terms[i];
  for (size_t i = 0; i < operators.size(); ++i) f.Operators[i] = operators[i];
  return f;
}

struct ShapeCase {
  std::string name;
  MetricFormula formula;
  std::vector<Column> terms;  // column of term i at [i - 1]
  Column expected;
};

}  // namespace

// Each shape of the catalogue's recipes, worked out by hand.
TEST(FormulaCalculator, EvaluatesEveryFormulaShape) {
  const std::vector<ShapeCase> cases = {
      // LLINES: LLOC + LLOC' + LLOW, column-wise.
      {"sum", Formula({1, 2, 3}, {0, 0}), {{10, 0, 4}, {2, 0, 1}, {3, 0, 0}}, {15, 0, 5}},
      // LLOC%: a zero divisor gives 0 for the row, no error.
      {"quotient", Formula({1, 2}, {2}), {{5, 3, 0}, {2, 0, 0}}, {2.5, 0, 0}},
      // STMTx: a difference keeps its sign.
      {"difference", Formula({1, 2}, {3}), {{4, 1}, {6, 1}}, {-2, 0}},
      // IFIO: a product.
      {"product", Formula({1, 2}, {1}), {{3, 0}, {4, 9}}, {12, 0}},
      // DEAD with terms 1..6: (1 + 2 + 3) / (4 + 5 + 6).
      {"DEAD",
       Formula({1, 2, 3, 4, 5, 6}, {0, 0, 4, 0, 0, 5, 2}),
       {{1}, {2}, {3}, {4}, {5}, {6}},
       {0.4}},
      // S with CLS 10, ROOTS 4, LEAFS 5: (10 - 4) / (10 - 5).
      {"S", Formula({1, 2, 3, 4}, {3, 4, 3, 5, 2}), {{10}, {4}, {10}, {5}}, {1.2}},
      // ENUMR: ENUMCS / (ENUMCS + CONSTS) with 3 and 1.
      {"ENUMR", Formula({1, 2, 3}, {4, 0, 5, 2}), {{3}, {3}, {1}}, {0.75}},
      // IOg%: IOg / (IOp + IOg) with 6 and 14; a bracket of zeros divides to 0.
      {"IOg%", Formula({1, 2, 3}, {4, 0, 5, 2}), {{6, 0}, {14, 0}, {6, 0}}, {0.3, 0}},
      // 5011: (WRITES - READS) / RW.
      {"difference over sum", Formula({1, 2, 3}, {3, 2}), {{5}, {3}, {8}}, {0.25}},
      // SC: SFOUT squared.
      {"square", Formula({1}, {6}), {{3, 0, -2}}, {9, 0, 4}},
      // 5012: WRITES * 2 + READS with 3 and 4.
      {"double", Formula({1, 2}, {7, 0}), {{3, 1}, {4, 0}}, {10, 2}},
      {"root", Formula({1}, {8}), {{16, 2.25}}, {4, 1.5}},
  };
  const FormulaCalculator calculator;
  for (const ShapeCase& c : cases) {
    FormulaCalculator::TermSeries series;
    for (size_t i = 0; i < c.terms.size(); ++i) series[i] = MakeColumn(c.terms[i]);
    CStats result;
    ASSERT_TRUE(calculator.Calculate(c.formula, series, result)) << c.name;
    const Column got = Values(result);
    ASSERT_EQ(got.size(), c.expected.size()) << c.name;
    for (size_t i = 0; i < got.size(); ++i) EXPECT_DOUBLE_EQ(got[i], c.expected[i]) << c.name;
  }
}

TEST(FormulaCalculator, StepsRunStrictlyInOrderWithoutPrecedence) {
  // 2 + 3 * 4 is (2 + 3) * 4 here.
  FormulaCalculator::TermSeries series;
  series[0] = MakeColumn({2});
  series[1] = MakeColumn({3});
  series[2] = MakeColumn({4});
  CStats result;
  ASSERT_TRUE(FormulaCalculator().Calculate(Formula({1, 2, 3}, {0, 1}), series, result));
  EXPECT_EQ(Values(result), Column{20});
}

TEST(FormulaCalculator, SlotsLeavingTheTenPositionsStopTheEvaluation) {
  const std::vector<std::pair<std::string, MetricFormula>> cases = {
      {"close without open", Formula({1, 2}, {5, 0})},
      {"ten opens", Formula({1}, {4, 4, 4, 4, 4, 4, 4, 4, 4, 4})},
      {"eleventh operand", Formula({1}, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0})},
  };
  for (const auto& [name, formula] : cases) {
    FormulaCalculator::TermSeries series;
    series[0] = MakeColumn({1, 2});
    CStats result = MakeColumn({9});
    EXPECT_FALSE(FormulaCalculator().Calculate(formula, series, result)) << name;
    EXPECT_EQ(result.count(), 0) << name;
  }
}

TEST(FormulaCalculator, UnknownCodesGoToTheSeriesAsTheyStand) {
  // Code 9 is no operation of a series: each row adds nothing.
  FormulaCalculator::TermSeries series;
  series[0] = MakeColumn({1, 2});
  series[1] = MakeColumn({3, 4});
  CStats result;
  ASSERT_TRUE(FormulaCalculator().Calculate(Formula({1, 2}, {9}), series, result));
  EXPECT_EQ(result.count(), 0);
}

TEST(FormulaCalculator, EvaluateReadsTermsInOrderAndStopsAtTheFirstAbsentOne) {
  const MetricFormula dead = Formula({1221, 1222, 1223, 1201, 1202, 1203}, {0, 0, 4, 0, 0, 5, 2});
  std::vector<std::int32_t> asked;
  const auto reader = [&](std::int32_t metric, CStats& column) {
    asked.push_back(metric);
    column = MakeColumn({static_cast<double>(asked.size())});
    return true;
  };
  CStats result;
  ASSERT_TRUE(FormulaCalculator().Evaluate(dead, reader, result));
  EXPECT_EQ(asked, (std::vector<std::int32_t>{1221, 1222, 1223, 1201, 1202, 1203}));
  EXPECT_DOUBLE_EQ(result.ValueAtIndex(1), 0.4);

  asked.clear();
  const auto missing1201 = [&](std::int32_t metric, CStats& column) {
    asked.push_back(metric);
    column = MakeColumn({1});
    return metric != 1201;
  };
  CStats untouched = MakeColumn({7, 8});
  EXPECT_FALSE(FormulaCalculator().Evaluate(dead, missing1201, untouched));
  EXPECT_EQ(asked, (std::vector<std::int32_t>{1221, 1222, 1223, 1201}));
  EXPECT_EQ(Values(untouched), (Column{7, 8}));
}
