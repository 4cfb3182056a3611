#pragma once

#include <cstdint>
#include <vector>

#include <QByteArray>

namespace ombrelle {

// The variable-code-length LZW coder of GIF image data. Codes are packed
// least significant bit first into data blocks of up to 255 bytes, each with
// its count byte in front, appended to the output as they fill.
//
// Code table: single pixels are their own codes; the clear code is
// 2^bitsPerPixel (4 for one bit), the end code the next, and strings get the
// codes after that in the order they are met. When the next free code would
// be 4095 a clear code goes out and the table starts again, and the code
// width grows by one as soon as the last code given out reaches 2^width.
// The string table is a hash of (prefix code, pixel).
class GifLzwEncoder {
 public:
  // `out` receives the minimum code size byte, the blocks and, from Finish,
  // the end code, the last block and the zero block.
  GifLzwEncoder(int bitsPerPixel, QByteArray& out);

  int ClearCode() const { return m_clearCode; }
  int InitialWidth() const { return m_initialWidth; }
  // Pixel values must be below 2^bitsPerPixel.
  void AddPixels(const std::uint8_t* pixels, int count);
  void Finish();
  // Codes written so far (clear and end codes included), for tests.
  std::int64_t CodesWritten() const { return m_codesWritten; }
  int ClearsWritten() const { return m_clears; }

 private:
  void WriteCode(int code);
  void ResetTable();

  static constexpr int kHashSize = 8192;  // twice the table's 4096 codes
  static constexpr int kLastCode = 4095;

  QByteArray& m_out;
  int m_clearCode;
  int m_endCode;
  int m_firstFree;
  int m_initialWidth;
  int m_width;
  int m_tableCount = 0;  // strings in the table since the last clear
  int m_current = -1;    // code of the current string, -1 before the first pixel
  std::uint64_t m_bits = 0;
  int m_bitCount = 0;
  std::uint8_t m_block[256];  // count byte and up to 255 data bytes
  int m_blockFill = 0;
  std::int64_t m_codesWritten = 0;
  int m_clears = 0;
  std::vector<std::uint32_t> m_keys;   // (prefix << 8 | pixel) + 1; 0 is free
  std::vector<std::uint16_t> m_codes;  // code of the key in the same slot
};

}  // namespace ombrelle
