#include "pictures/ReducePicture.h"

#include <algorithm>
#include <cstring>

#include "pictures/BitmapData.h"
#include "pictures/PaletteReducer.h"

namespace ombrelle {

namespace {

int BitsFor(std::size_t entries) {
  if (entries <= 2) return 1;
  if (entries <= 4) return 2;
  if (entries <= 16) return 4;
  return 8;
}

// Nearest-colour lookups through a direct-mapped cache, since pictures
// repeat a few colours many times.
class NearestCache {
 public:
  explicit NearestCache(const std::vector<std::uint32_t>& palette)
      : m_palette(palette), m_keys(kSize, 0), m_values(kSize, 0) {}
  std::uint8_t Index(std::uint32_t color) {
    const std::uint32_t slot = (color * 2654435761u) >> (32 - kBits);
    if (m_keys[slot] == color + 1) return m_values[slot];
    const auto index = std::uint8_t(NearestPaletteIndex(m_palette, color));
    m_keys[slot] = color + 1;
    m_values[slot] = index;
    return index;
  }

 private:
  static constexpr int kBits = 12;
  static constexpr int kSize = 1 << kBits;
  const std::vector<std::uint32_t>& m_palette;
  std::vector<std::uint32_t> m_keys;
  std::vector<std::uint8_t> m_values;
};

IndexedPicture FromIndexed(const BitmapData& picture) {
  IndexedPicture out;
  out.width = picture.Width();
  out.height = picture.Height();
  out.pixels.resize(std::size_t(out.width) * std::size_t(out.height));
  std::uint32_t highest = 0;
  for (int y = 0; y < out.height; ++y) {
    std::uint8_t* target = out.pixels.data() + std::size_t(y) * std::size_t(out.width);
    if (picture.Depth() == 8) {
      std::memcpy(target, picture.Row(y), std::size_t(out.width));
      for (int x = 0; x < out.width; ++x) highest = std::max<std::uint32_t>(highest, target[x]);
    } else {
      for (int x = 0; x < out.width; ++x) {
        const std::uint32_t index = picture.GetPixel(x, y);
        target[x] = std::uint8_t(index);
        highest = std::max(highest, index);
      }
    }
  }
  // Entries past the highest index in use are left out, so that a table of
  // 256 entries with a few colours in use takes fewer bits per pixel.
  out.palette = picture.ColorTable();
  out.palette.resize(highest + 1, 0);
  out.bitsPerPixel = BitsFor(out.palette.size());
  return out;
}

}  // namespace

int NearestPaletteIndex(const std::vector<std::uint32_t>& palette, std::uint32_t color) {
  int best = -1;
  int bestDistance = 0;
  for (std::size_t i = 0; i < palette.size(); ++i) {
    const int dr = RedOf(palette[i]) - RedOf(color);
    const int dg = GreenOf(palette[i]) - GreenOf(color);
    const int db = BlueOf(palette[i]) - BlueOf(color);
    const int distance = dr * dr + dg * dg + db * db;
    if (best < 0 || distance < bestDistance) {
      best = int(i);
      bestDistance = distance;
      if (distance == 0) break;
    }
  }
  return best;
}

IndexedPicture ReducePicture(const BitmapData& picture, int depth,
                             std::optional<std::uint32_t> transparent,
                             const std::vector<std::uint32_t>& palette) {
  if (picture.IsEmptyRectangle()) return IndexedPicture();
  if (picture.Depth() <= 8) return FromIndexed(picture);

  const int maxColors = 1 << std::clamp(depth, 1, 8);
  PaletteReducer reducer;
  std::vector<std::uint32_t> colors;
  if (!palette.empty()) {
    for (const std::uint32_t c : palette) {
      if (std::find(colors.begin(), colors.end(), c & 0xFFFFFF) == colors.end())
        colors.push_back(c & 0xFFFFFF);
    }
    const std::uint32_t clear = transparent.value_or(0xFFFFFF) & 0xFFFFFF;
    if (std::find(colors.begin(), colors.end(), clear) == colors.end()) colors.push_back(clear);
    if (int(colors.size()) > maxColors) {
      reducer.CreateOptimalFromColorCollection(colors, maxColors);
      colors = reducer.GetColorCollection();
    }
  } else {
    if (maxColors >= 256)
      reducer.CreateOptimalFrom256(picture);
    else
      reducer.CreateOptimal(picture, maxColors, maxColors * 4);
    colors = reducer.GetColorCollection();
  }
  if (colors.empty()) colors.push_back(0);

  IndexedPicture out;
  out.width = picture.Width();
  out.height = picture.Height();
  out.bitsPerPixel = BitsFor(colors.size());
  out.pixels.resize(std::size_t(out.width) * std::size_t(out.height));
  NearestCache nearest(colors);
  const int sourceDepth = picture.Depth();
  for (int y = 0; y < out.height; ++y) {
    const std::uint8_t* row = picture.Row(y);
    std::uint8_t* target = out.pixels.data() + std::size_t(y) * std::size_t(out.width);
    std::uint32_t last = 0xFFFFFFFF;
    std::uint8_t lastIndex = 0;
    for (int x = 0; x < out.width; ++x) {
      const std::uint32_t color = BitmapData::DirectColor(row, x, sourceDepth);
      if (color != last) {
        last = color;
        lastIndex = nearest.Index(color);
      }
      target[x] = lastIndex;
    }
  }
  out.palette = std::move(colors);
  return out;
}

}  // namespace ombrelle
