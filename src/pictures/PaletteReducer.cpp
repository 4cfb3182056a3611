#include "pictures/PaletteReducer.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>

#include "pictures/BitmapData.h"

namespace ombrelle {

namespace {

constexpr int kInitialNodes = 51;
constexpr std::int64_t kSamples = 16384;
constexpr int kStripRows = 256;
constexpr int kStripAbove = 512;
constexpr std::uint64_t kSeed = 123;

// The sampling positions: a 64-bit linear congruential generator whose high
// bits give a number in [0, 1). Fixed by its seed, independent of the C
// library.
class SampleRandom {
 public:
  explicit SampleRandom(std::uint64_t seed) : m_state(seed) {}
  double Next() {
    m_state = m_state * 6364136223846793005ULL + 1442695040888963407ULL;
    return double(m_state >> 11) * (1.0 / 9007199254740992.0);
  }

 private:
  std::uint64_t m_state;
};

int RoundedMean(std::int64_t sum, std::int64_t count) {
  return std::clamp(int(std::lround(double(sum) / double(count))), 0, 255);
}

}  // namespace

void PaletteReducer::Add(int red, int green, int blue) {
  m_palette.push_back(RgbColor(red, green, blue));
}

bool PaletteReducer::Contains(std::uint32_t color) const {
  return std::find(m_palette.begin(), m_palette.end(), color) != m_palette.end();
}

void PaletteReducer::Add_Colors_MaxSize(int maxSize, const std::vector<std::uint32_t>& colors) {
  std::vector<std::uint32_t> fresh;
  for (const std::uint32_t color : colors) {
    const std::uint32_t c = color & 0xFFFFFF;
    if (!Contains(c) && std::find(fresh.begin(), fresh.end(), c) == fresh.end()) fresh.push_back(c);
  }
  MakeRoom(maxSize - int(fresh.size()));
  if (int(fresh.size()) > maxSize) {
    PaletteReducer reduced;
    reduced.CreateOptimalFromColorCollection(fresh, std::max(0, maxSize));
    fresh = reduced.GetColorCollection();
  }
  m_palette.insert(m_palette.end(), fresh.begin(), fresh.end());
}

void PaletteReducer::Add_MaxSize(int red, int green, int blue, int maxSize) {
  if (Contains(RgbColor(red, green, blue))) return;
  if (NumColors() >= maxSize) MakeRoom(maxSize - 1);
  Add(red, green, blue);
}

// Reduces the palette to at most `size` entries through the tree.
void PaletteReducer::MakeRoom(int size) {
  if (NumColors() <= size) return;
  if (size <= 0) {
    Clear();
    return;
  }
  const std::vector<std::uint32_t> colors = m_palette;
  InitTree(8);
  for (const std::uint32_t c : colors) AddColor(RedOf(c), GreenOf(c), BlueOf(c));
  ReduceTree(size);
  Clear();
  FlattenTree();
}

int PaletteReducer::Red(int index) const { return RedOf(m_palette.at(std::size_t(index))); }
int PaletteReducer::Green(int index) const { return GreenOf(m_palette.at(std::size_t(index))); }
int PaletteReducer::Blue(int index) const { return BlueOf(m_palette.at(std::size_t(index))); }

void PaletteReducer::EraseNodes() {
  m_nodes.clear();
  m_freeList = 0;
}

void PaletteReducer::CopyPaletteCollection(const std::vector<std::uint32_t>& colors) {
  for (const std::uint32_t c : colors) m_palette.push_back(c & 0xFFFFFF);
}

void PaletteReducer::InitTree(int depth) {
  m_depth = std::clamp(depth, 1, 8);
  m_nodes.assign(kInitialNodes, OctreeNode());
  m_nextFree = 1;
  m_freeList = 0;
  m_leafCount = 0;
  m_lastNode = 0;
  m_count = 0;
  std::fill(std::begin(m_reducible), std::end(m_reducible), 0);
  NewNode(1);  // the root
}

std::int32_t PaletteReducer::NewNode(int level) {
  std::int32_t index;
  if (m_freeList != 0) {
    index = m_freeList;
    m_freeList = m_nodes[std::size_t(index)].NextReducible;
  } else {
    if (std::size_t(m_nextFree) >= m_nodes.size())
      m_nodes.resize(std::max(m_nodes.size() + 1, m_nodes.size() * 11 / 10));
    index = m_nextFree++;
  }
  m_nodes[std::size_t(index)] = OctreeNode();
  // Cells of the last level (eight bisections of each channel) hold colours.
  m_nodes[std::size_t(index)].IsLeaf = level == m_depth + 1;
  m_lastNode = std::max(m_lastNode, index);
  return index;
}

void PaletteReducer::FreeNode(std::int32_t index) {
  OctreeNode& node = m_nodes[std::size_t(index)];
  node = OctreeNode();
  node.NextReducible = m_freeList;
  m_freeList = index;
}

void PaletteReducer::AddColor(int red, int green, int blue, std::int64_t pixels) {
  if (m_nodes.empty()) InitTree(m_depth);
  ++m_count;
  const int value[3] = {red & 0xFF, green & 0xFF, blue & 0xFF};
  int low[3] = {0, 0, 0};
  int high[3] = {255, 255, 255};
  std::int32_t index = 1;
  for (int level = 1;; ++level) {
    OctreeNode* node = &m_nodes[std::size_t(index)];
    if (node->IsLeaf) {
      if (node->PixelCount == 0) ++m_leafCount;
      node->RedSum += value[0] * pixels;
      node->GreenSum += value[1] * pixels;
      node->BlueSum += value[2] * pixels;
      node->PixelCount += pixels;
      return;
    }
    if (!node->Marked) {
      node->Marked = true;
      node->NextReducible = m_reducible[level];
      m_reducible[level] = index;
    }
    int slot = 0;
    for (int c = 0; c < 3; ++c) {
      const int middle = (low[c] + high[c]) / 2;
      if (value[c] <= middle) {
        high[c] = middle;
        slot = slot * 2;
      } else {
        low[c] = middle;
        slot = slot * 2 + 1;
      }
    }
    std::int32_t child = node->Children[slot];
    if (child == 0) {
      child = NewNode(level + 1);  // may move the array
      m_nodes[std::size_t(index)].Children[slot] = child;
      m_nodes[std::size_t(child)].Parent = index;
    }
    index = child;
  }
}

bool PaletteReducer::ReduceOnce() {
  for (int level = m_depth; level >= 1; --level) {
    const std::int32_t index = m_reducible[level];
    if (index == 0) continue;
    OctreeNode& node = m_nodes[std::size_t(index)];
    m_reducible[level] = node.NextReducible;
    node.NextReducible = 0;
    for (std::int32_t& slot : node.Children) {
      if (slot == 0) continue;
      const OctreeNode& child = m_nodes[std::size_t(slot)];
      node.RedSum += child.RedSum;
      node.GreenSum += child.GreenSum;
      node.BlueSum += child.BlueSum;
      node.PixelCount += child.PixelCount;
      if (child.IsLeaf && child.PixelCount > 0) --m_leafCount;
      FreeNode(slot);
      slot = 0;
    }
    node.IsLeaf = true;
    if (node.PixelCount > 0) ++m_leafCount;
    return true;
  }
  return false;
}

void PaletteReducer::ReduceTree(int maxColors) {
  while (m_leafCount > maxColors && ReduceOnce()) {
  }
  if (m_leafCount > maxColors) DropSmallest(maxColors);
}

void PaletteReducer::DropSmallest(int maxColors) {
  if (m_leafCount <= maxColors) return;
  // Freeing a leaf changes no other leaf, so dropping the smallest one at a
  // time, the lowest index first among equals, drops the first leaves of
  // this order.
  std::vector<std::pair<std::int64_t, std::int32_t>> leaves;  // count, index
  for (std::int32_t i = 1; i < m_nextFree; ++i) {
    const OctreeNode& node = m_nodes[std::size_t(i)];
    if (node.IsLeaf && node.PixelCount > 0) leaves.emplace_back(node.PixelCount, i);
  }
  std::sort(leaves.begin(), leaves.end());
  const std::size_t drop = std::size_t(m_leafCount - std::max(0, maxColors));
  for (std::size_t k = 0; k < drop && k < leaves.size(); ++k) {
    const std::int32_t index = leaves[k].second;
    const std::int32_t parent = m_nodes[std::size_t(index)].Parent;
    if (parent != 0) {
      for (std::int32_t& slot : m_nodes[std::size_t(parent)].Children)
        if (slot == index) slot = 0;
    }
    FreeNode(index);
    --m_leafCount;
  }
}

void PaletteReducer::FlattenTree() {
  for (std::int32_t i = 1; i < m_nextFree; ++i) {
    const OctreeNode& node = m_nodes[std::size_t(i)];
    if (!node.IsLeaf || node.PixelCount <= 0) continue;
    Add(RoundedMean(node.RedSum, node.PixelCount), RoundedMean(node.GreenSum, node.PixelCount),
        RoundedMean(node.BlueSum, node.PixelCount));
  }
}

int PaletteReducer::CreateOptimalFromColorCollection(const std::vector<std::uint32_t>& colors,
                                                     int maxColors) {
  InitTree(8);
  std::unordered_set<std::uint32_t> seen;
  for (const std::uint32_t color : colors) {
    const std::uint32_t c = color & 0xFFFFFF;
    if (seen.insert(c).second) AddColor(RedOf(c), GreenOf(c), BlueOf(c));
  }
  Clear();
  ReduceTree(maxColors);
  FlattenTree();
  return NumColors();
}

void PaletteReducer::SampleStrip(const BitmapData& picture, int top, int height, std::int64_t step,
                                 int leafLimit) {
  const int width = picture.Width();
  const std::int64_t n = std::int64_t(width) * height;
  if (n <= 0) return;
  const std::int64_t s = std::min(step, n);
  SampleRandom random(kSeed);
  for (std::int64_t k = 1; k <= n / s; ++k) {
    const std::int64_t p = s > 1 ? std::min(n - 1, std::int64_t(random.Next() * double(n))) : k - 1;
    const std::uint32_t color = picture.GetColor(int(p % width), top + int(p / width));
    AddColor(RedOf(color), GreenOf(color), BlueOf(color));
    if (m_leafCount > leafLimit) ReduceOnce();
  }
}

int PaletteReducer::CreateOptimal(const BitmapData& picture, int maxColors, int leafLimit) {
  InitTree(8);
  const int width = picture.Width();
  const int height = picture.Height();
  if (!picture.IsEmptyRectangle()) {
    const std::int64_t step = std::max<std::int64_t>(1, std::int64_t(width) * height / kSamples);
    if (height > kStripAbove) {
      const int strips = height / kStripRows;
      for (int i = 0; i < strips; ++i) {
        const int top = i * kStripRows;
        SampleStrip(picture, top, i == strips - 1 ? height - top : kStripRows, step, leafLimit);
      }
    } else {
      SampleStrip(picture, 0, height, step, leafLimit);
    }
  }
  Clear();
  if (m_leafCount > maxColors) DropSmallest(maxColors);
  FlattenTree();
  return NumColors();
}

int PaletteReducer::CreateOptimalFrom256(const BitmapData& picture) {
  std::vector<std::uint32_t> colors;
  std::vector<std::int64_t> counts;
  std::size_t hit = 0;
  for (int y = 0; y < picture.Height(); ++y) {
    for (int x = 0; x < picture.Width(); ++x) {
      const std::uint32_t c = picture.GetColor(x, y);
      if (hit < colors.size() && colors[hit] == c) {
        ++counts[hit];
        continue;
      }
      hit = std::size_t(std::find(colors.begin(), colors.end(), c) - colors.begin());
      if (hit == colors.size()) {
        // More than 256 colours: a palette from samples, keeping the most
        // frequent cells of up to four times as many.
        if (colors.size() == 256) return CreateOptimal(picture, 256, 1024);
        colors.push_back(c);
        counts.push_back(0);
      }
      ++counts[hit];
    }
  }
  InitTree(8);
  for (std::size_t i = 0; i < colors.size(); ++i)
    AddColor(RedOf(colors[i]), GreenOf(colors[i]), BlueOf(colors[i]), counts[i]);
  Clear();
  ReduceTree(256);
  FlattenTree();
  return NumColors();
}

}  // namespace ombrelle
