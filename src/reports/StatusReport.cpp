#include "reports/StatusReport.h"

#include "core/MetricRead.h"
#include "reports/English.h"
#include "reports/MHTSaver.h"
#include "reports/MetricRetriever.h"
#include "reports/ReportFrame.h"
#include "support/CString.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

constexpr double Inf = 1e99;

// The report text. A piece that ends in a tag ends its line; sentences of one
// paragraph run on in the same line.
class StatusText {
 public:
  StatusText(const MetricRetriever& retriever) : m_r(retriever) {}

  void Put(const QString& text) {
    if (text.endsWith(QLatin1Char('>'))) {
      m_text.AppendLine(text);
    } else {
      m_text.Append(text);
    }
  }
  QString V(MetricId metric, int format = 0) const { return m_r.GetValue(metric, format); }
  QString R(MetricId metric, double min, double max, bool open, const char* noun, bool thereAre,
            const char* verb, bool capital) const {
    return m_r.GetRangeCount(metric, min, max, open, QLatin1String(noun), thereAre,
                             QLatin1String(verb), capital);
  }
  QString Value() const { return m_text.Value(); }

 private:
  const MetricRetriever& m_r;
  CString m_text;
};

}  // namespace

QString StatusReportBody(const MetricRetriever& retriever, StatusPictures& pictures,
                         MHTSaver& saver, const QString& name, const QString& name2) {
  StatusText t(retriever);
  MetricRead* first = retriever.GetReader();
  MetricRead* second = retriever.GetReader2();
  const auto img = [](const QString& url, const char* alt) {
    return QStringLiteral("<IMG SRC=\"") + url + QStringLiteral("\" ALT=\"") + QLatin1String(alt) +
           QStringLiteral("\" WIDTH=\"450\" />");
  };

  t.Put(QStringLiteral("<P>") + name +
        (second ? QStringLiteral(" vs. <SPAN CLASS=\"alt\">[") + name2 + QStringLiteral("]</SPAN>")
                : QString()) +
        QStringLiteral("</P>"));
  t.Put(QStringLiteral("<H2>System size</H2>"));
  t.Put("<P>There are " + t.V(1008) + " lines in the system (LLINES). ");
  t.Put("It is a " + SizeWord(first ? first->GetSingleValue(1002) : 0).toLower() + " system. ");
  t.Put("Of these lines, " + t.V(1009) + " are code, " + t.V(1010) +
        " are pure comment lines and " + t.V(1011) + " are empty. ");
  t.Put("Thus, " + t.V(1012) + " is code lines, " + t.V(1013) + " is comment lines and " +
        t.V(1014) + " is empty lines.</P>");
  if (first && second) {
    const QString url = pictures.LinesCompare(saver, *first, *second);
    if (!url.isEmpty()) t.Put("<P>" + img(url, "Chart of lines in system") + "</P>");
  }
  QString pies = QStringLiteral("<P>");
  int number = 1;
  for (MetricRead* reader : {first, second}) {
    if (!reader) continue;
    const QString url = pictures.LinesPie(saver, *reader, number++);
    if (!url.isEmpty()) pies += img(url, "Distribution of logical lines");
  }
  t.Put(pies + QStringLiteral("</P>"));
  t.Put(QStringLiteral("<P>Other size metrics:</P>"));
  t.Put("Number of statements: " + t.V(1100) + " (STMT)<BR />");
  t.Put("Number of procedures: " + t.V(1201) + " (PROCS)<BR />");
  t.Put("Kilobytes of source code: " + t.V(1019) + " kB<BR />");
  t.Put("Source files: " + t.V(1200) + "<BR />");
  t.Put("Forms: " + t.V(1210) + "<BR />");

  t.Put(QStringLiteral("<H2>Commentation</H2>"));
  t.Put("<P>All in all, there are " + t.V(1015) +
        " meaningful comments (MCOMM) in the system (compared to " + t.V(1009) +
        " code lines). By meaningful we mean a comment that has some text in it, not just "
        "separators or empty comments.</P>");
  t.Put("<P>The comment density (meaningful comments per code line, MCOMM%) is " + t.V(1016) +
        ". ");
  t.Put("In other words, there is a comment for every " + t.V(1017) + " lines of code. ");
  t.Put(
      QStringLiteral("We recommend a density of over 20% so that there is at least 1 comment "
                     "for every 5 lines of code.</P>"));
  t.Put("<P>Anything to improve? " + t.R(2021, 0, 0.15, true, "file", true, "", false) +
        " with comment density less than 15%. You should consider adding more commentation to "
        "files that fall below this limit. ");
  t.Put(t.R(4020, 0, 0, false, "procedure", true, "", true) + " having no commentation.</P>");

  t.Put(QStringLiteral("<H2>Complexity</H2>"));
  t.Put("<P>The average cyclomatic complexity (CC) of a procedure is " + t.V(4120) + ".</P>");
  t.Put("<P>Anything to improve? There are " +
        t.R(4120, 11, 20, false, "moderate risk procedure", false, "", false) + " (CC 11..20), ");
  t.Put(t.R(4120, 21, 50, false, "high risk procedure", false, "", false) + " (CC 21..50) and ");
  t.Put(t.R(4120, 51, Inf, false, "very high risk procedure", false, "", false) +
        " (CC over 50). The total number of procedures is " + t.V(1201) + ".</P>");
  t.Put(QStringLiteral(
      "<P>Cyclomatic complexity (CC) is counted as decisions+1. Decisions include statements such "
      "as If, ElseIf, Case, For, While and Until. The higher CC, the riskier are code changes to "
      "that procedure. If CC exceeds 20, you should consider it alarming. Procedures with a high "
      "cyclomatic complexity should be simplified or split into several smaller procedures.</P>"));
  t.Put(QStringLiteral("<H3>Conditional nesting</H3>"));
  t.Put("<P>The average depth of conditional nesting (DCOND) is " + t.V(4140) + ". ");
  t.Put(
      QStringLiteral("Thus, on average, there are so many nested conditional statements "
                     "(nesting levels) in a procedure.</P>"));
  t.Put("<P>Anything to improve? " + t.R(4140, 6, Inf, false, "procedure", true, "", false) +
        " with DCOND>5. Too many nesting levels make the code difficult to understand and can "
        "lead to errors in program logic. Consider splitting these procedures. You may also find "
        "a way to rewrite the logic with a Select Case statement or an easier-to-read "
        "If..Then..ElseIf..Else structure.</P>");
  const auto histogram = [&](MetricId metric) {
    const QString tag = pictures.Histogram(saver, retriever, metric);
    if (!tag.isEmpty()) t.Put(tag);
  };
  histogram(4140);
  t.Put(QStringLiteral("<H3>Procedure length</H3>"));
  t.Put("<P>The average procedure (LINES/proc) is " + t.V(4001) +
        " lines. Shorter procedures are easier to understand than longer ones.</P>");
  t.Put("<P>Anything to improve? " +
        t.R(4001, 67, Inf, false, "procedure", true, "that exceed", false) +
        " one page when printed (66 lines).</P>");
  histogram(4001);
  t.Put(QStringLiteral("<H3>File length</H3>"));
  t.Put("<P>The average file (LINES/file) is " + t.V(2001) +
        " lines. Shorter files are easier to understand than longer ones.</P>");
  t.Put("<P>Anything to improve? " +
        t.R(2001, 1001, Inf, false, "file", true, "that exceed", false) + " 1000 lines. ");
  t.Put(t.R(2034, 51, Inf, false, "file", false, "have", true) + " over 50 procedures. ");
  t.Put(t.R(2035, 51, Inf, false, "file", false, "declare", true) + " over 50 variables and ");
  t.Put(t.R(2036, 51, Inf, false, "file", false, "declare", false) + " over 50 constants.</P>");
  histogram(2001);
  t.Put(QStringLiteral("<H2>Parameters</H2>"));
  t.Put("<P>The average number of procedure parameters (PARAMS) is " + t.V(4030) + ".</P>");
  t.Put(
      "<P>Anything to improve? There should be max 5 parameters in a procedure. In this system, "
      "this count is exceeded in " +
      t.R(4030, 6, Inf, false, "procedure", false, "", false) +
      ". Consider simplifying or splitting those procedures.</P>");
  histogram(4030);
  t.Put(QStringLiteral("<H2>Class design</H2>"));
  t.Put("<P>The maximum depth of class inheritance tree (maxDIT) is " + t.V(1404) +
        ". This should be 6 or fewer.</P>");
  t.Put(
      "<P>Class variables should always be declared private to avoid accidental changes. In "
      "this system this succeeds at a rate of " +
      t.V(1501, 5) + ". ");
  t.Put("Of all the " + t.V(1400) + " classes, " +
        t.R(3213, 1, Inf, false, "class", false, "have", false) + " problems in this regard.</P>");
  return t.Value();
}

QString WriteStatusReport(MetricRead& reader, int database, int database2,
                          StatusPictures& pictures) {
  const QString name = MhtReportName(QStringLiteral("Status"));
  if (!WriteStatusReportFile(reader, database, database2, pictures, name)) return {};
  OpenReport(name);
  return name;
}

bool WriteStatusReportFile(MetricRead& reader, int database, int database2,
                           StatusPictures& pictures, const QString& name) {
  BusyCursor busy;
  MHTSaver saver;
  if (name.isEmpty() || !saver.Start(name, QStringLiteral("Project status report"))) {
    Ui().MsgBox(
        QStringLiteral("Cannot write to ") + name + QStringLiteral("\r\n") + saver.ErrorText(),
        MsgStyle::Exclamation, QString());
    return false;
  }
  if (!reader.OpenDatabase2(database)) {
    Ui().MsgBox(QStringLiteral("Could not open database 1"), MsgStyle::Exclamation, QString());
    return false;
  }
  MetricRetriever retriever;
  if (!retriever.Initialize(database, database2)) {
    Ui().MsgBox(QStringLiteral("Could not initialize MR"), MsgStyle::Exclamation, QString());
    return false;
  }
  QString name1 = reader.GetDatabaseName(database);
  QString name2 = database2 > 0 ? reader.GetDatabaseName(database2) : QString();
  EscapeHTML(name1);
  EscapeHTML(name2);

  QString text = ReportHead(QStringLiteral("Project status report"), false);
  text += ReportStatusStyle();
  text += QStringLiteral("</HEAD><BODY>\r\n<H1>Project status report</H1>\r\n");
  text += StatusReportBody(retriever, pictures, saver, name1, name2);
  text += ReportFooter(QString());
  text += QStringLiteral("</BODY></HTML>\r\n");
  // UTF-8 rather than the system code page: project names may hold any
  // letter.
  if (!saver.SaveHTML_UTF8(text, {}) || !saver.Done(false)) {
    Ui().MsgBox(
        QStringLiteral("Cannot write to ") + name + QStringLiteral("\r\n") + saver.ErrorText(),
        MsgStyle::Exclamation, QString());
    return false;
  }
  return true;
}

}  // namespace ombrelle
