#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <QDate>
#include <QLocale>
#include <QRegularExpression>

#include "support/FormatNum.h"

using namespace ombrelle;

namespace {

struct FormatCase {
  int format;
  double value;
  const char* cell;   // FormatMetric
  const char* plain;  // FormatMetricPlain
};

// Every format code at its boundaries. Code 9 (dates) depends on the locale's
// pattern and has its own tests.
const FormatCase kFormatCases[] = {
    // 0 automatic: whole values as code 1, others two decimals.
    {0, 3, "3", "3"},
    {0, 3.5, "3.50", "3.50"},
    {0, 0, "0", "0"},
    {0, -2, "-2", "-2"},
    {0, -2.5, "-2.50", "-2.50"},
    {0, 1500, "1,500", "1500"},
    {0, 1234567, "1235k", "1234567"},
    {0, 0.125, "0.13", "0.13"},
    {0, 2.675, "2.68", "2.68"},
    // 1 and 2: the short form of whole numbers.
    {1, 999, "999", "999"},
    {1, 999.9, "999", "1000"},
    {2, 999, "999", "999"},
    {2, 1000, "1,000", "1000"},
    {2, 1005, "1,005", "1005"},
    {2, 1234.5, "1,235", "1235"},
    {2, 12345, "12,345", "12345"},
    {2, 999999, "999,999", "999999"},
    {2, 999999.4, "999,999", "999999"},
    {2, 1000000, "1000k", "1000000"},
    {2, 1500000, "1500k", "1500000"},
    {2, 1000499, "1000k", "1000499"},
    {2, 999999999, "1000000k", "999999999"},
    {2, 1e9, "1000M", "1000000000"},
    {2, 2000000000, "2000M", "2000000000"},
    {2, 2.5e15, "2500000000M", "2500000000000000"},
    {1, 0, "0", "0"},
    {1, -5, "-5", "-5"},
    {1, -2.7, "-2", "-3"},
    {1, -0.4, "0", "0"},
    {1, -1500, "-1500", "-1500"},
    {2, -1e7, "-10000000", "-10000000"},
    // 3 to 5: percentages, two decimals below 0.02 in absolute value.
    {5, 0, "0%", "0%"},
    {5, -0.01, "-1.00%", "-1.00%"},
    {3, 0.015, "1.50%", "1.50%"},
    {4, 0.5, "50%", "50%"},
    {5, 0.0199, "1.99%", "1.99%"},
    {5, 0.02, "2%", "2%"},
    {5, -0.02, "-2%", "-2%"},
    {5, 0.125, "13%", "13%"},
    {5, -0.125, "-13%", "-13%"},
    {5, 1.234, "123%", "123%"},
    {5, 0.0001234, "0.01%", "0.0123%"},
    {5, 1.2e-9, "0.00%", "0.00000012%"},
    // 6 and 8: ratios; 7: averages.
    {6, 1.0 / 3, "0.33", "0.33"},
    {8, 2.675, "2.68", "2.68"},
    {8, -0.004, "0.00", "0.00"},
    {8, -0.005, "-0.01", "-0.01"},
    {6, 1e6, "1000000.00", "1000000.00"},
    {7, 2.25, "2.3", "2.3"},
    {7, -2.25, "-2.3", "-2.3"},
    {7, 0.04, "0.0", "0.0"},
    // 10: by size.
    {10, 0, "0.00", "0.00"},
    {10, 0.0123, "0.0123", "0.0123"},
    {10, -0.0123, "-0.0123", "-0.0123"},
    {10, 0.1, "0.10", "0.10"},
    {10, 0.5, "0.50", "0.50"},
    {10, 0.05, "0.0500", "0.0500"},
    {10, 0.001, "0.0010", "0.0010"},
    {10, 0.00012345, "0.000123", "0.000123"},
    {10, 0.000012345, "0.000012", "0.000012"},
    {10, 1.2e-7, "0.000000", "0.00000012"},
    {10, 1.5e-9, "0.000000", "0.0000000015"},
    {10, 5.5, "5.50", "5.50"},
    {10, 9.999, "10.00", "10.00"},
    {10, 10, "10", "10"},
    {10, 12345.6, "12,346", "12346"},
    {10, 2.5e6, "2500k", "2500000"},
    // Codes without a meaning: two decimals in the general form, plain the
    // general form as it stands.
    {11, 3.14159, "3.14", "3.14159"},
    {-1, 2.5, "2.5", "2.5"},
    {12, 1234.5678, "1234.57", "1234.5678"},
    {11, 0.001, "0", "0.001"},
    {11, 1e20, "1E+20", "1E+20"},
    {11, 1e-5, "0", "1E-05"},
    {99, 0.1 + 0.2, "0.3", "0.3"},
    {11, 123456789012345680.0, "1.23456789012346E+17", "1.23456789012346E+17"},
};

// The number formats must not follow the locale's decimal comma.
class FormatMetricUnderLocale : public ::testing::TestWithParam<QLocale::Language> {
 protected:
  void SetUp() override {
    m_saved = QLocale();
    QLocale::setDefault(QLocale(
        GetParam(), GetParam() == QLocale::German ? QLocale::Germany : QLocale::AnyTerritory));
  }
  void TearDown() override { QLocale::setDefault(m_saved); }

 private:
  QLocale m_saved;
};

}  // namespace

TEST_P(FormatMetricUnderLocale, EveryCodeAtItsBoundaries) {
  if (GetParam() == QLocale::German) {
    ASSERT_EQ(QLocale().decimalPoint(), ",");
  }
  for (const FormatCase& c : kFormatCases) {
    EXPECT_EQ(FormatMetric(c.format, c.value).toStdString(), c.cell)
        << "code " << c.format << " value " << c.value;
    EXPECT_EQ(FormatMetricPlain(c.format, c.value).toStdString(), c.plain)
        << "code " << c.format << " value " << c.value;
  }
}

TEST_P(FormatMetricUnderLocale, FixedAndGeneralFormsUseAPoint) {
  EXPECT_EQ(FormatFixed(1234.5678, 3), "1234.568");
  EXPECT_EQ(FormatFixed(1.005, 2), "1.01");
  EXPECT_EQ(FormatFixed(0.1, 5), "0.10000");
  EXPECT_EQ(FormatFixed(2.5, 0), "3");
  EXPECT_EQ(FormatFixed(-2.5, 0), "-3");
  EXPECT_EQ(FormatFixed(5, -1), "5");
  EXPECT_EQ(FormatFixed(-0.0001, 2), "0.00");
  EXPECT_EQ(FormatFixed(1e21, 1), "1000000000000000000000.0");
  EXPECT_EQ(FormatFixed(99.995, 2), "100.00");
  EXPECT_EQ(GeneralNumber(0.0001), "0.0001");
  EXPECT_EQ(GeneralNumber(-1.5e-7), "-1.5E-07");
  EXPECT_EQ(GeneralNumber(123456789012345.0), "123456789012345");
  EXPECT_EQ(GeneralNumber(1e15), "1E+15");
}

INSTANTIATE_TEST_SUITE_P(PointAndComma, FormatMetricUnderLocale,
                         ::testing::Values(QLocale::C, QLocale::German));

TEST(FormatMetric, ValuesThatAreNotFinite) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  for (int code = -1; code <= 11; ++code) {
    EXPECT_EQ(FormatMetric(code, nan), "NaN") << code;
    EXPECT_EQ(FormatMetricPlain(code, inf), "Inf") << code;
    EXPECT_EQ(FormatMetric(code, -inf), "-Inf") << code;
  }
}

TEST(OrderOfMagnitude, WholePartOfLog10RoundedDown) {
  const std::pair<double, int> cases[] = {
      {0, 0},     {1, 0},         {9.99, 0},
      {10, 1},    {999, 2},       {1000, 3},
      {0.1, -1},  {0.0123, -2},   {0.001, -3},
      {-1000, 3}, {1e-300, -300}, {1e300, 300},
      {1e-5, -5}, {99999.999, 4}, {std::numeric_limits<double>::quiet_NaN(), 0}};
  for (const auto& [value, magnitude] : cases)
    EXPECT_EQ(OrderOfMagnitude(value), magnitude) << value;
}

TEST(FormatDateShort, FourDigitYearFromLocalePattern) {
  const QLocale saved;
  struct Case {
    QLocale locale;
    const char* expected;
  };
  const Case cases[] = {
      {QLocale::c(), "1999-12-31"},
      {QLocale(QLocale::English, QLocale::UnitedStates), "12/31/1999"},
      {QLocale(QLocale::German, QLocale::Germany), "31.12.1999"},
  };
  for (const Case& c : cases) {
    QLocale::setDefault(c.locale);
    ResetDateShortPattern();
    EXPECT_EQ(FormatDateShort(36525).toStdString(), c.expected) << c.locale.name().toStdString();
    EXPECT_EQ(FormatMetric(9, 36525.75).toStdString(), c.expected);
  }
  // The pattern is kept once read.
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  ResetDateShortPattern();
  EXPECT_EQ(FormatDateShort(2), "01.01.1900");
  QLocale::setDefault(QLocale::c());
  EXPECT_EQ(FormatDateShort(2), "01.01.1900");
  ResetDateShortPattern();
  EXPECT_EQ(FormatDateShort(0), "1899-12-30");
  EXPECT_EQ(FormatDateShort(-1.5), "1899-12-29");
  QLocale::setDefault(saved);
  ResetDateShortPattern();
}

TEST(FormatMetricPlain, DateInTheLocalesShortFormat) {
  const QLocale saved;
  QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
  EXPECT_EQ(FormatMetricPlain(9, 36525),
            QLocale().toString(QDate(1999, 12, 31), QLocale::ShortFormat));
  QLocale::setDefault(saved);
}

TEST(VersionText, MajorMinorAndRevision) {
  const QString shortText = VersionText(false);
  const QString fullText = VersionText(true);
  EXPECT_TRUE(QRegularExpression(QStringLiteral("^\\d+\\.\\d+$")).match(shortText).hasMatch())
      << shortText.toStdString();
  EXPECT_TRUE(
      QRegularExpression(QStringLiteral("^\\d+\\.\\d+\\.\\d+$")).match(fullText).hasMatch());
  EXPECT_TRUE(fullText.startsWith(shortText + "."));
}
