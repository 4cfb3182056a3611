#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "stats/CStats.h"
#include "stats/MetricFormula.h"

namespace ombrelle {

// Evaluator of derived metrics: runs the operator steps of a MetricFormula as a
// small register machine over columns of values, one evaluation giving the
// whole column. It knows nothing of metrics; the caller supplies the terms.
class FormulaCalculator {
 public:
  // Term columns: position i (1..10) at index i - 1, holding the column of
  // Terms[i - 1]. The steps overwrite them.
  using TermSeries = std::array<CStats, MetricFormula::MaxTerms>;
  // Reads the column of one metric into `column`; false when it is absent.
  using TermReader = std::function<bool(std::int32_t metric, CStats& column)>;

  // Runs the `Formula`'s steps over `Series`; `Result` is the column left at
  // position 1. An operator list that moves a slot outside 1..10 stops the
  // evaluation: false and an empty `Result`.
  bool Calculate(const MetricFormula& Formula, TermSeries& Series, CStats& Result) const;

  // Reads the terms in order, up to the first that is not above 0, through
  // `ReadTerm`, then runs Calculate. A term that cannot be read makes the
  // whole metric absent: false, `Result` untouched.
  bool Evaluate(const MetricFormula& Formula, const TermReader& ReadTerm, CStats& Result) const;
};

}  // namespace ombrelle
