#include <gtest/gtest.h>

#include "pictures/RichPicture.h"
#include "pictures/StdPictInfo.h"

using namespace ombrelle;

TEST(StdPictInfo, RecordingMeasuresItsFrameAtScreenResolution) {
  const StdPictInfo info(test::EmptyPicture(150, 112));
  EXPECT_EQ(info.Width(), 567);   // 15001 / 2540 x 96 = 566.97
  EXPECT_EQ(info.Height(), 423);  // 11201 / 2540 x 96 = 423.3
  EXPECT_EQ(info.DPIx(), 96);
  EXPECT_EQ(info.PixelsPerMeterY(), 3780);
  EXPECT_EQ(info.ColorDepth(), 0);
  EXPECT_EQ(info.UncompressedSize(), 0);
  EXPECT_EQ(info.hDIB(), nullptr);
}

TEST(StdPictInfo, BitmapFacts) {
  QImage image(5, 3, QImage::Format_RGB32);
  image.fill(Qt::white);
  image.setDotsPerMeterX(11811);  // 300 per inch
  image.setDotsPerMeterY(11811);
  StdPictInfo info(image);
  EXPECT_EQ(info.ColorDepth(), 32);
  EXPECT_EQ(info.DPIx(), 300);
  EXPECT_EQ(info.UncompressedSize(), 5 * 4 * 3);
  EXPECT_TRUE(info.IsBlackWhite());
  EXPECT_TRUE(info.IsGrayscale());
  EXPECT_EQ(info.UniqueColorCount(), 1);
  image.setPixel(0, 0, qRgb(128, 128, 128));
  info.SetPicture(image);
  EXPECT_FALSE(info.IsBlackWhite());
  EXPECT_TRUE(info.IsGrayscale());
  image.setPixel(1, 0, qRgb(255, 0, 0));
  info.SetPicture(image);
  EXPECT_FALSE(info.IsGrayscale());
  EXPECT_EQ(info.UniqueColorCount(), 3);

  QImage indexed(7, 2, QImage::Format_Indexed8);
  indexed.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255), qRgb(9, 9, 9)});
  indexed.fill(0);
  info.SetPicture(indexed);
  EXPECT_EQ(info.ColorDepth(), 4);
  EXPECT_EQ(info.UncompressedSize(), 4 * 2);  // 7 x 4 bits = 28 bits: one padded 4-byte row
}
