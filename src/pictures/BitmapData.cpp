#include "pictures/BitmapData.h"

#include <cstring>

#include <QImage>

namespace ombrelle {

namespace {

bool KnownDepth(int depth) {
  return depth == 1 || depth == 4 || depth == 8 || depth == 16 || depth == 24 || depth == 32;
}

// QRgb (0xAARRGGBB) as 0x00BBGGRR.
std::uint32_t FromQRgb(QRgb rgb) { return RgbColor(qRed(rgb), qGreen(rgb), qBlue(rgb)); }

}  // namespace

bool BitmapData::SetBits(int width, int height, int depth, const void* bits, std::int64_t stride,
                         std::vector<std::uint32_t> colorTable, bool topDown) {
  *this = BitmapData();
  if (!KnownDepth(depth) || width < 0 || height < 0) return false;
  const std::int64_t rowBytes = (std::int64_t(width) * depth + 7) / 8;
  if (stride < rowBytes || (height > 0 && bits == nullptr)) return false;
  m_width = width;
  m_height = height;
  m_depth = depth;
  m_stride = int((std::int64_t(width) * depth + 31) / 32 * 4);
  m_bits.assign(std::size_t(m_stride) * std::size_t(height), 0);
  const auto* source = static_cast<const std::uint8_t*>(bits);
  for (int y = 0; y < height; ++y) {
    const int sourceRow = topDown ? y : height - 1 - y;
    std::memcpy(m_bits.data() + std::size_t(y) * m_stride, source + sourceRow * stride,
                std::size_t(rowBytes));
  }
  if (depth <= 8) {
    if (colorTable.size() > (std::size_t(1) << depth)) colorTable.resize(std::size_t(1) << depth);
    m_colorTable = std::move(colorTable);
  }
  return true;
}

bool BitmapData::GetData(const QImage& picture) {
  if (picture.isNull()) {
    *this = BitmapData();
    return false;
  }
  QImage image = picture;
  int depth = 32;
  switch (image.format()) {
    case QImage::Format_Mono:
      depth = 1;
      break;
    case QImage::Format_Indexed8:
      depth = 8;
      break;
    case QImage::Format_RGB555:
      depth = 16;
      break;
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
      break;
    default:
      image = image.convertToFormat(QImage::Format_RGB32);
  }
  std::vector<std::uint32_t> table;
  for (const QRgb rgb : image.colorTable()) table.push_back(FromQRgb(rgb));
  return SetBits(image.width(), image.height(), depth, image.constBits(), image.bytesPerLine(),
                 std::move(table), true);
}

std::uint32_t BitmapData::DirectColor(const std::uint8_t* row, int x, int depth) {
  switch (depth) {
    case 16: {
      const unsigned word = row[2 * x] | (unsigned(row[2 * x + 1]) << 8);
      const auto expand = [](unsigned v) { return int((v << 3) | (v >> 2)); };
      return RgbColor(expand((word >> 10) & 31), expand((word >> 5) & 31), expand(word & 31));
    }
    case 24:
      return RgbColor(row[3 * x + 2], row[3 * x + 1], row[3 * x]);
    default:
      return RgbColor(row[4 * x + 2], row[4 * x + 1], row[4 * x]);
  }
}

std::uint32_t BitmapData::GetPixel(int x, int y) const {
  if (x < 0 || y < 0 || x >= m_width || y >= m_height) return 0;
  const std::uint8_t* row = Row(y);
  switch (m_depth) {
    case 1:
      return (row[x >> 3] >> (7 - (x & 7))) & 1;
    case 4:
      return (x & 1) ? (row[x >> 1] & 0x0F) : (row[x >> 1] >> 4);
    case 8:
      return row[x];
    default:
      return DirectColor(row, x, m_depth);
  }
}

std::uint32_t BitmapData::GetColor(int x, int y) const {
  const std::uint32_t value = GetPixel(x, y);
  if (m_depth > 8) return value;
  return value < m_colorTable.size() ? m_colorTable[value] : 0;
}

void BitmapData::GetPixelRGB(int x, int y, int& red, int& green, int& blue) const {
  const std::uint32_t color = GetColor(x, y);
  red = RedOf(color);
  green = GreenOf(color);
  blue = BlueOf(color);
}

std::vector<std::uint32_t> BitmapData::GetPixels(int x, int y, int width, int height) const {
  std::vector<std::uint32_t> values;
  values.reserve(std::size_t(std::max(0, width)) * std::size_t(std::max(0, height)));
  for (int j = 0; j < height; ++j)
    for (int i = 0; i < width; ++i) values.push_back(GetPixel(x + i, y + j));
  return values;
}

QByteArray BitmapData::GetPixelsBGRBytes(int x, int y, int width, int height) const {
  QByteArray bytes;
  bytes.reserve(qsizetype(std::max(0, width)) * std::max(0, height) * 3);
  for (int j = 0; j < height; ++j) {
    for (int i = 0; i < width; ++i) {
      const std::uint32_t color = GetColor(x + i, y + j);
      bytes.append(char(BlueOf(color))).append(char(GreenOf(color))).append(char(RedOf(color)));
    }
  }
  return bytes;
}

std::vector<std::uint32_t> BitmapData::GetPixelsBGR(int x, int y, int width, int height) const {
  std::vector<std::uint32_t> colors;
  colors.reserve(std::size_t(std::max(0, width)) * std::size_t(std::max(0, height)));
  for (int j = 0; j < height; ++j)
    for (int i = 0; i < width; ++i) colors.push_back(GetColor(x + i, y + j));
  return colors;
}

}  // namespace ombrelle
