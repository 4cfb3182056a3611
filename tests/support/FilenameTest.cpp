#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "common/MessageAssertions.h"
#include "common/TestEnvironment.h"
#include "support/FileIO.h"
#include "support/Filename.h"

using namespace ombrelle;

namespace {

void Touch(const QString& path, const QByteArray& bytes = "x") {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
  file.write(bytes);
}

}  // namespace

TEST(PathRoutines, SplitAndJoin) {
  struct Case {
    const char* path;
    const char* folder;
    const char* name;
    const char* extension;
    const char* withoutExtension;
  };
  const Case cases[] = {
      {"/a/b/report.html", "/a/b", "report.html", "html", "/a/b/report"},
      {"/a/b.d/file", "/a/b.d", "file", "", "/a/b.d/file"},
      {"/a/archive.tar.gz", "/a", "archive.tar.gz", "gz", "/a/archive.tar"},
      {"/x.qvz", "", "x.qvz", "qvz", "/x"},
      {"name.txt", "", "name.txt", "txt", "name"},
      {"/a/b/", "/a/b", "", "", "/a/b/"},
      {"/a/.hidden", "/a", ".hidden", "hidden", "/a/"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(FileFolder(c.path).toStdString(), c.folder) << c.path;
    EXPECT_EQ(FileNameOnly(c.path).toStdString(), c.name) << c.path;
    EXPECT_EQ(FileExtension(c.path).toStdString(), c.extension) << c.path;
    EXPECT_EQ(RemoveExtension(c.path).toStdString(), c.withoutExtension) << c.path;
  }
  EXPECT_EQ(ReplaceExtension("/a/b.d/report.htm", "mht"), "/a/b.d/report.mht");
  EXPECT_EQ(ReplaceExtension("/a/b.d/report", "csv"), "/a/b.d/report.csv");
}

TEST(PathRoutines, JoinFoldsDots) {
  const char* cases[][3] = {
      {"/a/b", "c.txt", "/a/b/c.txt"}, {"/a/b/", "c.txt", "/a/b/c.txt"},
      {"/a/b", "../c", "/a/c"},        {"/a/b", "./c/./d", "/a/b/c/d"},
      {"/a", "../../x", "/x"},         {"/a", "/abs/../y", "/y"},
      {"rel", "../../up", "../up"},    {"", "x", "/x"},
      {"/a/b", "", "/a/b/"},           {"/", "c", "/c"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(JoinPath(c[0], c[1]).toStdString(), c[2]) << c[0] << " + " << c[1];
  EXPECT_EQ(JoinPath(FileFolder("/x.qvz"), FileNameOnly("/x.qvz")), "/x.qvz");
}

TEST(PathRoutines, AbsoluteAndWildcards) {
  EXPECT_TRUE(IsAbsolutePath("/"));
  EXPECT_TRUE(IsAbsolutePath("/home/a"));
  EXPECT_FALSE(IsAbsolutePath("home/a"));
  EXPECT_FALSE(IsAbsolutePath(""));
  EXPECT_FALSE(IsAbsolutePath("./a"));
  EXPECT_TRUE(PathHasWildcards("/a/*.txt"));
  EXPECT_TRUE(PathHasWildcards("a?"));
  EXPECT_FALSE(PathHasWildcards("/a/b.txt"));
}

TEST(NumberToLetters, BijectiveBase26) {
  const std::pair<long long, const char*> cases[] = {
      {0, ""},    {-3, ""},   {1, "a"},    {26, "z"},    {27, "aa"},
      {52, "az"}, {53, "ba"}, {702, "zz"}, {703, "aaa"}, {9999, "nto"}};
  for (const auto& [n, letters] : cases) EXPECT_EQ(NumberToLetters(n).toStdString(), letters) << n;
}

TEST(MakeValidFilename, EveryStep) {
  const std::pair<QString, const char*> cases[] = {
      {"Con.Sys", "Con#.Sys"},
      {"con", "con#"},
      {"CON.txt", "CON#.txt"},
      {"prn.a.b", "prn#.a.b"},
      {"Aux", "Aux#"},
      {"nul.html", "nul#.html"},
      {"clock$.x", "clock$#.x"},
      {"com1.txt", "com1#.txt"},
      {"LPT9", "LPT9#"},
      {"com0.txt", "com0.txt"},
      {"com10.txt", "com10.txt"},
      {"console.txt", "console.txt"},
      {"my report.html", "my_report.html"},
      {"a<b>c:d\"e/f\\g|h*i?j", "a{b}c=d'e-f-g!h+i+j"},
      {QString("tab\there\x01\x1f\x7f"
               "end"),
       "tabhereend"},
      {"..", "--"},
      {".", "-"},
      {"...", "..."},
      {QString::fromUtf8("Caf\u00e9 \u00dcbersicht \u00a9"), "Cafe_Ubersicht_(C)"},
      {QString::fromUtf8("\u4e2d\u6587.txt"), ".txt"},
      {QString::fromUtf8("\u0421\u043f\u0438\u0441\u043e\u043a"), "Spisok"},
  };
  for (const auto& [name, expected] : cases)
    EXPECT_EQ(MakeValidFilename(name).toStdString(), expected) << name.toStdString();
}

TEST(MakeValidFilename, LongNamesCutAtAWordBreak) {
  // Without a break: the first 63 characters.
  const QString unbroken = "a" + QString(70, 'b');
  EXPECT_EQ(MakeValidFilename(unbroken), unbroken.left(63));
  // A break at 40 (blank, turned into "_"): the text before it.
  const QString words = QString(40, 'w') + " " + QString(40, 'x');
  EXPECT_EQ(MakeValidFilename(words), QString(40, 'w'));
  // The break exactly at position 63 keeps 63 characters.
  const QString at63 = QString(63, 'p') + "-tail";
  EXPECT_EQ(MakeValidFilename(at63), QString(63, 'p'));
  // A break that would leave fewer than 32 characters is ignored.
  const QString early = QString(20, 'e') + " " + QString(60, 'f');
  EXPECT_EQ(MakeValidFilename(early), (QString(20, 'e') + "_" + QString(60, 'f')).left(63));
  // Exactly 63 characters stay whole.
  EXPECT_EQ(MakeValidFilename(QString(63, 'q')), QString(63, 'q'));
}

TEST(FileTests, FilesFoldersAndListing) {
  QTemporaryDir dir;
  ASSERT_TRUE(dir.isValid());
  const QString root = dir.path();
  Touch(root + "/f.txt");
  QDir(root).mkdir("empty");
  QDir(root).mkdir("hidden");
  Touch(root + "/hidden/.dot");
  QDir(root).mkpath("nested/sub");

  EXPECT_TRUE(FileExists(root + "/f.txt"));
  EXPECT_FALSE(FileExists(root + "/empty"));
  EXPECT_FALSE(FileExists(root + "/none"));
  EXPECT_FALSE(FileExists("   "));
  EXPECT_FALSE(FileExists(""));
  EXPECT_TRUE(FolderExists(root + "/empty"));
  EXPECT_FALSE(FolderExists(root + "/f.txt"));
  EXPECT_FALSE(FolderExists(" "));

  EXPECT_TRUE(FolderIsEmpty(root + "/empty"));
  EXPECT_FALSE(FolderIsEmpty(root + "/hidden"));
  EXPECT_FALSE(FolderIsEmpty(root + "/nested"));
  EXPECT_FALSE(FolderHasSubfolders(root + "/hidden"));
  EXPECT_TRUE(FolderHasSubfolders(root + "/nested"));
  EXPECT_FALSE(FolderHasSubfolders(root + "/empty"));
}

TEST(DeleteFile, RefusalsAndSuccess) {
  ScopedScriptedUi scripted;
  QTemporaryDir dir;
  const QString root = dir.path();
  Touch(root + "/a.txt");
  Touch(root + "/b.txt");
  QDir(root).mkdir("folder");
  QDir::setCurrent(root);

  EXPECT_FALSE(DeleteFile("*.txt"));  // relative with wildcards
  EXPECT_FALSE(DeleteFile("a.txt"));  // relative, even naming a file
  EXPECT_TRUE(FileExists(root + "/a.txt"));
  EXPECT_FALSE(DeleteFile(root + "/*.txt"));  // names no file, has "*"
  EXPECT_FALSE(DeleteFile(root + "/?.txt"));
  EXPECT_TRUE(FileExists(root + "/b.txt"));
  EXPECT_FALSE(DeleteFile(root + "/folder"));  // a folder
  EXPECT_TRUE(FolderExists(root + "/folder"));
  EXPECT_TRUE(DeleteFile(root + "/missing.txt"));
  EXPECT_TRUE(DeleteFile(root + "/a.txt"));
  EXPECT_FALSE(FileExists(root + "/a.txt"));
  EXPECT_TRUE(scripted.ui.messages.empty());
  QDir::setCurrent(ombrelle::test::SandboxRoot());
}

TEST(RecycleFile, MovesToTrashOrDeletes) {
  ScopedScriptedUi scripted;
  QTemporaryDir dir;
  const QString root = dir.path();
  Touch(root + "/keep.txt");
  Touch(root + "/gone.txt");

  EXPECT_FALSE(RecycleFile("keep.txt"));
  EXPECT_ONLY_UI_MESSAGE(scripted.ui, "Path not absolute in call to Recycle:\r\nkeep.txt", 48);

  EXPECT_FALSE(RecycleFile(root + "/missing.txt"));
  EXPECT_UI_MESSAGE(scripted.ui, 1,
                    "Error #2 calling SHFileOperation:\r\nNo such file or directory", 48);

  EXPECT_TRUE(RecycleFile(root + "/gone.txt", false));
  EXPECT_FALSE(FileExists(root + "/gone.txt"));
  // The desktop trash of the sandbox home takes the file.
  const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
  ASSERT_TRUE(data.startsWith(ombrelle::test::SandboxRoot()));
  QDir().mkpath(data);
  EXPECT_TRUE(RecycleFile(root + "/keep.txt", true));
  EXPECT_FALSE(FileExists(root + "/keep.txt"));
  EXPECT_TRUE(FileExists(data + "/Trash/files/keep.txt"));
  EXPECT_EQ(scripted.ui.messages.size(), 2u);
}

TEST(CreateFolderPath, CreatesParentsAndReportsFailures) {
  ScopedScriptedUi scripted;
  QTemporaryDir dir;
  const QString root = dir.path();
  EXPECT_TRUE(CreateFolderPath(root + "/one/two/three"));
  EXPECT_TRUE(FolderExists(root + "/one/two/three"));
  EXPECT_TRUE(CreateFolderPath(root + "/one/two"));  // already there
  EXPECT_TRUE(scripted.ui.messages.empty());

  Touch(root + "/file");
  EXPECT_FALSE(CreateFolderPath(root + "/file/sub"));
  EXPECT_ONLY_UI_MESSAGE(
      scripted.ui,
      ("Cannot create directory:\r\n" + root + "/file\r\nThe name is in use.").toStdString(), 48);

  EXPECT_FALSE(CreateFolderPath("relative/path"));
  EXPECT_UI_MESSAGE(scripted.ui, 1, "Cannot create directory:\r\nrelative/path", 48);
}

TEST(TempNames, InTheSandboxTempFolder) {
  const QString temp = GetTempFolder();
  EXPECT_TRUE(temp.startsWith(ombrelle::test::SandboxRoot())) << temp.toStdString();
  EXPECT_TRUE(FolderExists(temp));

  const QString name = GetUniqueTempName();
  EXPECT_EQ(FileFolder(name), temp);
  const QString file = FileNameOnly(name);
  EXPECT_TRUE(file.startsWith("Omb")) << file.toStdString();
  EXPECT_GE(file.size(), 6);
  for (const QChar c : file.mid(3))
    EXPECT_TRUE(QString("0123456789abcdefghijklmnopqrstuvwxyz-+").contains(c));
  EXPECT_FALSE(FileExists(name));

  const QString withExtension = GetUniqueTempName("rep", "html");
  EXPECT_TRUE(FileNameOnly(withExtension).startsWith("rep"));
  EXPECT_EQ(FileExtension(withExtension), "html");
  EXPECT_EQ(FileNameOnly(withExtension).size(), 6 + 5);

  const QString longPrefix = GetUniqueTempName("abcdefgh");
  EXPECT_EQ(FileNameOnly(longPrefix), "abcdefgh");
}

TEST(MakeUniqueFilename, FirstFreeName) {
  QTemporaryDir dir;
  const QString root = dir.path();
  EXPECT_EQ(MakeUniqueFilename(root, "report", "html"), root + "/report.html");
  Touch(root + "/report.html");
  EXPECT_EQ(MakeUniqueFilename(root, "report", "html"), root + "/reportxa.html");
  Touch(root + "/reportxa.html");
  QDir(root).mkdir("reportxb.html");  // a folder takes the name too
  EXPECT_EQ(MakeUniqueFilename(root, "report", "html"), root + "/reportxc.html");
  EXPECT_EQ(MakeUniqueFilename(root, "fresh", "", UniqueName::AlwaysNumber), root + "/freshxa");

  // The path stays within 259 characters by shortening the base.
  const QString longBase(300, 'n');
  const QString path = MakeUniqueFilename(root, longBase, "txt");
  EXPECT_EQ(path.size(), 259);
  EXPECT_TRUE(path.endsWith("nnn.txt"));
}

TEST(ResolvePath, FoldsDotsAgainstBase) {
  struct Case {
    const char* base;
    const char* path;
    const char* expected;
  };
  const Case cases[] = {
      {"/a/b", "../c", "/a/c"}, {"/a/b/", "./c/./d", "/a/b/c/d"}, {"/a/b", "/x/../y", "/y"},
      {"/", "c", "/c"},         {"/a", "../../..", "/"},          {"/a//b", "c", "/a/b/c"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(ResolvePath(c.base, c.path).toStdString(), c.expected) << c.base << " + " << c.path;
}

TEST(ResolvePath, EmptyBaseIsCurrentDirectory) {
  EXPECT_EQ(ResolvePath("", "x.qvz"), QDir::currentPath() + "/x.qvz");
}
