// The raw number of the XML export, now served by the shortest digits where
// they are no more than fifteen, against the road that always rounded to
// fifteen digits: the same bytes for any bit pattern of a double.

#include <cfloat>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/XmlNumberReference.h"
#include "core/XmlText.h"
#include "support/FormatNum.h"
#include "support/NumberChars.h"

namespace ombrelle {
namespace {

std::string Raw(double value) {
  char text[kXmlNumberMaxBytes];
  return std::string(text, XmlNumber(value, text));
}

std::string RawBefore(double value) {
  char text[kXmlNumberMaxBytes];
  return std::string(text, reference::XmlNumber(value, text));
}

TEST(XmlNumberRoad, SameBytesAsTheFifteenDigitRoad) {
  for (double value : {0.5,
                       -0.5,
                       1e20,
                       -1e20,
                       1.5e-5,
                       0.1 + 0.2,
                       1.0 / 3,
                       9.999999999999999e14,
                       1e15 + 0.5,
                       123456789012345.6,
                       0.30000000000000004,
                       9.9999999999999995e-5,
                       DBL_MAX,
                       DBL_MIN,
                       5e-324,
                       -5e-324,
                       2.2250738585072009e-308,
                       std::nextafter(DBL_MIN, 0.0),
                       std::numeric_limits<double>::quiet_NaN(),
                       std::numeric_limits<double>::infinity()}) {
    ASSERT_EQ(Raw(value), RawBefore(value)) << value;
  }
  std::mt19937_64 random(26);
  std::uniform_int_distribution<int> cents(-10000000, 10000000);
  for (int i = 0; i < 200000; ++i) {
    const uint64_t bits = random();
    double any = 0;
    std::memcpy(&any, &bits, sizeof any);
    ASSERT_EQ(Raw(any), RawBefore(any)) << bits;
    const double fraction = cents(random) / (i % 3 == 0 ? 100.0 : 7.0);
    ASSERT_EQ(Raw(fraction), RawBefore(fraction)) << fraction;
  }
}

// Values whose shortest digits are sixteen ending in 5 (a fifteen-digit
// midpoint), or fifteen nines and more that carry into a new digit.
TEST(XmlNumberRoad, MidpointsAndCarriesAsTheFifteenDigitRoad) {
  std::mt19937_64 random(2626);
  std::uniform_int_distribution<long long> fifteen(100000000000000LL, 999999999999999LL);
  std::uniform_int_distribution<int> exponents(-30, 30);
  int midpoints = 0;
  for (int i = 0; i < 100000; ++i) {
    const std::string text = std::to_string(fifteen(random)) + (i % 2 ? "5" : "95") + "e" +
                             std::to_string(exponents(random));
    const double value = std::strtod(text.c_str(), nullptr);
    DecimalDigits digits;
    ShortestDigits(value, digits);
    midpoints += digits.Count == 16 && digits.Digits[15] == '5';
    ASSERT_EQ(Raw(value), RawBefore(value)) << text;
    ASSERT_EQ(Raw(-value), RawBefore(-value)) << text;
  }
  EXPECT_GT(midpoints, 10000);
  for (const char* text : {"9.999999999999995", "9.9999999999999951e10", "99999999999999.95",
                           ".99999999999999949", "9.9999999999999996e-5", "9.99999999999999e300"}) {
    const double value = std::strtod(text, nullptr);
    ASSERT_EQ(Raw(value), RawBefore(value)) << text;
  }
}

// A value line against its pieces: the display text of the format and the
// raw form of the fifteen-digit road, for every format and every kind of value.
TEST(XmlNumberRoad, ValueLineIsItsPieces) {
  std::vector<double> values = {0.0,
                                -0.0,
                                999,
                                1000,
                                999999,
                                1e6,
                                -1000,
                                -1e15 + 1,
                                -1e15,
                                1e15,
                                0.5,
                                -0.5,
                                999.5,
                                999999.5,
                                1.0 / 3,
                                2.0 / 3 * 1e5,
                                45123.25,
                                std::numeric_limits<double>::quiet_NaN(),
                                std::numeric_limits<double>::infinity(),
                                -std::numeric_limits<double>::infinity()};
  std::mt19937_64 random(2627);
  std::uniform_int_distribution<long long> wholes(-2000000, 2000000);
  for (int i = 0; i < 3000; ++i) {
    values.push_back(static_cast<double>(wholes(random)) / (i % 4 == 0 ? 1 : i % 4 == 1 ? 8 : 7));
    const uint64_t bits = random();
    double any = 0;
    std::memcpy(&any, &bits, sizeof any);
    values.push_back(any);
  }
  char line[kXmlValueLineMax];
  char display[kNumberCharsMax];
  for (int format = -1; format <= 12; ++format) {
    for (const double value : values) {
      const int n = XmlValueLine(format, value, line);
      const int d = FormatMetricChars(format, value, display);
      if (d < 0) {
        ASSERT_EQ(n, -1);
        continue;
      }
      const std::string expected = "   <value display='" + std::string(display, d) + "'>" +
                                   RawBefore(value) + "</value>\r\n";
      ASSERT_EQ(std::string(line, n), expected) << format << " " << value;
    }
  }
}

}  // namespace
}  // namespace ombrelle
