#include <gtest/gtest.h>

#include <vector>

#include "limits/MetricLimits.h"
#include "stats/CStats.h"

namespace ombrelle {
namespace {

CStats Series(const std::vector<double>& values) {
  CStats stats;
  stats.Init(static_cast<std::int32_t>(values.size()));
  for (double v : values) stats.AddValue(v);
  stats.CalcStats();
  return stats;
}

// One rule of each kind, and one of a kind that does not exist.
MetricLimits JudgingSet() {
  MetricLimits limits;
  limits.SetRules(QStringLiteral("Judge"),
                  {{4120, 0, 5, 0},
                   {4012, 2, 9, 0},
                   {3001, 1, 3, 10},
                   {3002, 3, 0, 0},
                   {4001, 4, 0, 0},
                   {4140, 7, 0, 0},
                   {4120, 2, 1000, 0}});  // never seen: the first rule wins
  return limits;
}

// Twelve values: Q1 is 3 and Q3 is 10, so the outlier fences are 1 (clamped
// from -7.5) and 20.5, the extreme ones 1 (clamped) and 31.
const std::vector<double> kTwelve = {7, 1, 2, 3, 100, 4, 5, 6, 25, 8, 9, 10};
// Nine values: too few for outliers, the fences are Min and Max.
const std::vector<double> kNine = {1, 2, 3, 4, 5, 6, 7, 8, 1000};

TEST(MetricLimitsJudge, CountsOutsideLimits) {
  const MetricLimits limits = JudgingSet();
  const struct {
    MetricId metric;
    std::int32_t twelve;
    std::int32_t nine;
  } cases[] = {
      {4120, 7, 4},  // above 5: 6..10, 25, 100 / 6, 7, 8, 1000
      {4012, 8, 8},  // below 9: 1..8
      {3001, 4, 3},  // outside [3, 10]: 1, 2, 25, 100 / 1, 2, 1000
      {3002, 2, 0},  // beyond 20.5: 25, 100; none in a short series
      {4001, 1, 0},  // beyond 31: 100
      {4140, 0, 0},  // unknown kind of rule
      {1009, 0, 0},  // no rule
  };
  for (const auto& c : cases) {
    CStats twelve = Series(kTwelve);
    CStats nine = Series(kNine);
    EXPECT_EQ(limits.CalcOutsideLimits(twelve, c.metric), c.twelve) << c.metric;
    EXPECT_EQ(limits.CalcOutsideLimits(nine, c.metric), c.nine) << c.metric;
  }
}

TEST(MetricLimitsJudge, IsInsideLimitsByKindOfRule) {
  const MetricLimits limits = JudgingSet();
  CStats twelve = Series(kTwelve);
  CStats nine = Series(kNine);
  const struct {
    MetricId metric;
    double value;
    bool insideTwelve;
    bool insideNine;
  } cases[] = {
      {4120, 5, true, true},      {4120, 5.01, false, false}, {4012, 9, true, true},
      {4012, 8.99, false, false}, {3001, 3, true, true},      {3001, 10, true, true},
      {3001, 10.5, false, false}, {3001, 2, false, false},    {3002, 20.5, true, true},
      {3002, 21, false, true},    {3002, 0.5, false, true},   {3002, 5000, false, true},
      {4001, 31, true, true},     {4001, 31.5, false, true},  {4001, 25, true, true},
      {4140, -1e9, true, true},   {1009, 1e9, true, true},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(limits.IsInsideLimits(c.metric, c.value, twelve), c.insideTwelve)
        << c.metric << " " << c.value;
    EXPECT_EQ(limits.IsInsideLimits(c.metric, c.value, nine), c.insideNine)
        << c.metric << " " << c.value;
  }
}

TEST(MetricLimitsJudge, EmptySeriesHasNothingOutside) {
  MetricLimits limits;
  ASSERT_TRUE(limits.Load(LimitSet::Outliers));
  CStats empty = Series({});
  EXPECT_EQ(limits.CalcOutsideLimits(empty, 4120), 0);
  EXPECT_TRUE(limits.IsInsideLimits(4120, 1e9, empty));
}

}  // namespace
}  // namespace ombrelle
