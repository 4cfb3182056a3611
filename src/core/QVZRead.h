#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <QFile>
#include <QString>
#include <QStringList>

#include "core/QVZFormat.h"

namespace ombrelle {

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

 private:
  bool ReadStructure();
  bool ReadClassRecords();
  void ReadMetricIds();
  bool CheckFileLength() const;
  bool WalkSeries();
  bool VerifyChecksum(const DatabaseHeader& header) const;
  void ResetTables();

  // A text field of the header or a row record: UTF-8 up to the first zero
  // byte when the header says so, else ANSI of every byte; trailing blanks cut.
  QString DecodeText(const char* bytes, qsizetype size) const;

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

  // The system's number and text of the last failed open or read.
  int m_systemError = 0;
  QString m_systemErrorText;
  bool m_readFailed = false;
};

}  // namespace ombrelle
