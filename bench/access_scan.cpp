// The list of databases and the all-files view over 1,000 saves: the scan
// reads headers and checksums only, and the view reads every series header
// once, so a project metric per file needs no value bytes. The plain loop
// that reads the first 554 bytes of each file is the floor to compare with.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "core/MetricRead.h"
#include "core/MetricSave.h"
#include "support/DateValue.h"
#include "support/SettingsStore.h"

using namespace ombrelle;

namespace {

constexpr int kDatabases = 1000;
constexpr int kProjects = 10;
constexpr int kProcedures = 300;
const std::vector<int32_t> kProjectMetrics = {1002, 1009, 1010, 1011, 1015, 1019, 1200};
const std::vector<int32_t> kProcedureMetrics = {4001, 4012, 4013, 4014};

// A folder of kDatabases saves of kProjects projects, made once, with the
// settings in a file of its own so that the user's search paths stay as
// they are.
struct Corpus {
  QTemporaryDir dir;
  QString folder;
  QStringList files;
  qint64 bytes = 0;

  Corpus() {
    SetSettingsFilePath(dir.filePath(QStringLiteral("settings.ini")));
    folder = dir.filePath(QStringLiteral("db"));
    QDir().mkpath(folder);
    QStringList procedures;
    for (int r = 1; r <= kProcedures; ++r) procedures.append(QStringLiteral("Proc%1").arg(r));
    for (int i = 0; i < kDatabases; ++i) {
      const QString path = folder + QStringLiteral("/save%1.qvz").arg(i, 4, 10, QLatin1Char('0'));
      const int project = i % kProjects;
      MetricSave save;
      save.SaveDatabase(path, QStringLiteral("Save %1").arg(i),
                        QStringLiteral("project%1.vbp").arg(project),
                        DateSerial(2020, 1, 1) + i / kProjects);
      save.AddClass(0, 1, {QStringLiteral("Save %1").arg(i)});
      for (int32_t id : kProjectMetrics) save.AddMetricToClass(id);
      save.ClassDone();
      save.AddClass(3, kProcedures, procedures);
      for (int32_t id : kProcedureMetrics) save.AddMetricToClass(id);
      save.ClassDone();
      save.SaveClasses();
      for (size_t m = 0; m < kProjectMetrics.size(); ++m) {
        CStats stats;
        stats.Init(1);
        stats.AddValue(1000.0 + i + static_cast<double>(m));
        save.SaveSeries(stats);
      }
      for (size_t m = 0; m < kProcedureMetrics.size(); ++m) {
        CStats stats;
        stats.Init(kProcedures);
        for (int r = 0; r < kProcedures; ++r) stats.AddValue(std::fmod(r * 7.25 + i + m, 400.0));
        save.SaveSeries(stats);
      }
      save.Close();
      files.append(path);
      bytes += QFileInfo(path).size();
    }
  }
};

Corpus& TheCorpus() {
  static Corpus corpus;
  return corpus;
}

// Bytes this process has passed through read calls so far (Linux); -1 elsewhere.
qint64 BytesRead() {
  QFile io(QStringLiteral("/proc/self/io"));
  if (!io.open(QIODevice::ReadOnly)) return -1;
  for (const QByteArray& line : io.readAll().split('\n')) {
    if (line.startsWith("rchar:")) return line.mid(6).trimmed().toLongLong();
  }
  return -1;
}

void BM_ScanFolder(benchmark::State& state) {
  Corpus& corpus = TheCorpus();
  qint64 read = 0;
  for (auto _ : state) {
    const qint64 before = BytesRead();
    MetricRead reader;
    read = BytesRead() - before;
    if (reader.DatabaseCount() != kDatabases) state.SkipWithError("databases missing");
    benchmark::DoNotOptimize(reader.DatabaseCount());
  }
  state.counters["bytes_read_per_file"] = static_cast<double>(read) / kDatabases;
  state.counters["file_bytes_per_file"] = static_cast<double>(corpus.bytes) / kDatabases;
}
BENCHMARK(BM_ScanFolder)->Unit(benchmark::kMillisecond);

void BM_ScanThenAllFilesView(benchmark::State& state) {
  TheCorpus();
  int metrics = 0;
  qint64 read = 0;
  for (auto _ : state) {
    const qint64 before = BytesRead();
    MetricRead reader;
    reader.SetDataMode(DataModes::AllFiles, 0, 0);
    metrics = 0;
    for (MetricId id = 1000; id < 2000; ++id) {
      if (!reader.Definitions().MetricSupported(id) || !reader.MetricAvailable(id)) continue;
      CStats values = reader.GetValues(id);
      benchmark::DoNotOptimize(values.Mean);
      ++metrics;
    }
    read = BytesRead() - before;
    if (reader.IncludedCount() != kDatabases) state.SkipWithError("view incomplete");
  }
  state.counters["metrics"] = metrics;
  state.counters["bytes_read_per_file"] = static_cast<double>(read) / kDatabases;
}
BENCHMARK(BM_ScanThenAllFilesView)->Unit(benchmark::kMillisecond);

void BM_ScanFolder_PlainHeaderLoopReference(benchmark::State& state) {
  Corpus& corpus = TheCorpus();
  char header[kHeaderSize];
  for (auto _ : state) {
    qint64 total = 0;
    for (const QString& path : corpus.files) {
      QFile file(path);
      if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) continue;
      total += file.read(header, kHeaderSize);
    }
    benchmark::DoNotOptimize(total);
  }
}
BENCHMARK(BM_ScanFolder_PlainHeaderLoopReference)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
