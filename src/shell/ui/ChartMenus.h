#pragma once

class QMainWindow;

namespace ombrelle {

class PageModel;

// The Chart menu: the charts of the current column and page that need no
// dialog (bar chart, histogram, distribution, pie and Kiviat of limits), each
// shown in a picture window owned by the main window.
void AddChartMenus(QMainWindow& window, PageModel& model);

}  // namespace ombrelle
