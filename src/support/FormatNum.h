#pragma once

#include <QString>

namespace ombrelle {

struct DecimalDigits;

// The one road from a metric's value to text, so that every table, report and
// export agrees. Format codes: 0 automatic, 1 whole number, 2 large whole
// number, 3 to 5 percentage, 6 and 8 ratio, 7 average, 9 date, 10 by size.
// Fixed patterns always give "." as the decimal point, whatever the locale.
// Rounding is half away from zero on the shortest decimal form of the value,
// so 2.675 to two decimals reads "2.68". Values that are not finite read
// "NaN", "Inf" and "-Inf".

// The cell style of tables and reports.
QString FormatMetric(int format, double value);
// The plain style of exports: no short forms, no grouping, no cap on decimals.
QString FormatMetricPlain(int format, double value);

// `value` rounded to `decimals` (above 0) decimals with "." as the decimal
// point, or to a whole number for 0 (and for negative `decimals`).
QString FormatFixed(double value, int decimals);
// Percent of a fraction: 0.015 "1.50%", 0.5 "50%". A value that is not 0 and
// whose absolute value is below 0.02 gets two decimals.
QString FormatPercent(double value);
// A date value (days since 1899-12-30) in the locale's short date pattern with
// a four-digit year; "yyyy-MM-dd" when the locale has no pattern of its own.
// The pattern is read once and kept.
QString FormatDateShort(double date);
// Forgets the kept short date pattern, so the next FormatDateShort reads the
// locale again (for a changed locale, and for tests).
void ResetDateShortPattern();
// The whole part of log10 of the absolute value, rounded down; 0 for 0 and for
// values that are not finite.
int OrderOfMagnitude(double value);
// The general form of a double: up to 15 significant digits, fixed notation
// for exponents -4 to 14, else "1.5E+16" / "1E-05".
QString GeneralNumber(double value);
// The cell style of FormatMetric as ASCII bytes written to `out` (room for
// kNumberCharsMax of NumberChars.h); the number of bytes, or -1 for a date
// whose locale pattern has more than day, month, year and plain separators,
// which only FormatMetric writes.
int FormatMetricChars(int format, double value, char* out);
// The same with the ShortestDigits of `value` at hand (or null).
int FormatMetricChars(int format, double value, const DecimalDigits* digits, char* out);

// The program version: "major.minor", and with `full` "major.minor.revision".
QString VersionText(bool full);

}  // namespace ombrelle
