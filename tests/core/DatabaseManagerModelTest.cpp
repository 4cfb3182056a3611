// The database manager's model: search paths, the file list, details,
// sorting, edit, delete and rename with their messages, driven through the
// scripted user-interface service.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "common/MessageAssertions.h"
#include "common/QvzFixture.h"
#include "core/MetricDatabasesModel.h"
#include "support/SettingsStore.h"

namespace ombrelle {
namespace {

using test::QvzFixture;
const QString kSection = QStringLiteral("Databases");

class DatabaseManagerModel : public ::testing::Test {
 protected:
  void SetUp() override {
    DeleteSettingsTree(kSection);
    m_folder = m_dir.filePath(QStringLiteral("db"));
    QDir().mkpath(m_folder);
    Make(QStringLiteral("a.qvz"), QStringLiteral("Alpha"), QStringLiteral("zeta/proj"));
    Make(QStringLiteral("b.qvz"), QStringLiteral("Beta"), QStringLiteral("alpha/proj"));
    Make(QStringLiteral("c.qvz"), QStringLiteral("Gamma"), QStringLiteral("mid/proj"));
    SaveSetting(kSection, QStringLiteral("path1"), m_folder);
  }
  void TearDown() override { DeleteSettingsTree(kSection); }

  void Make(const QString& name, const QString& title, const QString& project) {
    QvzFixture f = QvzFixture::SmallestVersion3();
    f.title = title;
    f.projectFilename = project;
    f.Write(QDir(m_folder).filePath(name));
  }
  QString File(const QString& name) const { return QDir(m_folder).filePath(name); }
  int IndexOf(const MetricDatabasesModel& model, const QString& name) const {
    for (int i = 0; i < model.FileCount(); ++i)
      if (model.FileItem(i).Text == name) return i;
    return -1;
  }
  QStringList Names(const MetricDatabasesModel& model) const {
    QStringList names;
    for (int i = 0; i < model.FileCount(); ++i) names << model.FileItem(i).Text;
    return names;
  }

  QTemporaryDir m_dir;
  QString m_folder;
  ScopedScriptedUi m_ui;
  std::vector<QString> m_edited;
  MetricDatabasesModel m_model{[this](const QString& file) {
    m_edited.push_back(file);
    return true;
  }};
};

TEST_F(DatabaseManagerModel, ListsPathsFilesAndDetails) {
  m_model.RefreshLists();
  EXPECT_EQ(m_model.Paths(), QStringList{m_folder});
  ASSERT_EQ(m_model.FileCount(), 3);
  const int b = IndexOf(m_model, QStringLiteral("b.qvz"));
  ASSERT_GE(b, 0);
  EXPECT_EQ(m_model.FileItem(b).SubItems.value(0), m_folder);
  EXPECT_EQ(m_model.FileItem(b).SubItems.value(1), QStringLiteral("alpha/proj"));
  EXPECT_FALSE(m_model.FileActionsEnabled());
  EXPECT_TRUE(m_model.FileDetails().isEmpty());
  m_model.SelectFile(b);
  EXPECT_EQ(m_model.CurrentFile(), File(QStringLiteral("b.qvz")));
  EXPECT_TRUE(m_model.FileDetails().startsWith(QStringLiteral("Beta - Date: ")));
  EXPECT_TRUE(m_model.FileActionsEnabled());
}

TEST_F(DatabaseManagerModel, ColumnClicksSortAndReverse) {
  m_model.RefreshLists();
  m_model.SelectFile(IndexOf(m_model, QStringLiteral("a.qvz")));
  m_model.SortClicked(2);
  EXPECT_EQ(Names(m_model), (QStringList{"b.qvz", "c.qvz", "a.qvz"}));
  EXPECT_EQ(m_model.CurrentFile(), File(QStringLiteral("a.qvz")));  // the selection follows
  m_model.SortClicked(2);
  EXPECT_EQ(Names(m_model), (QStringList{"a.qvz", "c.qvz", "b.qvz"}));
  m_model.SortClicked(0);
  EXPECT_EQ(Names(m_model), (QStringList{"a.qvz", "b.qvz", "c.qvz"}));
}

TEST_F(DatabaseManagerModel, AddPathFromTheChooserAndRemoveEveryKeyOfIt) {
  const QString other = m_dir.filePath(QStringLiteral("other"));
  QDir().mkpath(other);
  m_model.RefreshLists();
  m_ui.ui.fileAnswers.push_back(other);
  m_model.AddPath();
  ASSERT_EQ(m_ui.ui.fileRequests.size(), 1u);
  EXPECT_EQ(m_ui.ui.fileRequests[0].folder, m_folder);  // the first path, none selected
  EXPECT_EQ(m_model.Paths().size(), 2);
  // Adding it again keeps one key.
  m_ui.ui.fileAnswers.push_back(other);
  m_model.AddPath();
  EXPECT_EQ(m_model.Paths().size(), 2);

  SaveSetting(kSection, QStringLiteral("PATH7"), m_folder.toUpper());
  m_model.RefreshLists();
  ASSERT_EQ(m_model.Paths().size(), 3);
  m_model.SelectPath(m_model.Paths().indexOf(m_folder));
  m_model.RemovePath();
  EXPECT_EQ(m_model.Paths(), QStringList{other});
  EXPECT_EQ(m_model.FileCount(), 0);
  EXPECT_TRUE(QFile::exists(File(QStringLiteral("a.qvz"))));  // files stay
  EXPECT_TRUE(m_ui.ui.messages.empty());
}

TEST_F(DatabaseManagerModel, PathThatNoLongerExistsStaysListedWithoutFiles) {
  SaveSetting(kSection, QStringLiteral("path2"), m_dir.filePath(QStringLiteral("gone")));
  m_model.RefreshLists();
  EXPECT_EQ(m_model.Paths().size(), 2);
  EXPECT_EQ(m_model.FileCount(), 3);
  EXPECT_TRUE(m_ui.ui.messages.empty());
}

TEST_F(DatabaseManagerModel, DeleteAsksWithDefaultNoThenFocusesTheNextItem) {
  m_model.RefreshLists();
  m_model.SortClicked(0);
  m_model.SelectFile(1);               // b.qvz
  EXPECT_FALSE(m_model.DeleteFile());  // unanswered: No
  EXPECT_ONLY_UI_MESSAGE(m_ui.ui, "Delete disk file " + File("b.qvz").toStdString() + "?",
                         MsgStyle::YesNoQuestion + 256);
  EXPECT_TRUE(QFile::exists(File(QStringLiteral("b.qvz"))));

  m_ui.ui.msgAnswers = {MsgResult::Yes, MsgResult::Yes, MsgResult::Yes};
  EXPECT_TRUE(m_model.DeleteFile());
  EXPECT_FALSE(QFile::exists(File(QStringLiteral("b.qvz"))));
  EXPECT_EQ(Names(m_model), (QStringList{"a.qvz", "c.qvz"}));
  EXPECT_EQ(m_model.SelectedFile(), 1);
  EXPECT_TRUE(m_model.FileDetails().startsWith(QStringLiteral("Gamma")));
  EXPECT_TRUE(m_model.DeleteFile());  // the last one: the one before follows
  EXPECT_EQ(m_model.SelectedFile(), 0);
  EXPECT_TRUE(m_model.DeleteFile());
  EXPECT_EQ(m_model.FileCount(), 0);
  EXPECT_EQ(m_model.SelectedFile(), -1);
  EXPECT_TRUE(m_model.FileDetails().isEmpty());
}

TEST_F(DatabaseManagerModel, FileThatVanishedBeforeDeleteOrRename) {
  m_model.RefreshLists();
  m_model.SelectFile(IndexOf(m_model, QStringLiteral("c.qvz")));
  ASSERT_TRUE(QFile::remove(File(QStringLiteral("c.qvz"))));
  m_ui.ui.msgAnswers = {MsgResult::Yes};
  EXPECT_FALSE(m_model.DeleteFile());
  EXPECT_FALSE(m_model.Rename());
  ASSERT_EQ(m_ui.ui.messages.size(), 2u);
  EXPECT_EQ(m_ui.ui.messages[0].text,
            QStringLiteral("File ") + File("c.qvz") + QStringLiteral(" doesn't exist."));
  EXPECT_EQ(m_ui.ui.messages[1].text, QStringLiteral("File not found: \r\n") + File("c.qvz"));
  EXPECT_EQ(m_model.FileCount(), 3);
}

TEST_F(DatabaseManagerModel, RenameRefusalsLeaveTheFile) {
  m_model.RefreshLists();
  m_model.SelectFile(IndexOf(m_model, QStringLiteral("a.qvz")));
  const QByteArray before = QvzFixture::ReadBytes(File(QStringLiteral("a.qvz")));
  m_ui.ui.fileAnswers = {File("A.QVZ"), File("b.dat"), QString()};
  EXPECT_FALSE(m_model.Rename());
  EXPECT_FALSE(m_model.Rename());
  EXPECT_FALSE(m_model.Rename());  // cancelled: nothing
  ASSERT_EQ(m_ui.ui.messages.size(), 2u);
  EXPECT_UI_MESSAGE(m_ui.ui, 0, "Old and new filename are the same.", MsgStyle::Exclamation);
  EXPECT_UI_MESSAGE(m_ui.ui, 1, "New filename extension is not .qvz.", MsgStyle::Exclamation);
  const FileDialogRequest& request = m_ui.ui.fileRequests.at(0);
  EXPECT_EQ(request.title, QStringLiteral("Rename a.qvz as"));
  EXPECT_EQ(request.folder, m_folder);
  EXPECT_EQ(request.defaultExtension, QStringLiteral("qvz"));
  EXPECT_EQ(QDir(m_folder).entryList(QDir::Files), (QStringList{"a.qvz", "b.qvz", "c.qvz"}));
  EXPECT_EQ(QvzFixture::ReadBytes(File(QStringLiteral("a.qvz"))), before);
}

TEST_F(DatabaseManagerModel, RenameMovesTheItemWithoutRescan) {
  m_model.RefreshLists();
  const int a = IndexOf(m_model, QStringLiteral("a.qvz"));
  m_model.SelectFile(a);
  m_ui.ui.fileAnswers = {File("renamed.qvz"), File("b.qvz")};
  EXPECT_TRUE(m_model.Rename());
  EXPECT_EQ(m_model.FileItem(a).Text, QStringLiteral("renamed.qvz"));
  EXPECT_EQ(m_model.CurrentFile(), File(QStringLiteral("renamed.qvz")));
  EXPECT_TRUE(QFile::exists(File(QStringLiteral("renamed.qvz"))));
  // Onto a name that is taken: the system's refusal, both files stay.
  EXPECT_FALSE(m_model.Rename());
  ASSERT_EQ(m_ui.ui.messages.size(), 1u);
  EXPECT_TRUE(m_ui.ui.messages[0].text.startsWith(QStringLiteral("Error renaming: ")));
  EXPECT_TRUE(QFile::exists(File(QStringLiteral("renamed.qvz"))));
}

TEST_F(DatabaseManagerModel, EditRescansOnlyAfterAChange) {
  m_model.RefreshLists();
  m_model.EditDatabase();  // nothing selected
  EXPECT_TRUE(m_edited.empty());
  m_model.SelectFile(IndexOf(m_model, QStringLiteral("b.qvz")));
  m_model.EditDatabase();
  ASSERT_EQ(m_edited.size(), 1u);
  EXPECT_EQ(m_edited[0], File(QStringLiteral("b.qvz")));
  EXPECT_EQ(m_model.SelectedFile(), -1);  // lists refreshed
}

}  // namespace
}  // namespace ombrelle
