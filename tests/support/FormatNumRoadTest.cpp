// The byte road of the number texts against the QString road it replaced:
// the same text, byte for byte, for every format on many values, edge values
// among them (negatives, zero, tiny, huge, subnormal, not finite, halves).

#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <QLocale>

#include <gtest/gtest.h>

#include "support/FormatNum.h"
#include "support/FormatNumReference.h"
#include "support/NumberChars.h"

namespace ombrelle {
namespace {

std::vector<double> ManyValues() {
  std::vector<double> values = {0.0,
                                -0.0,
                                0.5,
                                -0.5,
                                1,
                                -1,
                                2.675,
                                0.015,
                                -0.01,
                                0.0123,
                                0.02,
                                0.019999,
                                0.005,
                                0.125,
                                999,
                                999.5,
                                999.9999,
                                1000,
                                1500,
                                999999.4,
                                999999.5,
                                1e6,
                                1500000,
                                999999999.6,
                                1e9,
                                2e9,
                                1e15,
                                1e15 - 1,
                                123456789012345.6,
                                9007199254740993.0,
                                1e20,
                                -1e20,
                                1.5e-5,
                                1e-4,
                                9.99999999999999e-5,
                                0.1 + 0.2,
                                1.0 / 3,
                                -2.0 / 3,
                                45283,
                                45283.75,
                                -45283.25,
                                3e6,
                                -3e6,
                                1e300,
                                -1e300,
                                DBL_MAX,
                                -DBL_MAX,
                                DBL_MIN,
                                5e-324,
                                -5e-324,
                                2.2250738585072009e-308,
                                std::numeric_limits<double>::quiet_NaN(),
                                std::numeric_limits<double>::infinity(),
                                -std::numeric_limits<double>::infinity()};
  for (int p = -30; p <= 30; ++p) {
    const double power = std::pow(10.0, p);
    for (double v : {power, -power, power * 0.5, power * 9.995, std::nextafter(power, 0.0),
                     std::nextafter(power, 1e300)})
      values.push_back(v);
  }
  std::mt19937_64 random(26);
  std::uniform_int_distribution<int> whole(-2000000, 2000000000);
  std::uniform_int_distribution<int> cents(-100000, 100000);
  std::uniform_real_distribution<double> fraction(-3, 3);
  std::uniform_real_distribution<double> exponent(-12, 12);
  for (int i = 0; i < 2500; ++i) {
    values.push_back(whole(random));
    values.push_back(cents(random) / 100.0);
    values.push_back(cents(random) / 1000.0 + 0.0005);  // halves at the third decimal
    values.push_back(fraction(random));
    values.push_back(std::pow(10.0, exponent(random)) * (i % 2 ? 1 : -1));
    // Any bit pattern: subnormals, huge values, NaNs with payloads.
    const uint64_t bits = random();
    double any = 0;
    std::memcpy(&any, &bits, sizeof any);
    values.push_back(any);
  }
  return values;
}

TEST(FormatNumRoad, EveryFormatWritesWhatTheQStringRoadWrote) {
  int compared = 0;
  for (const double value : ManyValues()) {
    for (int format = 0; format <= 11; ++format) {
      SCOPED_TRACE(testing::Message() << "format " << format << " value "
                                      << QString::number(value, 'g', 17).toStdString());
      const QString expected = reference::FormatMetric(format, value);
      ASSERT_EQ(FormatMetric(format, value), expected);
      char text[kNumberCharsMax];
      // Only a date may be left to the locale.
      const int n = FormatMetricChars(format, value, text);
      ASSERT_TRUE(n >= 0 || format == 9);
      if (n >= 0) {
        ASSERT_EQ(QString::fromLatin1(text, n), expected);
      }
      ASSERT_EQ(FormatMetricPlain(format, value), reference::FormatMetricPlain(format, value));
      ++compared;
    }
    ASSERT_EQ(GeneralNumber(value), reference::GeneralNumber(value));
    ASSERT_EQ(FormatPercent(value), reference::FormatPercent(value));
    for (int decimals : {-1, 0, 1, 2, 3, 6, 15, 17, 330, 401, 450}) {
      ASSERT_EQ(FormatFixed(value, decimals), reference::FormatFixed(value, decimals)) << decimals;
    }
  }
  EXPECT_GT(compared, 180000);
}

TEST(FormatNumRoad, ShortDatesOfSeveralLocalesWriteWhatTheLocaleWrote) {
  const QLocale saved;
  for (const QLocale& locale :
       {QLocale::c(), QLocale(QLocale::English, QLocale::UnitedStates),
        QLocale(QLocale::German, QLocale::Germany), QLocale(QLocale::Korean, QLocale::SouthKorea),
        QLocale(QLocale::Arabic, QLocale::Egypt), QLocale(QLocale::Bulgarian, QLocale::Bulgaria)}) {
    QLocale::setDefault(locale);
    ResetDateShortPattern();
    reference::ResetDateShortPattern();
    for (double date : {0.0, 1.0, 45283.0, 45283.75, -1.25, -700000.0, 2958465.0, 2999999.0, 3e6,
                        9.5, 40000.5, 44927.0}) {
      SCOPED_TRACE(testing::Message() << locale.name().toStdString() << " " << date);
      const QString expected = reference::FormatMetric(9, date);
      EXPECT_EQ(FormatMetric(9, date), expected);
      char text[kNumberCharsMax];
      const int n = FormatMetricChars(9, date, text);
      // A pattern with more than digits and separators is left to the locale.
      if (n >= 0) {
        EXPECT_EQ(QString::fromLatin1(text, n), expected);
      }
    }
  }
  QLocale::setDefault(saved);
  ResetDateShortPattern();
}

TEST(FormatNumRoad, ShortDatesWithAPlainPatternTakeTheByteRoad) {
  QLocale::setDefault(QLocale::c());
  ResetDateShortPattern();
  char text[kNumberCharsMax];
  const int n = FormatMetricChars(9, 45283.5, text);
  ASSERT_EQ(n, 10);
  EXPECT_EQ(std::string(text, n), "2023-12-23");
}

}  // namespace
}  // namespace ombrelle

namespace ombrelle {
namespace {

TEST(FormatNumRoad, IntegerCharsWritesWhatToCharsWrites) {
  std::vector<long long> values = {0, std::numeric_limits<long long>::min(),
                                   std::numeric_limits<long long>::max()};
  long long power = 1;  // 10^0 to 10^18, the last power a long long holds
  for (int exponent = 0; exponent <= 18; ++exponent) {
    if (exponent > 0) power *= 10;
    for (long long near : {power - 1, power, power + 1}) {
      values.push_back(near);
      values.push_back(-near);
    }
  }
  std::mt19937_64 random(261);
  for (int i = 0; i < 20000; ++i) values.push_back(static_cast<long long>(random()) >> (i % 60));
  for (const long long value : values) {
    char ours[24], theirs[24];
    const int n = IntegerChars(value, ours);
    const char* end = std::to_chars(theirs, theirs + sizeof theirs, value).ptr;
    ASSERT_EQ(std::string(ours, n), std::string(theirs, static_cast<size_t>(end - theirs)))
        << value;
  }
  char text[24];
  EXPECT_EQ(std::string(text, UnsignedChars(18446744073709551615ULL, text)),
            "18446744073709551615");
}

}  // namespace
}  // namespace ombrelle
