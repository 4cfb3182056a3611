#include "shell/TableExport.h"

#include "core/MetricRead.h"
#include "core/QVZ2XML.h"
#include "grid/OwnerGridLogic.h"
#include "reports/ReportFrame.h"
#include "reports/ReportPage.h"
#include "reports/TableReport.h"
#include "shell/PageModel.h"
#include "shell/PageReportSource.h"
#include "support/Filename.h"
#include "support/Text.h"
#include "support/UiServices.h"
#include "support/WildcardMatch.h"

namespace ombrelle {

namespace {

// Two values that live for the whole run.
int g_lastExportKind = ExportKind::Csv;
QString g_lastSearchText;

QString ExtensionOfKind(int kind) {
  switch (kind) {
    case ExportKind::Html:
      return QStringLiteral("htm");
    case ExportKind::Text:
      return QStringLiteral("txt");
    default:
      return QStringLiteral("csv");
  }
}

// The kind the chosen name asks for; `fallback` for an extension of none.
int KindOfFile(const QString& file, int fallback) {
  const QString extension = FileExtension(file).toLower();
  if (extension == QStringLiteral("csv")) return ExportKind::Csv;
  if (extension == QStringLiteral("htm") || extension == QStringLiteral("html") ||
      extension == QStringLiteral("xml"))
    return ExportKind::Html;
  if (extension == QStringLiteral("txt")) return ExportKind::Text;
  return fallback;
}

}  // namespace

QString TableExport::ExportFilter() {
  return QStringLiteral(
      "Comma Separated Values (*.csv);;HTML File (*.htm *.html *.xml);;Tab Delimited Text (*.txt)");
}

int TableExport::LastExportKind() { return g_lastExportKind; }

QString TableExport::LastSearchText() { return g_lastSearchText; }

void TableExport::ResetRunState() {
  g_lastExportKind = ExportKind::Csv;
  g_lastSearchText.clear();
}

QString TableExport::CellExportText(int row, int column, int kind) const {
  return PageReportSource(m_page).CellExportText(row, column, kind);
}

void TableExport::ExportTableDialog() {
  FileDialogRequest request;
  request.title = QStringLiteral("Export to file");
  request.filter = ExportFilter();
  request.filterIndex = g_lastExportKind;
  request.defaultExtension = ExtensionOfKind(g_lastExportKind);
  request.overwritePrompt = true;
  const QString file = Ui().SaveFileDialog(request);
  if (file.isEmpty()) return;
  g_lastExportKind = KindOfFile(file, g_lastExportKind);
  WriteTable(file, g_lastExportKind, true);
}

bool TableExport::WriteTable(const QString& file, int kind, bool summary) {
  return ombrelle::WriteTable(PageReportSource(m_page), file, kind, summary);
}

void TableExport::ReportView(bool withSummary) {
  const QString name = HtmlReportName(QStringLiteral("Metrics"));
  if (name.isEmpty()) {
    Ui().MsgBox(QStringLiteral("Cannot generate file name."), MsgStyle::Exclamation, QString());
    return;
  }
  WriteTable(name, ExportKind::Html, withSummary);
}

QString TableExport::CopyText() const {
  const PageReportSource source(m_page);
  const int columns = source.Columns();
  QString text;
  for (int c = 1; c <= columns; ++c) {
    if (c > 1) text += QLatin1Char('\t');
    text += source.ColumnCaption(c);
  }
  text += kCrLf;
  for (int r = 1; r <= source.Rows(); ++r) {
    for (int c = 1; c <= columns; ++c) {
      if (c > 1) text += QLatin1Char('\t');
      text += source.CellExportText(r, c, ExportKind::Csv);
    }
    text += kCrLf;
  }
  return text;
}

void TableExport::CopyTable() {
  BusyCursor busy;
  Ui().SetClipboardText(CopyText());
}

void TableExport::FindLine(bool again) {
  BusyCursor busy;
  const PageRecord& record = m_page.Pages(m_page.CurrentPage());
  if (!record.Loaded || record.Rows < 1) {
    Ui().MsgBox(QStringLiteral("No data to search in."), MsgStyle::Information, QString());
    return;
  }
  QString text = g_lastSearchText;
  if (!again || text.isEmpty())
    text = Ui().InputBox(QStringLiteral("Find line: "), QString(), g_lastSearchText);
  if (text.isEmpty()) return;
  g_lastSearchText = text;
  const QString pattern = QLatin1Char('*') + text.toLower() + QLatin1Char('*');

  OwnerGridLogic& grid = *m_page.Grid();
  const int curRow = grid.GetCurRow();
  const int curColumn = grid.GetCurColumn();
  int start = curRow;
  int unusedColumn = curColumn;
  m_page.SwapRowCol(start, unusedColumn);
  const int rows = record.Rows;
  // From a row outside the page every row is tried once; otherwise the
  // search stops on coming back to the starting row, untested.
  const bool startInside = start >= 1 && start <= rows;
  const int tries = startInside ? rows - 1 : rows;
  int r = startInside ? start : 0;
  for (int i = 0; i < tries; ++i) {
    r = r >= rows ? 1 : r + 1;
    int dataRow = r;
    m_page.GridRowToDataRow(dataRow, 1);
    const QString header = record.RowHeaders.value(dataRow - 1).toLower();
    if (WildcardMatch(header, pattern)) {
      if (m_page.Rotated())
        grid.PlaceCursor(curRow, r + 2);
      else
        grid.PlaceCursor(r, curColumn);
      return;
    }
  }
}

void TableExport::ExportXmlDialog() {
  const int database = m_page.CurrentDatabase();
  if (database < 1 || database > m_page.Reader().DatabaseCount()) {
    Ui().MsgBox(QStringLiteral("No analysis is selected."), MsgStyle::Exclamation, QString());
    return;
  }
  const QString file = QVZ2XML::ShowFileSaveDialog(QStringLiteral("Export to XML"));
  if (file.isEmpty()) return;
  QString output = file;
  SaveQVZ2XML(m_page.Reader().Database(database).Path, output, false);
}

}  // namespace ombrelle
