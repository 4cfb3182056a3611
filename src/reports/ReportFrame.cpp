#include "reports/ReportFrame.h"

#include <QCoreApplication>
#include <QDir>
#include <QStringList>

#include "support/FileIO.h"
#include "support/Filename.h"
#include "support/FormatNum.h"
#include "support/Text.h"
#include "support/UiServices.h"

namespace ombrelle {

const QString kMakerHost = QStringLiteral("ombrelle.example.org");
const QString kMakerWebAddress = QStringLiteral("https://ombrelle.example.org/");

namespace {

QString Lines(const QStringList& lines) { return lines.join(kCrLf) + kCrLf; }

QString ProgramTitleAndVersion() {
  return UiServices::AppTitle() + QLatin1Char(' ') + VersionText(false);
}

}  // namespace

QString ReportsFolder() {
  const QString temp = GetTempFolder();
  const QString folder = JoinPath(temp, QStringLiteral("Ombrelle reports"));
  // Created quietly: a folder that cannot be made is no error, the reports
  // simply go one place further out.
  if (FolderExists(folder) ||
      (!FileExists(folder) && QDir().mkpath(folder) && FolderExists(folder)))
    return folder;
  if (!temp.isEmpty() && FolderExists(temp)) return temp;
  return QCoreApplication::applicationDirPath();
}

QString HtmlReportName(const QString& word) {
  return MakeUniqueFilename(ReportsFolder(), word, QStringLiteral("html"),
                            UniqueName::TryBaseFirst);
}

QString MhtReportName(const QString& word) {
  return MakeUniqueFilename(ReportsFolder(), word, QStringLiteral("mht"), UniqueName::TryBaseFirst);
}

QString ReportHead(const QString& title, bool openBody) {
  QString escaped = title;
  EscapeHTML(escaped);
  QStringList lines{
      QStringLiteral("<HTML><HEAD>"),
      QStringLiteral("<TITLE>") + escaped + QStringLiteral("</TITLE>"),
      QStringLiteral("<META HTTP-EQUIV=\"Content-Type\" CONTENT=\"text/html\" />"),
      QStringLiteral("<META NAME=\"Generator\" CONTENT=\"") + ProgramTitleAndVersion() +
          QStringLiteral(", ") + kMakerHost + QStringLiteral("\" />"),
  };
  if (openBody) lines << QStringLiteral("</HEAD><BODY>");
  return Lines(lines);
}

QString ReportStyle() {
  return Lines({
      QStringLiteral("<STYLE TYPE=\"text/css\"><!--"),
      QStringLiteral("BODY { font-family: verdana; font-size: 80%; line-height: 1.5; }"),
      QStringLiteral("H1 { font-size: 140%; }"),
      QStringLiteral("H2 { font-size: 130%; }"),
      QStringLiteral("TR { text-align: left; }"),
      QStringLiteral("TR { font-family: verdana; font-size: 80%; line-height: 1.5;  }"),
      QStringLiteral("TD.data { text-align: right; }"),
      QStringLiteral("TABLE.stats TR TH { background: #ddddff; }"),
      QStringLiteral("TABLE.stats { border: 2px solid black; }"),
      QStringLiteral("TABLE TR.R1 { background: #ffffff; }"),
      QStringLiteral("TABLE TR.R2 { background: #eeeeee; }"),
      QStringLiteral("TABLE.grid { border: 2px solid black; border-collapse: collapse;  /* "
                     "cellspacing = 0 */ }"),
      QStringLiteral(
          "TABLE.grid TD { border: 1px solid gray; text-align:right; white-space: nowrap; }"),
      QStringLiteral("TABLE.grid TR TD.head { text-align:left; }"),
      QStringLiteral("TD.neg { color: red; }"),
      QStringLiteral("P.regression { margin-top: 0; margin-bottom: 0; }"),
      QStringLiteral("P.regressionbreak { margin-top: 1em; }"),
      QStringLiteral("TD.outliers { font-style: italic; }"),
      QStringLiteral("TR.hdr TH { padding-top: 1em; }"),
      QStringLiteral("--></STYLE>"),
  });
}

QString ReportStatusStyle() {
  return Lines({
      QStringLiteral("<STYLE TYPE=\"text/css\"><!--"),
      QStringLiteral("BODY { font-family: verdana; font-size: 80%; line-height: 1.5;  }"),
      QStringLiteral(".alt { color: gray; font-style: italic; }"),
      QStringLiteral("--></STYLE>"),
  });
}

QString ReportTableStyle() {
  return Lines({
      QStringLiteral("<STYLE TYPE=\"text/css\"><!--"),
      QStringLiteral("TR { font-family: verdana; font-size: 70%; line-height: 1.5; }"),
      QStringLiteral("TABLE.data, TABLE.summary { border: 2px solid black; }"),
      QStringLiteral("TABLE.data TD, TABLE.data TH { white-space: nowrap; }"),
      QStringLiteral("TABLE TR.R1 { background: #ffffff; }"),
      QStringLiteral("TABLE TR TH { background: #ddddff; }"),
      QStringLiteral("TABLE TR.R2 { background: #eeeeee; }"),
      QStringLiteral("TABLE.data TR.R1 TD.C2 { background: #f8f8f8; }"),
      QStringLiteral(
          "TABLE.data TR TD.C0, TABLE.data TR TD.C1, TABLE.data TR TD.C2 { text-align: right; }"),
      QStringLiteral("TABLE.data TR TD.CH { text-align: left; }"),
      QStringLiteral("TABLE TR TH { text-align: left; }"),
      QStringLiteral("TABLE TR.R1 TD.average, TABLE TR.R1 TD.outliers { background: #f8f8f8; } "),
      QStringLiteral("TD.average, TD.max, TD.min { text-align: right; } "),
      QStringLiteral("TD.description { font-size: 80%; }"),
      QStringLiteral("--></STYLE>"),
  });
}

QString ReportFooter(const QString& linkSuffix) {
  return QStringLiteral("<P><A HREF=\"") + kMakerWebAddress + linkSuffix + QStringLiteral("\">") +
         UiServices::AppTitle() + QStringLiteral("</A> ") + VersionText(false) +
         QStringLiteral("</P>");
}

QString SavedByText(const QString& prefix, const QDateTime& when) {
  const QDateTime at = when.isValid() ? when : QDateTime::currentDateTime();
  QString text = prefix + ProgramTitleAndVersion();
  EscapeHTMLFull(text);
  return QStringLiteral("<P>") + text + QStringLiteral(", ") +
         at.toString(QStringLiteral("yyyy-MM-dd hh:mm")) + QStringLiteral("</P>");
}

void EscapeHTML(QString& text) {
  text.replace(QLatin1Char('&'), QStringLiteral("&amp;"));
  text.replace(QLatin1Char('<'), QStringLiteral("&lt;"));
  text.replace(QLatin1Char('>'), QStringLiteral("&gt;"));
  text.replace(QLatin1Char('"'), QStringLiteral("&quot;"));
  text.replace(QChar(0xA0), QStringLiteral("&#160;"));
}

void EscapeNonASCII(QString& text) {
  QString out;
  out.reserve(text.size());
  for (const QChar ch : text) {
    const char16_t code = ch.unicode();
    const bool keep = code == u'\t' || code == u'\n' || code == u'\r' || (code >= 32 && code < 127);
    if (keep)
      out += ch;
    else
      out += QStringLiteral("&#") + QString::number(static_cast<unsigned>(code)) + QLatin1Char(';');
  }
  text = out;
}

void EscapeHTMLFull(QString& text) {
  EscapeHTML(text);
  EscapeNonASCII(text);
}

QString EscapedHTML(const QString& text) {
  QString copy = text;
  EscapeHTMLFull(copy);
  return copy;
}

QString SaveAndOpenReport(const QString& text, const QString& word) {
  const QString name = HtmlReportName(word);
  if (name.isEmpty()) {
    Ui().MsgBox(QStringLiteral("Cannot generate file name."), MsgStyle::Exclamation, QString());
    return {};
  }
  if (!SaveReportFile(text, name)) return {};
  OpenReport(name);
  return name;
}

bool SaveReportFile(const QString& text, const QString& file) {
  QByteArray bytes("\xEF\xBB\xBF");
  bytes += text.toUtf8();
  return SaveBinaryFile(file, bytes);
}

void OpenReport(const QString& path) { Ui().ShellOpen(path); }

}  // namespace ombrelle
