// New database names, the save folder and the search paths.
#include <QDir>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "common/QvzFixture.h"
#include "core/MetricSave.h"
#include "support/DateValue.h"
#include "support/ScriptedUiServices.h"
#include "support/SettingsStore.h"

namespace ombrelle {
namespace {

const QString kSection = QStringLiteral("Databases");

class MetricSaveNames : public ::testing::Test {
 protected:
  void SetUp() override { DeleteSettingsTree(kSection); }
  void TearDown() override { DeleteSettingsTree(kSection); }
  QString Folder() const { return m_dir.path(); }
  void Touch(const QString& name) const { test::QvzFixture::WriteBytes(m_dir.filePath(name), "x"); }

  QTemporaryDir m_dir;
  ScopedScriptedUi m_ui;
};

TEST_F(MetricSaveNames, FilteredNameAfterTheDate) {
  struct Case {
    QString name;
    const char* file;
  };
  const std::vector<Case> cases = {
      {"Foo", "2012-10-11 Foo.qvz"},
      {"my.proj.vbp", "2012-10-11 my.proj.vbp.qvz"},  // two dots: no extension cut
      {"a/b:c.vbp", "2012-10-11 abc.qvz"},
      {"", "2012-10-11.qvz"},
      {"*?", "2012-10-11.qvz"},
      {"A@B_c+d-e f", "2012-10-11 A@B_c+d-e f.qvz"},
      {QStringLiteral("\u00dcn\u00efcode [x]!{}"), "2012-10-11 ncode x.qvz"},
      {".hidden", "2012-10-11.qvz"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(MetricSave::GenerateDatabasename(c.name, DateSerial(2012, 10, 11) + 0.5, Folder(),
                                               QStringLiteral(".qvz")),
              Folder() + u'/' + QString::fromUtf8(c.file))
        << c.name.toStdString();
  }
  // A folder given with its separator.
  EXPECT_EQ(MetricSave::GenerateDatabasename("Foo", DateSerial(2012, 10, 11), Folder() + u'/',
                                             QStringLiteral(".xml")),
            Folder() + QStringLiteral("/2012-10-11 Foo.xml"));
}

TEST_F(MetricSaveNames, TakenNamesGetOneLetter) {
  const auto next = [this] {
    return MetricSave::GenerateDatabasename("Foo", DateSerial(2012, 10, 11), Folder(),
                                            QStringLiteral(".qvz"));
  };
  const QStringList expected = {"2012-10-11 Foo.qvz", "2012-10-11 Fooa.qvz", "2012-10-11 Foob.qvz",
                                "2012-10-11 Fooc.qvz"};
  for (const QString& name : expected) {
    EXPECT_EQ(next(), Folder() + u'/' + name);
    Touch(name);
  }
  // After "z" come the codes that follow it.
  for (char c = 'd'; c <= 'z'; ++c) Touch(QStringLiteral("2012-10-11 Foo%1.qvz").arg(c));
  EXPECT_EQ(next(), Folder() + QStringLiteral("/2012-10-11 Foo{.qvz"));
}

TEST_F(MetricSaveNames, NoFolderNoName) {
  // No save folder and the user cancels the folder dialog.
  EXPECT_EQ(MetricSave::GenerateDatabasename("Foo", 45000, QString(), QStringLiteral(".qvz")),
            QString());
  ASSERT_EQ(m_ui.ui.fileRequests.size(), 1u);
  EXPECT_EQ(m_ui.ui.fileRequests[0].title,
            QStringLiteral("Choose directory for saving metrics files in"));
  // The save folder answers when it is set.
  SaveSetting(kSection, QStringLiteral("SavePath"), Folder());
  EXPECT_EQ(MetricSave::GenerateDatabasename("Foo", DateSerial(2012, 10, 11), QString(),
                                             QStringLiteral(".qvz")),
            Folder() + QStringLiteral("/2012-10-11 Foo.qvz"));
  EXPECT_EQ(m_ui.ui.fileRequests.size(), 1u);
}

TEST_F(MetricSaveNames, SaveFolderSettingAndDialog) {
  const QString other = m_dir.filePath(QStringLiteral("other"));
  ASSERT_TRUE(QDir().mkpath(other));
  const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  ASSERT_TRUE(QDir().mkpath(documents));

  // A stored folder that no longer exists counts as none; the dialog starts
  // in the documents folder and its answer is stored.
  SaveSetting(kSection, QStringLiteral("SavePath"), m_dir.filePath(QStringLiteral("gone")));
  m_ui.ui.fileAnswers.push_back(other);
  EXPECT_EQ(MetricSave::GetDatabaseDirectory(), other);
  ASSERT_EQ(m_ui.ui.fileRequests.size(), 1u);
  EXPECT_EQ(m_ui.ui.fileRequests[0].folder, documents + QStringLiteral("/Ombrelle"));
  EXPECT_EQ(GetSetting(kSection, QStringLiteral("SavePath")), other);

  // With a folder set, it is the dialog's start and no question is asked.
  EXPECT_EQ(MetricSave::GetDatabaseDirectory(), other);
  m_ui.ui.fileAnswers.push_back(m_dir.filePath(QStringLiteral("not/there")));
  EXPECT_TRUE(MetricSave::Configure());
  EXPECT_EQ(m_ui.ui.fileRequests.back().folder, other);
  EXPECT_EQ(GetSetting(kSection, QStringLiteral("SavePath"), QStringLiteral("deleted")),
            QStringLiteral("deleted"));
  // Cancelled: nothing changes.
  SaveSetting(kSection, QStringLiteral("SavePath"), other);
  EXPECT_FALSE(MetricSave::Configure());
  EXPECT_EQ(GetSetting(kSection, QStringLiteral("SavePath")), other);
  EXPECT_EQ(m_ui.ui.fileRequests.size(), 3u);
}

TEST_F(MetricSaveNames, StoreInRegistryAddsEachFolderOnce) {
  SaveSetting(kSection, QStringLiteral("path1"), QStringLiteral("/data/one"));
  SaveSetting(kSection, QStringLiteral("path3"), QStringLiteral("/data/three"));
  SaveSetting(kSection, QStringLiteral("PATHextra"), QStringLiteral("/data/Extra"));
  SaveSetting(kSection, QStringLiteral("SavePath"), QStringLiteral("/data/save"));

  MetricSave::StoreInRegistry(QStringLiteral("/DATA/ONE"));    // known, ignoring case
  MetricSave::StoreInRegistry(QStringLiteral("/data/extra"));  // any "path*" key counts
  MetricSave::StoreInRegistry(QString());
  MetricSave::StoreInRegistry(QStringLiteral("/data/save"));  // not a search path: added
  MetricSave::StoreInRegistry(QStringLiteral("/data/four"));
  MetricSave::StoreInRegistry(QStringLiteral("/data/four"));

  EXPECT_EQ(GetSetting(kSection, QStringLiteral("path1")), QStringLiteral("/data/one"));
  EXPECT_EQ(GetSetting(kSection, QStringLiteral("path2")), QStringLiteral("/data/save"));
  EXPECT_EQ(GetSetting(kSection, QStringLiteral("path3")), QStringLiteral("/data/three"));
  EXPECT_EQ(GetSetting(kSection, QStringLiteral("path4")), QStringLiteral("/data/four"));
  EXPECT_EQ(GetAllSettings(kSection).size(), 6u);
}

}  // namespace
}  // namespace ombrelle
