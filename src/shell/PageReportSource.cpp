#include "shell/PageReportSource.h"

#include "grid/OwnerGridLogic.h"
#include "shell/PageModel.h"
#include "stats/CStats.h"
#include "support/FormatNum.h"

namespace ombrelle {

namespace {
// The metric whose format a cell outside every series takes.
constexpr MetricId kNoSeriesMetric = 1009;
}  // namespace

bool PageReportSource::Loaded() const { return m_page.Pages(m_page.CurrentPage()).Loaded; }

bool PageReportSource::Rotated() const { return m_page.Rotated(); }

int PageReportSource::Columns() const { return m_page.Grid()->Columns(); }

int PageReportSource::Rows() const { return m_page.Grid()->Rows(); }

QString PageReportSource::ColumnCaption(int column) const {
  return m_page.Grid()->ColumnCaption(column);
}

QString PageReportSource::CellExportText(int row, int column, int kind) const {
  if (column > m_page.Grid()->Columns()) return {};
  const QVariant value = m_page.CellValue(row, column);
  int pageRow = row;
  int pageColumn = column;
  m_page.SwapRowCol(pageRow, pageColumn);
  if (pageRow >= 1 && pageColumn >= 2) {
    if (!value.isValid()) return {};
    const MetricId metric =
        m_page.SeriesMetric(m_page.ColumnToSeries(m_page.CurrentPage(), pageColumn));
    const int format = m_page.MetricFormatOnPage(metric != 0 ? metric : kNoSeriesMetric, 0);
    const double number = value.toDouble();
    return kind == ExportKind::Html ? FormatMetric(format, number)
                                    : FormatMetricPlain(format, number);
  }
  return value.toString();
}

QString PageReportSource::Heading() const {
  return MetricDefinitions::GetMetricClassName(MetricClassOfPage(), false) +
         QStringLiteral(" metrics");
}

QString PageReportSource::SubHeading() const {
  const ListModel& analysis = m_page.Combo(PageCombo::Analysis);
  const ListModel& style = m_page.Combo(PageCombo::ProjectInTimeStyle);
  const ListModel& record = m_page.Combo(PageCombo::CompareRecord);
  if (style.Visible() && record.Visible())
    return analysis.Text() + QStringLiteral(" - ") + m_page.Combo(PageCombo::CompareClass).Text() +
           record.Text() + QStringLiteral(" (") + style.Text() + QLatin1Char(')');
  if (style.Visible())
    return analysis.Text() + QStringLiteral(" (") + style.Text() + QLatin1Char(')');
  if (analysis.Visible()) return analysis.Text();
  return {};
}

QString PageReportSource::PageTitle() const { return m_page.PageTitle(); }

int PageReportSource::MetricClassOfPage() const {
  return m_page.MetricClassOfPage(m_page.CurrentPage());
}

int PageReportSource::SeriesCount() const {
  const PageRecord& record = m_page.Pages(m_page.CurrentPage());
  return record.FirstColumn >= 1 ? record.ColumnCount : 0;
}

int PageReportSource::SeriesIndex(int index) const {
  return m_page.Pages(m_page.CurrentPage()).FirstColumn + index - 1;
}

MetricId PageReportSource::SeriesMetric(int index) const {
  return m_page.SeriesMetric(SeriesIndex(index));
}

QString PageReportSource::SeriesCaption(int index) const {
  return m_page.SeriesCaption(SeriesIndex(index));
}

CStats* PageReportSource::SeriesStats(int index) const { return m_page.Series(SeriesIndex(index)); }

int PageReportSource::MetricFormatOnPage(MetricId id, int kind) const {
  return m_page.MetricFormatOnPage(id, kind);
}

bool PageReportSource::FullStatsAvailable() const { return m_page.Panel().FullStatsAvailable(); }

QString PageReportSource::OutlierText(int index) const {
  CStats* stats = SeriesStats(index);
  if (!stats) return QStringLiteral("-");
  return StatsPanel::OutlierText(*stats, m_page.MetricFormatOnPage(SeriesMetric(index), 0), false,
                                 false);
}

QString PageReportSource::SumText(int index) const {
  return m_page.Panel().SumText(SeriesIndex(index));
}

const MetricDefinitions& PageReportSource::Definitions() const { return m_page.Definitions(); }

}  // namespace ombrelle
