// The charts report of the procedures page of the largest sample (the latest
// save of "Harbour"): a histogram and a bar chart of every column drawn,
// turned into bitmaps and written into one web archive. Against the XML
// export of the same database in the same run, which reads every value of
// every class.
#include <benchmark/benchmark.h>

#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

#include "HeadlessGridHost.h"
#include "core/MetricRead.h"
#include "core/QVZ2XML.h"
#include "grid/OwnerGridLogic.h"
#include "limits/MetricSelection.h"
#include "reports/StatusPictures.h"
#include "shell/PageModel.h"
#include "shell/ReportCommands.h"
#include "support/ScriptedUiServices.h"
#include "support/SettingsStore.h"

namespace {

using namespace ombrelle;

constexpr int kFilesPage = 3;
constexpr int kProceduresPage = 5;

class BenchView : public PageView {
 public:
  int GridWidthPixels() const override { return 1200; }
};

// The report commands ask no dialog for this report.
class NoDialogs : public ProjectDialogs {
 public:
  int ListSelect(const QString&, const ListModel&) override { return 0; }
  bool SelectProjects(const ListModel&, int&, int&) override { return false; }
};

QString SampleFolder() {
  const QByteArray named = qgetenv("OMBRELLE_SAMPLES");
  if (!named.isEmpty()) return QString::fromLocal8Bit(named);
  return QCoreApplication::applicationDirPath() + QStringLiteral("/sample");
}

void BM_ChartsReport_HarbourProcedures(benchmark::State& state) {
  QTemporaryDir settings;
  SetSettingsFilePath(settings.filePath(QStringLiteral("settings.ini")));
  SaveSetting(QStringLiteral("Databases"), QStringLiteral("Path1"), SampleFolder());
  MetricSelection::SetCurrent(SelectionSet::All);
  ScopedScriptedUi ui;  // records the opened report instead of starting a browser
  ombrelle::bench::HeadlessGridHost surface(QSize(1200, 680));
  OwnerGridLogic grid(nullptr, &surface);
  BenchView view;
  PageModel model;
  model.AttachGrid(grid);
  model.SetView(&view);
  model.Start();
  model.TabClicked(kFilesPage);
  ListModel& analyses = model.Combo(PageCombo::Analysis);
  int harbour = -1;
  for (int i = 0; i < analyses.ListCount(); ++i)
    if (analyses.List(i).startsWith(QStringLiteral("Harbour"))) harbour = i;
  if (harbour < 0) {
    state.SkipWithError("no Harbour database in the sample folder");
    return;
  }
  model.ChooseComboItem(PageCombo::Analysis, harbour);
  model.TabClicked(kProceduresPage);
  NoDialogs dialogs;
  ChartStatusPictures pictures;
  ReportCommands commands(model, dialogs, pictures);
  for (auto _ : state) {
    commands.ChartsReport();
    state.PauseTiming();
    if (ui.ui.opened.empty()) {
      state.SkipWithError("no report written");
      break;
    }
    state.counters["bytes"] = static_cast<double>(QFile(ui.ui.opened.back()).size());
    QFile::remove(ui.ui.opened.back());
    ui.ui.opened.clear();
    state.ResumeTiming();
  }
  state.counters["columns"] = model.Pages(kProceduresPage).ColumnCount;
  state.counters["rows"] = model.Pages(kProceduresPage).Rows;
}
BENCHMARK(BM_ChartsReport_HarbourProcedures)->Unit(benchmark::kMillisecond);

void BM_ChartsReport_XmlExportReference(benchmark::State& state) {
  QTemporaryDir settings;
  SetSettingsFilePath(settings.filePath(QStringLiteral("settings.ini")));
  SaveSetting(QStringLiteral("Databases"), QStringLiteral("Path1"), SampleFolder());
  MetricRead reader;
  int database = 0;
  for (int i = 1; i <= reader.DatabaseCount(); ++i) {
    const DatabaseEntry& entry = reader.Database(i);
    if (entry.Title.startsWith(QStringLiteral("Harbour")) && entry.Latest) database = i;
  }
  if (database == 0) {
    state.SkipWithError("sample databases missing");
    return;
  }
  const QString input = reader.Database(database).Path;
  QTemporaryDir out;
  for (auto _ : state) {
    QString output = out.filePath(QStringLiteral("harbour.xml"));
    QVZ2XML exporter;
    benchmark::DoNotOptimize(exporter.SaveQVZ2XML(input, output, false));
  }
}
BENCHMARK(BM_ChartsReport_XmlExportReference)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
