#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QString>

#include "pictures/MetaRecord.h"

namespace ombrelle {

// Text measurement of recorded pictures, the same on every machine with the
// same fonts: fonts are measured at one fixed reference resolution, never the
// screen's, and faces that are not installed fall back to a fixed one.
//
// Reference resolution: 254 dots per inch, so that one reference pixel is
// 0.1 mm, one logical unit of map mode 2. Map mode 1 counts screen pixels of
// 96 per inch. Fallback: "Verdana" (and any face not installed) becomes
// "DejaVu Sans". Hinting is off, so advances scale with the size.
class TextMeasure {
 public:
  static constexpr double kReferenceDpi = 254.0;
  static constexpr double kScreenDpi = 96.0;
  static constexpr const char* kFallbackFace = "DejaVu Sans";

  // Millimetres per logical unit of a map mode.
  static double MmPerUnit(int mapMode);
  // The installed face used for `face`.
  static QString ResolveFace(const QString& face);
  // The em height of `font` in millimetres (a height of 0 means 8 points).
  static double EmMillimetres(const MetaFont& font, int mapMode);
  // A QFont for `font` whose em is `pixels` device pixels on a device of `dpi`.
  static QFont MakeFont(const MetaFont& font, double pixels, double dpi, bool antialias);

  TextMeasure(const MetaFont& font, int mapMode);
  // Width and height of one line in logical units, rounded to whole units.
  float LineWidth(const QString& line) const;
  float LineHeight() const { return m_lineHeight; }
  const MetaFont& Font() const { return m_font; }
  int MapMode() const { return m_mode; }

 private:
  MetaFont m_font;
  int m_mode;
  double m_unitsPerPixel;  // logical units per reference pixel
  QFontMetricsF m_metrics;
  float m_lineHeight;
};

}  // namespace ombrelle
