#include "shell/ui/ChartMenus.h"

#include <memory>

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QPainter>
#include <QWidget>

#include "chart/ZelmChart.h"
#include "shell/ChartCommands.h"
#include "shell/PageModel.h"
#include "shell/ui/TableMenus.h"
#include "shell/ui/frmSelectManyMetrics.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

// A window showing one chart, scaled to its client area; closing it frees it.
class ChartWindow : public QWidget {
 public:
  ChartWindow(QWidget* owner, std::unique_ptr<ZelmChart> chart)
      : QWidget(owner, Qt::Window), m_chart(std::move(chart)) {
    setObjectName(QStringLiteral("ChartWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(m_chart->Title.isEmpty() ? QStringLiteral("Picture viewer") : m_chart->Title);
    const int height = 480;
    resize(static_cast<int>(height * m_chart->PageAspect()), height);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::white);
    m_chart->Display(painter, 0, 0, width(), height());
  }

 private:
  std::unique_ptr<ZelmChart> m_chart;
};

void ShowChart(QMainWindow& window, std::unique_ptr<ZelmChart> chart) {
  if (!chart) {
    Ui().MsgBox(QStringLiteral("No chart to display."), MsgStyle::Information, QString());
    return;
  }
  auto* view = new ChartWindow(&window, std::move(chart));
  view->show();
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
}

}  // namespace ombrelle
