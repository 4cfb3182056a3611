#include <QFile>

#include "common/OutsideReaders.h"
#include "core/ListModel.h"
#include "reports/ReportFrame.h"
#include "reports/StatusReport.h"
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

class NoPictures : public StatusPictures {
 public:
  QString LinesCompare(MHTSaver&, MetricRead&, MetricRead&) override { return {}; }
  QString LinesPie(MHTSaver&, MetricRead&, int) override { return {}; }
  QString Histogram(MHTSaver&, const MetricRetriever&, MetricId) override { return {}; }
};

class ReportCommandsTest : public test::PageModelTest {
 protected:
  ScopedScriptedUi scripted;
  ScriptedDialogs dialogs;
  NoPictures pictures;
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
  for (int i : {1, 3, 4}) test::ExpectXmllintHtmlAccepts(scripted.ui.opened[i]);
  EXPECT_EQ(scripted.ui.opened[5], ReportsFolder());
}

}  // namespace
}  // namespace ombrelle
