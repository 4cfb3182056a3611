// XML export of a large database: 100,000 procedures with every procedure
// metric of the catalogue (26 stored, 10 derived) and 100,000 files with four
// stored metrics (one a date), 40 columns of 100,000 values in all, against
// writing the same number of bytes through the same buffered stream without
// any formatting (the reference, measured in the same run). Also reports the peak resident memory,
// which must not grow with the export beyond a column and the row names.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <sys/resource.h>

#include "core/QVZ2XML.h"
#include "core/QVZFormat.h"
#include "core/XmlOutputFile.h"

using namespace ombrelle;

namespace {

constexpr int32_t kStoredProcedureMetrics[] = {4001, 4012, 4013, 4014, 4020, 4025, 4030, 4035, 4050,
                                               4051, 4053, 4080, 4081, 4100, 4101, 4120, 4121, 4122,
                                               4140, 4141, 4142, 4143, 4161, 4180, 4200, 4201};
constexpr int32_t kStoredFileMetrics[] = {2001, 2020, 2030, 2031};

long MinorFaults() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_minflt;
}

double PeakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss / 1024.0;  // kilobytes on Linux
}

QByteArray Int32Bytes(int32_t value) {
  QByteArray out(4, '\0');
  for (int i = 0; i < 4; ++i)
    out[i] = static_cast<char>((static_cast<uint32_t>(value) >> (8 * i)) & 0xFF);
  return out;
}

QByteArray RowBlock(const QByteArray& names) {
  return RowBlockHead{static_cast<int32_t>(names.size()), names.isEmpty() ? 0 : kRowEncodingUtf8, 0}
             .Encode() +
         names;
}

// One stored series of `rows` 32-bit values (doubles for the date metric).
void WriteSeries(QFile& file, int32_t metric, int rows) {
  const bool date = metric == 2031;
  QByteArray values;
  values.reserve(rows * (date ? 8 : 4));
  double sum = 0, max = 0;
  for (int r = 0; r < rows; ++r) {
    if (date) {
      const double value = 40000 + (r % 5000) + (r % 24) / 24.0;
      sum += value;
      max = std::max(max, value);
      QByteArray bytes(8, '\0');
      std::memcpy(bytes.data(), &value, 8);
      values += bytes;
    } else {
      const int32_t value = (r * 7 + metric) % (metric == 4025 ? 2000000 : 997) + 1;
      sum += value;
      max = std::max<double>(max, value);
      values += Int32Bytes(value);
    }
  }
  SeriesHeader header;
  header.Count = rows;
  header.Mean = sum / rows;
  header.Min = 1;
  header.Max = max;
  header.ValueSize = date ? 8 : 4;
  header.ValueKind = date ? kValueDouble : kValueInt32;
  file.write(header.Encode());
  file.write(values);
}

// Writes the database piece by piece, so that building it does not raise the
// process's peak memory above what the export itself needs.
bool WriteDatabase(const QString& path, int rows) {
  QFile file(path);
  if (!file.open(QIODevice::ReadWrite | QIODevice::Truncate)) return false;
  DatabaseHeader header;
  std::memcpy(header.Magic.data(), kQvzMagic, 8);
  header.Version = 3.0f;
  header.Flags = kFlagSorted | kFlagUtf8;
  const QByteArray title = "Benchmark project";
  std::memcpy(header.Title.data(), title.constData(), title.size());
  std::memset(header.SavedBy.data(), ' ', header.SavedBy.size());
  std::memcpy(header.SavedDate.data(), "2024-01-31", 10);
  std::memcpy(header.AnalysisDate.data(), "2024-01-31", 10);
  std::memcpy(header.AnalysisStamp.data(), "20240131120000", 14);
  header.ClassCount = 3;
  file.write(header.Encode());
  file.write(TQVZMetricClass{ClassProject, 1, 1}.Encode());
  file.write(TQVZMetricClass{ClassFile, static_cast<int32_t>(std::size(kStoredFileMetrics)), rows}
                 .Encode());
  file.write(TQVZMetricClass{ClassProcedure,
                             static_cast<int32_t>(std::size(kStoredProcedureMetrics)), rows}
                 .Encode());
  file.write(Int32Bytes(1002));
  for (int32_t id : kStoredFileMetrics) file.write(Int32Bytes(id));
  for (int32_t id : kStoredProcedureMetrics) file.write(Int32Bytes(id));

  file.write(RowBlock("Benchmark project"));
  QByteArray files, procedures;
  for (int r = 1; r <= rows; ++r) {
    if (r > 1) {
      files.append('\0');
      procedures.append('\0');
    }
    // Zero-padded numbers keep the names in sorted order, as the flag says.
    const QByteArray number = QByteArray::number(r).rightJustified(6, '0');
    files += "src/module" + number + ".bas";
    procedures += "module" + number + ".bas Procedure_" + number;
  }
  file.write(RowBlock(files));
  file.write(RowBlock(procedures));
  WriteSeries(file, 1002, 1);
  for (int32_t id : kStoredFileMetrics) WriteSeries(file, id, rows);
  for (int32_t id : kStoredProcedureMetrics) WriteSeries(file, id, rows);

  // The checksum depends on the file's length: the header is written again.
  const QByteArray checksum = HeaderChecksum(header, file.size());
  std::memcpy(header.Checksum.data(), checksum.constData(), header.Checksum.size());
  file.seek(0);
  file.write(header.Encode());
  return file.error() == QFile::NoError;
}

struct Database {
  QString path;
  qint64 xmlBytes = 0;  // length of its export, measured by the export benchmark
};

QTemporaryDir& Folder() {
  static QTemporaryDir folder;
  return folder;
}

Database& DatabaseOf(int rows) {
  static std::map<int, Database> databases;
  Database& database = databases[rows];
  if (database.path.isEmpty()) {
    const QString path = Folder().filePath(QStringLiteral("bench%1.qvz").arg(rows));
    if (WriteDatabase(path, rows)) database.path = path;
  }
  return database;
}

void BM_ExportXml(benchmark::State& state) {
  const int rows = static_cast<int>(state.range(0));
  Database& database = DatabaseOf(rows);
  if (database.path.isEmpty()) {
    state.SkipWithError("cannot write the database");
    return;
  }
  const double peakBefore = PeakMegabytes();
  const QString output = Folder().filePath(QStringLiteral("bench%1.xml").arg(rows));
  const long faultsBefore = MinorFaults();
  for (auto _ : state) {
    QVZ2XML exporter;
    QString name = output;
    if (!exporter.SaveQVZ2XML(database.path, name, false)) {
      state.SkipWithError("the export failed");
      return;
    }
    database.xmlBytes = exporter.BytesWritten();
  }
  const double peakAfter = PeakMegabytes();
  state.counters["page_faults"] = benchmark::Counter(
      static_cast<double>(MinorFaults() - faultsBefore), benchmark::Counter::kAvgIterations);
  state.SetBytesProcessed(state.iterations() * database.xmlBytes);
  state.counters["xml_MB"] = database.xmlBytes / 1e6;
  state.counters["peak_MB"] = peakAfter;
  state.counters["peak_growth_MB"] = peakAfter - peakBefore;
}

// The same number of bytes in lines of the export's typical length, through
// the same stream, with nothing to format.
void BM_ExportXml_WriteSameBytesUnformattedReference(benchmark::State& state) {
  const int rows = static_cast<int>(state.range(0));
  const Database& database = DatabaseOf(rows);
  if (database.xmlBytes == 0) {
    state.SkipWithError("run BM_ExportXml first");
    return;
  }
  const std::string line = "   <value display='1,234'>1234.5</value>\r\n";
  const QString output = Folder().filePath(QStringLiteral("plain%1.xml").arg(rows));
  for (auto _ : state) {
    XmlOutputFile out;
    if (!out.Create(output)) {
      state.SkipWithError("cannot create the file");
      return;
    }
    qint64 left = database.xmlBytes;
    while (left >= static_cast<qint64>(line.size())) {
      out.Write(line);
      left -= static_cast<qint64>(line.size());
    }
    out.Write(line.data(), left);
    if (!out.Commit()) {
      state.SkipWithError("the write failed");
      return;
    }
  }
  state.SetBytesProcessed(state.iterations() * database.xmlBytes);
  state.counters["peak_MB"] = PeakMegabytes();
}

BENCHMARK(BM_ExportXml)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_ExportXml_WriteSameBytesUnformattedReference)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);

}  // namespace

int main(int argc, char** argv) {
  // The export scans the search paths of the settings store: point it at an
  // empty one, never the user's.
  static QTemporaryDir home;
  qputenv("HOME", home.path().toLocal8Bit());
  qputenv("XDG_CONFIG_HOME", (home.path() + "/.config").toLocal8Bit());
  qputenv("XDG_DATA_HOME", (home.path() + "/.local").toLocal8Bit());
  qputenv("LC_ALL", "C");
  QCoreApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
