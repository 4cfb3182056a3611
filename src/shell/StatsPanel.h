#pragma once

#include <functional>
#include <memory>

#include <QString>

namespace ombrelle {

class CStats;
class Metafile;
class PageModel;

// The texts of the statistics frame below the grid.
struct StatsTexts {
  QString Title;            // frameStats: caption, a blank, long name ("&" doubled)
  QString Descr;            // lblDescr
  QString Avg;              // lblAvg
  QString Median;           // lblMedian
  QString StdDev;           // lblStdDev
  QString Range;            // lblRange
  QString Q5Q95;            // lblQ5Q95
  QString Sum;              // lblSum
  QString Count;            // lblCount
  QString Outliers;         // lblOutliers
  QString ExtremeOutliers;  // lblExtremeOutliers
  QString Skew;             // lblSkew
  QString Kurtosis;         // lblKurtosis
  QString Limits;           // lblLimits
  QString Problematic;      // lblProblematic
};

// The statistics and limits panel of the main window: the texts describing
// the column under the cursor, computed from its series and the limit set in
// force, and the display-charts option. Holds only the texts; everything else
// is read from the page model that owns it.
class StatsPanel {
 public:
  // The captions shown beside the value labels, in the order of StatsTexts
  // from Avg to Problematic.
  static const QString& CaptionAvg();
  static const QString& CaptionMedian();
  static const QString& CaptionStdDev();
  static const QString& CaptionRange();
  static const QString& CaptionQ5Q95();
  static const QString& CaptionSum();
  static const QString& CaptionCount();
  static const QString& CaptionOutliers();
  static const QString& CaptionExtremeOutliers();
  static const QString& CaptionSkew();
  static const QString& CaptionKurtosis();
  static const QString& CaptionLimits();
  static const QString& CaptionProblematic();

  explicit StatsPanel(PageModel& page) : m_page(page) {}

  const StatsTexts& Texts() const { return m_texts; }

  // Fills the texts for series `series` (below 1: blank panel).
  void UpdateStats(int series);
  // Whether averages and fences mean something on the current page.
  bool FullStatsAvailable() const;
  static QString SkewText(const CStats& stats, const QString& defaultText);
  static QString KurtosisText(const CStats& stats, const QString& defaultText);
  QString SumText(int series) const;
  static QString OutlierText(CStats& stats, int format, bool extreme, bool bracketed);

  // Makes the page's limit set if needed and loads the current set into it.
  void LoadCurrentLimits();
  // After a change of limits: reload them, refresh the texts and the grid.
  void UpdateLimitView();

  // The "Display charts" option (stored under Options/DisplayCharts).
  bool DisplayCharts() const;
  void ToggleDisplayCharts();

  // The two small charts beside the panel. The page chart (MetaView) is the
  // column's histogram, or its time chart on page 2; none for series 0 or
  // with charts off.
  void UpdatePageChart(int series);
  // The grid's bar chart (MetaView2) after a column change (mode 0), a
  // cursor move or layout (1), a sort (2) or the charts option (3). Columns
  // of more than kBarChartLimit values are drawn without the cursor's bar
  // and not on cursor moves, so walking down a long table stays quick.
  void UpdateGridChart(int mode);
  static constexpr int kBarChartLimit = 500;
  // Leaves the grid's chart place empty (a page being loaded).
  void ClearGridChart();

  // The pictures of the two charts; null when the place shows none.
  const std::shared_ptr<Metafile>& PageChart() const { return m_pageChart; }
  const std::shared_ptr<Metafile>& GridChart() const { return m_gridChart; }
  // How many grid bar charts have been drawn so far.
  int GridChartsMade() const { return m_gridChartsMade; }
  // Called whenever a chart picture changes.
  void SetChartsListener(std::function<void()> listener) { m_chartsListener = std::move(listener); }

 private:
  void ChartsChanged();

  PageModel& m_page;
  StatsTexts m_texts;
  std::shared_ptr<Metafile> m_pageChart;
  std::shared_ptr<Metafile> m_gridChart;
  int m_gridChartsMade = 0;
  std::function<void()> m_chartsListener;
};

}  // namespace ombrelle
