#include <gtest/gtest.h>

#include <csignal>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <sys/resource.h>

#include "common/ScopedFileSizeLimit.h"
#include "common/OutsideReaders.h"
#include "common/MessageAssertions.h"
#include "common/QvzFixture.h"
#include "core/MetricSave.h"
#include "core/QVZ2XML.h"
#include "stats/CStats.h"
#include "support/FormatNum.h"
#include "support/ScriptedUiServices.h"

using namespace ombrelle;
using ombrelle::test::ExpectXmllintAccepts;
using ombrelle::test::QvzFixture;
using ombrelle::test::SeriesSpec;

namespace {

constexpr int kExclamation = 48;
constexpr int kQuestion = 36;
const char* const kTitle = "Save metrics as XML";

// A database with a title holding "&", a Latin letter above 126 and a code
// above 32767; a project row with a date and a one-value metric; two files
// with a date metric; no classes and no variables; three procedures, unsorted,
// with two stored metrics and two derived from them.
QvzFixture SampleDatabase() {
  QvzFixture f;
  f.flags = 2;  // UTF-8, rows not sorted: display order differs from file order
  f.title = QString::fromUtf8("R&D K\xC3\xB6ln \xE9\xAB\x98");
  auto& project = f.AddClass(0, 1);
  project.rowNames = {QStringLiteral("Project")};
  project.series = {SeriesSpec::Stored(1002, 1, {1234567})};
  auto& files = f.AddClass(1, 2);
  files.rowNames = {QStringLiteral("src/a&b.bas"), QString::fromUtf8("src/\xC3\x84rger.bas")};
  files.series = {SeriesSpec::Stored(2001, 2, {120, 7}),
                  SeriesSpec::Stored(2031, 0, {45321.5, 45000.25})};
  auto& procedures = f.AddClass(3, 3);
  procedures.rowNames = {QStringLiteral("Main"),
                         QString::fromUtf8("Gr\xC3\xB6\xC3\x9F"
                                           "e"),
                         QString::fromUtf8("\xE8\xA8\x88\xE7\xAE\x97'x")};
  procedures.series = {SeriesSpec::Stored(4050, 1, {4, 10, 3}),
                       SeriesSpec::Stored(4051, 1, {2, 5, 3})};
  return f;
}

// The export of SampleDatabase, written out line by line.
const char* const kSampleExport =
    "<?xml version=\"1.0\"?>\r\n"
    "<qvz>\r\n"
    " <!-- Ombrelle export file -->\r\n"
    " <version>1</version>\r\n"
    " <generator>\r\n"
    "  <name>Ombrelle Viewer</name>\r\n"
    "  <version>@VERSION@</version>\r\n"
    " </generator>\r\n"
    " <system>R&#38;D K&#246;ln &#39640; &#60;2024-01-31&#62;</system>\r\n"
    " <class cls='0' name='Project'>\r\n"
    "  <!-- Project metrics -->\r\n"
    "  <rows>\r\n"
    "   <row>R&#38;D K&#246;ln &#39640;</row>\r\n"
    "  </rows>\r\n"
    "  <metric id='1000' abbr='DATE' name='Project date' descr='Date of newest file in "
    "project.'>\r\n"
    "   <value display='2024-01-31'>45322.9999884259</value>\r\n"
    "  </metric>\r\n"
    "  <metric id='1002' abbr='LINES' name='Physical lines' descr='Physical source lines, "
    "including "
    "code, comments, empty comments and empty lines. This metric is what you would see with a "
    "simple text editor or line count program.'>\r\n"
    "   <value display='1235k'>1234567</value>\r\n"
    "  </metric>\r\n"
    " </class>\r\n"
    " <class cls='1' name='File'>\r\n"
    "  <!-- File metrics -->\r\n"
    "  <rows>\r\n"
    "   <row>src/a&#38;b.bas</row>\r\n"
    "   <row>src/&#196;rger.bas</row>\r\n"
    "  </rows>\r\n"
    "  <metric id='2001' abbr='LINES' name='Physical lines' descr='Physical source lines, "
    "including "
    "code, comments, empty comments and empty lines. This metric is what you would see with a "
    "simple text editor or line count program.'>\r\n"
    "   <value display='120'>120</value>\r\n"
    "   <value display='7'>7</value>\r\n"
    "  </metric>\r\n"
    "  <metric id='2031' abbr='DATEF' name='File date' descr='File date.'>\r\n"
    "   <value display='2024-01-30'>45321.5</value>\r\n"
    "   <value display='2023-03-15'>45000.25</value>\r\n"
    "  </metric>\r\n"
    " </class>\r\n"
    " <class cls='2' name='Class'>\r\n"
    "  <!-- Class metrics -->\r\n"
    " </class>\r\n"
    " <class cls='3' name='Procedure'>\r\n"
    "  <!-- Procedure metrics -->\r\n"
    "  <rows>\r\n"
    "   <row>Main</row>\r\n"
    "   <row>Gr&#246;&#223;e</row>\r\n"
    "   <row>&#35336;&#31639;&#39;x</row>\r\n"
    "  </rows>\r\n"
    "  <metric id='4050' abbr='STMT' name='Number of statements' descr='Total number of all "
    "statements.'>\r\n"
    "   <value display='4'>4</value>\r\n"
    "   <value display='10'>10</value>\r\n"
    "   <value display='3'>3</value>\r\n"
    "  </metric>\r\n"
    "  <metric id='4051' abbr='STMTd' name='Declarative statements' descr='Number of declarative "
    "statements, which are are: procedure headers, variable and constant declarations, all "
    "statements outside procedures.'>\r\n"
    "   <value display='2'>2</value>\r\n"
    "   <value display='5'>5</value>\r\n"
    "   <value display='3'>3</value>\r\n"
    "  </metric>\r\n"
    "  <metric id='4052' abbr='STMTx' name='Executable statements' descr='Number of executable "
    "statements. A statement is executable if it is not declarative. Executable statements can "
    "only exist within procedures. STMTx=STMT-STMTd'>\r\n"
    "   <value display='2'>2</value>\r\n"
    "   <value display='5'>5</value>\r\n"
    "   <value display='0'>0</value>\r\n"
    "  </metric>\r\n"
    "  <metric id='4060' abbr='XQT' name='Executability' descr='Executability measures the amount "
    "of executable statements. It equals the number of executable statements divided by the "
    "number of all statements. XQT=STMTx/STMT'>\r\n"
    "   <value display='50%'>.5</value>\r\n"
    "   <value display='50%'>.5</value>\r\n"
    "   <value display='0%'>0</value>\r\n"
    "  </metric>\r\n"
    " </class>\r\n"
    " <class cls='4' name='Variable'>\r\n"
    "  <!-- Variable metrics -->\r\n"
    " </class>\r\n"
    "</qvz>\r\n";

// A document written out here, with the program's version put in.
std::string Expected(const char* document) {
  return QString::fromLatin1(document)
      .replace(QStringLiteral("@VERSION@"), VersionText(true))
      .toStdString();
}

QStringList Entries(const QString& folder) {
  return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name);
}

class QVZ2XMLExport : public ::testing::Test {
 protected:
  QString Path(const QString& name) const { return m_dir.filePath(name); }
  QString WriteSample(const QString& name = QStringLiteral("sample.qvz")) {
    return SampleDatabase().Write(Path(name));
  }

  QTemporaryDir m_dir;
  ScopedScriptedUi m_scripted;
  ScriptedUiServices& m_ui = m_scripted.ui;
};

TEST_F(QVZ2XMLExport, WritesTheCompleteDocument) {
  const QString input = WriteSample();
  QString output = Path("out.xml");
  ASSERT_TRUE(SaveQVZ2XML(input, output, true)) << m_ui.MessageTexts().join("|").toStdString();
  EXPECT_TRUE(m_ui.messages.empty());
  EXPECT_EQ(output, Path("out.xml"));
  EXPECT_EQ(QvzFixture::ReadBytes(output).toStdString(), Expected(kSampleExport));
  EXPECT_EQ(Entries(m_dir.path()), (QStringList{"out.xml", "sample.qvz"}));
  EXPECT_GE(m_ui.busyShown, 1);
  EXPECT_EQ(m_ui.BusyCount(), 0);
  ExpectXmllintAccepts(output);
}

TEST_F(QVZ2XMLExport, EmptyOutputNameIsMadeFromTheInput) {
  const QString input = WriteSample();
  QString output;
  ASSERT_TRUE(SaveQVZ2XML(input, output, false));
  EXPECT_EQ(output, Path("sample.xml"));
  EXPECT_EQ(QvzFixture::ReadBytes(output).toStdString(), Expected(kSampleExport));
  EXPECT_TRUE(m_ui.messages.empty());
  EXPECT_TRUE(m_ui.fileRequests.empty());
  ExpectXmllintAccepts(output);
}

TEST_F(QVZ2XMLExport, DatabaseWithOnlyAProjectRow) {
  QvzFixture f;
  f.title = QStringLiteral("Tiny");
  f.analysisStamp = "20230315120000";
  f.analysisDate = "2023-03-15";
  auto& project = f.AddClass(0, 1);
  project.rowNames = {QStringLiteral("Tiny")};
  project.series = {SeriesSpec::Stored(1002, 0, {1e20})};
  const QString input = f.Write(Path("tiny.qvz"));
  QString output = Path("tiny.xml");
  ASSERT_TRUE(SaveQVZ2XML(input, output, false));
  const char* const expected =
      "<?xml version=\"1.0\"?>\r\n"
      "<qvz>\r\n"
      " <!-- Ombrelle export file -->\r\n"
      " <version>1</version>\r\n"
      " <generator>\r\n"
      "  <name>Ombrelle Viewer</name>\r\n"
      "  <version>@VERSION@</version>\r\n"
      " </generator>\r\n"
      " <system>Tiny &#60;2023-03-15&#62;</system>\r\n"
      " <class cls='0' name='Project'>\r\n"
      "  <!-- Project metrics -->\r\n"
      "  <rows>\r\n"
      "   <row>Tiny</row>\r\n"
      "  </rows>\r\n"
      "  <metric id='1000' abbr='DATE' name='Project date' descr='Date of newest file in "
      "project.'>\r\n"
      "   <value display='2023-03-15'>45000.5</value>\r\n"
      "  </metric>\r\n"
      "  <metric id='1002' abbr='LINES' name='Physical lines' descr='Physical source lines, "
      "including code, comments, empty comments and empty lines. This metric is what you would "
      "see with a simple text editor or line count program.'>\r\n"
      "   <value display='100000000000000M'>1E+20</value>\r\n"
      "  </metric>\r\n"
      " </class>\r\n"
      " <class cls='1' name='File'>\r\n"
      "  <!-- File metrics -->\r\n"
      " </class>\r\n"
      " <class cls='2' name='Class'>\r\n"
      "  <!-- Class metrics -->\r\n"
      " </class>\r\n"
      " <class cls='3' name='Procedure'>\r\n"
      "  <!-- Procedure metrics -->\r\n"
      " </class>\r\n"
      " <class cls='4' name='Variable'>\r\n"
      "  <!-- Variable metrics -->\r\n"
      " </class>\r\n"
      "</qvz>\r\n";
  EXPECT_EQ(QvzFixture::ReadBytes(output).toStdString(), Expected(expected));
  ExpectXmllintAccepts(output);
}

TEST_F(QVZ2XMLExport, DatabaseOfTheProgramsOwnWriterKeepsItsRowOrder) {
  // The writer stores rows sorted by name, values following their rows; the
  // export gives rows and values in that stored order.
  const QString input = Path("written.qvz");
  {
    MetricSave save;
    ASSERT_TRUE(
        save.SaveDatabase(input, QStringLiteral("Written"), QStringLiteral("/p/w.tpj"), 45000.5));
    save.AddClass(0, 1, {QStringLiteral("Written")});
    save.AddMetricToClass(1002);
    save.ClassDone();
    save.AddClass(3, 3, {QStringLiteral("zeta"), QStringLiteral("Alpha"), QStringLiteral("mid")});
    save.AddMetricToClass(4050);
    save.AddMetricToClass(4051);
    save.ClassDone();
    ASSERT_TRUE(save.SaveClasses());
    for (const std::vector<double>& values :
         {std::vector<double>{1500}, std::vector<double>{10, 20, 30},
          std::vector<double>{4, 5, 6}}) {
      CStats column;
      for (double v : values) column.AddValue(v);
      ASSERT_TRUE(save.SaveSeries(column));
    }
    ASSERT_TRUE(save.Close());
  }
  QString output = Path("written.xml");
  ASSERT_TRUE(SaveQVZ2XML(input, output, false)) << m_ui.MessageTexts().join("|").toStdString();
  const QByteArray xml = QvzFixture::ReadBytes(output);
  const qsizetype start = xml.indexOf(" <class cls='3'");
  const qsizetype end = xml.indexOf(" <class cls='4'");
  ASSERT_TRUE(start > 0 && end > start);
  EXPECT_EQ(xml.mid(start, end - start).toStdString(),
            " <class cls='3' name='Procedure'>\r\n"
            "  <!-- Procedure metrics -->\r\n"
            "  <rows>\r\n"
            "   <row>Alpha</row>\r\n"
            "   <row>mid</row>\r\n"
            "   <row>zeta</row>\r\n"
            "  </rows>\r\n"
            "  <metric id='4050' abbr='STMT' name='Number of statements' descr='Total number of "
            "all statements.'>\r\n"
            "   <value display='20'>20</value>\r\n"
            "   <value display='30'>30</value>\r\n"
            "   <value display='10'>10</value>\r\n"
            "  </metric>\r\n"
            "  <metric id='4051' abbr='STMTd' name='Declarative statements' descr='Number of "
            "declarative statements, which are are: procedure headers, variable and constant "
            "declarations, all statements outside procedures.'>\r\n"
            "   <value display='5'>5</value>\r\n"
            "   <value display='6'>6</value>\r\n"
            "   <value display='4'>4</value>\r\n"
            "  </metric>\r\n"
            "  <metric id='4052' abbr='STMTx' name='Executable statements' descr='Number of "
            "executable statements. A statement is executable if it is not declarative. "
            "Executable statements can only exist within procedures. STMTx=STMT-STMTd'>\r\n"
            "   <value display='15'>15</value>\r\n"
            "   <value display='24'>24</value>\r\n"
            "   <value display='6'>6</value>\r\n"
            "  </metric>\r\n"
            "  <metric id='4060' abbr='XQT' name='Executability' descr='Executability measures "
            "the amount of executable statements. It equals the number of executable statements "
            "divided by the number of all statements. XQT=STMTx/STMT'>\r\n"
            "   <value display='75%'>.75</value>\r\n"
            "   <value display='80%'>.8</value>\r\n"
            "   <value display='60%'>.6</value>\r\n"
            "  </metric>\r\n"
            " </class>\r\n");
  EXPECT_TRUE(xml.contains(" <system>Written &#60;2023-03-15&#62;</system>\r\n"));
  EXPECT_TRUE(xml.contains("   <value display='1,500'>1500</value>\r\n"));
  ExpectXmllintAccepts(output);
}

TEST_F(QVZ2XMLExport, MissingInputIsReported) {
  for (const QString& input : {Path("missing.qvz"), QString()}) {
    m_ui.messages.clear();
    QString output = Path("out.xml");
    EXPECT_FALSE(SaveQVZ2XML(input, output, true));
    EXPECT_ONLY_UI_MESSAGE(m_ui, ("File not found:\r\n" + input).toStdString(), kExclamation);
    EXPECT_EQ(m_ui.messages[0].title, kTitle);
  }
  EXPECT_TRUE(Entries(m_dir.path()).isEmpty());
}

TEST_F(QVZ2XMLExport, OutputNamingTheInputIsRefusedAndTheDatabaseKept) {
  const QString input = WriteSample();
  const QByteArray before = QvzFixture::ReadBytes(input);
  for (const bool interactive : {true, false}) {
    m_ui.messages.clear();
    QString output = m_dir.path() + "/./" + QFileInfo(input).fileName();
    EXPECT_FALSE(SaveQVZ2XML(input, output, interactive));
    EXPECT_ONLY_UI_MESSAGE(
        m_ui, ("Cannot save metrics over the database itself:\r\n" + output).toStdString(),
        kExclamation);
    EXPECT_EQ(QvzFixture::ReadBytes(input), before);
  }
}

TEST_F(QVZ2XMLExport, ExistingOutputInInteractiveRunsAsksFirst) {
  const QString input = WriteSample();
  const QString existing = Path("out.xml");
  QvzFixture::WriteBytes(existing, "old");

  // No: nothing is written and no further box.
  QString output = existing;
  m_ui.msgAnswers = {7};
  EXPECT_FALSE(SaveQVZ2XML(input, output, true));
  EXPECT_ONLY_UI_MESSAGE(m_ui, (existing + "\r\nFile exists. Overwrite?").toStdString(), kQuestion);
  EXPECT_EQ(m_ui.messages[0].title, kTitle);
  EXPECT_EQ(QvzFixture::ReadBytes(existing), "old");

  // Yes: replaced.
  m_ui.messages.clear();
  m_ui.msgAnswers = {6};
  EXPECT_TRUE(SaveQVZ2XML(input, output, true));
  EXPECT_EQ(m_ui.messages.size(), 1u);
  EXPECT_EQ(QvzFixture::ReadBytes(existing).toStdString(), Expected(kSampleExport));

  // Not interactive: replaced without a question.
  m_ui.messages.clear();
  QvzFixture::WriteBytes(existing, "old");
  EXPECT_TRUE(SaveQVZ2XML(input, output, false));
  EXPECT_TRUE(m_ui.messages.empty());
  EXPECT_EQ(QvzFixture::ReadBytes(existing).toStdString(), Expected(kSampleExport));
  EXPECT_EQ(Entries(m_dir.path()), (QStringList{"out.xml", "sample.qvz"}));
}

TEST_F(QVZ2XMLExport, InputThatIsNoDatabaseCannotBeLocated) {
  const QString input = Path("broken.qvz");
  QvzFixture::WriteBytes(input, "not a database at all");
  QString output = Path("out.xml");
  EXPECT_FALSE(SaveQVZ2XML(input, output, true));
  ASSERT_FALSE(m_ui.messages.empty());
  // The reader says first why the named file failed; then the export.
  EXPECT_UI_MESSAGE(m_ui, m_ui.messages.size() - 1,
                    ("Cannot locate or open " + input).toStdString(), kExclamation);
  EXPECT_EQ(m_ui.messages.back().title, kTitle);
  EXPECT_FALSE(QFile::exists(output));
}

TEST_F(QVZ2XMLExport, DatabaseThatFailsToOpenIsReported) {
  // The header and its checksum are sound; the class table claims a class
  // more than the file holds.
  QvzFixture f = SampleDatabase();
  f.classCount = 4;
  const QString input = f.Write(Path("damaged.qvz"));
  QString output = Path("out.xml");
  EXPECT_FALSE(SaveQVZ2XML(input, output, false));
  EXPECT_ONLY_UI_MESSAGE(m_ui, ("Failed to read " + input).toStdString(), kExclamation);
  EXPECT_EQ(m_ui.messages[0].title, kTitle);
  EXPECT_FALSE(QFile::exists(output));
}

TEST_F(QVZ2XMLExport, MadeNameThatCannotBeCreatedOffersTheSaveDialog) {
  const QString input = WriteSample();
  ASSERT_TRUE(QDir(m_dir.path()).mkdir("sample.xml"));  // the made name is a folder

  // Cancelled: false after the box.
  QString output;
  EXPECT_FALSE(SaveQVZ2XML(input, output, false));
  EXPECT_ONLY_UI_MESSAGE(
      m_ui,
      ("Failed to create file " + Path("sample.xml") + "\r\n\r\nError #21: Is a directory")
          .toStdString(),
      kExclamation);
  EXPECT_EQ(m_ui.messages[0].title, kTitle);
  ASSERT_EQ(m_ui.fileRequests.size(), 1u);
  EXPECT_EQ(m_ui.fileRequests[0].title, kTitle);
  EXPECT_EQ(m_ui.fileRequests[0].defaultExtension, "xml");
  EXPECT_EQ(m_ui.fileRequests[0].filter, "XML file (*.xml)");

  // Another name chosen: the export goes there and the caller learns it.
  m_ui.messages.clear();
  m_ui.fileRequests.clear();
  m_ui.fileAnswers = {Path("chosen.xml")};
  output.clear();
  EXPECT_TRUE(SaveQVZ2XML(input, output, false));
  EXPECT_EQ(output, Path("chosen.xml"));
  EXPECT_EQ(m_ui.messages.size(), 1u);
  EXPECT_EQ(QvzFixture::ReadBytes(output).toStdString(), Expected(kSampleExport));
  ExpectXmllintAccepts(output);
}

TEST_F(QVZ2XMLExport, GivenNameThatCannotBeCreatedFailsWithoutDialog) {
  const QString input = WriteSample();
  QString output = Path("no/such/folder/out.xml");
  EXPECT_FALSE(SaveQVZ2XML(input, output, false));
  EXPECT_ONLY_UI_MESSAGE(
      m_ui,
      ("Failed to create file " + output + "\r\n\r\nError #2: No such file or directory")
          .toStdString(),
      kExclamation);
  EXPECT_TRUE(m_ui.fileRequests.empty());
  EXPECT_EQ(output, Path("no/such/folder/out.xml"));
}

TEST_F(QVZ2XMLExport, WriteErrorLeavesNoHalfFile) {
  const QString input = WriteSample();
  const QString existing = Path("out.xml");
  QvzFixture::WriteBytes(existing, "old");
  QString output = existing;
  bool ok = true;
  {
    ombrelle::test::ScopedFileSizeLimit limit(1000);  // the document is longer
    ok = SaveQVZ2XML(input, output, false);
  }
  EXPECT_FALSE(ok);
  EXPECT_ONLY_UI_MESSAGE(m_ui, "Error #27: File too large", kExclamation);
  EXPECT_EQ(m_ui.messages[0].title, "Error saving XML metrics");
  EXPECT_EQ(QvzFixture::ReadBytes(existing), "old");
  EXPECT_EQ(Entries(m_dir.path()), (QStringList{"out.xml", "sample.qvz"}));
}

}  // namespace

// Kept from a fuzzing run: a 1.6 KB file claiming 2^31 - 1 rows with empty
// names once made the export size a 4.4 GB column of zeros.
TEST_F(QVZ2XMLExport, UnbackedRowCountExportsAsAnEmptyClass) {
  QvzFixture f = QvzFixture::SmallestVersion3();
  f.classes[0].itemCount = 0x7FFFFFFF;
  const QString input = f.Write(Path("claims.qvz"));
  QString output = Path("claims.xml");
  ASSERT_TRUE(SaveQVZ2XML(input, output, false));
  const QByteArray xml = QvzFixture::ReadBytes(output);
  EXPECT_FALSE(xml.contains("<rows>"));
  EXPECT_LT(xml.size(), 100000);
}
