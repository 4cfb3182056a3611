#include "grid/GridColours.h"

#include <QGuiApplication>
#include <QPalette>

namespace ombrelle {

namespace {

// Fixed values for runs without a palette; window white and text black.
QColor FallbackSystemColour(int index) {
  switch (index) {
    case 5:
      return QColor(255, 255, 255);
    case 8:
      return QColor(0, 0, 0);
    case 13:
      return QColor(0, 120, 215);
    case 14:
      return QColor(255, 255, 255);
    case 15:
      return QColor(240, 240, 240);
    case 16:
      return QColor(160, 160, 160);
    case 17:
      return QColor(109, 109, 109);
    case 18:
      return QColor(0, 0, 0);
    case 20:
      return QColor(255, 255, 255);
    default:
      return QColor(0, 0, 0);
  }
}

QColor PaletteColour(int index) {
  const QPalette palette = QGuiApplication::palette();
  switch (index) {
    case 5:
      return palette.color(QPalette::Active, QPalette::Base);
    case 8:
      return palette.color(QPalette::Active, QPalette::Text);
    case 13:
      return palette.color(QPalette::Active, QPalette::Highlight);
    case 14:
      return palette.color(QPalette::Active, QPalette::HighlightedText);
    case 15:
      return palette.color(QPalette::Active, QPalette::Button);
    case 16:
      return palette.color(QPalette::Active, QPalette::Dark);
    case 17:
      return palette.color(QPalette::Disabled, QPalette::Text);
    case 18:
      return palette.color(QPalette::Active, QPalette::ButtonText);
    case 20:
      return palette.color(QPalette::Active, QPalette::Light);
    default:
      return FallbackSystemColour(index);
  }
}

}  // namespace

QColor ColourFromValue(quint32 value) {
  if (value & 0x80000000u) {
    const int index = static_cast<int>(value & 0xFFu);
    return qGuiApp ? PaletteColour(index) : FallbackSystemColour(index);
  }
  return QColor(static_cast<int>(value & 0xFFu), static_cast<int>((value >> 8) & 0xFFu),
                static_cast<int>((value >> 16) & 0xFFu));
}

quint32 ValueFromColour(const QColor& colour) {
  return static_cast<quint32>(colour.red()) | (static_cast<quint32>(colour.green()) << 8) |
         (static_cast<quint32>(colour.blue()) << 16);
}

quint32 MixColours(quint32 a, quint32 b) {
  const QColor ca = ColourFromValue(a);
  const QColor cb = ColourFromValue(b);
  return ValueFromColour(QColor((ca.red() + cb.red()) / 2, (ca.green() + cb.green()) / 2,
                                (ca.blue() + cb.blue()) / 2));
}

}  // namespace ombrelle
