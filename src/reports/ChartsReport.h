#pragma once

#include <memory>

#include <QDateTime>
#include <QString>

namespace ombrelle {

class ReportPage;
class ZelmChart;

// The two charts the charts report shows for each series of the page; the
// window's chart commands make them.
class ReportCharts {
 public:
  virtual ~ReportCharts() = default;
  // The chart beside the statistics for the page's series `index`
  // (1..SeriesCount): the time chart on the time page, else the histogram;
  // drawn, or null when there is none.
  virtual std::unique_ptr<ZelmChart> PageChart(int index) = 0;
  // The bar chart of that series in the rows' display order, no row marked.
  virtual std::unique_ptr<ZelmChart> BarChart(int index) = 0;
};

// Writes the charts of the page (per series its page chart and its bar
// chart, 450 pixels wide) as a web archive under "Charts" in the reports
// folder and opens it. A file that cannot be written is told in a box and
// leaves nothing under the final name. The archive's name, "" on failure.
QString WriteChartsReport(const ReportPage& page, ReportCharts& charts,
                          const QDateTime& when = QDateTime());
// The same archive written to `file`, which is not opened; true when written.
bool WriteChartsReportFile(const ReportPage& page, ReportCharts& charts, const QString& file,
                           const QDateTime& when = QDateTime());

}  // namespace ombrelle
