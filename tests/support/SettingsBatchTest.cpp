#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "support/IniFile.h"
#include "support/SettingsStore.h"

namespace ombrelle {
namespace {

// The value of `key` of `section` in the file as it stands on disk (an
// object of the same process would see the store's unwritten changes).
QString OnDisk(const QString& path, const QString& section, const QString& key) {
  IniFile file;
  file.Load(path);
  return file.Value(section, key).value_or(QString());
}

TEST(SettingsBatch, WritesTheFileOnceWhenTheOutermostEnds) {
  QTemporaryDir dir;
  ASSERT_TRUE(dir.isValid());
  const QString path = dir.filePath(QStringLiteral("batch.ini"));
  SetSettingsFilePath(path);
  {
    const SettingsBatch outer;
    SaveSetting(QStringLiteral("Limits\\1"), QStringLiteral("Name"), QStringLiteral("One"));
    {
      const SettingsBatch inner;
      SaveSetting(QStringLiteral("Limits\\1"), QStringLiteral("Rules"), QStringLiteral("0"));
    }
    // Readers through the store see the change at once; the file waits.
    EXPECT_EQ(GetSetting(QStringLiteral("Limits\\1"), QStringLiteral("Rules")),
              QStringLiteral("0"));
    EXPECT_EQ(OnDisk(path, QStringLiteral("Limits"), QStringLiteral("1\\Name")), QString());
  }
  EXPECT_EQ(OnDisk(path, QStringLiteral("Limits"), QStringLiteral("1\\Name")),
            QStringLiteral("One"));
  EXPECT_EQ(OnDisk(path, QStringLiteral("Limits"), QStringLiteral("1\\Rules")),
            QStringLiteral("0"));

  SaveSetting(QStringLiteral("Limits\\2"), QStringLiteral("Name"),
              QStringLiteral("Two"));  // no batch: at once
  EXPECT_EQ(OnDisk(path, QStringLiteral("Limits"), QStringLiteral("2\\Name")),
            QStringLiteral("Two"));
  SetSettingsFilePath(QString());
}

TEST(IniFileSections, AllSectionsInOnePassFirstAppearanceCounts) {
  IniFile ini;
  ini.SetText(
      QStringLiteral("orphan=1\r\n[Head]\r\nVersion=1.0\r\n; note\r\nName = \"Quoted\"\r\n\r\n"
                     "[rule1]\r\nMetric=4120\r\n[HEAD]\r\nVersion=9\r\n[]\r\nEmpty=1\r\n"));
  const auto sections = ini.Sections();
  ASSERT_EQ(sections.size(), 3u);
  EXPECT_EQ(sections[0].first, QStringLiteral("Head"));
  EXPECT_EQ(sections[0].second, (std::vector<std::pair<QString, QString>>{
                                    {QStringLiteral("Version"), QStringLiteral("1.0")},
                                    {QStringLiteral("Name"), QStringLiteral("Quoted")}}));
  EXPECT_EQ(sections[1].first, QStringLiteral("rule1"));
  EXPECT_EQ(sections[1].second.size(), 1u);
  EXPECT_EQ(sections[2].first, QString());
  // The same entries as the section-by-section reader gives.
  EXPECT_EQ(sections[0].second, ini.Section(QStringLiteral("head")));
}

}  // namespace
}  // namespace ombrelle
