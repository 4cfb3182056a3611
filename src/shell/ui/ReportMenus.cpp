#include "shell/ui/ReportMenus.h"

#include <memory>

#include <QAction>
#include <QMainWindow>
#include <QMenu>

#include "reports/StatusPictures.h"
#include "shell/ReportCommands.h"
#include "shell/ui/ProjectDialogsUi.h"
#include "shell/ui/TableMenus.h"

namespace ombrelle {

namespace {

// What the menu entries share, owned by the menu.
struct ReportMenuState : QObject {
  ReportMenuState(QMainWindow& window, PageModel& model)
      : QObject(&window), dialogs(&window), commands(model, dialogs, pictures) {}
  ProjectDialogsUi dialogs;
  ChartStatusPictures pictures;
  ReportCommands commands;
};

}  // namespace

void AddReportMenus(QMainWindow& window, PageModel& model) {
  QMenu* report = WindowMenu(window, "mReport", "&Report", "mOptions");
  auto* state = new ReportMenuState(window, model);
  ReportCommands* commands = &state->commands;
  const auto add = [report](const char* name, const char* caption, auto slot) {
    QAction* action = report->addAction(QString::fromUtf8(caption));
    action->setObjectName(QString::fromLatin1(name));
    QObject::connect(action, &QAction::triggered, report, slot);
  };
  add("mReportStats", "&Statistics on current page", [commands] { commands->StatisticsReport(); });
  add("mReportCharts", "C&harts on current page", [commands] { commands->ChartsReport(); });
  add("mReportCorrelations", "Cor&relation analysis",
      [commands] { commands->CorrelationReport(); });
  report->addSeparator();
  add("mReportStatus0", "&Project status", [commands] { commands->ProjectStatus(); });
  add("mReportStatus1", "&Compare project status",
      [commands] { commands->CompareProjectStatus(); });
  add("mReportLimits", "&Limits report", [commands] { commands->LimitsReport(); });
  report->addSeparator();
  add("mReportMetricsList", "&Metrics list", [commands] { commands->MetricsList(false); });
  add("mReportMetricsListSorted", "Metrics list, s&orted",
      [commands] { commands->MetricsList(true); });
  report->addSeparator();
  add("mReportExplore", "&Explore saved reports", [commands] { commands->ExploreReports(); });
}

}  // namespace ombrelle
