#pragma once

#include <cstdint>
#include <cstring>

#include <QByteArray>

namespace ombrelle {

// Appends numbers to a byte array in little-endian order, as the metafile
// formats store them, and patches numbers already written (record sizes and
// counts that are known only at the end).
class LittleEndianWriter {
 public:
  void U8(uint8_t v) { m_bytes.append(static_cast<char>(v)); }
  void U16(uint16_t v) {
    U8(static_cast<uint8_t>(v));
    U8(static_cast<uint8_t>(v >> 8));
  }
  void I16(int16_t v) { U16(static_cast<uint16_t>(v)); }
  void U32(uint32_t v) {
    U16(static_cast<uint16_t>(v));
    U16(static_cast<uint16_t>(v >> 16));
  }
  void I32(int32_t v) { U32(static_cast<uint32_t>(v)); }
  void F32(float v) {
    uint32_t bits = 0;
    std::memcpy(&bits, &v, sizeof bits);
    U32(bits);
  }
  void Bytes(const QByteArray& b) { m_bytes.append(b); }
  void Zeros(int count) { m_bytes.append(count, '\0'); }

  void PatchU16(int at, uint16_t v) {
    m_bytes[at] = static_cast<char>(v);
    m_bytes[at + 1] = static_cast<char>(v >> 8);
  }
  void PatchU32(int at, uint32_t v) {
    PatchU16(at, static_cast<uint16_t>(v));
    PatchU16(at + 2, static_cast<uint16_t>(v >> 16));
  }

  int Size() const { return static_cast<int>(m_bytes.size()); }
  const QByteArray& Data() const { return m_bytes; }
  QByteArray Take() { return std::move(m_bytes); }

 private:
  QByteArray m_bytes;
};

// Reads little-endian numbers from a byte array; reads past the end give 0
// and set the failure flag, so a reader of file data never reads outside it.
class LittleEndianReader {
 public:
  explicit LittleEndianReader(const QByteArray& bytes, int start = 0)
      : m_bytes(bytes), m_pos(start) {}
  uint8_t U8() {
    if (m_pos < 0 || m_pos >= m_bytes.size()) {
      m_failed = true;
      return 0;
    }
    return static_cast<uint8_t>(m_bytes[m_pos++]);
  }
  uint16_t U16() {
    const uint16_t lo = U8();
    return static_cast<uint16_t>(lo | (U8() << 8));
  }
  int16_t I16() { return static_cast<int16_t>(U16()); }
  uint32_t U32() {
    const uint32_t lo = U16();
    return lo | (static_cast<uint32_t>(U16()) << 16);
  }
  int32_t I32() { return static_cast<int32_t>(U32()); }
  void Skip(int count) { m_pos += count; }
  void Seek(int pos) { m_pos = pos; }
  int Pos() const { return m_pos; }
  bool Failed() const { return m_failed; }

 private:
  const QByteArray& m_bytes;
  int m_pos;
  bool m_failed = false;
};

}  // namespace ombrelle
