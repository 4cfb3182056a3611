#pragma once

#include <QColor>
#include <QtGlobal>

namespace ombrelle {

// Colours travel as 32-bit values 0x00BBGGRR (red in the lowest byte); a set
// top bit marks a system colour whose index is in the low byte.
namespace SysColour {
constexpr quint32 Highlight = 0x8000000D;
constexpr quint32 HighlightText = 0x8000000E;
constexpr quint32 Window = 0x80000005;
constexpr quint32 WindowText = 0x80000008;
constexpr quint32 ButtonFace = 0x8000000F;
constexpr quint32 ButtonShadow = 0x80000010;
constexpr quint32 GrayText = 0x80000011;
constexpr quint32 ButtonText = 0x80000012;
constexpr quint32 Highlight3D = 0x80000014;
}  // namespace SysColour

// The screen colour of a colour value; system colours come from the
// application palette, or from fixed values when no application runs.
QColor ColourFromValue(quint32 value);

// The colour value (never a system one) of a screen colour.
quint32 ValueFromColour(const QColor& colour);

// The channel-wise mean of two colours, each resolved first.
quint32 MixColours(quint32 a, quint32 b);

}  // namespace ombrelle
