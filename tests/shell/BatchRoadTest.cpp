// The batch switches inside the process: what the command line makes of
// them, the names of classes and metrics, the folders of an installed
// program, and files equal to those the window's commands write.
#include <memory>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "chart/ZelmChart.h"
#include "reports/PageReports.h"
#include "reports/ReportPage.h"
#include "shell/BatchRoad.h"
#include "shell/ChartCommands.h"
#include "shell/ChartFiles.h"
#include "shell/CommandLine.h"
#include "shell/PageModelFixture.h"
#include "shell/PageReportSource.h"
#include "shell/Startup.h"
#include "shell/TableExport.h"
#include "support/ProgramFolders.h"

namespace ombrelle::test {
namespace {

StartupState Parse(const QStringList& parameters) {
  StartupState state;
  ParseCommandLine(QStringList{QStringLiteral("/bin/qvzview")} << parameters, state,
                   QStringLiteral("/work"));
  return state;
}

TEST(BatchSwitches, FillTheRequestInAnyCaseAndOrder) {
  struct Case {
    QStringList parameters;
    BatchReport report;
    const char* argument;
    const char* width;
    const char* limit;
    const char* selection;
  };
  const std::vector<Case> cases = {
      {{"a.qvz", "/status", "b.mht", "c.qvz"}, BatchReport::Status, "", "", "", ""},
      {{"/TABLE:Proc", "a.qvz", "b.csv"}, BatchReport::Table, "Proc", "", "", ""},
      {{"/Stats:var"}, BatchReport::Stats, "var", "", "", ""},
      {{"/CHARTS:cls"}, BatchReport::Charts, "cls", "", "", ""},
      {{"/correlation:file"}, BatchReport::Correlation, "file", "", "", ""},
      {{"/LIMITREPORT", "/limit:<Default limits>"},
       BatchReport::LimitReport,
       "",
       "",
       "<Default limits>",
       ""},
      {{"/chart:scatter:proc.CC:4050", "/width:800", "/SELECTION:3"},
       BatchReport::Chart,
       "scatter:proc.CC:4050",
       "800",
       "",
       "3"},
      // The last report switch wins; "/TABLE" without a class is still a table.
      {{"/STATUS", "/TABLE"}, BatchReport::Table, "", "", "", ""},
      // Not ours: an argument where none is taken, an unknown name, a path.
      {{"/STATUS:x", "/LIMITREPORTS", "/TABLE/proc"}, BatchReport::None, "", "", "", ""},
      {{"/WIDTH:100"}, BatchReport::None, "", "100", "", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.parameters.join(' ').toStdString());
    const StartupState state = Parse(c.parameters);
    EXPECT_EQ(state.Batch.Report, c.report);
    EXPECT_EQ(state.Batch.Argument.toStdString(), c.argument);
    EXPECT_EQ(state.Batch.Width.toStdString(), c.width);
    EXPECT_EQ(state.Batch.Limit.toStdString(), c.limit);
    EXPECT_EQ(state.Batch.Selection.toStdString(), c.selection);
  }
  const StartupState state = Parse({"a.qvz", "b.mht", "c.qvz", "d.qvz", "/STATUS"});
  EXPECT_EQ(state.InputFile, "/work/a.qvz");
  EXPECT_EQ(state.OutputFile, "/work/b.mht");
  EXPECT_EQ(state.CompareFile, "/work/c.qvz");  // a fourth name is skipped
}

TEST(BatchSwitches, TheDescribedRoadsWinAndOthersNeedAReportSwitch) {
  EXPECT_EQ(ChooseRoad(Parse({"a.qvz", "/STATUS", "/EDIT"})), StartupRoad::EditHeader);
  EXPECT_EQ(ChooseRoad(Parse({"a.qvz", "/STATUS", "/SAVEXML"})), StartupRoad::SaveXml);
  EXPECT_EQ(ChooseRoad(Parse({"a.qvz", "b.mht", "/STATUS"})), StartupRoad::BatchReport);
  EXPECT_EQ(ChooseRoad(Parse({"a.qvz", "/WIDTH:5", "/LIMIT:1"})), StartupRoad::MainWindow);
  EXPECT_TRUE(TakesBatchReportRoad({"qvzview", "a.qvz", "b.png", "/chart:bar:4120"}));
  EXPECT_FALSE(TakesBatchReportRoad({"qvzview", "a.qvz", "/chart:bar:4120", "/?"}));
  EXPECT_FALSE(TakesBatchReportRoad({"qvzview", "a.qvz", "/SAVEXML", "/STATUS"}));
}

TEST(BatchSwitches, ClassAndMetricNames) {
  const std::vector<std::pair<const char*, int>> pages = {
      {"file", 3}, {"CLS", 4}, {"Proc", 5}, {"var", 6}, {"proj", 0}, {"class", 0}, {"", 0}};
  for (const auto& [name, page] : pages) EXPECT_EQ(PageOfClassName(name), page) << name;

  const MetricDefinitions definitions;
  const std::vector<std::pair<const char*, MetricId>> metrics = {
      {"4120", 4120},      {"proc.CC", 4120},
      {"PROC.cc", 4120},   {"proc.STMT", 4050},
      {"file.STMT", 2100}, {"proj.LLINES", 1008},
      {"var.READS", 5001}, {"1008", 1008},
      {"5011", 0},  // a number without a name is no metric
      {"9999", 0},         {"cc", 0},
      {"proc.", 0},        {"proc.NOPE", 0},
      {"unit.CC", 0},      {"", 0}};
  for (const auto& [text, id] : metrics) EXPECT_EQ(ParseMetricText(text, definitions), id) << text;
}

TEST(ProgramFolders, BesideTheProgramElseInstalledUnderShare) {
  QTemporaryDir root;
  const QString bin = root.filePath("bin");
  QDir().mkpath(bin);
  EXPECT_EQ(ProgramDataFolder(bin, "www"), bin + "/www");  // neither: beside
  QDir().mkpath(root.filePath("share/ombrelle/www"));
  EXPECT_EQ(ProgramDataFolder(bin, "www"), root.filePath("share/ombrelle/www"));
  QDir().mkpath(bin + "/www");
  EXPECT_EQ(ProgramDataFolder(bin, "www"), bin + "/www");  // the build's layout wins
}

QByteArray ReadAll(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The window's commands on a page model, and the batch road on the same
// database, page and sets.
class BatchEqualsWindow : public PageModelTest {
 protected:
  int Batch(const QStringList& switches, const QString& output) {
    StartupState state = Parse(QStringList{m_input, output} << switches);
    return RunBatchReport(state, [this](const QString& line) { m_err << line; });
  }
  void OpenProcedures() {
    StartModel(m_input);
    model->TabClicked(5);
    ASSERT_EQ(model->CurrentPage(), 5);
  }

  QString m_input = SampleFolder() + "/2025-12-15 Harbour.qvz";
  QTemporaryDir m_dir;
  QStringList m_err;
};

TEST_F(BatchEqualsWindow, TableFilesAndChartPicturesAreTheSameBytes) {
  OpenProcedures();
  for (int kind : {ExportKind::Csv, ExportKind::Html, ExportKind::Text}) {
    const QString extension = kind == ExportKind::Csv    ? "csv"
                              : kind == ExportKind::Html ? "html"
                                                         : "txt";
    const QString window = m_dir.filePath("window." + extension);
    const QString batch = m_dir.filePath("batch." + extension);
    ASSERT_TRUE(TableExport(*model).WriteTable(window, kind, true));
    ASSERT_EQ(Batch({"/TABLE:proc", "/LIMIT:-1", "/SELECTION:<All>"}, batch), 0)
        << m_err.join('\n').toStdString();
    QByteArray a = ReadAll(window);
    QByteArray b = ReadAll(batch);
    ASSERT_GT(a.size(), 1000);
    // The saved-by line of the HTML table holds the minute it was written.
    static const QRegularExpression savedBy("<P>Saved by [^<]*</P>");
    EXPECT_EQ(QString::fromLatin1(a).replace(savedBy, ""),
              QString::fromLatin1(b).replace(savedBy, ""))
        << extension.toStdString();
  }

  // The statistics report of the page, as the Report menu writes it.
  const QString stats = WriteStatisticsReport(PageReportSource(*model));
  ASSERT_FALSE(stats.isEmpty());
  const QString batchStats = m_dir.filePath("stats.html");
  ASSERT_EQ(Batch({"/STATS:proc", "/LIMIT:-1", "/SELECTION:<All>"}, batchStats), 0);
  static const QRegularExpression savedBy("<P>Saved by [^<]*</P>");
  const QString windowText = QString::fromUtf8(ReadAll(stats)).replace(savedBy, "");
  EXPECT_GT(windowText.size(), 1000);
  EXPECT_EQ(windowText, QString::fromUtf8(ReadAll(batchStats)).replace(savedBy, ""));

  // The bar chart with the cursor on the first row of the CC column.
  const int column = model->FindGridColumn(4120);
  ASSERT_GT(column, 0);
  grid->PlaceCursor(5, grid->FixedColumns() + 1);  // elsewhere first
  grid->PlaceCursor(1, grid->FixedColumns() + column);
  std::unique_ptr<ZelmChart> chart =
      ChartCommands(*model).MakeBarChart(false, model->CurrentSeries());
  ASSERT_TRUE(chart);
  for (const char* extension : {"gif", "bmp", "emf", "wmf", "png", "svg"}) {
    const QString window = m_dir.filePath(QStringLiteral("window.") + extension);
    const QString batch = m_dir.filePath(QStringLiteral("batch.") + extension);
    ASSERT_TRUE(SaveChartFile(*chart, window, PictureKindOfFile(window), kDefaultChartWidth));
    ASSERT_EQ(Batch({"/CHART:bar:proc.CC", "/LIMIT:-1", "/SELECTION:<All>"}, batch), 0)
        << m_err.join('\n').toStdString();
    EXPECT_EQ(ReadAll(window), ReadAll(batch)) << extension;
  }
  EXPECT_TRUE(m_err.isEmpty()) << m_err.join('\n').toStdString();
}

TEST_F(BatchEqualsWindow, SwitchesChangeTheSetsForTheRunOnly) {
  MetricLimits::SetCurrentLimitID(LimitSet::None);
  MetricSelection::SetCurrent(SelectionSet::All);
  const QString settings = QString::fromLatin1(ReadAll(SettingsFilePath()));
  const QString output = m_dir.filePath("pie.png");
  EXPECT_EQ(Batch({"/CHART:pie:proc.CC", "/LIMIT:<default LIMITS>", "/SELECTION:-3"}, output), 0)
      << m_err.join('\n').toStdString();
  EXPECT_TRUE(QFile::exists(output));
  EXPECT_EQ(QString::fromLatin1(ReadAll(SettingsFilePath())), settings);
  EXPECT_EQ(MetricLimits::GetCurrentLimitID(), LimitSet::None);
  // Without the switch the set of the settings is in force: no rule, no pie.
  EXPECT_EQ(Batch({"/CHART:pie:proc.CC"}, m_dir.filePath("none.png")), 1);
  EXPECT_EQ(m_err.join('\n').toStdString(),
            "No limit for selected metric.\nqvzview: No chart: nothing written to " +
                m_dir.filePath("none.png").toStdString());
  EXPECT_FALSE(QFile::exists(m_dir.filePath("none.png")));
}

}  // namespace
}  // namespace ombrelle::test
