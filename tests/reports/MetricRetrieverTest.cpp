#include <gtest/gtest.h>

#include "core/MetricRead.h"
#include "core/MetricReadTestSupport.h"
#include "reports/English.h"
#include "reports/MHTSaver.h"
#include "reports/MetricRetriever.h"
#include "reports/ReportFrame.h"
#include "reports/StatusReport.h"
#include "support/Filename.h"
#include "support/ScriptedUiServices.h"

namespace ombrelle {
namespace {

using test::SaveClass;
using test::SaveSpec;

constexpr double Inf = 1e99;

TEST(English, WordRules) {
  const std::vector<std::pair<QString, QString>> plurals = {
      {"file", "files"}, {"class", "classes"}, {"dependency", "dependencies"}, {"", "s"}};
  for (const auto& [noun, plural] : plurals)
    EXPECT_EQ(PluralNoun(noun), plural) << noun.toStdString();
  const std::vector<std::pair<QString, QString>> verbs = {
      {"have", "has"},         {"", ""},
      {"declare", "declares"}, {"pass", "passes"},
      {"carry", "carries"},    {"that exceed", "that exceeds"}};
  for (const auto& [verb, singular] : verbs)
    EXPECT_EQ(SingularVerb(verb), singular) << verb.toStdString();
  const std::vector<std::pair<double, QString>> sizes = {
      {0, "Small"},      {9999, "Small"},        {9999.4, "Small"},     {9999.5, "Medium"},
      {49999, "Medium"}, {50000, "Semi-large"},  {99999, "Semi-large"}, {100000, "Large"},
      {499999, "Large"}, {500000, "Very large"}, {1e9, "Very large"}};
  for (const auto& [lines, word] : sizes) EXPECT_EQ(SizeWord(lines), word) << lines;
}

// Two analyses of one project: the second has more risky procedures and no
// class table at all.
class MetricRetrieverTest : public test::AccessTest {
 protected:
  void SetUp() override {
    AccessTest::SetUp();
    const QString folder = Folder("db");
    SaveSpec first = test::ProjectSave("First & <best>", "p.vbp", 46000,
                                       {{1008, 12345},
                                        {1002, 10000},
                                        {1009, 8000},
                                        {1010, 2000},
                                        {1011, 2345},
                                        {1015, 1500},
                                        {1100, 9000},
                                        {1201, 4},
                                        {1200, 3}});
    first.classes.push_back(
        SaveClass{1,
                  {"a.bas", "b.bas", "c.bas"},
                  {{2021, {0.1, 0.2, 0.3}}, {2034, {3, 51, 60}}, {2001, {100, 1200, 300}}}});
    first.classes.push_back(SaveClass{2, {"C1", "C2"}, {{3213, {0, 2}}}});
    first.classes.push_back(SaveClass{3,
                                      {"a.P1", "a.P2", "a.P3", "a.P4"},
                                      {{4120, {1, 5, 25, 60}},
                                       {4020, {0, 3, 0, 1}},
                                       {4140, {1, 2, 7, 3}},
                                       {4001, {10, 70, 20, 100}},
                                       {4030, {0, 6, 2, 1}}}});
    SaveSpec second = test::ProjectSave("Second", "p.vbp", 46100, {{1008, 2000}});
    second.classes.push_back(SaveClass{1, {"a.bas"}, {{2021, {0.5}}, {2034, {1}}}});
    second.classes.push_back(SaveClass{3, {"a.P1", "a.P2", "a.P3"}, {{4120, {12, 13, 30}}}});
    m_first = Index(Write(folder, "first.qvz", first));
    m_second = Index(Write(folder, "second.qvz", second));
    ASSERT_GT(m_first, 0);
    ASSERT_GT(m_second, 0);
  }
  static int Index(const QString& path) {
    MetricRead list;
    for (int i = 1; i <= list.DatabaseCount(); ++i) {
      if (list.Database(i).Path == path) return i;
    }
    return 0;
  }
  int m_first = 0;
  int m_second = 0;
};

struct RangeCase {
  MetricId metric;
  double min, max;
  bool open;
  const char* noun;
  bool thereAre;
  const char* verb;
  bool capital;
  const char* alone;
  const char* compared;
};

TEST_F(MetricRetrieverTest, CountedPhrasesAloneAndCompared) {
  const std::vector<RangeCase> cases = {
      {2021, 0, 0.15, true, "file", true, "", false, "There is 1 file",
       "There is 1 <SPAN CLASS=\"alt\">[0]</SPAN> file"},
      {2021, 0, 0.1, true, "file", true, "", false, "There are no files",
       "There are no <SPAN CLASS=\"alt\">[0]</SPAN> files"},
      {4120, 11, 20, false, "moderate risk procedure", false, "", false,
       "no moderate risk procedures", "no <SPAN CLASS=\"alt\">[2]</SPAN> moderate risk procedures"},
      {4120, 21, Inf, false, "procedure", false, "", false, "2 procedures",
       "2 <SPAN CLASS=\"alt\">[1]</SPAN> procedures"},
      {2034, 61, Inf, false, "file", false, "have", true, "No file has",
       "No <SPAN CLASS=\"alt\">[0]</SPAN> file has"},
      {2034, 51, Inf, false, "file", false, "have", true, "2 files have",
       "2 <SPAN CLASS=\"alt\">[0]</SPAN> files have"},
      {2034, 51, 60, true, "file", false, "declare", false, "1 file declares",
       "1 <SPAN CLASS=\"alt\">[0]</SPAN> file declares"},
      {3213, 1, Inf, false, "class", false, "have", false, "1 class has",
       "1 <SPAN CLASS=\"alt\">[N/A]</SPAN> class has"},
      {4120, 0, Inf, false, "procedure", true, "that exceed", false,
       "There are 4 procedures that exceed",
       "There are 4 <SPAN CLASS=\"alt\">[3]</SPAN> procedures that exceed"},
  };
  MetricRetriever alone;
  ASSERT_TRUE(alone.Initialize(m_first, 0));
  EXPECT_EQ(alone.GetReader2(), nullptr);
  MetricRetriever compared;
  ASSERT_TRUE(compared.Initialize(m_first, m_second));
  for (const RangeCase& c : cases) {
    SCOPED_TRACE(c.alone);
    EXPECT_EQ(
        alone.GetRangeCount(c.metric, c.min, c.max, c.open, c.noun, c.thereAre, c.verb, c.capital),
        c.alone);
    EXPECT_EQ(compared.GetRangeCount(c.metric, c.min, c.max, c.open, c.noun, c.thereAre, c.verb,
                                     c.capital),
              c.compared);
  }
}

TEST_F(MetricRetrieverTest, MissingMetricReadsNotAvailable) {
  MetricRetriever secondAlone;
  ASSERT_TRUE(secondAlone.Initialize(m_second, 0));
  EXPECT_EQ(secondAlone.GetRangeCount(3213, 1, Inf, false, "class", false, "have", false),
            "N/A classes have");
  EXPECT_EQ(secondAlone.GetRangeCount(3213, 1, Inf, false, "class", true, "", true),
            "There are N/A classes");
  EXPECT_EQ(secondAlone.GetValue(3213), "N/A");

  MetricRetriever compared;
  ASSERT_TRUE(compared.Initialize(m_first, m_second));
  EXPECT_EQ(compared.GetValue(1008), "12,345 <SPAN CLASS=\"alt\">[2,000]</SPAN>");
  EXPECT_EQ(compared.GetValue(3213, 1), "1 <SPAN CLASS=\"alt\">[N/A]</SPAN>");
}

TEST_F(MetricRetrieverTest, InitializeFailsOnAMissingDatabase) {
  MetricRetriever retriever;
  EXPECT_FALSE(retriever.Initialize(99, 0));
  EXPECT_FALSE(retriever.Initialize(m_first, 99));
  EXPECT_EQ(retriever.GetValue(1008), "N/A");
}

// Pictures stand in by name, so the text can be compared whole.
class NamedPictures : public StatusPictures {
 public:
  QString LinesCompare(MHTSaver&, MetricRead&, MetricRead&) override { return "StatusLOC.bmp"; }
  QString LinesPie(MHTSaver&, MetricRead&, int number) override {
    return number == 1 ? QStringLiteral("StatusPie1.bmp") : QString();
  }
  QString Histogram(MHTSaver&, const MetricRetriever&, MetricId metric) override {
    return metric == 4001 ? QStringLiteral("<IMG SRC=\"4001Histogram.bmp\" />") : QString();
  }
};

TEST_F(MetricRetrieverTest, StatusReportBodyAloneAndCompared) {
  for (const bool compare : {false, true}) {
    MetricRetriever retriever;
    ASSERT_TRUE(retriever.Initialize(m_first, compare ? m_second : 0));
    NamedPictures pictures;
    MHTSaver saver;
    const QString body = StatusReportBody(retriever, pictures, saver, "First &amp; &lt;best&gt;",
                                          compare ? "Second" : "");
    const QString golden = JoinPath(
        OMBRELLE_TEST_DATA, compare ? "reports/status-compared.html" : "reports/status-alone.html");
    QFile file(golden);
    if (qEnvironmentVariableIsSet("OMBRELLE_WRITE_GOLDEN") && file.open(QIODevice::WriteOnly)) {
      file.write(body.toUtf8());
      file.close();
    }
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << golden.toStdString();
    EXPECT_EQ(body.toStdString(), QString::fromUtf8(file.readAll()).toStdString());
  }
}

TEST_F(MetricRetrieverTest, StatusReportIsOneArchiveHandedToTheDefaultHandler) {
  ScopedScriptedUi scripted;
  MetricRead reader;
  NamedPictures pictures;
  const QString name = WriteStatusReport(reader, m_first, m_second, pictures);
  ASSERT_TRUE(name.startsWith(ReportsFolder() + "/Status")) << name.toStdString();
  ASSERT_TRUE(name.endsWith(".mht"));
  EXPECT_TRUE(scripted.ui.messages.empty());
  EXPECT_EQ(scripted.ui.opened, std::vector<QString>{name});
  QFile file(name);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QString text = QString::fromUtf8(file.readAll());
  EXPECT_TRUE(text.contains("Subject: Project status report\r\n"));
  EXPECT_TRUE(text.contains("<TITLE>Project status report</TITLE>"));
  EXPECT_TRUE(text.contains("<H1>Project status report</H1>\r\n<P>First &amp; &lt;best&gt; &lt;"));
  EXPECT_TRUE(text.contains(".alt { color: gray; font-style: italic; }"));
  EXPECT_TRUE(
      text.endsWith("</BODY></HTML>\r\n\r\n\r\n------====::::MIME.boundary::::====------\r\n"));

  // A second report gets a name of its own; the first stays.
  EXPECT_NE(WriteStatusReport(reader, m_first, 0, pictures), name);
  EXPECT_TRUE(QFile::exists(name));
}

TEST_F(MetricRetrieverTest, StatusReportOfAMissingDatabaseLeavesNoFile) {
  ScopedScriptedUi scripted;
  MetricRead reader;
  NamedPictures pictures;
  const QStringList before = QDir(ReportsFolder()).entryList(QDir::Files);
  EXPECT_EQ(WriteStatusReport(reader, 99, 0, pictures), "");
  EXPECT_EQ(scripted.ui.MessageTexts(), QStringList{"Could not open database 1"});
  EXPECT_EQ(WriteStatusReport(reader, m_first, 99, pictures), "");
  EXPECT_EQ(scripted.ui.MessageTexts().last(), "Could not initialize MR");
  EXPECT_EQ(QDir(ReportsFolder()).entryList(QDir::Files), before);
  EXPECT_TRUE(scripted.ui.opened.empty());
}

}  // namespace
}  // namespace ombrelle
