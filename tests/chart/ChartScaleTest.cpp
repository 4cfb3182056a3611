#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "chart/ChartScale.h"
#include "support/DateValue.h"
#include "support/FormatNum.h"

using namespace ombrelle;

TEST(NiceStep, StepsAndDecimalsFromTheOneTwoFiveFamily) {
  struct Case {
    int count;
    double low, high, step;
    int decimals;
  };
  const Case cases[] = {
      {5, 0, 5, 1, 0},        // raw 1: m = 1
      {5, 0, 1, 0.2, 1},      // raw 0.2: e = 0, m = 2
      {5, 0, 37, 10, 0},      // raw 7.4: m = 7 -> 10
      {5, 0, 12.5, 2, 0},     // raw 2.5: m rounds half to even, 2
      {5, 0, 17.5, 5, 0},     // raw 3.5: m rounds to 4 -> 5
      {5, 0, 27.5, 10, 0},    // raw 5.5: m = 6 -> 10
      {5, 0, 1.25, 0.2, 1},   // raw 0.25: m 2.5 -> 2
      {10, 1, 101, 10, 0},    // raw 10: e = 2, m = 1
      {5, -7, 0, 1, 0},       // raw 1.4: m = 1
      {7, 0, 0.07, 0.01, 2},  // raw 0.01
      {5, 3, 3, 0, 0},        // equal ends
  };
  for (const Case& c : cases) {
    std::int16_t decimals = -1;
    const double step = NiceStep(c.count, c.low, c.high, decimals);
    EXPECT_DOUBLE_EQ(step, c.step) << c.low << ".." << c.high;
    EXPECT_EQ(decimals, c.decimals) << c.low << ".." << c.high;
  }
}

TEST(DateStep, EveryRowOfTheTable) {
  struct Case {
    double span, step;
  };
  const Case cases[] = {
      {0, 0},                 // equal ends
      {5 * 800, 2 * 365.25},  // raw 800: two years
      {5 * 366, 365.25},      // raw 366
      {5 * 365, 365.25 / 2},  // raw 365: half a year
      {5 * 180, 365.25 / 2},  // raw 180
      {5 * 179, 365.25 / 4},  // quarter
      {5 * 90, 365.25 / 4},   // raw 90
      {5 * 89, 3 * 30.4375},  // raw 89: three months
      {5 * 30, 30.4375},      // raw 30: one month
      {5 * 29, 14},           // two weeks
      {5 * 14, 14},
      {5 * 13, 7},
      {5 * 7, 7},
      {5 * 6.6, 7},  // below 7: whole days, 6.6 -> 7
      {5 * 2.5, 2},  // half to even
      {5 * 0.2, 1},  // 0 becomes 1
  };
  for (const Case& c : cases)
    EXPECT_DOUBLE_EQ(DateStep(5, 40000, 40000 + c.span), c.step) << c.span;
}

TEST(RoundDateDown, YearQuarterMonthOrUnchanged) {
  const double d = DateSerial(2023, 8, 17) + 0.25;
  EXPECT_EQ(RoundDateDown(d, 365.25), DateSerial(2023, 1, 1));
  EXPECT_EQ(RoundDateDown(d, 365), DateSerial(2023, 1, 1));
  EXPECT_EQ(RoundDateDown(d, 182.625), DateSerial(2023, 7, 1));
  EXPECT_EQ(RoundDateDown(d, 90), DateSerial(2023, 7, 1));
  EXPECT_EQ(RoundDateDown(DateSerial(2023, 3, 31), 91.3125), DateSerial(2023, 1, 1));
  EXPECT_EQ(RoundDateDown(d, 30.4375), DateSerial(2023, 8, 1));
  EXPECT_EQ(RoundDateDown(d, 30), DateSerial(2023, 8, 1));
  EXPECT_EQ(RoundDateDown(d, 29.9), d);
  EXPECT_EQ(RoundDateDown(d, 14), d);
}

TEST(SetScale, CasesOfTheScale) {
  struct Case {
    double yHigh, yLow;
    double yMin, yMax, yStep;
    int ySteps;
  };
  const Case cases[] = {
      {5, 5, 0, 5, 1, 5},                               // all equal and positive
      {0, 0, 0, 1, 0.2, 5},                             // all zero: YMax = YLow + 1
      {37, 3, 0, 40, 10, 4},                            // 3 x 10 < 37, so one more step
      {20, -7, -10, 20, 5, 6},                          // negative low end rounds down to the step
      {4, -7, -8, 4, 2, 6},                             // raw 2.2: step 2, -7 goes down to -8
      {-2, -7, -7, 0, 1, 7},                            // all negative: the top becomes 0
      {100, 0, 0, 100, 20, 5}, {12.5, 0, 0, 14, 2, 7},  // raw 2.5 -> 2: half to even
  };
  for (const Case& c : cases) {
    ChartScale s;
    s.SetScale(10, c.yHigh, 1, c.yLow);
    EXPECT_DOUBLE_EQ(s.YMin, c.yMin) << c.yHigh << " " << c.yLow;
    EXPECT_DOUBLE_EQ(s.YMax, c.yMax) << c.yHigh << " " << c.yLow;
    EXPECT_DOUBLE_EQ(s.YStep, c.yStep) << c.yHigh << " " << c.yLow;
    EXPECT_EQ(s.YSteps, c.ySteps) << c.yHigh << " " << c.yLow;
  }
}

TEST(SetScale, XRangeIsOrderedAndDatesKeepTheirLowEnd) {
  ChartScale s;
  s.SetScale(1, 10, 9, 0);  // XLow above XHigh
  EXPECT_EQ(s.XMin, 1);
  EXPECT_EQ(s.XMax, 1);
  EXPECT_EQ(s.XStep, 0);

  ChartScale d;
  d.YFormat = kAxisDate;
  const double low = DateSerial(2020, 5, 20), high = DateSerial(2024, 2, 3);
  d.SetScale(10, high, 1, low);
  EXPECT_DOUBLE_EQ(d.YStep, 365.25 / 2);      // raw 270.8 days: half a year
  EXPECT_EQ(d.YMin, DateSerial(2020, 4, 1));  // start of the quarter
  EXPECT_GE(d.YMax, high);
}

TEST(FormatAxisValue, ShortFormsPercentAndDecimals) {
  struct Case {
    int kind, decimals;
    double value;
    bool multiply;
    const char* text;
  };
  const Case cases[] = {
      {0, 0, 12000, false, "12k"},
      {0, 0, 12500, false, "12500"},
      {0, 0, 10000, false, "10k"},
      {0, 0, 9000, false, "9000"},
      {0, 0, 20000000, false, "20M"},
      {0, 0, 10500000, false, "10500k"},
      {0, 0, 5000000, false, "5000k"},
      {0, 0, -12000, false, "-12000"},
      {0, 0, -20000000, false, "-20000000"},
      {0, 0, 2.5, false, "3"},
      {0, 0, 0, false, "0"},
      {0, 1, 0.2, false, "0.2"},
      {0, 2, -0.05, false, "-0.05"},
      {1, 2, 0.25, false, "25%"},
      {1, 3, 0.125, false, "12.5%"},
      {1, 0, 0.5, false, "50%"},
      {1, 2, 0.25, true, "25"},
  };
  for (const Case& c : cases) {
    ChartScale s;
    s.YFormat = c.kind;
    s.YDecimals = static_cast<std::int16_t>(c.decimals);
    EXPECT_EQ(s.FormatAxisValue(c.value, false, c.multiply).toStdString(), c.text) << c.value;
    ChartScale x;
    x.XFormat = c.kind;
    x.XDecimals = static_cast<std::int16_t>(c.decimals);
    EXPECT_EQ(x.FormatAxisValue(c.value, true, c.multiply).toStdString(), c.text) << c.value;
  }
  ChartScale d;
  d.YFormat = kAxisDate;
  const double day = DateSerial(2024, 3, 9);
  EXPECT_EQ(d.FormatAxisValue(day), FormatDateShort(day));
}

// On random data the Y axis holds zero, every step comes from the 1/2/5/10 family, the
// steps add up to YMax exactly and YMax covers the data.
TEST(SetScale, PropertiesOnRandomData) {
  std::mt19937_64 random(20261123);
  std::uniform_real_distribution<double> exponent(-4, 9), unit(0, 1);
  for (int n = 0; n < 20000; ++n) {
    const double scale = std::pow(10.0, exponent(random));
    double a = (unit(random) - 0.3) * scale, b = (unit(random) - 0.3) * scale;
    if (n % 10 == 0) b = a;  // equal ends now and then
    const double low = std::min(a, b), high = std::max(a, b);
    ChartScale s;
    s.SetScale(50, high, 1, low);
    ASSERT_LE(s.YMin, 0) << low << " " << high;
    ASSERT_GE(s.YMax, 0) << low << " " << high;
    ASSERT_GE(s.YMax, high);
    ASSERT_LE(s.YMin, low);
    ASSERT_GT(s.YStep, 0);
    const double e = std::floor(std::log10(s.YStep));
    const double mantissa = s.YStep / std::pow(10.0, e);
    const bool family = std::fabs(mantissa - 1) < 1e-9 || std::fabs(mantissa - 2) < 1e-9 ||
                        std::fabs(mantissa - 5) < 1e-9 || std::fabs(mantissa - 10) < 1e-9;
    ASSERT_TRUE(family) << s.YStep;
    ASSERT_GE(s.YSteps * s.YStep + s.YMin, s.YMax);
    ASSERT_LE(s.YSteps, 11);

    ChartScale d;  // dates: the low end is the start of a period at or below the data
    d.YFormat = kAxisDate;
    const double first = 30000 + 20000 * unit(random), last = first + 4000 * unit(random);
    d.SetScale(50, last, 1, first);
    ASSERT_LE(d.YMin, first);
    ASSERT_GT(d.YMin, first - 366);
    ASSERT_GE(d.YMax, last);
  }
}
