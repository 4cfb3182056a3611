// Block reads and writes of CStats values: raw little-endian numbers, no header, no count.

#include <QIODevice>
#include <QtEndian>

#include <bit>
#include <cstring>

#include "stats/CStats.h"

namespace ombrelle {

namespace {

// Bytes the device can still deliver from its current position.
qint64 RemainingBytes(const QIODevice& file) {
  if (!file.isOpen() || !file.isReadable()) return 0;
  if (file.isSequential()) return file.bytesAvailable();
  return file.size() - file.pos();
}

bool ReadExactly(QIODevice& file, char* into, qint64 bytes) {
  while (bytes > 0) {
    const qint64 got = file.read(into, bytes);
    if (got <= 0) return false;
    into += got;
    bytes -= got;
  }
  return true;
}

}  // namespace

bool CStats::Save(QIODevice& Filenr) const {
  if (!Filenr.isOpen() || !Filenr.isWritable()) return false;
  if (m_capacity == 0) return true;
  const qint64 bytes = static_cast<qint64>(m_capacity) * 8;
  if constexpr (std::endian::native == std::endian::little) {
    return Filenr.write(reinterpret_cast<const char*>(m_values.data()), bytes) == bytes;
  } else {
    constexpr std::int32_t kChunk = 8192;
    unsigned char buffer[kChunk * 8];
    for (std::int32_t at = 0; at < m_capacity; at += kChunk) {
      const std::int32_t n = std::min(kChunk, m_capacity - at);
      for (std::int32_t i = 0; i < n; ++i)
        qToLittleEndian(std::bit_cast<quint64>(m_values[at + i]), buffer + 8 * i);
      if (Filenr.write(reinterpret_cast<const char*>(buffer), qint64{n} * 8) != qint64{n} * 8)
        return false;
    }
    return true;
  }
}

bool CStats::LoadRaw(QIODevice& file, std::int32_t n, int width) {
  // The count comes from the file itself: refuse it before reserving memory unless the rest
  // of the file can really hold that many values.
  if (n < 0 || static_cast<qint64>(n) * width > RemainingBytes(file)) {
    Init(0, false);
    return false;
  }
  // Init(n) without zeroing the slots: the read below fills every one of them.
  Init(0, false);
  if (n == 0) return true;
  m_values.resize(static_cast<std::size_t>(n));
  m_capacity = m_count = n;
  double* out = m_values.data();
  bool ok = true;
  if (width == 8) {
    ok = ReadExactly(file, reinterpret_cast<char*>(out), qint64{n} * 8);
    if (ok && std::endian::native != std::endian::little)
      for (std::int32_t i = 0; i < n; ++i)
        out[i] = std::bit_cast<double>(qFromLittleEndian(std::bit_cast<quint64>(out[i])));
  } else {
    // Read through a small buffer and widen to double.
    constexpr std::int32_t kChunk = 16384;
    unsigned char buffer[kChunk * 4];
    for (std::int32_t at = 0; ok && at < n; at += kChunk) {
      const std::int32_t count = std::min(kChunk, n - at);
      ok = ReadExactly(file, reinterpret_cast<char*>(buffer), qint64{count} * width);
      if (!ok) break;
      double* dst = out + at;
      if (width == 4) {
        for (std::int32_t i = 0; i < count; ++i) dst[i] = qFromLittleEndian<qint32>(buffer + 4 * i);
      } else if (width == 2) {
        for (std::int32_t i = 0; i < count; ++i) dst[i] = qFromLittleEndian<qint16>(buffer + 2 * i);
      } else {
        for (std::int32_t i = 0; i < count; ++i) dst[i] = buffer[i];
      }
    }
  }
  if (!ok) {
    Init(0, false);
    return false;
  }
  return true;
}

bool CStats::Load(QIODevice& Filenr, std::int32_t NumberOfValues) {
  return LoadRaw(Filenr, NumberOfValues, 8);
}

bool CStats::LoadLong(QIODevice& Filenr, std::int32_t NumberOfValues) {
  return LoadRaw(Filenr, NumberOfValues, 4);
}

bool CStats::LoadInt(QIODevice& Filenr, std::int32_t NumberOfValues) {
  return LoadRaw(Filenr, NumberOfValues, 2);
}

bool CStats::LoadByte(QIODevice& Filenr, std::int32_t NumberOfValues) {
  return LoadRaw(Filenr, NumberOfValues, 1);
}

}  // namespace ombrelle
