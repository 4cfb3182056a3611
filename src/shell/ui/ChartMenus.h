#pragma once

class QMainWindow;

namespace ombrelle {

class MetaView;
class PageModel;
class StatsPanel;

// The Chart menu: bar chart, histogram and distribution of the current
// column, the compare charts and the time chart of metrics chosen in a
// dialog, the pie and the Kiviat of limits; each chart is shown in a picture
// window owned by the main window.
void AddChartMenus(QMainWindow& window, PageModel& model);

// Shows the panel's page chart in `pageView` and its grid bar chart in
// `gridView` whenever they change.
void AttachGridCharts(StatsPanel& panel, MetaView& pageView, MetaView& gridView);

}  // namespace ombrelle
