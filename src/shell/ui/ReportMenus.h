#pragma once

class QMainWindow;

namespace ombrelle {

class PageModel;

// The Report menu's entries for whole analyses: Project status, Compare
// project status, Limits report, the two metrics lists and Explore saved
// reports, added after the entries already there.
void AddReportMenus(QMainWindow& window, PageModel& model);

}  // namespace ombrelle
