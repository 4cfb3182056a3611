// EditHeader: only the 554 header bytes change, the guarded fields stay, the
// checksum follows the new stamp.
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "common/MessageAssertions.h"
#include "common/QvzFixture.h"
#include "core/MetricSave.h"
#include "core/QVZRead.h"
#include "stats/CStats.h"
#include "support/DateValue.h"
#include "support/SettingsStore.h"

namespace ombrelle {
namespace {

using test::QvzFixture;

class EditHeaderTest : public ::testing::Test {
 protected:
  void SetUp() override { DeleteSettingsTree(QStringLiteral("Databases")); }
  QString Path(const QString& name) const { return m_dir.filePath(name); }

  // A written database with rows and values behind the header.
  QString WrittenFile() {
    const QString path = Path(QStringLiteral("written.qvz"));
    MetricSave save;
    EXPECT_TRUE(save.SaveDatabase(path, QStringLiteral("Old title"), QStringLiteral("old/project"),
                                  DateSerial(2023, 6, 1) + TimeSerial(8, 30, 0)));
    save.AddClass(1, 3, {"b.c", "a.c", "c.c"});
    save.AddMetricToClass(2001);
    save.AddMetricToClass(2015);
    save.ClassDone();
    EXPECT_TRUE(save.SaveClasses());
    for (const std::vector<double>& values :
         {std::vector<double>{1, 500, 70000}, std::vector<double>{0.1, 0.5, 0.9}}) {
      CStats s;
      s.Init(3);
      for (double v : values) s.AddValue(v);
      EXPECT_TRUE(save.SaveSeries(s));
    }
    EXPECT_TRUE(save.Close());
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

TEST_F(EditHeaderTest, ChangesOnlyTheHeaderBytes) {
  const QByteArray before = QvzFixture::ReadBytes(WrittenFile());
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
  const QStringList paths = {WrittenFile(), utf8.Write(Path(QStringLiteral("utf8.qvz"))),
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
