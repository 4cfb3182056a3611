#pragma once

#include <cstdint>
#include <vector>

namespace ombrelle {

class BitmapData;

// One cell of the colour octree. Nodes live in one array and point at each
// other by index; index 0 is none.
struct OctreeNode {
  bool IsLeaf = false;
  bool Marked = false;      // already on the reducible list of its level
  std::int64_t RedSum = 0;  // 64 bits: a big picture read whole passes 2^31
  std::int64_t GreenSum = 0;
  std::int64_t BlueSum = 0;
  std::int64_t PixelCount = 0;
  std::int32_t Children[8] = {};   // by red bit * 4 + green bit * 2 + blue bit
  std::int32_t NextReducible = 0;  // reducible list of the level, or the free list
  std::int32_t Parent = 0;
};

// Finds an optimal palette of a picture with an octree of colour cells, and
// keeps a palette (a growing list of colours, 0x00BBGGRR) built from the tree
// or by Add. Sampling uses a generator of its own with a fixed seed, so one
// picture always gives one palette.
class PaletteReducer {
 public:
  // Palette.
  void Add(int red, int green, int blue);
  // Adds the colours of `colors` that the palette lacks (each once), first
  // making room so that the palette ends with at most `maxSize` entries.
  void Add_Colors_MaxSize(int maxSize, const std::vector<std::uint32_t>& colors);
  // Adds a colour the palette lacks, reducing the palette to maxSize - 1
  // entries first when it is full.
  void Add_MaxSize(int red, int green, int blue, int maxSize);
  int count() const { return m_count; }  // colours put into the tree
  int NumColors() const { return int(m_palette.size()); }
  int Red(int index) const;
  int Green(int index) const;
  int Blue(int index) const;
  void EraseNodes();
  void Clear() { m_palette.clear(); }
  void CopyPaletteCollection(const std::vector<std::uint32_t>& colors);
  void CopyPalette(const PaletteReducer& other) { m_palette = other.m_palette; }
  std::vector<std::uint32_t> GetColorCollection() const { return m_palette; }

  // Palette of at most maxColors from a list of colours; repeats count once.
  // Returns NumColors.
  int CreateOptimalFromColorCollection(const std::vector<std::uint32_t>& colors, int maxColors);
  // Palette of at most maxColors from about 16384 samples of the picture;
  // whenever the tree holds more than leafLimit cells while sampling, the
  // deepest reducible cell is merged. Returns NumColors.
  int CreateOptimal(const BitmapData& picture, int maxColors, int leafLimit);
  // Palette from every pixel of a picture of at most 256 colours (exact);
  // a picture of more colours is reduced to 256.
  int CreateOptimalFrom256(const BitmapData& picture);

  // The tree.
  void InitTree(int depth);
  // Puts a colour into the tree, `pixels` times.
  void AddColor(int red, int green, int blue, std::int64_t pixels = 1);
  bool ReduceOnce();
  void ReduceTree(int maxColors);
  void DropSmallest(int maxColors);
  void FlattenTree();
  int LeafCount() const { return m_leafCount; }
  const std::vector<OctreeNode>& Nodes() const { return m_nodes; }
  int NextFree() const { return m_nextFree; }

 private:
  std::int32_t NewNode(int level);
  void FreeNode(std::int32_t index);
  void SampleStrip(const BitmapData& picture, int top, int height, std::int64_t step,
                   int leafLimit);
  void MakeRoom(int size);
  bool Contains(std::uint32_t color) const;

  std::vector<OctreeNode> m_nodes;
  std::int32_t m_nextFree = 1;
  int m_depth = 8;
  std::int32_t m_freeList = 0;
  int m_leafCount = 0;
  std::int32_t m_reducible[9] = {};  // list heads of levels 1 to 8
  std::int32_t m_lastNode = 0;
  int m_count = 0;
  std::vector<std::uint32_t> m_palette;
};

}  // namespace ombrelle
