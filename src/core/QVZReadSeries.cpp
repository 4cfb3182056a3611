// The second half of QVZRead: row names, columns of values, single values and
// summaries, served on demand from the open file. Metrics the file does not
// store are computed from those it does through FormulaCalculator.

#include <algorithm>
#include <numeric>

#include "core/QVZRead.h"
#include "stats/FormulaCalculator.h"
#include "stats/Sorter.h"
#include "support/Codepage.h"

namespace ombrelle {

namespace {

// Metrics with a rule of their own.
constexpr MetricId kProjectDateMetric = 1000;      // from the header's stamp when not stored
constexpr MetricId kGlobalVariablesMetric = 1207;  // stored when the variable class is

// Carries the Sorter's events to the reader's row-order callbacks.
class RowOrderEvents final : public SorterEvents {
 public:
  explicit RowOrderEvents(QVZRead& reader) : m_reader(reader) {}
  int Compare(int32_t Item1, int32_t Item2) override {
    int result = 0;
    m_reader.RowHeaderSorter_Compare(Item1, Item2, result);
    return result;
  }
  void Swap(int32_t Item1, int32_t Item2) override { m_reader.RowHeaderSorter_Swap(Item1, Item2); }

 private:
  QVZRead& m_reader;
};

CStats SingleValue(double value) {
  CStats stats;
  stats.Init(1, false);
  stats.AddValue(value);
  return stats;
}

// The 0-based index of `metric` in a slot's list, or -1.
int IndexInSlot(const ClassSlot& slot, MetricId metric) {
  const auto found = std::find(slot.MetricIds.begin(), slot.MetricIds.end(), metric);
  return found == slot.MetricIds.end() ? -1 : static_cast<int>(found - slot.MetricIds.begin());
}

bool UsableAt(const ClassSlot& slot, int index) {
  return index >= 0 && index < static_cast<int>(slot.SeriesUsable.size()) &&
         slot.SeriesUsable[index];
}

}  // namespace

// ---------------------------------------------------------------------------
// Row names

qint64 QVZRead::RowLimit(const ClassSlot& slot) const {
  // Older files hold a 130-byte record for every row, and their length was
  // checked exactly at open.
  if (!IsVersion3()) return slot.ItemCount;
  // Rows whose names are empty and whose values are constant take no bytes of
  // their own, so a small class may claim more rows than its blocks hold. No
  // real class has more rows than the file has bytes, though: that bound
  // keeps a damaged count from sizing columns far beyond the file.
  return std::max({static_cast<qint64>(slot.RowBlockLength) + 1,
                   static_cast<qint64>(slot.LongestStoredSeries), m_fileLength});
}

void QVZRead::LoadRowNames() {
  if (m_rowNamesRead || !EnsureFileOpen()) return;
  m_rowNamesRead = true;
  qint64 offset = m_rowNamesStart - 1;
  for (const int16_t classNr : m_classOrder) {
    ClassSlot& slot = m_classes[classNr];
    const bool believable = slot.ItemCount <= RowLimit(slot);
    QStringList names;
    if (IsVersion3()) {
      char bytes[kRowBlockHeadSize];
      RowBlockHead block;
      if (ReadExact(offset, bytes, kRowBlockHeadSize)) block = RowBlockHead::Decode(bytes);
      offset += kRowBlockHeadSize;
      const qint64 length = std::max<int32_t>(block.Length, 0);
      // The file may have been replaced since it was opened: a text that
      // does not fit in it now is not read.
      if (believable && length > 0 && offset + length <= m_fileLength) {
        QByteArray text(length, Qt::Uninitialized);
        if (ReadExact(offset, text.data(), length)) {
          const int codepage = (block.Encoding & kRowEncodingUtf8) ? kCodepageUtf8 : kCodepageAnsi;
          names = MultiByteToText(text, codepage).split(QChar(u'\0'));
          if (names.size() > slot.ItemCount) names.resize(slot.ItemCount);
        }
      }
      offset += length;
    } else {
      const qint64 bytes = static_cast<qint64>(slot.ItemCount) * kRowRecordSize;
      slot.RowRecords.clear();
      if (offset + bytes <= m_fileLength) {
        QByteArray raw(bytes, Qt::Uninitialized);
        if (ReadExact(offset, raw.data(), bytes)) {
          slot.RowRecords.resize(slot.ItemCount);
          for (int32_t row = 0; row < slot.ItemCount; ++row)
            slot.RowRecords[row] = RowRecord::Decode(raw.constData() + row * kRowRecordSize);
        }
      }
      offset += bytes;
      DecodeRowRecords(slot);
      names = slot.RowNames;
    }
    if (believable) {
      names.reserve(slot.ItemCount);
      for (qsizetype row = names.size() + 1; row <= slot.ItemCount; ++row)
        names.append(QStringLiteral("#") + QString::number(row));
    } else {
      names.clear();
    }
    slot.RowNames = names;
    BuildRowOrder(classNr);
    slot.RowNamesLoaded = true;
  }
}

void QVZRead::DecodeRowRecords(ClassSlot& slot) const {
  slot.RowNames.clear();
  slot.RowNames.reserve(static_cast<qsizetype>(slot.RowRecords.size()));
  for (const RowRecord& record : slot.RowRecords)
    slot.RowNames.append(DecodeText(record.Name.data(), kRowNameSize));
}

void QVZRead::BuildRowOrder(int metricClass) {
  ClassSlot& slot = m_classes[metricClass];
  const auto rows = static_cast<int32_t>(slot.RowNames.size());
  slot.RowOrder.resize(rows);
  std::iota(slot.RowOrder.begin(), slot.RowOrder.end(), 1);
  if (rows == 0 || (m_header.Flags & kFlagSorted)) return;
  m_sortClass = metricClass;
  RowOrderEvents events(*this);
  Sorter(events).QuickSort(1, rows);
}

void QVZRead::RowHeaderSorter_Compare(int32_t a, int32_t b, int& result) const {
  const ClassSlot& slot = m_classes[m_sortClass];
  const QString& first = slot.RowNames.at(slot.RowOrder[a - 1] - 1);
  const QString& second = slot.RowNames.at(slot.RowOrder[b - 1] - 1);
  const int order = first.compare(second, Qt::CaseInsensitive);
  result = (order > 0) - (order < 0);
}

void QVZRead::RowHeaderSorter_Swap(int32_t a, int32_t b) {
  std::vector<int32_t>& order = m_classes[m_sortClass].RowOrder;
  std::swap(order[a - 1], order[b - 1]);
}

void QVZRead::GetRowHeaders(int metricClass, QStringList& names, std::vector<int32_t>& order) {
  LoadRowNames();
  const ClassSlot& slot = Slot(metricClass);
  names = slot.RowNames;
  order = slot.RowOrder;
}

void QVZRead::GetItemFile(int metricClass, int32_t row, QString& filename) {
  filename.clear();
  LoadRowNames();
  const ClassSlot& slot = Slot(metricClass);
  if (row < 1 || row > slot.RowNames.size()) return;
  // Version 3 keeps no file numbers: every row has number 0, so the first
  // file answers for all.
  const auto fileNr = [](const ClassSlot& s, int32_t r) -> int16_t {
    return r <= static_cast<int32_t>(s.RowRecords.size()) ? s.RowRecords[r - 1].FileNr : 0;
  };
  const int16_t wanted = fileNr(slot, row);
  const ClassSlot& files = Slot(ClassFile);
  for (int32_t r = 1; r <= files.RowNames.size(); ++r) {
    if (fileNr(files, r) == wanted) {
      filename = files.RowNames.at(r - 1);
      return;
    }
  }
}

// ---------------------------------------------------------------------------
// Series

bool QVZRead::MetricStored(MetricId metric) const {
  if (metric == kGlobalVariablesMetric) return Slot(ClassVariable).Present;
  const ClassSlot& slot = Slot(MetricDefinitions::GetMetricClass(metric));
  return UsableAt(slot, IndexInSlot(slot, metric));
}

bool QVZRead::FindSeries(MetricId metric, int& metricClass, int& index) const {
  for (int c = 0; c < kMetricClassCount; ++c) {
    const int found = IndexInSlot(m_classes[c], metric);
    if (found >= 0 && found < static_cast<int>(m_classes[c].SeriesPositions.size())) {
      metricClass = c;
      index = found;
      return true;
    }
  }
  return false;
}

bool QVZRead::SeekSeries(MetricId metric, int* foundClass) {
  int c = 0, index = 0;
  if (!FindSeries(metric, c, index) || !EnsureFileOpen()) return false;
  const ClassSlot& slot = m_classes[c];
  if (!UsableAt(slot, index)) return false;
  // The values are read through the file object, so its own position is set.
  if (!m_file.seek(slot.SeriesPositions[index] - 1)) return false;
  if (foundClass) *foundClass = c;
  return true;
}

bool QVZRead::ReadSeriesHeader(qint64 position, SeriesHeader& header) {
  char bytes[kSeriesHeaderSize];
  if (!EnsureFileOpen() || !ReadExact(position - 1, bytes, kSeriesHeaderSize)) return false;
  header = SeriesHeader::Decode(bytes);
  return true;
}

bool QVZRead::ReadStoredSeries(MetricId metric, CStats& stats, int32_t expectedCount) {
  int metricClass = 0;
  if (!SeekSeries(metric, &metricClass)) {
    if (metric != kProjectDateMetric) return false;
    stats = SingleValue(GetAnalysisDate());
    return true;
  }
  char bytes[kSeriesHeaderSize];
  if (m_file.read(bytes, kSeriesHeaderSize) != kSeriesHeaderSize) return false;
  const SeriesHeader header = SeriesHeader::Decode(bytes);
  if (expectedCount != 0 && expectedCount != header.Count) return false;
  const int32_t n = header.Count;

  CStats column;
  if (n == 1) {
    column = SingleValue(header.Mean);
  } else {
    // The block reads check the count against the bytes left in the file.
    bool ok = false;
    switch (header.ValueKind) {
      case kValueDouble:
        ok = column.Load(m_file, n);
        break;
      case kValueInt32:
        ok = column.LoadLong(m_file, n);
        break;
      case kValueInt16:
        ok = column.LoadInt(m_file, n);
        break;
      case kValueByte:
        ok = column.LoadByte(m_file, n);
        break;
      case kValueConstant:
        // No bytes back a constant column: its length must be one the class
        // can have.
        ok = n <= RowLimit(m_classes[metricClass]);
        if (ok) {
          column.Init(n, false);
          for (int32_t i = 0; i < n; ++i) column.AddValueQuick(header.Mean);
        }
        break;
      default:
        break;
    }
    if (!ok) return false;
  }
  stats = std::move(column);
  return true;
}

bool QVZRead::ReadSeries(MetricId metric, CStats& stats, int32_t expectedCount) {
  // A stored column always wins over a formula.
  if (ReadStoredSeries(metric, stats, expectedCount)) return true;
  MetricFormula formula;
  if (!m_definitions.GetMetricFormula(metric, formula)) return false;
  if (formula.SummaryMetric != 0) {
    double value = 0;
    if (!ReadAggregate(formula.SummaryMetric, formula.SummaryKind, value)) return false;
    stats = SingleValue(value);
    return true;
  }
  const FormulaCalculator calculator;
  return calculator.Evaluate(
      formula,
      [&](int32_t term, CStats& column) { return ReadSeries(term, column, expectedCount); }, stats);
}

bool QVZRead::ReadAggregate(MetricId metric, int32_t kind, double& value) {
  if (kind != SummarySum && kind != SummaryMaximum) return false;
  SeriesHeader header;
  const ClassSlot& own = Slot(MetricDefinitions::GetMetricClass(metric));
  if (own.HeadersLoaded) {
    const int index = IndexInSlot(own, metric);
    if (!UsableAt(own, index) || index >= static_cast<int>(own.SeriesHeaders.size())) return false;
    header = own.SeriesHeaders[index];
  } else {
    int c = 0, index = 0;
    if (!FindSeries(metric, c, index) || !UsableAt(m_classes[c], index)) return false;
    if (!ReadSeriesHeader(m_classes[c].SeriesPositions[index], header)) return false;
  }
  // Only the 76-byte head is needed: the sum is count times mean.
  value = kind == SummarySum ? header.Count * header.Mean : header.Max;
  return true;
}

int QVZRead::CachedSeriesValue(MetricId metric, double& value) const {
  const ClassSlot& slot = Slot(MetricDefinitions::GetMetricClass(metric));
  if (!slot.Present || !slot.HeadersLoaded) return -1;
  const int index = IndexInSlot(slot, metric);
  // An unusable series counts as not stored, as it does when read from the file.
  if (!UsableAt(slot, index) || index >= static_cast<int>(slot.SeriesHeaders.size())) return 0;
  value = slot.SeriesHeaders[index].Mean;
  return 1;
}

bool QVZRead::ReadSingleValue(MetricId metric, double& value) {
  struct CloseAtEnd {
    QVZRead* reader;
    ~CloseAtEnd() { reader->CloseDatabaseFile(); }
  } closeAtEnd{this};

  const int cached = CachedSeriesValue(metric, value);
  if (cached == 1) return true;
  if (cached == -1 && SeekSeries(metric)) {
    char bytes[kSeriesHeaderSize];
    if (m_file.read(bytes, kSeriesHeaderSize) != kSeriesHeaderSize) return false;
    value = SeriesHeader::Decode(bytes).Mean;
    return true;
  }

  MetricFormula formula;
  if (!m_definitions.GetMetricFormula(metric, formula)) return false;
  const FormulaCalculator calculator;
  if (GetClassSize(MetricDefinitions::GetMetricClass(metric)) > 1 && !formula.WholeNumber) {
    // A quotient over several rows: the mean of the row quotients.
    CStats column;
    if (!ReadSeries(metric, column, 0)) return false;
    if (column.count() == 1) {
      value = column.ValueAtIndex(1);
    } else {
      column.CalcStatsQuick();
      value = column.Mean;
    }
    return true;
  }
  if (formula.SummaryMetric != 0)
    return ReadAggregate(formula.SummaryMetric, formula.SummaryKind, value);
  CStats result;
  const bool ok = calculator.Evaluate(
      formula,
      [&](int32_t term, CStats& column) {
        double termValue = 0;
        if (!ReadSingleValue(term, termValue)) return false;
        column = SingleValue(termValue);
        return true;
      },
      result);
  if (!ok) return false;
  value = result.ValueAtIndex(1);
  return true;
}

bool QVZRead::ReadValueForRow(MetricId metric, const QString& rowName, double& value) {
  LoadRowNames();
  const ClassSlot& slot = Slot(MetricDefinitions::GetMetricClass(metric));
  for (const int32_t row : slot.RowOrder) {
    if (slot.RowNames.at(row - 1).compare(rowName, Qt::CaseInsensitive) != 0) continue;
    CStats column;
    if (!ReadSeries(metric, column, 0)) return false;
    value = column.ValueAtIndex(row);
    return true;
  }
  return false;
}

bool QVZRead::LoadSeriesHeaders() {
  if (!EnsureFileOpen()) return false;
  for (ClassSlot& slot : m_classes) {
    if (slot.SeriesPositions.empty()) continue;
    // One header per position that the walk found in the file.
    std::vector<SeriesHeader> headers(slot.SeriesPositions.size());
    for (size_t j = 0; j < headers.size(); ++j)
      if (!ReadSeriesHeader(slot.SeriesPositions[j], headers[j])) return false;
    slot.SeriesHeaders = std::move(headers);
    slot.HeadersLoaded = true;
  }
  return true;
}

}  // namespace ombrelle
