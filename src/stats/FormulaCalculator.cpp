#include "stats/FormulaCalculator.h"

#include <algorithm>

namespace ombrelle {

bool FormulaCalculator::Calculate(const MetricFormula& Formula, TermSeries& Series,
                                  CStats& Result) const {
  // Slot numbers: A the left operand, B the last operand used, C where the
  // result goes. They are bytes, so a close bracket at slot 1 wraps to 0 and
  // is caught as out of range like any other slot beyond the ten positions.
  std::uint8_t a = 1, b = 1, c = 1;
  const auto inRange = [](std::uint8_t slot) {
    return slot >= 1 && slot <= MetricFormula::MaxTerms;
  };
  const int steps = std::min<int>(Formula.StepCount, MetricFormula::MaxTerms);
  for (int i = 0; i < steps; ++i) {
    const std::int32_t code = Formula.Operators[i];
    switch (code) {
      case FormulaOpenBracket:
        ++b;
        a = b;
        ++c;
        break;
      case FormulaCloseBracket:
        --c;
        a = c;
        b = c;
        break;
      case FormulaSquare:
      case FormulaDouble:
      case FormulaSquareRoot: {
        // A and C are in range here: every step that moves them is checked.
        const std::int32_t operation = code == FormulaDouble ? 1 : 4;
        const double constant = code == FormulaSquareRoot ? 0.5 : 2.0;
        Series[c - 1] = Series[a - 1].OperateConstant(operation, constant);
        break;
      }
      default:
        // Binary steps, and any unknown code, go to the series as they stand.
        ++b;
        if (!inRange(b)) break;
        Series[c - 1] = Series[a - 1].Operate(code, Series[b - 1]);
        a = c;
        break;
    }
    if (!inRange(a) || !inRange(b) || !inRange(c)) {
      Result = CStats();
      return false;
    }
  }
  Result = Series[0];
  return true;
}

bool FormulaCalculator::Evaluate(const MetricFormula& Formula, const TermReader& ReadTerm,
                                 CStats& Result) const {
  TermSeries series;
  for (int i = 0; i < MetricFormula::MaxTerms && Formula.Terms[i] > 0; ++i)
    if (!ReadTerm(Formula.Terms[i], series[i])) return false;
  return Calculate(Formula, series, Result);
}

}  // namespace ombrelle
