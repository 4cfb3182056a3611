// The two small charts beside the statistics panel.
#include "chart/ZelmChart.h"
#include "pictures/Metafile.h"
#include "shell/ChartCommands.h"
#include "shell/PageModel.h"
#include "shell/StatsPanel.h"
#include "stats/CStats.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

// The chart drawn again with larger texts, so that the labels stay readable
// in the small place. The page title under the chart is left out: it stands
// above the table already, and the room goes to the axis labels.
std::shared_ptr<Metafile> SmallChart(std::unique_ptr<ZelmChart> chart) {
  if (chart) {
    chart->TextScale = 1.5f;
    if (!chart->AxisCaption.startsWith(QStringLiteral("Red = "))) chart->AxisCaption.clear();
    chart->Draw(false);
  }
  return ChartMetafile(std::move(chart));
}

}  // namespace

void StatsPanel::ChartsChanged() {
  if (m_chartsListener) m_chartsListener();
}

void StatsPanel::UpdatePageChart(int series) {
  m_pageChart.reset();
  if (series != 0 && DisplayCharts())
    m_pageChart = SmallChart(ChartCommands(m_page).MakePageChart(series));
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
  m_gridChart = SmallChart(std::move(chart));
  ChartsChanged();
}

}  // namespace ombrelle
