#include "measure/MeasureWriter.h"

#include <algorithm>
#include <cmath>

#include "core/MetricSave.h"
#include "stats/CStats.h"
#include "support/Filename.h"
#include "support/SettingsStore.h"

namespace ombrelle {

namespace {

bool AnyValue(const std::vector<double>& values) {
  return std::any_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); });
}

// The columns of one class that go into the file.
struct StoredClass {
  const MeasuredClass* source = nullptr;
  std::vector<size_t> columns;  // indices into source->metrics
};

}  // namespace

bool MeasureWriter::Write(const MeasuredProject& project, const Header& header, const QString& path,
                          QStringList* notes) {
  std::vector<StoredClass> stored;
  for (const MeasuredClass& measured : project.classes) {
    if (measured.names.isEmpty()) continue;
    StoredClass entry{&measured, {}};
    for (size_t m = 0; m < measured.metrics.size() && m < measured.values.size(); ++m) {
      const std::vector<double>& values = measured.values[m];
      if (values.size() != static_cast<size_t>(measured.names.size())) {
        if (notes)
          *notes << QStringLiteral("metric %1 left out: its values do not match the rows")
                        .arg(measured.metrics[m]);
        continue;
      }
      if (AnyValue(values)) entry.columns.push_back(m);
    }
    stored.push_back(std::move(entry));
  }

  MetricSave save;
  if (!save.SaveDatabase(path, header.title, header.projectFile, header.analysisDate)) return false;
  for (const StoredClass& entry : stored) {
    const MeasuredClass& measured = *entry.source;
    save.AddClass(measured.classNr, static_cast<int32_t>(measured.names.size()), measured.names);
    for (size_t m : entry.columns) save.AddMetricToClass(measured.metrics[m]);
    save.ClassDone();
  }
  if (!save.SaveClasses()) return false;
  for (const StoredClass& entry : stored) {
    for (size_t m : entry.columns) {
      const std::vector<double>& values = entry.source->values[m];
      CStats stats;
      stats.Init(static_cast<int32_t>(values.size()));
      for (double v : values) stats.AddValue(std::isfinite(v) ? v : 0.0);
      if (!save.SaveSeries(stats)) return false;
    }
  }
  return save.Close();
}

QString MeasureWriter::GeneratedPath(const Header& header, const QString& folder) {
  return MetricSave::GenerateDatabasename(header.projectFile, header.analysisDate, folder,
                                          QStringLiteral(".qvz"));
}

QString MeasureWriter::SaveFolder(const QString& fallback) {
  const QString folder = GetSetting(QStringLiteral("Databases"), QStringLiteral("SavePath"));
  return !folder.isEmpty() && FolderExists(folder) ? folder : fallback;
}

}  // namespace ombrelle
