#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "stats/CStats.h"

using namespace ombrelle;

namespace {

CStats MakeSeries(const std::vector<double>& values) {
  CStats s;
  s.Init(static_cast<std::int32_t>(values.size()));
  for (double v : values) s.AddValueQuick(v);
  s.CalcStats();
  return s;
}

// The order statistics as a reader with a sorted copy would compute them.
struct Reference {
  std::vector<double> sorted;
  explicit Reference(std::vector<double> values) : sorted(std::move(values)) {
    std::sort(sorted.begin(), sorted.end());
  }
  int n() const { return static_cast<int>(sorted.size()); }
  double At(int position) const { return n() == 0 ? 0.0 : sorted[position - 1]; }
  double Median() const {
    if (n() == 0) return 0;
    return n() % 2 == 0 ? (At(n() / 2 + 1) + At(n() / 2)) / 2 : At((n() + 1) / 2);
  }
  int P1() const { return (n() - 1) / 4 + 1; }
  double Q1() const { return At(P1()); }
  double Q3() const { return At(n() - P1() + 1); }
  int P5() const { return (n() - 1) / 20 + 1; }
  double Q5() const { return At(P5()); }
  double Q95() const { return At(n() - P5() + 1); }
  double Fence(double factor, bool upper) const {
    if (n() < 10) return upper ? sorted.back() : sorted.front();
    const double iqr = Q3() - Q1();
    return upper ? std::min(Q3() + factor * iqr, sorted.back())
                 : std::max(Q1() - factor * iqr, sorted.front());
  }
};

void ExpectMatchesReference(const std::vector<double>& values, const char* what) {
  CStats s = MakeSeries(values);
  const Reference ref(values);
  SCOPED_TRACE(testing::Message() << what << ", n = " << values.size());
  for (int k = 1; k <= ref.n(); ++k) ASSERT_EQ(s.ValueAtPosition(k), ref.At(k)) << "k = " << k;
  EXPECT_EQ(s.Median(), ref.Median());
  EXPECT_EQ(s.Q1(), ref.Q1());
  EXPECT_EQ(s.Q3(), ref.Q3());
  EXPECT_EQ(s.Q5(), ref.Q5());
  EXPECT_EQ(s.Q95(), ref.Q95());
  if (ref.n() == 0) return;
  EXPECT_EQ(s.OutlierLowerTail(), ref.Fence(1.5, false));
  EXPECT_EQ(s.ExtremeOutlierLowerTail(), ref.Fence(3.0, false));
  EXPECT_EQ(s.ExtremeOutlierUpperTail(), ref.Fence(3.0, true));
  EXPECT_EQ(s.OutlierUpperTail(), ref.Fence(1.5, true));
}

}  // namespace

TEST(CStatsOrderStatistics, MatchSortedCopyOnRandomSeries) {
  std::mt19937_64 random(4711);
  std::uniform_real_distribution<double> wide(-1000.0, 1000.0);
  std::uniform_int_distribution<int> few(0, 4);
  for (int n = 0; n <= 50; ++n) {
    for (int round = 0; round < 6; ++round) {
      std::vector<double> distinct(n), ties(n), equal(n, 3.25);
      for (int i = 0; i < n; ++i) {
        distinct[i] = wide(random);
        ties[i] = few(random);
      }
      ExpectMatchesReference(distinct, "distinct");
      ExpectMatchesReference(ties, "ties");
      if (round == 0) ExpectMatchesReference(equal, "all equal");
    }
  }
}

TEST(CStatsOrderStatistics, MatchSortedCopyOnLargeSeries) {
  std::mt19937_64 random(99);
  for (int n : {1000, 4097, 100000}) {
    std::vector<double> values(n);
    std::lognormal_distribution<double> skewed(2.0, 1.5);
    for (double& v : values) v = std::round(skewed(random) * 10) / 10;  // many ties
    CStats s = MakeSeries(values);
    const Reference ref(values);
    EXPECT_EQ(s.Median(), ref.Median()) << n;
    EXPECT_EQ(s.Q1(), ref.Q1()) << n;
    EXPECT_EQ(s.Q3(), ref.Q3()) << n;
    EXPECT_EQ(s.Q5(), ref.Q5()) << n;
    EXPECT_EQ(s.Q95(), ref.Q95()) << n;
    EXPECT_EQ(s.OutlierUpperTail(), ref.Fence(1.5, true)) << n;
    EXPECT_EQ(s.ExtremeOutlierLowerTail(), ref.Fence(3.0, false)) << n;
    for (int k : {1, 2, n / 3, n - 1, n}) EXPECT_EQ(s.ValueAtPosition(k), ref.At(k)) << n;
  }
}

TEST(CStatsOrderStatistics, QuartilePositionsAreOrderStatisticsWithoutInterpolation) {
  // Values 1..n arrive shuffled, so each result names the position it was taken from.
  struct Case {
    int n;
    double q1, q3, q5, q95, median;
  };
  const Case cases[] = {
      {4, 1, 4, 1, 4, 2.5},     {5, 2, 4, 1, 5, 3},     {8, 2, 7, 1, 8, 4.5},
      {20, 5, 16, 1, 20, 10.5}, {21, 6, 16, 2, 20, 11}, {1, 1, 1, 1, 1, 1},
  };
  std::mt19937 random(5);
  for (const Case& c : cases) {
    std::vector<double> values(c.n);
    for (int i = 0; i < c.n; ++i) values[i] = i + 1;
    std::shuffle(values.begin(), values.end(), random);
    CStats s = MakeSeries(values);
    EXPECT_EQ(s.Q1(), c.q1) << c.n;
    EXPECT_EQ(s.Q3(), c.q3) << c.n;
    EXPECT_EQ(s.Q5(), c.q5) << c.n;
    EXPECT_EQ(s.Q95(), c.q95) << c.n;
    EXPECT_EQ(s.Median(), c.median) << c.n;
  }
}

TEST(CStatsOrderStatistics, FencesStartAtTenValuesAndStayInsideTheData) {
  CStats nine = MakeSeries({-1e6, 1, 2, 3, 4, 5, 6, 7, 1e6});
  EXPECT_EQ(nine.OutlierLowerTail(), -1e6);
  EXPECT_EQ(nine.ExtremeOutlierLowerTail(), -1e6);
  EXPECT_EQ(nine.OutlierUpperTail(), 1e6);
  EXPECT_EQ(nine.ExtremeOutlierUpperTail(), 1e6);

  // n = 12: Q1 is the 3rd value (2), Q3 the 10th (9), IQR 7.
  CStats wild = MakeSeries({100, 5, 1, 9, 2, -100, 3, 10, 4, 6, 8, 7});
  EXPECT_EQ(wild.OutlierLowerTail(), 2 - 10.5);
  EXPECT_EQ(wild.ExtremeOutlierLowerTail(), 2 - 21.0);
  EXPECT_EQ(wild.ExtremeOutlierUpperTail(), 9 + 21.0);
  EXPECT_EQ(wild.OutlierUpperTail(), 9 + 10.5);

  // 1..10: Q1 3, Q3 8; every fence falls outside the data and is clamped to it.
  CStats tame = MakeSeries({1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
  EXPECT_EQ(tame.OutlierLowerTail(), 1);
  EXPECT_EQ(tame.OutlierUpperTail(), 10);
}

TEST(CStatsOrderStatistics, EdgesOfSelection) {
  CStats empty = MakeSeries({});
  EXPECT_EQ(empty.ValueAtPosition(1), 0);
  EXPECT_EQ(empty.Median(), 0);
  EXPECT_EQ(empty.Q1(), 0);
  EXPECT_EQ(empty.Q95(), 0);

  CStats one = MakeSeries({42});
  for (int k : {-3, 0, 1, 2, 100}) EXPECT_EQ(one.ValueAtPosition(k), 42);

  // Positions outside 1..count read the nearest end.
  CStats three = MakeSeries({30, 10, 20});
  EXPECT_EQ(three.ValueAtPosition(0), 10);
  EXPECT_EQ(three.ValueAtPosition(4), 30);

  // Selection leaves the stored order alone.
  EXPECT_EQ(three.ValueAtIndex(1), 30);
  EXPECT_EQ(three.ValueAtIndex(2), 10);
}

TEST(CStatsOrderStatistics, CachesLastUntilStatisticsAreRecomputed) {
  CStats s = MakeSeries({1, 2, 3});
  EXPECT_EQ(s.Median(), 2);
  EXPECT_EQ(s.Q1(), 1);
  s.AddValue(10);
  s.AddValue(11);
  EXPECT_EQ(s.Median(), 2);
  EXPECT_EQ(s.Q1(), 1);
  // Q95 was never read, so it is computed over the five values now present.
  EXPECT_EQ(s.Q95(), 11);
  s.CalcStatsQuick();
  EXPECT_EQ(s.Median(), 3);
  EXPECT_EQ(s.Q1(), 2);
  EXPECT_EQ(s.Q3(), 10);
}

TEST(CStatsOrderStatistics, NaNValuesDoNotDisturbSelection) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  CStats s = MakeSeries({5, nan, 1, 3});
  EXPECT_EQ(s.ValueAtPosition(1), 1);
  EXPECT_EQ(s.ValueAtPosition(3), 5);
  EXPECT_TRUE(std::isnan(s.ValueAtPosition(4)));
}

TEST(CStatsHistogram, PercentileCurveRoundsPositionsHalfToEven) {
  CStats nine = MakeSeries({9, 1, 8, 2, 7, 3, 6, 4, 5});
  EXPECT_EQ(nine.CalcHistogram(4), (std::vector<double>{1, 3, 5, 7, 9}));
  // Steps of 1.5 over four values: positions 2.5 -> 2 and 4.
  CStats four = MakeSeries({40, 10, 30, 20});
  EXPECT_EQ(four.CalcHistogram(2), (std::vector<double>{10, 20, 40}));
  // Steps of 1.25 over six: 2.25 -> 2, 3.5 -> 4, 4.75 -> 5, 6.
  CStats six = MakeSeries({60, 50, 40, 30, 20, 10});
  EXPECT_EQ(six.CalcHistogram(4), (std::vector<double>{10, 20, 40, 50, 60}));
  EXPECT_EQ(six.CalcHistogram(0), (std::vector<double>{10}));
  EXPECT_TRUE(six.CalcHistogram(-1).empty());
}

TEST(CStatsHistogram, BlocksOfEqualWidthWithLumpedTail) {
  // Sorted: 0.1 0.2 0.25 0.5 0.7 1 1.5 3 10 12. MaxQ 0.5 picks the 5th value, 0.7.
  CStats s = MakeSeries({3, 0.1, 10, 0.5, 1.5, 0.2, 12, 0.7, 1, 0.25});
  struct Case {
    double minValue, width;
    float maxQ;
    std::int16_t minBlocks;
    std::vector<double> shares;
  };
  const Case cases[] = {
      // Two blocks are enough: [0,1) and everything from 1 up to Max in the last block.
      {0, 1, 0.5f, 2, {0.5, 0.5}},
      // Four: [0,1) [1,2) [2,3) then the tail [3, 12].
      {0, 1, 0.5f, 4, {0.5, 0.2, 0, 0.3}},
      // MaxQ 0.9 picks the 9th value, 10: blocks run up to 10; [10,12) still stands as the
      // one after it would pass Max, and the closing block [12,12] holds 12.
      {0, 2, 0.9f, 3, {0.7, 0.1, 0, 0, 0, 0.1, 0.1}},
  };
  for (const Case& c : cases) {
    CStats h = s.CalcHistogram2(c.minValue, Fixed4::FromDouble(c.width), c.maxQ, c.minBlocks);
    ASSERT_EQ(h.count(), static_cast<int>(c.shares.size())) << c.width << " " << c.minBlocks;
    for (int i = 1; i <= h.count(); ++i) EXPECT_DOUBLE_EQ(h.ValueAtIndex(i), c.shares[i - 1]);
    EXPECT_DOUBLE_EQ(h.Sum, 1.0);  // statistics were computed on the result
  }
}

TEST(CStatsHistogram, BlockEdgesAreFourDecimalFixedPoint) {
  // In plain doubles 3 * 0.1 is 0.30000000000000004 and 0.3 would fall into the block
  // [0.2, 0.3); with four-decimal edges it opens the block [0.3, 0.4).
  CStats s = MakeSeries({0.0, 0.3, 0.6});
  CStats h = s.CalcHistogram2(0, Fixed4::FromDouble(0.1), 1.0f, 1);
  const std::vector<double> expected = {1.0 / 3, 0, 0, 1.0 / 3, 0, 0, 1.0 / 3};
  ASSERT_EQ(h.count(), 7);
  for (int i = 1; i <= 7; ++i) EXPECT_EQ(h.ValueAtIndex(i), expected[i - 1]) << i;

  EXPECT_EQ(Fixed4::FromDouble(0.1).units, 1000);
  EXPECT_EQ(Fixed4::FromDouble(0.03125).units, 312);  // ties go to even
  EXPECT_EQ(Fixed4::FromDouble(0.09375).units, 938);
  EXPECT_EQ(Fixed4::FromDouble(-2.5).units, -25000);
  EXPECT_EQ(Fixed4::FromDouble(1e300).units, std::numeric_limits<std::int64_t>::max());
  // A width of 0 makes no blocks of its own: only the closing block, holding everything.
  CStats none = s.CalcHistogram2(0, Fixed4{}, 0.9f, 8);
  ASSERT_EQ(none.count(), 1);
  EXPECT_EQ(none.ValueAtIndex(1), 1.0);
}
