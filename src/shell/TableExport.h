#pragma once

#include <QString>

namespace ombrelle {

class PageModel;

// What the main window does with its current page as a whole: the table
// export (CSV, HTML, tab text), the HTML table report, the copy to the
// clipboard, the search of a line by its header and the XML export of the
// current analysis. Reads the page through its model; every dialog, message,
// clipboard write and shell open goes through the user-interface service.
class TableExport {
 public:
  explicit TableExport(PageModel& page) : m_page(page) {}

  // The save dialog's filters, in ExportKind order.
  static QString ExportFilter();
  // The kind chosen last in this run (CSV at first) and the last search text.
  static int LastExportKind();
  static QString LastSearchText();
  // Forgets both (for tests).
  static void ResetRunState();

  // A cell as it is exported, not yet entity-encoded.
  QString CellExportText(int row, int column, int kind) const;

  // "Export to file": asks for a file and writes the table with its summary.
  void ExportTableDialog();
  // Writes the page to `file` in `kind` and opens it; true when written.
  bool WriteTable(const QString& file, int kind, bool summary);
  // The HTML table report under a new name in the reports folder: "Data on
  // current page" (`withSummary` false) or "Data+Summary on current page".
  void ReportView(bool withSummary);

  // The page as tab-delimited text, lines ended by CR LF, nothing encoded.
  QString CopyText() const;
  // CopyText to the clipboard.
  void CopyTable();

  // Moves the cursor to the next line whose header matches the search text
  // ("*" + lower-case text + "*" as a wildcard pattern), wrapping around.
  // `again` reuses the last text; without one it asks, as a new search does.
  void FindLine(bool again);

  // "Export to XML": asks for a file and exports the current analysis.
  void ExportXmlDialog();

 private:
  PageModel& m_page;
};

}  // namespace ombrelle
