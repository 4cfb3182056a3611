// Measuring a git repository's history, one database per sampled commit.
#include <QDateTime>
#include <QProcess>
#include <QTemporaryDir>

#include "core/QVZRead.h"
#include "measure/MeasureTestFiles.h"

namespace ombrelle::test {
namespace {

// Runs git in `repo`; commits are dated `when` (local time).
QByteArray Git(const QString& repo, const QStringList& arguments, const QString& when = {}) {
  QProcess git;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const char* name : {"GIT_AUTHOR_NAME", "GIT_COMMITTER_NAME"}) environment.insert(name, "t");
  for (const char* name : {"GIT_AUTHOR_EMAIL", "GIT_COMMITTER_EMAIL"})
    environment.insert(name, "t@example.invalid");
  if (!when.isEmpty()) {
    environment.insert("GIT_AUTHOR_DATE", when);
    environment.insert("GIT_COMMITTER_DATE", when);
  }
  git.setProcessEnvironment(environment);
  git.setWorkingDirectory(repo);
  git.start("git", arguments);
  EXPECT_TRUE(git.waitForFinished(30000)) << "git missing?";
  EXPECT_EQ(git.exitCode(), 0) << arguments.join(' ').toStdString() << ": "
                               << git.readAllStandardError().toStdString();
  return git.readAllStandardOutput();
}

void Commit(const QString& repo, const QString& when) {
  Git(repo, {"add", "-A"});
  Git(repo, {"commit", "-q", "-m", "change"}, when);
}

double Day(int y, int m, int d) { return DateSerial(y, m, d); }

qint64 Time(int y, int m, int d, int h = 12) {
  return QDateTime(QDate(y, m, d), QTime(h, 0)).toSecsSinceEpoch();
}

TEST(GitHistory, SamplesTheLastCommitOfEachPeriod) {
  const std::vector<GitHistory::Commit> commits = {
      {"a", Time(2024, 1, 29, 9)}, {"b", Time(2024, 1, 29, 18)}, {"c", Time(2024, 1, 31)},
      {"d", Time(2024, 2, 4)},     {"e", Time(2024, 2, 5)},      {"f", Time(2024, 3, 1)}};
  const struct {
    GitHistory::Every every;
    const char* ids;
  } cases[] = {{GitHistory::Every::Day, "bcdef"},
               {GitHistory::Every::Week, "def"},  // weeks start on Monday 29 Jan, 5 Feb
               {GitHistory::Every::Month, "cef"}};
  for (const auto& c : cases) {
    QString ids;
    for (const GitHistory::Commit& commit : GitHistory::Sample(commits, c.every)) ids += commit.id;
    EXPECT_EQ(ids, c.ids);
  }
  EXPECT_TRUE(GitHistory::Sample({}, GitHistory::Every::Day).empty());
}

TEST(GitHistory, OneDatabasePerSampledCommitFollowingTheCode) {
  QTemporaryDir dir;
  const QString repo = dir.filePath("shop");
  ASSERT_TRUE(QDir().mkpath(repo));
  Git(repo, {"init", "-q", "-b", "main"});
  PutFile(repo + "/README", "no code yet\n");
  Commit(repo, "2024-03-01T12:00:00");
  PutFile(repo + "/Main.bas", Module("Main", 1));
  Commit(repo, "2024-03-04T09:00:00");
  PutFile(repo + "/Main.bas", Module("Main", 2));  // the same day: only the later one counts
  PutFile(repo + "/Lib/Util.bas", Module("Util", 1));
  Commit(repo, "2024-03-04T17:00:00");
  PutFile(repo + "/Lib/Util.bas", Module("Util", 4));
  Commit(repo, "2024-03-06T12:00:00");
  // A change in the work tree that the history must neither see nor disturb.
  PutFile(repo + "/Main.bas", "unsaved work");
  const QByteArray statusBefore = Git(repo, {"status", "--porcelain"});

  const CommandRun run = RunMeasure({"--git", "shop", "-o", "history"}, dir.path());
  EXPECT_EQ(run.status, 0) << run.err.join('\n').toStdString();
  EXPECT_EQ(
      run.err,
      QStringList("qvzmeasure: warning: commit " +
                  QString::fromLatin1(Git(repo, {"rev-list", "--max-parents=0", "HEAD"})).left(10) +
                  ": no source files; passed over"));
  const QStringList files = QvzFiles(dir.filePath("history"));
  ASSERT_EQ(files, QStringList({"2024-03-04 shop.qvz", "2024-03-06 shop.qvz"}));
  EXPECT_EQ(run.out, QStringList({dir.filePath("history/2024-03-04 shop.qvz") + " (2 files)",
                                  dir.filePath("history/2024-03-06 shop.qvz") + " (2 files)"}));

  const double dates[] = {Day(2024, 3, 4) + 17.0 / 24, Day(2024, 3, 6) + 0.5};
  const double lines[] = {2 + 2 * 3 + 2 + 3, 2 + 2 * 3 + 2 + 4 * 3};
  for (int i = 0; i < 2; ++i) {
    QVZRead reader;
    QString error;
    ASSERT_TRUE(reader.Opendatabase(dir.filePath("history/" + files[i]), error));
    EXPECT_NEAR(reader.GetAnalysisDate(), dates[i], 1.0 / 86400);
    EXPECT_EQ(reader.ProjectFilename(), "shop");
    EXPECT_TRUE(reader.Title().startsWith("shop ")) << reader.Title().toStdString();
    double value = 0;
    ASSERT_TRUE(reader.ReadValueForRow(2001, "Lib/Util.bas", value));
    EXPECT_EQ(value, i == 0 ? 5 : 14);
    ASSERT_TRUE(reader.ReadSingleValue(1002, value));
    EXPECT_EQ(value, lines[i]);
    // Every file of a commit is dated by the commit.
    ASSERT_TRUE(reader.ReadSingleValue(1000, value));
    EXPECT_NEAR(value, dates[i], 1.0 / 86400);
    ASSERT_TRUE(reader.ReadValueForRow(2031, "Main.bas", value));
    EXPECT_NEAR(value, dates[i], 1.0 / 86400);
  }
  EXPECT_EQ(Git(repo, {"status", "--porcelain"}), statusBefore);
  QFile main(repo + "/Main.bas");
  ASSERT_TRUE(main.open(QIODevice::ReadOnly));
  EXPECT_EQ(main.readAll(), "unsaved work");
}

TEST(GitHistory, TheProjectFileOfTheTreeNamesTheProject) {
  QTemporaryDir dir;
  const QString repo = dir.filePath("repo");
  ASSERT_TRUE(QDir().mkpath(repo));
  Git(repo, {"init", "-q"});
  PutFile(repo + "/src/App.vbp",
          "Module=Main; main.BAS\r\nModule=Gone; Gone.bas\r\nName=\"App\"\r\n");
  PutFile(repo + "/src/Main.bas", Module("Main", 1));
  PutFile(repo + "/src/Other.bas", Module("Other", 1));  // not in the project
  Commit(repo, "2024-05-02T12:00:00");
  const CommandRun run =
      RunMeasure({"--git", repo, "-o", dir.filePath("h"), "--since", "2024-05-02"}, dir.path());
  EXPECT_EQ(run.status, 0);
  const QStringList files = QvzFiles(dir.filePath("h"));
  ASSERT_EQ(files, QStringList("2024-05-02 App.qvz"));
  ASSERT_EQ(run.err.size(), 1);
  EXPECT_TRUE(run.err[0].endsWith(": Gone.bas: listed in App.vbp but not in the commit; left out"));
  QVZRead reader;
  QString error;
  ASSERT_TRUE(reader.Opendatabase(dir.filePath("h/" + files[0]), error));
  EXPECT_EQ(reader.ProjectFilename(), "App.vbp");
  EXPECT_EQ(reader.GetClassSize(ClassFile), 1);
  double value = 0;
  EXPECT_TRUE(reader.ReadValueForRow(2001, "Main.bas", value));

  // Nothing after the day given; a folder that is no repository.
  CommandRun late = RunMeasure({"--git", repo, "--since", "2024-05-03"}, dir.path());
  EXPECT_EQ(late.status, MeasureCommand::kFailed);
  EXPECT_EQ(late.err, QStringList("qvzmeasure: " + repo + ": no commits to measure"));
  late = RunMeasure({"--git", dir.filePath("h")}, dir.path());
  EXPECT_EQ(late.status, MeasureCommand::kFailed);
  ASSERT_EQ(late.err.size(), 1);
  EXPECT_TRUE(late.err[0].startsWith("qvzmeasure: git log failed: ")) << late.err[0].toStdString();
}

}  // namespace
}  // namespace ombrelle::test
