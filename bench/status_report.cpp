// The project status report of the largest sample (the latest save of
// "Harbour", with its pictures) against the XML export of the same database
// in the same run, which reads every value of every class. The report reads
// a few dozen columns and draws six charts, so it should take a fraction of
// the export's time.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QTemporaryDir>

#include "core/MetricRead.h"
#include "core/QVZ2XML.h"
#include "reports/StatusPictures.h"
#include "reports/StatusReport.h"
#include "support/ScriptedUiServices.h"
#include "support/SettingsStore.h"

namespace {

using namespace ombrelle;

QString SampleFolder() {
  const QByteArray named = qgetenv("OMBRELLE_SAMPLES");
  if (!named.isEmpty()) return QString::fromLocal8Bit(named);
  return QCoreApplication::applicationDirPath() + QStringLiteral("/sample");
}

// The latest save of Harbour in a reader of the samples.
int LargestSample(const MetricRead& reader) {
  int found = 0;
  for (int i = 1; i <= reader.DatabaseCount(); ++i) {
    const DatabaseEntry& entry = reader.Database(i);
    if (entry.Title.startsWith(QStringLiteral("Harbour")) && entry.Latest) found = i;
  }
  return found;
}

struct SampleSetup {
  SampleSetup() {
    SetSettingsFilePath(settings.filePath(QStringLiteral("settings.ini")));
    SaveSetting(QStringLiteral("Databases"), QStringLiteral("Path1"), SampleFolder());
  }
  QTemporaryDir settings;
  ScopedScriptedUi ui;  // records the opened report instead of starting a browser
};

void BM_StatusReport_Harbour(benchmark::State& state) {
  SampleSetup setup;
  MetricRead reader;
  const int database = LargestSample(reader);
  if (database == 0) {
    state.SkipWithError("sample databases missing");
    return;
  }
  ChartStatusPictures pictures;
  for (auto _ : state) {
    const QString name = WriteStatusReport(reader, database, 0, pictures);
    benchmark::DoNotOptimize(name);
    state.PauseTiming();
    QFile::remove(name);
    state.ResumeTiming();
  }
}
BENCHMARK(BM_StatusReport_Harbour)->Unit(benchmark::kMillisecond);

void BM_StatusReport_XmlExportReference(benchmark::State& state) {
  SampleSetup setup;
  MetricRead reader;
  const int database = LargestSample(reader);
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
BENCHMARK(BM_StatusReport_XmlExportReference)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
