// Runs the built program with the report, table and chart switches on the
// sample databases, as a continuous-integration job would, with no display,
// and has each file read by an outside reader.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include "common/OutsideReaders.h"
#include "common/ProgramRun.h"

namespace ombrelle::test {
namespace {

QString Sample(const char* name) {
  return QStringLiteral(OMBRELLE_BUILD_DIR "/sample/") + QString::fromUtf8(name);
}
const char* const kHarbour = "2025-12-15 Harbour.qvz";
const char* const kOlderHarbour = "2025-10-06 Harbour.qvz";

class BatchReports : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(QFile::exists(BuiltProgram())) << "qvzview is not built"; }
  QString Path(const QString& name) const { return m_dir.filePath(name); }
  ProgramRun Qvzview(const QStringList& arguments) {
    return RunWithoutDisplay(BuiltProgram(), arguments, m_dir.path());
  }
  QStringList Files() const {
    return QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
  }

  QTemporaryDir m_dir;
};

// Checks one written file the way its kind is read elsewhere.
using Reader = void (*)(const QString& path);

void ReadWebArchive(const QString& path) {
  EXPECT_GE(WebArchivePictureCount(path), 2) << path.toStdString();
}
void ReadHtml(const QString& path) { ExpectXmllintHtmlAccepts(path); }
void ReadCsv(const QString& path, const QString& delimiter) {
  const QList<QStringList> rows = PythonCsvRows(path, delimiter, QStringLiteral("cp1252"));
  ASSERT_GT(rows.size(), 10);
  ASSERT_GT(rows[0].size(), 3);
  for (const QStringList& row : rows)
    EXPECT_EQ(row.size(), rows[0].size()) << row.join('|').toStdString();
}
void ReadCommaCsv(const QString& path) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QByteArray header = file.readLine();
  ReadCsv(path, header.contains(';') ? QStringLiteral(";") : QStringLiteral(","));
}
void ReadTabText(const QString& path) { ReadCsv(path, QStringLiteral("\t")); }
void ReadGif(const QString& path) { EXPECT_FALSE(Gif2RgbPixels(path).isEmpty()); }
void ReadBmp(const QString& path) { EXPECT_FALSE(DecodeWithBmptopnm(path).isNull()); }
void ReadEmf(const QString& path) { ExpectEmf2SvgAccepts(path, path + QStringLiteral(".svg")); }
void ReadWmf(const QString& path) { ExpectWmf2SvgAccepts(path, path + QStringLiteral(".svg")); }
void ReadPng(const QString& path) { EXPECT_FALSE(DecodeWithImageMagick(path).isNull()); }
void ReadSvg(const QString& path) { ExpectXmllintAccepts(path); }

struct KindCase {
  const char* output;
  QStringList switches;
  Reader read;
  int width;  // of a bitmap, as its reader sees it; 0 when not a bitmap
};

TEST_F(BatchReports, EachFileKindIsWrittenAndReadByItsOutsideReader) {
  const QString all = QStringLiteral("/SELECTION:<All>");
  const std::vector<KindCase> cases = {
      {"status.mht", {"/STATUS"}, ReadWebArchive, 0},
      {"compared.mht", {Sample(kOlderHarbour), "/status"}, ReadWebArchive, 0},
      {"procedures.csv", {"/TABLE:proc"}, ReadCommaCsv, 0},
      {"files.html", {"/TABLE:FILE"}, ReadHtml, 0},
      {"classes.htm", {"/table:cls"}, ReadHtml, 0},
      {"variables.txt", {"/TABLE:var"}, ReadTabText, 0},
      {"limits.html", {"/LIMITREPORT", "/LIMIT:-1"}, ReadHtml, 0},
      {"stats.html", {"/STATS:proc"}, ReadHtml, 0},
      {"charts.mht", {"/CHARTS:cls"}, ReadWebArchive, 0},
      {"correlation.htm", {"/CORRELATION:file"}, ReadHtml, 0},
      {"bar.png", {"/CHART:bar:proc.CC"}, ReadPng, 1500},
      {"histogram.gif", {"/CHART:histogram:4120", "/WIDTH:640"}, ReadGif, 640},
      {"distribution.bmp", {"/CHART:distribution:file.LLOC", "/WIDTH:800"}, ReadBmp, 800},
      {"pie.emf", {"/CHART:pie:proc.CC", "/LIMIT:<Default limits>"}, ReadEmf, 0},
      {"kiviat.wmf", {"/CHART:kiviat:proc.CC", "/LIMIT:<Default limits>"}, ReadWmf, 0},
      {"scatter.svg", {"/CHART:scatter:proc.CC:proc.STMT", all}, ReadSvg, 0},
  };
  for (const KindCase& c : cases) {
    SCOPED_TRACE(c.output);
    const QString output = Path(QString::fromLatin1(c.output));
    const ProgramRun run = Qvzview(QStringList{Sample(kHarbour), output} << c.switches);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err.toStdString(), "");
    ASSERT_TRUE(QFile::exists(output));
    c.read(output);
    if (c.width > 0) {
      EXPECT_EQ(QImage(output).width(), c.width);
    }
  }
  // Nothing but the files asked for (and the readers' SVGs): no temporary left.
  for (const QString& file : Files()) EXPECT_FALSE(file.startsWith('.')) << file.toStdString();
  // What a person looks at.
  QFile::copy(Path("bar.png"), ArtefactPath("BatchReports", "bar.png"));
  ChromiumScreenshot(Path("compared.mht"), ArtefactPath("BatchReports", "status-compared.png"),
                     1000, 2400);
}

struct BadCase {
  QStringList arguments;  // "IN" stands for the sample database
  const char* output;     // the name that must not appear
  std::string message;    // the last line on standard error
};

TEST_F(BatchReports, BadInputTellsWhyEndsWithOneAndWritesNothing) {
  QDir(m_dir.path()).mkdir("folder.csv");
  const QString in = Sample(kHarbour);
  const std::vector<BadCase> cases = {
      {{in, "t.csv", "/TABLE:module"},
       "t.csv",
       "qvzview: Unknown class \"module\" in /TABLE:module: use file, cls, proc or var"},
      {{in, "c.png", "/CHART:bar:proc.NOPE"},
       "c.png",
       "qvzview: Unknown metric \"proc.NOPE\" in /CHART:bar:proc.NOPE: give a metric number "
       "(4120) or class and abbreviation (proc.CC)"},
      {{in, "c.png", "/CHART:bar:9999"},
       "c.png",
       "qvzview: Unknown metric \"9999\" in /CHART:bar:9999: give a metric number (4120) or "
       "class and abbreviation (proc.CC)"},
      {{in, "c.png", "/CHART:scatter:var.READS:proc.CC"},
       "c.png",
       "qvzview: Metric var.READS in /CHART:scatter:var.READS:proc.CC is not on the page of "
       "procedures of metric proc.CC"},
      {{in, "c.png", "/CHART:bar:1008"},
       "c.png",
       "qvzview: Metric 1008 in /CHART:bar:1008 is a project metric: charts are made on the "
       "pages of files, classes, procedures or variables"},
      {{in, "c.png", "/CHART:radar:proc.CC"},
       "c.png",
       "qvzview: Unknown chart kind \"radar\" in /CHART:radar:proc.CC: use bar, histogram, "
       "distribution, pie, kiviat or scatter:Y"},
      {{in, "c.jpg", "/CHART:bar:proc.CC"},
       "c.jpg",
       "qvzview: The file /CHART:bar:proc.CC writes must end in .gif, .bmp, .emf, .wmf, .png or "
       ".svg: " +
           m_dir.filePath("c.jpg").toStdString()},
      {{in, "c.png", "/CHART:bar:proc.CC", "/WIDTH:9"},
       "c.png",
       "qvzview: Invalid width \"9\" in /WIDTH:9: give a number of pixels from 16 to 8000"},
      {{in, "c.png", "/CHART:pie:proc.CC", "/LIMIT:none such"},
       "c.png",
       "qvzview: Unknown limit set \"none such\" in /LIMIT:none such"},
      {{in, "missing/c.png", "/CHART:bar:proc.CC"},
       "missing",
       "qvzview: Cannot write to " + m_dir.filePath("missing/c.png").toStdString() +
           ": the folder does not exist"},
      {{in, "folder.csv", "/TABLE:proc"},
       "folder.csv/x",
       "qvzview: Cannot write to " + m_dir.filePath("folder.csv").toStdString() +
           ": it is a folder"},
      {{in, "t.pdf", "/TABLE:proc"},
       "t.pdf",
       "qvzview: The file /TABLE:proc writes must end in .csv, .html, .htm or .txt: " +
           m_dir.filePath("t.pdf").toStdString()},
      {{"absent.qvz", "s.mht", "/STATUS"},
       "s.mht",
       "qvzview: File not found: " + m_dir.filePath("absent.qvz").toStdString()},
      {{in, "/STATUS"},
       "s.mht",
       "qvzview: Missing output file name: \"" + in.toStdString() + "\" /STATUS"},
      {{in, "s.mht", in, "/STATUS"},
       "s.mht",
       "qvzview: An analysis cannot be compared with itself: " + in.toStdString()},
      {{in, "s.mht", "other.qvz", "/STATUS"},
       "s.mht",
       "qvzview: File not found: " + m_dir.filePath("other.qvz").toStdString()},
      {{in, "s.html", "/STATS:module"},
       "s.html",
       "qvzview: Unknown class \"module\" in /STATS:module: use file, cls, proc or var"},
      {{in, "s.html", "/CHARTS:proc"},
       "s.html",
       "qvzview: The file /CHARTS:proc writes must end in .mht: " +
           m_dir.filePath("s.html").toStdString()},
  };
  for (const BadCase& c : cases) {
    SCOPED_TRACE(c.arguments.join(' ').toStdString());
    const ProgramRun run = Qvzview(c.arguments);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err.trimmed().split('\n').last().toStdString(), c.message)
        << run.err.toStdString();
    EXPECT_FALSE(QFile::exists(Path(QString::fromLatin1(c.output))));
  }
  EXPECT_EQ(Files(), QStringList());

  // A chart that cannot be made tells the command's own reason and leaves an
  // existing file of that name as it was.
  QFile old(Path("pie.png"));
  ASSERT_TRUE(old.open(QIODevice::WriteOnly));
  old.write("old");
  old.close();
  const ProgramRun run = Qvzview({in, "pie.png", "/CHART:pie:proc.CC", "/LIMIT:<No limits>"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err.toStdString(),
            "No limit for selected metric.\nqvzview: No chart: nothing "
            "written to " +
                Path("pie.png").toStdString() + "\n");
  QFile kept(Path("pie.png"));
  ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
  EXPECT_EQ(kept.readAll(), QByteArray("old"));
  EXPECT_EQ(Files(), QStringList{"pie.png"});
}

TEST_F(BatchReports, InstallIntoATemporaryPrefixRunsOnItsOwnSamples) {
  const QString prefix = Path("prefix");
  QProcess install;
  install.start(QStringLiteral("cmake"),
                {QStringLiteral("--install"), QStringLiteral(OMBRELLE_BUILD_DIR),
                 QStringLiteral("--prefix"), prefix});
  ASSERT_TRUE(install.waitForFinished(120000));
  ASSERT_EQ(install.exitCode(), 0) << install.readAllStandardError().toStdString();
  for (const char* file :
       {"bin/qvzview", "share/ombrelle/www/pm-index.html", "share/ombrelle/www/help.css",
        "share/ombrelle/www/pm-batch.html", "share/applications/qvzview.desktop",
        "share/mime/packages/ombrelle-qvz.xml", "share/icons/hicolor/scalable/apps/qvzview.svg",
        "share/icons/hicolor/48x48/apps/qvzview.png"})
    EXPECT_TRUE(QFile::exists(prefix + '/' + file)) << file;

  const QString program = prefix + QStringLiteral("/bin/qvzview");
  const QString sample = prefix + QStringLiteral("/share/ombrelle/sample/") + kHarbour;
  ASSERT_TRUE(QFile::exists(sample));
  ProgramRun run =
      RunWithoutDisplay(program, {sample, Path("installed.xml"), "/SAVEXML"}, m_dir.path());
  EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
  ExpectXmllintAccepts(Path("installed.xml"));
  run = RunWithoutDisplay(program, {sample, Path("installed.mht"), "/STATUS"}, m_dir.path());
  EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
  EXPECT_GE(WebArchivePictureCount(Path("installed.mht")), 2);

  QString output;
  EXPECT_EQ(
      RunOutsideReader(QStringLiteral("desktop-file-validate"),
                       {prefix + QStringLiteral("/share/applications/qvzview.desktop")}, &output),
      0)
      << output.toStdString();
  EXPECT_EQ(output.toStdString(), "");
  ExpectXmllintAccepts(prefix + QStringLiteral("/share/mime/packages/ombrelle-qvz.xml"));
  const QImage icon(prefix + QStringLiteral("/share/icons/hicolor/48x48/apps/qvzview.png"));
  EXPECT_EQ(icon.size(), QSize(48, 48));
}

}  // namespace
}  // namespace ombrelle::test
