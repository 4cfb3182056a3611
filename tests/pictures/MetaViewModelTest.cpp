// The picture control's model: the save dialog and the files it writes, each
// read back by an outside reader.
#include <gtest/gtest.h>

#include <memory>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include "common/OutsideReaders.h"
#include "pictures/MetaViewModel.h"
#include "pictures/Metafile.h"
#include "pictures/MetafileConversions.h"
#include "support/ScriptedUiServices.h"

using namespace ombrelle;

namespace {

// 100 x 50 mm: 378 x 189 pixels at 96 per inch.
std::shared_ptr<Metafile> Sample() {
  auto m = std::make_shared<Metafile>();
  m->Create(100, 50, false, "Ombrelle", "Sample chart", 2);
  m->DrawBox(0, 0, 10000, -5000, 0x00FFFFFF, true);
  m->DrawBox(1000, -1000, 4000, -4000, 0x000000FF, true);
  m->DrawLine(0, -2500, 10000, -2500, 0x00FF0000, 5);
  m->Ready();
  return m;
}

QByteArray ReadAll(const QString& path) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

class MetaViewModelTest : public ::testing::Test {
 protected:
  void SetUp() override { m_model.SetMetafile(Sample()); }
  QString Path(const QString& name) const { return m_dir.filePath(name); }

  ScopedScriptedUi m_scripted;
  QTemporaryDir m_dir;
  MetaViewModel m_model;
};

TEST_F(MetaViewModelTest, DialogOffersTheSixFormatsAndCancelSavesNothing) {
  m_model.SaveFilterIndex = 3;
  EXPECT_FALSE(m_model.Save(300, 200));
  ASSERT_EQ(m_scripted.ui.fileRequests.size(), 1u);
  const FileDialogRequest& request = m_scripted.ui.fileRequests[0];
  EXPECT_EQ(request.filter,
            "Windows Metafile (*.wmf);;Enhanced Metafile (*.emf);;Bitmap (*.bmp);;"
            "GIF picture (*.gif);;PNG picture (*.png);;SVG drawing (*.svg)");
  EXPECT_EQ(request.filterIndex, 3);
  EXPECT_TRUE(request.overwritePrompt);
  EXPECT_EQ(m_model.SaveFilterIndex, 3);
  EXPECT_TRUE(QDir(m_dir.path()).isEmpty());
  EXPECT_TRUE(m_scripted.ui.messages.empty());
}

TEST_F(MetaViewModelTest, FormatByFilterOrByTheNamesExtension) {
  struct Case {
    const char* file;
    int filter;
    int format;
  };
  for (const Case& c : {Case{"a.wmf", 4, 1}, Case{"a.EMF", 1, 2}, Case{"a.bmp", 6, 3},
                        Case{"a.gif", 1, 4}, Case{"a.png", 1, 5}, Case{"a.svg", 2, 6},
                        Case{"a", 4, 4}, Case{"a.txt", 5, 5}, Case{"a", 0, 1}, Case{"a", 7, 1}})
    EXPECT_EQ(MetaViewModel::FormatForFile(c.file, c.filter), c.format) << c.file << c.filter;
}

TEST_F(MetaViewModelTest, NameWithoutExtensionTakesTheChosenFiltersAndIsRemembered) {
  m_scripted.ui.fileAnswers = {Path("chart")};
  m_scripted.ui.filterAnswers = {4};
  ASSERT_TRUE(m_model.Save(240, 150));
  EXPECT_EQ(ReadAll(Path("chart.gif")).left(6), "GIF89a");
  EXPECT_EQ(m_model.SaveFilterIndex, 4);
  m_model.Save(240, 150);  // cancelled
  EXPECT_EQ(m_scripted.ui.fileRequests.back().filterIndex, 4);
}

TEST_F(MetaViewModelTest, EachFormatIsReadByItsOutsideReader) {
  // The control is twice the picture's natural size across and a bit taller.
  const int width = 756;
  const int height = 400;
  ASSERT_TRUE(m_model.SaveAs(Path("a.wmf"), MetaViewModel::Wmf, width, height));
  ASSERT_TRUE(m_model.SaveAs(Path("a.emf"), MetaViewModel::Emf, width, height));
  ASSERT_TRUE(m_model.SaveAs(Path("a.bmp"), MetaViewModel::Bmp, width, height));
  ASSERT_TRUE(m_model.SaveAs(Path("a.gif"), MetaViewModel::Gif, width, height));
  ASSERT_TRUE(m_model.SaveAs(Path("a.png"), MetaViewModel::Png, width, height));
  // SVG needs the window library's writer.
  EXPECT_FALSE(m_model.SaveAs(Path("a.svg"), MetaViewModel::Svg, width, height));
  EXPECT_FALSE(QFile::exists(Path("a.svg")));
  EXPECT_TRUE(m_scripted.ui.messages.empty());

  // The picture fitted into the control is twice its size: scale 2.
  const QByteArray wmf = ReadAll(Path("a.wmf"));
  EXPECT_EQ(wmf, PlaceableWmfBytes(*m_model.GetMetafile()->Picture(), 2));
  EXPECT_EQ(static_cast<uint8_t>(wmf[14]) | static_cast<uint8_t>(wmf[15]) << 8, 720);
  test::ExpectWmf2SvgAccepts(Path("a.wmf"), Path("wmf.svg"));
  EXPECT_EQ(ReadAll(Path("a.emf")), EmfBytes(*m_model.GetMetafile()->Picture()));
  test::ExpectEmf2SvgAccepts(Path("a.emf"), Path("emf.svg"));

  // Bitmaps are the size of the control, not of the chart.
  const QImage bmp = test::DecodeWithBmptopnm(Path("a.bmp"));
  EXPECT_EQ(bmp.size(), QSize(width, height));
  const QString gif = test::GiftextReport(Path("a.gif"));
  EXPECT_TRUE(gif.contains(QStringLiteral("Width = 756, Height = 400"))) << gif.toStdString();
  EXPECT_EQ(test::Gif2RgbPixels(Path("a.gif")).size(), width * height * 3);
  const QImage png = test::DecodeWithImageMagick(Path("a.png"));
  EXPECT_EQ(png.size(), QSize(width, height));
  // The same pixels as the BMP: a red box on white.
  EXPECT_EQ(png.pixel(width / 2, 10), 0xFFFFFFFFu);
  EXPECT_EQ(png, bmp);
}

TEST_F(MetaViewModelTest, NoPictureDoesNothing) {
  m_model.SetMetafile(nullptr);
  EXPECT_FALSE(m_model.Save(100, 100));
  EXPECT_FALSE(m_model.CopyToClipboard(100, 100));
  EXPECT_FALSE(m_model.PrintOut());
  EXPECT_TRUE(m_scripted.ui.fileRequests.empty());
  EXPECT_TRUE(m_scripted.ui.messages.empty());
}

TEST_F(MetaViewModelTest, PrintGoesToTheChosenPrinter) {
  EXPECT_FALSE(m_model.PrintOut());  // no printer chosen: no word
  EXPECT_TRUE(m_scripted.ui.messages.empty());
  m_scripted.ui.printerPdf = Path("print.pdf");
  EXPECT_TRUE(m_model.PrintOut());
  EXPECT_EQ(m_scripted.ui.printedDocuments.value(1), "Ombrelle - Sample chart");
  EXPECT_EQ(ReadAll(Path("print.pdf")).left(5), "%PDF-");
}

TEST_F(MetaViewModelTest, CopyIsABitmapOfTheControl) {
  ASSERT_TRUE(m_model.CopyToClipboard(200, 120));
  EXPECT_EQ(m_scripted.ui.clipboardImage.size(), QSize(200, 120));
  EXPECT_FALSE(m_scripted.ui.clipboardEmf.isEmpty());
}

}  // namespace
