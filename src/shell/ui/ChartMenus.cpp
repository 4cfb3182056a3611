#include "shell/ui/ChartMenus.h"

#include <memory>

#include <QAction>
#include <QMainWindow>
#include <QMenu>

#include "chart/ZelmChart.h"
#include "pictures/ui/MetaForm.h"
#include "pictures/ui/MetaView.h"
#include "shell/ChartCommands.h"
#include "shell/PageModel.h"
#include "shell/StatsPanel.h"
#include "shell/ui/TableMenus.h"
#include "shell/ui/frmCorrelation.h"
#include "shell/ui/frmSelectManyMetrics.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

void ShowChart(QMainWindow& window, std::unique_ptr<ZelmChart> chart) {
  if (!chart) {
    Ui().MsgBox(QStringLiteral("No chart to display."), MsgStyle::Information, QString());
    return;
  }
  const QString title = chart->Title;
  MetaForm::Display(ChartMetafile(std::move(chart)), title, &window);
}

}  // namespace

void AddChartMenus(QMainWindow& window, PageModel& model) {
  QMenu* menu = WindowMenu(window, "mChart", "&Chart", "mReport");
  QMainWindow* owner = &window;
  PageModel* page = &model;
  const auto add = [menu](const char* name, const char* caption, auto slot) {
    QAction* action = menu->addAction(QString::fromUtf8(caption));
    action->setObjectName(QString::fromLatin1(name));
    QObject::connect(action, &QAction::triggered, menu, slot);
  };
  add("mChartBar", "&Bar chart of metric", [owner, page] {
    ShowChart(*owner, ChartCommands(*page).MakeBarChart(false, page->CurrentSeries()));
  });
  add("mChartHistogram", "&Histogram of metric", [owner, page] {
    ShowChart(*owner, ChartCommands(*page).MakeHistogram(page->CurrentSeries()));
  });
  add("mChartDistribution", "&Distribution of metric", [owner, page] {
    ShowChart(*owner, ChartCommands(*page).MakeDistributionChart(page->CurrentSeries()));
  });
  add("mChartCompare0", "&Compare metrics...", [owner, page] {
    ChartCommands commands(*page);
    std::vector<MetricId> metrics;
    if (frmSelectManyMetrics::Display(owner, commands, page->CurrentMetric(), metrics))
      if (auto chart = commands.CompareMetrics(metrics, false)) ShowChart(*owner, std::move(chart));
  });
  add("mChartCompare1", "C&ompare histograms...", [owner, page] {
    ChartCommands commands(*page);
    std::vector<MetricId> metrics;
    if (frmSelectManyMetrics::Display(owner, commands, page->CurrentMetric(), metrics))
      if (auto chart = commands.CompareMetrics(metrics, true)) ShowChart(*owner, std::move(chart));
  });
  add("mChartTime", "&Time chart...", [owner, page] {
    ChartCommands commands(*page);
    std::vector<MetricId> metrics;
    if (commands.TimeChartPossible() &&
        frmSelectManyMetrics::Display(owner, commands, page->CurrentMetric(), metrics))
      ShowChart(*owner, commands.TimeChartOfMetrics(metrics));
  });
  // The time chart is only for the page of a project in time.
  QObject::connect(menu, &QMenu::aboutToShow, menu, [menu, page] {
    if (auto* time = menu->findChild<QAction*>(QStringLiteral("mChartTime")))
      time->setEnabled(page->CurrentPage() == 2);
  });
  menu->addSeparator();
  add("mChartPieLimits", "&Pie of limits on metric", [owner, page] {
    // A pie that cannot be made has told its reason already.
    if (auto chart = ChartCommands(*page).MakePieOfLimits(page->CurrentSeries()))
      ShowChart(*owner, std::move(chart));
  });
  add("mChartKiviat", "&Kiviat of limits on page", [owner, page] {
    if (auto chart = ChartCommands(*page).MakeKiviatOfLimits()) ShowChart(*owner, std::move(chart));
  });
  add("mChartScatter", "&XY chart of 2 metrics...",
      [owner, page] { frmCorrelation::Display(*page, owner); });
}

void AttachGridCharts(StatsPanel& panel, MetaView& pageView, MetaView& gridView) {
  MetaView* page = &pageView;
  MetaView* grid = &gridView;
  StatsPanel* source = &panel;
  panel.SetChartsListener([source, page, grid] {
    if (page->GetMetafile() != source->PageChart()) page->SetMetafile(source->PageChart());
    if (grid->GetMetafile() != source->GridChart()) grid->SetMetafile(source->GridChart());
  });
}

}  // namespace ombrelle
