// Databases written by the measuring program: read back through the reader,
// opened on every page of the viewer's model, exported to XML.
#include <cmath>
#include <limits>

#include <QTemporaryDir>

#include "common/OutsideReaders.h"
#include "core/MetricRead.h"
#include "core/MetricSaveFields.h"
#include "core/QVZ2XML.h"
#include "core/QVZRead.h"
#include "grid/GridTestDoubles.h"
#include "grid/OwnerGridLogic.h"
#include "limits/MetricLimits.h"
#include "limits/MetricSelection.h"
#include "measure/MeasureTestFiles.h"
#include "measure/MeasureWriter.h"
#include "measure/ProjectSources.h"
#include "shell/PageModel.h"
#include "shell/StartupState.h"
#include "support/ScriptedUiServices.h"
#include "support/SettingsStore.h"

namespace ombrelle::test {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

// A project of three files, one with a form and a class.
QString MakeShop(const QTemporaryDir& dir, int extraProcedures = 0) {
  const QString root = dir.filePath("Shop");
  PutFile(root + "/Shop.vbp",
          "Type=Exe\r\nForm=frmMain.frm\r\nModule=Main; Main.bas\r\nClass=CItem; CItem.cls\r\n"
          "Name=\"Shop\"\r\n");
  // A Declare: procedure metrics that do not apply to it.
  PutFile(root + "/Main.bas",
          Module("Main", 2 + extraProcedures) +
              "Private Declare Function GetTickCount Lib \"kernel32\" () As Long\r\n");
  PutFile(root + "/CItem.cls", "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1\r\nEND\r\n" +
                                   Module("CItem", 1) + "Private mCount As Long\r\n");
  PutFile(root + "/frmMain.frm",
          "VERSION 5.00\r\nBegin VB.Form frmMain\r\n   Caption = \"Shop\"\r\nEnd\r\n" +
              Module("frmMain", 1));
  return root + "/Shop.vbp";
}

TEST(MeasureDatabase, ReadsBackWithTheSameNamesAndValues) {
  ScopedScriptedUi scripted;
  QTemporaryDir dir;
  const QString vbp = MakeShop(dir);
  const CommandRun run = RunMeasure({vbp, "-o", "shop.qvz", "--date", "2024-06-03"}, dir.path());
  ASSERT_EQ(run.status, 0) << run.err.join('\n').toStdString();

  // What the counter makes of the same files is what the file must hold.
  const ProjectSources sources = ProjectSources::FromPath(vbp);
  const MeasuredProject expected = MeasureSources(sources.projectFile, sources.files);
  QVZRead reader;
  QString error;
  ASSERT_TRUE(reader.Opendatabase(dir.filePath("shop.qvz"), error)) << error.toStdString();
  EXPECT_EQ(reader.Title(), "Shop");
  EXPECT_EQ(reader.ProjectFilename(), "Shop.vbp");
  EXPECT_EQ(reader.GetAnalysisDate(), DateSerial(2024, 6, 3));
  int columns = 0;
  const MetricDefinitions definitions;
  for (const MeasuredClass& measured : expected.classes) {
    EXPECT_EQ(reader.GetClassSize(measured.classNr), measured.names.size());
    QStringList names;
    std::vector<int32_t> order;
    reader.GetRowHeaders(measured.classNr, names, order);
    EXPECT_EQ(QSet<QString>(names.begin(), names.end()),
              QSet<QString>(measured.names.begin(), measured.names.end()));
    for (size_t m = 0; m < measured.metrics.size(); ++m) {
      const std::vector<double>& values = measured.values[m];
      // A column without a single value is left out; rows without one hold 0.
      std::vector<double> stored;
      for (double v : values) stored.push_back(std::isnan(v) ? 0.0 : v);
      const bool any =
          std::any_of(values.begin(), values.end(), [](double v) { return !std::isnan(v); });
      EXPECT_EQ(reader.MetricStored(measured.metrics[m]), any) << measured.metrics[m];
      if (!any) continue;
      ++columns;
      // A column of several rows is stored as whole numbers when the metric's
      // format is whole; a single value, or one value repeated (stored once),
      // keeps its fraction.
      const auto [low, high] = std::minmax_element(stored.begin(), stored.end());
      const uint8_t kind =
          ChooseValueEncoding(definitions.GetMetricFormat(measured.metrics[m]), *low, *high).Kind;
      const bool rounded = stored.size() > 1 && kind != kValueDouble && kind != kValueConstant;
      for (qsizetype row = 0; row < measured.names.size(); ++row) {
        double value = kNone;
        const double written = stored[static_cast<size_t>(row)];
        ASSERT_TRUE(reader.ReadValueForRow(measured.metrics[m], measured.names[row], value));
        EXPECT_NEAR(value, rounded ? std::nearbyint(written) : written, 1e-4)
            << measured.metrics[m] << " " << measured.names[row].toStdString();
      }
    }
  }
  EXPECT_GT(columns, 1);
  EXPECT_EQ(reader.GetClassSize(ClassFile), 3);
  EXPECT_TRUE(scripted.ui.messages.empty());
}

TEST(MeasureDatabase, RowsWithoutAValueHoldZeroAndEmptyColumnsAreLeftOut) {
  ScopedScriptedUi scripted;
  MeasuredProject project;
  MeasuredClass files;
  files.classNr = ClassFile;
  files.names = {"b.bas", "a.bas"};
  files.metrics = {2001, 2012, 2013, 2014};
  files.values = {{7, 3}, {kNone, 2}, {kNone, kNone}, {1}};
  project.classes.push_back(files);
  QTemporaryDir dir;
  QStringList notes;
  ASSERT_TRUE(MeasureWriter::Write(project, {"T", "p.vbp", DateSerial(2024, 1, 2)},
                                   dir.filePath("t.qvz"), &notes));
  EXPECT_EQ(notes, QStringList("metric 2014 left out: its values do not match the rows"));
  QVZRead reader;
  QString error;
  ASSERT_TRUE(reader.Opendatabase(dir.filePath("t.qvz"), error));
  EXPECT_FALSE(reader.MetricStored(2013));
  EXPECT_FALSE(reader.MetricStored(2014));
  const struct {
    MetricId id;
    const char* row;
    double value;
  } cells[] = {{2001, "b.bas", 7}, {2001, "a.bas", 3}, {2012, "b.bas", 0}, {2012, "a.bas", 2}};
  for (const auto& cell : cells) {
    double value = -1;
    ASSERT_TRUE(reader.ReadValueForRow(cell.id, cell.row, value)) << cell.id;
    EXPECT_EQ(value, cell.value) << cell.id << cell.row;
  }
}

// Records nothing: the model only needs somewhere to report to.
class QuietView : public PageView {
 public:
  void TabSelected(int) override {}
  void LayoutChanged() override {}
  void DetailsChanged() override {}
  void StatsChanged() override {}
  void MenuChecksChanged() override {}
  void SetWindowState(int) override {}
  int GridWidthPixels() const override { return 0; }
};

TEST(MeasureDatabase, OpensOnEveryPageOfTheViewerAndExportsToXml) {
  ScopedScriptedUi scripted;
  QTemporaryDir dir;
  SetSettingsFilePath(dir.filePath("settings.ini"));
  const QString vbp = MakeShop(dir);
  const QString out = dir.filePath("out");
  ASSERT_TRUE(QDir().mkpath(out));
  ASSERT_EQ(RunMeasure({vbp, "-o", "out/a.qvz", "--date", "2024-01-10"}, dir.path()).status, 0);
  MakeShop(dir, 3);
  ASSERT_EQ(RunMeasure({vbp, "-o", "out/b.qvz", "--date", "2024-02-10"}, dir.path()).status, 0);
  SaveSetting("Databases", "Path1", out);
  MetricLimits::SetCurrentLimitID(LimitSet::Default);
  MetricSelection::SetCurrent(SelectionSet::All);

  FakeGridHost host{QSize(1200, 600)};
  QuietView view;
  PageModel model;
  OwnerGridLogic grid(nullptr, &host);
  model.AttachGrid(grid);
  model.SetView(&view);
  model.Start(out + "/b.qvz");
  ASSERT_EQ(model.Reader().DatabaseCount(), 2);
  QVZRead saved;
  QString error;
  ASSERT_TRUE(saved.Opendatabase(out + "/b.qvz", error));
  for (int page = 0; page < kPageCount; ++page) {
    model.TabClicked(page);
    EXPECT_EQ(model.CurrentPage(), page);
    // The item pages show the rows of their class, whatever the counter made.
    const int rows = page < 3 ? (page == 1 ? 1 : 2) : saved.GetClassSize(page - 3 + ClassFile);
    EXPECT_EQ(model.Pages(page).Rows, rows) << "page " << page;
    if (rows > 0) {
      EXPECT_GT(model.Pages(page).ColumnCount, 0) << "page " << page;
    }
    QString text;
    quint32 colour = 0;
    for (int row = 1; row <= grid.Rows(); ++row)
      for (int column = 1; column <= grid.Columns(); ++column)
        model.DataRequest(row, column, text, colour);
  }
  EXPECT_TRUE(scripted.ui.messages.empty());

  QString xml = dir.filePath("b.xml");
  ASSERT_TRUE(SaveQVZ2XML(out + "/b.qvz", xml, false));
  ExpectXmllintAccepts(xml);
  SetSettingsFilePath(QString());
}

}  // namespace
}  // namespace ombrelle::test
