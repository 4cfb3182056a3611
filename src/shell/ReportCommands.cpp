#include "shell/ReportCommands.h"

#include <QDir>

#include "chart/ZelmChart.h"
#include "core/ListModel.h"
#include "core/MetricRead.h"
#include "reports/ChartsReport.h"
#include "reports/ListReports.h"
#include "reports/PageReports.h"
#include "reports/ReportFrame.h"
#include "reports/StatusReport.h"
#include "shell/ChartCommands.h"
#include "shell/PageModel.h"
#include "shell/PageReportSource.h"
#include "support/Filename.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

// The analyses the report dialogs offer: every analysis, the current one
// chosen.
void FillProjects(PageModel& page, ListModel& list) {
  page.Reader().FillCombo(list, DataModes::AllFiles, page.CurrentDatabase());
}

// The charts report's pictures from the chart commands, by the page's own
// series numbers.
class PageCharts : public ReportCharts {
 public:
  explicit PageCharts(PageModel& page) : m_page(page), m_commands(page) {}
  std::unique_ptr<ZelmChart> PageChart(int index) override {
    return m_commands.MakePageChart(SeriesIndex(index));
  }
  std::unique_ptr<ZelmChart> BarChart(int index) override {
    return m_commands.MakeBarChart(false, SeriesIndex(index));
  }

 private:
  int SeriesIndex(int index) const {
    return m_page.Pages(m_page.CurrentPage()).FirstColumn + index - 1;
  }
  PageModel& m_page;
  ChartCommands m_commands;
};

}  // namespace

std::unique_ptr<ReportCharts> MakePageCharts(PageModel& page) {
  return std::make_unique<PageCharts>(page);
}

void ReportCommands::StatisticsReport() { WriteStatisticsReport(PageReportSource(m_page)); }

void ReportCommands::ChartsReport() {
  PageCharts charts(m_page);
  WriteChartsReport(PageReportSource(m_page), charts);
}

void ReportCommands::CorrelationReport() {
  QString matrix;
  QString regression;
  if (ChartCommands(m_page).CorrelationText(true, matrix, regression))
    WriteCorrelationReport(matrix, regression);
}

int ReportCommands::SelectProjectDialog() {
  ListModel list;
  FillProjects(m_page, list);
  return m_dialogs.ListSelect(QStringLiteral("Select project"), list);
}

void ReportCommands::ProjectStatus() {
  const int database = SelectProjectDialog();
  if (database > 0) WriteStatusReport(m_page.Reader(), database, 0, m_pictures);
}

void ReportCommands::CompareProjectStatus() {
  ListModel list;
  FillProjects(m_page, list);
  int first = 0;
  int second = 0;
  if (m_dialogs.SelectProjects(list, first, second) && first > 0 && second > 0) {
    WriteStatusReport(m_page.Reader(), first, second, m_pictures);
  }
}

void ReportCommands::LimitsReport() {
  const int database = SelectProjectDialog();
  if (database <= 0) return;
  BusyCursor busy;
  WriteLimitsReport(m_page.Reader(), database, m_page.Limits());
}

void ReportCommands::MetricsList(bool sorted) {
  BusyCursor busy;
  WriteMetricsList(m_page.Definitions(), sorted);
}

void ReportCommands::ExploreReports() {
  const QString folder = ReportsFolder();
  if (!FolderExists(folder)) {
    Ui().MsgBox(QStringLiteral("No reports in ") + folder, MsgStyle::Exclamation, QString());
    return;
  }
  Ui().ShellOpen(folder);
}

}  // namespace ombrelle
