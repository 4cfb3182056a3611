#include "shell/ChartFiles.h"

#include <memory>

#include <QBuffer>
#include <QImageWriter>
#include <QPainter>
#include <QSaveFile>
#include <QSvgGenerator>

#include "chart/ZelmChart.h"
#include "pictures/Bitmap.h"
#include "pictures/Meta2GIF.h"
#include "pictures/Metafile.h"
#include "pictures/MetafileConversions.h"
#include "support/Filename.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

bool Complain(const QString& text) {
  Ui().MsgBox(text, MsgStyle::Exclamation, QString());
  return false;
}

// Writes `bytes` to `file` through a temporary name.
bool SaveBytes(const QString& file, const QByteArray& bytes) {
  QSaveFile out(file);
  if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit())
    return Complain(QStringLiteral("Cannot create ") + file + QStringLiteral("\r\n") +
                    out.errorString());
  return true;
}

bool SavePng(Metafile& metafile, const QString& file, int width, int height) {
  const std::unique_ptr<Bitmap> bitmap = metafile.MakeBitmap(width, height, 24, false);
  if (!bitmap) return false;  // MakeBitmap has said why
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QImageWriter writer(&buffer, "png");
  if (!writer.write(bitmap->ToRgb32()))
    return Complain(QStringLiteral("Cannot make a PNG picture: ") + writer.errorString());
  return SaveBytes(file, bytes);
}

bool SaveSvg(ZelmChart& chart, const QString& file) {
  Metafile& metafile = chart.GetMetafile();
  int width = 0;
  int height = 0;
  if (!metafile.GetSize(width, height)) return false;
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QSvgGenerator generator;
  generator.setOutputDevice(&buffer);
  generator.setSize(QSize(width, height));
  generator.setViewBox(QRect(0, 0, width, height));
  generator.setResolution(kReferenceDpi);
  generator.setTitle(chart.Title);
  generator.setDescription(UiServices::AppTitle());
  {
    QPainter painter(&generator);
    painter.fillRect(QRect(0, 0, width, height), Qt::white);
    metafile.Play(painter, 0, 0, static_cast<float>(width), static_cast<float>(height), true);
  }
  return SaveBytes(file, bytes);
}

}  // namespace

PictureKind PictureKindOfFile(const QString& file) {
  const QString extension = FileExtension(file).toLower();
  if (extension == QLatin1String("gif")) return PictureKind::Gif;
  if (extension == QLatin1String("bmp")) return PictureKind::Bmp;
  if (extension == QLatin1String("emf")) return PictureKind::Emf;
  if (extension == QLatin1String("wmf")) return PictureKind::Wmf;
  if (extension == QLatin1String("png")) return PictureKind::Png;
  if (extension == QLatin1String("svg")) return PictureKind::Svg;
  return PictureKind::None;
}

int ChartBitmapHeight(ZelmChart& chart, int width) {
  // Fitting the width into a very tall box leaves the height of the aspect.
  int fittedWidth = width;
  int height = width * 64;
  chart.GetMetafile().GetSizeFit(fittedWidth, height);
  return height < 1 ? 1 : height;
}

bool SaveChartFile(ZelmChart& chart, const QString& file, PictureKind kind, int width) {
  Metafile& metafile = chart.GetMetafile();
  // The metafile writers check the name themselves.
  if (kind != PictureKind::Emf && kind != PictureKind::Wmf && !Metafile::CanOverwrite(file))
    return false;
  switch (kind) {
    case PictureKind::Gif:
      return Meta2GIF(metafile, file, width, ChartBitmapHeight(chart, width));
    case PictureKind::Bmp:
      return metafile.SaveBMP(file, width, ChartBitmapHeight(chart, width), 0, true);
    case PictureKind::Emf:
      return metafile.SaveEMF(file);
    case PictureKind::Wmf:
      return metafile.SavePlaceableWMF(file, 1.0f, 0);
    case PictureKind::Png:
      return SavePng(metafile, file, width, ChartBitmapHeight(chart, width));
    case PictureKind::Svg:
      return SaveSvg(chart, file);
    case PictureKind::None:
      break;
  }
  return Complain(QStringLiteral("Cannot save a chart as ") + file);
}

}  // namespace ombrelle
