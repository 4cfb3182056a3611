// The database manager and the header dialog as windows under Xvfb: from the
// main window's File > Databases..., rename one sample, delete another after
// the question, edit a third header; then the disk and the main window's
// list. The outer test starts this program again under xvfb-run; the inner
// test does the work there. Screenshots go to <build>/test-output/DatabaseManager/.
#include <memory>

#include <gtest/gtest.h>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>

#include "common/OutsideReaders.h"
#include "core/MetricRead.h"
#include "core/QVZRead.h"
#include "core/ui/frmMetricDatabases.h"
#include "core/ui/frmQVZEdit.h"
#include "shell/StartupState.h"
#include "shell/ui/frmMetrics.h"
#include "support/ScriptedUiServices.h"
#include "support/SelectFolder.h"
#include "support/SettingsStore.h"
#include "support/ui/SelectFolderDialog.h"
#include "ui/WindowFixture.h"

namespace ombrelle {
namespace {

const char* kInnerFlag = "OMBRELLE_UNDER_XVFB";

QString OutputFolder() { return test::ArtefactFolder(QStringLiteral("DatabaseManager")); }

void Shot(QWidget& widget, const QString& name) {
  EXPECT_TRUE(widget.grab().save(OutputFolder() + u'/' + name + QStringLiteral(".png")));
}

void Settle() {
  for (int i = 0; i < 5; ++i) QApplication::processEvents();
}

TEST(DatabaseManagerXvfb, RunsTheWindowTestUnderXvfb) {
  if (qEnvironmentVariableIsSet(kInnerFlag)) GTEST_SKIP() << "inner run";
  QProcess run;
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
  env.insert(QString::fromLatin1(kInnerFlag), QStringLiteral("1"));
  env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
  run.setProcessEnvironment(env);
  run.setProcessChannelMode(QProcess::MergedChannels);
  run.start(QStringLiteral("xvfb-run"),
            {QStringLiteral("-a"), QStringLiteral("-s"), QStringLiteral("-screen 0 1280x1024x24"),
             QCoreApplication::applicationFilePath(),
             QStringLiteral("--gtest_filter=DatabaseManagerWindow.*")});
  ASSERT_TRUE(run.waitForStarted(10000)) << "xvfb-run is missing (package xvfb)";
  ASSERT_TRUE(run.waitForFinished(240000));
  const QByteArray output = run.readAll();
  EXPECT_EQ(run.exitCode(), 0) << output.toStdString();
  EXPECT_TRUE(output.contains("[  PASSED  ] 2 tests")) << output.toStdString();
}

// The window tests' start, inside the run under xvfb-run only.
class DatabaseManagerWindow : public WindowTest {
 protected:
  void SetUp() override {
    if (!qEnvironmentVariableIsSet(kInnerFlag)) GTEST_SKIP() << "runs under xvfb-run";
    WindowTest::SetUp();
  }
};

TEST_F(DatabaseManagerWindow, RenameDeleteEditThenTheMainWindowList) {
  ASSERT_EQ(QGuiApplication::platformName(), QStringLiteral("xcb"));
  const QStringList& files = m_sampleFiles;
  const QDir folder(m_dir.filePath(QStringLiteral("sample")));
  ScopedScriptedUi ui;
  frmMetrics& window = Open();
  Settle();

  const QString renamedFrom = files[0], deleted = files[1], edited = files[2];
  const QString renamedTo = QStringLiteral("renamed by test.qvz");
  bool managerSeen = false, editorSeen = false;
  auto select = [](frmMetricDatabases& manager, const QString& name) {
    const auto found = manager.FileList().findItems(name, Qt::MatchExactly, 0);
    ASSERT_EQ(found.size(), 1) << name.toStdString();
    manager.FileList().setCurrentItem(found[0]);
    manager.FileList().setFocus();
    Settle();
  };
  QTimer::singleShot(200, [&] {
    auto* manager = qobject_cast<frmMetricDatabases*>(QApplication::activeModalWidget());
    ASSERT_NE(manager, nullptr);
    managerSeen = true;
    Settle();
    EXPECT_EQ(manager->windowTitle(), QStringLiteral("Ombrelle Databases (*.qvz)"));
    EXPECT_EQ(manager->FileList().topLevelItemCount(), files.size());
    Shot(*manager, QStringLiteral("manager"));

    select(*manager, renamedFrom);
    ui.ui.fileAnswers.push_back(folder.filePath(renamedTo));
    manager->PopupFile().findChild<QAction*>(QStringLiteral("mPopupRename"))->trigger();
    Settle();
    EXPECT_EQ(manager->FileList().findItems(renamedTo, Qt::MatchExactly, 0).size(), 1);

    select(*manager, deleted);
    ui.ui.msgAnswers.push_back(MsgResult::Yes);
    QKeyEvent del(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
    QApplication::sendEvent(&manager->FileList(), &del);
    Settle();
    EXPECT_EQ(manager->FileList().topLevelItemCount(), files.size() - 1);

    select(*manager, edited);
    Shot(*manager, QStringLiteral("manager-selected"));
    QTimer::singleShot(200, [&] {
      auto* editor = qobject_cast<frmQVZEdit*>(QApplication::activeModalWidget());
      ASSERT_NE(editor, nullptr);
      editorSeen = true;
      EXPECT_EQ(editor->windowTitle(), QStringLiteral("Edit ") + edited);
      EXPECT_TRUE(editor->DateEdit().hasFocus());
      Shot(*editor, QStringLiteral("edit"));
      editor->TitleEdit().clear();
      editor->SaveButton().click();  // refused: "Give a title."
      EXPECT_TRUE(editor->TitleEdit().hasFocus());
      editor->TitleEdit().setText(QStringLiteral("Edited in the window test"));
      editor->SaveButton().click();
    });
    manager->findChild<QPushButton*>(QStringLiteral("bEditDatabase"))->click();
    Settle();
    Shot(*manager, QStringLiteral("manager-after"));
    manager->findChild<QPushButton*>(QStringLiteral("bClose"))->click();
  });
  window.MenuEntry(QStringLiteral("mFileDatabases"))->trigger();
  Settle();
  EXPECT_TRUE(managerSeen);
  EXPECT_TRUE(editorSeen);

  // The disk.
  EXPECT_FALSE(QFile::exists(folder.filePath(renamedFrom)));
  EXPECT_TRUE(QFile::exists(folder.filePath(renamedTo)));
  EXPECT_FALSE(QFile::exists(folder.filePath(deleted)));
  QVZRead reader;
  QString error;
  ASSERT_TRUE(reader.Opendatabase(folder.filePath(edited), error)) << error.toStdString();
  EXPECT_EQ(reader.Title(), QStringLiteral("Edited in the window test"));
  ASSERT_EQ(ui.ui.messages.size(), 2u);
  EXPECT_EQ(ui.ui.messages[0].text,
            QStringLiteral("Delete disk file ") + folder.filePath(deleted) + u'?');
  EXPECT_EQ(ui.ui.messages[1].text, QStringLiteral("Give a title."));

  // The main window's list, made anew on return.
  MetricRead& list = window.Model().Reader();
  EXPECT_EQ(list.DatabaseCount(), files.size() - 1);
  QStringList paths, names;
  for (int i = 1; i <= list.DatabaseCount(); ++i) {
    paths << list.GetDatabaseFilename(i);
    names << list.GetDatabaseName(i);
  }
  EXPECT_TRUE(paths.contains(folder.filePath(renamedTo)));
  EXPECT_FALSE(paths.contains(folder.filePath(deleted)));
  EXPECT_TRUE(names.filter(QStringLiteral("Edited in the window test")).size() == 1)
      << names.join(u'|').toStdString();
  EXPECT_EQ(window.Model().SelectedTab(), 0);
  Shot(window, QStringLiteral("main-after"));
}

// The folder chooser of a target that is to be empty: the warning shows for a
// folder with files, "&Select" on a name that is no folder keeps it open.
TEST_F(DatabaseManagerWindow, FolderChooser) {
  QTemporaryDir dir;
  QFile file(dir.filePath(QStringLiteral("held.txt")));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.close();
  ScopedScriptedUi ui;
  FolderRequest request;
  request.title = QStringLiteral("Select directory");
  request.prompt = QStringLiteral("Choose directory for saving metrics files in");
  request.folder = dir.path();
  request.showKill = true;
  request.accept = [](const QString& name) { return SelectFolder::CheckEmptyTarget(name, true); };
  request.create = &SelectFolder::Create;
  request.view = &SelectFolder::View;
  request.kill = [](const QString& name) { SelectFolder::DeleteAllFiles(name); };
  request.warnNotEmpty = &SelectFolder::NotEmpty;
  SelectFolderDialog dialog(request);
  dialog.show();
  Settle();
  EXPECT_TRUE(dialog.findChild<QLabel*>(QStringLiteral("WarnNotEmpty"))->isVisible());
  Shot(dialog, QStringLiteral("folder-chooser"));
  dialog.DirName().setText(file.fileName());
  dialog.findChild<QPushButton*>(QStringLiteral("OK"))->click();
  EXPECT_TRUE(dialog.isVisible());
  EXPECT_EQ(ui.ui.MessageTexts(),
            QStringList{file.fileName() + QStringLiteral(" is not a directory.")});
  ui.ui.msgAnswers.push_back(MsgResult::Yes);
  dialog.DirName().setText(dir.path());
  dialog.findChild<QPushButton*>(QStringLiteral("bKill"))->click();
  Settle();
  EXPECT_FALSE(QFile::exists(file.fileName()));
  EXPECT_FALSE(dialog.findChild<QLabel*>(QStringLiteral("WarnNotEmpty"))->isVisible());
  dialog.findChild<QPushButton*>(QStringLiteral("OK"))->click();
  EXPECT_EQ(dialog.Folder(), dir.path());
}

}  // namespace
}  // namespace ombrelle
