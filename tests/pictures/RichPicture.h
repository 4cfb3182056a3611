#pragma once

#include <memory>

#include "pictures/MetaRecord.h"

namespace ombrelle::test {

// A recording in map mode 2 of `widthMm` x `heightMm` with every kind of
// record: filled rectangle, polygon, line, polyline, filled and hollow
// ellipses, pie, Bezier chain, centred two-line text in a rectangle, clipped
// text at a point, a flood fill inside an outline and a nested picture.
// Its coordinates are laid out for 150 x 112 mm.
std::shared_ptr<MetaPicture> RichPicture(const QString& description, int widthMm = 150,
                                         int heightMm = 112);

// An empty recording in map mode 2 (no records).
std::shared_ptr<MetaPicture> EmptyPicture(int widthMm, int heightMm);

}  // namespace ombrelle::test
