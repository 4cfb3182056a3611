#pragma once

#include <cmath>
#include <functional>

#include <QPointF>

#include "pictures/MetaRecord.h"
#include "pictures/PictureText.h"

namespace ombrelle {

// An affine map from the logical units of a recording to the units a writer
// stores: x' = ax * x + bx, y' = ay * y + by. Nested pictures compose maps.
struct PictureMap {
  double ax = 1, bx = 0, ay = 1, by = 0;
  QPointF Apply(QPointF p) const { return {ax * p.x() + bx, ay * p.y() + by}; }
  // Lengths (pen widths, font heights) scale by the vertical factor.
  double Length() const { return std::abs(ay); }
  PictureMap Then(const PictureMap& outer) const {
    return {outer.ax * ax, outer.ax * bx + outer.bx, outer.ay * ay, outer.ay * by + outer.by};
  }
};

// Half-to-even rounding, as every coordinate of a recording is rounded.
inline int RoundEven(double v) { return static_cast<int>(std::nearbyint(v)); }

// One line of text placed by the layout of a text record, in logical units.
struct PlacedLine {
  QString text;
  QPointF anchor;
  uint32_t align = 0;    // text alignment: 0 left top, 2 right top, 6 centre top
  uint32_t options = 0;  // 4: clipped to `clip`
  QPointF clip1, clip2;  // clip rectangle corners (left, top), (right, bottom)
};

// The lines of a DrawText or ExtTextOut record. DrawText lines are stacked
// down the page from the top edge, one line height apart; `yUp` tells the
// direction of y follows the recording's map mode.
std::vector<PlacedLine> LayoutText(const MetaRecord& record, int mapMode);

// The map that plays `inner` (its frame in logical units, PlayRect) into the
// rectangle of a Picture record.
PictureMap NestedMap(const MetaPicture& inner, const MetaRecord& record);

// Which pen and brush a record draws with: lines only outline, polygons and
// filled rectangles only fill, ellipses and pies do both.
bool UsesPen(MetaRecord::Kind kind);
bool UsesBrush(MetaRecord::Kind kind);

}  // namespace ombrelle
