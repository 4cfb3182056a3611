// The header dialog's model: its fields and lines, the checks of "&Save" in
// order with their messages and focus, the write through EditHeader.
#include <QDate>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <unistd.h>

#include "common/MessageAssertions.h"
#include "common/QvzFixture.h"
#include "core/ListModel.h"
#include "core/MetricRead.h"
#include "core/MetricSave.h"
#include "core/QVZEditModel.h"
#include "stats/CStats.h"
#include "support/DateValue.h"
#include "support/SettingsStore.h"

namespace ombrelle {
namespace {

using test::QvzFixture;
using Field = QVZEditModel::Field;

class HeaderDialogModel : public ::testing::Test {
 protected:
  void SetUp() override { DeleteSettingsTree(QStringLiteral("Databases")); }
  void TearDown() override { DeleteSettingsTree(QStringLiteral("Databases")); }

  QString Written() {
    const QString path = m_dir.filePath(QStringLiteral("written.qvz"));
    MetricSave save;
    EXPECT_TRUE(save.SaveDatabase(path, QStringLiteral("Old title"), QStringLiteral("old/project"),
                                  DateSerial(2023, 6, 1) + TimeSerial(8, 30, 0)));
    save.AddClass(1, 2, {"b.c", "a.c"});
    save.AddMetricToClass(2001);
    save.ClassDone();
    EXPECT_TRUE(save.SaveClasses());
    CStats s;
    s.Init(2);
    s.AddValue(3);
    s.AddValue(70000);
    EXPECT_TRUE(save.SaveSeries(s));
    EXPECT_TRUE(save.Close());
    DeleteSettingsTree(QStringLiteral("Databases"));  // the writer remembered the folder
    return path;
  }

  QTemporaryDir m_dir;
  ScopedScriptedUi m_ui;
};

TEST_F(HeaderDialogModel, FieldsAndLinesOfTheFile) {
  const QString path = Written();
  QVZEditModel model;
  ASSERT_TRUE(model.Open(path));
  EXPECT_EQ(model.Caption(), QStringLiteral("Edit written.qvz"));
  EXPECT_EQ(model.Title, QStringLiteral("Old title"));
  EXPECT_EQ(model.Project, QStringLiteral("old/project"));
  EXPECT_EQ(model.DateText, QStringLiteral("2023-06-01"));
  EXPECT_EQ(model.SavedText(),
            QStringLiteral("File saved by ") + MetricSave::SavedByText() + QStringLiteral(" on ") +
                QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")) + QStringLiteral("."));
  EXPECT_EQ(model.VersionText(), QStringLiteral("QVZ file version: 3.0"));
  EXPECT_TRUE(
      model.FileDateText().startsWith(QStringLiteral("Last modified: ") +
                                      QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd"))));
  EXPECT_EQ(model.FlagsText(), QStringLiteral("Flags: Sorted, UTF8"));
  EXPECT_TRUE(m_ui.ui.messages.empty());

  QvzFixture ansi = QvzFixture::SmallestVersion3();
  ansi.flags = 0;
  ASSERT_TRUE(model.Open(ansi.Write(m_dir.filePath(QStringLiteral("ansi.qvz")))));
  EXPECT_EQ(model.FlagsText(), QStringLiteral("Flags: Unsorted, Ansi"));
}

TEST_F(HeaderDialogModel, FileThatCannotBeOpened) {
  const QString path = m_dir.filePath(QStringLiteral("missing.qvz"));
  QVZEditModel model;
  EXPECT_FALSE(model.Open(path));
  // The reader's own box, then the dialog's with the reader's reason.
  ASSERT_EQ(m_ui.ui.messages.size(), 2u);
  EXPECT_UI_MESSAGE(m_ui.ui, 0, ("Metrics database file doesn't exist:\r\n" + path).toStdString(),
                    MsgStyle::Exclamation);
  EXPECT_UI_MESSAGE(
      m_ui.ui, 1,
      ("Database header verification failed.\r\nCannot open file:\r\n" + path).toStdString(),
      MsgStyle::Exclamation);
}

// Each refused input: the message, the field that takes the focus, and the
// file left as it was.
TEST_F(HeaderDialogModel, ChecksOfSaveInOrder) {
  struct Case {
    QString title, project, date;
    const char* message;
    Field focus;
  };
  const QString bad = QStringLiteral("Date is not in required format.");
  const std::vector<Case> cases = {
      {"", "", "x", "Give a title.", Field::Title},
      {"t", "", "x", "Give a project name.", Field::Project},
      {"t", "p", "2023-6-01", "Date is not in required format.", Field::Date},
      {"t", "p", "1979-12-31", "Date is not in required format.", Field::Date},
      {"t", "p", "2023-02-29", "Date is not in required format.", Field::Date},
      {"t", "p", "2023-13-01", "Date is not in required format.", Field::Date},
      {"t", "p", "2023-06-01 ", "Date is not in required format.", Field::Date},
      {"t", "p", "2023/06/01", "Date is not in required format.", Field::Date},
  };
  const QString path = Written();
  const QByteArray before = QvzFixture::ReadBytes(path);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.date.toStdString());
    m_ui.ui.messages.clear();
    QVZEditModel model;
    ASSERT_TRUE(model.Open(path));
    model.Title = c.title;
    model.Project = c.project;
    model.DateText = c.date;
    EXPECT_FALSE(model.Save());
    EXPECT_ONLY_UI_MESSAGE(m_ui.ui, c.message, MsgStyle::Exclamation);
    EXPECT_EQ(model.FocusField(), c.focus);
    EXPECT_TRUE(model.ReaderOpen());
  }
  EXPECT_EQ(QvzFixture::ReadBytes(path), before);
  EXPECT_TRUE(QVZEditModel::ValidDateText(QStringLiteral("1980-01-01")));
  EXPECT_TRUE(QVZEditModel::ValidDateText(QStringLiteral("2024-02-29")));
}

TEST_F(HeaderDialogModel, EditChangesOnlyTheHeaderAndTheNextScanShowsIt) {
  const QString path = Written();
  const QByteArray before = QvzFixture::ReadBytes(path);
  QVZEditModel model;
  ASSERT_TRUE(model.Open(path));
  model.Title = QStringLiteral("New title");
  model.DateText = QStringLiteral("2024-02-29");
  EXPECT_DOUBLE_EQ(model.DateToWrite(), DateSerial(2024, 2, 29));  // midnight
  ASSERT_TRUE(model.Save());
  EXPECT_FALSE(model.ReaderOpen());
  const QByteArray after = QvzFixture::ReadBytes(path);
  ASSERT_EQ(after.size(), before.size());
  EXPECT_EQ(after.mid(kHeaderSize), before.mid(kHeaderSize));
  EXPECT_NE(after.left(kHeaderSize), before.left(kHeaderSize));
  EXPECT_EQ(after.mid(528, 24), QByteArray("2024-02-2920240229000000"));

  SaveSetting(QStringLiteral("Databases"), QStringLiteral("path1"), m_dir.path());
  MetricRead reader;
  ListModel list;
  reader.ListDatabases(list);
  ASSERT_EQ(list.ListCount(), 1);
  EXPECT_EQ(list.ItemTag(0), QStringLiteral("New title - Date: 2024-02-29"));
  EXPECT_TRUE(m_ui.ui.messages.empty());
}

TEST_F(HeaderDialogModel, SavingUnchangedKeepsTheTimeAndTheChecksum) {
  const QString path = Written();
  const QByteArray before = QvzFixture::ReadBytes(path);
  QVZEditModel model;
  ASSERT_TRUE(model.Open(path));
  EXPECT_DOUBLE_EQ(model.DateToWrite(), DateSerial(2023, 6, 1) + TimeSerial(8, 30, 0));
  ASSERT_TRUE(model.Save());
  EXPECT_EQ(QvzFixture::ReadBytes(path).toHex().toStdString(), before.toHex().toStdString());
}

// A database that cannot be written: the edit fails with the writer's
// message, the file stays and the reader is open again.
TEST_F(HeaderDialogModel, ReadOnlyDatabase) {
  const QString path = Written();
  const QByteArray before = QvzFixture::ReadBytes(path);
  QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
  // Permissions do not bind the super-user; the immutable attribute does.
  const bool immutable =
      QProcess::execute(QStringLiteral("chattr"), {QStringLiteral("+i"), path}) == 0;
  if (!immutable && geteuid() == 0) {
    GTEST_SKIP() << "running as the super-user on a file system without the immutable attribute";
  }
  QVZEditModel model;
  ASSERT_TRUE(model.Open(path));
  model.Title = QStringLiteral("Changed");
  const bool saved = model.Save();
  if (immutable) QProcess::execute(QStringLiteral("chattr"), {QStringLiteral("-i"), path});
  QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
  ASSERT_FALSE(saved) << "the file could be written";
  ASSERT_EQ(m_ui.ui.messages.size(), 1u);
  EXPECT_TRUE(m_ui.ui.messages[0].text.startsWith(QStringLiteral("Error #")));
  EXPECT_TRUE(m_ui.ui.messages[0].text.contains(QStringLiteral(" editing file\r\n") + path +
                                                QStringLiteral(":\r\n")));
  EXPECT_EQ(model.FocusField(), Field::None);
  EXPECT_TRUE(model.ReaderOpen());
  EXPECT_EQ(QvzFixture::ReadBytes(path), before);
}

}  // namespace
}  // namespace ombrelle
