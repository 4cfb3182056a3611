// Full repaints of a 1,000,000 x 50 grid while it scrolls: frames per second
// (items_per_second) and cells asked of the owner per frame.
#include <cstdlib>

#include <benchmark/benchmark.h>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QRegion>

#include "HeadlessGridHost.h"
#include "grid/OwnerGridEvents.h"
#include "grid/OwnerGridHost.h"
#include "grid/OwnerGridLogic.h"

namespace {

using ombrelle::OwnerGridLogic;

using Surface = ombrelle::bench::HeadlessGridHost;

// Formats each cell as the main window would: a number with decimals.
class Owner : public ombrelle::OwnerGridEvents {
 public:
  void DataRequest(int row, int column, QString& text, quint32& colour) override {
    ++cells;
    text = QString::number(row * 0.37 + column, 'f', 2);
    if ((row + column) % 17 == 0) colour = 255;
  }
  long long cells = 0;
};

void BM_GridFullRepaintWhileScrolling(benchmark::State& state) {
  const QSize size(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  Surface surface(size);
  Owner owner;
  OwnerGridLogic grid(&owner, &surface);
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPointSize(8);
  grid.SetCellFont(font);
  grid.SetHeaderFont(font);
  grid.SetRows(1000000);
  grid.SetColumns(50);
  grid.SetFixedColumns(1);
  grid.SetSortable(true);
  grid.SetSortColumn(3);
  for (int c = 1; c <= 50; ++c) grid.SetColumnCaption(c, QStringLiteral("Metric %1").arg(c));
  grid.PlaceCursor(10, 3);

  QImage image(size, QImage::Format_RGB32);
  const QRegion all(0, 0, size.width(), size.height());
  long long frames = 0;
  for (auto _ : state) {
    grid.Mouse_Scroll(0, 3, false);
    if (grid.VScroll().value == grid.VScroll().maximum) grid.Mouse_Scroll(0, -1000000, false);
    QPainter painter(&image);
    grid.Redraw(painter, all);
    ++frames;
  }
  state.SetItemsProcessed(frames);
  state.counters["cells_per_frame"] =
      benchmark::Counter(frames ? static_cast<double>(owner.cells) / frames : 0.0);
}
BENCHMARK(BM_GridFullRepaintWhileScrolling)
    ->Args({800, 600})
    ->Args({1600, 1000})
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  QGuiApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
