// The table export's text in its three kinds on a page made up in the test,
// the separator rule, the summary table and the file writing with its
// refusals.
#include <gtest/gtest.h>

#include <unistd.h>

#include <memory>
#include <vector>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "common/OutsideReaders.h"
#include "reports/FakeReportPage.h"
#include "reports/ReportFrame.h"
#include "reports/SummaryTable.h"
#include "reports/TableReport.h"
#include "stats/CStats.h"
#include "support/CString.h"
#include "support/FormatNum.h"
#include "support/ScriptedUiServices.h"

namespace ombrelle {
namespace {

const QString kSaved = QStringLiteral("<P>Saved</P>");

// The table rows of an HTML text: the lines from the THEAD line to the end
// of the TBODY.
QStringList TableLines(const QString& html) {
  const QStringList lines = html.split(QStringLiteral("\r\n"));
  QStringList rows;
  bool inside = false;
  for (const QString& line : lines) {
    if (line.startsWith(QStringLiteral("<THEAD>"))) inside = true;
    if (line.startsWith(QStringLiteral("</TBODY>"))) break;
    if (inside) rows << line;
  }
  return rows;
}

FakePage FiveColumns() {
  FakePage page;
  page.captions = {QStringLiteral("Procedure"), QStringLiteral("LINES"), QStringLiteral("CC"),
                   QStringLiteral("LLOC%"), QStringLiteral("\u00B1d")};
  page.cells = {{QStringLiteral("a & b, c"), QStringLiteral("1"), QStringLiteral("2"),
                 QStringLiteral("3"), QStringLiteral("")},
                {QStringLiteral("gr\u00F6\u00DFe <x>"), QStringLiteral("4"), QStringLiteral("5"),
                 QStringLiteral("6"), QStringLiteral("7")},
                {QStringLiteral("\"q\""), QStringLiteral("8"), QStringLiteral(""),
                 QStringLiteral("9"), QStringLiteral("10")}};
  return page;
}

TEST(TableText, CsvAndTextEncodeCellsButNotCaptionsAndNeverQuote) {
  const FakePage page = FiveColumns();
  EXPECT_EQ(TableText(page, ExportKind::Csv, true, QStringLiteral(";"), kSaved),
            QStringLiteral("Procedure;LINES;CC;LLOC%;\u00B1d\r\n"
                           "a &amp; b, c;p:1;p:2;p:3;\r\n"
                           "gr&#246;&#223;e &lt;x&gt;;p:4;p:5;p:6;p:7\r\n"
                           "&quot;q&quot;;p:8;;p:9;p:10\r\n"));
  EXPECT_EQ(TableText(page, ExportKind::Text, true, QStringLiteral(";"), kSaved),
            QStringLiteral("Procedure\tLINES\tCC\tLLOC%\t\u00B1d\r\n"
                           "a &amp; b, c\tp:1\tp:2\tp:3\t\r\n"
                           "gr&#246;&#223;e &lt;x&gt;\tp:4\tp:5\tp:6\tp:7\r\n"
                           "&quot;q&quot;\tp:8\t\tp:9\tp:10\r\n"));
}

TEST(TableText, HtmlBandsRowsAndCyclesFiveColumns) {
  FakePage page = FiveColumns();
  page.subHeading = QStringLiteral("Harbour & Co 2024");
  const QString html = TableText(page, ExportKind::Html, false, QString(), kSaved);
  EXPECT_EQ(TableLines(html),
            (QStringList{
                "<THEAD><TR><TH>Procedure</TH><TH>LINES</TH><TH>CC</TH><TH>LLOC%</TH><TH>&#177;d</"
                "TH></TR></THEAD><TBODY>",
                "<TR CLASS=\"R1\"><TD CLASS=\"CH\">a &amp; b, c</TD><TD CLASS=\"C2\">h:1</TD><TD "
                "CLASS=\"C0\">h:2</TD><TD CLASS=\"C1\">h:3</TD><TD CLASS=\"C2\"></TD></TR>",
                "<TR CLASS=\"R2\"><TD CLASS=\"CH\">gr&#246;&#223;e &lt;x&gt;</TD><TD "
                "CLASS=\"C2\">h:4</TD><TD CLASS=\"C0\">h:5</TD><TD CLASS=\"C1\">h:6</TD><TD "
                "CLASS=\"C2\">h:7</TD></TR>",
                "<TR CLASS=\"R1\"><TD CLASS=\"CH\">&quot;q&quot;</TD><TD CLASS=\"C2\">h:8</TD><TD "
                "CLASS=\"C0\"></TD><TD CLASS=\"C1\">h:9</TD><TD CLASS=\"C2\">h:10</TD></TR>",
            }));
  const QString start =
      ReportHead(QStringLiteral("Metrics exported by Ombrelle Viewer ") + VersionText(false),
                 false) +
      QStringLiteral("\r\n") + ReportTableStyle() +
      QStringLiteral(
          "</HEAD><BODY>\r\n<H1>Procedure metrics</H1>\r\n<P>Harbour &amp; Co "
          "2024</P>\r\n<TABLE CLASS=\"data\">\r\n<THEAD>");
  EXPECT_TRUE(html.startsWith(start)) << html.left(start.size()).toStdString();
  EXPECT_TRUE(html.endsWith(
      QStringLiteral("</TBODY></TABLE><P></P>\r\n<P>Saved</P>\r\n</BODY></HTML>\r\n")));
  EXPECT_FALSE(html.contains(QStringLiteral("Summary")));
}

TEST(TableText, RotatedHtmlMakesTheSecondColumnAHeaderCell) {
  FakePage page = FiveColumns();
  page.rotated = true;
  const QStringList lines = TableLines(TableText(page, ExportKind::Html, false, QString(), kSaved));
  ASSERT_EQ(lines.size(), 4);
  EXPECT_EQ(lines[1],
            "<TR CLASS=\"R1\"><TD CLASS=\"CH\">a &amp; b, c</TD><TD CLASS=\"CH\">h:1</TD><TD "
            "CLASS=\"C2\">h:2</TD><TD CLASS=\"C0\">h:3</TD><TD CLASS=\"C1\"></TD></TR>");
}

TEST(TableText, NoRowsGivesTheHeaderLineOnly) {
  FakePage page;
  page.captions = {QStringLiteral("Procedure")};
  EXPECT_EQ(TableText(page, ExportKind::Csv, true, QStringLiteral(","), kSaved),
            QStringLiteral("Procedure\r\n"));
  EXPECT_EQ(TableLines(TableText(page, ExportKind::Html, true, QString(), kSaved)),
            QStringList{"<THEAD><TR><TH>Procedure</TH></TR></THEAD><TBODY>"});
}

TEST(TableText, ListSeparatorRule) {
  const struct {
    const char* list;
    const char* decimal;
    const char* expected;
  } cases[] = {
      {",", ".", ","}, {",", ",", ";"}, {";", ";", ","}, {";", ",", ";"},
      {"", ".", ","},  {"", ",", ";"},  {"|", "|", ";"}, {"abcdefg", ".", "abcde"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.list) + " / " + c.decimal);
    EXPECT_EQ(ListSeparatorFor(QString::fromUtf8(c.list), QString::fromUtf8(c.decimal)),
              QString::fromUtf8(c.expected));
  }
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  EXPECT_EQ(GetDecimalSeparator(), QStringLiteral(","));
  EXPECT_EQ(GetListSeparator(), QStringLiteral(";"));
  QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
  EXPECT_EQ(GetDecimalSeparator(), QStringLiteral("."));
  EXPECT_EQ(GetListSeparator(), QStringLiteral(","));
  QLocale::setDefault(QLocale::c());
}

std::unique_ptr<CStats> SeriesOf(const std::vector<double>& values) {
  auto stats = std::make_unique<CStats>();
  for (double v : values) stats->AddValue(v);
  stats->CalcStatsQuick();
  return stats;
}

TEST(SummaryTable, GroupsByClassWithFullStatistics) {
  FakePage page;
  page.pageClass = ClassProject;
  page.ids = {1002, 2001, 4120};
  page.series.push_back(SeriesOf({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
  page.series.push_back(SeriesOf({}));
  page.series.push_back(SeriesOf({2, 4}));
  CString out;
  WriteSummaryTable(page, out);
  const QStringList lines = out.Value().split(QStringLiteral("\r\n"));
  ASSERT_GE(lines.size(), 12);
  EXPECT_EQ(lines[0], "<H1>Summary</H1>");
  EXPECT_EQ(lines[1], "<TABLE CLASS=\"summary\">");
  EXPECT_EQ(lines[2],
            "<TR><TH>Project metric</TH><TH>Name</TH><TH>Average</TH><TH CLASS=\"min\">Min</TH><TH "
            "CLASS=\"max\">Max</TH><TH CLASS=\"outliers\">Outliers</TH><TH "
            "CLASS=\"description\">Description</TH></TR>");
  EXPECT_EQ(lines[3], "<TR VALIGN=\"TOP\" CLASS=\"R1\">");
  EXPECT_EQ(lines[4], " <TD CLASS=\"abbr\">LINES</TD>");
  EXPECT_EQ(lines[6], " <TD CLASS=\"average\">" + FormatMetric(7, 5.5) + "</TD>");
  EXPECT_EQ(lines[7], " <TD CLASS=\"min\">1</TD>");
  EXPECT_EQ(lines[8], " <TD CLASS=\"max\">10</TD>");
  EXPECT_EQ(lines[9], "<TD CLASS=\"outliers\">&lt;1, &gt;9</TD>");
  EXPECT_TRUE(lines[10].startsWith("<TD CLASS=\"descr\">")) << lines[10].toStdString();
  EXPECT_TRUE(lines[10].endsWith("</TD></TR>"));
  // The file metric on a project page is a per-file average.
  EXPECT_EQ(lines[11].left(31), "<TR><TH>Project average</TH><TH");
  const QString text = out.Value();
  EXPECT_TRUE(text.contains("<TR VALIGN=\"TOP\" CLASS=\"R2\">\r\n <TD CLASS=\"abbr\">LINES</TD>"));
  EXPECT_TRUE(
      text.contains("<TD CLASS=\"average\">-</TD>\r\n <TD CLASS=\"min\">-</TD>\r\n <TD "
                    "CLASS=\"max\">-</TD>\r\n<TD CLASS=\"outliers\">-</TD>"));
  // Fewer than 10 values: no fences.
  EXPECT_TRUE(text.contains(" <TD CLASS=\"max\">4</TD>\r\n<TD CLASS=\"outliers\">-</TD>"));
  EXPECT_TRUE(text.endsWith("</TABLE>\r\n"));
}

TEST(SummaryTable, WithoutFullStatisticsOrData) {
  FakePage page;
  page.full = false;
  page.ids = {4120};
  page.series.push_back(SeriesOf({3}));
  CString out;
  WriteSummaryTable(page, out);
  EXPECT_FALSE(out.Value().contains("Average"));
  EXPECT_FALSE(out.Value().contains("outliers"));
  EXPECT_TRUE(out.Value().contains("<TR><TH>Procedure metric</TH><TH>Name</TH><TH CLASS=\"min\">"));
  page.loaded = false;
  CString empty;
  WriteSummaryTable(page, empty);
  EXPECT_EQ(empty.Value(), "<H1>Summary</H1>\r\n<TABLE CLASS=\"summary\">\r\n</TABLE>\r\n");
}

class TableFile : public ::testing::Test {
 protected:
  QString Path(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }
  QTemporaryDir m_dir;
  ScopedScriptedUi m_scripted;
  FakePage m_page = FiveColumns();
};

TEST_F(TableFile, WritesAnsiBytesAndOpensTheFile) {
  QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
  const QString file = Path("t.csv");
  ASSERT_TRUE(WriteTable(m_page, file, ExportKind::Csv, true));
  QLocale::setDefault(QLocale::c());
  QFile in(file);
  ASSERT_TRUE(in.open(QIODevice::ReadOnly));
  const QByteArray bytes = in.readAll();
  EXPECT_TRUE(
      bytes.startsWith("Procedure,LINES,CC,LLOC%,\xB1"
                       "d\r\na &amp; b, c,p:1"));
  EXPECT_EQ(m_scripted.ui.opened, std::vector<QString>{file});
  EXPECT_EQ(m_scripted.ui.busyShown, 1);
  EXPECT_EQ(m_scripted.ui.BusyCount(), 0);
  // Read back by an outside reader, a separator inside a header splits it.
  const QList<QStringList> rows =
      test::PythonCsvRows(file, QStringLiteral(","), QStringLiteral("cp1252"));
  ASSERT_EQ(rows.size(), 4);
  EXPECT_EQ(rows[0], (QStringList{"Procedure", "LINES", "CC", "LLOC%", "\u00B1d"}));
  EXPECT_EQ(rows[1], (QStringList{"a &amp; b", " c", "p:1", "p:2", "p:3", ""}));
}

TEST_F(TableFile, HtmlFilePassesXmllint) {
  m_page.ids = {4120};
  m_page.series.push_back(SeriesOf({1, 2, 3, 4, 5, 6, 7, 8, 9, 30}));
  m_page.subHeading = QStringLiteral("Gr\u00F6\u00DFe & Co");
  const QString file = Path("t.html");
  ASSERT_TRUE(WriteTable(m_page, file, ExportKind::Html, true));
  test::ExpectXmllintHtmlAccepts(file);
}

TEST_F(TableFile, RefusesAFolderAndAReadOnlyFileAndLeavesThemAlone) {
  ASSERT_TRUE(QDir().mkpath(Path("folder.csv")));
  EXPECT_FALSE(WriteTable(m_page, Path("folder.csv"), ExportKind::Csv, false));
  EXPECT_EQ(m_scripted.ui.MessageTexts(), QStringList{"Cannot overwrite " + Path("folder.csv")});
  EXPECT_EQ(m_scripted.ui.messages.at(0).style, MsgStyle::Exclamation);
  if (geteuid() == 0) GTEST_SKIP() << "file permissions do not bind the super-user";
  const QString locked = Path("locked.csv");
  {
    QFile file(locked);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("old");
  }
  QFile::setPermissions(locked, QFileDevice::ReadOwner);
  const bool refused = !WriteTable(m_page, locked, ExportKind::Csv, false);
  QFile::setPermissions(locked, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
  EXPECT_TRUE(refused);
  QFile file(locked);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), "old");
  EXPECT_EQ(m_scripted.ui.MessageTexts().value(1), "Cannot overwrite " + locked);
  EXPECT_TRUE(m_scripted.ui.opened.empty());
}

TEST_F(TableFile, TellsWhyAFileCannotBeCreated) {
  const QString file = Path("missing/t.txt");
  EXPECT_FALSE(WriteTable(m_page, file, ExportKind::Text, false));
  ASSERT_EQ(m_scripted.ui.messages.size(), 1u);
  EXPECT_TRUE(m_scripted.ui.messages[0].text.startsWith("Cannot create " + file + "\r\n"));
  EXPECT_GT(m_scripted.ui.messages[0].text.size(), ("Cannot create " + file + "\r\n").size());
  EXPECT_FALSE(QFile::exists(file));
  EXPECT_TRUE(m_scripted.ui.opened.empty());
}

}  // namespace
}  // namespace ombrelle
