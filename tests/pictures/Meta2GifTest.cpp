#include <gtest/gtest.h>

#include <set>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "common/OutsideReaders.h"
#include "common/TestEnvironment.h"
#include "pictures/Bitmap.h"
#include "pictures/BitmapData.h"
#include "pictures/GIFSaver.h"
#include "pictures/Meta2GIF.h"
#include "pictures/MetaRecord.h"
#include "pictures/Metafile.h"
#include "support/ScriptedUiServices.h"

namespace ombrelle {
namespace {

QString OutDir() { return test::ArtefactFolder(QStringLiteral("Meta2GIF")); }

// A small chart-like recording: coloured boxes, a line and a caption.
void Draw(Metafile& meta) {
  ASSERT_TRUE(meta.Create(80, 50, false, QStringLiteral("Ombrelle"),
                          QStringLiteral("Bars\r\nsecond line")));
  const MetaRect r = meta.PlayRect();
  const float w = float(r.right - r.left), h = float(r.bottom - r.top);
  const auto x = [&](double f) { return float(r.left + w * f); };
  const auto y = [&](double f) { return float(r.top + h * f); };
  meta.DrawBox(x(0.1), y(0.3), x(0.3), y(0.9), 0x0000FFu);
  meta.DrawBox(x(0.4), y(0.5), x(0.6), y(0.9), 0x00FF00u);
  meta.DrawBox(x(0.7), y(0.2), x(0.9), y(0.9), 0xFF0000u);
  meta.DrawLine(x(0.05), y(0.95), x(0.95), y(0.95), 0x000000u, 1);
  meta.PrintText(QStringLiteral("Bars"), x(0.4), y(0.05));
}

std::set<std::uint32_t> ColoursOf(const QByteArray& rgb) {
  std::set<std::uint32_t> colours;
  for (qsizetype i = 0; i + 2 < rgb.size(); i += 3)
    colours.insert(
        RgbColor(std::uint8_t(rgb[i]), std::uint8_t(rgb[i + 1]), std::uint8_t(rgb[i + 2])));
  return colours;
}

QByteArray FileBytes(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST(Meta2GifTest, OwnSizeKeepsTheRecordingsColoursAndDescription) {
  Metafile meta;
  Draw(meta);
  meta.Ready();
  int w = 0, h = 0;
  ASSERT_TRUE(meta.GetSize(w, h));
  const QString path = OutDir() + QStringLiteral("/own-size.gif");
  ScopedScriptedUi scoped;
  ASSERT_TRUE(Meta2GIF(meta, path, 0, 0));
  EXPECT_TRUE(scoped.ui.messages.empty());
  const QByteArray gif = FileBytes(path);
  EXPECT_TRUE(gif.startsWith("GIF89a"));  // the description is a comment
  EXPECT_EQ(std::uint8_t(gif[6]) | std::uint8_t(gif[7]) << 8, w);
  EXPECT_EQ(std::uint8_t(gif[8]) | std::uint8_t(gif[9]) << 8, h);
  const QByteArray comment = DescriptionComment(meta.Description()).toLatin1();
  EXPECT_TRUE(gif.contains(QByteArray("\x21\xFE", 2) + char(comment.size()) + comment));
  EXPECT_TRUE(comment.startsWith("Ombrelle - Bars\r\n")) << comment.toStdString();
  // Every pixel is one of the recording's colours (white first among them).
  const QByteArray rgb = test::Gif2RgbPixels(path);
  EXPECT_EQ(rgb.size(), qsizetype(w) * h * 3);
  EXPECT_TRUE(rgb == test::ImageMagickRgbPixels(path));
  const std::vector<std::uint32_t> allowed = meta.GetColors();
  for (const std::uint32_t c : ColoursOf(rgb))
    EXPECT_NE(std::find(allowed.begin(), allowed.end(), c), allowed.end()) << std::hex << c;
  EXPECT_TRUE(ColoursOf(rgb).count(0xFF0000u));
  // The recording is still there for the next use.
  EXPECT_NE(meta.Picture(), nullptr);
  test::OutsideReaderOutput(QStringLiteral("convert"),
                            {path, OutDir() + QStringLiteral("/own-size.png")});
}

TEST(Meta2GifTest, UnreplaceableFileIsReported) {
  Metafile meta;
  Draw(meta);
  meta.Ready();
  const QString path = test::SandboxRoot() + QStringLiteral("/meta2gif-folder.gif");
  QDir().mkpath(path);
  ScopedScriptedUi scoped;
  EXPECT_FALSE(Meta2GIF(meta, path, 0, 0));
  EXPECT_EQ(scoped.ui.MessageTexts(), QStringList{QStringLiteral("Cannot overwrite file ") + path});
  EXPECT_TRUE(QFileInfo(path).isDir());
}

TEST(GifBitmapTest, IndexedBitmapDecodesToItsTable) {
  Bitmap bitmap;
  ASSERT_TRUE(bitmap.Create(9, 5, 8, {0x0000FF, 0x00FF00, 0xFF0000, 0x808080}));
  std::vector<std::uint8_t> bits(12 * 5);
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 9; ++x) bits[std::size_t(y) * 12 + x] = std::uint8_t((x + y) % 4);
  ASSERT_TRUE(bitmap.SetBits(bits));
  const QString path = OutDir() + QStringLiteral("/indexed-bitmap.gif");
  QString result;
  ASSERT_TRUE(GIFSaver().Save(bitmap, path, result, 8, QString(), {}));
  QByteArray expected;
  for (int y = 0; y < 5; ++y) {
    for (int x = 0; x < 9; ++x) {
      const QRgb c = bitmap.PixelColor(x, y);
      expected.append(char(qRed(c))).append(char(qGreen(c))).append(char(qBlue(c)));
    }
  }
  EXPECT_TRUE(test::Gif2RgbPixels(path) == expected);
  EXPECT_TRUE(test::ImageMagickRgbPixels(path) == expected);
  EXPECT_EQ(FileBytes(path)[10], char(0xF1));  // four colours in use: two bits
}

// A list longer than a 4-bit table goes through the octree: the two colours
// that share the deepest cell merge, the others stay as they are.
TEST(GifBitmapTest, LongColourListIsReducedByTheOctree) {
  std::vector<std::uint32_t> colors;
  for (int i = 0; i < 15; ++i) colors.push_back(RgbColor(i * 17, 255 - i * 16, (i * 90) % 256));
  colors.push_back(RgbColor(100, 100, 100));
  colors.push_back(RgbColor(101, 100, 100));
  Bitmap bitmap;
  ASSERT_TRUE(bitmap.Create(4, 4, 4, colors));
  ASSERT_EQ(bitmap.Palette().size(), 16);
  for (int i = 0; i < 15; ++i)
    EXPECT_EQ(bitmap.Palette()[i], qRgb(RedOf(colors[i]), GreenOf(colors[i]), BlueOf(colors[i])))
        << i;
  EXPECT_EQ(bitmap.Palette()[15], qRgb(101, 100, 100));  // 100.5 rounds up
}

}  // namespace
}  // namespace ombrelle
