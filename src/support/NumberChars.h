#pragma once

namespace ombrelle {

// Number texts written as ASCII bytes straight into a caller's buffer, with
// no string objects in between: the building blocks of FormatNum and of the
// XML export. Every function writes to `out` and returns the number of bytes.

// Room enough for any text of these functions: the whole part of the largest
// double (309 digits), a point and up to kMaxDecimals decimals.
inline constexpr int kNumberCharsMax = 720;
// More decimals than any double has digits after the point (the tiniest has
// 340 or so); beyond, a fixed text only gains zeros.
inline constexpr int kMaxDecimals = 400;

// The decimal digits of a double: value = 0.d1d2d3... x 10^Point, without
// sign, leading or trailing zeros (a single "0" for zero).
struct DecimalDigits {
  char Digits[24];
  int Count = 0;
  int Point = 0;
};

// The shortest digits that read back as `value` (its absolute value; finite).
// Whole numbers below 10^15 take an integer road.
void ShortestDigits(double value, DecimalDigits& digits);

// "NaN", "Inf" or "-Inf" for a value that is not finite.
int NonFiniteChars(double value, char* out);

// `value` (finite) rounded half away from zero on its shortest digits to
// `decimals` places (0 to kMaxDecimals) in fixed notation, "." as decimal point; a
// result of zero has no sign. `digits` are the ShortestDigits of `value`.
int RoundDecimalChars(double value, const DecimalDigits& digits, int decimals, char* out);
// The same, finding the digits itself; not finite values give NonFiniteChars.
int RoundDecimalChars(double value, int decimals, char* out);

// `magnitude` (finite, above 0, not whole) times 10^decimals (0 to 19),
// rounded half away from zero on its shortest digits, found from the exact
// binary value without the digits. True when no rounding boundary lies
// within one unit in the last place of the value, so that the value and its
// shortest digits round alike, and the result stays below 2^62; false, and
// `units` untouched, when only the digits can tell.
bool RoundScaledExact(double magnitude, int decimals, unsigned long long& units);
// The shortest digits of `magnitude` (finite, above 0, not whole) rounded
// half up to fifteen significant digits, without finding the shortest digits
// first, under the same condition; for values from 1E-05 up to 1E+14.
bool FifteenDigitsExact(double magnitude, DecimalDigits& digits);

// A whole number in decimal (at most 20 bytes).
int IntegerChars(long long value, char* out);
int UnsignedChars(unsigned long long value, char* out);

}  // namespace ombrelle
