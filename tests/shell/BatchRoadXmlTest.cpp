// Runs the built program on the "/SAVEXML" roads, as a script or a scheduled
// job would, with no display.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "common/OutsideReaders.h"
#include "common/ProgramRun.h"
#include "common/QvzFixture.h"

using namespace ombrelle::test;

namespace {

// A small database: one project row, two procedures.
QString WriteDatabase(const QString& path) {
  QvzFixture f;
  f.title = QStringLiteral("Batch & co");
  auto& project = f.AddClass(0, 1);
  project.rowNames = {QStringLiteral("Batch")};
  project.series = {SeriesSpec::Stored(1002, 1, {321})};
  auto& procedures = f.AddClass(3, 2);
  procedures.rowNames = {QStringLiteral("First"), QStringLiteral("Second")};
  procedures.series = {SeriesSpec::Stored(4050, 1, {4, 6}), SeriesSpec::Stored(4051, 1, {1, 3})};
  return f.Write(path);
}

class BatchRoadXml : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(QFile::exists(BuiltProgram())) << "qvzview is not built"; }
  QString Path(const QString& name) const { return m_dir.filePath(name); }
  ProgramRun Run(const QStringList& arguments) {
    ProgramRun result = RunWithoutDisplay(BuiltProgram(), arguments, m_dir.path());
    EXPECT_EQ(result.exitCode, 0);  // every road ends with status 0
    return result;
  }

  QTemporaryDir m_dir;
};

TEST_F(BatchRoadXml, SwitchAloneReportsAMissingFileWithAnEmptyName) {
  for (const char* option : {"/SAVEXML", "/savexmldel", "/SAVEXMLDELS"}) {
    const ProgramRun run = Run({QString::fromLatin1(option)});
    EXPECT_EQ(run.err.toStdString(), "Save metrics as XML: File not found:\r\n\n") << option;
    EXPECT_EQ(run.out.toStdString(), "");
  }
  EXPECT_TRUE(QDir(m_dir.path()).isEmpty());
}

TEST_F(BatchRoadXml, SaveXmlWritesTheDocumentAndConfirmsOnStandardOutput) {
  const QString input = WriteDatabase(Path("batch.qvz"));
  const ProgramRun run = Run({"batch.qvz", "/SAVEXML"});  // relative to the current folder
  EXPECT_EQ(run.err.toStdString(), "");
  EXPECT_EQ(run.out.toStdString(),
            ("Save metrics as XML: Metrics saved to " + Path("batch.xml") + "\n").toStdString());
  const QByteArray xml = QvzFixture::ReadBytes(Path("batch.xml"));
  EXPECT_TRUE(xml.startsWith("<?xml version=\"1.0\"?>\r\n<qvz>\r\n"))
      << xml.left(100).toStdString();
  EXPECT_TRUE(xml.contains(" <system>Batch &#38; co &#60;2024-01-31&#62;</system>\r\n"));
  EXPECT_TRUE(
      xml.contains("  <rows>\r\n   <row>First</row>\r\n   <row>Second</row>\r\n  </rows>\r\n"));
  EXPECT_TRUE(
      xml.contains("   <value display='3'>3</value>\r\n   <value display='3'>3</value>\r\n"));
  EXPECT_TRUE(
      xml.endsWith(" <class cls='4' name='Variable'>\r\n  <!-- Variable metrics -->\r\n"
                   " </class>\r\n</qvz>\r\n"));
  EXPECT_TRUE(QFile::exists(input));  // kept without a DEL switch
  ExpectXmllintAccepts(Path("batch.xml"));
}

TEST_F(BatchRoadXml, SilentDeleteOverwritesWithoutAQuestionAndDeletesTheInput) {
  const QString input = WriteDatabase(Path("in.qvz"));
  const QString output = Path("out.xml");
  QvzFixture::WriteBytes(output, "old");
  const ProgramRun run = Run({"/SAVEXMLDELS", input, output});
  EXPECT_EQ(run.err.toStdString(), "");
  EXPECT_EQ(run.out.toStdString(), "");
  EXPECT_FALSE(QFile::exists(input));
  EXPECT_TRUE(QvzFixture::ReadBytes(output).startsWith("<?xml version=\"1.0\"?>\r\n"));
  EXPECT_EQ(QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"out.xml"});
  ExpectXmllintAccepts(output);
}

TEST_F(BatchRoadXml, FailingExportKeepsTheInput) {
  // Not a database: the reader's own message, then the export's, both on
  // standard error.
  const QString broken = Path("broken.qvz");
  QvzFixture::WriteBytes(broken, "no database");
  ProgramRun run = Run({"/SAVEXMLDELS", broken});
  EXPECT_TRUE(run.err.endsWith("Save metrics as XML: Cannot locate or open " + broken + "\n"))
      << run.err.toStdString();
  EXPECT_EQ(run.out.toStdString(), "");
  EXPECT_EQ(QvzFixture::ReadBytes(broken), "no database");
  EXPECT_FALSE(QFile::exists(Path("broken.xml")));

  // Without the silent switch an existing output is a question, which nobody
  // at a console can answer: declined, nothing overwritten or deleted.
  const QString input = WriteDatabase(Path("in.qvz"));
  const QString output = Path("out.xml");
  QvzFixture::WriteBytes(output, "old");
  run = Run({"/SAVEXMLDEL", input, output});
  EXPECT_EQ(run.err.toStdString(),
            ("Save metrics as XML: " + output + "\r\nFile exists. Overwrite?\n").toStdString());
  EXPECT_EQ(run.out.toStdString(), "");
  EXPECT_TRUE(QFile::exists(input));
  EXPECT_EQ(QvzFixture::ReadBytes(output), "old");

  // An output that cannot be created.
  run = Run({"/SAVEXMLDELS", input, Path("missing/out.xml")});
  EXPECT_EQ(run.err.toStdString(),
            ("Save metrics as XML: Failed to create file " + Path("missing/out.xml") +
             "\r\n\r\nError #2: No such file or directory\n")
                .toStdString());
  EXPECT_TRUE(QFile::exists(input));
}

}  // namespace
