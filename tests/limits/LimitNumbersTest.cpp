#include <gtest/gtest.h>

#include "limits/LimitNumbers.h"

namespace ombrelle {
namespace {

TEST(LimitNumberText, GeneralFormWithoutLeadingZero) {
  const struct {
    double value;
    const char* text;
  } cases[] = {
      {0.2, ".2"},
      {-0.5, "-.5"},
      {10, "10"},
      {0, "0"},
      {-0.0, "0"},
      {0.99, ".99"},
      {66, "66"},
      {1.5, "1.5"},
      {1e-5, "1E-05"},
      {0.0001, ".0001"},
      {1e15, "1E+15"},
      {123456789012345, "123456789012345"},
      {1.0 / 3, ".333333333333333"},
  };
  for (const auto& c : cases) EXPECT_EQ(LimitNumberText(c.value).toStdString(), c.text) << c.value;
}

TEST(ParseLimitNumber, StopsAtFirstUnusableCharacter) {
  const struct {
    const char* text;
    double value;
  } cases[] = {
      {"1.0", 1.0}, {".2", 0.2},    {"-.5", -0.5}, {"  42abc", 42}, {"abc", 0},
      {"", 0},      {"3.5.1", 3.5}, {"2E", 2},     {"1E-05", 1e-5}, {"1e+3x", 1000},
      {"+7", 7},    {"-", 0},       {".", 0},      {"1e99999", 0},  {"2.0 beta", 2},
  };
  for (const auto& c : cases)
    EXPECT_DOUBLE_EQ(ParseLimitNumber(QString::fromUtf8(c.text)), c.value) << c.text;
}

TEST(ParseLimitNumber, ReadsWhatLimitNumberTextWrites) {
  for (double v : {0.2, -0.5, 1e-5, 1e15, 0.1 + 0.2, 12345.678, -3.0})
    EXPECT_DOUBLE_EQ(ParseLimitNumber(LimitNumberText(v)), v);
}

TEST(ToWholeNumber, RoundsHalvesToEvenAndClamps) {
  EXPECT_EQ(ToWholeNumber(2.5, -10, 10), 2);
  EXPECT_EQ(ToWholeNumber(3.5, -10, 10), 4);
  EXPECT_EQ(ToWholeNumber(-2.6, -10, 10), -3);
  EXPECT_EQ(ToWholeNumber(1e12, -10, 10), 10);
  EXPECT_EQ(ToWholeNumber(-1e12, -10, 10), -10);
}

}  // namespace
}  // namespace ombrelle
