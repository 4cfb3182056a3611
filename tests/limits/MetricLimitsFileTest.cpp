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

using LimitsFileTest = test::LimitsSettingsTest;

QByteArray ReadAll(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST_F(LimitsFileTest, ExportWritesTheExactLines) {
  ScopedScriptedUi scripted;
  MetricLimits limits;
  limits.SetRules(QStringLiteral("Mixed"), {{1014, 1, 0.1, 0.3}, {4120, 0, 10, 0}, {3002, 3, 0, 0},
                                            {3112, 2, -0.25, 0}, {4001, 4, 0, 0}});
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
            "[MTL Metric limits]\r\n; Saved by Ombrelle Viewer\r\nVersion=1.0\r\nName=Empty\r\nRules=0\r\n\r\n");
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
  EXPECT_ONLY_UI_MESSAGE(scripted.ui, ("Cannot create file " + nowhere + ": No such file or directory").toStdString(),
                         48);
  EXPECT_FALSE(QFile::exists(nowhere));
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
  EXPECT_EQ(QString::fromUtf8(process.readAllStandardOutput()).remove(QLatin1Char('\r')).toStdString(),
            "[MTL Metric limits]\nVersion=1.0\nName=Team rules; strict\nRules=4\n"
            "[Rule1]\nMetric=4120\nLimitType=0\nLimit=10\n"
            "[Rule2]\nMetric=1014\nLimitType=1\nLimitMin=.1\nLimitMax=.3\n"
            "[Rule3]\nMetric=3002\nLimitType=3\nLimit=0\n"
            "[Rule4]\nMetric=4012\nLimitType=2\nLimit=3\n");
}

}  // namespace
}  // namespace ombrelle
