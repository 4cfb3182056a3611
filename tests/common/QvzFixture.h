#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace ombrelle::test {

// Little-endian writers for building files byte by byte.
void AppendInt16(QByteArray& out, int16_t value);
void AppendInt32(QByteArray& out, int32_t value);
void AppendFloat(QByteArray& out, float value);
void AppendDouble(QByteArray& out, double value);
// `text` cut or padded with `pad` to exactly `size` bytes.
QByteArray Padded(const QByteArray& text, int size, char pad);

// One stored series: its 76-byte header fields and its raw value bytes.
struct SeriesSpec {
  int32_t metricId = 0;
  int32_t count = 0;
  double mean = 0, stdDev = 0, min = 0, max = 0, median = 0, q5 = 0, q95 = 0;
  uint8_t valueSize = 0;
  uint8_t valueKind = 0;
  QByteArray values;  // written right after the header, as given

  // Values stored in the encoding `kind` (0 double, 1 int32, 2 int16, 3 byte);
  // count, mean, min and max follow from the values.
  static SeriesSpec Stored(int32_t metricId, uint8_t kind, const std::vector<double>& values);
  // Kind 4: `count` values all equal to `value`, nothing stored.
  static SeriesSpec Constant(int32_t metricId, int32_t count, double value);
};

// One class: its record, its metric ids, its row names and its series.
struct ClassSpec {
  int32_t classNr = 0;
  int32_t itemCount = 0;
  std::optional<int32_t> seriesCount;  // record field; default: number of series
  QStringList rowNames;
  // Version 3 block: its Encoding field, and a Length that replaces the true one.
  int32_t rowEncoding = 2;
  std::optional<int32_t> rowBlockLength;
  // Version 3 block: raw text bytes that replace the joined row names.
  std::optional<QByteArray> rowText;
  // Versions below 3: FileNr of each row record (0 when missing), and how
  // many records are written (default: itemCount).
  std::vector<int16_t> fileNrs;
  std::optional<int32_t> rowRecords;
  std::vector<SeriesSpec> series;
};

// Where the sections of a built file start (0-based offsets).
struct FixtureLayout {
  qint64 classTable = 0;
  qint64 metricIds = 0;
  qint64 rowNames = 0;
  qint64 series = 0;
  std::vector<qint64> seriesHeaders;  // each SeriesHeader, in file order
  qint64 length = 0;
};

// Builds a metrics database file from its parts. By default: version 3.0,
// flags 3 (sorted, UTF-8), plausible header texts, a correct checksum and no
// classes. Every field can be set to a wrong value on purpose.
class QvzFixture {
 public:
  QByteArray magic = "QVZ-KRDB";
  float version = 3.0f;
  int32_t flags = 3;
  QString title = QStringLiteral("Sample analysis");
  QString projectFilename = QStringLiteral("/projects/sample/sample.tpj");
  // Raw 214-byte text fields; when set they replace `title`/`projectFilename`.
  std::optional<QByteArray> titleBytes;
  std::optional<QByteArray> projectBytes;
  QByteArray savedBy = "Tarnwick 4.2";          // blank-padded to 32
  QByteArray savedDate = "2024-01-31";          // blank-padded to 10
  QByteArray analysisDate = "2024-01-31";       // blank-padded to 10
  QByteArray analysisStamp = "20240131235959";  // blank-padded to 14
  std::optional<int16_t> classCount;            // default: number of classes
  std::optional<QByteArray> checksum;           // default: the correct one
  std::vector<ClassSpec> classes;
  QByteArray trailing;  // extra bytes after the series

  ClassSpec& AddClass(int32_t classNr, int32_t itemCount);

  QByteArray Build(FixtureLayout* layout = nullptr) const;
  // Builds and writes to `path`; returns `path`.
  QString Write(const QString& path, FixtureLayout* layout = nullptr) const;

  // The checksum of a whole file's bytes, from its header fields and length,
  // computed independently of the program's own routines.
  static QByteArray ChecksumOf(const QByteArray& file);
  static void WriteBytes(const QString& path, const QByteArray& bytes);
  static QByteArray ReadBytes(const QString& path);

  // The smallest valid version 3 file: one class (0) with one metric, no rows
  // and a zero SeriesHeader, 658 bytes.
  static QvzFixture SmallestVersion3();
  // A file of `version` whose file class (1) has `itemCount` rows named by
  // `names` (or by the raw block `rowText`) and one series of ones.
  static QvzFixture WithRowNames(float version, int32_t flags, int32_t itemCount,
                                 const QStringList& names, const std::optional<QByteArray>& rowText,
                                 int32_t encoding);
};

}  // namespace ombrelle::test
