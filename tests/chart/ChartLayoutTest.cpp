#include <gtest/gtest.h>

#include <cmath>

#include "chart/ChartLayout.h"
#include "support/DateValue.h"
#include "support/FormatNum.h"

using namespace ombrelle;

namespace {

// Every character 10 units wide per 30 of size; lines 1.2 x size high.
MarginMeasure FakeMeasure() {
  MarginMeasure m;
  m.Width = [](const QString& t, int size) { return t.size() * size / 3.0; };
  m.Height = [](const QString&, int size) { return 1.2 * size; };
  return m;
}

constexpr double kPi = 3.14159265358979;

}  // namespace

TEST(ChartPage, AspectHeightFrameAndLegendBox) {
  for (int type = -1; type <= 10; ++type) {
    const bool round = type == 3 || type == 9;
    EXPECT_EQ(PageHeightFor(type), round ? 150 : 112) << type;
    EXPECT_FLOAT_EQ(PageAspectFor(type), round ? 1.0f : 4.0f / 3.0f) << type;
  }
  EXPECT_EQ(PageFrame(112), (ChartRect{0, 0, 1499, -1119}));
  EXPECT_EQ(LegendBoxFor(PageFrame(112)), (ChartRect{100, -989, 1479, -1039}));
}

TEST(ChartMargins, TitleLegendCaptionLabelsAndYLines) {
  MarginInput in;
  in.Frame = PageFrame(112);
  in.LegendBox = LegendBoxFor(in.Frame);
  EXPECT_EQ(ComputePlot(in, FakeMeasure()), (ChartRect{50, -50, 1449, -1069}));

  in.Title = QStringLiteral("Lines");
  in.ShowLegend = true;
  in.AxisCaption = QStringLiteral("Files");
  in.WithYLabels = true;
  in.YMaxLabel = QStringLiteral("40k");  // ".0  40k": 7 characters at size 30
  const ChartRect plot = ComputePlot(in, FakeMeasure());
  EXPECT_EQ(plot.Top, -122);                    // -50 - 72
  EXPECT_EQ(plot.Bottom, -989 + 20 + 36 + 45);  // a line of labels above the legend
  EXPECT_EQ(plot.Left, 70);
  EXPECT_EQ(plot.Right, 1449);

  // A Y line label wider than the 50 units of margin moves the right edge in.
  in.YLineLabels = {QStringLiteral("ab"), QStringLiteral("Upper limit")};
  EXPECT_EQ(ComputePlot(in, FakeMeasure()).Right, 1499 - 120);
  in.YLineLabels = {QStringLiteral("ab")};  // "ab " is 30 wide: the 50 stay
  EXPECT_EQ(ComputePlot(in, FakeMeasure()).Right, 1449);
}

TEST(ChartLegend, CellsShareTheBoxAfterTheGap) {
  double cell = 0;
  const auto lefts = LegendCellLefts({100, -989, 1479, -1039}, 3, 19, cell);
  EXPECT_DOUBLE_EQ(cell, (1379 - 19) / 3.0);
  ASSERT_EQ(lefts.size(), 3u);
  EXPECT_DOUBLE_EQ(lefts[0], 119);
  EXPECT_DOUBLE_EQ(lefts[2], 119 + 2 * cell);
  EXPECT_TRUE(LegendCellLefts({0, 0, 10, 10}, 0, 1, cell).empty());
}

TEST(ChartAxes, ArrowHeadsPointAlongTheAxes) {
  const Triangle x = AxisArrowHead(70, -900, 1499, -900);  // to the right
  EXPECT_DOUBLE_EQ(x.X[0], 1499);
  EXPECT_NEAR(x.X[1], 1499 - 40 * std::cos(0.2617993877991492), 1e-9);
  EXPECT_NEAR(x.Y[1], -900 + 40 * std::sin(0.2617993877991492), 1e-9);
  EXPECT_NEAR(x.Y[2], -900 - 40 * std::sin(0.2617993877991492), 1e-9);
  const Triangle y = AxisArrowHead(70, -900, 70, 0);  // upwards
  EXPECT_NEAR(y.X[1], 70 - 40 * std::sin(0.2617993877991492), 1e-9);
  EXPECT_NEAR(y.Y[1], -40 * std::cos(0.2617993877991492), 1e-9);
  EXPECT_NEAR(y.X[2], 70 + 40 * std::sin(0.2617993877991492), 1e-9);
}

TEST(ChartKiviat, FourAxesClockwiseFromOneStepAfterTheTop) {
  const auto a = KiviatAngles(4);
  ASSERT_EQ(a.size(), 4u);
  const double expected[] = {0, -kPi / 2, -kPi, -3 * kPi / 2};  // right, bottom, left, top
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(a[i], expected[i], 1e-6) << i;
  const auto one = KiviatAngles(1);
  EXPECT_NEAR(std::sin(one[0]), 1, 1e-12);  // a single axis stands at the top
  EXPECT_TRUE(KiviatAngles(0).empty());

  struct Case {
    int i;
    double xe, ye, x, y;
  };
  // Centre (0, 0), labels 20 wide and 10 high.
  const Case cases[] = {
      {1, 100, 0, 100, 5},      // right: starts at the axis, centred vertically
      {2, 0, -100, -10, -100},  // bottom: centred, hanging below
      {3, -100, 0, -120, 5},    // left: ends at the axis
      {4, 0, 100, -10, 110},    // top: centred, above
  };
  for (const Case& c : cases) {
    double x = 0, y = 0;
    KiviatLabelPosition(c.i, 4, c.xe, c.ye, 0, 0, 20, 10, x, y);
    EXPECT_DOUBLE_EQ(x, c.x) << c.i;
    EXPECT_DOUBLE_EQ(y, c.y) << c.i;
  }
  double x = 0, y = 0;  // odd count: no axis is taken as a quarter or half
  KiviatLabelPosition(1, 3, 50, -30, 0, 0, 20, 10, x, y);
  EXPECT_DOUBLE_EQ(x, 50);
  EXPECT_DOUBLE_EQ(y, -30);
}

TEST(ChartPie, ZeroSlicesSkippedAndZeroTotalGivesNone) {
  const auto s = PieSlices({1, 0, 3}, 4);
  ASSERT_EQ(s.size(), 2u);
  EXPECT_EQ(s[0].Index, 1);
  EXPECT_DOUBLE_EQ(s[0].Start, 0);
  EXPECT_DOUBLE_EQ(s[0].End, 6.28318530717958 / 4);
  EXPECT_EQ(s[1].Index, 3);
  EXPECT_DOUBLE_EQ(s[1].Start, 6.28318530717958 / 4);
  EXPECT_DOUBLE_EQ(s[1].End, 6.28318530717958);  // the last slice closes the circle
  EXPECT_TRUE(PieSlices({0, 0}, 0).empty());
}

TEST(ChartHistogram, ZeroWidthClassesJoinAndAreasKeepTheShares) {
  // 20 classes over 0..10: five bounds at 2 give four classes of no width that join the
  // next one, which then holds 5/20 of the data.
  std::vector<double> bounds = {0, 1,   2, 2,   2, 2,   2, 3,   4,   5, 5.5,
                                6, 6.5, 7, 7.5, 8, 8.5, 9, 9.5, 9.8, 10};
  const auto classes = HistogramClasses(bounds, 0, 10);
  ASSERT_EQ(classes.size(), 16u);
  EXPECT_DOUBLE_EQ(classes[2].Left, 2);
  EXPECT_DOUBLE_EQ(classes[2].RelWidth, 0.1);
  EXPECT_DOUBLE_EQ(classes[2].Density, (5 / 20.0) / 0.1);
  double area = 0;
  for (const auto& c : classes) area += c.RelWidth * c.Density;
  EXPECT_NEAR(area, 1, 1e-12);

  // All values equal: one class across the axis.
  const auto equal = HistogramClasses(std::vector<double>(21, 4), 4, 4);
  ASSERT_EQ(equal.size(), 1u);
  EXPECT_DOUBLE_EQ(equal[0].RelWidth * equal[0].Density, 1);

  // The top twentieths all at the maximum: their share goes to the class below.
  std::vector<double> top(21);
  for (int i = 0; i <= 18; ++i) top[i] = i;
  top[19] = top[20] = 18;
  double topArea = 0;
  for (const auto& c : HistogramClasses(top, 0, 18)) topArea += c.RelWidth * c.Density;
  EXPECT_NEAR(topArea, 1, 1e-12);
}

TEST(ChartDates, TickStepsByTheSpan) {
  struct Case {
    double start, end;
    int count;
    const char* first;
    const char* second;
  };
  const Case cases[] = {
      {DateSerial(2010, 3, 5), DateSerial(2020, 1, 1), 5, "10/03", "12/03"},  // 2 years
      {DateSerial(2015, 3, 5), DateSerial(2020, 1, 1), 5, "15/03", "16/03"},  // 1 year
      {DateSerial(2018, 3, 5), DateSerial(2020, 1, 1), 4, "18/03", "18/09"},  // 6 months
      {DateSerial(2019, 3, 5), DateSerial(2020, 1, 1), 4, "19/03", "19/06"},  // 3 months
      {DateSerial(2019, 3, 5), DateSerial(2019, 6, 1), 3, "19/03", "19/04"},  // 1 month
  };
  for (const Case& c : cases) {
    const auto ticks = DateTicks(c.start, c.end);
    ASSERT_EQ(static_cast<int>(ticks.size()), c.count) << c.first;
    EXPECT_EQ(ticks[0].Label.toStdString(), c.first);
    EXPECT_EQ(ticks[1].Label.toStdString(), c.second);
    EXPECT_DOUBLE_EQ(ticks[0].Date, c.start);
    EXPECT_LE(ticks.back().Date, c.end);
  }
  const double d = DateSerial(2019, 3, 5);
  const auto weekly = DateTicks(d, d + 20);
  ASSERT_EQ(weekly.size(), 3u);
  EXPECT_EQ(weekly[1].Label, FormatDateShort(d + 7));
}

TEST(ChartColours, GeneratedColoursByIndexModuloSeven) {
  // v = round(i x 200 / 7 + 55) for count 7.
  EXPECT_EQ(GeneratedDataColor(1, 7), 0x540000u);  // 1: blue, v = 84 (83.57)
  EXPECT_EQ(GeneratedDataColor(2, 7), 0x007000u);  // 2: green, v = 112 (112.14)
  EXPECT_EQ(GeneratedDataColor(3, 7), 0x8D008Du);  // 3: red and blue, v = 141
  EXPECT_EQ(GeneratedDataColor(4, 7), 0xA9A900u);  // 4: blue and green, v = 169 (169.29)
  EXPECT_EQ(GeneratedDataColor(5, 7), 0x00C6C6u);  // 5: red and green, v = 198
  EXPECT_EQ(GeneratedDataColor(6, 7), 0xE2E2E2u);  // 6: all three, v = 226 (226.43)
  EXPECT_EQ(GeneratedDataColor(7, 7), 0x0000FFu);  // 0: red only, v = 255
}

TEST(ChartLabels, DistributionClassesWholeAndReal) {
  auto whole = [](double v) { return FormatFixed(v, 0); };
  EXPECT_EQ(DistributionLabels(3, 0, 5, 23, true, whole), (QStringList{"0-4", "5-9", "10-23"}));
  EXPECT_EQ(DistributionLabels(3, 1, 1, 3, true, whole), (QStringList{"1", "2", "3"}));
  auto real = [](double v) { return FormatFixed(v, 1); };
  EXPECT_EQ(DistributionLabels(2, 0, 0.5, 0.9, false, real), (QStringList{"0.0..0.5", "0.5..1.0"}));
}

TEST(ChartRegression, EquationAndNotSignificantTexts) {
  EXPECT_EQ(RegressionLabel(true, 0.5, 1.25, 0.9, "y", "x").toStdString(),
            "y = 0.50 x x + 1.25  (R²=81%)");
  EXPECT_EQ(RegressionLabel(true, 2, -3, -0.95, "Bugs", "Lines").toStdString(),
            "Bugs = 2.00 x Lines -3.00  (R²=90%)");
  EXPECT_EQ(RegressionLabel(true, 0, 4, 1, "y", "x").toStdString(), "y = 0 x x + 4  (R²=100%)");
  EXPECT_EQ(RegressionLabel(true, 0.0012345, 0.5, 0.7, "y", "x").toStdString(),
            "y = 0.0012345 x x + 0.5  (R²=49%)");
  EXPECT_EQ(RegressionLabel(false, 1, 1, 0.3, "y", "x").toStdString(),
            "Correlation not significant (R²=9%)");
}
