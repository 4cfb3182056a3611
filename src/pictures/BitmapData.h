#pragma once

#include <cstdint>
#include <vector>

#include <QByteArray>

class QImage;

namespace ombrelle {

// The pixels of a picture in the layout of a device-independent bitmap: rows
// of `Stride()` bytes (a multiple of four), depths 1, 4, 8, 16, 24 and 32.
// Depths up to 8 hold colour-table indices (1 bit: the highest bit is the
// leftmost pixel; 4 bits: the high nibble is); 16 bits are 5-5-5 words (blue
// in the lowest bits), 24 bits blue, green, red bytes, 32 bits blue, green,
// red and a spare byte. Rows count from the top: y = 0 is the top row,
// whatever the order of the source. Colours are 0x00BBGGRR values.
class BitmapData {
 public:
  // Copies the pixels of `bits`: `height` rows of `stride` bytes, the bottom
  // row first unless `topDown`. `colorTable` is the palette of depths up to 8
  // (it may be shorter than 2^depth; indices past its end read as black).
  // False (and an empty object) for an unknown depth, a stride too small for
  // the width, or a negative size.
  bool SetBits(int width, int height, int depth, const void* bits, std::int64_t stride,
               std::vector<std::uint32_t> colorTable, bool topDown);
  // Reads a picture: 1-bit, 8-bit indexed, 16-bit 5-5-5 and 32-bit images
  // keep their depth, any other format is read as 32 bits.
  bool GetData(const QImage& picture);

  int Width() const { return m_width; }
  int Height() const { return m_height; }
  int Depth() const { return m_depth; }
  int Stride() const { return m_stride; }
  bool IsEmptyRectangle() const { return m_width <= 0 || m_height <= 0; }
  const std::vector<std::uint32_t>& ColorTable() const { return m_colorTable; }
  // The bytes of row y (0 = top).
  const std::uint8_t* Row(int y) const { return m_bits.data() + std::size_t(y) * m_stride; }

  // The colour-table index at depths up to 8, else the colour. Positions
  // outside the picture give 0.
  std::uint32_t GetPixel(int x, int y) const;
  // The colour at a position, through the colour table at depths up to 8.
  std::uint32_t GetColor(int x, int y) const;
  void GetPixelRGB(int x, int y, int& red, int& green, int& blue) const;
  // A rectangle, row by row from its top: GetPixel values; blue, green, red
  // bytes; colours (0x00BBGGRR).
  std::vector<std::uint32_t> GetPixels(int x, int y, int width, int height) const;
  QByteArray GetPixelsBGRBytes(int x, int y, int width, int height) const;
  std::vector<std::uint32_t> GetPixelsBGR(int x, int y, int width, int height) const;

  // The colour of a pixel of a row at depth 16, 24 or 32.
  static std::uint32_t DirectColor(const std::uint8_t* row, int x, int depth);

 private:
  int m_width = 0;
  int m_height = 0;
  int m_depth = 0;
  int m_stride = 0;
  std::vector<std::uint8_t> m_bits;
  std::vector<std::uint32_t> m_colorTable;
};

// A colour from its channels, and its channels.
constexpr std::uint32_t RgbColor(int red, int green, int blue) {
  return std::uint32_t(red & 0xFF) | (std::uint32_t(green & 0xFF) << 8) |
         (std::uint32_t(blue & 0xFF) << 16);
}
constexpr int RedOf(std::uint32_t color) { return int(color & 0xFF); }
constexpr int GreenOf(std::uint32_t color) { return int((color >> 8) & 0xFF); }
constexpr int BlueOf(std::uint32_t color) { return int((color >> 16) & 0xFF); }

}  // namespace ombrelle
