#pragma once

#include "reports/ReportPage.h"

namespace ombrelle {

class PageModel;

// The main window's current page as the reports read it: the grid's
// geometry and captions, the cells in display order and the page's series,
// all answered by the page model.
class PageReportSource : public ReportPage {
 public:
  explicit PageReportSource(PageModel& page) : m_page(page) {}

  bool Loaded() const override;
  bool Rotated() const override;
  int Columns() const override;
  int Rows() const override;
  QString ColumnCaption(int column) const override;
  QString CellExportText(int row, int column, int kind) const override;
  QString Heading() const override;
  QString SubHeading() const override;
  QString PageTitle() const override;
  int MetricClassOfPage() const override;
  int SeriesCount() const override;
  MetricId SeriesMetric(int index) const override;
  QString SeriesCaption(int index) const override;
  CStats* SeriesStats(int index) const override;
  int MetricFormatOnPage(MetricId id, int kind) const override;
  bool FullStatsAvailable() const override;
  QString OutlierText(int index) const override;
  QString SumText(int index) const override;
  const MetricDefinitions& Definitions() const override;

 private:
  // Index in the model's Series of the page's series `index` (1-based).
  int SeriesIndex(int index) const;

  PageModel& m_page;
};

}  // namespace ombrelle
