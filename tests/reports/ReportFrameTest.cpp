// The frame every HTML report shares: head, style blocks, footer, escaping,
// the reports folder with its fall-back, unique names and the saving.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "common/ScopedFileSizeLimit.h"
#include "reports/ReportFrame.h"
#include "support/FormatNum.h"
#include "support/ScriptedUiServices.h"

namespace ombrelle {
namespace {

QString Joined(std::initializer_list<const char*> lines) {
  QString text;
  for (const char* line : lines) text += QString::fromUtf8(line) + QStringLiteral("\r\n");
  return text;
}

TEST(ReportFrame, HeadHasItsFourLinesAndOpensTheBodyOnRequest) {
  const QString version = VersionText(false);
  const QString expected = QStringLiteral(
                               "<HTML><HEAD>\r\n"
                               "<TITLE>Q&amp;A &lt;1&gt; &quot;x&quot;</TITLE>\r\n"
                               "<META HTTP-EQUIV=\"Content-Type\" CONTENT=\"text/html\" />\r\n"
                               "<META NAME=\"Generator\" CONTENT=\"Ombrelle Viewer ") +
                           version + QStringLiteral(", ombrelle.example.org\" />\r\n");
  EXPECT_EQ(ReportHead(QStringLiteral("Q&A <1> \"x\""), false), expected);
  EXPECT_EQ(ReportHead(QStringLiteral("Q&A <1> \"x\""), true),
            expected + QStringLiteral("</HEAD><BODY>\r\n"));
}

TEST(ReportFrame, StyleBlocksAreExact) {
  EXPECT_EQ(
      ReportStyle(),
      Joined({"<STYLE TYPE=\"text/css\"><!--",
              "BODY { font-family: verdana; font-size: 80%; line-height: 1.5; }",
              "H1 { font-size: 140%; }",
              "H2 { font-size: 130%; }",
              "TR { text-align: left; }",
              "TR { font-family: verdana; font-size: 80%; line-height: 1.5;  }",
              "TD.data { text-align: right; }",
              "TABLE.stats TR TH { background: #ddddff; }",
              "TABLE.stats { border: 2px solid black; }",
              "TABLE TR.R1 { background: #ffffff; }",
              "TABLE TR.R2 { background: #eeeeee; }",
              "TABLE.grid { border: 2px solid black; border-collapse: collapse;  /* "
              "cellspacing = 0 */ }",
              "TABLE.grid TD { border: 1px solid gray; text-align:right; white-space: nowrap; }",
              "TABLE.grid TR TD.head { text-align:left; }",
              "TD.neg { color: red; }",
              "P.regression { margin-top: 0; margin-bottom: 0; }",
              "P.regressionbreak { margin-top: 1em; }",
              "TD.outliers { font-style: italic; }",
              "TR.hdr TH { padding-top: 1em; }",
              "--></STYLE>"}));
  EXPECT_EQ(ReportStatusStyle(),
            Joined({"<STYLE TYPE=\"text/css\"><!--",
                    "BODY { font-family: verdana; font-size: 80%; line-height: 1.5;  }",
                    ".alt { color: gray; font-style: italic; }", "--></STYLE>"}));
  EXPECT_EQ(
      ReportTableStyle(),
      Joined({"<STYLE TYPE=\"text/css\"><!--",
              "TR { font-family: verdana; font-size: 70%; line-height: 1.5; }",
              "TABLE.data, TABLE.summary { border: 2px solid black; }",
              "TABLE.data TD, TABLE.data TH { white-space: nowrap; }",
              "TABLE TR.R1 { background: #ffffff; }", "TABLE TR TH { background: #ddddff; }",
              "TABLE TR.R2 { background: #eeeeee; }",
              "TABLE.data TR.R1 TD.C2 { background: #f8f8f8; }",
              "TABLE.data TR TD.C0, TABLE.data TR TD.C1, TABLE.data TR TD.C2 { text-align: "
              "right; }",
              "TABLE.data TR TD.CH { text-align: left; }", "TABLE TR TH { text-align: left; }",
              "TABLE TR.R1 TD.average, TABLE TR.R1 TD.outliers { background: #f8f8f8; } ",
              "TD.average, TD.max, TD.min { text-align: right; } ",
              "TD.description { font-size: 80%; }", "--></STYLE>"}));
}

TEST(ReportFrame, FooterAndSavedByLine) {
  EXPECT_EQ(
      ReportFooter(QStringLiteral("x.html")),
      QStringLiteral("<P><A HREF=\"https://ombrelle.example.org/x.html\">Ombrelle Viewer</A> ") +
          VersionText(false) + QStringLiteral("</P>"));
  const QDateTime when(QDate(2026, 11, 23), QTime(9, 5, 7));
  EXPECT_EQ(SavedByText(QStringLiteral("Saved by "), when),
            QStringLiteral("<P>Saved by Ombrelle Viewer ") + VersionText(false) +
                QStringLiteral(", 2026-11-23 09:05</P>"));
}

TEST(ReportFrame, EscapingTables) {
  const struct {
    const char16_t* in;
    const char* html;
    const char* full;
  } cases[] = {
      {u"a&b", "a&amp;b", "a&amp;b"},
      {u"&lt;", "&amp;lt;", "&amp;lt;"},  // "&" goes first, so entities are not kept
      {u"<x y=\"1\">", "&lt;x y=&quot;1&quot;&gt;", "&lt;x y=&quot;1&quot;&gt;"},
      {u"1\u00A0000", "1&#160;000", "1&#160;000"},
      {u"Gr\u00F6\u00DFe", "Gr\u00F6\u00DFe", "Gr&#246;&#223;e"},
      {u"tab\tcr\rlf\n", "tab\tcr\rlf\n", "tab\tcr\rlf\n"},
      {u"\u0001\u007F~", "\u0001\u007F~", "&#1;&#127;~"},
      {u"\u20AC \U0001F600", "\u20AC \U0001F600", "&#8364; &#55357;&#56832;"},
  };
  for (const auto& c : cases) {
    const QString in = QString::fromUtf16(c.in);
    SCOPED_TRACE(in.toStdString());
    QString html = in;
    EscapeHTML(html);
    EXPECT_EQ(html, QString::fromUtf8(c.html));
    QString full = in;
    EscapeHTMLFull(full);
    EXPECT_EQ(full, QString::fromUtf8(c.full));
    EXPECT_EQ(EscapedHTML(in), QString::fromUtf8(c.full));
  }
}

class ReportFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    m_temp = QDir::tempPath();
    m_folder = m_temp + QStringLiteral("/Ombrelle reports");
    QDir(m_folder).removeRecursively();
    QFile::remove(m_folder);
  }
  void TearDown() override {
    QDir(m_folder).removeRecursively();
    QFile::remove(m_folder);
  }
  QString m_temp;
  QString m_folder;
};

TEST_F(ReportFolder, IsMadeInTheTemporaryFolder) {
  EXPECT_EQ(ReportsFolder(), m_folder);
  EXPECT_TRUE(QDir(m_folder).exists());
}

TEST_F(ReportFolder, FallsBackToTheTemporaryFolderWhenItCannotBeMade) {
  QFile blocker(m_folder);
  ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
  blocker.close();
  EXPECT_EQ(ReportsFolder(), m_temp);
  EXPECT_EQ(HtmlReportName(QStringLiteral("Stats")), m_temp + QStringLiteral("/Stats.html"));
}

TEST_F(ReportFolder, SavedReportsNeverOverwriteEachOther) {
  ScopedScriptedUi scripted;
  EXPECT_EQ(HtmlReportName(QStringLiteral("Stats")), m_folder + QStringLiteral("/Stats.html"));
  EXPECT_EQ(MhtReportName(QStringLiteral("Charts")), m_folder + QStringLiteral("/Charts.mht"));
  const QString first =
      SaveAndOpenReport(QStringLiteral("<P>\u00E9 first</P>"), QStringLiteral("Stats"));
  const QString second = SaveAndOpenReport(QStringLiteral("second"), QStringLiteral("Stats"));
  EXPECT_EQ(first, m_folder + QStringLiteral("/Stats.html"));
  EXPECT_EQ(second, m_folder + QStringLiteral("/Statsxa.html"));
  EXPECT_EQ(scripted.ui.opened, (std::vector<QString>{first, second}));
  QFile file(first);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), QByteArray("\xEF\xBB\xBF<P>\xC3\xA9 first</P>"));
  EXPECT_TRUE(scripted.ui.messages.empty());
}

TEST_F(ReportFolder, FailedSaveOpensNothing) {
  ScopedScriptedUi scripted;
  {
    // The disc fills up half way through the report.
    test::ScopedFileSizeLimit limit(4096);
    EXPECT_TRUE(
        SaveAndOpenReport(QString(200000, QLatin1Char('x')), QStringLiteral("Limits")).isEmpty());
  }
  EXPECT_FALSE(QFile::exists(m_folder + QStringLiteral("/Limits.html")));
  EXPECT_TRUE(scripted.ui.opened.empty());
  EXPECT_EQ(scripted.ui.messages.size(), 1u);
}

}  // namespace
}  // namespace ombrelle
