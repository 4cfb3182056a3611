#pragma once

class QMainWindow;

namespace ombrelle {

class PageModel;

// The Report menu's entries after the table reports: the statistics, charts
// and correlation reports of the page, Project status, Compare project
// status, Limits report, the two metrics lists and Explore saved reports.
void AddReportMenus(QMainWindow& window, PageModel& model);

}  // namespace ombrelle
