// Costs of drawing charts against plain references on the same data: a bar chart of 100,000
// values against 100,000 lines painted into an image, and the class computations of the
// histogram and the distribution of 1,000,000 values against sorting those values.

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <random>
#include <vector>

#include "chart/ZelmChart.h"
#include "stats/CStats.h"

using namespace ombrelle;

namespace {

const std::vector<double>& RandomValues(int n) {
  static std::vector<double> values;
  if (static_cast<int>(values.size()) != n) {
    std::mt19937_64 random(2024);
    std::lognormal_distribution<double> skewed(3.0, 1.0);  // metric values lean to the left
    values.resize(n);
    for (double& v : values) v = std::floor(skewed(random));
  }
  return values;
}

CStats SeriesOf(const std::vector<double>& values) {
  CStats s;
  s.Init(static_cast<std::int32_t>(values.size()));
  for (double v : values) s.AddValueQuick(v);
  s.CalcStats();
  s.DataType = 1;
  return s;
}

void DrawChart(benchmark::State& state, int type) {
  ZelmChart chart;
  chart.SetChartType(type);
  chart.SetData({SeriesOf(RandomValues(static_cast<int>(state.range(0))))});
  chart.Title = QStringLiteral("Benchmark");
  for (auto _ : state) {
    chart.Draw(false);
    benchmark::ClobberMemory();
  }
}

// Records a bar chart; above 100 values every bar is one line.
void BM_ChartBars_Draw(benchmark::State& state) { DrawChart(state, 0); }
BENCHMARK(BM_ChartBars_Draw)->Arg(100000)->Unit(benchmark::kMillisecond);

// 100,000 vertical lines painted with QPainter into an image of the chart's size on screen.
void BM_ChartBars_QPainterLinesReference(benchmark::State& state) {
  const std::vector<double>& values = RandomValues(static_cast<int>(state.range(0)));
  QImage image(1200, 900, QImage::Format_RGB32);
  for (auto _ : state) {
    QPainter painter(&image);
    painter.setPen(QPen(Qt::blue, 2));
    const double step = 1100.0 / values.size();
    for (std::size_t i = 0; i < values.size(); ++i) {
      const double x = 50 + i * step;
      painter.drawLine(QPointF(x, 850), QPointF(x, 850 - std::min(values[i], 800.0)));
    }
    painter.end();
    benchmark::DoNotOptimize(image.constBits());
  }
}
BENCHMARK(BM_ChartBars_QPainterLinesReference)->Arg(100000)->Unit(benchmark::kMillisecond);

// Histogram: equal-share classes from order statistics.
void BM_ChartClasses_Histogram(benchmark::State& state) { DrawChart(state, 1); }
BENCHMARK(BM_ChartClasses_Histogram)->Arg(1000000)->Unit(benchmark::kMillisecond);

// Distribution: equal-width classes counted, with the tail past the 0.9 quantile joined.
void BM_ChartClasses_Distribution(benchmark::State& state) { DrawChart(state, 2); }
BENCHMARK(BM_ChartClasses_Distribution)->Arg(1000000)->Unit(benchmark::kMillisecond);

// A copy of the values sorted with std::sort.
void BM_ChartClasses_SortReference(benchmark::State& state) {
  const std::vector<double>& values = RandomValues(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    std::vector<double> copy = values;
    std::sort(copy.begin(), copy.end());
    benchmark::DoNotOptimize(copy.data());
  }
}
BENCHMARK(BM_ChartClasses_SortReference)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication app(argc, argv);  // fonts for text measurement
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
