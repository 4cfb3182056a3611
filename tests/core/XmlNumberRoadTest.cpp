// The raw number of the XML export, now served by the shortest digits where
// they are no more than fifteen, against the road that always rounded to
// fifteen digits: the same bytes for any bit pattern of a double.

#include <cfloat>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "core/XmlNumberReference.h"
#include "core/XmlText.h"

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

}  // namespace
}  // namespace ombrelle
