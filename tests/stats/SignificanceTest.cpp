#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "stats/Significance.h"

using namespace ombrelle;

TEST(TCritical95, TableAndCurvesMeetAtTheirBoundaries) {
  struct Case {
    int df;
    double expected;
  };
  const Case cases[] = {
      {0, 0},
      {1, 12.7061503},
      {2, 4.302655725},
      {7, 2.36462256},
      {10, 2.228139238},
      {11, std::log(11.0) * -0.151 + 2.5454},
      {18, std::log(18.0) * -0.151 + 2.5454},
      {30, std::log(30.0) * -0.151 + 2.5454},
      {31, std::log(31.0) * -0.0443 + 2.1843},
      {100, std::log(100.0) * -0.0443 + 2.1843},
      {101, std::log(101.0) * -0.0122 + 2.0305},
      {499, std::log(499.0) * -0.0122 + 2.0305},
      {500, 1.96},
      {100000, 1.96},
  };
  for (const Case& c : cases) EXPECT_EQ(TCritical95(c.df), c.expected) << c.df;
  EXPECT_NEAR(TCritical95(18), 2.109, 5e-4);
  EXPECT_NEAR(TCritical95(499), 1.9547, 5e-5);
}

TEST(CorrelationIsSignificant, TwoSidedTestAtFivePercent) {
  struct Case {
    double r;
    int n;
    bool significant;
  };
  const Case cases[] = {
      {0.999, 3, true},  // t = 22.3 against 12.706
      {0.9, 3, false},   // t = 2.06
      {1.0, 3, true},
      {-1.0, 3, true},
      {1.0000001, 50, false},
      {0.5, 20, true},  // t = 2.45 against 2.109
      {-0.5, 20, true},
      {0.4, 20, false},
      {0.99, 2, false},
      {0.1, 500, true},  // t = 2.24 against 1.96
      {std::numeric_limits<double>::quiet_NaN(), 10, false},
  };
  for (const Case& c : cases)
    EXPECT_EQ(CorrelationIsSignificant(c.r, c.n), c.significant) << c.r << " " << c.n;
}

TEST(RegressionSlopePattern, TwoDecimalsFromOneTenthUp) {
  const std::pair<double, std::string> cases[] = {
      {0, "0"},       {0.1, "0.00"},        {-0.25, "0.00"},
      {12.5, "0.00"}, {0.05, "0.########"}, {-0.001, "0.########"},
  };
  for (const auto& [b, pattern] : cases) EXPECT_EQ(RegressionSlopePattern(b), pattern) << b;
  EXPECT_EQ(std::string(kRegressionConstantPattern), "0.00");
}
