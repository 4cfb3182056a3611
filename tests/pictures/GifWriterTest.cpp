#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>

#include "common/OutsideReaders.h"
#include "common/TestEnvironment.h"
#include "pictures/BitmapData.h"
#include "pictures/GIFSaver.h"
#include "pictures/GifLzwEncoder.h"
#include "pictures/ReducePicture.h"

namespace ombrelle {
namespace {

QString OutDir() { return test::ArtefactFolder(QStringLiteral("GifWriter")); }

QByteArray Bytes(std::initializer_list<int> values) {
  QByteArray out;
  for (const int v : values) out.append(char(v));
  return out;
}

// The codes of a GIF's image data, read as a reader does: the width grows
// after each code once the next entry reaches 2^width, and a clear code
// starts again. Stops after the end code.
struct CodeStream {
  std::vector<int> codes;
  std::vector<int> widths;
  int dataBytes = 0;
  std::vector<int> blockSizes;
};

CodeStream ReadCodes(const QByteArray& gif, qsizetype dataStart) {
  CodeStream stream;
  const int minimum = static_cast<unsigned char>(gif[dataStart]);
  QByteArray data;
  qsizetype at = dataStart + 1;
  while (at < gif.size() && gif[at] != 0) {
    const int n = static_cast<unsigned char>(gif[at]);
    stream.blockSizes.push_back(n);
    data.append(gif.mid(at + 1, n));
    at += n + 1;
  }
  stream.dataBytes = int(data.size());
  const int clear = 1 << minimum;
  int width = minimum + 1;
  int next = clear + 2;
  bool first = true;
  std::int64_t bit = 0;
  while (bit + width <= std::int64_t(data.size()) * 8) {
    int code = 0;
    for (int k = 0; k < width; ++k, ++bit)
      if ((static_cast<unsigned char>(data[qsizetype(bit / 8)]) >> (bit % 8)) & 1) code |= 1 << k;
    stream.codes.push_back(code);
    stream.widths.push_back(width);
    if (code == clear + 1) break;
    if (code == clear) {
      width = minimum + 1;
      next = clear + 2;
      first = true;
      continue;
    }
    if (!first) ++next;
    first = false;
    if (next + 1 > (1 << width) && width < 12) ++width;
  }
  return stream;
}

// The colours a reader should show: the palette colour of every index.
QByteArray ExpectedRgb(const IndexedPicture& picture) {
  QByteArray rgb;
  for (const std::uint8_t index : picture.pixels) {
    const std::uint32_t c = picture.palette[index];
    rgb.append(char(RedOf(c))).append(char(GreenOf(c))).append(char(BlueOf(c)));
  }
  return rgb;
}

void ExpectReadersShow(const QString& path, const QByteArray& expected) {
  const QByteArray giflib = test::Gif2RgbPixels(path);
  EXPECT_EQ(giflib.size(), expected.size());
  EXPECT_TRUE(giflib == expected) << "gif2rgb pixels differ";
  const QByteArray magick = test::ImageMagickRgbPixels(path);
  EXPECT_TRUE(magick == expected) << "ImageMagick pixels differ";
}

TEST(InterlaceRowTest, FourPassesCoverEveryRowOnce) {
  // Ten rows: 1, 9 | 5 | 3, 7 | 2, 4, 6, 8, 10.
  const std::vector<int> expected{1, 9, 5, 3, 7, 2, 4, 6, 8, 10};
  for (int i = 1; i <= 10; ++i) EXPECT_EQ(InterlaceRow(i, 10), expected[i - 1]) << i;
  for (const int h : {1, 2, 3, 4, 5, 7, 8, 9, 17, 1120}) {
    std::vector<int> seen(h + 1, 0);
    for (int i = 1; i <= h; ++i) ++seen[InterlaceRow(i, h)];
    for (int r = 1; r <= h; ++r) ASSERT_EQ(seen[r], 1) << "height " << h << " row " << r;
  }
}

// A 3 x 2 one-bit picture, worked by hand:
// pixels in file order 0 1 1 | 1 0 0; codes clear 4, 0, 1, 7 (three bits),
// then 0, 0 and end 5 at four bits, since code 8 was given out after 7.
TEST(GifWriterTest, TinyOneBitPictureIsByteExact) {
  IndexedPicture picture{3, 2, 1, {0x000000, 0xFFFFFF}, {0, 1, 1, 1, 0, 0}};
  const QByteArray gif = GIFSaver().Encode(picture, QString(), std::nullopt);
  QByteArray expected("GIF87a");
  expected += Bytes({3, 0, 2, 0, 0xF0, 0, 0});
  expected += Bytes({0, 0, 0, 255, 255, 255});
  expected += Bytes({0x2C, 0, 0, 0, 0, 3, 0, 2, 0, 0x47});
  expected += Bytes({2, 3, 0x44, 0x0E, 0x50, 0, 0x3B});
  EXPECT_EQ(gif.toHex(' ').toStdString(), expected.toHex(' ').toStdString());

  const QString path = OutDir() + QStringLiteral("/tiny.gif");
  QString result;
  ASSERT_TRUE(GIFSaver().Save(picture, path, result, QString(), std::nullopt))
      << result.toStdString();
  ExpectReadersShow(path, ExpectedRgb(picture));
  const QString report = test::GiftextReport(path);
  EXPECT_TRUE(report.contains(QStringLiteral("Image is Interlaced."))) << report.toStdString();
  EXPECT_TRUE(report.contains(QStringLiteral("GIF file terminated normally.")));
}

TEST(GifWriterTest, TransparencyOnlyForAPaletteColour) {
  IndexedPicture picture{2, 2, 2, {0x0000FF, 0x00FF00, 0xFF0000}, {0, 1, 2, 1}};
  GIFSaver saver;
  // Absent from the palette: no control extension, no 89a.
  const QByteArray absent = saver.Encode(picture, QString(), 0x123456u);
  EXPECT_TRUE(absent.startsWith("GIF87a"));
  EXPECT_FALSE(absent.contains(QByteArray("\x21\xF9", 2)));
  // Black is not in the palette either, though the unused fourth entry is 0.
  EXPECT_FALSE(saver.Encode(picture, QString(), 0x000000u).contains(QByteArray("\x21\xF9", 2)));
  const QByteArray present = saver.Encode(picture, QString(), 0xFF0000u);
  EXPECT_TRUE(present.startsWith("GIF89a"));
  const qsizetype at = 13 + 4 * 3;  // header, screen descriptor, table
  EXPECT_EQ(present.mid(at, 8).toHex(' ').toStdString(), "21 f9 04 01 00 00 02 00");
  EXPECT_EQ(present[at + 8], char(0x2C));

  const QString path = OutDir() + QStringLiteral("/transparent.gif");
  QString result;
  ASSERT_TRUE(saver.Save(picture, path, result, QString(), 0xFF0000u));
  // giftext shows the extension; the version is the file's first six bytes.
  const QString report = test::GiftextReport(path);
  EXPECT_TRUE(report.contains(QStringLiteral("Transparency on: yes"))) << report.toStdString();
  EXPECT_TRUE(report.contains(QStringLiteral("Transparent Index: 2"))) << report.toStdString();
  EXPECT_TRUE(report.contains(QStringLiteral("Image is Interlaced.")));
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.read(6), QByteArray("GIF89a"));
}

TEST(GifWriterTest, CommentOf300CharactersIn254And46) {
  IndexedPicture picture{1, 1, 1, {0xFFFFFF, 0}, {0}};
  QString comment;
  for (int i = 0; i < 300; ++i) comment += QChar('a' + i % 26);
  const QByteArray gif = GIFSaver().Encode(picture, comment, std::nullopt);
  EXPECT_TRUE(gif.startsWith("GIF89a"));
  const qsizetype at = gif.indexOf(QByteArray("\x21\xFE", 2));
  ASSERT_GT(at, 0);
  EXPECT_EQ(static_cast<unsigned char>(gif[at + 2]), 254);
  EXPECT_EQ(gif.mid(at + 3, 254), comment.left(254).toLatin1());
  EXPECT_EQ(static_cast<unsigned char>(gif[at + 3 + 254]), 46);
  EXPECT_EQ(gif.mid(at + 4 + 254, 46), comment.mid(254).toLatin1());
  EXPECT_EQ(gif.mid(at + 4 + 300), Bytes({0, 0x3B}));
  // Characters beyond ASCII are spelled in ASCII.
  const QByteArray accented = GIFSaver().Encode(picture, QStringLiteral("caf\u00e9"), std::nullopt);
  EXPECT_TRUE(
      accented.contains(QByteArray("\x21\xFE\x04"
                                   "cafe\x00\x3B",
                                   9)));

  const QString path = OutDir() + QStringLiteral("/comment.gif");
  QString result;
  ASSERT_TRUE(GIFSaver().Save(picture, path, result, comment, std::nullopt));
  // giftext dumps the comment sixteen characters a line.
  const QString report = test::GiftextReport(path);
  EXPECT_TRUE(report.contains(QStringLiteral("abcdefghijklmnop"))) << report.toStdString();
  EXPECT_TRUE(report.contains(QStringLiteral("mnopqrstuvwxyzab")));
  ExpectReadersShow(path, ExpectedRgb(picture));
}

TEST(GifWriterTest, VariedPicturePassesCode4095SeveralTimes) {
  std::mt19937 random(7);
  IndexedPicture picture;
  picture.width = 611;
  picture.height = 257;
  picture.bitsPerPixel = 8;
  for (int i = 0; i < 256; ++i) picture.palette.push_back(RgbColor(i, 255 - i, (i * 37) & 255));
  for (int i = 0; i < picture.width * picture.height; ++i)
    picture.pixels.push_back(std::uint8_t(random() % (i % 3 == 0 ? 256 : 5)));
  const QByteArray gif = GIFSaver().Encode(picture, QString(), std::nullopt);
  const CodeStream stream = ReadCodes(gif, 13 + 256 * 3 + 10);
  // Every block but the last holds 255 bytes.
  for (std::size_t i = 0; i + 1 < stream.blockSizes.size(); ++i)
    ASSERT_EQ(stream.blockSizes[i], 255);
  ASSERT_FALSE(stream.codes.empty());
  EXPECT_EQ(stream.codes.front(), 256);
  EXPECT_EQ(stream.codes.back(), 257);
  // A clear code after every 4095 - 258 = 3837 codes of data, at 12 bits.
  std::vector<std::size_t> clears;
  for (std::size_t i = 0; i < stream.codes.size(); ++i)
    if (stream.codes[i] == 256) clears.push_back(i);
  ASSERT_GE(clears.size(), 4u);
  for (std::size_t k = 1; k < clears.size(); ++k) {
    EXPECT_EQ(clears[k] - clears[k - 1], 3838u) << k;
    EXPECT_EQ(stream.widths[clears[k]], 12);
    EXPECT_EQ(stream.widths[clears[k] + 1], 9);
  }
  const QString path = OutDir() + QStringLiteral("/varied.gif");
  QString result;
  ASSERT_TRUE(GIFSaver().Save(picture, path, result, QString(), std::nullopt));
  ExpectReadersShow(path, ExpectedRgb(picture));
}

struct ShapeCase {
  int width, height, bits;
  int pattern;  // 0 one colour, 1 stripes, 2 noise
};

class GifShapeTest : public ::testing::TestWithParam<ShapeCase> {};

// Sizes and contents at the edges of the coder: one pixel, one column, long
// runs of one colour (strings thousands of pixels long), every depth.
TEST_P(GifShapeTest, ReadersShowTheSourcePixels) {
  const ShapeCase& c = GetParam();
  IndexedPicture picture;
  picture.width = c.width;
  picture.height = c.height;
  picture.bitsPerPixel = c.bits;
  for (int i = 0; i < (1 << c.bits); ++i)
    picture.palette.push_back(RgbColor(i * 17 % 256, 255 - i, i * 101 % 256));
  std::mt19937 random(c.width * 31 + c.height);
  for (int i = 0; i < c.width * c.height; ++i) {
    const int v = c.pattern == 0 ? 0 : c.pattern == 1 ? (i / 7) : int(random() % 256);
    picture.pixels.push_back(std::uint8_t(v % (1 << c.bits)));
  }
  const QString path = OutDir() + QStringLiteral("/shape-%1x%2-%3-%4.gif")
                                      .arg(c.width)
                                      .arg(c.height)
                                      .arg(c.bits)
                                      .arg(c.pattern);
  QString result;
  ASSERT_TRUE(GIFSaver().Save(picture, path, result, QString(), std::nullopt));
  ExpectReadersShow(path, ExpectedRgb(picture));
}

INSTANTIATE_TEST_SUITE_P(Shapes, GifShapeTest,
                         ::testing::Values(ShapeCase{1, 1, 1, 0}, ShapeCase{1, 9, 2, 1},
                                           ShapeCase{257, 3, 4, 2}, ShapeCase{400, 300, 1, 0},
                                           ShapeCase{320, 200, 2, 2}, ShapeCase{123, 45, 8, 1}));

TEST(GifWriterTest, ProgressReportsEveryRow) {
  IndexedPicture picture{2, 5, 1, {0, 0xFFFFFF}, std::vector<std::uint8_t>(10, 1)};
  GIFSaver saver;
  std::vector<std::pair<int, int>> calls;
  saver.SetProgress([&](int row, int rows) { calls.emplace_back(row, rows); });
  saver.Encode(picture, QString(), std::nullopt);
  ASSERT_EQ(calls.size(), 5u);
  EXPECT_EQ(calls.front(), std::make_pair(1, 5));
  EXPECT_EQ(calls.back(), std::make_pair(5, 5));
}

TEST(GifWriterTest, ReducedTrueColourPictureDecodesToItsPalette) {
  // 24-bit picture of five colours and a gradient band: more than 256
  // colours, so the octree palette from samples, each pixel the nearest.
  const int w = 300, h = 200;
  std::vector<std::uint8_t> bits(std::size_t(w) * 4 * h);
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      std::uint8_t* p = bits.data() + (std::size_t(y) * w + x) * 4;
      const bool band = y >= 150;
      p[0] = std::uint8_t(band ? x % 256 : (x / 60) * 50);
      p[1] = std::uint8_t(band ? y : 255 - (x / 60) * 40);
      p[2] = std::uint8_t(band ? (x * y) % 256 : 30);
    }
  }
  BitmapData data;
  ASSERT_TRUE(data.SetBits(w, h, 32, bits.data(), w * 4, {}, true));
  const IndexedPicture picture = ReducePicture(data, 8, std::nullopt, {});
  ASSERT_EQ(picture.bitsPerPixel, 8);
  ASSERT_LE(picture.palette.size(), 256u);
  // Every pixel took the nearest palette colour, and the five plain colours
  // are kept exactly.
  for (int y = 0; y < h; y += 7) {
    for (int x = 0; x < w; x += 3) {
      const std::uint32_t source = data.GetColor(x, y);
      const std::uint32_t chosen = picture.palette[picture.pixels[std::size_t(y) * w + x]];
      EXPECT_EQ(chosen, picture.palette[std::size_t(NearestPaletteIndex(picture.palette, source))]);
      if (y < 150) {
        EXPECT_EQ(chosen, source) << x << "," << y;
      }
    }
  }
  const QString path = OutDir() + QStringLiteral("/reduced.gif");
  QString result;
  ASSERT_TRUE(GIFSaver().Save(picture, path, result, QString(), std::nullopt));
  ExpectReadersShow(path, ExpectedRgb(picture));
}

// A drawn chart with smooth lines and text (hundreds of colours) through the
// whole road; the PNG the outside reader makes of the GIF is kept to look at.
TEST(GifWriterTest, DrawnChartRoundTrip) {
  QImage image(640, 420, QImage::Format_RGB32);
  image.fill(Qt::white);
  {
    QPainter painter(&image);
    painter.setPen(QColor(210, 210, 210));
    for (int y = 40; y < 360; y += 40) painter.drawLine(60, y, 620, y);
    const QColor colors[] = {Qt::blue, Qt::red, QColor(0, 128, 0), QColor(255, 165, 0)};
    for (int i = 0; i < 10; ++i) {
      const int h = 60 + (i * 97) % 280;
      painter.fillRect(80 + i * 52, 360 - h, 34, h, colors[i % 4]);
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(128, 0, 128), 3));
    QPolygonF line;
    for (int x = 60; x <= 620; x += 10) line << QPointF(x, 200 + 120 * std::sin(x / 50.0));
    painter.drawPolyline(line);
    painter.setPen(Qt::black);
    painter.setFont(QFont(QStringLiteral("DejaVu Sans"), 11));
    for (int i = 0; i < 10; ++i) painter.drawText(80 + i * 52, 385, QString::number(2015 + i));
    painter.drawText(QRect(0, 5, 640, 30), Qt::AlignCenter, QStringLiteral("Files per year"));
  }
  BitmapData data;
  ASSERT_TRUE(data.GetData(image));
  const IndexedPicture picture = ReducePicture(data, 8, std::nullopt, {});
  EXPECT_EQ(picture.bitsPerPixel, 8);
  // The plain colours of the chart stay exact.
  EXPECT_EQ(picture.palette[picture.pixels[0]], 0xFFFFFFu);
  EXPECT_EQ(picture.palette[picture.pixels[std::size_t(355) * 640 + 90]], 0xFF0000u);
  const QString path = OutDir() + QStringLiteral("/chart.gif");
  QString result;
  ASSERT_TRUE(GIFSaver().Save(picture, path, result, QString(), std::nullopt));
  ExpectReadersShow(path, ExpectedRgb(picture));
  test::OutsideReaderOutput(QStringLiteral("convert"),
                            {path, OutDir() + QStringLiteral("/chart-as-read.png")});
}

TEST(GifWriterTest, MustKeepListIsThePaletteWhenItFits) {
  const std::uint32_t colors[] = {0x0000FF, 0x00FF00, 0xFFFFFF, 0x000000};
  std::vector<std::uint8_t> bits(8 * 4 * 2);
  for (int i = 0; i < 16; ++i) {
    const std::uint32_t c = colors[i % 4] == 0 ? 0x010101 : colors[i % 4];  // near black
    bits[std::size_t(i) * 4] = std::uint8_t(BlueOf(c));
    bits[std::size_t(i) * 4 + 1] = std::uint8_t(GreenOf(c));
    bits[std::size_t(i) * 4 + 2] = std::uint8_t(RedOf(c));
  }
  BitmapData data;
  ASSERT_TRUE(data.SetBits(8, 2, 32, bits.data(), 32, {}, true));
  const IndexedPicture picture =
      ReducePicture(data, 8, std::nullopt, {0x0000FF, 0x00FF00, 0x0000FF, 0x000000});
  // The list without its repeat, then white for the transparent colour.
  EXPECT_EQ(picture.palette, (std::vector<std::uint32_t>{0x0000FF, 0x00FF00, 0x000000, 0xFFFFFF}));
  EXPECT_EQ(picture.bitsPerPixel, 2);
  EXPECT_EQ(picture.pixels[0], 0);
  EXPECT_EQ(picture.pixels[2], 3);
  EXPECT_EQ(picture.pixels[3], 2);  // near black maps to black
}

TEST(GifWriterTest, IndexedSourceKeepsTableAndFewestBits) {
  const std::uint8_t bits[4] = {0xA0, 0, 0, 0};  // 1 0 1 0 ...
  BitmapData data;
  ASSERT_TRUE(data.SetBits(4, 1, 1, bits, 4, {0x000000, 0xFFFFFF}, true));
  const IndexedPicture picture = ReducePicture(data, 8, std::nullopt, {});
  EXPECT_EQ(picture.bitsPerPixel, 1);
  EXPECT_EQ(picture.pixels, (std::vector<std::uint8_t>{1, 0, 1, 0}));
  EXPECT_EQ(picture.palette, (std::vector<std::uint32_t>{0x000000, 0xFFFFFF}));
  // A table of 256 with indices up to 5 in use: six entries, three bits.
  const std::uint8_t eight[4] = {5, 0, 2, 0};
  std::vector<std::uint32_t> table(256, 0x808080);
  ASSERT_TRUE(data.SetBits(4, 1, 8, eight, 4, table, true));
  const IndexedPicture trimmed = ReducePicture(data, 8, std::nullopt, {});
  EXPECT_EQ(trimmed.palette.size(), 6u);
  EXPECT_EQ(trimmed.bitsPerPixel, 4);
}

TEST(GifWriterTest, UnreplaceableFileLeavesNothingAndSaysWhy) {
  IndexedPicture picture{1, 1, 1, {0, 0xFFFFFF}, {1}};
  const QString dir = test::SandboxRoot() + QStringLiteral("/gif-target");
  QDir().mkpath(dir + QStringLiteral("/taken.gif"));  // a folder of that name
  QString result;
  EXPECT_FALSE(GIFSaver().Save(picture, dir + QStringLiteral("/taken.gif"), result, QString(),
                               std::nullopt));
  EXPECT_EQ(result, QStringLiteral("Cannot overwrite file ") + dir + QStringLiteral("/taken.gif"));
  EXPECT_TRUE(QFileInfo(dir + QStringLiteral("/taken.gif")).isDir());
  EXPECT_EQ(QDir(dir).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
            QStringList{QStringLiteral("taken.gif")});

  // An old file stays as it was when the folder is closed to writing.
  const QString locked = test::SandboxRoot() + QStringLiteral("/gif-locked");
  QDir().mkpath(locked);
  const QString old = locked + QStringLiteral("/old.gif");
  {
    QFile file(old);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("old");
  }
  QFile::setPermissions(locked, QFile::ReadOwner | QFile::ExeOwner);
  const bool lockedForUs = !QFileInfo(locked).isWritable();  // root may write anyway
  const bool saved = GIFSaver().Save(picture, old, result, QString(), std::nullopt);
  QFile::setPermissions(locked, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  if (!lockedForUs) return;
  EXPECT_FALSE(saved);
  EXPECT_EQ(result, QStringLiteral("Cannot overwrite file ") + old);
  QFile file(old);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), QByteArray("old"));
}

TEST(GifWriterTest, WritesThroughATemporaryName) {
  IndexedPicture picture{1, 1, 1, {0, 0xFFFFFF}, {1}};
  const QString dir = test::SandboxRoot() + QStringLiteral("/gif-replace");
  QDir().mkpath(dir);
  const QString path = dir + QStringLiteral("/a.gif");
  QString result;
  ASSERT_TRUE(GIFSaver().Save(picture, path, result, QString(), std::nullopt));
  ASSERT_TRUE(GIFSaver().Save(picture, path, result, QStringLiteral("x"), std::nullopt));
  EXPECT_EQ(QDir(dir).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
            QStringList{QStringLiteral("a.gif")});
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_TRUE(file.readAll().startsWith("GIF89a"));
  // A picture whose indices do not fit its bits is refused.
  IndexedPicture bad{1, 1, 1, {0, 0xFFFFFF}, {5}};
  EXPECT_FALSE(
      GIFSaver().Save(bad, dir + QStringLiteral("/b.gif"), result, QString(), std::nullopt));
  EXPECT_FALSE(QFileInfo::exists(dir + QStringLiteral("/b.gif")));
}

}  // namespace
}  // namespace ombrelle
