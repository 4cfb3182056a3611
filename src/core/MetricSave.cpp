#include "core/MetricSave.h"

#include <algorithm>
#include <cmath>

#include <QDate>
#include <QFileInfo>
#include <QSaveFile>

#include "core/MetricSaveFields.h"
#include "stats/CStats.h"
#include "support/Codepage.h"
#include "support/StringList.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

void ShowExclamation(const QString& text) { Ui().MsgBox(text, MsgStyle::Exclamation, QString()); }

}  // namespace

MetricSave::MetricSave() = default;

MetricSave::~MetricSave() { Close(); }

// ---------------------------------------------------------------------------
// Writing a new file

bool MetricSave::SaveDatabase(const QString& file, const QString& title, const QString& project,
                              double date) {
  Close();
  m_classes.clear();
  m_classNames.clear();
  m_classRowKeys.clear();
  m_classMetrics.clear();
  m_pendingMetrics.clear();
  m_rowLists.clear();
  m_classesSaved = false;
  m_nextClass = 0;
  m_nextSeries = 0;
  m_failed = false;
  m_length = 0;

  QString path = file;
  if (path.isEmpty()) {
    path = GenerateDatabasename(project, date, QString(), QStringLiteral(".qvz"));
    if (path.isEmpty()) return false;
  } else if (QFileInfo::exists(path)) {
    // The old file is replaced only when the new one is complete, so it must
    // be a file in a folder where files can be replaced.
    const QFileInfo old(path);
    if (old.isDir() || !QFileInfo(old.absolutePath()).isWritable()) {
      ShowExclamation(QStringLiteral("Cannot overwrite file ") + path);
      return false;
    }
  }
  m_filename = path;

  // The file is written under a temporary name beside the target and renamed
  // into place only when complete, so a crash or a failure never leaves a
  // half-written database under the final name.
  m_file = std::make_unique<QSaveFile>(path);
  if (!m_file->open(QIODevice::WriteOnly)) {
    ReportError();
    m_file.reset();
    return false;
  }

  m_header = DatabaseHeader();
  std::copy(kQvzMagic, kQvzMagic + 8, m_header.Magic.begin());
  m_header.Version = 3.0f;
  m_header.Flags = kFlagSorted | kFlagUtf8;
  SetAnalysisDate(m_header, date);
  SetTextFieldUtf8(m_header.Title, title);
  SetTextFieldUtf8(m_header.ProjectFilename, project);
  SetBlankPadded(m_header.SavedDate,
                 QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")).toLatin1());
  SetBlankPadded(m_header.SavedBy, TextToMultiByte(SavedByText(), kCodepageAnsi));
  // The checksum of the present length; it is computed again on completion.
  StampChecksum(m_header, m_length);
  return WriteBytes(m_header.Encode());
}

void MetricSave::AddClass(int classNr, int32_t itemCount, const QStringList& names,
                          const std::vector<int32_t>& rowKeys) {
  if (m_classMetrics.size() < m_classes.size()) ClassDone();
  itemCount = std::max<int32_t>(0, itemCount);
  m_classes.push_back({classNr, 0, itemCount});
  m_classNames.push_back(names);
  m_classRowKeys.push_back(rowKeys);
  m_pendingMetrics.clear();

  // Only the first itemCount names belong to rows: the reader drops the rest,
  // so they must not take part in the sort either. Each name carries its row
  // through the sort; rows without a name keep their place behind the named
  // ones.
  RowList rows;
  const qsizetype named = std::min<qsizetype>(names.size(), itemCount);
  for (qsizetype i = 0; i < named; ++i) rows.Names.Add(names.at(i), static_cast<int32_t>(i + 1));
  rows.Names.Sort(StringCompare::Text);
  rows.Positions = rows.Names.ToDataArray();
  for (int32_t row = static_cast<int32_t>(named) + 1; row <= itemCount; ++row)
    rows.Positions.push_back(row);
  m_rowLists.push_back(std::move(rows));
}

void MetricSave::AddMetricToClass(MetricId id) {
  if (m_classes.empty() || m_classMetrics.size() == m_classes.size()) return;
  ++m_classes.back().SeriesCount;
  m_pendingMetrics.push_back(id);
}

void MetricSave::ClassDone() {
  if (m_classMetrics.size() >= m_classes.size()) return;
  m_classMetrics.push_back(std::move(m_pendingMetrics));
  m_pendingMetrics.clear();
}

bool MetricSave::SaveClasses() {
  if (!m_file || m_failed || m_classesSaved) return false;
  if (m_classMetrics.size() < m_classes.size()) ClassDone();
  m_header.ClassCount = static_cast<int16_t>(m_classes.size());

  QByteArray bytes;
  for (const TQVZMetricClass& record : m_classes) bytes += record.Encode();
  for (const std::vector<MetricId>& ids : m_classMetrics)
    for (const MetricId id : ids) PutInt32(bytes, id);
  for (const RowList& rows : m_rowLists) bytes += RowNameBlock(rows);
  m_classesSaved = true;
  return WriteBytes(bytes);
}

QByteArray MetricSave::RowNameBlock(const RowList& rows) const {
  const QString joined = rows.Names.ToArray().join(QChar(u'\0'));
  // Only NUL separators (no names, or only empty ones) make an empty block.
  const bool empty =
      std::all_of(joined.cbegin(), joined.cend(), [](QChar c) { return c == u'\0'; });
  if (empty) return RowBlockHead().Encode();

  // The pattern test: any character besides NUL and "~" sends the text out
  // in ANSI. Readers of the format expect ordinary names in ANSI, so this
  // polarity is kept as it is.
  const bool ansi =
      std::any_of(joined.cbegin(), joined.cend(), [](QChar c) { return c != u'\0' && c != u'~'; });
  const QByteArray text =
      ansi ? TextToMultiByte(joined, kCodepageAnsi) : TextToMultiByte(joined, kCodepageUtf8);
  RowBlockHead head;
  head.Length = static_cast<int32_t>(text.size());
  head.Encoding = ansi ? 0 : kRowEncodingUtf8;
  return head.Encode() + text;
}

bool MetricSave::SaveSeries(CStats& stats) {
  if (!m_file || m_failed || !m_classesSaved) return false;
  // Step to the next declared series; classes without metrics are passed over.
  if (m_nextClass == 0) {
    m_nextClass = 1;
    m_nextSeries = 1;
  } else {
    ++m_nextSeries;
  }
  const int classCount = static_cast<int>(m_classes.size());
  while (m_nextClass <= classCount && m_nextSeries > m_classes[m_nextClass - 1].SeriesCount) {
    ++m_nextClass;
    m_nextSeries = 1;
  }
  if (m_nextClass > classCount) return false;  // every declared series is written
  const MetricId id = m_classMetrics[m_nextClass - 1][m_nextSeries - 1];

  stats.CalcStatsQuick();
  SeriesHeader header;
  header.Count = stats.count();
  header.Mean = stats.Mean;
  header.StdDev = stats.StdDev;
  header.Min = stats.Min;
  header.Max = stats.Max;
  header.Median = stats.Median();
  header.Q5 = stats.Q5();
  header.Q95 = stats.Q95();
  const ValueEncoding encoding =
      ChooseValueEncoding(m_definitions.GetMetricFormat(id), stats.Min, stats.Max);
  header.ValueKind = encoding.Kind;
  header.ValueSize = encoding.Size;

  return WriteBytes(header.Encode() + EncodeValues(stats, header, m_rowLists[m_nextClass - 1]));
}

QByteArray MetricSave::EncodeValues(CStats& stats, const SeriesHeader& header,
                                    const RowList& rows) const {
  QByteArray out;
  if (header.ValueKind == kValueConstant) return out;
  // A column with one value per row follows the sorted row names: place i
  // takes the value of the row that sorted there. Any other column is written
  // in the order it came.
  const int32_t previous = stats.Sort(3);  // order of arrival
  const int32_t count = header.Count;
  const bool mapped = static_cast<size_t>(count) == rows.Positions.size();
  out.reserve(static_cast<qsizetype>(count) * header.ValueSize);
  for (int32_t i = 1; i <= count; ++i) {
    const double value = stats.ValueAtIndex(mapped ? rows.Positions[i - 1] : i);
    // Whole-number encodings round half to even, as the format's readers
    // round; the range test has made sure the value fits.
    switch (header.ValueKind) {
      case kValueInt32:
        PutInt32(out, static_cast<int32_t>(std::nearbyint(value)));
        break;
      case kValueInt16:
        PutInt16(out, static_cast<int16_t>(std::nearbyint(value)));
        break;
      case kValueByte:
        out.append(static_cast<char>(static_cast<uint8_t>(std::nearbyint(value))));
        break;
      default:
        PutDouble(out, value);
        break;
    }
  }
  stats.Sort(previous == 0 ? 3 : previous);
  return out;
}

// ---------------------------------------------------------------------------
// Completion

bool MetricSave::Close() {
  if (!m_file) return false;
  if (m_failed) {
    Discard();
    return false;
  }
  m_header.ClassCount = static_cast<int16_t>(m_classes.size());
  StampChecksum(m_header, m_length);
  const QByteArray header = m_header.Encode();
  if (!m_file->seek(0) || m_file->write(header) != header.size() || !m_file->commit()) {
    ReportError();
    Discard();
    return false;
  }
  m_file.reset();
  // The folder as it is spelt: folders on this system are told apart by case.
  StoreInRegistry(QFileInfo(m_filename).absolutePath());
  return true;
}

bool MetricSave::WriteBytes(const QByteArray& bytes) {
  if (!m_file || m_failed) return false;
  if (m_file->write(bytes) != bytes.size()) {
    ReportError();
    return false;
  }
  m_length += bytes.size();
  return true;
}

void MetricSave::ReportError() {
  m_failed = true;
  ShowExclamation(QStringLiteral("Error #") + QString::number(static_cast<int>(m_file->error())) +
                  QStringLiteral(" saving metrics to ") + m_filename + QStringLiteral(": \r\n") +
                  m_file->errorString());
}

void MetricSave::Discard() {
  // The temporary file goes; nothing ever stood under the final name.
  m_file->cancelWriting();
  m_file.reset();
}

}  // namespace ombrelle
