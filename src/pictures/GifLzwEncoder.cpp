#include "pictures/GifLzwEncoder.h"

#include <algorithm>

namespace ombrelle {

GifLzwEncoder::GifLzwEncoder(int bitsPerPixel, QByteArray& out)
    : m_out(out), m_keys(kHashSize, 0), m_codes(kHashSize, 0) {
  const int bits = std::clamp(bitsPerPixel, 1, 8);
  // One bit per pixel is coded as two: a reader needs the codes 0, 1, clear
  // and end to fit, which takes a first width of three.
  m_clearCode = bits == 1 ? 4 : 1 << bits;
  m_endCode = m_clearCode + 1;
  m_firstFree = m_clearCode + 2;
  m_initialWidth = bits == 1 ? 3 : bits + 1;
  m_width = m_initialWidth;
  m_out.append(char(m_initialWidth - 1));
  WriteCode(m_clearCode);
}

void GifLzwEncoder::ResetTable() {
  std::fill(m_keys.begin(), m_keys.end(), 0u);
  m_tableCount = 0;
  m_width = m_initialWidth;
}

void GifLzwEncoder::AddPixels(const std::uint8_t* pixels, int count) {
  int i = 0;
  if (m_current < 0 && count > 0) m_current = pixels[i++];
  int current = m_current;
  for (; i < count; ++i) {
    const std::uint32_t pixel = pixels[i];
    const std::uint32_t key = (std::uint32_t(current) << 8) | pixel;
    std::uint32_t slot = (key * 2654435761u) >> (32 - 13);
    int found = -1;
    while (m_keys[slot] != 0) {
      if (m_keys[slot] == key + 1) {
        found = m_codes[slot];
        break;
      }
      slot = (slot + 1) & (kHashSize - 1);
    }
    if (found >= 0) {
      current = found;
      continue;
    }
    WriteCode(current);
    // The string goes in with the next free code; `slot` is the free slot
    // the search ended on.
    m_keys[slot] = key + 1;
    m_codes[slot] = std::uint16_t(m_tableCount + m_firstFree);
    ++m_tableCount;
    if (m_tableCount - 1 + m_firstFree >= (1 << m_width)) ++m_width;
    if (m_tableCount + m_firstFree == kLastCode) {
      WriteCode(m_clearCode);
      ++m_clears;
      ResetTable();
    }
    current = int(pixel);
  }
  m_current = current;
}

void GifLzwEncoder::WriteCode(int code) {
  m_bits |= std::uint64_t(code) << m_bitCount;
  m_bitCount += m_width;
  ++m_codesWritten;
  while (m_bitCount >= 8) {
    m_block[++m_blockFill] = std::uint8_t(m_bits);
    m_bits >>= 8;
    m_bitCount -= 8;
    if (m_blockFill == 255) {
      m_block[0] = 255;
      m_out.append(reinterpret_cast<const char*>(m_block), 256);
      m_blockFill = 0;
    }
  }
}

void GifLzwEncoder::Finish() {
  if (m_current >= 0) {
    WriteCode(m_current);
    // A reader counts the last code as if it had made a table entry, and
    // reads the end code at the width that count gives.
    if (m_tableCount + m_firstFree >= (1 << m_width) && m_width < 12) ++m_width;
  }
  WriteCode(m_endCode);
  if (m_bitCount > 0) {
    m_block[++m_blockFill] = std::uint8_t(m_bits);
    m_bits = 0;
    m_bitCount = 0;
  }
  if (m_blockFill > 0) {
    m_block[0] = std::uint8_t(m_blockFill);
    m_out.append(reinterpret_cast<const char*>(m_block), m_blockFill + 1);
    m_blockFill = 0;
  }
  m_out.append('\0');
  m_current = -1;
}

}  // namespace ombrelle
