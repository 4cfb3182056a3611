#include "core/QVZRead.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>

#include <QDateTime>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "support/Codepage.h"
#include "support/DateValue.h"
#include "support/MD5.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

const ClassSlot kAbsentSlot;

QString RightTrimBlanks(QString text) {
  qsizetype end = text.size();
  while (end > 0 && text.at(end - 1) == u' ') --end;
  text.truncate(end);
  return text;
}

template <size_t N>
QString AnsiField(const std::array<char, N>& field) {
  return MultiByteToText(field.data(), static_cast<qsizetype>(N), kCodepageAnsi);
}

// A 32-bit float as the messages show it: up to seven significant digits,
// no trailing zeros ("3.9", "0.5", "4").
QString FormatSingle(float value) {
  QString text = QString::number(static_cast<double>(value), 'g', 7);
  text.replace(u'e', u'E');
  return text;
}

void ShowExclamation(const QString& text) { Ui().MsgBox(text, MsgStyle::Exclamation, QString()); }

}  // namespace

int ClassSlot::SeriesCount16() const {
  return std::max<int>(0, static_cast<int16_t>(static_cast<uint32_t>(SeriesCount) & 0xFFFF));
}

QVZRead::QVZRead() = default;

QVZRead::~QVZRead() { CloseDatabaseFile(); }

// ---------------------------------------------------------------------------
// File handle

bool QVZRead::EnsureFileOpen() {
  if (m_file.isOpen()) return true;
  m_systemError = 0;
  m_systemErrorText.clear();
  m_readFailed = false;
#ifdef Q_OS_UNIX
  // Opened by descriptor so that the system's own error number is at hand.
  const int fd = ::open(QFile::encodeName(m_filename).constData(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    m_systemError = errno;
    m_systemErrorText = QString::fromLocal8Bit(std::strerror(m_systemError));
    return false;
  }
  if (!m_file.open(fd, QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle)) {
    ::close(fd);
    m_systemError = static_cast<int>(m_file.error());
    m_systemErrorText = m_file.errorString();
    return false;
  }
#else
  m_file.setFileName(m_filename);
  if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
    m_systemError = static_cast<int>(m_file.error());
    m_systemErrorText = m_file.errorString();
    return false;
  }
#endif
  m_fileLength = m_file.size();
  return true;
}

void QVZRead::CloseDatabaseFile() {
  if (m_file.isOpen()) m_file.close();
  m_window.clear();
}

void QVZRead::ReadInto(qint64 position, char* buffer, qint64 count) {
  std::memset(buffer, 0, static_cast<size_t>(count));
  const qint64 offset = position - 1;
  const qint64 available = std::min(count, m_fileLength - offset);
  if (available <= 0 || offset < 0) return;
  // Small reads come from a window of the file: the walk asks for many small
  // headers close together, and one read serves several of them. Beyond the
  // window it seeks, so the values between headers are never read.
  if (offset < m_windowOffset || offset + available > m_windowOffset + m_window.size()) {
    // A read far behind the last window means the stretches between reads are
    // long (big series): then only the asked bytes are read.
    const bool sparse = offset - (m_windowOffset + m_window.size()) > kReadWindow;
    if (available >= kReadWindow || sparse) {
      m_window.clear();
      m_windowOffset = offset + available;  // the next gap counts from here
      if (!ReadExact(offset, buffer, available)) ReadFailed();
      return;
    }
    m_window.resize(std::min<qint64>(kReadWindow, m_fileLength - offset));
    m_windowOffset = offset;
    if (!ReadExact(offset, m_window.data(), m_window.size())) {
      m_window.clear();
      ReadFailed();
      return;
    }
  }
  std::memcpy(buffer, m_window.constData() + (offset - m_windowOffset),
              static_cast<size_t>(available));
}

bool QVZRead::ReadExact(qint64 offset, char* buffer, qint64 count) {
#ifdef Q_OS_UNIX
  // One positioned read: the walk makes one call per series header.
  const int fd = m_file.handle();
  while (count > 0) {
    const ssize_t got = ::pread(fd, buffer, static_cast<size_t>(count), static_cast<off_t>(offset));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) {
      m_systemError = got < 0 ? errno : EIO;
      m_systemErrorText = QString::fromLocal8Bit(std::strerror(m_systemError));
      return false;
    }
    buffer += got;
    offset += got;
    count -= got;
  }
  return true;
#else
  if (m_file.seek(offset) && m_file.read(buffer, count) == count) return true;
  m_systemError = static_cast<int>(m_file.error());
  m_systemErrorText = m_file.errorString();
  return false;
#endif
}

void QVZRead::ReadFailed() { m_readFailed = true; }

QByteArray QVZRead::ReadAt(qint64 position, qint64 count) {
  QByteArray bytes(count, Qt::Uninitialized);
  ReadInto(position, bytes.data(), count);
  return bytes;
}

// ---------------------------------------------------------------------------
// Header

bool QVZRead::ReadHeader(const QString& file, DatabaseHeader& header, bool showErrors,
                         bool verifyChecksum) {
  QString message;
  bool systemFailure = false;
  if (!QFileInfo(file).isFile()) {
    message = QStringLiteral("Metrics database file doesn't exist");
  } else {
    // Always a fresh handle: the file may have been replaced since it was last open.
    CloseDatabaseFile();
    m_filename = file;
    if (!EnsureFileOpen()) {
      message = QStringLiteral("Error #%1 opening metrics database - %2")
                    .arg(m_systemError)
                    .arg(m_systemErrorText);
    } else if (m_fileLength < kHeaderSize) {
      message = QStringLiteral("Metrics database file too short");
    } else {
      const QByteArray bytes = ReadAt(1, kHeaderSize);
      const DatabaseHeader read = DatabaseHeader::Decode(bytes.constData());
      const HeaderVerdict verdict =
          m_readFailed ? HeaderVerdict::Ok : CheckHeader(read, m_fileLength, verifyChecksum);
      if (m_readFailed) {
        systemFailure = true;
      } else if (verdict == HeaderVerdict::BadFormat) {
        message = QStringLiteral("Invalid metrics database file format");
      } else if (verdict == HeaderVerdict::BadVersion) {
        message = QStringLiteral("Metrics database file version (") + FormatSingle(read.Version) +
                  QStringLiteral(") not supported");
      } else if (verdict == HeaderVerdict::BadChecksum) {
        message = QStringLiteral("Invalid metrics database file checksum");
      } else {
        header = read;
        if (verifyChecksum) m_header = read;
        return true;
      }
    }
  }
  if (showErrors) {
    if (systemFailure) {
      ShowExclamation(m_systemErrorText + QStringLiteral("\r\n") + file +
                      QStringLiteral(":\r\nError #") + QString::number(m_systemError) +
                      QStringLiteral(" reading metrics database:"));
    } else {
      ShowExclamation(message + QStringLiteral(":\r\n") + file);
    }
  }
  CloseDatabaseFile();
  return false;
}

QVZRead::HeaderVerdict QVZRead::CheckHeader(const DatabaseHeader& header, qint64 fileLength,
                                            bool verifyChecksum) {
  if (std::memcmp(header.Magic.data(), kQvzMagic, 8) != 0) return HeaderVerdict::BadFormat;
  const double whole = std::trunc(static_cast<double>(header.Version));
  if (!(whole >= 1.0 && whole <= 3.0)) return HeaderVerdict::BadVersion;
  if (!verifyChecksum) return HeaderVerdict::Ok;
  // Version 1 files carry no checksum, so a check cannot pass.
  if (header.Version == 1.0f) return HeaderVerdict::BadVersion;
  if (!HeaderChecksumMatches(header, fileLength)) return HeaderVerdict::BadChecksum;
  return HeaderVerdict::Ok;
}

bool QVZRead::ProbeHeader(const QString& file, DatabaseHeader& header, double& fileDate) {
#ifdef Q_OS_UNIX
  // Non-blocking, so that a pipe that took the place of a file cannot stall the scan.
  const int fd = ::open(QFile::encodeName(file).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) return false;
  struct stat info {};
  char bytes[kHeaderSize];
  bool ok = ::fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size >= kHeaderSize;
  for (qint64 done = 0; ok && done < kHeaderSize;) {
    const ssize_t got = ::pread(fd, bytes + done, static_cast<size_t>(kHeaderSize - done),
                                static_cast<off_t>(done));
    if (got < 0 && errno == EINTR) continue;
    ok = got > 0;
    done += got;
  }
  ::close(fd);
  if (!ok) return false;
  header = DatabaseHeader::Decode(bytes);
  if (CheckHeader(header, info.st_size, true) != HeaderVerdict::Ok) return false;
  fileDate = DateFromEpochMSecsLocal(static_cast<qint64>(info.st_mtim.tv_sec) * 1000 +
                                     info.st_mtim.tv_nsec / 1000000);
  return true;
#else
  QVZRead reader;
  if (!reader.ReadHeader(file, header, false, true)) return false;
  const QDateTime modified = QFileInfo(file).lastModified();
  fileDate = modified.isValid() ? DateFromQDateTime(modified) : 0;
  return true;
#endif
}

// ---------------------------------------------------------------------------
// Structure

void QVZRead::ResetTables() {
  m_classes = {};
  m_classOrder.clear();
  m_entriesPerSlot = {};
  m_classTableInFile = true;
  m_rowNamesStart = 0;
  m_seriesStart = 0;
  m_lastError.clear();
  m_rowNamesRead = false;
}

bool QVZRead::Opendatabase(const QString& file, QString& errorText) {
  errorText.clear();
  ResetTables();
  m_header = DatabaseHeader();
  if (file.isEmpty()) {
    errorText = QStringLiteral("No database filename given for QVZRead.Opendatabase");
    return false;
  }
  DatabaseHeader header;
  if (!ReadHeader(file, header, true, false)) {
    errorText = QStringLiteral("Database header verification failed.");
    return false;
  }
  m_header = header;
  if (ReadStructure()) return true;
  CloseDatabaseFile();
  errorText = m_lastError;
  return false;
}

bool QVZRead::ReadStructure() {
  m_lastError.clear();
  m_position = kHeaderSize + 1;
  if (!ReadClassRecords()) return false;
  ReadMetricIds();
  m_rowNamesStart = m_position;

  if (!m_classTableInFile) {
    // The class table runs past the end of the file, so the row area starts
    // behind the last byte: the first block head reads as zeros and is too
    // short (version 3), or the series area cannot fit (older versions).
    // Nothing is sized by the claimed counts.
    m_lastError = IsVersion3() ? QStringLiteral(
                                     "Metrics database file too short. Possibly corrupted. "
                                     "Reading byte: ") +
                                     QString::number(m_rowNamesStart)
                               : QStringLiteral("Invalid file size.");
    return false;
  }

  if (IsVersion3()) {
    for (size_t k = 0; k < m_classOrder.size(); ++k) {
      const qint64 head = m_position;
      char bytes[kRowBlockHeadSize];
      ReadInto(head, bytes, kRowBlockHeadSize);
      const RowBlockHead block = RowBlockHead::Decode(bytes);
      m_position += kRowBlockHeadSize;
      if (block.Length < 0) {
        m_lastError = QStringLiteral("Metrics database file corrupted. Negative Length at byte ") +
                      QString::number(head);
        return false;
      }
      if (m_position + block.Length >= m_fileLength) {
        m_lastError =
            QStringLiteral("Metrics database file too short. Possibly corrupted. Reading byte: ") +
            QString::number(head);
        return false;
      }
      // RowNames are sized when the names are loaded: a version 3 file does
      // not bound ItemCount by its length, so the block's length is kept as
      // one of the bounds on the rows the class can have.
      m_classes[m_classOrder[k]].RowBlockLength = block.Length;
      m_position += block.Length;
    }
  } else {
    qint64 area = 0;
    for (const int16_t classNr : m_classOrder)
      area += static_cast<qint64>(m_classes[classNr].ItemCount) * kRowRecordSize;
    m_position += area;
  }
  m_seriesStart = m_position;

  if (!CheckFileLength()) {
    m_lastError = QStringLiteral("Invalid file size.");
    return false;
  }
  return WalkSeries();
}

bool QVZRead::ReadClassRecords() {
  const int count = std::max<int>(0, m_header.ClassCount);
  const qint64 tableOffset = m_position - 1;
  const qint64 tableBytes = static_cast<qint64>(count) * kClassRecordSize;
  m_classTableInFile = tableOffset + tableBytes <= m_fileLength;
  // One read of the part of the table inside the file; records beyond it
  // read as zeros. Nothing is reserved for records the file cannot hold.
  const QByteArray table = ReadAt(m_position, std::min(tableBytes, m_fileLength - tableOffset));
  if (m_classTableInFile) m_classOrder.resize(count);

  static const char kZeroRecord[kClassRecordSize] = {};
  for (int i = 1; i <= count; ++i) {
    const qint64 at = static_cast<qint64>(i - 1) * kClassRecordSize;
    const char* bytes = kZeroRecord;
    QByteArray partial;
    if (at + kClassRecordSize <= table.size()) {
      bytes = table.constData() + at;
    } else if (at < table.size()) {
      partial = table.mid(at).leftJustified(kClassRecordSize, '\0');
      bytes = partial.constData();
    }
    const TQVZMetricClass record = TQVZMetricClass::Decode(bytes);
    const QString prefix = QStringLiteral("TQVZMetricClass(") + QString::number(i);
    if (record.ClassNr < 0 || record.ClassNr >= kMetricClassCount) {
      m_lastError =
          QStringLiteral("Metrics database file includes an unsupported metrics class: ") + prefix +
          QStringLiteral(").ClassNr = ") + QString::number(record.ClassNr) + QStringLiteral(".");
      return false;
    }
    if (record.ItemCount < 0) {
      m_lastError = QStringLiteral("Metrics database file corrupted: ") + prefix +
                    QStringLiteral(").ItemCount is negative.");
      return false;
    }
    if (record.SeriesCount < 0) {
      ShowExclamation(QStringLiteral("Metrics database file corrupted: ") + prefix +
                      QStringLiteral(").SeriesCount is negative."));
      return false;
    }
    ClassSlot& slot = m_classes[record.ClassNr];
    slot.Present = true;
    slot.ClassNr = record.ClassNr;
    slot.SeriesCount = record.SeriesCount;
    slot.ItemCount = record.ItemCount;
    ++m_entriesPerSlot[record.ClassNr];
    if (m_classTableInFile) m_classOrder[i - 1] = static_cast<int16_t>(record.ClassNr);
  }
  m_position += tableBytes;
  return true;
}

void QVZRead::ReadMetricIds() {
  if (!m_classTableInFile) {
    // Only the position is needed: the structure cannot be valid.
    for (int c = 0; c < kMetricClassCount; ++c)
      m_position +=
          static_cast<qint64>(m_entriesPerSlot[c]) * m_classes[c].SeriesCount16() * kMetricIdSize;
    return;
  }
  for (const int16_t classNr : m_classOrder) {
    ClassSlot& slot = m_classes[classNr];
    const int count = slot.SeriesCount16();
    const qint64 bytes = static_cast<qint64>(count) * kMetricIdSize;
    slot.MetricIds.clear();
    if (m_position - 1 + bytes <= m_fileLength) {
      const QByteArray ids = ReadAt(m_position, bytes);
      slot.MetricIds.resize(count);
      for (int j = 0; j < count; ++j)
        slot.MetricIds[j] = GetInt32(ids.constData() + j * kMetricIdSize);
    }
    // A list that runs past the end of the file is not kept: the row area
    // then starts behind the last byte and the structure check refuses it.
    m_position += bytes;
  }
}

bool QVZRead::CheckFileLength() const {
  if (!m_file.isOpen()) return false;
  if (IsVersion3()) return m_seriesStart <= m_fileLength;
  qint64 expected = m_seriesStart - 1;
  for (const ClassSlot& slot : m_classes)
    expected += static_cast<qint64>(slot.SeriesCount16()) *
                (kSeriesHeaderSize + 8 * static_cast<qint64>(slot.ItemCount));
  return expected == m_fileLength;
}

bool QVZRead::WalkSeries() {
  m_position = m_seriesStart;
  bool failed = false;
  for (const int16_t classNr : m_classOrder) {
    ClassSlot& slot = m_classes[classNr];
    const int count = slot.SeriesCount16();
    slot.SeriesPositions.assign(count, 0);
    slot.SeriesUsable.assign(count, false);
    for (int j = 0; j < count; ++j) {
      const qint64 at = m_position;
      slot.SeriesPositions[j] = at;
      if (failed) continue;
      char bytes[kSeriesHeaderSize];
      ReadInto(at, bytes, kSeriesHeaderSize);
      const SeriesHeader header = SeriesHeader::Decode(bytes);
      m_position += kSeriesHeaderSize;
      if (header.Count < 0) {
        m_lastError = QStringLiteral("SeriesHeader.Count<0 at byte ") + QString::number(at);
        failed = true;
        continue;
      }
      const qint64 valueBytes = static_cast<qint64>(header.Count) * header.EffectiveValueSize();
      if (valueBytes >= 2147483647) {
        m_lastError = QStringLiteral("SeriesHeader.Count too large at byte ") + QString::number(at);
        failed = true;
        continue;
      }
      m_position += valueBytes;
      slot.SeriesUsable[j] = header.Usable();
      if (valueBytes > 0)
        slot.LongestStoredSeries = std::max(slot.LongestStoredSeries, header.Count);
    }
  }
  if (failed) return false;
  const qint64 end = m_position - 1;
  if (end < m_fileLength) {
    m_lastError = QStringLiteral("Metrics database file too long. Expected: %1 bytes, not %2.")
                      .arg(end)
                      .arg(m_fileLength);
    return false;
  }
  if (end > m_fileLength) {
    m_lastError = QStringLiteral("Metrics database file too short. Expected: %1 bytes, not %2.")
                      .arg(end)
                      .arg(m_fileLength);
    return false;
  }
  return true;
}

// ---------------------------------------------------------------------------
// Getters

const ClassSlot& QVZRead::Slot(int metricClass) const {
  if (metricClass < 0 || metricClass >= kMetricClassCount) return kAbsentSlot;
  return m_classes[metricClass];
}

int32_t QVZRead::GetClassSize(int metricClass) const {
  // A row count the file cannot back would size every column of the class:
  // such a class counts as empty, as it shows no names either.
  const ClassSlot& slot = Slot(metricClass);
  return slot.ItemCount <= RowLimit(slot) ? slot.ItemCount : 0;
}

QString QVZRead::DecodeText(const char* bytes, qsizetype size) const {
  return DecodeText(m_header.Flags, bytes, size);
}

QString QVZRead::DecodeText(int32_t flags, const char* bytes, qsizetype size) {
  if (flags & kFlagUtf8) {
    const void* zero = std::memchr(bytes, 0, static_cast<size_t>(size));
    const qsizetype length = zero ? static_cast<const char*>(zero) - bytes : size;
    return RightTrimBlanks(MultiByteToText(bytes, length, kCodepageUtf8));
  }
  return RightTrimBlanks(MultiByteToText(bytes, size, kCodepageAnsi));
}

QString QVZRead::Title() const { return DecodeText(m_header.Title.data(), kTextFieldSize); }

QString QVZRead::ProjectFilename() const {
  return DecodeText(m_header.ProjectFilename.data(), kTextFieldSize);
}

QString QVZRead::Title(const DatabaseHeader& header) {
  return DecodeText(header.Flags, header.Title.data(), kTextFieldSize);
}

QString QVZRead::ProjectFilename(const DatabaseHeader& header) {
  return DecodeText(header.Flags, header.ProjectFilename.data(), kTextFieldSize);
}

QString QVZRead::GetSavedBy() const { return RightTrimBlanks(AnsiField(m_header.SavedBy)); }

QString QVZRead::GetSavedDate() const { return AnsiField(m_header.SavedDate); }

QString QVZRead::GetVersionText() const {
  return QString::number(static_cast<double>(m_header.Version), 'f', 1);
}

double QVZRead::GetAnalysisDate() const {
  return ParseTimestamp14(AnsiField(m_header.AnalysisStamp));
}

void QVZRead::GetProjectInfo(QString& title, QString& project, double& date) const {
  title = Title();
  project = ProjectFilename();
  date = GetAnalysisDate();
}

}  // namespace ombrelle
