#include "pictures/StdPictInfo.h"

#include <cmath>
#include <unordered_set>

namespace ombrelle {

namespace {
constexpr int kScreenDpi = 96;
constexpr double kInchesPerMeter = 1 / 0.0254;

int FramePixels(int from, int to) {
  return static_cast<int>(std::nearbyint(std::abs(to - from + 1) / 2540.0 * kScreenDpi));
}

template <typename Test>
bool EveryPixel(const QImage& image, Test test) {
  const QImage rgb = image.convertToFormat(QImage::Format_RGB32);
  for (int y = 0; y < rgb.height(); ++y) {
    const QRgb* row = reinterpret_cast<const QRgb*>(rgb.constScanLine(y));
    for (int x = 0; x < rgb.width(); ++x)
      if (!test(row[x])) return false;
  }
  return true;
}
}  // namespace

void StdPictInfo::SetPicture(std::shared_ptr<const MetaPicture> picture) {
  m_picture = std::move(picture);
  m_image = QImage();
}

void StdPictInfo::SetPicture(const QImage& bitmap) {
  m_picture.reset();
  m_image = bitmap;
}

int StdPictInfo::Width() const {
  if (IsBitmap()) return m_image.width();
  return m_picture ? FramePixels(m_picture->frameRect.left, m_picture->frameRect.right) : 0;
}

int StdPictInfo::Height() const {
  if (IsBitmap()) return m_image.height();
  return m_picture ? FramePixels(m_picture->frameRect.top, m_picture->frameRect.bottom) : 0;
}

int StdPictInfo::ColorDepth() const {
  if (!IsBitmap()) return 0;
  if (m_image.format() == QImage::Format_Indexed8) {
    const qsizetype n = m_image.colorCount();
    return n <= 2 ? 1 : n <= 16 ? 4 : 8;
  }
  if (m_image.format() == QImage::Format_Mono || m_image.format() == QImage::Format_MonoLSB)
    return 1;
  if (m_image.format() == QImage::Format_RGB888) return 24;
  return m_image.depth();
}

int StdPictInfo::PixelsPerMeterX() const {
  if (IsBitmap() && m_image.dotsPerMeterX() > 0) return m_image.dotsPerMeterX();
  return m_picture || IsBitmap() ? static_cast<int>(std::lround(kScreenDpi * kInchesPerMeter)) : 0;
}

int StdPictInfo::PixelsPerMeterY() const {
  if (IsBitmap() && m_image.dotsPerMeterY() > 0) return m_image.dotsPerMeterY();
  return m_picture || IsBitmap() ? static_cast<int>(std::lround(kScreenDpi * kInchesPerMeter)) : 0;
}

int StdPictInfo::DPIx() const {
  return static_cast<int>(std::lround(PixelsPerMeterX() / kInchesPerMeter));
}

int StdPictInfo::DPIy() const {
  return static_cast<int>(std::lround(PixelsPerMeterY() / kInchesPerMeter));
}

qint64 StdPictInfo::UncompressedSize() const {
  if (!IsBitmap()) return 0;
  const qint64 rowBytes = (static_cast<qint64>(m_image.width()) * ColorDepth() + 31) / 32 * 4;
  return rowBytes * m_image.height();
}

bool StdPictInfo::IsGrayscale() const {
  return IsBitmap() &&
         EveryPixel(m_image, [](QRgb c) { return qRed(c) == qGreen(c) && qGreen(c) == qBlue(c); });
}

bool StdPictInfo::IsBlackWhite() const {
  return IsBitmap() && EveryPixel(m_image, [](QRgb c) {
           const QRgb rgb = c & 0xFFFFFF;
           return rgb == 0 || rgb == 0xFFFFFF;
         });
}

int StdPictInfo::UniqueColorCount() const {
  if (!IsBitmap()) return 0;
  std::unordered_set<QRgb> colors;
  EveryPixel(m_image, [&colors](QRgb c) {
    colors.insert(c & 0xFFFFFF);
    return true;
  });
  return static_cast<int>(colors.size());
}

}  // namespace ombrelle
