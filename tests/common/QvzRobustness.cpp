#include "common/QvzRobustness.h"

#include <algorithm>
#include <set>
#include <vector>

#include <QStringList>

#include "core/MetricDefinitions.h"
#include "core/QVZRead.h"
#include "stats/CStats.h"

namespace ombrelle::test {

ReadAllTally ReadWholeDatabase(QVZRead& reader, bool thorough) {
  ReadAllTally tally;
  static const MetricDefinitions definitions;

  QStringList firstNames;
  for (int metricClass = 0; metricClass < kMetricClassCount; ++metricClass) {
    QStringList names;
    std::vector<int32_t> order;
    reader.GetRowHeaders(metricClass, names, order);
    tally.rowNames += static_cast<int>(names.size());
    tally.mostRows = std::max<int64_t>(tally.mostRows, names.size());
    firstNames.append(names.isEmpty() ? QString() : names.first());
    QString file;
    reader.GetItemFile(metricClass, 1, file);
    reader.GetItemFile(metricClass, reader.GetClassSize(metricClass), file);
  }

  // Every catalogue metric, then the stored ids the catalogue does not know.
  static const std::set<MetricId> catalogue = [] {
    std::set<MetricId> ids;
    for (MetricId id = kFirstMetricId; id <= kLastMetricId; ++id)
      if (definitions.MetricSupported(id)) ids.insert(id);
    return ids;
  }();
  std::set<MetricId> metrics = catalogue;
  for (int metricClass = 0; metricClass < kMetricClassCount; ++metricClass)
    for (int32_t id : reader.Slot(metricClass).MetricIds) metrics.insert(id);

  for (MetricId id : metrics) {
    CStats stats;
    if (reader.ReadSeries(id, stats, 0)) {
      ++tally.seriesRead;
      tally.valuesRead += stats.count();
      tally.longestColumn = std::max<int64_t>(tally.longestColumn, stats.count());
      if (stats.count() > 0) {
        stats.CalcStatsQuick();
        (void)stats.ValueAtIndex(stats.count());
      }
    }
    if (!thorough && !reader.MetricStored(id)) continue;
    const int metricClass = MetricDefinitions::GetMetricClass(id);
    CStats expected;
    (void)reader.ReadSeries(id, expected, reader.GetClassSize(metricClass));
    double value = 0;
    (void)reader.ReadValueForRow(id, firstNames.value(metricClass), value);
  }

  reader.LoadSeriesHeaders();
  for (MetricId id : metrics) {
    if (!thorough && MetricDefinitions::GetMetricClass(id) != ClassProject) continue;
    double value = 0;
    if (reader.ReadSingleValue(id, value)) ++tally.singleValues;
  }
  return tally;
}

QvzFixture RobustnessSampleVersion3() {
  QvzFixture f;
  f.flags = 2;  // UTF-8, rows not sorted
  ClassSpec& project = f.AddClass(0, 1);
  project.rowNames = {QStringLiteral("Sample")};
  project.series.push_back(SeriesSpec::Stored(1002, 2, {1200}));
  project.series.push_back(SeriesSpec::Stored(1009, 1, {700}));
  project.series.push_back(SeriesSpec::Stored(1100, 3, {90}));
  ClassSpec& files = f.AddClass(1, 3);
  files.rowNames = {QStringLiteral("b.c"), QStringLiteral("A.c"), QStringLiteral("c.h")};
  files.series.push_back(SeriesSpec::Stored(2012, 2, {10, 600, 0}));
  files.series.push_back(SeriesSpec::Constant(2013, 3, 2));
  files.series.push_back(SeriesSpec::Stored(2014, 0, {8, 0.5, -1}));
  files.series.push_back(SeriesSpec::Stored(2100, 3, {5, 7, 0}));
  SeriesSpec unusable = SeriesSpec::Stored(2101, 3, {1, 2, 3});
  unusable.valueKind = 9;
  files.series.push_back(unusable);
  ClassSpec& procs = f.AddClass(3, 2);
  procs.rowNames = {QStringLiteral("main"), QStringLiteral("räkna")};
  procs.series.push_back(SeriesSpec::Stored(4080, 1, {1, 70000}));
  procs.series.push_back(SeriesSpec::Stored(4999, 3, {4, 5}));  // not in the catalogue
  ClassSpec& vars = f.AddClass(4, 0);
  vars.series.push_back(SeriesSpec::Constant(5001, 0, 0));
  return f;
}

QvzFixture RobustnessSampleVersion2() {
  QvzFixture f;
  f.version = 2.0f;
  f.flags = 1;
  ClassSpec& files = f.AddClass(1, 2);
  files.rowNames = {QStringLiteral("a.c"), QStringLiteral("b.c")};
  files.fileNrs = {1, 2};
  files.series.push_back(SeriesSpec::Stored(2012, 0, {3, 4}));
  ClassSpec& procs = f.AddClass(3, 2);
  procs.rowNames = {QStringLiteral("f"), QStringLiteral("g")};
  procs.fileNrs = {2, 1};
  procs.series.push_back(SeriesSpec::Stored(4080, 0, {1, 2}));
  return f;
}

}  // namespace ombrelle::test
