// The sample set as the viewer sees it: found on a search path, grouped by
// project and its outliers found by the default limits.
// (The stored columns read back exactly, so the generator's stories and
// ranges are checked once, in the generator and database suites.)
#include <gtest/gtest.h>

#include <map>
#include <set>

#include <QTemporaryDir>

#include "core/MetricRead.h"
#include "limits/MetricLimits.h"
#include "support/SettingsStore.h"

using namespace ombrelle;

namespace {

class SampleViews : public ::testing::Test {
 protected:
  // The samples the build wrote (the database suite checks they are what a
  // fresh run writes); only the settings and the export go to a temporary folder.
  static void SetUpTestSuite() { s_folder = std::make_unique<QTemporaryDir>(); }
  static void TearDownTestSuite() { s_folder.reset(); }

  void SetUp() override {
    SetSettingsFilePath(s_folder->path() + "/settings.ini");
    SaveSetting("Databases", "path1", QStringLiteral(OMBRELLE_BUILD_DIR "/sample"));
  }
  void TearDown() override { SetSettingsFilePath({}); }

  // Databases of one project (compared without case), oldest first.
  static std::vector<int> SavesOf(const MetricRead& reader, const QString& project) {
    std::vector<std::pair<double, int>> saves;
    for (int i = 1; i <= reader.DatabaseCount(); ++i)
      if (reader.Database(i).Project.compare(project, Qt::CaseInsensitive) == 0)
        saves.emplace_back(reader.Database(i).AnalysisDate, i);
    std::sort(saves.begin(), saves.end());
    std::vector<int> result;
    for (const auto& s : saves) result.push_back(s.second);
    return result;
  }

  static std::unique_ptr<QTemporaryDir> s_folder;
};

std::unique_ptr<QTemporaryDir> SampleViews::s_folder;

constexpr MetricId kProcedureCC = 4120;

}  // namespace

TEST_F(SampleViews, ScanFindsEverySaveAndMarksOneLatestPerProject) {
  MetricRead reader;
  ASSERT_EQ(reader.DatabaseCount(), 21);
  std::map<QString, int> latest;
  std::set<QString> projects;
  for (int i = 1; i <= reader.DatabaseCount(); ++i) {
    const QString project = reader.Database(i).Project.toLower();
    projects.insert(project);
    if (reader.Database(i).Latest) ++latest[project];
  }
  EXPECT_EQ(projects.size(), 3u);
  ASSERT_EQ(latest.size(), 3u);
  for (const auto& [project, count] : latest) EXPECT_EQ(count, 1) << project.toStdString();
  // The latest save is the newest analysis of its project.
  for (const QString& project : projects) {
    const std::vector<int> saves = SavesOf(reader, project);
    ASSERT_FALSE(saves.empty());
    EXPECT_TRUE(reader.Database(saves.back()).Latest) << project.toStdString();
  }
}

TEST_F(SampleViews, LatestLargeProjectHasProceduresOutsideTheDefaultLimits) {
  MetricRead reader;
  const std::vector<int> saves = SavesOf(reader, QStringLiteral("Harbour.vbproj"));
  ASSERT_FALSE(saves.empty());
  reader.SetDataMode(DataModes::OneFile, 0, 0);
  ASSERT_TRUE(reader.OpenDatabase2(saves.back()));
  CStats cc = reader.GetValues(kProcedureCC);
  ASSERT_GT(cc.count(), 1000);
  MetricLimits limits;
  ASSERT_TRUE(limits.Load(LimitSet::Default));
  const int outside = limits.CalcOutsideLimits(cc, kProcedureCC);
  EXPECT_GT(outside, 0);
  EXPECT_LT(outside, cc.count() / 5);  // a few outliers, not the bulk
}
