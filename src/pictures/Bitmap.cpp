#include "pictures/Bitmap.h"

#include <cmath>
#include <unordered_map>

#include <QPainter>

#include "pictures/BmpEncoder.h"
#include "pictures/MetaPlayer.h"
#include "pictures/Metafile.h"
#include "pictures/PaletteReducer.h"
#include "support/FileIO.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

void Complain(const QString& text) { Ui().MsgBox(text, MsgStyle::Exclamation, QString()); }

QRgb ToRgb(std::uint32_t color) {
  return qRgb(color & 0xFF, (color >> 8) & 0xFF, (color >> 16) & 0xFF);
}

// The standard colour tables used when no colour list is given: the sixteen
// classic display colours, then a 6 x 6 x 6 cube and greys for 256.
QList<QRgb> StandardPalette(int size) {
  static const QRgb sixteen[16] = {
      qRgb(0, 0, 0),       qRgb(128, 0, 0),   qRgb(0, 128, 0),   qRgb(128, 128, 0),
      qRgb(0, 0, 128),     qRgb(128, 0, 128), qRgb(0, 128, 128), qRgb(192, 192, 192),
      qRgb(128, 128, 128), qRgb(255, 0, 0),   qRgb(0, 255, 0),   qRgb(255, 255, 0),
      qRgb(0, 0, 255),     qRgb(255, 0, 255), qRgb(0, 255, 255), qRgb(255, 255, 255)};
  QList<QRgb> table(sixteen, sixteen + 16);
  for (int r = 0; r < 6 && table.size() < size; ++r)
    for (int g = 0; g < 6; ++g)
      for (int b = 0; b < 6; ++b) table.push_back(qRgb(r * 51, g * 51, b * 51));
  for (int grey = 0; table.size() < size; grey += 11) table.push_back(qRgb(grey, grey, grey));
  table.resize(size);
  return table;
}

int Distance(QRgb a, QRgb b) {
  const int dr = qRed(a) - qRed(b), dg = qGreen(a) - qGreen(b), db = qBlue(a) - qBlue(b);
  return dr * dr + dg * dg + db * db;
}

int Nearest(const QList<QRgb>& palette, QRgb color) {
  int best = 0, bestDistance = INT32_MAX;
  for (int i = 0; i < palette.size(); ++i) {
    const int d = Distance(palette[i], color);
    if (d < bestDistance) {
      best = i;
      bestDistance = d;
      if (d == 0) break;
    }
  }
  return best;
}

}  // namespace

QList<QRgb> ChoosePalette(const std::vector<std::uint32_t>& colors, int size) {
  // The list itself when it fits, else the octree's reduction of it.
  std::vector<std::uint32_t> chosen;
  if (int(colors.size()) <= size) {
    chosen = colors;
  } else {
    PaletteReducer reducer;
    reducer.CreateOptimalFromColorCollection(colors, size);
    chosen = reducer.GetColorCollection();
  }
  QList<QRgb> table;
  table.reserve(size);
  for (std::uint32_t c : chosen) {
    if (table.size() >= size) break;
    table.push_back(ToRgb(c));
  }
  while (table.size() < size) table.push_back(qRgb(0, 0, 0));
  return table;
}

BitmapError::BitmapError(int number, const QString& text)
    : std::runtime_error(text.toStdString()), m_number(number), m_text(text) {}

Bitmap::Bitmap() = default;
Bitmap::~Bitmap() = default;

bool Bitmap::Create(int width, int height, int mode, const std::vector<std::uint32_t>& colors,
                    bool) {
  static const int valid[] = {-8, -4, 1, 4, 8, 16, 24, 32};
  if (std::find(std::begin(valid), std::end(valid), mode) == std::end(valid))
    throw BitmapError(14344, QStringLiteral("Unsupported Mode (") + QString::number(mode) +
                                 QStringLiteral(") in Bitmap.Create"));
  const int depth = std::abs(mode);
  height = std::abs(height);
  // Sizes the platform refuses: nothing, or more than 256 MB of pixels.
  if (width <= 0 || height <= 0 || double(width) * height * 4 > 256.0 * 1024 * 1024)
    throw BitmapError(14343,
                      QStringLiteral("Cannot create bitmap. Call to CreateDIBSection failed. "));
  QImage image;
  QList<QRgb> palette;
  if (depth <= 8) {
    const int size = 1 << depth;
    if (depth == 1) {
      palette = {qRgb(0, 0, 0), qRgb(255, 255, 255)};
    } else if (colors.empty()) {
      palette = StandardPalette(size);
    } else {
      Metafile resolver;  // system colours through the application palette
      std::vector<std::uint32_t> resolved;
      resolved.reserve(colors.size());
      for (std::uint32_t c : colors) resolved.push_back(resolver.MapColor(c));
      palette = ChoosePalette(resolved, size);
    }
    image = QImage(width, height, QImage::Format_Indexed8);
    if (!image.isNull()) {
      image.setColorTable(palette);
      image.fill(0);
    }
  } else {
    const QImage::Format format = depth == 16   ? QImage::Format_RGB555
                                  : depth == 24 ? QImage::Format_RGB888
                                                : QImage::Format_RGB32;
    image = QImage(width, height, format);
    if (!image.isNull()) image.fill(Qt::black);
  }
  if (image.isNull())
    throw BitmapError(14343,
                      QStringLiteral("Cannot create bitmap. Call to CreateDIBSection failed. "));
  m_mode = mode;
  m_depth = depth;
  m_compress = mode < 0;
  m_width = width;
  m_height = height;
  m_image = std::move(image);
  m_palette = std::move(palette);
  return true;
}

bool Bitmap::CreateFromStdPicture(const std::shared_ptr<const MetaPicture>& picture, int width,
                                  int height, int mode, const std::vector<std::uint32_t>& colors) {
  if (!picture) return false;
  if (width <= 0 || height <= 0) {
    const MetaRect& f = picture->frameRect;
    width = static_cast<int>(std::nearbyint((f.right - f.left + 1) * 0.5669291338582677 / 15.0));
    height = static_cast<int>(std::nearbyint((f.bottom - f.top + 1) * 0.5669291338582677 / 15.0));
  }
  if (!Create(width, height, mode, colors)) return false;
  DrawBackColor(0xFFFFFF);
  PlayStdPicture(picture);
  return true;
}

int Bitmap::PixelIndex(int x, int y) const {
  if (m_depth > 8 || !m_image.valid(x, y)) return -1;
  return m_image.constScanLine(y)[x];
}

QRgb Bitmap::PixelColor(int x, int y) const {
  if (!m_image.valid(x, y)) return 0;
  return m_image.pixel(x, y);
}

QImage Bitmap::ToRgb32() const { return m_image.convertToFormat(QImage::Format_RGB32); }

void Bitmap::DrawBackColor(std::uint32_t color) {
  if (m_image.isNull()) return;
  Metafile resolver;
  const QRgb rgb = ToRgb(resolver.MapColor(color));
  if (m_depth <= 8)
    m_image.fill(Nearest(m_palette, rgb));
  else
    m_image.fill(QColor(rgb));
}

void Bitmap::ToCanvas(QImage& canvas) const {
  canvas = m_image.format() == QImage::Format_RGB32 ? m_image : ToRgb32();
}

void Bitmap::FromCanvas(const QImage& canvas) {
  if (m_depth > 8) {
    m_image =
        canvas.format() == m_image.format() ? canvas : canvas.convertToFormat(m_image.format());
    return;
  }
  // Every pixel to its palette index: exact colours first, else the nearest.
  std::unordered_map<QRgb, std::uint8_t> known;
  for (int i = m_palette.size() - 1; i >= 0; --i)
    known[m_palette[i] | 0xFF000000] = std::uint8_t(i);
  QRgb last = 0;
  std::uint8_t lastIndex = 0;
  bool haveLast = false;
  for (int y = 0; y < m_height; ++y) {
    const QRgb* in = reinterpret_cast<const QRgb*>(canvas.constScanLine(y));
    std::uint8_t* out = m_image.scanLine(y);
    for (int x = 0; x < m_width; ++x) {
      const QRgb c = in[x] | 0xFF000000;
      if (!haveLast || c != last) {
        auto found = known.find(c);
        if (found == known.end())
          found = known.emplace(c, std::uint8_t(Nearest(m_palette, c))).first;
        last = c;
        lastIndex = found->second;
        haveLast = true;
      }
      out[x] = lastIndex;
    }
  }
}

void Bitmap::PlayMeta(const Metafile& metafile, int x, int y, int w, int h) {
  if (m_image.isNull() || !metafile.IsReady()) return;
  QImage canvas;
  ToCanvas(canvas);
  {
    QPainter painter(&canvas);
    painter.setRenderHint(QPainter::Antialiasing, m_depth > 8);
    metafile.Play(painter, float(x), float(y), float(x + w - 1), float(y + h - 1), true);
  }
  FromCanvas(canvas);
}

void Bitmap::PlayStdPicture(const std::shared_ptr<const MetaPicture>& picture) {
  if (m_image.isNull() || !picture) return;
  QImage canvas;
  ToCanvas(canvas);
  {
    QPainter painter(&canvas);
    painter.setRenderHint(QPainter::Antialiasing, m_depth > 8);
    PlayPicture(painter, *picture, MetaRect{0, 0, m_width - 1, m_height - 1});
  }
  FromCanvas(canvas);
}

bool Bitmap::GetBits(std::vector<std::uint8_t>& bits) const {
  if (m_image.isNull()) {
    Complain(QStringLiteral("GetBits: No pointer to bitmap data"));
    return false;
  }
  const int stride = BmpEncoder::RowBytes(m_width, m_depth);
  bits.assign(static_cast<size_t>(stride) * m_height, 0);
  for (int y = 0; y < m_height; ++y) {
    const uchar* in = m_image.constScanLine(m_height - 1 - y);
    std::uint8_t* out = bits.data() + static_cast<size_t>(y) * stride;
    switch (m_depth) {
      case 1:
        for (int x = 0; x < m_width; ++x)
          if (in[x] & 1) out[x / 8] |= std::uint8_t(0x80 >> (x % 8));
        break;
      case 4:
        for (int x = 0; x < m_width; ++x)
          out[x / 2] |= std::uint8_t((in[x] & 0x0F) << ((x & 1) ? 0 : 4));
        break;
      case 8:
        std::copy(in, in + m_width, out);
        break;
      case 16: {  // 5-5-5, little-endian, as QImage keeps it
        const auto* px = reinterpret_cast<const quint16*>(in);
        for (int x = 0; x < m_width; ++x) {
          out[2 * x] = std::uint8_t(px[x] & 0xFF);
          out[2 * x + 1] = std::uint8_t(px[x] >> 8);
        }
        break;
      }
      case 24:
        for (int x = 0; x < m_width; ++x) {  // blue, green, red
          out[3 * x] = in[3 * x + 2];
          out[3 * x + 1] = in[3 * x + 1];
          out[3 * x + 2] = in[3 * x];
        }
        break;
      default: {
        const auto* px = reinterpret_cast<const QRgb*>(in);
        for (int x = 0; x < m_width; ++x) {
          out[4 * x] = std::uint8_t(qBlue(px[x]));
          out[4 * x + 1] = std::uint8_t(qGreen(px[x]));
          out[4 * x + 2] = std::uint8_t(qRed(px[x]));
          out[4 * x + 3] = 0;
        }
        break;
      }
    }
  }
  return true;
}

bool Bitmap::GetBits2(std::vector<std::vector<std::uint8_t>>& rows) const {
  if (m_image.isNull()) {
    Complain(QStringLiteral("GetBits2: No pointer to bitmap data"));
    return false;
  }
  std::vector<std::uint8_t> bits;
  GetBits(bits);
  const size_t stride = BmpEncoder::RowBytes(m_width, m_depth);
  rows.assign(m_height, {});
  for (int y = 0; y < m_height; ++y)
    rows[y].assign(bits.begin() + y * stride, bits.begin() + (y + 1) * stride);
  return true;
}

bool Bitmap::SetBits(const std::vector<std::uint8_t>& data) {
  std::vector<std::uint8_t> bits;
  if (!GetBits(bits)) return false;
  if (data.size() > bits.size()) {
    Complain(QStringLiteral("Too much data to set to bitmap"));
    return false;
  }
  std::copy(data.begin(), data.end(), bits.begin());
  const int stride = BmpEncoder::RowBytes(m_width, m_depth);
  for (int y = 0; y < m_height; ++y) {
    const std::uint8_t* in = bits.data() + static_cast<size_t>(y) * stride;
    uchar* out = m_image.scanLine(m_height - 1 - y);
    switch (m_depth) {
      case 1:
        for (int x = 0; x < m_width; ++x) out[x] = (in[x / 8] >> (7 - x % 8)) & 1;
        break;
      case 4:
        for (int x = 0; x < m_width; ++x) out[x] = (x & 1) ? in[x / 2] & 0x0F : in[x / 2] >> 4;
        break;
      case 8:
        std::copy(in, in + m_width, out);
        break;
      case 16: {
        auto* px = reinterpret_cast<quint16*>(out);
        for (int x = 0; x < m_width; ++x) px[x] = quint16(in[2 * x] | (in[2 * x + 1] << 8));
        break;
      }
      case 24:
        for (int x = 0; x < m_width; ++x) {
          out[3 * x] = in[3 * x + 2];
          out[3 * x + 1] = in[3 * x + 1];
          out[3 * x + 2] = in[3 * x];
        }
        break;
      default: {
        auto* px = reinterpret_cast<QRgb*>(out);
        for (int x = 0; x < m_width; ++x) px[x] = qRgb(in[4 * x + 2], in[4 * x + 1], in[4 * x]);
        break;
      }
    }
  }
  return true;
}

QByteArray Bitmap::EncodeBMP(bool allowRle) const {
  std::vector<std::uint8_t> bits;
  if (m_image.isNull() || !GetBits(bits)) return {};
  const QByteArray raw(reinterpret_cast<const char*>(bits.data()),
                       static_cast<qsizetype>(bits.size()));
  if (allowRle && (m_depth == 8 || m_depth == 4)) {
    const QByteArray rle = m_depth == 8 ? BmpEncoder::EncodeRle8(bits, m_width, m_height)
                                        : BmpEncoder::EncodeRle4(bits, m_width, m_height);
    if (rle.size() < raw.size())
      return BmpEncoder::EncodeFile(m_width, m_height, m_depth, m_palette,
                                    m_depth == 8 ? BmpEncoder::kRle8 : BmpEncoder::kRle4, rle);
  }
  return BmpEncoder::EncodeFile(m_width, m_height, m_depth, m_palette, BmpEncoder::kRaw, raw);
}

bool Bitmap::Save(const QString& file) const {
  if (m_image.isNull() || !Metafile::CanOverwrite(file)) return false;
  return SaveBinaryFile(file, EncodeBMP(m_compress));
}

bool Bitmap::SaveRLE(const QString& file, int mode) const {
  if (m_image.isNull() || std::abs(mode) != m_depth || (m_depth != 4 && m_depth != 8)) return false;
  if (!Metafile::CanOverwrite(file)) return false;
  std::vector<std::uint8_t> bits;
  GetBits(bits);
  const QByteArray rle = m_depth == 8 ? BmpEncoder::EncodeRle8(bits, m_width, m_height)
                                      : BmpEncoder::EncodeRle4(bits, m_width, m_height);
  return SaveBinaryFile(
      file, BmpEncoder::EncodeFile(m_width, m_height, m_depth, m_palette,
                                   m_depth == 8 ? BmpEncoder::kRle8 : BmpEncoder::kRle4, rle));
}

bool Bitmap::CopyToClipboard(bool) const {
  if (m_image.isNull()) {
    Complain(QStringLiteral("Copy to clipboard failed. "));
    return false;
  }
  Ui().SetClipboardPicture(ToRgb32(), QByteArray());
  return true;
}

void Bitmap::Paint(QPainter& painter, int x, int y) const {
  if (!m_image.isNull()) painter.drawImage(x, y, m_image);
}

}  // namespace ombrelle
