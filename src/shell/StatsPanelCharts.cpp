// The two small charts beside the statistics panel.
#include "chart/ZelmChart.h"
#include "pictures/Metafile.h"
#include "shell/ChartCommands.h"
#include "shell/PageModel.h"
#include "shell/StatsPanel.h"
#include "stats/CStats.h"
#include "support/UiServices.h"

namespace ombrelle {

void StatsPanel::ChartsChanged() {
  if (m_chartsListener) m_chartsListener();
}

void StatsPanel::UpdatePageChart(int series) {
  m_pageChart.reset();
  if (series != 0 && DisplayCharts())
    m_pageChart = ChartMetafile(ChartCommands(m_page).MakePageChart(series));
  ChartsChanged();
}

void StatsPanel::ClearGridChart() {
  m_gridChart.reset();
  ChartsChanged();
}

void StatsPanel::UpdateGridChart(int mode) {
  const int series = m_page.CurrentSeries();
  const int page = m_page.CurrentPage();
  CStats* values = series >= 1 ? m_page.Series(series) : nullptr;
  if (!DisplayCharts() || series < 1 || page < 0 || !m_page.Pages(page).Loaded || !values) {
    ClearGridChart();
    return;
  }
  const bool small = values->count() <= kBarChartLimit;
  // A column change is followed by the cursor's arrival, which draws; a long
  // column is not drawn again for each row the cursor walks.
  if ((small && mode == 0) || (!small && mode == 1)) return;
  std::unique_ptr<ZelmChart> chart;
  if (small) {
    chart = ChartCommands(m_page).MakeBarChart(true, series);
  } else {
    BusyCursor busy;
    chart = ChartCommands(m_page).MakeBarChart(false, series);
  }
  ++m_gridChartsMade;
  m_gridChart = ChartMetafile(std::move(chart));
  ChartsChanged();
}

}  // namespace ombrelle
