#pragma once

#include <cstdint>

namespace ombrelle {

// Two-sided 5% point of Student's t for `df` degrees of freedom: a table up to 10, fitted
// logarithmic curves above, 1.96 from 500. 0 below 1 degree of freedom.
double TCritical95(std::int32_t df);

// True when a Pearson correlation r over N pairs passes the two-sided t-test at 5%.
bool CorrelationIsSignificant(double r, std::int32_t N);

// Number patterns of the regression line text "a + b * X": the constant always takes
// "0.00"; the slope takes the pattern RegressionSlopePattern gives ("0" for a slope of 0,
// "0.00" from 0.1 in size upward, "0.########" below). The text itself is built where the
// number formats live.
inline constexpr const char* kRegressionConstantPattern = "0.00";
const char* RegressionSlopePattern(double b);

}  // namespace ombrelle
