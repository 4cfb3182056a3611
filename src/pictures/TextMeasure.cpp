#include "pictures/TextMeasure.h"

#include <cmath>

#include <QFontDatabase>
#include <QHash>
#include <QImage>

namespace ombrelle {

namespace {

// The device whose resolution every measurement uses.
const QImage& ReferenceDevice() {
  static const QImage device = [] {
    QImage image(1, 1, QImage::Format_RGB32);
    const int dotsPerMetre = static_cast<int>(std::lround(TextMeasure::kReferenceDpi / 0.0254));
    image.setDotsPerMeterX(dotsPerMetre);
    image.setDotsPerMeterY(dotsPerMetre);
    return image;
  }();
  return device;
}

}  // namespace

double TextMeasure::MmPerUnit(int mapMode) {
  switch (mapMode) {
    case 2:
      return 0.1;
    case 3:
      return 0.01;
    default:
      return 25.4 / kScreenDpi;
  }
}

QString TextMeasure::ResolveFace(const QString& face) {
  static QHash<QString, QString> resolved;
  auto found = resolved.constFind(face);
  if (found != resolved.constEnd()) return found.value();
  QString result = QString::fromLatin1(kFallbackFace);
  if (!face.isEmpty() && QFontDatabase::hasFamily(face)) result = face;
  resolved.insert(face, result);
  return result;
}

double TextMeasure::EmMillimetres(const MetaFont& font, int mapMode) {
  if (font.height == 0) return 8.0 * 25.4 / 72.0;
  return std::abs(font.height) * MmPerUnit(mapMode);
}

QFont TextMeasure::MakeFont(const MetaFont& font, double pixels, double dpi, bool antialias) {
  QFont qfont(ResolveFace(font.face));
  qfont.setPointSizeF(std::max(pixels, 0.01) * 72.0 / dpi);
  qfont.setWeight(font.weight >= 600 ? QFont::Bold : QFont::Normal);
  qfont.setItalic(font.italic);
  qfont.setUnderline(font.underline);
  qfont.setStrikeOut(font.strikeout);
  qfont.setHintingPreference(QFont::PreferNoHinting);
  qfont.setKerning(false);
  if (!antialias) qfont.setStyleStrategy(QFont::NoAntialias);
  return qfont;
}

TextMeasure::TextMeasure(const MetaFont& font, int mapMode)
    : m_font(font),
      m_mode(mapMode),
      m_unitsPerPixel(25.4 / kReferenceDpi / MmPerUnit(mapMode)),
      m_metrics(
          MakeFont(font, EmMillimetres(font, mapMode) / 25.4 * kReferenceDpi, kReferenceDpi, true),
          &ReferenceDevice()),
      m_lineHeight(static_cast<float>(std::nearbyint(m_metrics.height() * m_unitsPerPixel))) {}

float TextMeasure::LineWidth(const QString& line) const {
  return static_cast<float>(std::nearbyint(m_metrics.horizontalAdvance(line) * m_unitsPerPixel));
}

}  // namespace ombrelle
