// Switching the main window to the procedures page of the largest sample
// (the latest save of "Harbour") and painting its first screen: the page is
// read afresh at every entry, the grid laid out and every visible cell asked
// of the model. The class page is entered between two runs, untimed, so that
// each run starts from another page as a user's click would.
#include <cstdlib>
#include <memory>

#include <benchmark/benchmark.h>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QRegion>
#include <QTemporaryDir>

#include "HeadlessGridHost.h"
#include "core/MetricRead.h"
#include "grid/OwnerGridHost.h"
#include "grid/OwnerGridLogic.h"
#include "limits/MetricSelection.h"
#include "shell/PageModel.h"
#include "support/SettingsStore.h"

namespace {

using namespace ombrelle;

constexpr int kFilesPage = 3;
constexpr int kClassesPage = 4;
constexpr int kProceduresPage = 5;

using Surface = ombrelle::bench::HeadlessGridHost;

// The window around the grid, 1200 pixels wide.
class BenchView : public PageView {
 public:
  int GridWidthPixels() const override { return 1200; }
};

QString SampleFolder() {
  const QByteArray named = qgetenv("OMBRELLE_SAMPLES");
  if (!named.isEmpty()) return QString::fromLocal8Bit(named);
  return QCoreApplication::applicationDirPath() + QStringLiteral("/sample");
}

void BM_SwitchToHarbourProcedures(benchmark::State& state) {
  QTemporaryDir settings;
  SetSettingsFilePath(settings.filePath(QStringLiteral("settings.ini")));
  SaveSetting(QStringLiteral("Databases"), QStringLiteral("Path1"), SampleFolder());
  // Every metric a column: the widest page there is.
  MetricSelection::SetCurrent(SelectionSet::All);

  // About 40 rows of 15 columns fit on this surface.
  Surface surface(QSize(1200, 680));
  OwnerGridLogic grid(nullptr, &surface);
  BenchView view;
  PageModel model;
  model.AttachGrid(grid);
  model.SetView(&view);
  model.Start();

  // The newest save of Harbour is the largest database of the samples.
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

  QImage image(surface.SurfaceSize(), QImage::Format_RGB32);
  const QRegion everything(QRect(QPoint(0, 0), surface.SurfaceSize()));
  for (auto _ : state) {
    state.PauseTiming();
    model.TabClicked(kClassesPage);
    state.ResumeTiming();
    model.TabClicked(kProceduresPage);
    QPainter painter(&image);
    grid.Redraw(painter, everything);
  }
  const OwnerGridLogic::Range visible = grid.VisibleRange(false);
  state.counters["rows"] = model.Pages(kProceduresPage).Rows;
  state.counters["columns"] = model.Pages(kProceduresPage).ColumnCount;
  state.counters["visible_rows"] = visible.bottom - visible.top + 1;
  state.counters["visible_columns"] = visible.right - visible.left + 1 + grid.FixedColumns();
}
BENCHMARK(BM_SwitchToHarbourProcedures)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  QGuiApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
