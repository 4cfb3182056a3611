// The command line of qvzmeasure: options, messages and exit statuses.
#include <QTemporaryDir>

#include "measure/MeasureTestFiles.h"
#include "support/FormatNum.h"

namespace ombrelle::test {
namespace {

struct UsageCase {
  QStringList arguments;
  const char* error;
};

TEST(MeasureCommand, CommandLinesThatCannotBeUnderstood) {
  const UsageCase cases[] = {
      {{}, "no project or folder given"},
      {{"a", "b"}, "one project or folder at a time, not 2"},
      {{"-x", "a"}, "unknown option -x"},
      {{"a", "-o"}, "-o needs a value"},
      {{"a", "--output="}, "--output needs a value"},
      {{"a", "-o", "x", "-o", "y"}, "-o is given twice"},
      {{"a", "--date", "2025-02-30"}, "--date wants a day as YYYY-MM-DD, not \"2025-02-30\""},
      {{"a", "--date=4.3.2025"}, "--date wants a day as YYYY-MM-DD, not \"4.3.2025\""},
      {{"a", "--since", "2025-01-01"}, "--since needs --git"},
      {{"a", "--every", "week"}, "--every needs --git"},
      {{"--git", "r", "--every", "year"}, "--every wants day, week or month, not \"year\""},
      {{"--git", "r", "x"}, "--git takes the repository; \"x\" is one name too many"},
      {{"--git", "r", "--date", "2025-01-01"},
       "--date cannot be used with --git: each commit gives its own date"},
      {{"--version=1"}, "--version takes no value"},
  };
  for (const UsageCase& c : cases) {
    const CommandRun run = RunMeasure(c.arguments, QDir::tempPath());
    EXPECT_EQ(run.status, MeasureCommand::kBadUsage) << c.error;
    EXPECT_EQ(run.err, QStringList("qvzmeasure: " + QString::fromLatin1(c.error) +
                                   " (see qvzmeasure --help)"));
    EXPECT_TRUE(run.out.isEmpty());
  }
}

TEST(MeasureCommand, OptionsAreRead) {
  MeasureCommand::Options options;
  QString error;
  ASSERT_TRUE(MeasureCommand::Parse(
      {"--git=repo", "--since", "2024-02-29", "--every", "month", "-o", "out", "--title", "T"},
      options, error))
      << error.toStdString();
  EXPECT_TRUE(options.git);
  EXPECT_EQ(options.input, "repo");
  EXPECT_TRUE(options.hasSince);
  EXPECT_EQ(options.since, DateSerial(2024, 2, 29));
  EXPECT_EQ(options.every, GitHistory::Every::Month);
  EXPECT_EQ(options.output, "out");
  EXPECT_EQ(options.title, "T");
  ASSERT_TRUE(MeasureCommand::Parse({"--", "-dash"}, options, error));
  EXPECT_EQ(options.input, "-dash");
}

TEST(MeasureCommand, HelpAndVersion) {
  const CommandRun help = RunMeasure({"--help"}, QDir::tempPath());
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.out.join('\n'), MeasureCommand::Usage());
  EXPECT_TRUE(help.out.front().startsWith("Usage: qvzmeasure"));
  const CommandRun version = RunMeasure({"x", "--version"}, QDir::tempPath());
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out, QStringList("qvzmeasure " + VersionText(true)));
}

TEST(MeasureCommand, ProjectWithoutSourcesWritesNothing) {
  QTemporaryDir dir;
  PutFile(dir.filePath("Empty/readme.txt"), "no code here");
  PutFile(dir.filePath("Empty.vbp"), "Type=Exe\r\nModule=Gone; Gone.bas\r\n");
  CommandRun run = RunMeasure({"Empty"}, dir.path());
  EXPECT_EQ(run.status, MeasureCommand::kFailed);
  EXPECT_EQ(run.err, QStringList("qvzmeasure: Empty: no source files to measure; no database "
                                 "written"));
  run = RunMeasure({"Empty.vbp", "-o", "e.qvz"}, dir.path());
  EXPECT_EQ(run.status, MeasureCommand::kFailed);
  EXPECT_EQ(
      run.err,
      QStringList({"qvzmeasure: warning: Gone.bas: listed in Empty.vbp but not found; left out",
                   "qvzmeasure: Empty.vbp: no source files to measure; no database "
                   "written"}));
  run = RunMeasure({"Missing"}, dir.path());
  EXPECT_EQ(run.status, MeasureCommand::kFailed);
  EXPECT_EQ(run.err, QStringList("qvzmeasure: Missing: no such file or folder"));
  EXPECT_TRUE(QvzFiles(dir.path()).isEmpty());
  EXPECT_TRUE(run.out.isEmpty());
}

TEST(MeasureCommand, WritesANamedOrGeneratedDatabaseAndNeverReplacesOne) {
  QTemporaryDir dir;
  PutFile(dir.filePath("Shop/Main.bas"), Module("Main", 2));
  CommandRun run = RunMeasure({"Shop", "-o", "shop.qvz"}, dir.path());
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, QStringList(dir.filePath("shop.qvz") + " (1 file)"));
  EXPECT_TRUE(run.err.isEmpty());

  // An existing file stays as it was.
  PutFile(dir.filePath("keep.qvz"), "precious");
  run = RunMeasure({"Shop", "-o", "keep.qvz"}, dir.path());
  EXPECT_EQ(run.status, MeasureCommand::kFailed);
  EXPECT_EQ(run.err, QStringList("qvzmeasure: keep.qvz already exists; it is not replaced"));
  QFile keep(dir.filePath("keep.qvz"));
  ASSERT_TRUE(keep.open(QIODevice::ReadOnly));
  EXPECT_EQ(keep.readAll(), "precious");

  // Without -o: the day and the project's name, in the current folder when
  // the viewer has no save folder; a second save of the day gets a letter.
  for (const char* expected : {"2025-01-31 Shop.qvz", "2025-01-31 Shopa.qvz"}) {
    run = RunMeasure({dir.filePath("Shop"), "--date", "2025-01-31"}, dir.path());
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, QStringList(dir.filePath(expected) + " (1 file)"));
  }
}

}  // namespace
}  // namespace ombrelle::test
