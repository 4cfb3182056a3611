#include "SampleWriter.h"

#include <QDir>
#include <QFile>

#include "SampleGenerator.h"
#include "core/MetricSave.h"
#include "core/MetricSaveFields.h"
#include "stats/CStats.h"

namespace ombrelle::samples {

namespace {

// Puts the day of the analysis into SavedDate and stamps the checksum anew.
bool DateTheSave(const QString& path, double analysisDate) {
  QFile file(path);
  if (!file.open(QIODevice::ReadWrite)) return false;
  const QByteArray bytes = file.read(kHeaderSize);
  if (bytes.size() != kHeaderSize) return false;
  DatabaseHeader header = DatabaseHeader::Decode(bytes.constData());
  SetBlankPadded(header.SavedDate, DateToIsoText(analysisDate));
  StampChecksum(header, file.size());
  return file.seek(0) && file.write(header.Encode()) == kHeaderSize;
}

}  // namespace

bool WriteSample(const SampleDatabase& db, const QString& path) {
  {
    MetricSave save;
    if (!save.SaveDatabase(path, db.Title, db.Project, db.AnalysisDate)) return false;
    for (const SampleTable& table : db.Tables) {
      save.AddClass(table.ClassNr, table.RowCount(), table.Names);
      for (const SampleSeries& series : table.Series) save.AddMetricToClass(series.Id);
      save.ClassDone();
    }
    if (!save.SaveClasses()) return false;
    for (const SampleTable& table : db.Tables) {
      for (const SampleSeries& series : table.Series) {
        CStats stats;
        stats.Init(static_cast<int32_t>(series.Values.size()));
        for (double v : series.Values) stats.AddValue(v);
        if (!save.SaveSeries(stats)) return false;
      }
    }
    if (!save.Close()) return false;
  }
  return DateTheSave(path, db.AnalysisDate);
}

QStringList WriteAllSamples(const QString& folder) {
  QDir dir(folder);
  if (!dir.mkpath(QStringLiteral("."))) return {};
  for (const QString& old : dir.entryList({QStringLiteral("*.qvz")}, QDir::Files)) dir.remove(old);
  QStringList written;
  for (const SampleProject& project : SampleProjects()) {
    const SampleGenerator generator(project);
    for (int save = 0; save < static_cast<int>(project.Saves.size()); ++save) {
      const SampleDatabase db = generator.Generate(save);
      const QString path = dir.filePath(db.FileName);
      if (!WriteSample(db, path)) return {};
      written << path;
    }
  }
  return written;
}

}  // namespace ombrelle::samples
