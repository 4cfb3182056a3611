// Each of the ten chart kinds on a small fixed data set: the recorded primitives are
// compared with tests/data/chart/<kind>.txt and the chart is saved as a PNG for looking.
#include <gtest/gtest.h>

#include <cmath>

#include "ChartTestSupport.h"
#include "support/DateValue.h"

using namespace ombrelle;
using namespace ombrelle::charttest;

namespace {

constexpr std::uint32_t kRed = 0x0000FF;

std::vector<double> Whole(int n, int seed) {
  std::vector<double> v;
  std::uint32_t x = static_cast<std::uint32_t>(seed);
  for (int i = 0; i < n; ++i) {
    x = x * 1103515245u + 12345u;
    const double u = ((x >> 8) & 0xFFFF) / 65536.0;
    v.push_back(std::floor(u * u * 60));  // skewed towards small values, as metrics are
  }
  return v;
}

}  // namespace

TEST(ChartKinds, Bars) {
  ZelmChart chart;
  chart.SetChartType(0);
  chart.SetData({Series({3, 7, 12, 5, 9, 0, 4})});
  chart.Title = QStringLiteral("Lines per file");
  chart.AxisCaption = QStringLiteral("Files");
  chart.SetNumberFormat(0, 0);
  chart.SetLegendData({QStringLiteral("Lines")});
  chart.SetDataLabels({"main.cpp", "io.cpp", "ui.cpp", "a_very_long_file_name.cpp", "db.cpp",
                       "x.cpp", "last_file_name.cpp"});
  chart.AddYLine(10, QStringLiteral("Limit"), kRed);
  chart.MarkIndex = 3;
  chart.Draw(false);
  EXPECT_EQ(CheckGolden(chart, "0_bars"), QString());
}

TEST(ChartKinds, Histogram) {
  ZelmChart chart;
  chart.SetChartType(1);
  chart.SetData({Series(Whole(60, 7))});
  chart.Title = QStringLiteral("Histogram of Lines");
  chart.AxisCaption = QStringLiteral("Lines");
  chart.SetLegendData({QStringLiteral("Lines")});  // cleared by the histogram
  chart.Draw(false);
  EXPECT_FALSE(chart.ShowLegend);
  EXPECT_EQ(CheckGolden(chart, "1_histogram"), QString());
}

TEST(ChartKinds, Distribution) {
  ZelmChart chart;
  chart.SetChartType(2);
  chart.SetData({Series(Whole(60, 11), 1)});
  chart.Title = QStringLiteral("Distribution of Lines");
  chart.AxisCaption = QStringLiteral("Lines");
  chart.SetLegendData({QStringLiteral("Files")});
  chart.Draw(false);
  EXPECT_EQ(CheckGolden(chart, "2_distribution"), QString());
}

TEST(ChartKinds, DistributionPie) {
  ZelmChart chart;
  chart.SetChartType(3);
  chart.SetData({Series(Whole(60, 13), 1)});
  chart.Title = QStringLiteral("Lines");
  chart.SetLegendData({QStringLiteral("Files")});
  chart.Draw(false);
  EXPECT_EQ(CheckGolden(chart, "3_distribution_pie"), QString());
}

namespace {

void TimeChart(ZelmChart& chart, int type) {
  std::vector<double> dates;
  for (int m = 0; m < 9; ++m) dates.push_back(DateSerial(2022, 1 + 3 * m, 10));
  chart.SetChartType(type);
  chart.SetData({Series(dates),
                 SeriesWithHoles({120, 150, 170, 0, 210, 260, 250, 300, 330},
                                 {true, true, true, false, true, true, true, true, true}),
                 Series({40, 60, 55, 90, 100, 95, 130, 150, 160})});
  chart.Title = type == 5 ? QStringLiteral("Files in time") : QStringLiteral("Lines in time");
  chart.SetNumberFormat(0, 2);
  chart.SetLegendData(
      {QStringLiteral("Date"), QStringLiteral("Lines"), QStringLiteral("Comments")});
  chart.Draw(false);
}

}  // namespace

TEST(ChartKinds, TimeLines) {
  ZelmChart chart;
  TimeChart(chart, 4);
  EXPECT_EQ(CheckGolden(chart, "4_time_lines"), QString());
}

TEST(ChartKinds, TimeSteps) {
  ZelmChart chart;
  TimeChart(chart, 5);
  EXPECT_EQ(CheckGolden(chart, "5_time_steps"), QString());
}

TEST(ChartKinds, Scatter) {
  ZelmChart chart;
  chart.SetChartType(6);
  chart.SetData({Series({10, 20, 25, 40, 55, 60, 80, 95, 110, 130, 150, 170}),
                 Series({3, 5, 4, 9, 12, 11, 18, 20, 21, 27, 30, 36})});
  chart.Title = QStringLiteral("Procedures against lines");
  chart.SetLegendData({QStringLiteral("Lines"), QStringLiteral("Procedures")});
  chart.Draw(false);
  EXPECT_EQ(CheckGolden(chart, "6_scatter"), QString());
}

TEST(ChartKinds, DotPlot) {
  ZelmChart chart;
  chart.SetChartType(7);
  std::vector<double> values = Whole(40, 5);
  values.push_back(140);  // an outlier and an extreme one
  values.push_back(400);
  chart.SetData({Series(values)});
  chart.Title = QStringLiteral("Lines of procedures");
  chart.SeedSpread(42);
  chart.Draw(false);
  EXPECT_EQ(CheckGolden(chart, "7_dot_plot"), QString());
}

TEST(ChartKinds, Kiviat) {
  ZelmChart chart;
  chart.SetChartType(8);
  chart.SetDataKiviat(
      {Series({0.8, 0.5, 0.9, 0.3, 0.6, 0.7}), Series({0.4, 0.7, 0.5, 0.6, 0.2, 0.9})},
      {"Comments", "Cohesion", "Size", "Nesting", "Coupling", "Tests"}, true);
  chart.Title = QStringLiteral("Quality profile");
  chart.SetLegendData({QStringLiteral("Release 1"), QStringLiteral("Release 2")});
  chart.Draw(false);
  EXPECT_EQ(CheckGolden(chart, "8_kiviat"), QString());
}

TEST(ChartKinds, Pie) {
  ZelmChart chart;
  chart.SetChartType(9);
  chart.SetData({Series({40, 25, 0, 20, 15})});
  chart.Title = QStringLiteral("Files by language");
  chart.SetLegendData({QStringLiteral("Files")});
  chart.SetDataLabels({"C++", "C", "Java", "Python", "Other"});
  chart.Draw(false);
  EXPECT_EQ(CheckGolden(chart, "9_pie"), QString());
}
