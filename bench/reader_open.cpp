// Time to open a database: header checks plus the walk over every series
// header. The walk seeks over the values, so the cost should follow the number
// of series and hardly the number of rows.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>

#include <QFile>
#include <QTemporaryDir>

#include "core/QVZFormat.h"
#include "core/QVZRead.h"

using namespace ombrelle;

namespace {

// A version 3 file with `seriesPerClass` double series in each of the five
// classes, every class with `rows` rows named "r1", "r2", ...
QByteArray BuildDatabase(int seriesPerClass, int rows) {
  DatabaseHeader header;
  std::memcpy(header.Magic.data(), kQvzMagic, 8);
  header.Version = 3.0f;
  header.Flags = kFlagSorted | kFlagUtf8;
  header.ClassCount = kMetricClassCount;
  QByteArray out = header.Encode();
  for (int c = 0; c < kMetricClassCount; ++c)
    out += TQVZMetricClass{c, seriesPerClass, rows}.Encode();
  for (int c = 0; c < kMetricClassCount; ++c)
    for (int s = 0; s < seriesPerClass; ++s) PutInt32(out, 1000 + c * 1000 + s);
  QByteArray names;
  for (int r = 1; r <= rows; ++r) {
    if (r > 1) names.append('\0');
    names += "r" + QByteArray::number(r);
  }
  for (int c = 0; c < kMetricClassCount; ++c) {
    out += RowBlockHead{static_cast<int32_t>(names.size()), kRowEncodingUtf8, 0}.Encode();
    out += names;
  }
  SeriesHeader series;
  series.Count = rows;
  series.ValueSize = 8;
  QByteArray values;
  for (int r = 0; r < rows; ++r) PutDouble(values, r * 0.5);
  for (int i = 0; i < kMetricClassCount * seriesPerClass; ++i) {
    out += series.Encode();
    out += values;
  }
  return out;
}

void BM_OpenDatabase(benchmark::State& state) {
  const int seriesPerClass = static_cast<int>(state.range(0));
  const int rows = static_cast<int>(state.range(1));
  QTemporaryDir dir;
  const QString path = dir.filePath("bench.qvz");
  const QByteArray bytes = BuildDatabase(seriesPerClass, rows);
  {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
      state.SkipWithError("cannot write the database");
      return;
    }
  }
  for (auto _ : state) {
    QVZRead reader;
    QString errorText;
    if (!reader.Opendatabase(path, errorText)) {
      state.SkipWithError(errorText.toStdString().c_str());
      return;
    }
    benchmark::DoNotOptimize(reader.Slot(4).SeriesPositions.back());
  }
  state.counters["series"] = kMetricClassCount * seriesPerClass;
  state.counters["file_MB"] = bytes.size() / 1e6;
  state.counters["series/s"] = benchmark::Counter(kMetricClassCount * seriesPerClass,
                                                  benchmark::Counter::kIsIterationInvariantRate);
}

// The least any walk must do on the same file: open it, read the header and
// the class table, then seek to every series header and read its 76 bytes,
// with plain stdio and the positions known in advance.
void BM_OpenDatabase_HeaderReadsReference(benchmark::State& state) {
  const int seriesPerClass = static_cast<int>(state.range(0));
  const int rows = static_cast<int>(state.range(1));
  QTemporaryDir dir;
  const QString path = dir.filePath("bench.qvz");
  const QByteArray bytes = BuildDatabase(seriesPerClass, rows);
  {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
      state.SkipWithError("cannot write the database");
      return;
    }
  }
  long namesSize = rows > 0 ? rows - 1 : 0;  // the NUL separators
  for (int r = 1; r <= rows; ++r) namesSize += 1 + QByteArray::number(r).size();
  const long firstSeries = kHeaderSize +
                           kMetricClassCount * (kClassRecordSize + 4L * seriesPerClass) +
                           kMetricClassCount * (kRowBlockHeadSize + namesSize);
  const long seriesSize = kSeriesHeaderSize + 8L * rows;
  const QByteArray name = QFile::encodeName(path);
  char buffer[kHeaderSize + kMetricClassCount * kClassRecordSize];
  for (auto _ : state) {
    std::FILE* file = std::fopen(name.constData(), "rb");
    if (!file || std::fread(buffer, 1, sizeof buffer, file) != sizeof buffer) {
      if (file) std::fclose(file);
      state.SkipWithError("fread failed");
      return;
    }
    for (long s = 0; s < kMetricClassCount * seriesPerClass; ++s) {
      std::fseek(file, firstSeries + s * seriesSize, SEEK_SET);
      if (std::fread(buffer, 1, kSeriesHeaderSize, file) != kSeriesHeaderSize) break;
    }
    std::fclose(file);
    if (GetInt32(buffer) != rows) {  // the last header read is a series header
      state.SkipWithError("series positions do not match the file");
      return;
    }
  }
  state.counters["series/s"] = benchmark::Counter(kMetricClassCount * seriesPerClass,
                                                  benchmark::Counter::kIsIterationInvariantRate);
}

}  // namespace

BENCHMARK(BM_OpenDatabase)
    ->Args({200, 10})
    ->Args({200, 1000})
    ->Args({200, 10000})
    ->Args({2000, 10})
    ->Args({2000, 1000})
    ->Args({20000, 10})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenDatabase_HeaderReadsReference)
    ->Args({200, 10})
    ->Args({200, 1000})
    ->Args({200, 10000})
    ->Args({2000, 10})
    ->Args({2000, 1000})
    ->Args({20000, 10})
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
