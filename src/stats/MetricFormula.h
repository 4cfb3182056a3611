#pragma once

#include <array>
#include <cstdint>

// Plain types shared by the metric catalogue and the evaluator of derived
// metrics. This header depends on nothing but the standard library so that the
// evaluator, which sits below the catalogue, can use the same record.

namespace ombrelle {

// Operator codes of a formula step. Codes 0 to 3 are the binary operations of a
// series and pass through to it unchanged; 4 to 8 steer the evaluator.
enum FormulaOperator : std::int32_t {
  FormulaAdd = 0,
  FormulaMultiply = 1,
  FormulaDivide = 2,
  FormulaSubtract = 3,
  FormulaOpenBracket = 4,
  FormulaCloseBracket = 5,
  FormulaSquare = 6,
  FormulaDouble = 7,
  FormulaSquareRoot = 8,
};

// How a stored summary of a metric of another class gives a project value.
enum FormulaSummaryKind : std::int32_t {
  SummarySum = 0,      // count times mean of the summarised metric
  SummaryMaximum = 1,  // its maximum
};

// Recipe of a derived metric: either a list of operand metrics with one
// operator per step, or (SummaryMetric not 0) a stored summary of a metric of
// a lower class. Terms and Operators are stored from index 0: Terms[0] is the
// first operand, Operators[0] the first step.
struct MetricFormula {
  static constexpr int MaxTerms = 10;

  std::uint8_t StepCount = 0;                      // operator steps to run; 0 when no formula
  std::array<std::int32_t, MaxTerms> Terms{};      // operand metric numbers, 0 = unused
  std::array<std::int32_t, MaxTerms> Operators{};  // one FormulaOperator per step
  bool WholeNumber = true;                         // the result is shown as a whole number
  std::int32_t SummaryMetric = 0;                  // when not 0: the metric summarised
  std::int32_t SummaryKind = 0;                    // a FormulaSummaryKind

  // Number of terms in use (the slots before the first 0).
  int TermCount() const {
    int n = 0;
    while (n < MaxTerms && Terms[n] != 0) ++n;
    return n;
  }
};

}  // namespace ombrelle
