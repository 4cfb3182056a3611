#include <pwd.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "common/TestEnvironment.h"
#include "support/SettingsStore.h"
#include "support/WindowPlacement.h"

using namespace ombrelle;

namespace {

// Points the store at a file of its own for one test.
class SettingsFile {
 public:
  SettingsFile() : m_path(m_dir.path() + "/Ombrelle.ini") { SetSettingsFilePath(m_path); }
  ~SettingsFile() { SetSettingsFilePath(QString()); }
  const QString& path() const { return m_path; }

 private:
  QTemporaryDir m_dir;
  QString m_path;
};

const char* kChildVariable = "OMBRELLE_SETTINGS_CHILD_FILE";

}  // namespace

TEST(SettingsStore, NeverTheRealConfigurationFolder) {
  const passwd* user = getpwuid(getuid());
  ASSERT_NE(user, nullptr);
  const QString realHome = QString::fromLocal8Bit(user->pw_dir);
  const QString sandbox = ombrelle::test::SandboxRoot();
  ASSERT_FALSE(sandbox.isEmpty());
  EXPECT_TRUE(SettingsFilePath().startsWith(sandbox + "/")) << SettingsFilePath().toStdString();
  EXPECT_FALSE(SettingsFilePath().startsWith(realHome + "/")) << realHome.toStdString();
  for (auto location : {QStandardPaths::GenericConfigLocation, QStandardPaths::HomeLocation,
                        QStandardPaths::TempLocation, QStandardPaths::GenericDataLocation})
    EXPECT_TRUE(QStandardPaths::writableLocation(location).startsWith(sandbox)) << location;
}

TEST(SettingsStore, NumbersReadZeroForText) {
  SettingsFile file;
  SaveSetting("Options", "Count", "42");
  SaveSetting("Options", "Ratio", " 2.5 ");
  SaveSetting("Options", "Word", "twelve");
  SaveSetting("Options", "Empty", "");
  EXPECT_EQ(GetSettingNumber("Options", "Count"), 42);
  EXPECT_EQ(GetSettingNumber("Options", "Ratio"), 2.5);
  EXPECT_EQ(GetSettingNumber("Options", "Word", 7), 0);
  EXPECT_EQ(GetSettingNumber("Options", "Empty", 7), 0);
  EXPECT_EQ(GetSettingNumber("Options", "Missing", 7), 7);
  EXPECT_EQ(GetSettingNumber("Nowhere", "Missing"), 0);
}

TEST(SettingsStore, KeepsValuesThatLookLikeIniSyntax) {
  SettingsFile file;
  const QString tricky = "a=b; [c] \"q\" \\ , end";
  SaveSetting("Selections\\My set", "Key with blanks", tricky);
  SetSettingsFilePath(file.path());  // read back from the file
  EXPECT_EQ(GetSetting("Selections\\My set", "Key with blanks"), tricky);
  EXPECT_EQ(EnumSubkeys("Selections"), QStringList({"My set"}));
}

// Writes one key into the file named by the environment; runs only as the
// child of TwoStoresKeepEachOthersKeys.
TEST(SettingsStoreChild, WritesOneKey) {
  const QByteArray file = qgetenv(kChildVariable);
  if (file.isEmpty()) GTEST_SKIP() << "runs only as a child process";
  SetSettingsFilePath(QString::fromLocal8Bit(file));
  SaveSetting("Databases", "path2", "/from/child");
  SetSettingsFilePath(QString());
}

TEST(SettingsStore, TwoStoresKeepEachOthersKeys) {
  SettingsFile file;
  SaveSetting("Databases", "path1", "/from/parent");

  QProcess child;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(kChildVariable, file.path());
  child.setProcessEnvironment(environment);
  child.start(QCoreApplication::applicationFilePath(),
              {"--gtest_filter=SettingsStoreChild.WritesOneKey"});
  ASSERT_TRUE(child.waitForFinished(30000));
  ASSERT_EQ(child.exitCode(), 0) << child.readAllStandardOutput().toStdString();

  // This store has not seen the child's key, and writes one of its own.
  SaveSetting("Databases", "SavePath", "/saves");
  SetSettingsFilePath(file.path());
  EXPECT_EQ(GetSetting("Databases", "path1"), "/from/parent");
  EXPECT_EQ(GetSetting("Databases", "path2"), "/from/child");
  EXPECT_EQ(GetSetting("Databases", "SavePath"), "/saves");
}

TEST(SettingsStore, RoundTripsNestedSections) {
  SettingsFile file;
  EXPECT_EQ(GetSetting("Options", "Missing", "-1"), "-1");
  SaveSetting("Limits\\3", "Name", "Mine");
  SaveSetting("Limits\\3\\Rule1", "Metric", "1200");
  SaveSetting("Limits\\4", "Name", "Other");
  EXPECT_EQ(GetSetting("Limits\\3", "Name"), "Mine");
  EXPECT_EQ(EnumSubkeys("Limits"), QStringList({"3", "4"}));
  EXPECT_EQ(EnumSubkeys("Limits\\3"), QStringList({"Rule1"}));
  const auto all = GetAllSettings("Limits\\3");
  ASSERT_EQ(all.size(), 1u);
  EXPECT_EQ(all[0].first, "Name");
  DeleteSettingsTree("Limits\\3");
  EXPECT_EQ(GetSetting("Limits\\3\\Rule1", "Metric", "gone"), "gone");
  EXPECT_EQ(EnumSubkeys("Limits"), QStringList({"4"}));
  EXPECT_TRUE(GetAllSettings("NoSuchSection").empty());
  DeleteSetting("Limits\\4", "Name");
  EXPECT_EQ(GetSetting("Limits\\4", "Name", "x"), "x");
}

TEST(WindowPlacement, KeysWithAndWithoutIndex) {
  EXPECT_EQ(WindowPlacementKey("frmX", -1, ".Left"), "frmX.Left");
  EXPECT_EQ(WindowPlacementKey("frmX", 2, ".Left"), "frmX(2).Left");
  EXPECT_EQ(WindowPlacementKey("frmX", 0, ".WindowState"), "frmX(0).WindowState");
}

TEST(WindowPlacement, SaveWritesTheDescribedKeys) {
  SettingsFile file;
  SaveWindowPlacement("frmMetrics", -1, {QRect(10, 20, 300, 200), 0, true});
  SaveWindowPlacement("frmX", 2, {QRect(5, 6, 70, 80), 0, false});
  const auto sizable = GetAllSettings("WindowPlacement");
  std::vector<std::pair<QString, QString>> expected = {
      {"frmMetrics.Bottom", "220"}, {"frmMetrics.Left", "10"},       {"frmMetrics.Right", "310"},
      {"frmMetrics.Top", "20"},     {"frmMetrics.WindowState", "0"}, {"frmX(2).Left", "5"},
      {"frmX(2).Top", "6"},         {"frmX(2).WindowState", "0"}};
  auto sorted = sizable;
  std::sort(sorted.begin(), sorted.end());
  EXPECT_EQ(sorted, expected);
}

TEST(WindowPlacement, MaximisedKeepsTheNormalRectangle) {
  SettingsFile file;
  const std::vector<QRect> screens = {QRect(0, 0, 1600, 1000)};
  SaveWindowPlacement("frmMain", -1, {QRect(100, 100, 400, 300), 0, true});
  SaveWindowPlacement("frmMain", -1, {QRect(0, 0, 1600, 1000), 2, true});
  WindowGeometry restored{QRect(0, 0, 50, 50), 0, true};
  ASSERT_TRUE(RestoreWindowPlacement("frmMain", -1, restored, screens));
  EXPECT_EQ(restored.rect, QRect(100, 100, 400, 300));
  EXPECT_EQ(restored.windowState, 2);
  // Minimised likewise saves only its state, which is not restored.
  SaveWindowPlacement("frmMain", -1, {QRect(-32000, -32000, 10, 10), 1, true});
  restored = {QRect(0, 0, 50, 50), 0, true};
  ASSERT_TRUE(RestoreWindowPlacement("frmMain", -1, restored, screens));
  EXPECT_EQ(restored.rect, QRect(100, 100, 400, 300));
  EXPECT_EQ(restored.windowState, 0);
}

TEST(WindowPlacement, IndexedWindowsDoNotCollide) {
  SettingsFile file;
  const std::vector<QRect> screens = {QRect(0, 0, 1600, 1000)};
  SaveWindowPlacement("frmX", -1, {QRect(1, 2, 300, 300), 0, true});
  SaveWindowPlacement("frmX", 2, {QRect(500, 400, 200, 100), 0, true});
  WindowGeometry first{QRect(0, 0, 10, 10), 0, true};
  WindowGeometry second = first;
  RestoreWindowPlacement("frmX", -1, first, screens);
  RestoreWindowPlacement("frmX", 2, second, screens);
  EXPECT_EQ(first.rect, QRect(1, 2, 300, 300));
  EXPECT_EQ(second.rect, QRect(500, 400, 200, 100));
  WindowGeometry none{QRect(7, 7, 70, 70), 0, true};
  EXPECT_FALSE(RestoreWindowPlacement("frmX", 3, none, screens));
  EXPECT_EQ(none.rect, QRect(7, 7, 70, 70));
}

TEST(WindowPlacement, RestoreRules) {
  SettingsFile file;
  const std::vector<QRect> screens = {QRect(0, 0, 1600, 1000), QRect(1600, 0, 1280, 1024)};
  // A fixed-size window only moves.
  SaveWindowPlacement("frmFixed", -1, {QRect(40, 50, 999, 999), 0, false});
  WindowGeometry fixed{QRect(0, 0, 200, 100), 0, false};
  RestoreWindowPlacement("frmFixed", -1, fixed, screens);
  EXPECT_EQ(fixed.rect, QRect(40, 50, 200, 100));
  // An empty or inverted rectangle is not applied.
  SaveSetting("WindowPlacement", "frmBad.Left", "500");
  SaveSetting("WindowPlacement", "frmBad.Right", "400");
  SaveSetting("WindowPlacement", "frmBad.Top", "junk");
  WindowGeometry bad{QRect(1, 1, 100, 100), 0, true};
  EXPECT_TRUE(RestoreWindowPlacement("frmBad", -1, bad, screens));
  EXPECT_EQ(bad.rect, QRect(1, 1, 100, 100));
  // A window left on a screen that is gone comes back onto the first one.
  SaveWindowPlacement("frmAway", -1, {QRect(5000, 3000, 400, 300), 0, true});
  WindowGeometry away{QRect(0, 0, 10, 10), 0, true};
  RestoreWindowPlacement("frmAway", -1, away, screens);
  EXPECT_EQ(away.rect, QRect(1200, 700, 400, 300));
}

TEST(WindowPlacement, FitToScreens) {
  const std::vector<QRect> screens = {QRect(0, 0, 1600, 1000), QRect(1600, 0, 1280, 1024)};
  const std::pair<QRect, QRect> cases[] = {
      {QRect(100, 100, 400, 300), QRect(100, 100, 400, 300)},     // inside
      {QRect(1500, 100, 400, 300), QRect(1600, 100, 400, 300)},   // mostly on the second
      {QRect(-50, -20, 400, 300), QRect(0, 0, 400, 300)},         // over the edge
      {QRect(10, 10, 3000, 2000), QRect(0, 0, 1600, 1000)},       // larger than the screen
      {QRect(9000, 9000, 100, 100), QRect(1500, 900, 100, 100)},  // on no screen
  };
  for (const auto& [rect, fitted] : cases) EXPECT_EQ(FitToScreens(rect, screens), fitted);
  EXPECT_EQ(FitToScreens(QRect(9000, 9000, 100, 100), {}), QRect(9000, 9000, 100, 100));
}
