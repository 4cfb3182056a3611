#pragma once

#include <array>
#include <cstdint>

#include <QByteArray>

#include "core/MetricDefinitions.h"  // kMetricClassCount, the class codes 0 to 4

namespace ombrelle {

// Layout of a metrics database file (.qvz). Every number is little-endian and
// nothing is padded or aligned, so records are decoded from bytes field by
// field, never by casting memory.

constexpr int kHeaderSize = 554;
constexpr int kClassRecordSize = 12;
constexpr int kMetricIdSize = 4;
constexpr int kRowBlockHeadSize = 12;
constexpr int kRowRecordSize = 130;
constexpr int kRowNameSize = 128;
constexpr int kSeriesHeaderSize = 76;
constexpr int kTextFieldSize = 214;

constexpr char kQvzMagic[] = "QVZ-KRDB";
// Fixed salt of the header checksum; a constant of the format.
constexpr char kChecksumSalt[] = "731946052";

// Header flags.
constexpr int32_t kFlagSorted = 1;  // row names stored in sorted order
constexpr int32_t kFlagUtf8 = 2;    // text fields in UTF-8, else ANSI

// Row-name block encoding bit (version 3 and later).
constexpr int32_t kRowEncodingUtf8 = 2;

// Value encodings of a series.
constexpr uint8_t kValueDouble = 0;
constexpr uint8_t kValueInt32 = 1;
constexpr uint8_t kValueInt16 = 2;
constexpr uint8_t kValueByte = 3;
constexpr uint8_t kValueConstant = 4;

// The 554-byte header at the start of the file. Character fields keep their
// raw bytes, padding included.
struct DatabaseHeader {
  std::array<char, 8> Magic{};
  float Version = 0.0f;
  int32_t Flags = 0;
  std::array<char, kTextFieldSize> Title{};
  std::array<char, 32> Checksum{};
  std::array<char, 10> Reserved{};
  std::array<char, kTextFieldSize> ProjectFilename{};
  std::array<char, 32> SavedBy{};
  std::array<char, 10> SavedDate{};
  std::array<char, 10> AnalysisDate{};
  std::array<char, 14> AnalysisStamp{};
  int16_t ClassCount = 0;

  // `bytes` holds at least kHeaderSize bytes.
  static DatabaseHeader Decode(const char* bytes);
  QByteArray Encode() const;
};

// One record of the class table.
struct TQVZMetricClass {
  int32_t ClassNr = 0;
  int32_t SeriesCount = 0;  // only its low 16 bits count, as a signed number
  int32_t ItemCount = 0;

  static TQVZMetricClass Decode(const char* bytes);
  QByteArray Encode() const;
};

// Head of one class's row-name block (version 3 and later).
struct RowBlockHead {
  int32_t Length = 0;
  int32_t Encoding = 0;
  int32_t Unused = 0;

  static RowBlockHead Decode(const char* bytes);
  QByteArray Encode() const;
};

// One 130-byte row record (versions below 3).
struct RowRecord {
  int16_t FileNr = 0;
  std::array<char, kRowNameSize> Name{};

  static RowRecord Decode(const char* bytes);
  QByteArray Encode() const;
};

// The fixed 76-byte head of a series; its values follow it directly.
struct SeriesHeader {
  int32_t Count = 0;
  double Mean = 0.0;
  double StdDev = 0.0;
  double Min = 0.0;
  double Max = 0.0;
  double Median = 0.0;
  double Q5 = 0.0;
  double Q95 = 0.0;
  uint8_t ValueSize = 0;
  uint8_t ValueKind = 0;
  // 14 reserved bytes follow, written as zero and never read.

  static SeriesHeader Decode(const char* bytes);
  QByteArray Encode() const;

  // Bytes per stored value: files from before the compact encodings have
  // size and kind both zero, which means doubles.
  int EffectiveValueSize() const { return ValueSize == 0 && ValueKind == 0 ? 8 : ValueSize; }
  bool Usable() const { return ValueKind <= kValueConstant; }
};

// Little-endian field access on raw bytes.
int16_t GetInt16(const char* p);
int32_t GetInt32(const char* p);
float GetFloat(const char* p);
double GetDouble(const char* p);
void PutInt16(QByteArray& out, int16_t value);
void PutInt32(QByteArray& out, int32_t value);
void PutFloat(QByteArray& out, float value);
void PutDouble(QByteArray& out, double value);

// The 32 upper-case hexadecimal digits that guard `header` in a file of
// `fileLength` bytes: the MD5 digest of the stamp, SavedBy and SavedDate
// fields (padding included), the salt and the length in hexadecimal.
QByteArray HeaderChecksum(const DatabaseHeader& header, qint64 fileLength);
// Whether the header's Checksum field holds HeaderChecksum for a file of
// `fileLength` bytes, byte for byte; computed without string objects.
bool HeaderChecksumMatches(const DatabaseHeader& header, qint64 fileLength);

}  // namespace ombrelle
