#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "common/OutsideReaders.h"
#include "core/ListModel.h"
#include "reports/ReportFrame.h"
#include "reports/StatusPictures.h"
#include "shell/PageModelFixture.h"
#include "shell/ReportCommands.h"

namespace ombrelle {
namespace {

// Answers the list dialogs from fixed choices and records what they offered.
class ScriptedDialogs : public ProjectDialogs {
 public:
  int ListSelect(const QString& title, const ListModel& list) override {
    titles.push_back(title);
    offered = list.ListCount();
    return choice;
  }
  bool SelectProjects(const ListModel& list, int& a, int& b) override {
    offered = list.ListCount();
    a = first;
    b = second;
    return first != second;
  }
  int choice = 0;
  int first = 0;
  int second = 0;
  int offered = 0;
  std::vector<QString> titles;
};

class ReportCommandsTest : public test::PageModelTest {
 protected:
  ScopedScriptedUi scripted;
  ScriptedDialogs dialogs;
  ChartStatusPictures pictures;
};

QString ReadText(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

TEST_F(ReportCommandsTest, CancelledChoiceWritesNothing) {
  ReportCommands commands(*model, dialogs, pictures);
  commands.ProjectStatus();
  commands.LimitsReport();
  commands.CompareProjectStatus();
  EXPECT_EQ(dialogs.titles, (std::vector<QString>{"Select project", "Select project"}));
  EXPECT_EQ(dialogs.offered, model->Reader().DatabaseCount()) << "every analysis is offered";
  EXPECT_TRUE(scripted.ui.opened.empty());
  EXPECT_TRUE(scripted.ui.messages.empty());
}

TEST_F(ReportCommandsTest, StatusLimitsAndListsOfTheSamples) {
  ReportCommands commands(*model, dialogs, pictures);
  const int harbour = FirstDatabaseOf("Harbour");
  const int billing = FirstDatabaseOf("Billing");
  ASSERT_GT(harbour, 0);
  ASSERT_GT(billing, 0);
  dialogs.choice = harbour;
  commands.ProjectStatus();
  commands.LimitsReport();
  dialogs.first = harbour;
  dialogs.second = billing;
  commands.CompareProjectStatus();
  commands.MetricsList(false);
  commands.MetricsList(true);
  commands.ExploreReports();
  ASSERT_EQ(scripted.ui.opened.size(), 6u) << scripted.ui.MessageTexts().join("|").toStdString();
  EXPECT_TRUE(scripted.ui.messages.empty());

  const QString status = ReadText(scripted.ui.opened[0]);
  EXPECT_TRUE(status.contains("<H1>Project status report</H1>"));
  EXPECT_TRUE(status.contains("It is a ")) << "the sample has its line counts";
  EXPECT_FALSE(status.contains("<SPAN CLASS=\"alt\">"));
  EXPECT_TRUE(ReadText(scripted.ui.opened[2]).contains(" vs. <SPAN CLASS=\"alt\">[Billing"));
  const QString limits = ReadText(scripted.ui.opened[1]);
  EXPECT_TRUE(limits.contains("<P>Limits: "));
  EXPECT_TRUE(limits.contains("<TD>CC</TD>"));
  EXPECT_EQ(scripted.ui.opened[5], ReportsFolder());

  // The compared archive: multipart/related, the HTML first, every picture
  // it names inside and decodable, and a page Chromium can show.
  const QStringList images = test::WebArchiveImages(scripted.ui.opened[2]);
  ASSERT_FALSE(images.isEmpty());
  EXPECT_EQ(images.first(), "Project status report");
  EXPECT_GE(images.size(), 7) << images.join(" ").toStdString();
  const QString shot = test::ArtefactPath("ReportCommands", "status-compared.png");
  test::ChromiumScreenshot(scripted.ui.opened[2], shot, 900, 2400);
  EXPECT_TRUE(QFile::exists(shot));
}

// The reports of the page on the classes page (full statistics) and on the
// project-in-time page (time charts, no full statistics).
TEST_F(ReportCommandsTest, StatisticsChartsAndCorrelationOfThePage) {
  struct Case {
    int page;
    bool full;
    const char* shot;
  };
  for (const Case& c : {Case{4, true, "charts-classes.png"}, Case{2, false, "charts-time.png"}}) {
    ScopedScriptedUi scripted;
    ReportCommands commands(*model, dialogs, pictures);
    model->TabClicked(c.page);
    commands.StatisticsReport();
    commands.ChartsReport();
    commands.CorrelationReport();
    ASSERT_EQ(scripted.ui.opened.size(), 3u) << scripted.ui.MessageTexts().join("|").toStdString();
    EXPECT_TRUE(scripted.ui.messages.empty());
    const char* names[] = {"Stats", "Charts", "Correlations"};
    for (int i = 0; i < 3; ++i)
      EXPECT_TRUE(QFileInfo(scripted.ui.opened[i]).fileName().startsWith(names[i])) << i;
    const QString stats = ReadText(scripted.ui.opened[0]);
    EXPECT_TRUE(stats.contains("<P>" + EscapedHTML(model->PageTitle()) + "</P>"));
    EXPECT_EQ(stats.contains("<TD CLASS=\"data avg\">"), c.full);
    EXPECT_EQ(stats.contains("<P>Not all statistics are available"), !c.full);
    const QString correlations = ReadText(scripted.ui.opened[2]);
    EXPECT_TRUE(correlations.contains("<TD CLASS=\"head\">Correlation r</TD>"));
    EXPECT_TRUE(correlations.contains("<P CLASS=\"regression\">"));

    // Two pictures a series, in page order, each inside the archive.
    const int columns = model->Pages(model->CurrentPage()).ColumnCount;
    QStringList expected{"Metric charts"};
    for (int i = 1; i <= columns; ++i)
      expected << QString("MetricSeriesChart%1.bmp").arg(i)
               << QString("MetricBarChart%1.bmp").arg(i);
    QTemporaryDir dir;
    EXPECT_EQ(test::WebArchiveImages(scripted.ui.opened[1], dir.filePath("c.html")), expected);
    test::ChromiumScreenshot(scripted.ui.opened[1], test::ArtefactPath("ReportCommands", c.shot),
                             1000, 1600);
    if (c.full) {
      for (int i : {0, 2}) {
        test::ChromiumScreenshot(
            scripted.ui.opened[i],
            test::ArtefactPath("ReportCommands", i == 0 ? "stats.png" : "correlations.png"), 1400,
            900);
      }
    }
  }
}

TEST_F(ReportCommandsTest, CorrelationRefusedOnAllAnalysesWritesNothing) {
  ReportCommands commands(*model, dialogs, pictures);
  const QStringList before = QDir(ReportsFolder()).entryList(QDir::Files);
  commands.CorrelationReport();
  EXPECT_EQ(
      scripted.ui.MessageTexts(),
      QStringList{"Correlation analysis is not available on this page. See help for explanation."});
  EXPECT_TRUE(scripted.ui.opened.empty());
  EXPECT_EQ(QDir(ReportsFolder()).entryList(QDir::Files), before);
}

}  // namespace
}  // namespace ombrelle
