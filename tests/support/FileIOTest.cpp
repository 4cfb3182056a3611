#include <csignal>

#include <sys/resource.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "common/ScopedFileSizeLimit.h"
#include "common/MessageAssertions.h"
#include "common/TestEnvironment.h"
#include "support/CString.h"
#include "support/FileIO.h"

using namespace ombrelle;

namespace {

QByteArray ReadAll(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

// Only the named files are in the folder: no temporary file left behind.
QStringList FolderEntries(const QString& path) {
  return QDir(path).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

}  // namespace

TEST(WholeFileWriters, WriteExactBytes) {
  ScopedScriptedUi scripted;
  QTemporaryDir dir;
  const QString unicodePath = dir.path() + "/u.txt";
  ASSERT_TRUE(SaveUnicodeFile(unicodePath, QString::fromUtf8("A\u00e9\u20ac\r\n")));
  EXPECT_EQ(ReadAll(unicodePath), QByteArray("\xFF\xFE"
                                             "A\0\xE9\0\xAC\x20\r\0\n\0",
                                             12));

  const QString ansiPath = dir.path() + "/a.txt";
  ASSERT_TRUE(SaveTextFile(ansiPath, QString::fromUtf8("Caf\u00e9 \u20ac \u0416\r\n")));
  EXPECT_EQ(ReadAll(ansiPath), "Caf\xE9 \x80 ?\r\n");

  const QString binaryPath = dir.path() + "/b.bin";
  const QByteArray bytes("\0\1\2\xFF", 4);
  ASSERT_TRUE(SaveBinaryFile(binaryPath, bytes));
  EXPECT_EQ(ReadAll(binaryPath), bytes);
  // An existing file is replaced whole.
  ASSERT_TRUE(SaveBinaryFile(binaryPath, "z"));
  EXPECT_EQ(ReadAll(binaryPath), "z");
  EXPECT_EQ(FolderEntries(dir.path()), QStringList({"a.txt", "b.bin", "u.txt"}));
  EXPECT_TRUE(scripted.ui.messages.empty());
}

TEST(WholeFileWriters, RefusalsAndTheirMessages) {
  ScopedScriptedUi scripted;
  QTemporaryDir dir;
  EXPECT_FALSE(SaveTextFile("relative.txt", "x"));
  EXPECT_UI_MESSAGE(scripted.ui, 0, "Error saving to relative.txt\r\nPath not absolute.", 48);
  scripted.ui.messages.clear();
  EXPECT_FALSE(SaveBinaryFile("relative.bin", "x"));
  EXPECT_ONLY_UI_MESSAGE(scripted.ui, "Error saving to relative.bin\r\nPath not absolute.", 48);

  QDir(dir.path()).mkdir("taken");
  EXPECT_FALSE(SaveUnicodeFile(dir.path() + "/taken", "x"));
  EXPECT_UI_MESSAGE(scripted.ui, 1,
                    ("Error overwriting file " + dir.path() + "/taken").toStdString(), 48);

  const QString missing = dir.path() + "/no/such/folder/f.bin";
  EXPECT_FALSE(SaveBinaryFile(missing, "x"));
  EXPECT_UI_MESSAGE(
      scripted.ui, 2,
      ("Error #2 saving to " + missing + ":\r\nNo such file or directory").toStdString(), 48);
  EXPECT_EQ(scripted.ui.messages.size(), 3u);
}

TEST(WholeFileWriters, AFailedWriteLeavesNoHalfFile) {
  ScopedScriptedUi scripted;
  QTemporaryDir dir;
  const QString path = dir.path() + "/report.bin";
  ASSERT_TRUE(SaveBinaryFile(path, "old content"));
  bool saved = true;
  {
    ombrelle::test::ScopedFileSizeLimit limit(4096);
    saved = SaveBinaryFile(path, QByteArray(200000, 'n'));
  }
  EXPECT_FALSE(saved);
  EXPECT_EQ(ReadAll(path), "old content");
  EXPECT_EQ(FolderEntries(dir.path()), QStringList({"report.bin"}));
  EXPECT_ONLY_UI_MESSAGE(scripted.ui,
                         ("Error #27 saving to " + path + ":\r\nFile too large").toStdString(), 48);
}

TEST(SaveFileDialog, GoesThroughTheServiceAndAddsTheExtension) {
  ScopedScriptedUi scripted;
  scripted.ui.fileAnswers = {"/home/u/table", "/home/u/table.htm", ""};
  EXPECT_EQ(SaveFileDialog("csv", "CSV files (*.csv)", "/home/u", "t.csv", "Export"),
            "/home/u/table.csv");
  EXPECT_EQ(SaveFileDialog("csv", "CSV files (*.csv)", "/home/u", "t.csv", "Export"),
            "/home/u/table.htm");
  EXPECT_EQ(SaveFileDialog("csv", "CSV files (*.csv)", "/home/u", "t.csv", "Export"), "");
  ASSERT_EQ(scripted.ui.fileRequests.size(), 3u);
  const FileDialogRequest& request = scripted.ui.fileRequests[0];
  EXPECT_EQ(request.title, "Export");
  EXPECT_EQ(request.folder, "/home/u");
  EXPECT_EQ(request.fileName, "t.csv");
  EXPECT_EQ(request.filter, "CSV files (*.csv)");
  EXPECT_EQ(request.defaultExtension, "csv");
  EXPECT_TRUE(request.overwritePrompt);
}

TEST(GetSpecialFolder, KnownCodesInTheSandbox) {
  for (int code : {SpecialFolder::Documents, SpecialFolder::LocalAppData, SpecialFolder::AppData}) {
    const QString folder = GetSpecialFolder(code);
    EXPECT_TRUE(folder.startsWith(ombrelle::test::SandboxRoot()))
        << code << " " << folder.toStdString();
  }
  EXPECT_NE(GetSpecialFolder(SpecialFolder::Documents),
            GetSpecialFolder(SpecialFolder::LocalAppData));
  EXPECT_EQ(GetSpecialFolder(9999), "");
}

TEST(CString, GrowsTruncatesAndSaves) {
  CString buffer;
  buffer.Append("<html>");
  buffer.AppendLine();
  for (int i = 0; i < 1000; ++i) buffer.AppendLine("row " + QString::number(i));
  EXPECT_EQ(buffer.Length(), 8 + 10 * 7 + 90 * 8 + 900 * 9);
  EXPECT_GE(buffer.BufferSize(), buffer.Length());
  EXPECT_EQ(buffer.Right(7), QString("w 999\r\n"));
  EXPECT_EQ(buffer.Right(0), "");
  buffer.SetLength(6);
  EXPECT_EQ(buffer.Value(), "<html>");
  buffer.SetLength(100);
  EXPECT_EQ(buffer.Value(), "<html>");
  EXPECT_EQ(buffer.Right(50), "<html>");
  buffer.SetBufferSize(100000);
  EXPECT_GE(buffer.BufferSize(), 100000);
  EXPECT_EQ(buffer.Value(), "<html>");

  QTemporaryDir dir;
  ASSERT_TRUE(buffer.WriteToFileUnicode(dir.path() + "/r.html"));
  EXPECT_EQ(ReadAll(dir.path() + "/r.html"), QByteArray("\xFF\xFE<\0h\0t\0m\0l\0>\0", 14));
  buffer.Clear();
  EXPECT_EQ(buffer.Length(), 0);
}
