// The statistics and limits panel under the grid.
#include <cmath>
#include <vector>

#include "shell/PageModelFixture.h"
#include "support/FormatNum.h"

namespace ombrelle::test {
namespace {

// The defined values of a grid column, read cell by cell.
std::vector<double> ColumnValues(PageModelTest& test, int column) {
  std::vector<double> values;
  for (int row = 1; row <= test.grid->Rows(); ++row) {
    const QVariant value = test.model->CellValue(row, column);
    if (value.isValid()) values.push_back(value.toDouble());
  }
  return values;
}

CStats SeriesOf(const std::vector<double>& values) {
  CStats stats;
  for (double v : values) stats.AddValue(v);
  stats.CalcStats();
  return stats;
}

TEST_F(PageModelTest, PanelOnAllAnalysesShowsCountRangeAndLimitsOnly) {
  CursorOnMetric(1002);
  const StatsTexts& t = model->Panel().Texts();
  const std::vector<double> values = ColumnValues(*this, model->FindGridColumn(1002) + 1);
  const auto [low, high] = std::minmax_element(values.begin(), values.end());
  EXPECT_EQ(t.Title, "LINES Physical lines");
  EXPECT_EQ(t.Descr, model->Definitions().GetMetricName(1002, NameDescription));
  EXPECT_EQ(t.Count, "21");
  EXPECT_EQ(t.Range, FormatMetric(1, *low) + " .. " + FormatMetric(1, *high));
  for (const QString* text : {&t.Avg, &t.Median, &t.StdDev, &t.Q5Q95, &t.Sum, &t.Outliers,
                              &t.ExtremeOutliers, &t.Skew, &t.Kurtosis})
    EXPECT_EQ(*text, "");
  EXPECT_EQ(t.Limits, "None");
  EXPECT_EQ(t.Problematic, "-");
  EXPECT_FALSE(model->Panel().FullStatsAvailable());
  EXPECT_GT(view.stats, 0);
}

TEST_F(PageModelTest, PanelOnProjectInTimeHasFullStatisticsOfDifferencesOnly) {
  model->TabClicked(2);
  for (int style = 0; style <= 4; ++style) {
    SCOPED_TRACE(style);
    model->ChooseComboItem(PageCombo::ProjectInTimeStyle, style);
    CursorOnMetric(1009);
    const StatsTexts& t = model->Panel().Texts();
    const std::vector<double> values = ColumnValues(*this, model->FindGridColumn(1009) + 1);
    EXPECT_EQ(t.Count, QString::number(values.size()));
    EXPECT_EQ(model->Panel().FullStatsAvailable(), style > 0);
    const QString caption = model->MetricCaption(1009);
    EXPECT_EQ(t.Title, caption + " Logical lines of code");
    if (style == 0) {
      EXPECT_EQ(t.Avg, "");
      EXPECT_EQ(t.Sum, "");
      continue;
    }
    const CStats expected = SeriesOf(values);
    EXPECT_EQ(t.Avg, FormatMetric(model->MetricFormatOnPage(1009, 1), expected.Mean));
    EXPECT_EQ(t.StdDev, FormatMetric(model->MetricFormatOnPage(1009, 2), expected.StdDev));
    EXPECT_EQ(t.Skew, FormatMetric(7, expected.Skew));
    // Fewer than ten analyses: no fences.
    EXPECT_EQ(t.Outliers, "-");
    EXPECT_EQ(t.ExtremeOutliers, "-");
    // LLOC is a project metric: its differences add up, but not its
    // relative changes, which are percentages.
    if (style == 2) {
      EXPECT_EQ(t.Sum, "");
    } else {
      EXPECT_EQ(t.Sum, FormatMetric(model->MetricFormatOnPage(1009, 0), expected.Sum));
    }
  }
}

TEST_F(PageModelTest, PanelOnItemPageCountsValuesOutsideTheRule) {
  model->TabClicked(5);
  CursorOnMetric(4001);
  const StatsTexts& t = model->Panel().Texts();
  const std::vector<double> values = ColumnValues(*this, model->FindGridColumn(4001) + 1);
  const CStats expected = SeriesOf(values);
  EXPECT_EQ(t.Count, "45");
  EXPECT_EQ(t.Avg, FormatMetric(model->MetricFormatOnPage(4001, 1), expected.Mean));
  EXPECT_EQ(t.Sum, FormatMetric(1, expected.Sum));
  EXPECT_NE(t.Median, "");
  EXPECT_NE(t.Q5Q95, "");
  EXPECT_NE(t.Outliers, "");
  EXPECT_EQ(t.Limits, "<= 66");
  const auto outside = std::count_if(values.begin(), values.end(), [](double v) { return v > 66; });
  EXPECT_EQ(
      t.Problematic,
      QStringLiteral("%1 (%2%)").arg(outside).arg(std::lround(100.0 * outside / values.size())));
  EXPECT_EQ(t.Problematic, "1 (2%)");

  // Percentages are not added up.
  model->TabClicked(3);
  CursorOnMetric(2015);
  EXPECT_EQ(model->Panel().Texts().Sum, "");
  EXPECT_NE(model->Panel().Texts().Avg, "");
  // Nor are averages over the analyses of a project.
  model->TabClicked(1);
  CursorOnMetric(2001);
  EXPECT_EQ(model->Panel().Texts().Sum, "");
}

TEST_F(PageModelTest, PanelOfABlankSeriesKeepsItsLimits) {
  OpenAnalysis(2, "Harbour");
  model->ChooseComboItem(PageCombo::ProjectInTimeStyle, 1);
  model->ChooseComboItem(PageCombo::CompareClass, 3);
  // The newest procedure exists in the last analysis only: no differences.
  const ListModel& records = model->Combo(PageCombo::CompareRecord);
  model->ChooseComboItem(PageCombo::CompareRecord, records.ListCount() - 1);
  CursorOnMetric(4001);
  ASSERT_EQ(model->Series(model->CurrentSeries())->count(), 0);
  const StatsTexts& t = model->Panel().Texts();
  EXPECT_EQ(t.Count, "0");
  for (const QString* text : {&t.Avg, &t.Median, &t.StdDev, &t.Range, &t.Q5Q95, &t.Sum, &t.Outliers,
                              &t.ExtremeOutliers, &t.Skew, &t.Kurtosis})
    EXPECT_EQ(*text, "");
  EXPECT_EQ(t.Limits, "<= 66");
  EXPECT_EQ(t.Problematic, "0");
}

TEST_F(PageModelTest, PanelLimitLabelsFollowTheLimitSet) {
  model->TabClicked(5);
  CursorOnMetric(4001);
  MetricLimits::SetCurrentLimitID(LimitSet::None);
  model->Panel().UpdateLimitView();
  EXPECT_EQ(model->Panel().Texts().Limits, "None");
  EXPECT_EQ(model->Panel().Texts().Problematic, "-");
  // A stored set that fails to load: no limit texts at all.
  SaveSetting(MetricLimits::SetSection(7), "Name", "Broken");
  SaveSetting(MetricLimits::SetSection(7), "Version", "1.5");
  MetricLimits::SetCurrentLimitID(7);
  ASSERT_EQ(MetricLimits::GetCurrentLimitID(), 7);
  model->Panel().UpdateLimitView();
  EXPECT_EQ(model->Panel().Texts().Limits, "");
  EXPECT_EQ(model->Panel().Texts().Problematic, "");
  EXPECT_EQ(model->Panel().Texts().Count, "45");
}

TEST(StatsPanelTexts, OutlierSkewAndKurtosisTexts) {
  std::vector<double> nine = {1, 2, 3, 4, 5, 6, 7, 8, 100};
  CStats nineValues = SeriesOf(nine);
  EXPECT_EQ(StatsPanel::OutlierText(nineValues, 1, false, false), "-");
  EXPECT_EQ(StatsPanel::OutlierText(nineValues, 1, true, true), "-");

  // 1..19 and 1000: quartiles 5 and 16 (the 5th and 16th of 20 values), so
  // the fences above are 16 + 1.5 * 11 and 16 + 3 * 11.
  std::vector<double> twenty;
  for (int i = 1; i <= 19; ++i) twenty.push_back(i);
  twenty.push_back(1000);
  CStats tail = SeriesOf(twenty);
  EXPECT_EQ(StatsPanel::OutlierText(tail, 7, false, false), ">32.5");
  EXPECT_EQ(StatsPanel::OutlierText(tail, 7, true, false), ">49.0");
  EXPECT_EQ(StatsPanel::OutlierText(tail, 7, false, true), "[1.0, 32.5]");

  twenty.front() = -1000;
  CStats both = SeriesOf(twenty);
  EXPECT_EQ(StatsPanel::OutlierText(both, 7, false, false).count(", "), 1);
  EXPECT_TRUE(StatsPanel::OutlierText(both, 7, false, false).startsWith("<"));

  CStats constant = SeriesOf(std::vector<double>(12, 4.0));
  EXPECT_EQ(StatsPanel::OutlierText(constant, 1, false, false), "-");
  EXPECT_EQ(StatsPanel::SkewText(constant, ""), "");
  EXPECT_EQ(StatsPanel::KurtosisText(constant, "n/a"), "n/a");
  EXPECT_EQ(StatsPanel::SkewText(tail, ""), FormatMetric(7, tail.Skew));
  EXPECT_EQ(StatsPanel::KurtosisText(tail, ""), FormatMetric(7, tail.Kurtosis));
}

TEST(StatsPanelTexts, CaptionsBesideTheLabels) {
  EXPECT_EQ(StatsPanel::CaptionAvg(), "Average");
  EXPECT_EQ(StatsPanel::CaptionRange(), "Min..Max");
  EXPECT_EQ(StatsPanel::CaptionQ5Q95(), "5%..95%");
  EXPECT_EQ(StatsPanel::CaptionExtremeOutliers(), "Extreme outl.");
  EXPECT_EQ(StatsPanel::CaptionLimits(), "Limit");
  EXPECT_EQ(StatsPanel::CaptionProblematic(), "Problematic");
}

TEST_F(PageModelTest, DisplayChartsIsStoredAsATruthValue) {
  ASSERT_TRUE(model->Panel().DisplayCharts());
  model->Panel().ToggleDisplayCharts();
  EXPECT_FALSE(model->Panel().DisplayCharts());
  EXPECT_EQ(GetSetting("Options", "DisplayCharts"), "0");
  model->Panel().ToggleDisplayCharts();
  EXPECT_TRUE(Startup().DisplayCharts);
  EXPECT_EQ(GetSetting("Options", "DisplayCharts"), "-1");
  EXPECT_EQ(view.menuChecks, 2);
}

}  // namespace
}  // namespace ombrelle::test
