#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>

#include "common/MessageAssertions.h"
#include "limits/LimitsTestSettings.h"
#include "limits/MetricLimits.h"
#include "support/ScriptedUiServices.h"
#include "support/SettingsStore.h"

namespace ombrelle {
namespace {

using test::ReadAll;
using test::Rules;

using LimitsFileTest = test::LimitsSettingsTest;

void WriteFile(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  ASSERT_EQ(file.write(bytes), bytes.size());
}

// The head of a hand-written `.mtl` file.
QByteArray Head(const char* version, const char* rules) {
  return QByteArray("[MTL Metric limits]\r\n; Saved by hand\r\nVersion=") + version +
         "\r\nName=Handmade\r\nRules=" + rules + "\r\n\r\n";
}

TEST_F(LimitsFileTest, ExportWritesTheExactLines) {
  ScopedScriptedUi scripted;
  MetricLimits limits;
  limits.SetRules(QStringLiteral("Mixed"), {{1014, 1, 0.1, 0.3},
                                            {4120, 0, 10, 0},
                                            {3002, 3, 0, 0},
                                            {3112, 2, -0.25, 0},
                                            {4001, 4, 0, 0}});
  const QString path = TempPath(QStringLiteral("mixed.mtl"));
  ASSERT_TRUE(limits.Export(path));
  EXPECT_EQ(ReadAll(path).toStdString(),
            "[MTL Metric limits]\r\n"
            "; Saved by Ombrelle Viewer\r\n"
            "Version=1.0\r\n"
            "Name=Mixed\r\n"
            "Rules=5\r\n"
            "\r\n"
            "[Rule1]\r\nMetric=1014\r\nLimitType=1\r\nLimitMin=.1\r\nLimitMax=.3\r\n"
            "[Rule2]\r\nMetric=4120\r\nLimitType=0\r\nLimit=10\r\n"
            "[Rule3]\r\nMetric=3002\r\nLimitType=3\r\nLimit=0\r\n"
            "[Rule4]\r\nMetric=3112\r\nLimitType=2\r\nLimit=-.25\r\n"
            "[Rule5]\r\nMetric=4001\r\nLimitType=4\r\nLimit=0\r\n");
  EXPECT_TRUE(scripted.ui.messages.empty());

  // An existing file is replaced, not appended to.
  limits.SetRules(QStringLiteral("Empty"), {});
  ASSERT_TRUE(limits.Export(path));
  EXPECT_EQ(ReadAll(path).toStdString(),
            "[MTL Metric limits]\r\n; Saved by Ombrelle "
            "Viewer\r\nVersion=1.0\r\nName=Empty\r\nRules=0\r\n\r\n");
}

TEST_F(LimitsFileTest, ExportFailuresAreShown) {
  ScopedScriptedUi scripted;
  MetricLimits limits;
  ASSERT_TRUE(limits.Load(LimitSet::Default));

  // A folder in the way cannot be deleted as a file.
  const QString folder = TempPath(QStringLiteral("taken.mtl"));
  ASSERT_TRUE(QDir().mkpath(folder + QStringLiteral("/inner")));
  EXPECT_FALSE(limits.Export(folder));
  EXPECT_ONLY_UI_MESSAGE(scripted.ui, ("Cannot delete existing file: " + folder).toStdString(), 48);

  scripted.ui.messages.clear();
  const QString nowhere = TempPath(QStringLiteral("missing/limits.mtl"));
  EXPECT_FALSE(limits.Export(nowhere));
  EXPECT_ONLY_UI_MESSAGE(
      scripted.ui, ("Cannot create file " + nowhere + ": No such file or directory").toStdString(),
      48);
  EXPECT_FALSE(QFile::exists(nowhere));
}

TEST_F(LimitsFileTest, ExportThenImportGivesTheSameRulesInOrder) {
  ScopedScriptedUi scripted;
  const std::vector<MetricLimitRule> rules = {
      {4120, 0, 10, 0},    {1014, 1, 0.1, 0.3}, {3002, 3, 0, 0},    {4001, 4, 0, 0},
      {3112, 2, -0.25, 0}, {4012, 2, 1e-5, 0},  {3001, 1, 1, 1e15}, {4120, 2, 3, 0}};
  MetricLimits source;
  source.SetRules(QStringLiteral("Team"), rules);
  const QString first = TempPath(QStringLiteral("team.mtl"));
  ASSERT_TRUE(source.Export(first));

  scripted.ui.inputAnswers.push_back(QStringLiteral("Team"));
  EXPECT_EQ(source.Import(first), 1);
  ASSERT_EQ(scripted.ui.inputPrompts.size(), 1u);
  EXPECT_EQ(scripted.ui.inputPrompts[0], QStringLiteral("Import as:"));
  MetricLimits imported;
  ASSERT_TRUE(imported.Load(1));
  EXPECT_EQ(imported.GetName(), QStringLiteral("Team"));
  EXPECT_EQ(Rules(imported), rules);

  const QString second = TempPath(QStringLiteral("again.mtl"));
  ASSERT_TRUE(imported.Export(second));
  EXPECT_EQ(ReadAll(second), ReadAll(first));
  EXPECT_TRUE(scripted.ui.messages.empty());
}

TEST_F(LimitsFileTest, LargeSetTravelsBothWays) {
  ScopedScriptedUi scripted;
  MetricLimits source;
  ASSERT_TRUE(source.Load(LimitSet::ExtremeOutliers));
  const QString path = TempPath(QStringLiteral("extreme.mtl"));
  ASSERT_TRUE(source.Export(path));
  scripted.ui.inputAnswers.push_back(QStringLiteral("Extreme"));
  ASSERT_EQ(source.Import(path), 1);
  MetricLimits imported;
  ASSERT_TRUE(imported.Load(1));
  EXPECT_EQ(Rules(imported), Rules(source));
}

TEST_F(LimitsFileTest, ImportCopiesSectionsAsTheyStandAndLoadKeepsTheValidRules) {
  ScopedScriptedUi scripted;
  // Sets 1 and 2 exist and a name that is no number is ignored: the import becomes set 3.
  SaveSetting(QStringLiteral("Limits\\1"), QStringLiteral("Name"), QStringLiteral("One"));
  SaveSetting(QStringLiteral("Limits\\2"), QStringLiteral("Name"), QStringLiteral("Two"));
  SaveSetting(QStringLiteral("Limits\\x"), QStringLiteral("Name"), QStringLiteral("Odd"));
  const QString path = TempPath(QStringLiteral("odd.mtl"));
  WriteFile(path, Head("1.00", "5") +
                      "[Rule1]\r\nMetric=4120\r\nLimitType=0\r\nLimit=12\r\n"
                      "[Rule2]\r\nMetric=4120\r\nLimitType=7\r\nLimit=3\r\n"
                      "[Rule3]\r\nMetric=9999\r\nLimitType=0\r\nLimit=3\r\n"
                      "[Rule4]\r\nMetric=1014\r\nLimitType=1\r\nLimitMin=.1\r\nLimitMax=.35\r\n"
                      "[Notes]\r\nAuthor=QA\r\n");
  scripted.ui.inputAnswers.push_back(QStringLiteral("Imported"));
  MetricLimits limits;
  ASSERT_EQ(limits.Import(path), 3);

  EXPECT_EQ(GetSetting(QStringLiteral("Limits\\3"), QStringLiteral("Version")),
            QStringLiteral("1.00"));
  EXPECT_EQ(GetSetting(QStringLiteral("Limits\\3"), QStringLiteral("Name")),
            QStringLiteral("Imported"));
  EXPECT_EQ(GetAllSettings(QStringLiteral("Limits\\3")).size(), 3u);  // no comment line
  EXPECT_EQ(GetSetting(QStringLiteral("Limits\\3\\Rule2"), QStringLiteral("LimitType")),
            QStringLiteral("7"));
  EXPECT_EQ(GetSetting(QStringLiteral("Limits\\3\\Rule3"), QStringLiteral("Metric")),
            QStringLiteral("9999"));
  EXPECT_EQ(GetSetting(QStringLiteral("Limits\\3\\Notes"), QStringLiteral("Author")),
            QStringLiteral("QA"));

  // Rule2 (type 7), Rule3 (unknown metric) and Rule5 (absent: metric 0, type -1)
  // go; loading leaves the store as it stands.
  ASSERT_TRUE(limits.Load(3));
  EXPECT_EQ(GetSetting(QStringLiteral("Limits\\3\\Rule2"), QStringLiteral("LimitType")),
            QStringLiteral("7"));
  EXPECT_EQ(Rules(limits), (std::vector<MetricLimitRule>{{4120, 0, 12, 0}, {1014, 1, 0.1, 0.35}}));
}

TEST_F(LimitsFileTest, RuleCountAboveTheRuleSections) {
  ScopedScriptedUi scripted;
  const QString path = TempPath(QStringLiteral("short.mtl"));
  WriteFile(path, Head("1.0", "3") +
                      "[Rule1]\r\nMetric=3002\r\nLimitType=3\r\nLimit=0\r\n"
                      "[Rule2]\r\nMetric=4141\r\nLimitType=0\r\nLimit=2\r\n");
  scripted.ui.inputAnswers.push_back(QStringLiteral("Short"));
  MetricLimits limits;
  ASSERT_EQ(limits.Import(path), 1);
  ASSERT_TRUE(limits.Load(1));
  EXPECT_EQ(Rules(limits), (std::vector<MetricLimitRule>{{3002, 3, 0, 0}, {4141, 0, 2, 0}}));
  EXPECT_EQ(limits.GetRuleString(4141, true), QStringLiteral("DLOOP <= 2"));
}

TEST_F(LimitsFileTest, CancelledNameImportsNothing) {
  ScopedScriptedUi scripted;  // no answer queued: the input box is cancelled
  MetricLimits limits;
  ASSERT_TRUE(limits.Load(LimitSet::Default));
  const QString path = TempPath(QStringLiteral("default.mtl"));
  ASSERT_TRUE(limits.Export(path));
  EXPECT_EQ(limits.Import(path), 0);
  EXPECT_EQ(scripted.ui.inputPrompts.size(), 1u);
  EXPECT_TRUE(EnumSubkeys(QStringLiteral("Limits")).isEmpty());
  EXPECT_TRUE(scripted.ui.messages.empty());
}

// An outside INI reader sees the same sections and keys as the program wrote.
TEST_F(LimitsFileTest, ExportedFileReadsWithPythonConfigParser) {
  const QString python = QStandardPaths::findExecutable(QStringLiteral("python3"));
  if (python.isEmpty()) GTEST_SKIP() << "python3 is not installed";
  ScopedScriptedUi scripted;
  MetricLimits limits;
  limits.SetRules(QStringLiteral("Team rules; strict"),
                  {{4120, 0, 10, 0}, {1014, 1, 0.1, 0.3}, {3002, 3, 0, 0}, {4012, 2, 3, 0}});
  const QString path = TempPath(QStringLiteral("team.mtl"));
  ASSERT_TRUE(limits.Export(path));

  const char* script =
      "import configparser, sys\n"
      "p = configparser.RawConfigParser(strict=False)\n"
      "p.optionxform = str\n"
      "p.read(sys.argv[1], encoding='cp1252')\n"
      "for s in p.sections():\n"
      "    print('[' + s + ']')\n"
      "    for k, v in p.items(s):\n"
      "        print(k + '=' + v)\n";
  QProcess process;
  process.start(python, {QStringLiteral("-c"), QString::fromUtf8(script), path});
  ASSERT_TRUE(process.waitForFinished(30000));
  ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
  EXPECT_EQ(
      QString::fromUtf8(process.readAllStandardOutput()).remove(QLatin1Char('\r')).toStdString(),
      "[MTL Metric limits]\nVersion=1.0\nName=Team rules; strict\nRules=4\n"
      "[Rule1]\nMetric=4120\nLimitType=0\nLimit=10\n"
      "[Rule2]\nMetric=1014\nLimitType=1\nLimitMin=.1\nLimitMax=.3\n"
      "[Rule3]\nMetric=3002\nLimitType=3\nLimit=0\n"
      "[Rule4]\nMetric=4012\nLimitType=2\nLimit=3\n");
}

}  // namespace
}  // namespace ombrelle
