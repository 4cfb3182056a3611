#pragma once

#include <memory>

#include <QString>

namespace ombrelle {

class ListModel;
class ReportCharts;
class PageModel;
class StatusPictures;

// The list dialogs the report commands ask through; the window supplies Qt
// dialogs and tests a scripted stand-in.
class ProjectDialogs {
 public:
  virtual ~ProjectDialogs() = default;
  // `ListSelect` titled `title` over `list`: the item data of the chosen
  // item when the user leaves with OK, else 0.
  virtual int ListSelect(const QString& title, const ListModel& list) = 0;
  // `frmSelectProjects` with both lists filled from `list`: true on OK, with
  // the item data of the two choices (which differ).
  virtual bool SelectProjects(const ListModel& list, int& first, int& second) = 0;
};

// The Report menu's commands: the reports of the current page (statistics,
// charts, correlation analysis) and those of whole analyses (project status
// alone and compared, limits report), the metrics lists and the reports
// folder.
class ReportCommands {
 public:
  ReportCommands(PageModel& page, ProjectDialogs& dialogs, StatusPictures& pictures)
      : m_page(page), m_dialogs(dialogs), m_pictures(pictures) {}

  // `SelectProjectDialog`: the latest analysis of each project, titled
  // "Select project"; the chosen database or 0.
  int SelectProjectDialog();
  void StatisticsReport();
  void ChartsReport();
  // The correlation texts of the page in report form; their refusal is told
  // by the chart commands and writes nothing.
  void CorrelationReport();
  void ProjectStatus();
  void CompareProjectStatus();
  void LimitsReport();
  void MetricsList(bool sorted);
  // Opens the reports folder; "No reports in " + folder when it is missing.
  void ExploreReports();

 private:
  PageModel& m_page;
  ProjectDialogs& m_dialogs;
  StatusPictures& m_pictures;
};

// The charts of the charts report as the window's chart commands make them
// for the page's series.
std::unique_ptr<ReportCharts> MakePageCharts(PageModel& page);

}  // namespace ombrelle
