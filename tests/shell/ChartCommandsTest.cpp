// The chart routines of the page: what each hands to the chart, their
// refusals, the format family tree, the regression line text and the
// correlation matrix.
#include <algorithm>
#include <cmath>

#include <QImage>
#include <QRegularExpression>

#include "chart/ChartScale.h"
#include "chart/ZelmChart.h"
#include "common/OutsideReaders.h"
#include "core/ListModel.h"
#include "pictures/Bitmap.h"
#include "pictures/MetaRecord.h"
#include "pictures/Metafile.h"
#include "shell/ChartCommands.h"
#include "shell/PageModelFixture.h"
#include "support/FormatNum.h"

namespace ombrelle::test {
namespace {

TEST(ChartFormatKind, PercentagesAndDatesHaveKindsOfTheirOwn) {
  const int expected[] = {0, 0, 0, 1, 1, 1, 0, 0, 0, 2, 0, 0};
  for (int format = 0; format <= 11; ++format)
    EXPECT_EQ(ChartFormatKind(format), expected[format]) << format;
}

// Worked out by hand from the family tree 1->2, 3->4, 4->10, 5->3|6, 6->8,
// 7->8, 8->10, 9->1, every format below the automatic format 0.
TEST(CommonFormat, EveryPairAgainstTheFamilyTree) {
  const int table[11][11] = {
      {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},        {0, 1, 2, 0, 0, 0, 0, 0, 0, 1, 0},
      {0, 2, 2, 0, 0, 0, 0, 0, 0, 2, 0},        {0, 0, 0, 3, 4, 3, 10, 10, 10, 0, 10},
      {0, 0, 0, 4, 4, 4, 10, 10, 10, 0, 10},    {0, 0, 0, 3, 4, 5, 6, 10, 8, 0, 10},
      {0, 0, 0, 10, 10, 6, 6, 8, 8, 0, 10},     {0, 0, 0, 10, 10, 10, 8, 7, 8, 0, 10},
      {0, 0, 0, 10, 10, 8, 8, 8, 8, 0, 10},     {0, 1, 2, 0, 0, 0, 0, 0, 0, 9, 0},
      {0, 0, 0, 10, 10, 10, 10, 10, 10, 0, 10},
  };
  for (int a = 0; a <= 10; ++a)
    for (int b = 0; b <= 10; ++b) EXPECT_EQ(CommonFormat(a, b), table[a][b]) << a << "," << b;
}

TEST(LinearFormulaText, SlopeSignAndDecimals) {
  struct Case {
    double a, b;
    const char* name;
    const char* expected;
  };
  const Case cases[] = {
      {1.5, -0.25, "X", "1.50 -0.25 * X"},           {1.5, 0.05, "X", "1.50 + 0.05 * X"},
      {0, 0.001, "X", "0.00 + 0.001 * X"},           {2, 0, "LOC", "2.00 + 0 * LOC"},
      {-1.234, 12.345, "", "-1.23 + 12.35*"},        {3, 0.1, "X", "3.00 + 0.10 * X"},
      {3, -0.00012345, "X", "3.00 -0.00012345 * X"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(LinearFormulaText(c.a, c.b, QString::fromUtf8(c.name)), c.expected);
    EXPECT_EQ(RegressionFormula(c.a, c.b, QString::fromUtf8(c.name)), c.expected);
  }
}

// Lines of a bar chart: none up to 5 values, the median from 6, the fences
// from 10.
TEST(AddBarChartLines, MedianFromSixValuesFencesFromTen) {
  const auto linesOf = [](std::vector<double> values) {
    CStats series;
    series.Init(static_cast<std::int32_t>(values.size()));
    for (double v : values) series.AddValue(v);
    series.CalcStats();
    ZelmChart chart;
    AddBarChartLines(chart, series);
    QStringList labels;
    for (const ZelmChart::YLine& line : chart.YLines()) labels << line.Label;
    return std::pair{labels, chart.YLines()};
  };
  EXPECT_TRUE(linesOf({1, 2, 3, 4, 50}).first.isEmpty());
  auto [nine, nineLines] = linesOf({-90, 2, 3, 4, 5, 6, 7, 8, 90});
  EXPECT_EQ(nine, QStringList{"Median"});
  EXPECT_EQ(nineLines[0].Value, 5);
  EXPECT_EQ(nineLines[0].Color, 0xE55500u);
  auto [ten, tenLines] = linesOf({-90, 2, 3, 4, 5, 6, 7, 8, 9, 90});
  EXPECT_EQ(ten, QStringList({"Median", "Outliers", "Outliers"}));
  EXPECT_EQ(tenLines[1].Color, 255u);
  EXPECT_LT(tenLines[1].Value, 2);
  EXPECT_GT(tenLines[2].Value, 9);
  // A series that does not vary has no lines at all.
  EXPECT_TRUE(linesOf({4, 4, 4, 4, 4, 4, 4, 4, 4, 4}).first.isEmpty());
}

class ChartCommandsTest : public PageModelTest {
 public:
  void Save(ZelmChart& chart, const char* name) {
    std::unique_ptr<Bitmap> bitmap = chart.GetBitmap(640, 24);
    ASSERT_TRUE(bitmap);
    const QString path = ArtefactPath(QStringLiteral("ChartCommands"), QString::fromUtf8(name));
    EXPECT_TRUE(bitmap->ToRgb32().save(path, "PNG"));
  }
  QStringList Warnings() const { return scripted.ui.MessageTexts(); }
};

TEST_F(ChartCommandsTest, BarChartMarksTheCursorRowAndNamesItWithItsDate) {
  ChartCommands commands(*model);
  const int series = model->CurrentSeries();
  ASSERT_GT(series, 0);
  grid->PlaceCursor(2, grid->GetCurColumn());
  auto chart = commands.MakeBarChart(true, series);
  ASSERT_TRUE(chart);
  const int rows = model->Pages(0).Rows;
  EXPECT_EQ(chart->ChartType(), 0);
  ASSERT_EQ(chart->SeriesData().size(), 1u);
  EXPECT_EQ(chart->SeriesData()[0].count(), rows);
  EXPECT_EQ(chart->SeriesColor(1), 3709564u);
  EXPECT_EQ(chart->MarkIndex, 2);
  ASSERT_EQ(static_cast<int>(chart->DataColors().size()), rows);
  EXPECT_EQ(chart->DataColors()[1], 255u);
  EXPECT_EQ(chart->DataColors()[0], 3709564u);
  const QString date = FormatDateShort(model->CellValue(2, 2).toDouble());
  EXPECT_EQ(chart->AxisCaption, "Red = " + model->CellValue(2, 1).toString() + " " + date);
  EXPECT_EQ(chart->Title,
            model->SeriesCaption(series) + " " +
                model->Definitions().GetMetricName(model->SeriesMetric(series), NameLong));
  // Bars follow the rows on display.
  double first = 0;
  bool defined = false;
  model->CellDefined(1, grid->GetCurColumn(), first, defined);
  EXPECT_EQ(chart->SeriesData()[0].ValueAtIndex(1), defined ? first : 0);
  Save(*chart, "BarChartMarked.png");

  auto plain = commands.MakeBarChart(false, series);
  ASSERT_TRUE(plain);
  EXPECT_EQ(plain->AxisCaption, model->PageTitle());
  EXPECT_EQ(plain->MarkIndex, 0);
  EXPECT_FALSE(commands.MakeBarChart(false, 0));
  EXPECT_TRUE(Warnings().isEmpty());
}

TEST_F(ChartCommandsTest, HistogramAndDistributionOfTheCurrentColumn) {
  ChartCommands commands(*model);
  model->TabClicked(4);
  const int series = model->CurrentSeries();
  ASSERT_GT(series, 0);
  auto histogram = commands.MakeHistogram(series);
  ASSERT_TRUE(histogram);
  EXPECT_EQ(histogram->ChartType(), 2);
  EXPECT_EQ(histogram->SeriesColor(1), 16100480u);
  EXPECT_EQ(histogram->Scale().YFormat, kAxisPercent);
  EXPECT_EQ(histogram->SeriesData()[0].count(), model->Series(series)->count());
  EXPECT_EQ(histogram->AxisCaption, model->PageTitle());
  Save(*histogram, "Histogram.png");
  EXPECT_FALSE(commands.MakeHistogram(0));

  auto dots = commands.MakeDistributionChart(series);
  ASSERT_TRUE(dots);
  EXPECT_EQ(dots->ChartType(), 7);
  ASSERT_EQ(dots->SeriesData().size(), 2u);
  EXPECT_EQ(dots->SeriesData()[0].count(), 0);
  EXPECT_EQ(dots->SeriesData()[1].count(), model->Series(series)->count());
  // One dot per value, drawn from the second place.
  const auto& records = dots->GetMetafile().Records();
  EXPECT_EQ(std::count_if(records.begin(), records.end(),
                          [](const MetaRecord& r) { return r.kind == MetaRecord::Ellipse; }),
            model->Series(series)->count());
  Save(*dots, "Distribution.png");
  EXPECT_FALSE(commands.MakeDistributionChart(0));

  // A change page has no value in its first row: no dot for it, and every
  // value of the column has its dot at its own height.
  model->TabClicked(2);
  model->ChooseComboItem(PageCombo::ProjectInTimeStyle, 1);
  const int changes = model->CurrentSeries();
  ASSERT_GT(changes, 0);
  const CStats inRows = model->SeriesInRowOrder(changes);
  auto changeDots = commands.MakeDistributionChart(changes);
  ASSERT_TRUE(changeDots);
  ZelmChart& drawn = *changeDots;
  std::vector<double> expected, got;
  for (int row = 1; row <= inRows.Capacity(); ++row) {
    double value = 0;
    if (inRows.ValueAtIndexDefined(row, value))
      expected.push_back(
          std::round(drawn.Scale().ValueToY(value, drawn.Plot().Top, drawn.Plot().Bottom)));
  }
  ASSERT_LT(static_cast<int>(expected.size()), inRows.Capacity());
  for (const MetaRecord& r : drawn.GetMetafile().Records())
    if (r.kind == MetaRecord::Ellipse) got.push_back((r.points[0].y() + r.points[1].y()) / 2.0);
  std::sort(expected.begin(), expected.end());
  std::sort(got.begin(), got.end());
  ASSERT_EQ(got.size(), expected.size());
  for (size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], expected[i], 1.0) << i;
  Save(drawn, "DistributionOfChanges.png");
}

TEST_F(ChartCommandsTest, PieOfLimitsRefusalsAndShares) {
  ChartCommands commands(*model);
  EXPECT_FALSE(commands.MakePieOfLimits(0));
  EXPECT_EQ(Warnings(), QStringList{"No data selected."});
  model->TabClicked(4);
  MetricLimits limits;
  ASSERT_TRUE(limits.Load(MetricLimits::GetCurrentLimitID()));
  const PageRecord& record = model->Pages(4);
  int withRule = 0, withoutRule = 0;
  for (int i = 0; i < record.ColumnCount; ++i) {
    const int index = record.FirstColumn + i;
    int& slot = limits.RuleExists(model->SeriesMetric(index)) ? withRule : withoutRule;
    if (slot == 0) slot = index;
  }
  ASSERT_GT(withRule, 0);
  auto pie = commands.MakePieOfLimits(withRule);
  ASSERT_TRUE(pie);
  EXPECT_EQ(pie->ChartType(), 9);
  const CStats& shares = pie->SeriesData()[0];
  ASSERT_EQ(shares.count(), 2);
  CStats values = *model->Series(withRule);
  const int out = limits.CalcOutsideLimits(values, model->SeriesMetric(withRule));
  EXPECT_EQ(shares.ValueAtIndex(1), values.count() - out);
  EXPECT_EQ(shares.ValueAtIndex(2), out);
  EXPECT_EQ(pie->DataColors(), (std::vector<std::uint32_t>{0x1A7957, 0x3236DC}));
  EXPECT_EQ(pie->DataLabels()[0],
            model->Definitions().GetMetricName(model->SeriesMetric(withRule), NameAbbreviation) +
                " within limits");
  EXPECT_TRUE(pie->DataLabels()[1].startsWith("Out of limits ("));
  EXPECT_TRUE(pie->ShowLegend);
  Save(*pie, "PieOfLimits.png");
  if (withoutRule > 0) {
    EXPECT_FALSE(commands.MakePieOfLimits(withoutRule));
    EXPECT_EQ(Warnings().last(), "No limit for selected metric.");
  }

  model->TabClicked(2);
  model->ChooseComboItem(PageCombo::ProjectInTimeStyle, 1);
  ASSERT_EQ(model->TimeStyle(), 1);
  EXPECT_FALSE(commands.MakePieOfLimits(model->CurrentSeries()));
  EXPECT_EQ(Warnings().last(), "You are viewing metric changes in time. Limits do not apply.");
}

TEST_F(ChartCommandsTest, KiviatOnTheTimePageTakesProjectMetricsAndPadsToThreeAxes) {
  ChartCommands commands(*model);
  model->TabClicked(2);
  MetricLimits limits;
  ASSERT_TRUE(limits.Load(MetricLimits::GetCurrentLimitID()));
  QStringList expected;
  const PageRecord& record = model->Pages(2);
  for (int i = 0; i < record.ColumnCount; ++i) {
    const int index = record.FirstColumn + i;
    const MetricId metric = model->SeriesMetric(index);
    if (limits.RuleExists(metric) && MetricDefinitions::GetMetricClass(metric) == ClassProject)
      expected << model->SeriesCaption(index);
  }
  auto chart = commands.MakeKiviatOfLimits();
  if (expected.isEmpty()) {
    EXPECT_FALSE(chart);
    EXPECT_EQ(Warnings(), QStringList{"No limits in effect, no chart available."});
    return;
  }
  ASSERT_TRUE(chart);
  while (expected.size() < 3) expected << "-";
  EXPECT_EQ(chart->ChartType(), 8);
  EXPECT_EQ(chart->KiviatLabels(), expected);
  EXPECT_EQ(chart->AxisCount(), expected.size());
  EXPECT_EQ(chart->SeriesColor(1), 0xFF0000u);
  EXPECT_EQ(chart->Title, "Metrics within limits: " + model->Combo(PageCombo::MetricLimit).Text());
  const CStats& shares = chart->SeriesData()[0];
  for (int k = 1; k <= shares.count(); ++k) {
    EXPECT_GE(shares.ValueAtIndex(k), 0);
    EXPECT_LE(shares.ValueAtIndex(k), 1);
    if (expected[k - 1] == "-") {
      EXPECT_EQ(shares.ValueAtIndex(k), 1);
    }
  }
  Save(*chart, "Kiviat.png");
}

TEST_F(ChartCommandsTest, CorrelationChartOfOneMetricWithItselfIsNothing) {
  ChartCommands commands(*model);
  EXPECT_FALSE(commands.GetCorrelationChart(1200, 1200));
  EXPECT_TRUE(Warnings().isEmpty());
  auto chart = commands.GetCorrelationChart(1002, 1201);
  ASSERT_TRUE(chart);
  EXPECT_EQ(chart->ChartType(), 6);
  EXPECT_EQ(chart->Title, "Y=PROCS, X=LINES");
  EXPECT_EQ(chart->SeriesData().size(), 2u);
  EXPECT_FALSE(chart->ShowLegend);
  Save(*chart, "Scatter.png");
}

TEST_F(ChartCommandsTest, TimeChartOfAPresetRunsInRisingDate) {
  ChartCommands commands(*model);
  model->TabClicked(2);
  const int series = model->FindSeries(1201);
  ASSERT_GT(series, 0);
  auto chart = commands.MakeTimeChart(series);
  ASSERT_TRUE(chart);
  EXPECT_EQ(chart->ChartType(), 4);
  EXPECT_EQ(chart->Title, "Procedures and dead procedures");
  ASSERT_EQ(chart->SeriesData().size(), 3u);
  EXPECT_TRUE(chart->ShowLegend);
  const CStats& dates = chart->SeriesData()[0];
  for (int k = 2; k <= dates.count(); ++k)
    EXPECT_LE(dates.ValueAtIndex(k - 1), dates.ValueAtIndex(k)) << k;
  Save(*chart, "TimePreset.png");

  model->ChooseComboItem(PageCombo::ProjectInTimeStyle, 1);
  auto stepped = commands.MakePageChart(model->FindSeries(1201));
  ASSERT_TRUE(stepped);
  EXPECT_EQ(stepped->ChartType(), 5);
}

TEST_F(ChartCommandsTest, CorrelationMatrixHasHeadersAtBothEndsAndMarksOnlyNegatives) {
  ChartCommands commands(*model);
  // Refused on the page of all analyses, the old texts emptied.
  QString matrix = "old", list = "old";
  EXPECT_FALSE(commands.CorrelationText(false, matrix, list));
  EXPECT_TRUE(matrix.isEmpty() && list.isEmpty());
  EXPECT_EQ(
      Warnings(),
      QStringList{"Correlation analysis is not available on this page. See help for explanation."});
  model->TabClicked(4);
  QString screen, screenList, report, reportList;
  ASSERT_TRUE(commands.CorrelationText(false, screen, screenList));
  ASSERT_TRUE(commands.CorrelationText(true, report, reportList));
  EXPECT_EQ(screenList, reportList);
  QStringList lines = screen.split("\r\n");
  ASSERT_EQ(lines.takeLast(), "");
  ASSERT_GE(lines.size(), 3);
  EXPECT_TRUE(lines.first().startsWith("Correlation r\t"));
  EXPECT_EQ(lines.first().mid(13), lines.last());
  const int columns = static_cast<int>(lines.last().count('\t'));
  const QStringList reportLines = report.split("\r\n");
  const QRegularExpression number("^-?\\d\\.\\d{4}$");
  for (int i = 1; i + 1 < lines.size(); ++i) {
    const QStringList cells = lines[i].split('\t');
    const QStringList reportCells = reportLines[i].split('\t');
    EXPECT_EQ(cells.size() - 1, std::min(i, columns)) << lines[i].toStdString();
    ASSERT_EQ(cells.size(), reportCells.size());
    for (int c = 1; c < cells.size(); ++c) {
      if (cells[c] == "-") {
        EXPECT_EQ(reportCells[c], "");
      } else if (cells[c] != "N/A") {
        EXPECT_TRUE(number.match(cells[c]).hasMatch()) << cells[c].toStdString();
        const QString marked = "@@" + cells[c] + "$$";
        EXPECT_EQ(reportCells[c], cells[c].startsWith('-') ? marked : cells[c]);
      }
    }
  }
  EXPECT_FALSE(screen.contains("@@"));
  // Every significant cell has its regression line.
  const int significant = static_cast<int>(screen.count(QRegularExpression("\t-?\\d\\.\\d{4}")));
  EXPECT_EQ(static_cast<int>(screenList.count(" (R²=")), significant);
  EXPECT_TRUE(screenList.isEmpty() || screenList.endsWith("\r\n\r\n"));
}

TEST_F(ChartCommandsTest, CorrelationOnTheTimePageSetsEveryMetricAgainstTheDate) {
  ChartCommands commands(*model);
  model->TabClicked(2);
  const int date = model->FindSeries(1000);
  ASSERT_GT(date, 0);
  QString matrix, list;
  ASSERT_TRUE(commands.CorrelationText(false, matrix, list));
  const QStringList lines = matrix.split("\r\n");
  EXPECT_EQ(lines.first(), "Correlation r\t" + model->SeriesCaption(date));
  for (int i = 1; i + 2 < lines.size(); ++i) EXPECT_EQ(lines[i].count('\t'), 1) << i;
  ASSERT_FALSE(list.isEmpty());
  const QRegularExpression line("^\\S+: -?\\d+\\.\\d{1,8} / day \\(R²=\\d+%\\)$");
  for (const QString& entry : list.split("\r\n", Qt::SkipEmptyParts))
    EXPECT_TRUE(line.match(entry).hasMatch()) << entry.toStdString();
}

TEST_F(ChartCommandsTest, CompareChartFoldsFormatsAndLabelsEachSeries) {
  ChartCommands commands(*model);
  model->TabClicked(4);
  const int first = model->Pages(4).FirstColumn;
  const std::vector<int> chosen{first, first + 1};
  auto bars = commands.MakeCompareChart(chosen, false);
  ASSERT_TRUE(bars);
  EXPECT_EQ(bars->ChartType(), 0);
  EXPECT_EQ(bars->LegendData(),
            QStringList({model->SeriesCaption(first), model->SeriesCaption(first + 1)}));
  ASSERT_EQ(bars->SeriesData().size(), 2u);
  EXPECT_EQ(bars->SeriesData()[1].Capacity(), model->Pages(4).Rows);
  const int format =
      CommonFormat(model->SeriesInfo(first + 1).Format, model->SeriesInfo(first).Format);
  EXPECT_EQ(bars->Scale().YFormat, ChartFormatKind(format));
  Save(*bars, "CompareBars.png");
  auto histograms = commands.MakeCompareChart(chosen, true);
  ASSERT_TRUE(histograms);
  EXPECT_EQ(histograms->ChartType(), 2);
  EXPECT_EQ(histograms->Scale().YFormat, kAxisPercent);
  EXPECT_EQ(histograms->AxisCaption, model->PageTitle());
  Save(*histograms, "CompareHistograms.png");
}

TEST_F(ChartCommandsTest, CompareLeavesOutMetricsOfOtherPagesAndSaysNoDataForNone) {
  ChartCommands commands(*model);
  model->TabClicked(4);
  const int first = model->Pages(4).FirstColumn;
  const MetricId onPage = model->SeriesMetric(first);
  ASSERT_EQ(model->FindSeries(4001), 0);  // a procedure metric is not on the class page
  auto chart = commands.CompareMetrics({4001, onPage}, false);
  ASSERT_TRUE(chart);
  EXPECT_EQ(chart->LegendData(), QStringList{model->SeriesCaption(first)});
  EXPECT_TRUE(Warnings().isEmpty());
  EXPECT_FALSE(commands.CompareMetrics({4001}, true));
  EXPECT_EQ(Warnings(), QStringList{"No data"});
}

TEST_F(ChartCommandsTest, MetricComboListsThePageWithNoneFirst) {
  ChartCommands commands(*model);
  model->TabClicked(4);
  const PageRecord& record = model->Pages(4);
  const MetricId second = model->SeriesMetric(record.FirstColumn + 1);
  ListModel combo;
  commands.FillMetricCombo(combo, second, true);
  ASSERT_EQ(combo.ListCount(), record.ColumnCount + 1);
  EXPECT_EQ(combo.List(0), "<None>");
  EXPECT_EQ(combo.ItemData(0), 0);
  EXPECT_EQ(combo.ItemData(2), second);
  EXPECT_EQ(combo.ListIndex(), 2);
  commands.FillMetricCombo(combo, 9999, false);
  EXPECT_EQ(combo.ListCount(), record.ColumnCount);
  EXPECT_EQ(combo.ListIndex(), 0);
  EXPECT_EQ(combo.List(0), model->SeriesCaption(record.FirstColumn));
}

}  // namespace
}  // namespace ombrelle::test
