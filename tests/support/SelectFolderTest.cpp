// The folder chooser's checks of "Select" and its buttons, driven through
// the scripted user-interface service.
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "common/MessageAssertions.h"
#include "support/SelectFolder.h"

namespace ombrelle {
namespace {

class SelectFolderTest : public ::testing::Test {
 protected:
  QString Sub(const QString& name) const { return m_dir.filePath(name); }
  void Touch(const QString& path) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
  }
  QTemporaryDir m_dir;
  ScopedScriptedUi m_ui;
};

TEST_F(SelectFolderTest, EmptyTargetChecksInOrder) {
  const QString file = Sub(QStringLiteral("plain.txt"));
  Touch(file);
  const QString withFiles = Sub(QStringLiteral("full"));
  QDir().mkpath(withFiles);
  Touch(withFiles + QStringLiteral("/x.txt"));
  const QString withSub = Sub(QStringLiteral("tree"));
  QDir().mkpath(withSub + QStringLiteral("/inner"));
  const QString empty = Sub(QStringLiteral("empty"));
  QDir().mkpath(empty);

  EXPECT_FALSE(SelectFolder::CheckEmptyTarget(file, true));
  EXPECT_FALSE(SelectFolder::CheckEmptyTarget(withFiles, true));
  EXPECT_FALSE(SelectFolder::CheckEmptyTarget(withSub, true));
  ASSERT_EQ(m_ui.ui.messages.size(), 3u);
  EXPECT_UI_MESSAGE(m_ui.ui, 0, (file + " is not a directory.").toStdString(),
                    MsgStyle::Exclamation);
  EXPECT_UI_MESSAGE(m_ui.ui, 1, "Directory not empty.", MsgStyle::Exclamation);
  EXPECT_UI_MESSAGE(m_ui.ui, 2, ("Directory " + withSub + " has sub-directories.").toStdString(),
                    MsgStyle::Exclamation);
  // Without the empty check both pass; the write test leaves nothing behind.
  EXPECT_TRUE(SelectFolder::CheckEmptyTarget(withFiles, false));
  EXPECT_TRUE(SelectFolder::CheckEmptyTarget(empty, true));
  EXPECT_TRUE(QDir(empty).entryList(QDir::Files | QDir::Hidden).isEmpty());
  EXPECT_EQ(m_ui.ui.messages.size(), 3u);
}

TEST_F(SelectFolderTest, WriteTestFailsOnAFolderThatCannotBeWritten) {
  const QString locked = Sub(QStringLiteral("locked"));
  QDir().mkpath(locked);
  const bool immutable =
      QProcess::execute(QStringLiteral("chattr"), {QStringLiteral("+i"), locked}) == 0;
  QFile::setPermissions(locked, QFile::ReadOwner | QFile::ExeOwner);
  const bool accepted = SelectFolder::CheckEmptyTarget(locked, true);
  if (immutable) QProcess::execute(QStringLiteral("chattr"), {QStringLiteral("-i"), locked});
  QFile::setPermissions(locked, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  EXPECT_FALSE(accepted);
  EXPECT_ONLY_UI_MESSAGE(m_ui.ui, ("Cannot write to directory\r\n" + locked).toStdString(),
                         MsgStyle::Exclamation);
}

TEST_F(SelectFolderTest, GetEmptyFolderAsksAgainUntilAFolderPasses) {
  const QString full = Sub(QStringLiteral("full"));
  QDir().mkpath(full);
  Touch(full + QStringLiteral("/x.txt"));
  const QString empty = Sub(QStringLiteral("empty"));
  QDir().mkpath(empty);
  m_ui.ui.fileAnswers = {full, empty};
  EXPECT_EQ(SelectFolder::GetEmptyFolder(m_dir.path(), 0, QStringLiteral("Target"), true), empty);
  ASSERT_EQ(m_ui.ui.fileRequests.size(), 2u);
  EXPECT_EQ(m_ui.ui.fileRequests[1].folder, full);  // asked again from the refused folder
  EXPECT_EQ(m_ui.ui.MessageTexts(), QStringList{"Directory not empty."});
  EXPECT_TRUE(SelectFolder::GetEmptyFolder(empty, 0, QStringLiteral("Target"), true).isEmpty());
}

TEST_F(SelectFolderTest, AnyFolderRefusesOnlyAFile) {
  const QString file = Sub(QStringLiteral("plain.txt"));
  Touch(file);
  const QString fresh = Sub(QStringLiteral("new/deeper"));
  m_ui.ui.fileAnswers = {file, fresh};
  EXPECT_EQ(SelectFolder::GetAnyFolder(m_dir.path(), QStringLiteral("Pick")), fresh);
  EXPECT_EQ(m_ui.ui.MessageTexts(), QStringList{file + " is not a directory."});
  EXPECT_EQ(m_ui.ui.fileRequests.at(0).title, QStringLiteral("Pick"));
  EXPECT_TRUE(SelectFolder::Create(fresh));
  EXPECT_TRUE(QFileInfo(fresh).isDir());
}

TEST_F(SelectFolderTest, DeleteAllFilesAsksAndKeepsSubfolders) {
  const QString folder = Sub(QStringLiteral("kill"));
  QDir().mkpath(folder + QStringLiteral("/keep"));
  Touch(folder + QStringLiteral("/a.txt"));
  Touch(folder + QStringLiteral("/b.qvz"));
  EXPECT_EQ(SelectFolder::DeleteAllFiles(folder), 0);  // No
  EXPECT_EQ(QDir(folder).entryList(QDir::Files).size(), 2);
  m_ui.ui.msgAnswers = {MsgResult::Yes};
  EXPECT_EQ(SelectFolder::DeleteAllFiles(folder), 2);
  EXPECT_TRUE(QDir(folder).entryList(QDir::Files).isEmpty());
  EXPECT_TRUE(QFileInfo(folder + QStringLiteral("/keep")).isDir());
  ASSERT_EQ(m_ui.ui.messages.size(), 2u);
  EXPECT_UI_MESSAGE(m_ui.ui, 0, ("Delete all files?\r\n" + folder).toStdString(),
                    MsgStyle::YesNoQuestion);
  SelectFolder::View(folder);
  EXPECT_EQ(m_ui.ui.opened, std::vector<QString>{folder});
}

}  // namespace
}  // namespace ombrelle
