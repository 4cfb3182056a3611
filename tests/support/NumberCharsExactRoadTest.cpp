// Rounding decided from the exact binary value against rounding the shortest
// digits: the same text wherever the exact road answers, and no answer where
// a rounding boundary lies too near the value for the two to agree surely.

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/NumberChars.h"

namespace ombrelle {
namespace {

std::string Rounded(double value, int decimals) {
  char text[kNumberCharsMax];
  return std::string(text, RoundDecimalChars(value, decimals, text));
}

std::string RoundedOnDigits(double value, int decimals) {
  DecimalDigits digits;
  ShortestDigits(value, digits);
  char text[kNumberCharsMax];
  return std::string(text, RoundDecimalChars(value, digits, decimals, text));
}

TEST(NumberCharsExactRoad, KnownValuesNearBoundaries) {
  struct Known {
    double value;
    int decimals;
    bool decided;  // whether the exact road may answer
    const char* text;
  };
  const Known cases[] = {
      {2.675, 2, false, "2.68"},  // below the midpoint in binary, on it in digits
      {0.125, 2, false, "0.13"},  // a midpoint in binary too
      {-0.125, 2, false, "-0.13"},
      {2.5, 0, false, "3"},
      {1.005, 2, false, "1.01"},
      {0.1, 19, false, "0.1000000000000000000"},  // more decimals than the value has
      {0.1, 1, true, "0.1"},
      {-0.004, 2, true, "0.00"},  // a zero result has no sign
      {0.0142857142857143, 2, true, "0.01"},
      {-1.4285714285714286, 2, true, "-1.43"},
      {40001.0416666667, 6, true, "40001.041667"},
      {0.000123, 6, true, "0.000123"},
      {999.996, 2, true, "1000.00"},
      {4503599627370495.5, 0, false, "4503599627370496"},  // a midpoint
      {5e-324, 2, false, "0.00"},
  };
  for (const Known& k : cases) {
    unsigned long long units = 0;
    EXPECT_EQ(RoundScaledExact(std::fabs(k.value), k.decimals, units), k.decided)
        << k.value << " " << k.decimals;
    EXPECT_EQ(Rounded(k.value, k.decimals), k.text) << k.value;
    EXPECT_EQ(RoundedOnDigits(k.value, k.decimals), k.text) << k.value;
  }
}

TEST(NumberCharsExactRoad, SameTextAsTheDigitRoad) {
  std::vector<double> values;
  // Decimal midpoints for one to six places and their neighbours.
  for (int places = 1; places <= 6; ++places) {
    const double scale = std::pow(10.0, places);
    for (int k = 0; k < 3000; ++k) {
      const double mid = (k * 7919 % 2000000 + 0.5) / scale;
      for (double v : {mid, std::nextafter(mid, 0.0), std::nextafter(mid, 1e300)}) {
        values.push_back(v);
        values.push_back(-v);
      }
    }
  }
  std::mt19937_64 random(2601);
  std::uniform_real_distribution<double> exponent(-12, 13);
  std::uniform_real_distribution<double> mantissa(1, 10);
  for (int i = 0; i < 40000; ++i)
    values.push_back(mantissa(random) * std::pow(10.0, exponent(random)));
  int decided = 0, tried = 0;
  for (const double value : values) {
    if (value == std::trunc(value)) continue;
    for (const int decimals : {0, 1, 2, 3, 6, 12, 19}) {
      ASSERT_EQ(Rounded(value, decimals), RoundedOnDigits(value, decimals))
          << value << " to " << decimals;
      unsigned long long units = 0;
      decided += RoundScaledExact(std::fabs(value), decimals, units);
      ++tried;
    }
  }
  // The exact road answers for most: few values lie that near a boundary.
  EXPECT_GT(decided, tried / 2);
}

TEST(NumberCharsExactRoad, FifteenDigitsOnlyWithinItsRange) {
  DecimalDigits digits;
  ASSERT_TRUE(FifteenDigitsExact(40001.0416666667, digits));
  EXPECT_EQ(std::string(digits.Digits, digits.Count), "400010416666667");
  EXPECT_EQ(digits.Point, 5);
  ASSERT_TRUE(FifteenDigitsExact(0.0142857142857143, digits));
  EXPECT_EQ(std::string(digits.Digits, digits.Count), "142857142857143");
  EXPECT_EQ(digits.Point, -1);
  ASSERT_TRUE(FifteenDigitsExact(999.9999999999999, digits));  // carries into a new digit
  EXPECT_EQ(std::string(digits.Digits, digits.Count), "1");
  EXPECT_EQ(digits.Point, 4);
  EXPECT_FALSE(FifteenDigitsExact(99999999999999.95, digits));  // within a unit of a midpoint
  EXPECT_FALSE(FifteenDigitsExact(9.99e-6, digits));
  EXPECT_FALSE(FifteenDigitsExact(1e14 + 0.5, digits));
  EXPECT_FALSE(FifteenDigitsExact(1.000000000000005, digits));  // a fifteen-digit midpoint
}

}  // namespace
}  // namespace ombrelle
