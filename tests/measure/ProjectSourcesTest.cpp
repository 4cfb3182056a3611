// Gathering a project's files: the .vbp's list, folders, and input that must
// be left out with a warning.
#include <sys/resource.h>

#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>

#include "measure/MeasureTestFiles.h"
#include "measure/ProjectSources.h"
#include "support/DateValue.h"

namespace ombrelle::test {
namespace {

QStringList Names(const ProjectSources& sources) {
  QStringList names;
  for (const SourceFile& file : sources.files) names << file.name;
  return names;
}

struct ListCase {
  const char* vbp;
  QStringList files;
  const char* name;
};

TEST(ProjectSources, ListedFilesOfAProjectFile) {
  const ListCase cases[] = {
      {"Type=Exe\r\nReference=*\\G{000}#2.0#0#stdole2.tlb#OLE\r\nModule=Main; Main.bas\r\n"
       "Class=CItem; Classes\\CItem.cls\r\nForm=frmMain.frm\r\nUserControl=ctl\\Grid.ctl\r\n"
       "Designer=DataEnv.Dsr\r\nObject={831FDD16}#2.0#0; MSCOMCTL.OCX\r\nName=\"Billing\"\r\n",
       {"Main.bas", "Classes\\CItem.cls", "frmMain.frm", "ctl\\Grid.ctl", "DataEnv.Dsr"},
       "Billing"},
      // Keys in any case, blanks around values, each file once.
      {"module=A;a.bas\nFORM = \"f.frm\"\nForm=F.FRM\nModule=NoPath\n", {"a.bas", "f.frm"}, ""},
      // What follows the first section belongs to add-ins.
      {"Module=A; a.bas\n[MS Transaction Server]\nModule=B; b.bas\n", {"a.bas"}, ""},
      {"", {}, ""},
  };
  for (const ListCase& c : cases) {
    QString name;
    EXPECT_EQ(ProjectSources::ListedFiles(c.vbp, &name), c.files) << c.vbp;
    EXPECT_EQ(name, QString::fromLatin1(c.name)) << c.vbp;
  }
}

TEST(ProjectSources, SourceNamesAndRefusals) {
  for (const char* name : {"a.bas", "B.CLS", "dir/f.Frm", "x.ctl", "d.DSR"})
    EXPECT_TRUE(ProjectSources::IsSourceName(name)) << name;
  for (const char* name : {"a.vbp", "bas", ".bas", "a.bas.bak", "a.frx", "a.txt"})
    EXPECT_FALSE(ProjectSources::IsSourceName(name)) << name;
  EXPECT_EQ(ProjectSources::RefusalOf("Sub A()\r\nEnd Sub\r\n"), "");
  EXPECT_EQ(ProjectSources::RefusalOf(QByteArray("MZ\x90\0\3", 5)), "not a text file");
  EXPECT_EQ(ProjectSources::RefusalOfSize(64 << 20), "");
  EXPECT_EQ(ProjectSources::RefusalOfSize((64 << 20) + 1), "larger than 64 MB");
}

TEST(ProjectSources, ProjectFileResolvesNamesWithoutCaseAndWarnsOfMissingFiles) {
  QTemporaryDir dir;
  const QString root = dir.filePath("App");
  PutFile(root + "/App.vbp",
          "Type=Exe\r\nModule=Main; MAIN.BAS\r\nClass=CItem; classes\\citem.cls\r\n"
          "Module=Gone; Gone.bas\r\nForm=..\\Shared\\Common.frm\r\nForm=Forms\\Lost.frm\r\n"
          "Name=\"Shop\"\r\n");
  PutFile(root + "/Main.bas", Module("Main", 1));
  PutFile(root + "/Classes/CItem.cls", Module("CItem", 2));
  PutFile(dir.filePath("Shared/common.FRM"), Module("Common", 1));
  const ProjectSources sources = ProjectSources::FromPath(root + "/App.vbp");
  EXPECT_EQ(sources.projectFile, "App.vbp");
  EXPECT_EQ(sources.title, "Shop");
  EXPECT_EQ(Names(sources), QStringList({"Main.bas", "Classes/CItem.cls", "../Shared/common.FRM"}));
  EXPECT_EQ(sources.files[1].bytes, Module("CItem", 2));
  // A file on disc is dated by its modification time.
  EXPECT_NEAR(sources.files[1].date,
              DateFromQDateTime(QFileInfo(root + "/Classes/CItem.cls").lastModified()), 1e-9);
  EXPECT_EQ(sources.warnings,
            QStringList({"Gone.bas: listed in App.vbp but not found; left out",
                         "Forms\\Lost.frm: listed in App.vbp but not found; left out"}));
}

// Guards the address space while a test reads: a huge allocation fails
// instead of passing unnoticed. Address sanitizer runs reserve far more
// than any limit, so there the guard stands aside.
class AddressSpaceGuard {
 public:
  explicit AddressSpaceGuard(rlim_t headroom) {
#if !defined(__SANITIZE_ADDRESS__)
    getrlimit(RLIMIT_AS, &m_previous);
    QFile status("/proc/self/statm");
    if (!status.open(QIODevice::ReadOnly)) return;
    const rlim_t pages = status.readAll().split(' ').value(0).toULongLong();
    rlimit lowered = m_previous;
    lowered.rlim_cur = pages * 4096 + headroom;
    m_active = setrlimit(RLIMIT_AS, &lowered) == 0;
#else
    (void)headroom;
#endif
  }
  ~AddressSpaceGuard() {
    if (m_active) setrlimit(RLIMIT_AS, &m_previous);
  }

 private:
  rlimit m_previous{};
  bool m_active = false;
};

TEST(ProjectSources, FolderIsSearchedAndBadFilesAreLeftOutWithAWarning) {
  QTemporaryDir dir;
  const QString root = dir.filePath("Tools");
  PutFile(root + "/b.BAS", Module("B", 1));
  PutFile(root + "/sub/A.cls", Module("A", 1));
  PutFile(root + "/notes.txt", "not code");
  PutFile(root + "/Picture.frm", QByteArray("GIF89a\0\0\0", 9));
  // A line of a megabyte is ordinary text and measured.
  PutFile(root + "/Long.bas", "x = \"" + QByteArray(1 << 20, 'a') + "\"\r\n");
  {
    QFile huge(root + "/Huge.bas");  // a sparse gigabyte
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly));
    ASSERT_TRUE(huge.resize(qint64(1) << 30));
  }
  QElapsedTimer timer;
  timer.start();
  ProjectSources sources;
  {
    const AddressSpaceGuard guard(256u << 20);
    sources = ProjectSources::FromPath(root);
  }
  EXPECT_LT(timer.elapsed(), 2000);
  EXPECT_EQ(sources.projectFile, "Tools");
  EXPECT_EQ(Names(sources), QStringList({"b.BAS", "Long.bas", "sub/A.cls"}));
  EXPECT_EQ(sources.files[1].bytes.size(), (1 << 20) + 8);
  EXPECT_EQ(sources.warnings, QStringList({"Huge.bas: larger than 64 MB; left out",
                                           "Picture.frm: not a text file; left out"}));
}

TEST(ProjectSources, OneSourceFileAloneAndNeitherFileNorFolder) {
  QTemporaryDir dir;
  PutFile(dir.filePath("Tools.Bas"), Module("Tools", 1));
  const ProjectSources one = ProjectSources::FromPath(dir.filePath("Tools.Bas"));
  EXPECT_EQ(one.projectFile, "Tools.Bas");
  EXPECT_EQ(one.title, "Tools");
  EXPECT_EQ(Names(one), QStringList("Tools.Bas"));

  const ProjectSources sources = ProjectSources::FromPath(dir.filePath("nothing"));
  EXPECT_TRUE(sources.files.empty());
  EXPECT_EQ(sources.warnings, QStringList(dir.filePath("nothing") + ": no such file or folder"));
}

}  // namespace
}  // namespace ombrelle::test
