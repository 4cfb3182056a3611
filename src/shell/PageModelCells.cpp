// Reading the current page: cells, captions, formats, titles and the row
// action.
#include <cstdlib>

#include "core/MetricRead.h"
#include "grid/OwnerGridLogic.h"
#include "limits/MetricLimits.h"
#include "shell/AnalyzerLink.h"
#include "shell/PageModel.h"
#include "stats/CStats.h"
#include "support/FormatNum.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

constexpr quint32 kOutsideLimitsColour = 255;  // pure red, red in the lowest byte
constexpr MetricId kFallbackLimitMetric = 1009;

bool IsDateOrDays(MetricId id) { return id == 1000 || id == 1001; }

}  // namespace

int PageModel::MetricClassOfPage(int page) const {
  switch (page) {
    case 0:
    case 1: return ClassProject;
    case 2: return CompareClassIndex();
    case 3: return ClassFile;
    case 4: return ClassClass;
    case 5: return ClassProcedure;
    case 6: return ClassVariable;
    default: return ClassProject;
  }
}

int PageModel::ColumnToSeries(int page, int column) const {
  if (page < 0 || page >= kPageCount || column < 2) return 0;
  const PageRecord& record = m_pages[static_cast<size_t>(page)];
  if (record.FirstColumn < 1 || column - 2 >= record.ColumnCount) return 0;
  return record.FirstColumn + column - 2;
}

MetricId PageModel::SeriesMetric(int index) const { return SeriesInfo(index).MetricId; }

QString PageModel::SeriesCaption(int index) const { return MetricCaption(SeriesMetric(index)); }

QString PageModel::MetricCaption(MetricId id) const {
  QString caption = m_definitions.GetMetricName(id, NameAbbreviation);
  const int metricClass = MetricDefinitions::GetMetricClass(id);
  const bool averages =
      m_currentPage <= 1 || (m_currentPage == 2 && Combo(PageCombo::CompareClass).ListIndex() <= 0);
  if (averages && metricClass != ClassProject)
    caption += QLatin1Char('/') + MetricDefinitions::GetMetricClassName(metricClass, true);
  if (m_currentPage == 2 && id > 1001) {
    switch (m_timeStyle) {
      case 1: caption = QStringLiteral("\u00B1") + caption; break;
      case 2: caption = QLatin1Char('%') + caption; break;
      case 3: caption = QStringLiteral("\u00B1") + caption + QStringLiteral("/d"); break;
      case 4: caption = QStringLiteral("\u00B1") + caption + QStringLiteral("/m"); break;
      default: break;
    }
  }
  return caption;
}

int PageModel::MetricFormatOnPage(MetricId id, int kind) const {
  const auto use = [&](int k) { return m_definitions.GetMetricUseFormat(id, k); };
  if (m_currentPage == 2 && m_timeStyle == 1) {
    const int format = use(kind);
    return format == 9 && id != 1000 ? 1 : format;
  }
  if (m_currentPage == 2 && m_timeStyle >= 2 && m_timeStyle <= 4) {
    if (IsDateOrDays(id)) return use(kind);
    if (m_timeStyle == 2) return 4;
    const int format = use(kind);
    return format >= 3 && format <= 5 ? 4 : 10;
  }
  if (m_currentPage <= 2 && MetricDefinitions::GetMetricClass(id) != ClassProject)
    return use(kind == 0 ? 1 : kind);
  return use(kind);
}

QString PageModel::PageTitle() const {
  const QString classTitle =
      MetricDefinitions::GetMetricClassName(MetricClassOfPage(m_currentPage), false) +
      QStringLiteral(" metrics");
  const ListModel& records = Combo(PageCombo::CompareRecord);
  const QString record =
      records.Visible() ? QLatin1Char(' ') + records.Text() : QString();
  const QString analysis = Combo(PageCombo::Analysis).Text();
  switch (m_currentPage) {
    case 0: return classTitle + QStringLiteral(", all projects");
    case 1: return classTitle + QStringLiteral(", latest saves");
    case 2:
      if (m_timeStyle == 0) return classTitle + QLatin1Char(' ') + analysis + record;
      return Combo(PageCombo::ProjectInTimeStyle).Text() + QStringLiteral(" (") + classTitle +
             QStringLiteral(") ") + analysis + record;
    default: return classTitle + QLatin1Char(' ') + analysis;
  }
}

QString PageModel::ProgramTitle() const {
  return UiServices::AppTitle() + QLatin1Char(' ') + VersionText(false) +
         QStringLiteral(" for Tarnwick v10.0");
}

void PageModel::GridRowToDataRow(int& row, int column) const {
  const PageRecord& record = Page();
  const auto order = [&](int position) {
    if (position >= 1 && position <= static_cast<int>(record.RowOrder.size()))
      row = record.RowOrder[static_cast<size_t>(position - 1)];
  };
  const int sortColumn = m_grid->SortColumn();
  if (sortColumn == 0) return;
  if (sortColumn == 1) {
    order(row);
    return;
  }
  if (sortColumn == -1) {
    order(m_grid->Rows() - row + 1);
    return;
  }
  if (sortColumn == column || sortColumn == -column) return;
  if (sortColumn > m_grid->Columns()) return;
  if (const CStats* series = Series(ColumnToSeries(m_currentPage, std::abs(sortColumn))))
    row = series->GetOriginalIndex(row);
}

QVariant PageModel::CellValue(int row, int column) const {
  const PageRecord& record = Page();
  if (!record.Loaded || row < 1 || row > m_grid->Rows()) return {};
  if (m_rotated && column <= 2) {
    const int series = ColumnToSeries(m_currentPage, row + 1);
    if (column == 1) return SeriesCaption(series);
    return m_definitions.GetMetricName(SeriesMetric(series), NameLong);
  }
  if (!m_rotated && column == 1) {
    int dataRow = row;
    GridRowToDataRow(dataRow, 1);
    return record.RowHeaders.value(dataRow - 1);
  }
  SwapRowCol(row, column);
  double value = 0;
  bool defined = false;
  CellDefined(row, column, value, defined);
  return defined ? QVariant(value) : QVariant();
}

void PageModel::CellDefined(int row, int column, double& value, bool& defined) const {
  defined = false;
  GridRowToDataRow(row, column);
  const CStats* series = Series(ColumnToSeries(m_currentPage, column));
  if (!series || row < 1 || row > Page().Rows) return;
  defined = series->ValueAtIndexDefined(row, value);
}

void PageModel::DataRequest(int row, int column, QString& text, quint32& colour) {
  if (!Page().Loaded) return;
  if (column == 1 || (m_rotated && column == 2)) {
    text = CellValue(row, column).toString();
    return;
  }
  SwapRowCol(row, column);
  double value = 0;
  bool defined = false;
  CellDefined(row, column, value, defined);
  if (!defined) {
    text = QStringLiteral("-");
    return;
  }
  const int index = ColumnToSeries(m_currentPage, column);
  text = FormatMetric(SeriesInfo(index).Format, value);
  if (m_currentPage == 2 && m_timeStyle > 0) return;
  CStats* series = Series(index);
  if (!series) return;
  const MetricId metric = index == 0 ? kFallbackLimitMetric : SeriesMetric(index);
  if (!Limits().IsInsideLimits(metric, value, *series)) colour = kOutsideLimitsColour;
}

CStats PageModel::SeriesInRowOrder(int index) const {
  CStats result;
  const CStats* series = Series(index);
  const PageRecord& record = Page();
  result.Init(record.Rows, true);
  if (series) {
    const int column = index - record.FirstColumn + 2;
    for (int position = 1; position <= record.Rows; ++position) {
      int row = position;
      GridRowToDataRow(row, column);
      double value = 0;
      if (series->ValueAtIndexDefined(row, value)) result.AddValueIndex(value, position);
    }
    result.DataType = series->DataType;
    result.TheorMin = series->TheorMin;
    result.TheorMax = series->TheorMax;
    result.TheorMinValue = series->TheorMinValue;
    result.TheorMaxValue = series->TheorMaxValue;
  }
  result.CalcStats();
  return result;
}

int PageModel::FindSeries(MetricId id) const {
  const PageRecord& record = Page();
  if (record.FirstColumn < 1) return 0;
  for (int i = 0; i < record.ColumnCount; ++i) {
    const int index = record.FirstColumn + i;
    if (SeriesMetric(index) == id) return index;
  }
  return 0;
}

int PageModel::FindGridColumn(MetricId id) const {
  const int index = FindSeries(id);
  return index > 0 ? index - Page().FirstColumn + 1 : 0;
}

QString PageModel::RowActionCommand(int row, int column) const {
  const PageRecord& record = Page();
  QString name;
  if (m_rotated) {
    if (column < 2) return {};
    name = record.RowHeaders.value(column - 3);
    row = column - 2;
  } else {
    name = CellValue(row, 1).toString();
  }
  switch (m_currentPage) {
    case 3: return QStringLiteral("Move F ") + name;
    case 4:
    case 5:
    case 6: {
      if (!m_reader) return {};
      if (!m_rotated) GridRowToDataRow(row, 1);
      const int metricClass = m_currentPage - 2;
      const QString file = m_reader->GetItemFilename(metricClass, row);
      if (file.isEmpty()) return {};
      const char* verb = m_currentPage == 4 ? "Move C " : m_currentPage == 5 ? "Move P " : "Move V ";
      return QString::fromLatin1(verb) + file + QLatin1Char(' ') + name;
    }
    default: return {};
  }
}

void PageModel::DblClickCell(int row, int column) {
  const QString command = RowActionCommand(row, column);
  // A link that is not there is no error the user needs to hear about.
  if (!command.isEmpty()) SendToAnalyzer(command);
}

}  // namespace ombrelle
