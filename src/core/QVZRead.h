#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <QFile>
#include <QString>
#include <QStringList>

#include "core/MetricDefinitions.h"
#include "core/QVZFormat.h"
#include "stats/CStats.h"

namespace ombrelle {

class RowNameSink;

// What the reader knows of one class code, whether the file has the class or
// not. Lists are stored 0-based; entry i - 1 is the described entry i.
struct ClassSlot {
  bool Present = false;
  int32_t ClassNr = 0;
  int32_t SeriesCount = 0;  // as stored; SeriesCount16() is the count in use
  int32_t ItemCount = 0;
  std::vector<RowRecord> RowRecords;  // versions below 3, filled with the row names
  std::vector<int32_t> MetricIds;
  std::vector<qint64> SeriesPositions;  // 1-based position of each SeriesHeader
  std::vector<bool> SeriesUsable;       // false when the ValueKind is above 4
  std::vector<SeriesHeader> SeriesHeaders;
  bool HeadersLoaded = false;
  QStringList RowNames;
  std::vector<int32_t> RowOrder;  // display order: 1-based indices into RowNames
  bool RowNamesLoaded = false;
  // Bounds on the rows the file can back (version 3): the Length of the
  // class's row-name block, and the largest Count among its series whose
  // values take bytes in the file.
  int32_t RowBlockLength = 0;
  int32_t LongestStoredSeries = 0;

  // Only the low 16 bits of the stored count are used, as a signed number; a
  // count that reads negative that way stands for no series.
  int SeriesCount16() const;
};

// Reader of one metrics database file: checks the header, learns the file's
// structure by walking only fixed headers, and keeps the read-only handle and
// the tables of series positions for the reads that follow. It never writes.
class QVZRead {
 public:
  QVZRead();
  ~QVZRead();
  QVZRead(const QVZRead&) = delete;
  QVZRead& operator=(const QVZRead&) = delete;

  // Opens `file` and walks its structure. On failure the file is closed and
  // `errorText` says why (it may be empty when a box has already said it).
  bool Opendatabase(const QString& file, QString& errorText);
  // Checks the header of `file` alone; with `verifyChecksum` also the
  // checksum. Failures are shown in a box when `showErrors` is set.
  bool ReadHeader(const QString& file, DatabaseHeader& header, bool showErrors,
                  bool verifyChecksum);
  // ReadHeader with the checksum, quietly, for a scan of many files: one
  // open, one status call, one read of the header alone and one close, no
  // reader object. Also gives the file's last-modified time as a local date
  // value (the caller runs tzset() once before the scan).
  static bool ProbeHeader(const QString& file, DatabaseHeader& header, double& fileDate);
  // Closes the handle and keeps the tables; a later read reopens by name.
  void CloseDatabaseFile();
  // Opens the file read-only if it is closed.
  bool EnsureFileOpen();

  int32_t GetClassSize(int metricClass) const;
  int32_t GetFlags() const { return m_header.Flags; }
  QString GetSavedBy() const;
  QString GetSavedDate() const;
  QString GetVersionText() const;
  double GetAnalysisDate() const;
  void GetProjectInfo(QString& title, QString& project, double& date) const;
  QString Title() const;
  QString ProjectFilename() const;
  // The same texts of any header.
  static QString Title(const DatabaseHeader& header);
  static QString ProjectFilename(const DatabaseHeader& header);

  // The structure as learnt by the walk.
  const QString& Filename() const { return m_filename; }
  bool IsFileOpen() const { return m_file.isOpen(); }
  qint64 FileLength() const { return m_fileLength; }
  const DatabaseHeader& Header() const { return m_header; }
  bool IsVersion3() const { return m_header.Version >= 3.0f; }
  // The slot of class code 0 to 4; an absent slot for any other number.
  const ClassSlot& Slot(int metricClass) const;
  int ClassOrderCount() const { return static_cast<int>(m_classOrder.size()); }
  int ClassOrderAt(int index) const { return m_classOrder.at(index - 1); }  // 1-based
  qint64 RowNamesStart() const { return m_rowNamesStart; }
  qint64 SeriesStart() const { return m_seriesStart; }
  const QString& LastError() const { return m_lastError; }

  // --- Row names and values, served on demand once the file is open. Rows
  // and series are 1-based. A read that fails answers false and shows
  // nothing: the metric counts as absent.

  // Copies of the class's row names (in file order) and of the display order
  // (1-based indices into the names); the names of every class are loaded on
  // the first demand.
  void GetRowHeaders(int metricClass, QStringList& names, std::vector<int32_t>& order);
  // The same names, in file order, handed to `sink` one by one. Reads only
  // the class's own block and keeps nothing: no list, no display order.
  void ForEachRowName(int metricClass, RowNameSink& sink);
  // The metric's own class lists it and its series is usable; 1207 answers
  // whether the variable class is present.
  bool MetricStored(MetricId metric) const;
  // The column of a metric: its stored series, else computed from its
  // formula. `expectedCount` not 0 refuses a stored series of another length.
  bool ReadSeries(MetricId metric, CStats& stats, int32_t expectedCount);
  // One value for a metric (a project-level figure), stored or derived. The
  // file is closed again afterwards.
  bool ReadSingleValue(MetricId metric, double& value);
  // The metric's value in the first row, in display order, whose name equals
  // `rowName` ignoring case.
  bool ReadValueForRow(MetricId metric, const QString& rowName, double& value);
  // Name of the file that row `row` of `metricClass` belongs to; empty when
  // there is none.
  void GetItemFile(int metricClass, int32_t row, QString& filename);
  // Reads every SeriesHeader at once, so that single values and summaries
  // need no further reads.
  bool LoadSeriesHeaders();

  // Events of the Sorter that orders the rows of an unsorted file: compare
  // the names that two order entries point to, ignoring case; swap the entries.
  void RowHeaderSorter_Compare(int32_t a, int32_t b, int& result) const;
  void RowHeaderSorter_Swap(int32_t a, int32_t b);

 private:
  void LoadRowNames();
  void DecodeRowRecords(ClassSlot& slot) const;
  void BuildRowOrder(int metricClass);
  // Rows of the class that the file itself can back; a claimed ItemCount
  // above it is not believed.
  qint64 RowLimit(const ClassSlot& slot) const;
  // The slot and 0-based index of the first series of `metric`, searching
  // every class in code order.
  bool FindSeries(MetricId metric, int& metricClass, int& index) const;
  bool SeekSeries(MetricId metric, int* foundClass = nullptr);
  bool ReadStoredSeries(MetricId metric, CStats& stats, int32_t expectedCount);
  bool ReadSeriesHeader(qint64 position, SeriesHeader& header);
  // 1: found in the loaded headers; 0: the class's headers are loaded and do
  // not hold it; -1: not known without reading the file.
  int CachedSeriesValue(MetricId metric, double& value) const;
  bool ReadAggregate(MetricId metric, int32_t kind, double& value);

  bool ReadStructure();
  bool ReadClassRecords();
  void ReadMetricIds();
  bool CheckFileLength() const;
  bool WalkSeries();
  // What is wrong with a header read from a file of `fileLength` bytes.
  enum class HeaderVerdict { Ok, BadFormat, BadVersion, BadChecksum };
  static HeaderVerdict CheckHeader(const DatabaseHeader& header, qint64 fileLength,
                                   bool verifyChecksum);
  void ResetTables();

  // A text field of the header or a row record: UTF-8 up to the first zero
  // byte when the header says so, else ANSI of every byte; trailing blanks cut.
  QString DecodeText(const char* bytes, qsizetype size) const;
  static QString DecodeText(int32_t flags, const char* bytes, qsizetype size);

  // Reads `count` bytes at the 1-based `position` of the open file. Bytes
  // beyond the end of the file read as zero, so the walk can measure how far
  // a damaged file falls short. A failing read sets m_readFailed.
  QByteArray ReadAt(qint64 position, qint64 count);
  void ReadInto(qint64 position, char* buffer, qint64 count);
  // Reads exactly `count` bytes at the 0-based `offset`; false on a system error.
  bool ReadExact(qint64 offset, char* buffer, qint64 count);
  void ReadFailed();

  QString m_filename;
  QFile m_file;
  qint64 m_fileLength = 0;
  qint64 m_position = 1;  // the reader's 1-based position counter
  // The last stretch of the file read for small reads (0-based offset).
  static constexpr qint64 kReadWindow = 4096;
  QByteArray m_window;
  qint64 m_windowOffset = 0;
  DatabaseHeader m_header;
  std::array<ClassSlot, kMetricClassCount> m_classes;
  std::vector<int16_t> m_classOrder;
  // How many class records name each slot; kept even when the class table
  // runs past the end of the file and m_classOrder is not filled.
  std::array<int, kMetricClassCount> m_entriesPerSlot{};
  bool m_classTableInFile = true;
  qint64 m_rowNamesStart = 0;
  qint64 m_seriesStart = 0;
  QString m_lastError;

  MetricDefinitions m_definitions;
  int32_t m_sortClass = 0;  // class whose rows BuildRowOrder is ordering
  bool m_rowNamesRead = false;

  // The system's number and text of the last failed open or read.
  int m_systemError = 0;
  QString m_systemErrorText;
  bool m_readFailed = false;
};

}  // namespace ombrelle
