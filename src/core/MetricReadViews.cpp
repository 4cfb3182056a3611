// Views of MetricRead: which databases a view holds, its rows, and the
// columns of values with their trends.

#include "core/MetricRead.h"
#include "core/RowNameSink.h"
#include "stats/MetricFormula.h"
#include "support/Filename.h"

namespace ombrelle {

namespace {

constexpr MetricId kProjectDate = 1000;
constexpr MetricId kDaysBetweenSaves = 1001;
constexpr MetricId kVariableCount = 1207;

bool IsProjectMode(int mode) {
  return mode >= DataModes::ProjectValues && mode <= DataModes::ProjectChangePerMonth;
}

bool IsTrendMode(int mode) {
  return mode >= DataModes::ProjectChange && mode <= DataModes::ProjectChangePerMonth;
}

// Whether every series header of the file is in memory already.
bool HeadersLoaded(const QVZRead& reader) {
  for (int metricClass = 0; metricClass < kMetricClassCount; ++metricClass) {
    const ClassSlot& slot = reader.Slot(metricClass);
    if (slot.Present && slot.SeriesCount16() > 0 && !slot.HeadersLoaded) return false;
  }
  return true;
}

// A column of `n` zeros: what a metric that cannot be read shows.
CStats Zeros(int32_t n) {
  CStats stats;
  stats.Init(n);
  for (int32_t i = 0; i < n; ++i) stats.AddValueQuick(0);
  return stats;
}

}  // namespace

// ---------------------------------------------------------------------------
// Opening and views

bool MetricRead::OpenDatabase2(int database) {
  CloseCurrent();
  if (!ValidDatabase(database)) {
    m_dataState = 0;
    return false;
  }
  auto reader = std::make_unique<QVZRead>();
  QString errorText;
  if (!reader->Opendatabase(Database(database).Path, errorText)) {
    m_dataState = 0;
    return false;
  }
  m_currentReader = std::move(reader);
  m_available.clear();
  m_dataState = 2;
  return true;
}

void MetricRead::CloseCurrent() {
  m_currentReader.reset();
  m_available.clear();
}

void MetricRead::SetDataMode(int mode, int database, int recordClass) {
  m_dataMode = mode;
  m_recordClass = recordClass;
  // The single open file belongs to the one-file view; the other views have
  // rows of their own, which its row names must not replace.
  if (mode != DataModes::OneFile) CloseCurrent();
  ApplyView(mode, database);
}

bool MetricRead::HeadersOnly(int mode) const {
  return (IsProjectMode(mode) && m_recordClass == 0) || mode == DataModes::LatestSaves ||
         mode == DataModes::AllFiles;
}

void MetricRead::ApplyView(int mode, int database) {
  m_dataDatabase = database;
  m_available.clear();
  const bool keyed = IsProjectMode(mode) && ValidDatabase(database);
  const QString key = keyed ? Database(database).Project.toLower() : QString();
  const bool headersOnly = HeadersOnly(mode);
  m_includedCount = 0;
  for (DatabaseEntry& entry : m_databases) {
    bool wanted = false;
    if (IsProjectMode(mode)) {
      wanted = keyed && entry.Project.toLower() == key;
    } else if (mode == DataModes::LatestSaves) {
      wanted = entry.Latest;
    } else if (mode == DataModes::AllFiles) {
      wanted = true;
    } else if (mode == DataModes::NoView) {
      entry.Reader.reset();
    }
    if (!wanted) {
      // The reader stays, with its tables, for the next view.
      entry.Included = false;
      continue;
    }
    if (!FileExists(entry.Path)) {
      // A file removed since the scan is left out quietly: the view has a
      // row less, and the list keeps its entry until the next scan.
      entry.Reader.reset();
      entry.Included = false;
    } else if (entry.Reader) {
      entry.Included = true;
      if (!headersOnly) {
        entry.Included = entry.Reader->EnsureFileOpen();
      } else if (!HeadersLoaded(*entry.Reader)) {
        // A reader of a view by row name has its structure only: one pass
        // over the series headers serves every later single value.
        entry.Included = entry.Reader->LoadSeriesHeaders();
        entry.Reader->CloseDatabaseFile();
      }
    } else {
      auto reader = std::make_unique<QVZRead>();
      QString errorText;
      if (reader->Opendatabase(entry.Path, errorText)) {
        bool ok = true;
        if (headersOnly) {
          ok = reader->LoadSeriesHeaders();
          reader->CloseDatabaseFile();
        }
        if (ok) entry.Reader = std::move(reader);
      }
      entry.Included = entry.Reader != nullptr;
    }
    if (entry.Included && entry.Reader) ++m_includedCount;
  }
}

std::vector<DatabaseEntry*> MetricRead::ViewEntries() {
  std::vector<DatabaseEntry*> entries;
  entries.reserve(static_cast<size_t>(m_includedCount));
  for (DatabaseEntry& entry : m_databases) {
    if (entry.Included && entry.Reader) entries.push_back(&entry);
  }
  return entries;
}

int MetricRead::GridRowToQVZDatabase(int32_t row) const {
  if (row < 1) return 0;
  int32_t seen = 0;
  for (int i = 0; i < DatabaseCount(); ++i) {
    const DatabaseEntry& entry = m_databases[i];
    if (entry.Included && entry.Reader && ++seen == row) return i + 1;
  }
  return 0;
}

// ---------------------------------------------------------------------------
// Rows

int32_t MetricRead::GetClassSize(int metricClass) const {
  if (m_dataState == 0) return 0;
  if (m_dataState == 1) return (metricClass + 1) * 50;
  if (m_dataMode == DataModes::OneFile) {
    return m_currentReader ? m_currentReader->GetClassSize(metricClass) : 0;
  }
  return m_includedCount;
}

void MetricRead::GetRowHeaders(QStringList& names, int metricClass, std::vector<int32_t>& order) {
  names.clear();
  order.clear();
  if (m_dataState == 0) return;
  if (m_dataState == 2) {
    if (metricClass == ClassProject) {
      if (m_dataMode == DataModes::OneFile && m_currentReader &&
          m_currentReader->GetClassSize(ClassProject) == 1) {
        names.append(m_currentReader->Title());
        order.push_back(1);
        return;
      }
      for (DatabaseEntry* entry : ViewEntries()) {
        names.append(entry->Title);
        order.push_back(static_cast<int32_t>(names.size()));
      }
      return;
    }
    if (m_currentReader) {
      m_currentReader->GetRowHeaders(metricClass, names, order);
      return;
    }
  }
  // Made-up rows give the windows a shape when there is nothing to show.
  const int32_t n = GetClassSize(metricClass);
  const QString className = MetricDefinitions::GetMetricClassName(metricClass, false);
  for (int32_t row = 1; row <= n; ++row) {
    names.append(QString::number(row) + u' ' + className);
    order.push_back(row);
  }
}

void MetricRead::ForEachRowName(int metricClass, RowNameSink& sink) {
  // The project class and the made-up rows take the list road of GetRowHeaders.
  if (m_dataState == 2 && m_currentReader && metricClass != ClassProject) {
    m_currentReader->ForEachRowName(metricClass, sink);
    return;
  }
  QStringList names;
  std::vector<int32_t> order;
  GetRowHeaders(names, metricClass, order);
  for (const QString& name : std::as_const(names)) sink.TextName(name);
}

QString MetricRead::GetItemFilename(int metricClass, int32_t row) {
  QString filename;
  if (m_currentReader) m_currentReader->GetItemFile(metricClass, row, filename);
  return filename;
}

// ---------------------------------------------------------------------------
// Columns

bool MetricRead::MetricAvailable(MetricId metric) {
  if (metric == kDaysBetweenSaves && !IsProjectMode(m_dataMode)) return false;
  if (m_dataState == 0) return false;
  if (m_dataState == 1) return m_definitions.MetricSupported(metric);
  // The answer holds for the whole view, and derived metrics ask for their
  // terms again and again: without the memory a view of many databases
  // would ask each database about each term once for every database.
  const auto known = m_available.find(metric);
  if (known != m_available.end()) return known->second;
  m_available[metric] = false;  // a recipe that refers back to itself fails
  bool available = false;
  if (m_dataMode == DataModes::OneFile) {
    available = m_currentReader ? FormulaAvailable(metric, *m_currentReader)
                                : m_definitions.MetricSupported(metric);
  } else {
    for (DatabaseEntry* entry : ViewEntries()) {
      if (FormulaAvailable(metric, *entry->Reader)) {
        available = true;
        break;
      }
    }
  }
  m_available[metric] = available;
  return available;
}

bool MetricRead::FormulaAvailable(MetricId metric, QVZRead& reader) {
  if (reader.MetricStored(metric)) return true;
  // The analysis date of every file answers for the project date and for the
  // days between two saves.
  if (metric == kProjectDate || metric == kDaysBetweenSaves) return true;
  MetricFormula formula;
  if (!m_definitions.GetMetricFormula(metric, formula)) return false;
  if (formula.SummaryMetric != 0) return MetricAvailable(formula.SummaryMetric);
  for (int i = 0; i <= formula.StepCount && i < static_cast<int>(formula.Terms.size()); ++i) {
    const MetricId term = formula.Terms[i];
    if (term > 0 && !MetricAvailable(term)) return false;
  }
  return true;
}

CStats MetricRead::GetValues(MetricId metric) {
  CStats values = GetValuesUnsummarised(metric);
  values.CalcStats();
  return values;
}

CStats MetricRead::GetValuesUnsummarised(MetricId metric) {
  CStats values = CollectValues(metric);
  bool trend = false;
  if (metric == kDaysBetweenSaves) {
    // Days passed: the difference between two analysis dates.
    values = ApplyTrend(values, DataModes::ProjectChange);
    trend = true;
  } else if (IsTrendMode(m_dataMode) && metric != kProjectDate) {
    values = ApplyTrend(values, m_dataMode);
    trend = true;
  }
  const int metricClass = MetricDefinitions::GetMetricClass(metric);
  const int format = metricClass != ClassProject && m_dataMode != DataModes::OneFile
                         ? m_definitions.GetMetricUseFormat(metric, 1)
                         : m_definitions.GetMetricFormat(metric);
  if (format == 1 || format == 2) values.DataType = 1;
  if (!trend) {
    const MetricRange range = m_definitions.GetMetricRange(metric);
    values.TheorMin = range.LowKind != BoundNone;
    values.TheorMinValue = range.Low;
    values.TheorMax = range.HighKind != BoundNone;
    values.TheorMaxValue = range.High;
  }
  return values;
}

double MetricRead::GetSingleValue(MetricId metric) {
  CStats values = GetValues(metric);
  return values.count() == 1 ? values.ValueAtIndex(1) : values.Mean;
}

CStats MetricRead::CollectValues(MetricId metric) {
  const int metricClass = MetricDefinitions::GetMetricClass(metric);
  const int32_t n = GetClassSize(metricClass);
  if (m_dataState != 2) return Zeros(n);
  if (m_dataMode == DataModes::OneFile) {
    CStats column;
    if (m_currentReader && m_currentReader->ReadSeries(metric, column, n)) return column;
    return Zeros(n);
  }
  CStats column;
  column.Init(n, true);
  // The scalar rule: a save-by-save view that follows a named row reads that
  // row's value; every other view reads one value per database.
  const bool byRowName =
      IsProjectMode(m_dataMode) && m_recordClass != 0 && metricClass != ClassProject;
  int32_t position = 0;
  for (DatabaseEntry* entry : ViewEntries()) {
    ++position;
    QVZRead& reader = *entry->Reader;
    double value = 0;
    bool ok = false;
    if (metric == kProjectDate || metric == kDaysBetweenSaves) {
      value = reader.GetAnalysisDate();
      ok = true;
    } else if (metric == kVariableCount && reader.MetricStored(metric)) {
      value = reader.GetClassSize(ClassVariable);
      ok = true;
    } else if (byRowName) {
      ok = reader.ReadValueForRow(metric, m_recordName, value);
    } else {
      ok = reader.ReadSingleValue(metric, value);
    }
    if (ok) column.AddValueIndex(value, position);
  }
  return column;
}

CStats MetricRead::ApplyTrend(CStats& values, int mode) const {
  const int32_t size = values.Capacity();
  CStats trend;
  trend.Init(size, true);
  bool havePrevious = false;
  double previous = 0;
  int32_t previousPosition = 0;
  for (int32_t p = 1; p <= size; ++p) {
    double v = 0;
    if (!values.ValueAtIndexDefined(p, v)) continue;
    if (havePrevious) {
      const double u = previous;
      // Days between the two databases themselves, so that an undefined row
      // between them does not shift the dates.
      auto days = [&] {
        const int a = GridRowToQVZDatabase(previousPosition);
        const int b = GridRowToQVZDatabase(p);
        if (a == 0 || b == 0) return 0.0;
        return Database(b).AnalysisDate - Database(a).AnalysisDate;
      };
      switch (mode) {
        case DataModes::ProjectChange:
          trend.AddValueIndex(v - u, p);
          break;
        case DataModes::ProjectRelativeChange:
          if (u != 0) trend.AddValueIndex(v / u - 1, p);
          break;
        case DataModes::ProjectChangePerDay: {
          const double d = days();
          if (d > 0) trend.AddValueIndex((v - u) / d, p);
          break;
        }
        case DataModes::ProjectChangePerMonth: {
          const double months = days() / 30;
          if (months > 0) trend.AddValueIndex((v - u) / months, p);
          break;
        }
        default:
          break;
      }
    }
    havePrevious = true;
    previous = v;
    previousPosition = p;
  }
  return trend;
}

}  // namespace ombrelle
