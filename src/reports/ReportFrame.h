#pragma once

#include <QDateTime>
#include <QString>

namespace ombrelle {

// What every HTML report shares: the folder reports are saved in, their file
// names, the document head, the style blocks, the footer, the escaping of
// text from the database, and the saving and opening. Reports are built as
// text in memory (lines ended by CR LF) and saved once.

// The maker's plain host name (Generator line) and web root (footer).
extern const QString kMakerHost;
extern const QString kMakerWebAddress;

// "Ombrelle reports" in the temporary folder, created when missing. When it
// cannot be created: the temporary folder itself when it exists, else the
// folder of the program file.
QString ReportsFolder();

// A name in ReportsFolder that no file has yet: `word` itself, else the
// word with a rising suffix; "" when no free name is found.
QString HtmlReportName(const QString& word);
QString MhtReportName(const QString& word);

// The document head: "<HTML><HEAD>", the TITLE (escaped), the content type
// and Generator lines, and with `openBody` "</HEAD><BODY>".
QString ReportHead(const QString& title, bool openBody);
// The common style block of the reports.
QString ReportStyle();
// The style block of the project status report.
QString ReportStatusStyle();
// The style block of the table report (smaller text, banded columns).
QString ReportTableStyle();
// One paragraph: a link to the maker's web address + `linkSuffix` named
// with the program's title, then the version.
QString ReportFooter(const QString& linkSuffix);
// One paragraph: `prefix`, the program's title and version and the local
// date and time of `when` (now when invalid). The text is this program's
// own choice: "<P>Saved by Ombrelle Viewer 1.0, 2026-11-23 09:55</P>".
QString SavedByText(const QString& prefix, const QDateTime& when = QDateTime());

// In place: "&", "<", ">", the double quote and the no-break space by their
// entities, in that order.
void EscapeHTML(QString& text);
// In place: every character below 32 (but tab, LF and CR) and from 127 up
// by "&#" its code ";".
void EscapeNonASCII(QString& text);
// EscapeHTML, then EscapeNonASCII.
void EscapeHTMLFull(QString& text);
// A copy treated by EscapeHTMLFull.
QString EscapedHTML(const QString& text);

// Saves `text` as UTF-8 with a byte-order mark under HtmlReportName(word)
// and opens it. The file name on success; "" when no name could be made
// (after the message "Cannot generate file name.") or the save failed (the
// writer has shown why).
QString SaveAndOpenReport(const QString& text, const QString& word);
// Saves `text` to `file` as SaveAndOpenReport does (UTF-8 with a byte-order
// mark, through a temporary name) without opening it; false after the
// writer's message.
bool SaveReportFile(const QString& text, const QString& file);
// Opens a report with the desktop's default handler.
void OpenReport(const QString& path);

}  // namespace ombrelle
