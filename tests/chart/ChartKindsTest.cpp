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

void TimeChart(ZelmChart& chart) {
  std::vector<double> dates;
  for (int m = 0; m < 9; ++m) dates.push_back(DateSerial(2022, 1 + 3 * m, 10));
  chart.SetData({Series(dates),
                 SeriesWithHoles({120, 150, 170, 0, 210, 260, 250, 300, 330},
                                 {true, true, true, false, true, true, true, true, true}),
                 Series({40, 60, 55, 90, 100, 95, 130, 150, 160})});
  chart.Title =
      chart.ChartType() == 5 ? QStringLiteral("Files in time") : QStringLiteral("Lines in time");
  chart.SetNumberFormat(0, 2);
  chart.SetLegendData(
      {QStringLiteral("Date"), QStringLiteral("Lines"), QStringLiteral("Comments")});
}

struct KindCase {
  const char* golden;  // also the type: its first digit
  void (*setup)(ZelmChart&);
};

const KindCase kKinds[] = {
    {"0_bars",
     [](ZelmChart& c) {
       c.SetData({Series({3, 7, 12, 5, 9, 0, 4})});
       c.Title = QStringLiteral("Lines per file");
       c.AxisCaption = QStringLiteral("Files");
       c.SetNumberFormat(0, 0);
       c.SetLegendData({QStringLiteral("Lines")});
       c.SetDataLabels({"main.cpp", "io.cpp", "ui.cpp", "a_very_long_file_name.cpp", "db.cpp",
                        "x.cpp", "last_file_name.cpp"});
       c.AddYLine(10, QStringLiteral("Limit"), kRed);
       c.MarkIndex = 3;
     }},
    {"1_histogram",
     [](ZelmChart& c) {
       c.SetData({Series(Whole(60, 7))});
       c.Title = QStringLiteral("Histogram of Lines");
       c.AxisCaption = QStringLiteral("Lines");
       c.SetLegendData({QStringLiteral("Lines")});  // cleared by the histogram
     }},
    {"2_distribution",
     [](ZelmChart& c) {
       c.SetData({Series(Whole(60, 11), 1)});
       c.Title = QStringLiteral("Distribution of Lines");
       c.AxisCaption = QStringLiteral("Lines");
       c.SetLegendData({QStringLiteral("Files")});
     }},
    {"3_distribution_pie",
     [](ZelmChart& c) {
       c.SetData({Series(Whole(60, 13), 1)});
       c.Title = QStringLiteral("Lines");
       c.SetLegendData({QStringLiteral("Files")});
     }},
    {"4_time_lines", TimeChart},
    {"5_time_steps", TimeChart},
    {"6_scatter",
     [](ZelmChart& c) {
       c.SetData({Series({10, 20, 25, 40, 55, 60, 80, 95, 110, 130, 150, 170}),
                  Series({3, 5, 4, 9, 12, 11, 18, 20, 21, 27, 30, 36})});
       c.Title = QStringLiteral("Procedures against lines");
       c.SetLegendData({QStringLiteral("Lines"), QStringLiteral("Procedures")});
     }},
    {"7_dot_plot",
     [](ZelmChart& c) {
       std::vector<double> values = Whole(40, 5);
       values.push_back(140);  // an outlier and an extreme one
       values.push_back(400);
       c.SetData({Series(values)});
       c.Title = QStringLiteral("Lines of procedures");
       c.SeedSpread(42);
     }},
    {"8_kiviat",
     [](ZelmChart& c) {
       c.SetDataKiviat(
           {Series({0.8, 0.5, 0.9, 0.3, 0.6, 0.7}), Series({0.4, 0.7, 0.5, 0.6, 0.2, 0.9})},
           {"Comments", "Cohesion", "Size", "Nesting", "Coupling", "Tests"}, true);
       c.Title = QStringLiteral("Quality profile");
       c.SetLegendData({QStringLiteral("Release 1"), QStringLiteral("Release 2")});
     }},
    {"9_pie",
     [](ZelmChart& c) {
       c.SetData({Series({40, 25, 0, 20, 15})});
       c.Title = QStringLiteral("Files by language");
       c.SetLegendData({QStringLiteral("Files")});
       c.SetDataLabels({"C++", "C", "Java", "Python", "Other"});
     }},
};

}  // namespace

TEST(ChartKinds, EachKindAgainstItsGoldenRecording) {
  for (const KindCase& k : kKinds) {
    SCOPED_TRACE(k.golden);
    ZelmChart chart;
    chart.SetChartType(k.golden[0] - '0');
    k.setup(chart);
    chart.Draw(false);
    EXPECT_EQ(CheckGolden(chart, k.golden), QString());
    if (chart.ChartType() == 1) {
      EXPECT_FALSE(chart.ShowLegend);
    }
  }
}
