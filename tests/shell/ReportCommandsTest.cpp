#include <QFile>
#include <QProcess>

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
  for (int i : {1, 3, 4}) test::ExpectXmllintHtmlAccepts(scripted.ui.opened[i]);
  EXPECT_EQ(scripted.ui.opened[5], ReportsFolder());

  // The compared archive: multipart/related, the HTML first, every picture
  // it names inside and decodable, and a page Chromium can show.
  const char* script = R"PY(
import email, email.policy, re, sys, urllib.parse
m = email.message_from_binary_file(open(sys.argv[1], 'rb'), policy=email.policy.default)
assert m.get_content_type() == 'multipart/related'
parts = list(m.iter_parts())
assert parts[0].get_content_type() == 'text/html'
html = parts[0].get_content()
base = parts[0]['Content-Location']
names = {p['Content-Location']: p for p in parts[1:]}
srcs = re.findall(r'<IMG SRC="([^"]+)"', html)
assert len(srcs) >= 6, srcs
for s in srcs:
    u = urllib.parse.urljoin(base, s)
    assert u in names, u
    assert names[u].get_content()[:2] == b'BM'
print(len(srcs))
)PY";
  QProcess python;
  python.start("python3", {"-c", script, scripted.ui.opened[2]});
  ASSERT_TRUE(python.waitForFinished(60000));
  EXPECT_EQ(python.exitCode(), 0) << python.readAllStandardError().toStdString();
  const QString shot = test::ArtefactPath("ReportCommands", "status-compared.png");
  test::ChromiumScreenshot(scripted.ui.opened[2], shot, 900, 2400);
  EXPECT_TRUE(QFile::exists(shot));
}

}  // namespace
}  // namespace ombrelle
