#include "reports/TableReport.h"

#include <QFileInfo>
#include <QLocale>
#include <QSaveFile>

#include "reports/ReportFrame.h"
#include "reports/ReportPage.h"
#include "reports/SummaryTable.h"
#include "support/CString.h"
#include "support/Codepage.h"
#include "support/FormatNum.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

constexpr int kMaxSeparatorLength = 5;

// The pieces a table is built of, by kind.
struct TablePieces {
  QString headerStart, headerSeparator, headerEnd, rowStart, cellSeparator, rowEnd;
};

TablePieces PiecesOf(int kind, const QString& listSeparator) {
  const QString tab = QStringLiteral("\t");
  switch (kind) {
    case ExportKind::Csv:
      return {{}, listSeparator, {}, {}, listSeparator, {}};
    case ExportKind::Html:
      return {QStringLiteral("<THEAD><TR><TH>"),
              QStringLiteral("</TH><TH>"),
              QStringLiteral("</TH></TR></THEAD><TBODY>"),
              QStringLiteral("<TR CLASS=\"R1\"><TD CLASS=\"CH\">"),
              QStringLiteral("</TD><TD CLASS=\"C1\">"),
              QStringLiteral("</TD></TR>")};
    default:
      return {{}, tab, {}, {}, tab, {}};
  }
}

// The paragraph under the heading, encoded; "" for none.
QString SubHeadingParagraph(const ReportPage& page) {
  const QString text = page.SubHeading();
  if (text.isEmpty()) return {};
  return QStringLiteral("<P>") + EscapedHTML(text) + QStringLiteral("</P>");
}

}  // namespace

QString GetDecimalSeparator() {
  const QString point = QLocale().decimalPoint();
  return point.isEmpty() ? QStringLiteral(".") : point.left(kMaxSeparatorLength);
}

QString GetListSeparator() {
  // Linux locales define no list separator: neither the C library's locale
  // data (localeconv, nl_langinfo) nor QLocale has one. So the separator
  // starts out as ",", and the rule turns it into ";" in the locales whose
  // decimal separator is itself a comma.
  return ListSeparatorFor(QString(), GetDecimalSeparator());
}

QString ListSeparatorFor(const QString& listSeparator, const QString& decimalSeparator) {
  const QString list =
      listSeparator.isEmpty() ? QStringLiteral(",") : listSeparator.left(kMaxSeparatorLength);
  if (list != decimalSeparator) return list;
  return list == QStringLiteral(";") ? QStringLiteral(",") : QStringLiteral(";");
}

QString TableText(const ReportPage& page, int kind, bool summary, const QString& listSeparator,
                  const QString& savedBy) {
  const TablePieces pieces = PiecesOf(kind, listSeparator);
  const bool html = kind == ExportKind::Html;
  CString out;
  if (html) {
    out.Append(ReportHead(QStringLiteral("Metrics exported by ") + UiServices::AppTitle() +
                              QLatin1Char(' ') + VersionText(false),
                          false));
    out.AppendLine();
    out.Append(ReportTableStyle());
    out.AppendLine(QStringLiteral("</HEAD><BODY>"));
    out.AppendLine(QStringLiteral("<H1>") + page.Heading() + QStringLiteral("</H1>"));
    const QString sub = SubHeadingParagraph(page);
    if (!sub.isEmpty()) out.AppendLine(sub);
    out.AppendLine(QStringLiteral("<TABLE CLASS=\"data\">"));
  }

  const int columns = page.Columns();
  QString line = pieces.headerStart;
  for (int c = 1; c <= columns; ++c) {
    if (c > 1) line += pieces.headerSeparator;
    // Captions stand as they are, but for the HTML kind: a row header of a
    // rotated table holding "&" or "<" would otherwise break the document.
    line += html ? EscapedHTML(page.ColumnCaption(c)) : page.ColumnCaption(c);
  }
  out.AppendLine(line + pieces.headerEnd);

  // Rotated counts as -1 in the column banding.
  const int rotated = page.Rotated() ? -1 : 0;
  for (int r = 1; r <= page.Rows(); ++r) {
    line = pieces.rowStart;
    if (html) line.replace(QLatin1Char('1'), QString::number(2 - (r & 1)));
    for (int c = 1; c <= columns; ++c) {
      if (c > 1) {
        QString separator = pieces.cellSeparator;
        if (html) {
          const QString mark =
              rotated != 0 && c == 2 ? QStringLiteral("H") : QString::number((rotated + c) % 3);
          separator.replace(QLatin1Char('1'), mark);
        }
        line += separator;
      }
      line += EscapedHTML(page.CellExportText(r, c, kind));
    }
    out.AppendLine(line + pieces.rowEnd);
  }

  if (html) {
    out.AppendLine(QStringLiteral("</TBODY></TABLE><P></P>"));
    if (summary) WriteSummaryTable(page, out);
    out.AppendLine(savedBy);
    out.AppendLine(QStringLiteral("</BODY></HTML>"));
  }
  return out.Value();
}

bool WriteTable(const ReportPage& page, const QString& file, int kind, bool summary) {
  BusyCursor busy;
  const QFileInfo info(file);
  // A folder of that name, or a file that may not be replaced, is refused
  // before anything is written.
  if (info.isDir() || (info.exists() && !info.isWritable())) {
    Ui().MsgBox(QStringLiteral("Cannot overwrite ") + file, MsgStyle::Exclamation, QString());
    return false;
  }
  QSaveFile out(file);
  if (!out.open(QIODevice::WriteOnly)) {
    Ui().MsgBox(
        QStringLiteral("Cannot create ") + file + QStringLiteral("\r\n") + out.errorString(),
        MsgStyle::Exclamation, QString());
    return false;
  }
  const QString separator = kind == ExportKind::Csv ? GetListSeparator() : QString();
  const QString text =
      TableText(page, kind, summary, separator, SavedByText(QStringLiteral("Saved by ")));
  out.write(TextToMultiByte(text, kCodepageAnsi));
  if (!out.commit()) {
    Ui().MsgBox(
        QStringLiteral("Cannot create ") + file + QStringLiteral("\r\n") + out.errorString(),
        MsgStyle::Exclamation, QString());
    return false;
  }
  Ui().ShellOpen(file);
  return true;
}

}  // namespace ombrelle
