// Recorded pictures played to PNG files (to be looked at), to a PDF printer
// and through a picture handed over.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtEndian>

#include "common/MessageAssertions.h"
#include "common/OutsideReaders.h"
#include "pictures/Bitmap.h"
#include "pictures/Metafile.h"

namespace ombrelle {
namespace {

QString OutputFolder() { return test::ArtefactFolder(QStringLiteral("MetafilePictures")); }

// A chart-like page of 150 x 112 mm using every kind of primitive.
void DrawSample(Metafile& meta) {
  meta.Create(150, 112, false, QStringLiteral("Ombrelle"), QStringLiteral("Sample"));
  meta.SetLineProperties(2, 0);
  meta.Font().size = 60;
  meta.ApplyFont(false);
  meta.PrintTextRect(QStringLiteral("Sample picture"), 0, -20, 1500, -100, 2, 0);
  meta.Font().size = 30;
  meta.ApplyFont(false);
  meta.DrawLine(150, -900, 150, -150, 0);
  meta.DrawArrowHead(150, -900, 150, -150, 0, true, 1);
  meta.DrawLine(150, -900, 900, -900, 0);
  meta.DrawArrowHead(150, -900, 900, -900, 0, true, 2);
  const std::uint32_t colours[] = {0x0000FF, 0x00A000, 0xFF0000, 0x00C0FF};
  for (int i = 0; i < 4; ++i) {
    const float x = 200 + i * 170, top = -850 + (i + 1) * 150;
    meta.DrawBox(x, top, x + 120, -899, colours[i], true);
    meta.PrintText(QString::number((i + 1) * 10), x + 30, top + 40);
  }
  for (int y = -750; y < -150; y += 150) meta.DrawLine(150, y, 880, y, 0xC0C0C0, 1);
  meta.PrintTextRect(QStringLiteral("Right\r\naligned"), 150, -950, 880, -1050, 1, 0);
  meta.DrawPieAngle(1150, -400, 180, 0, 2.0f, 0x0000FF);
  meta.DrawPieAngle(1150, -400, 180, 2.0f, 4.5f, 0x00A000);
  meta.DrawPieAngle(1150, -400, 180, 4.5f, 6.2831853f, 0xFF0000);
  meta.DrawDiamond(950, -650, 1050, -750, 0x00FFFF, true);
  meta.DrawHexagon(1070, -650, 1190, -750, 0xFF00FF, true);
  meta.DrawParallelogram(1210, -650, 1350, -750, 0x80FF80, true);
  meta.DrawPolygon(950, -800, 1050, -900, 5, 0x8080FF);
  meta.DrawInvHouse(1070, -800, 1190, -900, 0xFFFF00, true);
  meta.DrawCircle(1280, -850, 50, 3, 0xFFFFFF);
  meta.DrawBezier({950, -1000, 1050, -900, 1150, -1100, 1300, -1000}, 0x0000FF, 3, 1);
  meta.PrintTextBox(QStringLiteral("Box\r\ntwo lines"), 1000, -230, 1350, -120, true, 0xE0E0E0);
  meta.Ready();
}

TEST(MetafilePictures, RenderedToPngForLooking) {
  Metafile meta;
  DrawSample(meta);
  auto bitmap = meta.MakeBitmap(1500, 0, 0, false);
  ASSERT_TRUE(bitmap);
  EXPECT_EQ(bitmap->Depth(), 4);  // 14 colours
  EXPECT_EQ(bitmap->Height(), 1120);
  ASSERT_TRUE(bitmap->ToRgb32().save(OutputFolder() + "/sample-8bit.png"));
  // Every pixel of the 8-bit picture is a recorded colour.
  const auto& colours = meta.GetColors();
  QList<QRgb> recorded;
  for (std::uint32_t c : colours) recorded.push_back(qRgb(c & 0xFF, (c >> 8) & 0xFF, c >> 16));
  const QImage image = bitmap->ToRgb32();
  int strays = 0;
  for (int y = 0; y < image.height(); y += 3)
    for (int x = 0; x < image.width(); x += 3) strays += !recorded.contains(image.pixel(x, y));
  EXPECT_EQ(strays, 0);

  QImage screen(600, 600, QImage::Format_RGB32);
  screen.fill(Qt::lightGray);
  QPainter painter(&screen);
  painter.setRenderHint(QPainter::Antialiasing);
  meta.PlayCentered(painter, 0, 0, 599, 599);
  painter.end();
  ASSERT_TRUE(screen.save(OutputFolder() + "/sample-screen.png"));
  EXPECT_EQ(screen.pixel(300, 50), qRgb(192, 192, 192));   // above the centred picture
  EXPECT_NE(screen.pixel(300, 300), qRgb(192, 192, 192));  // inside it
}

TEST(MetafilePictures, HandedOverPictureStillPlays) {
  Metafile meta;
  DrawSample(meta);
  auto picture = meta.GetStdPicture();
  Bitmap bitmap;
  ASSERT_TRUE(bitmap.CreateFromStdPicture(picture, 300, 224, 24));
  EXPECT_EQ(bitmap.PixelColor(50, 170), qRgb(255, 0, 0));
  QImage nothing(50, 50, QImage::Format_RGB32);
  nothing.fill(Qt::white);
  QPainter painter(&nothing);
  meta.Play(painter, 0, 0, 49, 49, true);  // no recording left: draws nothing
  painter.end();
  EXPECT_EQ(nothing.pixel(25, 25), qRgb(255, 255, 255));

  Metafile host;
  host.Create(150, 112);
  host.DrawEMF(picture);
  host.Ready();
  auto copy = host.MakeBitmap(300, 224, 24, false);
  EXPECT_EQ(copy->ToRgb32(), bitmap.ToRgb32());
}

TEST(MetafilePrint, OnePagePdfWithThePictureCentredAtTheTop) {
  QTemporaryDir dir;
  ScopedScriptedUi ui;
  ui.ui.printerPdf = dir.filePath(QStringLiteral("print.pdf"));
  Metafile meta;
  meta.Create(100, 50, false, QStringLiteral("App"), QStringLiteral("Printed"));
  meta.DrawBox(0, 0, 999, -499, 0x0000FF);
  meta.Ready();
  ASSERT_TRUE(meta.PrintOut());
  EXPECT_TRUE(ui.ui.messages.empty());
  EXPECT_EQ(ui.ui.printedDocuments, QStringList{QStringLiteral("App - Printed")});
  QFile file(ui.ui.printerPdf);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QByteArray pdf = file.readAll();
  EXPECT_EQ(pdf.count("/Type /Page\n") + pdf.count("/Type /Page "), 1)
      << pdf.left(2000).toStdString();
  QFile::remove(OutputFolder() + "/print.pdf");
  QFile::copy(ui.ui.printerPdf, OutputFolder() + "/print.pdf");
  // The page's one filled rectangle, in device units of the writer (its
  // resolution per inch): 100 x 50 mm, centred across, at the top.
  const qsizetype start = pdf.indexOf("stream\n", pdf.indexOf("/Filter /FlateDecode")) + 7;
  const qsizetype end = pdf.indexOf("endstream", start);
  QByteArray packed = pdf.mid(start, end - start);
  packed.prepend(QByteArray(4, char(0x7F)));  // qUncompress wants a size hint first
  const QString content = QString::fromLatin1(qUncompress(packed));
  const QRegularExpressionMatch box =
      QRegularExpression(QStringLiteral("(\\d+) (\\d+) (\\d+) (\\d+) re\\s+f")).match(content);
  ASSERT_TRUE(box.hasMatch()) << content.toStdString();
  const double mmPerUnit = 25.4 / 1200;
  EXPECT_NEAR(box.captured(3).toInt() * mmPerUnit, 100, 0.3);
  EXPECT_NEAR(box.captured(4).toInt() * mmPerUnit, 50, 0.3);
  EXPECT_EQ(box.captured(2).toInt(), 0);
  const double left = box.captured(1).toInt() * mmPerUnit;
  EXPECT_NEAR(left * 2 + 100, 210 - 2 * 10.02 * 25.4 / 72, 0.5);  // A4 less the writer's margins
}

TEST(MetafilePrint, NoPrinterGivesItsMessage) {
  ScopedScriptedUi ui;
  Metafile meta;
  meta.Create(10, 10);
  meta.Ready();
  EXPECT_FALSE(meta.PrintOut());
  EXPECT_ONLY_UI_MESSAGE(ui.ui, "Failed to start print job", MsgStyle::Exclamation);
}

TEST(MetafilePictures, FloodFillStopsAtTheBorderColour) {
  Metafile meta;
  meta.Create(20, 20);
  meta.SetLineProperties(3, 0x0000FF);
  meta.DrawBox(20, -20, 120, -120, std::nullopt, true);
  meta.Fill(70, -70, 0x00FF00, 0x0000FF);
  meta.Ready();
  EXPECT_EQ(meta.Records().back().kind, MetaRecord::FloodFill);
  auto bitmap = meta.MakeBitmap(200, 200, 24, false);
  ASSERT_TRUE(bitmap);
  EXPECT_EQ(bitmap->PixelColor(70, 70), qRgb(0, 255, 0));
  EXPECT_EQ(bitmap->PixelColor(30, 30), qRgb(0, 255, 0));
  EXPECT_EQ(bitmap->PixelColor(5, 5), qRgb(255, 255, 255));  // outside the border
  EXPECT_EQ(bitmap->PixelColor(150, 150), qRgb(255, 255, 255));
}

}  // namespace
}  // namespace ombrelle
