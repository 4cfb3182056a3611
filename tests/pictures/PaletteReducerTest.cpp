#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include <QImage>

#include "pictures/BitmapData.h"
#include "pictures/PaletteReducer.h"

namespace ombrelle {
namespace {

// A 32-bit picture whose pixel (x, y) has colour f(x, y).
template <typename F>
BitmapData Picture(int w, int h, F f) {
  std::vector<std::uint8_t> bits(std::size_t(w) * 4 * h);
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      const std::uint32_t c = f(x, y);
      std::uint8_t* p = bits.data() + (std::size_t(y) * w + x) * 4;
      p[0] = std::uint8_t(BlueOf(c));
      p[1] = std::uint8_t(GreenOf(c));
      p[2] = std::uint8_t(RedOf(c));
    }
  }
  BitmapData data;
  data.SetBits(w, h, 32, bits.data(), w * 4, {}, true);
  return data;
}

TEST(PaletteReducerTest, FewerColoursThanTheLimitStayExact) {
  // 40 colours that differ in the lowest bits too.
  std::vector<std::uint32_t> colors;
  for (int i = 0; i < 40; ++i) colors.push_back(RgbColor(i * 6 + 1, 255 - i, (i * 53) % 256));
  const BitmapData data = Picture(120, 90, [&](int x, int y) { return colors[(x / 3 + y) % 40]; });
  PaletteReducer reducer;
  EXPECT_EQ(reducer.CreateOptimal(data, 256, 256), 40);
  std::vector<std::uint32_t> palette = reducer.GetColorCollection();
  std::sort(palette.begin(), palette.end());
  std::sort(colors.begin(), colors.end());
  EXPECT_EQ(palette, colors);
  EXPECT_EQ(reducer.CreateOptimalFrom256(data), 40);
}

TEST(PaletteReducerTest, OnePictureOnePalette) {
  const auto f = [](int x, int y) { return RgbColor(x * 7 % 256, y % 256, (x ^ y) & 255); };
  const BitmapData data = Picture(700, 600, f);
  PaletteReducer first;
  PaletteReducer second;
  EXPECT_EQ(first.CreateOptimal(data, 256, 256), 256);
  second.CreateOptimal(data, 256, 256);
  EXPECT_EQ(first.GetColorCollection(), second.GetColorCollection());
  // Above 512 rows the picture is sampled in strips of 256 rows, the last
  // taking the rest: 700 x 600 / 16384 = 25 pixels a sample; 7168 + 9184.
  EXPECT_EQ(first.count(), 700 * 256 / 25 + 700 * 344 / 25);
}

TEST(PaletteReducerTest, StripsOnlyAbove512Rows) {
  PaletteReducer reducer;
  reducer.CreateOptimal(Picture(100, 512, [](int, int) { return 5u; }), 256, 256);
  EXPECT_EQ(reducer.count(), 51200 / 3);
  reducer.CreateOptimal(Picture(100, 513, [](int, int) { return 5u; }), 256, 256);
  EXPECT_EQ(reducer.count(), 25600 / 3 + 25700 / 3);
  // A small picture is read pixel by pixel.
  reducer.CreateOptimal(Picture(10, 10, [](int, int) { return 5u; }), 256, 256);
  EXPECT_EQ(reducer.count(), 100);
  EXPECT_EQ(reducer.GetColorCollection(), std::vector<std::uint32_t>{5u});
}

TEST(PaletteReducerTest, RepeatsInAColourListGoInOnce) {
  PaletteReducer reducer;
  const std::vector<std::uint32_t> list{0x0000FF, 0x00FF00, 0x0000FF, 0xFF0000, 0x00FF00, 0x0000FF};
  EXPECT_EQ(reducer.CreateOptimalFromColorCollection(list, 256), 3);
  EXPECT_EQ(reducer.count(), 3);
  int leaves = 0;
  for (const OctreeNode& node : reducer.Nodes()) {
    if (node.IsLeaf && node.PixelCount > 0) {
      EXPECT_EQ(node.PixelCount, 1);
      ++leaves;
    }
  }
  EXPECT_EQ(leaves, 3);
  std::vector<std::uint32_t> palette = reducer.GetColorCollection();
  std::sort(palette.begin(), palette.end());
  EXPECT_EQ(palette, (std::vector<std::uint32_t>{0x0000FF, 0x00FF00, 0xFF0000}));
}

TEST(PaletteReducerTest, ReduceOnceTakesTheLastMarkedDeepestCell) {
  PaletteReducer reducer;
  reducer.InitTree(8);
  reducer.AddColor(0, 0, 0);
  reducer.AddColor(1, 1, 1);  // the same cell of the last inner level as black
  reducer.AddColor(254, 254, 254);
  reducer.AddColor(255, 255, 255);
  EXPECT_EQ(reducer.LeafCount(), 4);
  ASSERT_TRUE(reducer.ReduceOnce());
  EXPECT_EQ(reducer.LeafCount(), 3);
  reducer.FlattenTree();
  // The light pair merged (254.5 rounds up); the dark pair stayed.
  EXPECT_EQ(reducer.GetColorCollection(),
            (std::vector<std::uint32_t>{0x000000, 0x010101, 0xFFFFFF}));
  // Freed nodes are taken again before new ones.
  const int nextFree = reducer.NextFree();
  reducer.AddColor(1, 1, 0);
  EXPECT_EQ(reducer.NextFree(), nextFree);
  EXPECT_EQ(reducer.LeafCount(), 4);
  // Seven more reductions empty every list.
  int reductions = 0;
  while (reducer.ReduceOnce()) ++reductions;
  EXPECT_EQ(reducer.LeafCount(), 1);
  EXPECT_GT(reductions, 0);
}

TEST(PaletteReducerTest, DropSmallestPicksByCountThenIndex) {
  PaletteReducer reducer;
  reducer.InitTree(8);
  reducer.AddColor(200, 0, 0, 3);
  reducer.AddColor(0, 200, 0, 1);
  reducer.AddColor(0, 0, 200, 1);
  reducer.AddColor(90, 90, 90, 2);
  reducer.DropSmallest(2);
  EXPECT_EQ(reducer.LeafCount(), 2);
  reducer.FlattenTree();
  EXPECT_EQ(reducer.GetColorCollection(), (std::vector<std::uint32_t>{0x0000C8, 0x5A5A5A}));
  reducer.Clear();
  reducer.DropSmallest(1);
  reducer.FlattenTree();
  EXPECT_EQ(reducer.GetColorCollection(), std::vector<std::uint32_t>{0x0000C8});
}

TEST(PaletteReducerTest, NodeArrayGrowsByATenth) {
  PaletteReducer reducer;
  reducer.InitTree(8);
  EXPECT_EQ(reducer.Nodes().size(), 51u);
  for (int i = 0; i < 30; ++i) reducer.AddColor(i * 8, 255 - i * 8, i * 5);
  EXPECT_GE(reducer.Nodes().size(), 56u);
  EXPECT_EQ(reducer.LeafCount(), 30);
}

TEST(PaletteReducerTest, AddWithALimit) {
  PaletteReducer reducer;
  reducer.Add(0, 0, 0);
  reducer.Add(255, 255, 255);
  reducer.Add_MaxSize(255, 255, 255, 2);  // present: nothing changes
  EXPECT_EQ(reducer.NumColors(), 2);
  reducer.Add_MaxSize(250, 0, 0, 2);  // full: reduced to one, then added
  EXPECT_EQ(reducer.NumColors(), 2);
  EXPECT_EQ(reducer.Red(1), 250);
  reducer.Clear();
  reducer.CopyPaletteCollection({0x000001, 0x000002});
  reducer.Add_Colors_MaxSize(3, {0x000001, 0xFF0000, 0xFF0000});
  EXPECT_EQ(reducer.GetColorCollection(),
            (std::vector<std::uint32_t>{0x000001, 0x000002, 0xFF0000}));
  reducer.Add_Colors_MaxSize(3, {0x00FF00, 0x0000FF});
  EXPECT_EQ(reducer.NumColors(), 3);
  EXPECT_EQ(reducer.Blue(1), 0);
  EXPECT_EQ(reducer.GetColorCollection().back(), 0x0000FFu);
}

struct DepthCase {
  int depth;
  std::vector<std::uint8_t> bottomRow;  // stride 4
  std::vector<std::uint8_t> topRow;
  std::uint32_t topLeft, topSecond;  // GetPixel
  std::uint32_t bottomSecondColor;   // GetColor(1, 1)
};

class BitmapDataDepthTest : public ::testing::TestWithParam<DepthCase> {};

TEST_P(BitmapDataDepthTest, ReadsPixelsOfEachDepth) {
  const DepthCase& c = GetParam();
  std::vector<std::uint8_t> bits = c.bottomRow;
  bits.insert(bits.end(), c.topRow.begin(), c.topRow.end());
  std::vector<std::uint32_t> table;
  for (int i = 0; i < 16; ++i) table.push_back(RgbColor(i, i * 2, i * 3));
  BitmapData data;
  ASSERT_TRUE(
      data.SetBits(2, 2, c.depth, bits.data(), std::int64_t(c.topRow.size()), table, false));
  EXPECT_EQ(data.Stride() % 4, 0);
  EXPECT_EQ(data.GetPixel(0, 0), c.topLeft);
  EXPECT_EQ(data.GetPixel(1, 0), c.topSecond);
  EXPECT_EQ(data.GetColor(1, 1), c.bottomSecondColor);
  EXPECT_EQ(data.GetPixel(2, 0), 0u);  // outside
  int r, g, b;
  data.GetPixelRGB(1, 1, r, g, b);
  EXPECT_EQ(RgbColor(r, g, b), c.bottomSecondColor);
  EXPECT_EQ(data.GetPixelsBGR(0, 1, 2, 1)[1], c.bottomSecondColor);
  const QByteArray bgr = data.GetPixelsBGRBytes(1, 1, 1, 1);
  ASSERT_EQ(bgr.size(), 3);
  EXPECT_EQ(RgbColor(std::uint8_t(bgr[2]), std::uint8_t(bgr[1]), std::uint8_t(bgr[0])),
            c.bottomSecondColor);
}

INSTANTIATE_TEST_SUITE_P(
    Depths, BitmapDataDepthTest,
    ::testing::Values(
        DepthCase{1, {0x40, 0, 0, 0}, {0x80, 0, 0, 0}, 1, 0, RgbColor(1, 2, 3)},
        DepthCase{4, {0x0F, 0, 0, 0}, {0x3C, 0, 0, 0}, 3, 12, RgbColor(15, 30, 45)},
        DepthCase{8, {0, 7, 0, 0}, {9, 4, 0, 0}, 9, 4, RgbColor(7, 14, 21)},
        // 5-5-5: 0x7C00 is full red; 0x001F full blue.
        DepthCase{16, {0, 0, 0x1F, 0x00}, {0x00, 0x7C, 0xE0, 0x03}, 0x0000FF, 0x00FF00, 0xFF0000},
        DepthCase{24, {0, 0, 0, 1, 2, 3, 0, 0}, {10, 20, 30, 0, 0, 0, 0, 0}, 0x0A141E, 0, 0x010203},
        DepthCase{
            32, {0, 0, 0, 0, 7, 8, 9, 0}, {1, 2, 3, 0, 4, 5, 6, 0}, 0x010203, 0x040506, 0x070809}));

TEST(BitmapDataTest, ReadsAnImageAndRefusesBadInput) {
  QImage image(3, 2, QImage::Format_RGB888);
  image.fill(QColor(10, 20, 30));
  image.setPixelColor(2, 1, QColor(200, 100, 50));
  BitmapData data;
  ASSERT_TRUE(data.GetData(image));
  EXPECT_EQ(data.Depth(), 32);
  EXPECT_EQ(data.GetColor(0, 0), RgbColor(10, 20, 30));
  EXPECT_EQ(data.GetColor(2, 1), RgbColor(200, 100, 50));
  const std::uint8_t bits[4] = {};
  EXPECT_FALSE(data.SetBits(2, 1, 2, bits, 4, {}, true));
  EXPECT_TRUE(data.IsEmptyRectangle());
  EXPECT_FALSE(data.SetBits(9, 1, 32, bits, 4, {}, true));  // stride too small
}

}  // namespace
}  // namespace ombrelle
