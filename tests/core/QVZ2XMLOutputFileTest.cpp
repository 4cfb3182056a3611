#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <string>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/resource.h>

#include "common/ScopedFileSizeLimit.h"
#include "common/QvzFixture.h"
#include "core/XmlOutputFile.h"

using ombrelle::test::QvzFixture;

using namespace ombrelle;

namespace {

QStringList Entries(const QTemporaryDir& dir) {
  return QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
}

TEST(QVZ2XMLOutputFile, WritesEveryPieceInOrderAcrossBufferBoundaries) {
  QTemporaryDir dir;
  const QString path = dir.filePath("out.xml");
  XmlOutputFile out(64);  // the smallest buffer, so most pieces cross a boundary
  ASSERT_TRUE(out.Create(path));
  QByteArray expected;
  for (int i = 0; i < 50; ++i) {
    const std::string piece(static_cast<size_t>(i * 7 % 150), static_cast<char>('a' + i % 26));
    out.Write(piece);
    expected += QByteArray::fromStdString(piece);
    out.WriteEscaped(QString::fromUtf8("R&D \xC3\xA9t\xC3\xA9 ") + QString(i * 3, QChar(0x9AD8)) +
                     QString(i, QLatin1Char('x')));
    expected += "R&#38;D &#233;t&#233; " +
                QByteArray(i * 3, 0).replace(QByteArray(1, 0), "&#39640;") + QByteArray(i, 'x');
    out.WriteNumber(i / 4.0);
    QByteArray number = QByteArray::number(i / 4.0);
    if (number.startsWith("0.")) number.remove(0, 1);
    expected += number;
    out.EndLine();
    expected += "\r\n";
  }
  EXPECT_EQ(out.BytesWritten(), expected.size());
  EXPECT_FALSE(QFile::exists(path));  // nothing under the final name before Commit
  ASSERT_TRUE(out.Commit());
  EXPECT_FALSE(out.IsOpen());
  EXPECT_EQ(QvzFixture::ReadBytes(path), expected);
  EXPECT_EQ(Entries(dir), QStringList{"out.xml"});  // no temporary file left
}

TEST(QVZ2XMLOutputFile, OldFileStaysUntilCommitAndAfterDiscard) {
  QTemporaryDir dir;
  const QString path = dir.filePath("out.xml");
  QvzFixture::WriteBytes(path, "old content");
  {
    XmlOutputFile out;
    ASSERT_TRUE(out.Create(path));
    out.Write("new content");
    out.Discard();
    EXPECT_EQ(QvzFixture::ReadBytes(path), "old content");
    EXPECT_EQ(Entries(dir), QStringList{"out.xml"});
  }
  {
    XmlOutputFile out;
    ASSERT_TRUE(out.Create(path));
    out.Write("abandoned");
  }  // destroyed without Commit
  EXPECT_EQ(QvzFixture::ReadBytes(path), "old content");
  EXPECT_EQ(Entries(dir), QStringList{"out.xml"});

  const QFile::Permissions permissions =
      QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;  // not what a new file gets
  ASSERT_TRUE(QFile::setPermissions(path, permissions));
  XmlOutputFile out;
  ASSERT_TRUE(out.Create(path));
  out.Write("new content");
  EXPECT_EQ(QvzFixture::ReadBytes(path), "old content");
  ASSERT_TRUE(out.Commit());
  EXPECT_EQ(QvzFixture::ReadBytes(path), "new content");
  // The replaced file's permissions stay.
  const QFile::Permissions userBits = QFile::ReadUser | QFile::WriteUser | QFile::ExeUser;
  EXPECT_EQ(QFile::permissions(path) & ~userBits, permissions);
}

TEST(QVZ2XMLOutputFile, CreateReportsTheSystemError) {
  QTemporaryDir dir;
  ASSERT_TRUE(QDir(dir.path()).mkdir("folder"));
  struct Case {
    QString path;
    int number;
    const char* text;
  };
  const Case cases[] = {
      {dir.filePath("folder"), EISDIR, "Is a directory"},
      {dir.filePath("missing/out.xml"), ENOENT, "No such file or directory"},
      {dir.filePath("out.xml/x.xml"), ENOENT, "No such file or directory"},
  };
  for (const Case& c : cases) {
    XmlOutputFile out;
    EXPECT_FALSE(out.Create(c.path)) << c.path.toStdString();
    EXPECT_FALSE(out.IsOpen());
    EXPECT_EQ(out.ErrorNumber(), c.number);
    EXPECT_EQ(out.ErrorText().toStdString(), c.text);
  }
  EXPECT_EQ(Entries(dir), QStringList{"folder"});
}

TEST(QVZ2XMLOutputFile, FailedRenameLeavesNoFileBehind) {
  QTemporaryDir dir;
  const QString path = dir.filePath("out.xml");
  XmlOutputFile out;
  ASSERT_TRUE(out.Create(path));
  out.Write("content");
  // Someone puts a folder with a file in it under the final name meanwhile.
  ASSERT_TRUE(QDir(dir.path()).mkpath("out.xml/inner"));
  EXPECT_FALSE(out.Commit());
  EXPECT_EQ(out.ErrorNumber(), EISDIR);
  EXPECT_EQ(out.ErrorText().toStdString(), "Is a directory");
  EXPECT_EQ(Entries(dir), QStringList{"out.xml"});
  EXPECT_TRUE(QFileInfo(path).isDir());
}

TEST(QVZ2XMLOutputFile, FailedWriteStopsTheStreamAndKeepsTheOldFile) {
  QTemporaryDir dir;
  const QString path = dir.filePath("out.xml");
  QvzFixture::WriteBytes(path, "old content");
  XmlOutputFile out(1024);
  ASSERT_TRUE(out.Create(path));
  {
    ombrelle::test::ScopedFileSizeLimit limit(4096);
    const std::string line(100, 'x');
    for (int i = 0; i < 100; ++i) out.Write(line);
    EXPECT_TRUE(out.Failed());
    EXPECT_FALSE(out.Commit());
  }
  EXPECT_EQ(out.ErrorNumber(), EFBIG);
  EXPECT_EQ(out.ErrorText().toStdString(), "File too large");
  EXPECT_EQ(QvzFixture::ReadBytes(path), "old content");
  EXPECT_EQ(Entries(dir), QStringList{"out.xml"});
}

}  // namespace
