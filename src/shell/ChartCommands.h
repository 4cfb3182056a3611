#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <QString>

#include "core/MetricDefinitions.h"

namespace ombrelle {

class CStats;
class ListModel;
class Metafile;
class PageModel;
class ZelmChart;

// The recording of a drawn chart, which keeps the chart alive; null for no chart.
std::shared_ptr<Metafile> ChartMetafile(std::unique_ptr<ZelmChart> chart);

// Number format kind of the chart engine for a metric's display format:
// percentages (3, 4, 5) give 1, dates (9) give 2, any other 0.
int ChartFormatKind(int format);
// The chart's Y and X number kinds from two metric formats.
void SetChartNumberFormat(ZelmChart& chart, int yFormat, int xFormat);
// The format both a and b can be shown in: formats form a family tree in
// which a child can always be shown in its parent's form.
int CommonFormat(int a, int b);
// "a + b * name": a in two decimals, b in two decimals from 0.1 in size
// upward and up to eight below, " -b" for a negative slope; "*" alone
// closes the text when there is no name.
QString LinearFormulaText(double a, double b, const QString& name);
// The regression line's text; the same as LinearFormulaText.
QString RegressionFormula(double a, double b, const QString& name);
// The median line (more than 5 values) and the outlier fences (10 values or
// more) of a bar chart, for a series with calculated statistics that varies.
void AddBarChartLines(ZelmChart& chart, CStats& values);
// A histogram of one series, or two side by side.
std::unique_ptr<ZelmChart> MakeMetricHistogram(int format, const QString& title,
                                               const QString& caption, const CStats& series,
                                               const CStats* otherSeries);

// The charts of the page's data, made without widgets: each routine returns a
// finished (drawn) chart, or null with its reason told through the
// user-interface service where there is one to tell.
class ChartCommands {
 public:
  explicit ChartCommands(PageModel& page) : m_page(page) {}

  // One bar per table row of the cursor's column; with markRow the cursor's
  // bar red and named under the chart.
  std::unique_ptr<ZelmChart> MakeBarChart(bool markRow, int series);
  std::unique_ptr<ZelmChart> MakeHistogram(int series);
  std::unique_ptr<ZelmChart> MakeDistributionChart(int series);
  // Bars (in row order) or histograms of several series of the page.
  std::unique_ptr<ZelmChart> MakeCompareChart(const std::vector<int>& series, bool histograms);
  // Page 2: the column's metric (or its preset group) against the date.
  std::unique_ptr<ZelmChart> MakeTimeChart(int series);
  // The small chart beside the statistics: time chart on page 2, else histogram.
  std::unique_ptr<ZelmChart> MakePageChart(int series);
  // Metrics read anew from the data set in force: x against y, or against a
  // list of metrics (all available or none at all).
  std::unique_ptr<ZelmChart> MakeXYChart(MetricId x, MetricId y, const QString& title,
                                         bool timeChart);
  std::unique_ptr<ZelmChart> MakeXYChart(MetricId x, const std::vector<MetricId>& y,
                                         const QString& title, bool timeChart);
  // Scatter with regression line; null when x and y are the same metric.
  std::unique_ptr<ZelmChart> GetCorrelationChart(MetricId x, MetricId y);
  std::unique_ptr<ZelmChart> MakePieOfLimits(int series);
  std::unique_ptr<ZelmChart> MakeKiviatOfLimits();

  // The compare command once metrics are chosen: each metric's series on
  // this page (a metric not on the page is left out silently); the warning
  // "No data" and null when none is left.
  std::unique_ptr<ZelmChart> CompareMetrics(const std::vector<MetricId>& metrics, bool histograms);
  // The time chart command once metrics are chosen: the page needs 2 rows.
  std::unique_ptr<ZelmChart> TimeChartOfMetrics(const std::vector<MetricId>& metrics);
  // The check the time chart command makes before asking for metrics;
  // false with its warning.
  bool TimeChartPossible();
  // The check the XY command makes before opening its window.
  bool XYChartPossible();
  // The metric columns of the page, as "<None>" (data 0) when withNone and
  // then each series' caption with its metric id; `selected` is chosen, or
  // the first item when it is not there.
  void FillMetricCombo(ListModel& combo, MetricId selected, bool withNone) const;

  // The correlation matrix and the significant regression lines of the page;
  // false (with a warning, buffers empty) when the page allows none.
  // forReport marks negative cells "@@…$$" and leaves insignificant cells empty.
  bool CorrelationText(bool forReport, QString& matrix, QString& regressions);

  // The preset of a time chart for `metric` on page 2: its title and Y
  // metrics; false when the metric belongs to none.
  static bool TimePreset(MetricId metric, QString& title, std::vector<MetricId>& metrics);

 private:
  QString SeriesTitle(int series) const;
  std::unique_ptr<ZelmChart> XYChart(MetricId x, const std::vector<MetricId>& y, bool list,
                                     const QString& title, bool timeChart);

  PageModel& m_page;
};

}  // namespace ombrelle
