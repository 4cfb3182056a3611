// Header editing: the dialog's model (fields and lines, the checks of "&Save"
// in order with their messages and focus) and EditHeader's bytes.
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
#include "core/MetricReadTestSupport.h"
#include "core/MetricSave.h"
#include "core/QVZEditModel.h"
#include "core/QVZRead.h"
#include "stats/CStats.h"
#include "support/DateValue.h"
#include "support/SettingsStore.h"

namespace ombrelle {
namespace {

using test::QvzFixture;
using Field = QVZEditModel::Field;

class HeaderEdit : public ::testing::Test {
 protected:
  void SetUp() override { DeleteSettingsTree(QStringLiteral("Databases")); }
  void TearDown() override { DeleteSettingsTree(QStringLiteral("Databases")); }
  QString Path(const QString& name) const { return m_dir.filePath(name); }

  // A written database with rows and values behind the header.
  QString Written() {
    const QString path = Path(QStringLiteral("written.qvz"));
    test::SaveSpec spec{QStringLiteral("Old title"),
                        QStringLiteral("old/project"),
                        DateSerial(2023, 6, 1) + TimeSerial(8, 30, 0),
                        {}};
    spec.classes = {{1, {"b.c", "a.c", "c.c"}, {{2001, {1, 500, 70000}}, {2015, {0.1, 0.5, 0.9}}}}};
    EXPECT_TRUE(test::WriteSave(path, spec));
    DeleteSettingsTree(QStringLiteral("Databases"));  // the writer remembered the folder
    return path;
  }

  // Edits with the texts and date the reader gives back: nothing changes.
  bool EditUnchanged(const QString& path) {
    QVZRead reader;
    QString error;
    if (!reader.Opendatabase(path, error)) return false;
    QString title, project;
    double date = 0;
    reader.GetProjectInfo(title, project, date);
    reader.CloseDatabaseFile();
    return MetricSave::EditHeader(path, title, project, date);
  }

  QTemporaryDir m_dir;
  ScopedScriptedUi m_ui;
};
using HeaderDialogModel = HeaderEdit;
using EditHeaderTest = HeaderEdit;

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
  // Saved unchanged: the time is kept and so is every byte.
  ASSERT_TRUE(model.Open(path));
  EXPECT_DOUBLE_EQ(model.DateToWrite(), DateSerial(2023, 6, 1) + TimeSerial(8, 30, 0));
  ASSERT_TRUE(model.Save());
  EXPECT_EQ(QvzFixture::ReadBytes(path).toHex().toStdString(), before.toHex().toStdString());
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

// EditHeader itself: only the 554 header bytes change, the guarded fields
// stay, the checksum follows the new stamp.
TEST_F(EditHeaderTest, ChangesOnlyTheHeaderBytes) {
  const QByteArray before = QvzFixture::ReadBytes(Written());
  const QString copy = Path(QStringLiteral("copy.qvz"));
  QvzFixture::WriteBytes(copy, before);
  ASSERT_TRUE(MetricSave::EditHeader(copy, QStringLiteral("New title \u00fc"),
                                     QStringLiteral("new/project"),
                                     DateSerial(2020, 2, 29) + TimeSerial(1, 2, 3)));
  const QByteArray after = QvzFixture::ReadBytes(copy);
  ASSERT_EQ(after.size(), before.size());
  EXPECT_EQ(after.mid(kHeaderSize), before.mid(kHeaderSize));

  EXPECT_EQ(after.mid(0, 16), before.mid(0, 16));  // magic, version, flags
  EXPECT_EQ(after.mid(16, 214), QByteArray("New title \xc3\xbc") + QByteArray(202, '\0'));
  EXPECT_EQ(after.mid(230, 32), QvzFixture::ChecksumOf(after));
  EXPECT_NE(after.mid(230, 32), before.mid(230, 32));
  EXPECT_EQ(after.mid(262, 10), before.mid(262, 10));
  EXPECT_EQ(after.mid(272, 214), QByteArray("new/project") + QByteArray(203, '\0'));
  EXPECT_EQ(after.mid(486, 42), before.mid(486, 42));  // SavedBy, SavedDate
  EXPECT_EQ(after.mid(528, 24), QByteArray("2020-02-2920200229010203"));
  EXPECT_EQ(after.mid(552, 2), before.mid(552, 2));

  QVZRead reader;
  DatabaseHeader header;
  EXPECT_TRUE(reader.ReadHeader(copy, header, true, true));
  EXPECT_TRUE(m_ui.ui.messages.empty());
}

// Saving unchanged values gives back the same file, the checksum included,
// for a file written here and for files from elsewhere in either encoding.
TEST_F(EditHeaderTest, UnchangedValuesKeepEveryByte) {
  QvzFixture utf8 = QvzFixture::SmallestVersion3();
  utf8.title = QStringLiteral("Caf\u00e9 \u03a9");
  QvzFixture ansi = QvzFixture::SmallestVersion3();
  ansi.flags = 1;
  ansi.title = QStringLiteral("Caf\u00e9");
  const QStringList paths = {Written(), utf8.Write(Path(QStringLiteral("utf8.qvz"))),
                             ansi.Write(Path(QStringLiteral("ansi.qvz")))};
  for (const QString& path : paths) {
    SCOPED_TRACE(path.toStdString());
    const QByteArray before = QvzFixture::ReadBytes(path);
    ASSERT_TRUE(EditUnchanged(path));
    EXPECT_EQ(QvzFixture::ReadBytes(path).toHex().toStdString(), before.toHex().toStdString());
  }
}

TEST_F(EditHeaderTest, AnsiFilesArePaddedWithBlanks) {
  QvzFixture ansi = QvzFixture::SmallestVersion3();
  ansi.flags = 1;
  const QString path = ansi.Write(Path(QStringLiteral("ansi.qvz")));
  ASSERT_TRUE(MetricSave::EditHeader(path, QStringLiteral("Caf\u00e9 \u03a9"), QStringLiteral("p"),
                                     DateSerial(2024, 1, 31)));
  const QByteArray after = QvzFixture::ReadBytes(path);
  EXPECT_EQ(after.mid(16, 214), QByteArray("Caf\xe9 ?") + QByteArray(208, ' '));
  EXPECT_EQ(after.mid(272, 214), QByteArray("p") + QByteArray(213, ' '));
  EXPECT_EQ(after.mid(538, 14), QByteArray("20240131000000"));
  EXPECT_EQ(after.mid(230, 32), QvzFixture::ChecksumOf(after));
}

TEST_F(EditHeaderTest, FailuresShowABoxAndWriteNothing) {
  const QString missing = Path(QStringLiteral("missing.qvz"));
  const QString shortFile = Path(QStringLiteral("short.qvz"));
  const QString foreign = Path(QStringLiteral("foreign.qvz"));
  QvzFixture::WriteBytes(shortFile, QByteArray(553, 'x'));
  QvzFixture wrongMagic = QvzFixture::SmallestVersion3();
  wrongMagic.magic = "NOT-KRDB";
  wrongMagic.Write(foreign);
  struct Case {
    QString path;
    QString message;
  };
  const std::vector<Case> cases = {
      {missing, "Error #5 editing file\r\n" + missing + ":\r\nNo such file or directory"},
      {shortFile, "Metrics database file too short:\r\n" + shortFile},
      {foreign, "Invalid metrics database file format:\r\n" + foreign},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path.toStdString());
    const QByteArray before = QvzFixture::ReadBytes(c.path);
    ScopedScriptedUi ui;
    EXPECT_FALSE(MetricSave::EditHeader(c.path, QStringLiteral("t"), QStringLiteral("p"), 45000));
    EXPECT_ONLY_UI_MESSAGE(ui.ui, c.message.toStdString(), MsgStyle::Exclamation);
    EXPECT_EQ(QvzFixture::ReadBytes(c.path), before);
  }
  EXPECT_FALSE(QFile::exists(missing));
}

}  // namespace
}  // namespace ombrelle
