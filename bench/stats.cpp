// Costs of the statistics series against plain standard-library references on the same data:
// order statistics by selection, the sort index, the moments and the block read of a column.

#include <benchmark/benchmark.h>

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

#include "stats/CStats.h"

using namespace ombrelle;

namespace {

const std::vector<double>& RandomValues(int n) {
  static std::vector<double> values;
  if (static_cast<int>(values.size()) != n) {
    std::mt19937_64 random(12345);
    std::uniform_real_distribution<double> uniform(0.0, 1000.0);
    values.resize(n);
    for (double& v : values) v = uniform(random);
  }
  return values;
}

CStats SeriesOf(const std::vector<double>& values) {
  CStats s;
  s.Init(static_cast<std::int32_t>(values.size()));
  for (double v : values) s.AddValueQuick(v);
  s.CalcStatsQuick();
  return s;
}

// Median, quartiles, Q5 and Q95 as the program reads them for the statistics panel.
void BM_OrderStatistics_CStats(benchmark::State& state) {
  CStats s = SeriesOf(RandomValues(static_cast<int>(state.range(0))));
  for (auto _ : state) {
    state.PauseTiming();
    s.CalcStatsQuick();  // drops the cached results
    state.ResumeTiming();
    benchmark::DoNotOptimize(s.Median() + s.Q1() + s.Q3() + s.Q5() + s.Q95());
  }
}
BENCHMARK(BM_OrderStatistics_CStats)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// The same six order statistics, each by a fresh copy and std::nth_element.
void BM_OrderStatistics_NthElementReference(benchmark::State& state) {
  const std::vector<double>& values = RandomValues(static_cast<int>(state.range(0)));
  const std::int64_t n = static_cast<std::int64_t>(values.size());
  const std::int64_t p1 = (n - 1) / 4 + 1, p5 = (n - 1) / 20 + 1;
  const std::int64_t positions[] = {n / 2, n / 2 + 1, p1, n - p1 + 1, p5, n - p5 + 1};
  for (auto _ : state) {
    double total = 0;
    for (std::int64_t p : positions) {
      std::vector<double> scratch(values);
      std::nth_element(scratch.begin(), scratch.begin() + (p - 1), scratch.end());
      total += scratch[p - 1];
    }
    benchmark::DoNotOptimize(total);
  }
}
BENCHMARK(BM_OrderStatistics_NthElementReference)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);

// The same figures from one full sort of a copy: what selection saves.
void BM_OrderStatistics_SortReference(benchmark::State& state) {
  const std::vector<double>& values = RandomValues(static_cast<int>(state.range(0)));
  const std::int64_t n = static_cast<std::int64_t>(values.size());
  const std::int64_t p1 = (n - 1) / 4 + 1, p5 = (n - 1) / 20 + 1;
  for (auto _ : state) {
    std::vector<double> sorted(values);
    std::sort(sorted.begin(), sorted.end());
    benchmark::DoNotOptimize((sorted[n / 2 - 1] + sorted[n / 2]) / 2 + sorted[p1 - 1] +
                             sorted[n - p1] + sorted[p5 - 1] + sorted[n - p5]);
  }
}
BENCHMARK(BM_OrderStatistics_SortReference)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);

void BM_CalcStats(benchmark::State& state) {
  CStats s = SeriesOf(RandomValues(static_cast<int>(state.range(0))));
  for (auto _ : state) {
    s.CalcStats();
    benchmark::DoNotOptimize(s.Kurtosis);
  }
}
BENCHMARK(BM_CalcStats)->Arg(1000000)->Unit(benchmark::kMillisecond);

// Sort(1) makes the ascending index once per Init; each round works on a fresh copy.
void BM_SortIndex_CStats(benchmark::State& state) {
  const CStats original = SeriesOf(RandomValues(static_cast<int>(state.range(0))));
  for (auto _ : state) {
    state.PauseTiming();
    CStats s = original;
    state.ResumeTiming();
    s.Sort(1);
    benchmark::DoNotOptimize(s.GetOriginalIndex(1));
  }
}
BENCHMARK(BM_SortIndex_CStats)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_SortIndex_StdSortReference(benchmark::State& state) {
  const std::vector<double>& values = RandomValues(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    std::vector<std::int32_t> index(values.size());
    std::iota(index.begin(), index.end(), 1);
    std::sort(index.begin(), index.end(),
              [&values](std::int32_t a, std::int32_t b) { return values[a - 1] < values[b - 1]; });
    benchmark::DoNotOptimize(index.data());
  }
}
BENCHMARK(BM_SortIndex_StdSortReference)->Arg(1000000)->Unit(benchmark::kMillisecond);

// A column file of n doubles, written once and then read from the page cache.
struct ColumnFile {
  QTemporaryDir dir;
  QString path;
  explicit ColumnFile(int n) : path(dir.filePath("column.bin")) {
    QFile file(path);
    if (file.open(QIODevice::WriteOnly)) SeriesOf(RandomValues(n)).Save(file);
  }
};

void BM_Load_CStats(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  ColumnFile column(n);
  QFile file(column.path);
  if (!file.open(QIODevice::ReadOnly)) {
    state.SkipWithError("cannot open the column file");
    return;
  }
  for (auto _ : state) {
    file.seek(0);
    CStats s;
    if (!s.Load(file, n)) state.SkipWithError("Load failed");
    benchmark::DoNotOptimize(s.ValueAtIndex(n));
  }
  state.SetBytesProcessed(state.iterations() * n * 8);
}
BENCHMARK(BM_Load_CStats)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_Load_FreadReference(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  ColumnFile column(n);
  std::FILE* file = std::fopen(column.path.toLocal8Bit().constData(), "rb");
  if (!file) {
    state.SkipWithError("cannot open the column file");
    return;
  }
  for (auto _ : state) {
    std::fseek(file, 0, SEEK_SET);
    auto values = std::make_unique_for_overwrite<double[]>(n);
    if (std::fread(values.get(), 8, n, file) != static_cast<std::size_t>(n))
      state.SkipWithError("fread failed");
    benchmark::DoNotOptimize(values[n - 1]);
  }
  std::fclose(file);
  state.SetBytesProcessed(state.iterations() * n * 8);
}
BENCHMARK(BM_Load_FreadReference)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
