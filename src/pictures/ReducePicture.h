#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "pictures/GIFSaver.h"

namespace ombrelle {

class BitmapData;

// Reduces a picture to at most 2^depth colours (depth 1 to 8) for the GIF
// writer. A picture of 8 bits or fewer keeps its indices and its colour
// table up to the highest index in use.
// Deeper pictures: with a `palette` of colours that must stay, that list and
// the transparent colour (white when none is given) are the palette when
// they fit, else the octree reduces the list; without one, the octree finds
// the palette from the picture (exact for pictures of few colours). Each
// pixel then takes the nearest palette colour (no dithering). The result
// has the fewest bits per pixel (1, 2, 4 or 8) that hold its palette.
IndexedPicture ReducePicture(const BitmapData& picture, int depth,
                             std::optional<std::uint32_t> transparent,
                             const std::vector<std::uint32_t>& palette);

// The index of the palette colour nearest to `color` (squared distance in
// red, green and blue; the lowest index among equals). -1 for no palette.
int NearestPaletteIndex(const std::vector<std::uint32_t>& palette, std::uint32_t color);

}  // namespace ombrelle
