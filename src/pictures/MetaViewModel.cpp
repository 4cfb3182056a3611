#include "pictures/MetaViewModel.h"

#include <algorithm>

#include <QBuffer>
#include <QFileInfo>
#include <QImage>
#include <QPagedPaintDevice>
#include <QPainter>

#include "pictures/Bitmap.h"
#include "pictures/GIFSaver.h"
#include "pictures/Meta2GIF.h"
#include "pictures/Metafile.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

struct FormatInfo {
  const char* filter;
  const char* extension;
};

constexpr FormatInfo kFormats[MetaViewModel::kFormatCount] = {
    {"Windows Metafile (*.wmf)", "wmf"}, {"Enhanced Metafile (*.emf)", "emf"},
    {"Bitmap (*.bmp)", "bmp"},           {"GIF picture (*.gif)", "gif"},
    {"PNG picture (*.png)", "png"},      {"SVG drawing (*.svg)", "svg"},
};

bool ValidFormat(int format) { return format >= 1 && format <= MetaViewModel::kFormatCount; }

}  // namespace

QString MetaViewModel::SaveFilter() {
  QStringList filters;
  for (const FormatInfo& format : kFormats) filters << QString::fromLatin1(format.filter);
  return filters.join(QStringLiteral(";;"));
}

QString MetaViewModel::Extension(int format) {
  return ValidFormat(format) ? QString::fromLatin1(kFormats[format - 1].extension) : QString();
}

int MetaViewModel::FormatForFile(const QString& file, int filterIndex) {
  const QString suffix = QFileInfo(file).suffix().toLower();
  for (int format = 1; format <= kFormatCount; ++format)
    if (suffix == Extension(format)) return format;
  return ValidFormat(filterIndex) ? filterIndex : Wmf;
}

bool MetaViewModel::HasPicture() const { return m_metafile && m_metafile->IsReady(); }

void MetaViewModel::Paint(QPainter& painter, int width, int height) const {
  if (!HasPicture() || width < 1 || height < 1) return;
  if (Centered)
    m_metafile->PlayCentered(painter, 0, 0, static_cast<float>(width), static_cast<float>(height));
  else
    m_metafile->Play(painter, 0, 0, static_cast<float>(width), static_cast<float>(height), false);
}

bool MetaViewModel::CopyToClipboard(int width, int height) {
  if (!HasPicture()) return false;
  return m_metafile->CopyToClipboard(std::max(width, 1), std::max(height, 1));
}

bool MetaViewModel::PrintOut() {
  if (!HasPicture()) return false;
  QString name = m_metafile->Description();
  name.remove(QChar(0));
  // No printer chosen (the dialog was cancelled): nothing to do.
  std::unique_ptr<QPagedPaintDevice> printer = Ui().ChoosePrinter(name);
  if (!printer) return false;
  return m_metafile->PrintOut(printer.get());
}

bool MetaViewModel::Save(int width, int height) {
  if (!HasPicture()) return false;
  int chosen = SaveFilterIndex;
  FileDialogRequest request;
  request.filter = SaveFilter();
  request.filterIndex = SaveFilterIndex;
  request.overwritePrompt = true;
  request.chosenFilterIndex = &chosen;
  QString file = Ui().SaveFileDialog(request);
  if (file.isEmpty()) return false;
  if (!ValidFormat(chosen)) chosen = SaveFilterIndex;
  const int format = FormatForFile(file, chosen);
  // A name typed without an extension takes the filter's.
  if (QFileInfo(file).suffix().isEmpty()) file += QLatin1Char('.') + Extension(format);
  SaveFilterIndex = format;
  return SaveAs(file, format, width, height);
}

bool MetaViewModel::SaveAs(const QString& file, int format, int width, int height) {
  if (!HasPicture() || width < 1 || height < 1) return false;
  Metafile& picture = *m_metafile;
  switch (format) {
    case Wmf: {
      int fitWidth = width;
      int fitHeight = height;
      picture.GetSizeFit(fitWidth, fitHeight);
      int naturalWidth = 0;
      int naturalHeight = 0;
      if (!picture.GetSize(naturalWidth, naturalHeight) || naturalWidth < 1 || naturalHeight < 1)
        return false;
      const float scale =
          std::min(static_cast<float>(fitWidth) / static_cast<float>(naturalWidth),
                   static_cast<float>(fitHeight) / static_cast<float>(naturalHeight));
      return picture.SavePlaceableWMF(file, scale, 0);
    }
    case Emf:
      return picture.SaveEMF(file);
    case Bmp:
      return picture.SaveBMP(file, width, height, 0, true);
    case Gif:
      return Meta2GIF(picture, file, width, height);
    case Png: {
      std::unique_ptr<Bitmap> bitmap = picture.MakeBitmap(width, height, 0, true);
      if (!bitmap) return false;
      QByteArray bytes;
      QBuffer buffer(&bytes);
      buffer.open(QIODevice::WriteOnly);
      if (!bitmap->ToRgb32().save(&buffer, "PNG")) return false;
      QString result;
      if (GIFSaver::WriteReplacing(file, bytes, result)) return true;
      Ui().MsgBox(result, MsgStyle::Exclamation, QString());
      return false;
    }
    case Svg:
      return m_svgWriter && m_svgWriter(picture, file, width, height);
    default:
      return false;
  }
}

}  // namespace ombrelle
