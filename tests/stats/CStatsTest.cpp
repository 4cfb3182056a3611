#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "stats/CStats.h"

using namespace ombrelle;

namespace {

CStats MakeSeries(const std::vector<double>& values, int capacity = -1) {
  CStats s;
  s.Init(capacity < 0 ? static_cast<std::int32_t>(values.size()) : capacity);
  for (double v : values) s.AddValue(v);
  s.CalcStats();
  return s;
}

// A defined-order series of `rows` rows; values[i] is {row, value}, added in rising row order.
CStats MakeDefined(int rows, const std::vector<std::pair<int, double>>& values) {
  CStats s;
  s.Init(rows, true);
  for (auto [row, value] : values) s.AddValueIndex(value, row);
  s.CalcStats();
  return s;
}

std::vector<double> Read(const CStats& s, int from, int to) {
  std::vector<double> out;
  for (int i = from; i <= to; ++i) out.push_back(s.ValueAtIndex(i));
  return out;
}

std::vector<int> Rows(const CStats& s, int from, int to) {
  std::vector<int> out;
  for (int i = from; i <= to; ++i) out.push_back(s.GetOriginalIndex(i));
  return out;
}

}  // namespace

TEST(CStatsMoments, SmallSeriesExactly) {
  // 2 4 4 4 5 5 7 9: mean 5, deviations -3 -1 -1 -1 0 0 2 4, sum of squares 32 over 8 -> 2.
  CStats s = MakeSeries({2, 4, 4, 4, 5, 5, 7, 9});
  EXPECT_EQ(s.count(), 8);
  EXPECT_EQ(s.Sum, 40);
  EXPECT_EQ(s.Mean, 5);
  EXPECT_EQ(s.StdDev, 2);  // population deviation, divisor n
  EXPECT_EQ(s.Min, 2);
  EXPECT_EQ(s.Max, 9);
  EXPECT_EQ(s.Skew, 42.0 / 8 / 8);            // cubes sum to 42
  EXPECT_EQ(s.Kurtosis, 356.0 / 16 / 8 - 3);  // fourth powers sum to 356
  EXPECT_EQ(s.Median(), 4.5);

  CStats quick;
  quick.Init(3);
  for (double v : {1.0, 2.0, 6.0}) quick.AddValue(v);
  quick.Skew = 7;
  quick.CalcStatsQuick();  // leaves skew and kurtosis alone
  EXPECT_EQ(quick.Sum, 9);
  EXPECT_EQ(quick.Mean, 3);
  EXPECT_DOUBLE_EQ(quick.StdDev, std::sqrt(14.0 / 3));
  EXPECT_EQ(quick.Skew, 7);
}

TEST(CStatsMoments, DegenerateSeries) {
  CStats empty = MakeSeries({});
  for (double v :
       {empty.Sum, empty.Mean, empty.StdDev, empty.Min, empty.Max, empty.Skew, empty.Kurtosis})
    EXPECT_EQ(v, 0);

  CStats equal = MakeSeries({3.5, 3.5, 3.5, 3.5, 3.5, 3.5, 3.5});
  EXPECT_EQ(equal.StdDev, 0);
  EXPECT_EQ(equal.Skew, 0);
  EXPECT_EQ(equal.Kurtosis, 0);
  for (int k = 1; k <= 7; ++k) EXPECT_EQ(equal.ValueAtPosition(k), 3.5);

  // Past 1.1e77 the fourth powers would overflow: no skew or kurtosis then.
  CStats huge = MakeSeries({-3e77, 3e77});
  EXPECT_DOUBLE_EQ(huge.StdDev, 3e77);
  EXPECT_EQ(huge.Skew, 0);
  EXPECT_EQ(huge.Kurtosis, 0);
  CStats large = MakeSeries({-5e76, 5e76});
  EXPECT_EQ(large.Skew, 0);
  EXPECT_DOUBLE_EQ(large.Kurtosis, -2);
}

TEST(CStatsStorage, InitResetsAndGrowthDoubles) {
  CStats s;
  EXPECT_EQ(s.Capacity(), 0);
  s.Init(2);
  s.DataType = 1;
  s.TheorMax = true;
  s.AddValue(1);
  s.AddValue(2);
  s.AddValue(3);  // third value: capacity 2 * 3
  EXPECT_EQ(s.Capacity(), 6);
  EXPECT_EQ(s.count(), 3);
  EXPECT_EQ(s.ValueAtIndex(5), 0);  // new slots read as 0
  s.AddValueQuick(4);
  s.Init(0);
  EXPECT_EQ(s.count(), 0);
  EXPECT_EQ(s.Capacity(), 0);
  EXPECT_EQ(s.DataType, 0);
  EXPECT_FALSE(s.TheorMax);
  s.AddValueQuick(8);  // beyond Capacity: grows instead of writing past the end
  EXPECT_EQ(s.ValueAtIndex(1), 8);
  s.SetCount(100);
  EXPECT_EQ(s.count(), s.Capacity());
}

TEST(CStatsStorage, InitFromArrayAndCloneFilter) {
  const std::vector<double> values = {5, 1, 7, 3, 5, 9};
  struct Case {
    int mode;
    int maxIndex;
    std::vector<double> kept;
  };
  const Case cases[] = {
      {0, 6, {1, 3}}, {1, 6, {5, 1, 3, 5}}, {2, 6, {7, 9}}, {2, 3, {7}}, {7, 6, {}}, {1, 0, {}},
  };
  for (const Case& c : cases) {
    CStats s;
    s.InitFromArray(values, c.mode, 5, c.maxIndex, 6);
    EXPECT_EQ(Read(s, 1, s.count()), c.kept) << c.mode << " " << c.maxIndex;
    EXPECT_EQ(s.Capacity(), 6);
  }
  CStats original = MakeSeries(values);
  original.DataType = 1;
  CStats clone = original.Clone(1, 5);
  EXPECT_EQ(Read(clone, 1, clone.count()), (std::vector<double>{5, 1, 3, 5}));
  EXPECT_EQ(clone.Capacity(), 6);
  EXPECT_EQ(clone.DataType, 0);
  EXPECT_EQ(clone.Sum, 0);  // no statistics computed
}

TEST(CStatsCounting, RangesAndWholeValues) {
  CStats s = MakeSeries({1, 2, 2, 2.4, 2.5, 2.6, 3, 3.5});
  EXPECT_EQ(s.ValueCountRange(2, 3), 6);
  EXPECT_EQ(s.ValueCountRangeOpenMax(2, 3), 5);
  EXPECT_EQ(s.ValueCount(2), 4);       // 2 <= v <= 2.5
  EXPECT_EQ(s.ValueCount(2, 3.0), 7);  // 2 <= v <= 3.5
  EXPECT_EQ(s.ValueCount(7), 0);
  EXPECT_EQ(MakeSeries({}).ValueCountRange(-1e300, 1e300), 0);
}

TEST(CStatsOrder, SortBuildsOneIndexForBothDirections) {
  CStats s = MakeSeries({30, 10, 20});
  EXPECT_EQ(s.Sort(-1), 0);
  EXPECT_EQ(Read(s, 1, 3), (std::vector<double>{30, 20, 10}));
  EXPECT_EQ(Rows(s, 1, 3), (std::vector<int>{1, 3, 2}));
  EXPECT_EQ(s.Sort(1), -1);
  EXPECT_EQ(Read(s, 1, 3), (std::vector<double>{10, 20, 30}));
  EXPECT_EQ(Rows(s, 1, 3), (std::vector<int>{2, 3, 1}));
  // The index was made once: a value added now is not in it until Init.
  s.AddValue(0);
  s.Sort(-1);
  EXPECT_EQ(s.Sort(1), -1);
  EXPECT_EQ(s.ValueAtIndex(1), 10);
  EXPECT_EQ(s.Sort(3), 1);  // back to order of arrival
  EXPECT_EQ(s.CurrentOrder(), 0);
  EXPECT_EQ(Read(s, 1, 4), (std::vector<double>{30, 10, 20, 0}));
  EXPECT_EQ(s.Sort(0), 0);
  EXPECT_EQ(s.Sort(5), 0);  // unknown orders read nothing
  EXPECT_EQ(s.ValueAtIndex(1), 0);
  EXPECT_EQ(s.GetOriginalIndex(1), 0);
}

TEST(CStatsOrder, SortIsCorrectOnLargeSeriesWithTies) {
  std::vector<double> values;
  for (int i = 0; i < 5000; ++i) values.push_back((i * 7919) % 97);
  CStats s = MakeSeries(values);
  s.Sort(1);
  std::vector<bool> seen(values.size() + 1, false);
  for (int i = 1; i <= 5000; ++i) {
    const int row = s.GetOriginalIndex(i);
    ASSERT_GE(row, 1);
    ASSERT_FALSE(seen[row]);
    seen[row] = true;
    EXPECT_EQ(s.ValueAtIndex(i), values[row - 1]);
    if (i > 1) {
      ASSERT_LE(s.ValueAtIndex(i - 1), s.ValueAtIndex(i));
    }
  }
}

TEST(CStatsOrder, DescendingCountsFromCountHereAndFromCapacityThere) {
  // Capacity 5 with 3 values: ValueAtIndex counts back from count, ValueAtIndexDefined from
  // Capacity, so the latter finds no value in the first two places.
  CStats s = MakeSeries({30, 10, 20}, 5);
  s.Sort(-1);
  EXPECT_EQ(s.ValueAtIndex(1), 30);
  double v = -1;
  EXPECT_FALSE(s.ValueAtIndexDefined(1, v));
  EXPECT_EQ(v, -1);  // untouched
  EXPECT_FALSE(s.ValueAtIndexDefined(0, v));
  s.Sort(3);
  EXPECT_TRUE(s.ValueAtIndexDefined(5, v));  // arrival order: every slot is a value
  EXPECT_EQ(v, 0);
  EXPECT_FALSE(s.ValueAtIndexDefined(6, v));
}

TEST(CStatsDefinedOrder, OneValueInThreeRows) {
  CStats s = MakeDefined(3, {{2, 7}});
  EXPECT_EQ(s.count(), 1);
  EXPECT_EQ(s.Capacity(), 3);
  double v = -1;
  EXPECT_FALSE(s.ValueAtIndexDefined(1, v));
  EXPECT_EQ(s.ValueAtIndex(1), 0);
  EXPECT_TRUE(s.ValueAtIndexDefined(2, v));
  EXPECT_EQ(v, 7);
  EXPECT_EQ(s.Sort(1), 2);
  EXPECT_EQ(Rows(s, 1, 3), (std::vector<int>{1, 3, 2}));  // holes first, in row order
  s.Sort(-1);
  EXPECT_EQ(s.ValueAtIndex(1), 0);           // counted from count: place 1 is a hole
  EXPECT_TRUE(s.ValueAtIndexDefined(1, v));  // counted from Capacity: the value
  EXPECT_EQ(v, 7);
  EXPECT_EQ(Rows(s, 1, 3), (std::vector<int>{2, 3, 1}));
}

TEST(CStatsDefinedOrder, EveryOrderWithHoles) {
  // Rows 1..6, values in rows 1, 3, 4, 6; rows 2 and 5 are holes.
  CStats s = MakeDefined(6, {{1, 5}, {3, 1}, {4, 3}, {6, 2}});
  auto defined = [&s]() {
    std::vector<double> out;
    for (int i = 1; i <= 6; ++i) {
      double v;
      out.push_back(s.ValueAtIndexDefined(i, v) ? v : -99);
    }
    return out;
  };
  struct Case {
    int direction;
    std::vector<double> values;
    std::vector<double> definedValues;
    std::vector<int> rows;
  };
  const Case cases[] = {
      // Defined order reads by row; the original row of place i is the row that holds
      // element i, found by searching the row index, as in arrival order.
      {2, {5, 0, 1, 3, 0, 2}, {5, -99, 1, 3, -99, 2}, {1, 3, 4, 6, 0, 0}},
      {1, {0, 0, 1, 2, 3, 5}, {-99, -99, 1, 2, 3, 5}, {2, 5, 3, 6, 4, 1}},
      // Descending: ValueAtIndex walks back from count (4), so it meets the holes at places
      // 3 and 4 and nothing after; the Defined read and the rows walk back from Capacity.
      {-1, {2, 1, 0, 0, 0, 0}, {5, 3, 2, 1, -99, -99}, {1, 4, 6, 3, 5, 2}},
      // Arrival order reads the packed values.
      {3, {5, 1, 3, 2, 0, 0}, {5, 1, 3, 2, 0, 0}, {1, 3, 4, 6, 0, 0}},
      {0, {5, 0, 1, 3, 0, 2}, {5, -99, 1, 3, -99, 2}, {1, 3, 4, 6, 0, 0}},
  };
  for (const Case& c : cases) {
    s.Sort(c.direction);
    EXPECT_EQ(Read(s, 1, 6), c.values) << c.direction;
    EXPECT_EQ(defined(), c.definedValues) << c.direction;
    EXPECT_EQ(Rows(s, 1, 6), c.rows) << c.direction;
  }
}

TEST(CStatsOperate, ElementWiseOverCapacity) {
  CStats x = MakeSeries({1, 2, 3}, 4);  // the fourth slot is unfilled and counts as 0
  CStats y = MakeSeries({2, 0, 4, 5});
  y.DataType = 1;
  struct Case {
    int operation;
    std::vector<double> expected;
  };
  const Case cases[] = {
      {0, {3, 2, 7, 5}},    {1, {2, 0, 12, 0}}, {2, {0.5, 0, 0.75, 0}},
      {3, {-1, 2, -1, -5}}, {4, {1, 1, 81, 0}}, {9, {}},
  };
  for (const Case& c : cases) {
    CStats r = x.Operate(c.operation, y);
    EXPECT_EQ(Read(r, 1, r.count()), c.expected) << c.operation;
    EXPECT_EQ(r.Capacity(), 4);
    EXPECT_EQ(r.DataType, 0);
    EXPECT_EQ(r.Sum, 0);
  }
  // The operand is read in its current order.
  y.Sort(-1);
  CStats sum = x.Operate(0, y);
  EXPECT_EQ(Read(sum, 1, 4), (std::vector<double>{6, 6, 5, 0}));

  EXPECT_EQ(Read(x.OperateConstant(4, 2), 1, 4), (std::vector<double>{1, 4, 9, 0}));
  EXPECT_EQ(Read(x.OperateConstant(2, 0), 1, 4), (std::vector<double>{0, 0, 0, 0}));
  EXPECT_EQ(Read(x.OperateConstant(3, 1), 1, 4), (std::vector<double>{0, 1, 2, -1}));
}

TEST(CStatsRegression, LineThroughFivePoints) {
  // Means 3 and 4; Sxy 6, Sxx 10, Syy 6.
  CStats x = MakeSeries({1, 2, 3, 4, 5});
  CStats y = MakeSeries({2, 4, 5, 4, 5});
  x.Sort(-1);
  double a, b, r;
  std::int32_t n;
  ASSERT_TRUE(x.Regression(y, a, b, r, n));
  EXPECT_DOUBLE_EQ(b, 0.6);
  EXPECT_DOUBLE_EQ(a, 2.2);
  EXPECT_DOUBLE_EQ(r, 6 / std::sqrt(60.0));
  EXPECT_EQ(n, 5);
  EXPECT_EQ(x.CurrentOrder(), -1);  // orders are given back
  EXPECT_EQ(y.CurrentOrder(), 0);
}

TEST(CStatsRegression, UsesWholeSeriesMeansOverPairedRows) {
  // Row 6 has an x (9) but no y: it is not a pair, yet it moves x's mean to 4.
  CStats x = MakeDefined(6, {{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}, {6, 9}});
  CStats y = MakeDefined(6, {{1, 2}, {2, 4}, {3, 5}, {4, 4}, {5, 5}});
  double a, b, r;
  std::int32_t n;
  ASSERT_TRUE(x.Regression(y, a, b, r, n));
  EXPECT_EQ(n, 5);
  EXPECT_DOUBLE_EQ(b, 6.0 / 15);  // Sxy 6, Sxx 15 around mean 4
  EXPECT_DOUBLE_EQ(a, 4 - 4 * 0.4);
  EXPECT_DOUBLE_EQ(r, 6 / std::sqrt(90.0));
}

TEST(CStatsRegression, NoLineWithoutThreePointsOrSpread) {
  double a = 9, b = 9, r = 9;
  std::int32_t n = 9;
  CStats two = MakeSeries({1, 2});
  CStats twoY = MakeSeries({3, 5});
  EXPECT_FALSE(two.Regression(twoY, a, b, r, n));
  EXPECT_EQ(n, 2);
  EXPECT_EQ(a, 0);
  EXPECT_EQ(b, 0);
  EXPECT_EQ(r, 0);
  CStats flat = MakeSeries({4, 4, 4});
  CStats rising = MakeSeries({1, 2, 3});
  EXPECT_FALSE(flat.Regression(rising, a, b, r, n));
  EXPECT_FALSE(rising.Regression(flat, a, b, r, n));
  EXPECT_EQ(n, 3);
}
