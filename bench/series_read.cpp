// Reading values: every series of a database of 200 series x 100,000 rows,
// against one fread of the same bytes, and a project summary served from a
// series header alone.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include <QFile>
#include <QTemporaryDir>

#include "core/QVZFormat.h"
#include "core/QVZRead.h"

using namespace ombrelle;

namespace {

constexpr int kSeries = 200;
constexpr int kRows = 100000;
constexpr MetricId kFirstFileMetric = 2000;  // ids 2000..2199, so STMT (2100) is among them

// One class (files) with kSeries double series of kRows values.
QByteArray BuildDatabase() {
  DatabaseHeader header;
  std::memcpy(header.Magic.data(), kQvzMagic, 8);
  header.Version = 3.0f;
  header.Flags = kFlagSorted | kFlagUtf8;
  header.ClassCount = 1;
  std::memcpy(header.AnalysisStamp.data(), "20240131120000", 14);
  QByteArray out = header.Encode();
  out += TQVZMetricClass{ClassFile, kSeries, kRows}.Encode();
  for (int s = 0; s < kSeries; ++s) PutInt32(out, kFirstFileMetric + s);
  QByteArray names;
  for (int r = 1; r <= kRows; ++r) {
    if (r > 1) names.append('\0');
    names += "file" + QByteArray::number(r) + ".c";
  }
  out += RowBlockHead{static_cast<int32_t>(names.size()), kRowEncodingUtf8, 0}.Encode();
  out += names;
  QByteArray values;
  values.reserve(kRows * 8);
  double sum = 0;
  for (int r = 0; r < kRows; ++r) {
    PutDouble(values, r * 0.5);
    sum += r * 0.5;
  }
  SeriesHeader series;
  series.Count = kRows;
  series.Mean = sum / kRows;
  series.Max = (kRows - 1) * 0.5;
  series.ValueSize = 8;
  for (int s = 0; s < kSeries; ++s) {
    out += series.Encode();
    out += values;
  }
  return out;
}

// The database, written once for all benchmarks.
struct Database {
  QTemporaryDir dir;
  QString path;
  qint64 size = 0;
  Database() {
    path = dir.filePath("series.qvz");
    const QByteArray bytes = BuildDatabase();
    QFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size()) size = bytes.size();
  }
};

Database& TheDatabase() {
  static Database database;
  return database;
}

bool OpenReader(QVZRead& reader, benchmark::State& state) {
  QString errorText;
  if (TheDatabase().size == 0 || !reader.Opendatabase(TheDatabase().path, errorText)) {
    state.SkipWithError("cannot open the database");
    return false;
  }
  return true;
}

// Open, then read every series. With argument 1 all columns are kept, as a
// page of the table keeps them, so the values land in 160 MB of fresh memory
// as they do with the single fread; with 0 each column is dropped at once.
void BM_ReadEverySeries(benchmark::State& state) {
  const bool keep = state.range(0) == 1;
  // The 160 MB database is written on first use: not inside the timed loop.
  if (TheDatabase().size == 0) {
    state.SkipWithError("cannot write the database");
    return;
  }
  for (auto _ : state) {
    QVZRead reader;
    if (!OpenReader(reader, state)) return;
    std::vector<CStats> columns(keep ? kSeries : 1);
    for (int s = 0; s < kSeries; ++s) {
      CStats& column = columns[keep ? s : 0];
      if (!reader.ReadSeries(kFirstFileMetric + s, column, kRows)) {
        state.SkipWithError("a series did not read");
        return;
      }
      benchmark::DoNotOptimize(column.ValueAtIndex(kRows));
    }
  }
  state.SetBytesProcessed(state.iterations() * TheDatabase().size);
  state.SetLabel(keep ? "columns kept" : "each column dropped");
}

// One fread of the whole file: with argument 1 into a buffer allocated for
// each read (fresh memory, like kept columns), with 0 into one buffer reused.
void BM_ReadEverySeries_FreadReference(benchmark::State& state) {
  const bool fresh = state.range(0) == 1;
  const auto size = static_cast<size_t>(TheDatabase().size);
  std::unique_ptr<char[]> reused(fresh ? nullptr : new char[size]);
  const QByteArray name = QFile::encodeName(TheDatabase().path);
  for (auto _ : state) {
    std::unique_ptr<char[]> buffer(fresh ? new char[size] : nullptr);
    char* into = fresh ? buffer.get() : reused.get();
    std::FILE* file = std::fopen(name.constData(), "rb");
    if (!file || std::fread(into, 1, size, file) != size) {
      if (file) std::fclose(file);
      state.SkipWithError("fread failed");
      return;
    }
    std::fclose(file);
    benchmark::DoNotOptimize(into[size - 1]);
  }
  state.SetBytesProcessed(state.iterations() * TheDatabase().size);
  state.SetLabel(fresh ? "fresh buffer" : "buffer reused");
}

// STMT of the project (1100) is the sum of the files' STMT (2100): one
// 76-byte header read, and the file is closed again after each value.
void BM_ReadSingleValueSummary(benchmark::State& state) {
  QVZRead reader;
  if (!OpenReader(reader, state)) return;
  if (state.range(0) == 1 && !reader.LoadSeriesHeaders()) {
    state.SkipWithError("headers did not load");
    return;
  }
  for (auto _ : state) {
    double value = 0;
    if (!reader.ReadSingleValue(1100, value)) {
      state.SkipWithError("no value");
      return;
    }
    benchmark::DoNotOptimize(value);
  }
  state.SetLabel(state.range(0) == 1 ? "headers loaded" : "header read from the file");
}

}  // namespace

BENCHMARK(BM_ReadEverySeries)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadEverySeries_FreadReference)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadSingleValueSummary)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
