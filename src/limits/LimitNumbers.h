#pragma once

#include <cstdint>

#include <QString>

namespace ombrelle {

// Text of a number as stored in the settings and in `.mtl` files: the general
// form with up to 15 significant digits, "." as decimal point, no leading
// blank and no 0 before the point (0.2 is ".2", -0.5 is "-.5", 1E-05 stays).
QString LimitNumberText(double value);

// A plain decimal scan: leading blanks, a sign, digits, a fraction and an
// exponent, stopping at the first character that does not fit. Text that
// starts with no number, and a number too large for a double, read 0.
double ParseLimitNumber(const QString& text);

// `value` as a whole number: rounded to nearest, halves to even, and kept
// inside `low`..`high`.
std::int32_t ToWholeNumber(double value, std::int32_t low, std::int32_t high);

}  // namespace ombrelle
