// Bitmaps: modes and their errors, pixel access, BMP files of every depth
// checked by outside readers and by an independent RLE decoder, bad input.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include "common/MessageAssertions.h"
#include "common/OutsideReaders.h"
#include "common/ScopedFileSizeLimit.h"
#include "pictures/Bitmap.h"
#include "pictures/Metafile.h"

namespace ombrelle {
namespace {

std::uint32_t U32(const QByteArray& b, int at) {
  return std::uint8_t(b[at]) | std::uint8_t(b[at + 1]) << 8 | std::uint8_t(b[at + 2]) << 16 |
         std::uint32_t(std::uint8_t(b[at + 3])) << 24;
}

// A small picture of `colours` colours: bars, a pie, lines and text.
std::unique_ptr<Bitmap> SamplePicture(int mode, int width = 123, int height = 77) {
  Metafile meta;
  meta.Create(123, 77);
  const std::uint32_t colours[] = {0x0000FF, 0x00C000, 0xFF0000, 0x00FFFF, 0x808080, 0xFF00FF};
  for (int i = 0; i < 6; ++i)
    meta.DrawBox(50 + i * 150, -700, 150 + i * 150, -700 + i * 100, colours[i], true);
  meta.DrawPieAngle(900, -250, 200, 0.3f, 2.5f, 0x0080FF);
  meta.SetLineProperties(4, 0x000000);
  meta.DrawLine(20, -20, 1200, -740);
  meta.Font().size = 60;
  meta.ApplyFont(false);
  meta.PrintText(QStringLiteral("Tg 42"), 60, -40);
  meta.Ready();
  auto bitmap = std::make_unique<Bitmap>();
  bitmap->Create(width, height, mode, meta.GetColors());
  bitmap->DrawBackColor(0xFFFFFF);
  bitmap->PlayMeta(meta, 0, 0, width, height);
  return bitmap;
}

// Where two pictures differ first, or "" when they hold the same pixels.
// `mask` keeps the bits a depth defines (readers widen 5-bit channels differently).
std::string FirstDifference(const QImage& a, const QImage& b, QRgb mask = 0xFFFFFFFF) {
  if (a.size() != b.size()) return "size differs";
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x)
      if ((a.pixel(x, y) & mask) != (b.pixel(x, y) & mask))
        return QStringLiteral("(%1, %2): %3 against %4")
            .arg(x)
            .arg(y)
            .arg(a.pixel(x, y), 8, 16)
            .arg(b.pixel(x, y), 8, 16)
            .toStdString();
  return "";
}

// An RLE decoder written from the published layout, independent of the encoder.
std::vector<std::uint8_t> DecodeRle(const QByteArray& data, int width, int height, int depth) {
  std::vector<std::uint8_t> pixels(static_cast<size_t>(width) * height, 0);
  int x = 0, y = 0;
  size_t i = 0;
  const auto put = [&](int value) {
    if (x < width && y < height) pixels[size_t(y) * width + x] = std::uint8_t(value);
    ++x;
  };
  while (i + 1 < size_t(data.size())) {
    const int count = std::uint8_t(data[i]), value = std::uint8_t(data[i + 1]);
    i += 2;
    if (count > 0) {
      for (int k = 0; k < count; ++k)
        put(depth == 8 ? value : ((k & 1) ? value & 0x0F : value >> 4));
    } else if (value == 0) {
      x = 0;
      ++y;
    } else if (value == 1) {
      return pixels;
    } else if (value == 2) {
      x += std::uint8_t(data[i]);
      y += std::uint8_t(data[i + 1]);
      i += 2;
    } else {
      const int bytes = depth == 8 ? value : (value + 1) / 2;
      for (int k = 0; k < value; ++k) {
        const int b = std::uint8_t(data[i + (depth == 8 ? k : k / 2)]);
        put(depth == 8 ? b : ((k & 1) ? b & 0x0F : b >> 4));
      }
      i += bytes + (bytes & 1);
    }
  }
  ADD_FAILURE() << "no end of bitmap";
  return pixels;
}

TEST(BitmapCreate, RefusesUnsupportedModes) {
  Bitmap bitmap;
  for (int mode : {2, 0, -1, -16, 12, 64}) {
    try {
      bitmap.Create(10, 10, mode);
      ADD_FAILURE() << "mode " << mode << " accepted";
    } catch (const BitmapError& error) {
      EXPECT_EQ(error.Number(), 14344);
      EXPECT_EQ(error.Text(), QStringLiteral("Unsupported Mode (%1) in Bitmap.Create").arg(mode));
      EXPECT_EQ(error.Source(), QStringLiteral("Bitmap"));
    }
  }
  try {
    bitmap.Create(0, 10, 8);
    ADD_FAILURE() << "empty bitmap accepted";
  } catch (const BitmapError& error) {
    EXPECT_EQ(error.Number(), 14343);
  }
  EXPECT_TRUE(bitmap.IsEmpty());
}

TEST(BitmapCreate, ModesAndPalettes) {
  Bitmap bitmap;
  ASSERT_TRUE(bitmap.Create(10, -5, -8, {0xFF, 0x80000005}));
  EXPECT_EQ(bitmap.Height(), 5);
  EXPECT_EQ(bitmap.Depth(), 8);
  EXPECT_TRUE(bitmap.Compress());
  ASSERT_EQ(bitmap.Palette().size(), 256);
  EXPECT_EQ(bitmap.Palette()[0], qRgb(255, 0, 0));
  EXPECT_EQ(bitmap.Palette()[2], qRgb(0, 0, 0));
  ASSERT_TRUE(bitmap.Create(3, 3, 1, {0xFF, 0xFF00}));  // 1 bit ignores the list
  EXPECT_EQ(bitmap.Palette(), (QList<QRgb>{qRgb(0, 0, 0), qRgb(255, 255, 255)}));
  bitmap.DrawBackColor(0xFFFFFF);
  EXPECT_EQ(bitmap.PixelIndex(2, 2), 1);
  ASSERT_TRUE(bitmap.Create(3, 3, 4, {0x0000FF, 0x00FF00, 0xFF0000}));
  bitmap.DrawBackColor(0x0000F0);  // not in the table: the nearest entry
  EXPECT_EQ(bitmap.PixelIndex(0, 0), 0);
  EXPECT_FALSE(bitmap.Compress());
}

TEST(BitmapBits, BottomRowFirstAndTooMuchDataRefused) {
  ScopedScriptedUi ui;
  Bitmap bitmap;
  bitmap.Create(3, 2, 8, {0x000000, 0xFFFFFF, 0x0000FF});
  // Two rows of three pixels, each padded to four bytes; the bottom row first.
  ASSERT_TRUE(bitmap.SetBits({1, 2, 0, 9, 2, 2, 1}));
  EXPECT_EQ(bitmap.PixelIndex(0, 1), 1);
  EXPECT_EQ(bitmap.PixelIndex(1, 1), 2);
  EXPECT_EQ(bitmap.PixelIndex(0, 0), 2);
  EXPECT_EQ(bitmap.PixelIndex(2, 0), 1);
  std::vector<std::uint8_t> bits;
  ASSERT_TRUE(bitmap.GetBits(bits));
  EXPECT_EQ(bits, (std::vector<std::uint8_t>{1, 2, 0, 0, 2, 2, 1, 0}));
  std::vector<std::vector<std::uint8_t>> rows;
  ASSERT_TRUE(bitmap.GetBits2(rows));
  EXPECT_EQ(rows[1], (std::vector<std::uint8_t>{2, 2, 1, 0}));
  EXPECT_FALSE(bitmap.SetBits(std::vector<std::uint8_t>(9, 1)));
  EXPECT_ONLY_UI_MESSAGE(ui.ui, "Too much data to set to bitmap", MsgStyle::Exclamation);
  EXPECT_EQ(bitmap.PixelIndex(0, 0), 2);
}

TEST(BitmapBits, RoundTripAtEveryDepth) {
  for (int mode : {1, 4, 8, 16, 24, 32}) {
    auto bitmap = SamplePicture(mode, 37, 11);
    std::vector<std::uint8_t> bits;
    ASSERT_TRUE(bitmap->GetBits(bits));
    EXPECT_EQ(bits.size(), size_t((37 * mode + 31) / 32 * 4 * 11)) << mode;
    const QImage before = bitmap->ToRgb32();
    Bitmap copy;
    copy.Create(
        37, 11, mode,
        {0xFFFFFF, 0x0000FF, 0x00C000, 0xFF0000, 0x00FFFF, 0x808080, 0xFF00FF, 0x0080FF, 0x000000});
    if (mode <= 8) continue;  // the palettes differ; the indexes are tested above
    ASSERT_TRUE(copy.SetBits(bits));
    EXPECT_EQ(copy.ToRgb32(), before) << mode;
  }
}

class BmpFiles : public ::testing::Test {
 protected:
  QString Path(const QString& name) const { return m_dir.filePath(name); }
  QTemporaryDir m_dir;
};

TEST_F(BmpFiles, EveryDepthDecodesInOutsideReadersToOurPixels) {
  for (int mode : {1, 4, 8, 16, 24, 32, -4, -8}) {
    auto bitmap = SamplePicture(mode);
    const QString file = Path(QStringLiteral("depth%1.bmp").arg(mode));
    ASSERT_TRUE(bitmap->Save(file)) << mode;
    QFile f(file);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray bytes = f.readAll();
    EXPECT_EQ(bytes.left(2), QByteArray("BM"));
    EXPECT_EQ(U32(bytes, 2), std::uint32_t(bytes.size()));
    EXPECT_EQ(U32(bytes, 14), 40u);
    const int depth = std::abs(mode);
    EXPECT_EQ(U32(bytes, 10), std::uint32_t(54 + (depth <= 8 ? 4 << depth : 0)));
    EXPECT_EQ(U32(bytes, 30), mode == -8   ? 1u
                              : mode == -4 ? 2u
                                           : 0u)
        << "compression of mode " << mode;
    const QImage ours = bitmap->ToRgb32();
    const QRgb mask = depth == 16 ? 0xF8F8F8 : 0xFFFFFFFF;
    EXPECT_EQ(FirstDifference(test::DecodeWithImageMagick(file), ours, mask), "")
        << "ImageMagick, mode " << mode;
    EXPECT_EQ(FirstDifference(test::DecodeWithBmptopnm(file), ours, mask), "")
        << "bmptopnm, mode " << mode;
  }
}

TEST_F(BmpFiles, RleDataDecodesIndependentlyToTheRawPixels) {
  for (int mode : {-4, -8}) {
    for (int width : {1, 2, 3, 77, 300}) {
      auto bitmap = SamplePicture(mode, width, 31);
      const QByteArray file = bitmap->EncodeBMP(true);
      const int offset = static_cast<int>(U32(file, 10));
      if (U32(file, 30) == 0) continue;  // raw was smaller
      std::vector<std::uint8_t> decoded = DecodeRle(file.mid(offset), width, 31, -mode);
      std::vector<std::uint8_t> expected;
      for (int y = 30; y >= 0; --y)
        for (int x = 0; x < width; ++x) expected.push_back(std::uint8_t(bitmap->PixelIndex(x, y)));
      EXPECT_EQ(decoded, expected) << "mode " << mode << " width " << width;
      EXPECT_EQ(U32(file, 34), std::uint32_t(file.size() - offset));
    }
  }
}

TEST_F(BmpFiles, RleOnlyWhenSmaller) {
  auto flat = SamplePicture(-8, 200, 100);
  const QByteArray packed = flat->EncodeBMP(true);
  EXPECT_EQ(U32(packed, 30), 1u);
  EXPECT_LT(packed.size(), flat->EncodeBMP(false).size());

  Bitmap noise;
  noise.Create(64, 64, -8, {});
  std::vector<std::uint8_t> bits(64 * 64);
  QRandomGenerator random(7);
  for (auto& b : bits) b = std::uint8_t(random.bounded(256));
  noise.SetBits(bits);
  const QByteArray raw = noise.EncodeBMP(true);
  EXPECT_EQ(U32(raw, 30), 0u);
  EXPECT_EQ(raw.size(), 54 + 1024 + 64 * 64);
  // Forced RLE is written even when larger, and still decodes.
  const QString forced = Path(QStringLiteral("forced.bmp"));
  ASSERT_TRUE(noise.SaveRLE(forced, 8));
  EXPECT_EQ(test::DecodeWithBmptopnm(forced), noise.ToRgb32());
}

TEST_F(BmpFiles, ReadOnlyFileIsNotOverwritten) {
  ScopedScriptedUi ui;
  const QString file = Path(QStringLiteral("locked.bmp"));
  QFile f(file);
  ASSERT_TRUE(f.open(QIODevice::WriteOnly));
  f.write("old");
  f.close();
  ASSERT_TRUE(QFile::setPermissions(file, QFile::ReadOwner | QFile::ReadUser));
  EXPECT_FALSE(SamplePicture(8)->Save(file));
  EXPECT_ONLY_UI_MESSAGE(ui.ui, ("Cannot overwrite file " + file).toStdString(),
                         MsgStyle::Exclamation);
  ASSERT_TRUE(f.open(QIODevice::ReadOnly));
  EXPECT_EQ(f.readAll(), QByteArray("old"));
}

TEST_F(BmpFiles, FailedWriteLeavesNoHalfFile) {
  ScopedScriptedUi ui;
  const QString file = Path(QStringLiteral("half.bmp"));
  {
    test::ScopedFileSizeLimit limit(1000);
    EXPECT_FALSE(SamplePicture(24)->Save(file));
  }
  EXPECT_FALSE(QFile::exists(file));
  EXPECT_EQ(QDir(m_dir.path()).entryList(QDir::Files), QStringList());
  EXPECT_EQ(ui.ui.messages.size(), 1u);
}

TEST_F(BmpFiles, MetafileSavesThroughItsBitmap) {
  Metafile meta;
  meta.Create(40, 30);
  meta.DrawBox(0, 0, 200, -150, 0x00FF00);
  meta.Ready();
  const QString file = Path(QStringLiteral("meta.bmp"));
  ASSERT_TRUE(meta.SaveBMP(file, 160, 0, 0, true));
  const QImage decoded = test::DecodeWithImageMagick(file);
  ASSERT_EQ(decoded.size(), QSize(160, 120));
  EXPECT_EQ(decoded.pixel(10, 10), qRgb(0, 0, 0));  // green in a 1-bit picture is black
  EXPECT_EQ(decoded.pixel(150, 110), qRgb(255, 255, 255));
}

}  // namespace
}  // namespace ombrelle
