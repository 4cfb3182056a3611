// Loading a page, laying out the grid, the cursor, sorting and rotation.
#include <cstdlib>

#include <QFontMetricsF>

#include "core/MetricRead.h"
#include "grid/OwnerGridLogic.h"
#include "shell/PageModel.h"
#include "stats/CStats.h"
#include "support/FormatNum.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

// Width the header column starts from, and the minimum of a metric column.
constexpr int kHeaderColumnWidth = 240;
constexpr int kMetricColumnWidth = 50;
constexpr int kRotatedCaptionWidth = 100;
// A date column is sized on 31 December 1999, a date as wide as any.
constexpr double kWideDate = 36525;
constexpr int kDateFormat = 9;

}  // namespace

void PageModel::LoadPage(int page) {
  if (page < 0 || page >= kPageCount || !m_reader) return;
  const MetricId first = FirstMetricOfPage(page);
  const int metricClass = MetricClassOfPage(page);

  m_panel.UpdatePageChart(0);
  m_panel.ClearGridChart();
  m_panel.UpdateStats(0);

  PageRecord& record = m_pages[static_cast<size_t>(page)];
  if (!record.Loaded) {
    const MetricId pageMetric = record.PageMetric;
    record = PageRecord{};
    record.PageMetric = pageMetric;
    record.SortColumn = page <= 2 ? 0 : 1;
    m_selection.Load(MetricSelection::Current());
    const int rowClass = page == 2 ? ClassProject : metricClass;
    m_reader->GetRowHeaders(record.RowHeaders, rowClass, record.RowOrder);
    record.FirstColumn = SeriesUpperBound() + 1;
    record.Rows = m_reader->GetClassSize(rowClass);
    for (MetricId id = first; id <= kLastMetricId; ++id) {
      const bool candidate = metricClass == ClassProject ||
                             MetricDefinitions::GetMetricClass(id) == metricClass ||
                             (page == 2 && (id == 1000 || id == 1001));
      if (!candidate || !m_selection.IsSelected(id) || !m_reader->MetricAvailable(id)) continue;
      ++record.ColumnCount;
      m_seriesInfo.push_back(SeriesEntry{id, MetricFormatOnPage(id, 0)});
      m_series.push_back(std::make_unique<CStats>(m_reader->GetValues(id)));
    }
  }

  const int column = ChooseCursorColumn();
  LayoutGrid();
  int targetRow = 1;
  int targetColumn = column + 1;
  if (m_rotated) {
    targetRow = column;
    targetColumn = 3;
  }
  if (targetColumn <= m_grid->FixedColumns() || targetColumn > m_grid->Columns()) {
    PlaceCursor(1, m_grid->FixedColumns() + 1);
  } else {
    PlaceCursor(targetRow, targetColumn);
  }
}

int PageModel::ChooseCursorColumn() const {
  if (m_currentMetric < kFirstMetricId) return 1;
  int column = FindGridColumn(m_currentMetric);
  if (column > 0) return column;
  MetricFormula formula;
  if (m_definitions.GetMetricFormula(m_currentMetric, formula)) {
    if (formula.SummaryMetric != 0) {
      column = FindGridColumn(formula.SummaryMetric);
    } else {
      for (int i = 0; i < MetricFormula::MaxTerms && column == 0; ++i) {
        const MetricId term = formula.Terms[static_cast<size_t>(i)];
        if (term > kFirstMetricId) column = FindGridColumn(term);
      }
    }
  }
  return column > 0 ? column : 1;
}

void PageModel::PlaceCursor(int row, int column) { m_grid->PlaceCursor(row, column); }

void PageModel::LayoutGrid() {
  PageRecord& record = Page();
  OwnerGridLogic& grid = *m_grid;
  record.Loaded = false;
  grid.DisableRefresh();
  const int headerClass = m_currentPage == 2 ? ClassProject : MetricClassOfPage(m_currentPage);
  int headerColumn = 1;

  if (!m_rotated) {
    const int rows = record.Rows;
    grid.SetColumns(rows == 0 ? 1 : record.ColumnCount + 1);
    grid.SetRows(rows);
    grid.SetFixedColumns(rows == 0 || m_currentPage > 2 ? 1 : 2);
    int width = kHeaderColumnWidth;
    for (const QString& header : record.RowHeaders) width = ColumnWidthFor(header, width);
    grid.SetColumnWidth(1, static_cast<float>(width));
    for (int column = 2; column <= grid.Columns(); ++column) {
      const int series = ColumnToSeries(m_currentPage, column);
      const QString caption = SeriesCaption(series);
      grid.SetColumnCaption(column, caption);
      grid.SetColumnAlignment(column, 1);
      const QString sized =
          SeriesInfo(series).Format == kDateFormat ? FormatMetric(kDateFormat, kWideDate) : caption;
      grid.SetColumnWidth(column, static_cast<float>(ColumnWidthFor(sized, kMetricColumnWidth)));
    }
    if (m_currentPage <= 2) {
      m_currentDatabase = m_reader->GridRowToQVZDatabase(grid.GetCurRow());
      RefreshDetails();
    }
  } else {
    const int columns = record.Rows + 2;
    grid.SetColumns(columns);
    if (columns < 3) {
      grid.SetRows(0);
      grid.SetFixedColumns(1);
    } else {
      grid.SetRows(record.ColumnCount);
      grid.SetFixedColumns(2);
    }
    grid.SetColumnWidth(1, kRotatedCaptionWidth);
    if (columns >= 2) grid.SetColumnWidth(2, kHeaderColumnWidth);
    for (int column = 3; column <= columns; ++column) {
      const QString caption = record.RowHeaders.value(column - 3);
      grid.SetColumnCaption(column, caption);
      grid.SetColumnAlignment(column, 1);
      grid.SetColumnWidth(column, static_cast<float>(ColumnWidthFor(caption, kMetricColumnWidth)));
    }
    grid.SetColumnCaption(1, QStringLiteral("Metric"));
    grid.SetColumnAlignment(1, 0);
    if (m_currentPage <= 2) {
      m_currentDatabase = m_reader->GridRowToQVZDatabase(grid.GetCurColumn() - grid.FixedColumns());
      RefreshDetails();
    }
    headerColumn = 2;
  }
  if (headerColumn <= grid.Columns()) {
    grid.SetColumnAlignment(headerColumn, 0);
    grid.SetColumnCaption(headerColumn, MetricDefinitions::GetMetricClassName(headerClass, false));
  }

  SortClicked(std::abs(record.SortColumn) > grid.Columns() ? 1 : record.SortColumn);
  record.Loaded = true;
  if (m_rotated) {
    int row = grid.GetCurRow();
    int column = grid.GetCurColumn();
    SwapRowCol(row, column);
    ColumnChanged(column);
  } else {
    ColumnChanged(grid.GetCurColumn());
  }
  m_panel.UpdateGridChart(1);
  grid.EnableRefresh();
  grid.Refresh();
}

int PageModel::ColumnWidthFor(const QString& text, int minimum) const {
  const QFont& font = m_hasMeasureFont ? m_measureFont : m_grid->CellPaintFont();
  const int measure = static_cast<int>(QFontMetricsF(font).horizontalAdvance(text));
  int width = measure > minimum - 7 ? measure + 7 : minimum;
  const int gridWidth = m_view ? m_view->GridWidthPixels() : 0;
  if (gridWidth > 0 && gridWidth / 3 < width) width = gridWidth / 3;
  return width;
}

int PageModel::SortBy(int column) {
  if (m_currentPage <= 2 && (column == 1 || column == -1)) column = 0;
  BusyCursor busy;
  Page().SortColumn = column;
  const int old = m_grid->SortColumn();
  if (old != 0 && old != 1 && old != -1 && old != -column) {
    if (CStats* series = Series(ColumnToSeries(m_currentPage, std::abs(old)))) series->Sort(0);
  }
  if (CStats* series = Series(ColumnToSeries(m_currentPage, std::abs(column))))
    series->Sort(column > 0 ? 1 : -1);
  m_grid->SetSortColumn(column);
  m_panel.UpdateGridChart(2);
  return column;
}

void PageModel::SortClicked(int column) { SortBy(m_rotated ? 0 : column); }

void PageModel::ColumnChanged(int column) {
  m_currentSeries = ColumnToSeries(m_currentPage, column);
  if (m_currentSeries > 0) {
    m_currentMetric = SeriesMetric(m_currentSeries);
    Page().PageMetric = m_currentMetric;
  } else {
    m_currentMetric = 0;
    Page().PageMetric = 0;
  }
  m_panel.UpdateStats(m_currentSeries);
  m_panel.UpdatePageChart(m_currentSeries);
  m_panel.UpdateGridChart(0);
}

void PageModel::RowChanged(int row) {
  if (m_currentPage > 2 || !Page().Loaded || !m_reader) return;
  GridRowToDataRow(row, 1);
  m_currentDatabase = m_reader->GridRowToQVZDatabase(row);
  RefreshDetails();
}

void PageModel::SwapRowCol(int& row, int& column) const {
  if (!m_rotated) return;
  const int oldRow = row;
  row = column - 2;
  column = oldRow + 1;
}

void PageModel::ToggleRotated() {
  int row = m_grid->GetCurRow();
  int column = m_grid->GetCurColumn();
  SwapRowCol(row, column);
  m_rotated = !m_rotated;
  if (m_view) m_view->MenuChecksChanged();
  if (m_rotated) SortBy(0);
  m_grid->SetSortable(!m_rotated);
  LayoutGrid();
  if (m_rotated) {
    SwapRowCol(row, column);
    ++row;
    ++column;
  }
  PlaceCursor(row, column);
}

}  // namespace ombrelle
