// Cost of turning values into cell text: the grid asks for every visible cell
// on each paint.
#include <benchmark/benchmark.h>

#include <vector>

#include <QString>

#include "support/FormatNum.h"

namespace {

std::vector<double> Values() {
  std::vector<double> values;
  for (int i = 0; i < 1024; ++i) values.push_back((i - 100) * 1234.5678 / (1 + i % 17));
  return values;
}

void BM_FormatMetric(benchmark::State& state) {
  const int format = static_cast<int>(state.range(0));
  const std::vector<double> values = Values();
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(ombrelle::FormatMetric(format, values[i++ & 1023]));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_FormatMetric)->Arg(0)->Arg(2)->Arg(5)->Arg(8)->Arg(10);

// The toolkit's own number-to-text conversion with two decimals, on the same
// values: the floor for any formatting of a cell.
void BM_FormatMetric_QStringNumberReference(benchmark::State& state) {
  const std::vector<double> values = Values();
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(QString::number(values[i++ & 1023], 'f', 2));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_FormatMetric_QStringNumberReference);

}  // namespace

BENCHMARK_MAIN();
