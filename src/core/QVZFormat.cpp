#include "core/QVZFormat.h"

#include "support/MD5.h"

#include <bit>
#include <charconv>
#include <cstring>

#include <QCryptographicHash>

namespace ombrelle {

namespace {

template <typename T>
T GetLittle(const char* p) {
  using U = std::conditional_t<sizeof(T) == 2, uint16_t,
                               std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>>;
  U value = 0;
  for (size_t i = 0; i < sizeof(T); ++i)
    value |= static_cast<U>(static_cast<unsigned char>(p[i])) << (8 * i);
  return std::bit_cast<T>(value);
}

template <typename T>
void PutLittle(QByteArray& out, T field) {
  using U = std::conditional_t<sizeof(T) == 2, uint16_t,
                               std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>>;
  const U value = std::bit_cast<U>(field);
  for (size_t i = 0; i < sizeof(T); ++i) out.append(static_cast<char>((value >> (8 * i)) & 0xFF));
}

template <size_t N>
void GetChars(std::array<char, N>& field, const char*& p) {
  std::memcpy(field.data(), p, N);
  p += N;
}

template <size_t N>
void PutChars(QByteArray& out, const std::array<char, N>& field) {
  out.append(field.data(), static_cast<qsizetype>(N));
}

}  // namespace

int16_t GetInt16(const char* p) { return GetLittle<int16_t>(p); }
int32_t GetInt32(const char* p) { return GetLittle<int32_t>(p); }
float GetFloat(const char* p) { return GetLittle<float>(p); }
double GetDouble(const char* p) { return GetLittle<double>(p); }
void PutInt16(QByteArray& out, int16_t value) { PutLittle(out, value); }
void PutInt32(QByteArray& out, int32_t value) { PutLittle(out, value); }
void PutFloat(QByteArray& out, float value) { PutLittle(out, value); }
void PutDouble(QByteArray& out, double value) { PutLittle(out, value); }

DatabaseHeader DatabaseHeader::Decode(const char* bytes) {
  DatabaseHeader h;
  const char* p = bytes;
  GetChars(h.Magic, p);
  h.Version = GetFloat(p);
  h.Flags = GetInt32(p + 4);
  p += 8;
  GetChars(h.Title, p);
  GetChars(h.Checksum, p);
  GetChars(h.Reserved, p);
  GetChars(h.ProjectFilename, p);
  GetChars(h.SavedBy, p);
  GetChars(h.SavedDate, p);
  GetChars(h.AnalysisDate, p);
  GetChars(h.AnalysisStamp, p);
  h.ClassCount = GetInt16(p);
  return h;
}

QByteArray DatabaseHeader::Encode() const {
  QByteArray out;
  out.reserve(kHeaderSize);
  PutChars(out, Magic);
  PutFloat(out, Version);
  PutInt32(out, Flags);
  PutChars(out, Title);
  PutChars(out, Checksum);
  PutChars(out, Reserved);
  PutChars(out, ProjectFilename);
  PutChars(out, SavedBy);
  PutChars(out, SavedDate);
  PutChars(out, AnalysisDate);
  PutChars(out, AnalysisStamp);
  PutInt16(out, ClassCount);
  return out;
}

TQVZMetricClass TQVZMetricClass::Decode(const char* bytes) {
  return {GetInt32(bytes), GetInt32(bytes + 4), GetInt32(bytes + 8)};
}

QByteArray TQVZMetricClass::Encode() const {
  QByteArray out;
  PutInt32(out, ClassNr);
  PutInt32(out, SeriesCount);
  PutInt32(out, ItemCount);
  return out;
}

RowBlockHead RowBlockHead::Decode(const char* bytes) {
  return {GetInt32(bytes), GetInt32(bytes + 4), GetInt32(bytes + 8)};
}

QByteArray RowBlockHead::Encode() const {
  QByteArray out;
  PutInt32(out, Length);
  PutInt32(out, Encoding);
  PutInt32(out, Unused);
  return out;
}

RowRecord RowRecord::Decode(const char* bytes) {
  RowRecord r;
  r.FileNr = GetInt16(bytes);
  std::memcpy(r.Name.data(), bytes + 2, kRowNameSize);
  return r;
}

QByteArray RowRecord::Encode() const {
  QByteArray out;
  PutInt16(out, FileNr);
  PutChars(out, Name);
  return out;
}

SeriesHeader SeriesHeader::Decode(const char* bytes) {
  SeriesHeader s;
  s.Count = GetInt32(bytes);
  s.Mean = GetDouble(bytes + 4);
  s.StdDev = GetDouble(bytes + 12);
  s.Min = GetDouble(bytes + 20);
  s.Max = GetDouble(bytes + 28);
  s.Median = GetDouble(bytes + 36);
  s.Q5 = GetDouble(bytes + 44);
  s.Q95 = GetDouble(bytes + 52);
  s.ValueSize = static_cast<uint8_t>(bytes[60]);
  s.ValueKind = static_cast<uint8_t>(bytes[61]);
  return s;
}

QByteArray SeriesHeader::Encode() const {
  QByteArray out;
  out.reserve(kSeriesHeaderSize);
  PutInt32(out, Count);
  for (double v : {Mean, StdDev, Min, Max, Median, Q5, Q95}) PutDouble(out, v);
  out.append(static_cast<char>(ValueSize));
  out.append(static_cast<char>(ValueKind));
  out.append(14, '\0');
  return out;
}

namespace {

// The bytes the checksum guards: stamp, saver, saved date, the salt and the
// file's length in upper-case hexadecimal. `out` holds 96 bytes.
qsizetype ChecksumInput(const DatabaseHeader& header, qint64 fileLength, char* out) {
  char* p = out;
  std::memcpy(p, header.AnalysisStamp.data(), header.AnalysisStamp.size());
  p += header.AnalysisStamp.size();
  std::memcpy(p, header.SavedBy.data(), header.SavedBy.size());
  p += header.SavedBy.size();
  std::memcpy(p, header.SavedDate.data(), header.SavedDate.size());
  p += header.SavedDate.size();
  std::memcpy(p, kChecksumSalt, sizeof kChecksumSalt - 1);
  p += sizeof kChecksumSalt - 1;
  char* end = std::to_chars(p, p + 20, fileLength, 16).ptr;
  for (; p != end; ++p)
    if (*p >= 'a' && *p <= 'f') *p = static_cast<char>(*p - 'a' + 'A');
  return p - out;
}

}  // namespace

bool HeaderChecksumMatches(const DatabaseHeader& header, qint64 fileLength) {
  char input[96];
  const qsizetype size = ChecksumInput(header, fileLength, input);
  QCryptographicHash hash(QCryptographicHash::Md5);
  hash.addData(QByteArrayView(input, size));
  const QByteArrayView digest = hash.resultView();
  static constexpr char kHex[] = "0123456789ABCDEF";
  for (qsizetype i = 0; i < digest.size(); ++i) {
    const auto byte = static_cast<unsigned char>(digest[i]);
    if (header.Checksum[2 * i] != kHex[byte >> 4] || header.Checksum[2 * i + 1] != kHex[byte & 15])
      return false;
  }
  return digest.size() * 2 == static_cast<qsizetype>(header.Checksum.size());
}

QByteArray HeaderChecksum(const DatabaseHeader& header, qint64 fileLength) {
  QByteArray guarded;
  guarded.append(header.AnalysisStamp.data(), header.AnalysisStamp.size());
  guarded.append(header.SavedBy.data(), header.SavedBy.size());
  guarded.append(header.SavedDate.data(), header.SavedDate.size());
  guarded.append(kChecksumSalt);
  guarded.append(QByteArray::number(fileLength, 16).toUpper());
  // The fields are ANSI characters already: their bytes are what is hashed.
  return MD5::DigestBytesToHexStr(guarded).toLatin1();
}

}  // namespace ombrelle
