// Playing, printing, bitmaps and the clipboard of a finished recording.
#include <cmath>

#include <QFileInfo>
#include <QPagedPaintDevice>
#include <QPainter>

#include "pictures/Bitmap.h"
#include "pictures/MetaPlayer.h"
#include "pictures/Metafile.h"
#include "pictures/MetafileConversions.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

int RoundToInt(double value) { return static_cast<int>(std::nearbyint(value)); }

void Complain(const QString& text) { Ui().MsgBox(text, MsgStyle::Exclamation, QString()); }

}  // namespace

MetaRect Metafile::PlayArea(float x1, float y1, float x2, float y2, bool stretch) const {
  if (!stretch) {
    const float aspect = static_cast<float>(Aspect());
    if (y2 - y1 <= (x2 - x1) / aspect)
      x2 = (y2 - y1) * aspect + x1;
    else
      y2 = (x2 - x1) / aspect + y1;
  }
  return {RoundToInt(x1), RoundToInt(y1), RoundToInt(x2), RoundToInt(y2)};
}

MetaRect Metafile::CenteredArea(float x1, float y1, float x2, float y2) const {
  const double aspect = Aspect();
  if (y2 - y1 > (x2 - x1) / aspect) {
    const double h = (double(x2) - x1) / aspect;
    const double o = (double(y2) - y1) / 2 - h / 2;
    return {RoundToInt(x1), RoundToInt(y1 + o), RoundToInt(x2), RoundToInt(y1 + o + h)};
  }
  const double w = (double(y2) - y1) * aspect;
  const double o = (double(x2) - x1) / 2 - w / 2;
  return {RoundToInt(x1 + o), RoundToInt(y1), RoundToInt(x1 + o + w), RoundToInt(y2)};
}

void Metafile::Play(QPainter& painter, float x1, float y1, float x2, float y2, bool stretch) const {
  if (!IsReady()) return;  // nothing is played before Ready or after GetStdPicture
  PlayPicture(painter, *m_picture, PlayArea(x1, y1, x2, y2, stretch));
}

void Metafile::PlayCentered(QPainter& painter, float x1, float y1, float x2, float y2) const {
  if (!IsReady()) return;
  PlayPicture(painter, *m_picture, CenteredArea(x1, y1, x2, y2));
}

void Metafile::GetSizeFit(int& width, int& height) const {
  const double aspect = Aspect();
  if (width / aspect < height)
    height = RoundToInt(width / aspect);
  else
    width = RoundToInt(aspect * height);
}

bool Metafile::GetSize(int& width, int& height) const {
  if (!IsReady()) {
    Complain(QStringLiteral("Cannot retrieve metafile size. Call to GetEnhMetaFileHeader failed."));
    return false;
  }
  const MetaRect f = m_picture->frameRect;
  // 0.01 mm to twips, then 15 twips to a screen pixel.
  width = RoundToInt((f.right - f.left + 1) * 0.5669291338582677 / 15.0);
  height = RoundToInt((f.bottom - f.top + 1) * 0.5669291338582677 / 15.0);
  return true;
}

std::unique_ptr<Bitmap> Metafile::MakeBitmap(int width, int height, int depth, bool compress) {
  if (width == 0) {
    if (!GetSize(width, height)) return nullptr;
  } else if (height == 0) {
    height = RoundToInt(width / Aspect());
  }
  int mode = depth;
  if (depth == 0) {
    const int count = ColorCount();
    if (count <= 2)
      mode = 1;
    else if (count <= 16)
      mode = compress ? -4 : 4;
    else if (count <= 256)
      mode = compress ? -8 : 8;
    else
      mode = 16;
  } else if (compress && (depth == 4 || depth == 8)) {
    mode = -depth;
  }
  auto bitmap = std::make_unique<Bitmap>();
  try {
    if (!bitmap->Create(width, height, mode, m_colors)) return nullptr;
  } catch (const BitmapError& error) {
    Complain(QStringLiteral("Error #") + QString::number(error.Number()) + QStringLiteral(" in ") +
             error.Source() + QStringLiteral(".Create:\r\n") + error.Text());
    return nullptr;
  }
  bitmap->DrawBackColor(MapColor(0xFFFFFF));
  bitmap->PlayMeta(*this, 0, 0, width, height);
  return bitmap;
}

bool Metafile::SaveBMP(const QString& file, int width, int height, int depth, bool compress) {
  std::unique_ptr<Bitmap> bitmap = MakeBitmap(width, height, depth, compress);
  if (!bitmap) return false;
  return bitmap->Save(file);
}

bool Metafile::PrintOut(QPagedPaintDevice* device) {
  const MetaRect f = FrameRect();
  const int widthMm = static_cast<std::int16_t>(RoundToInt((f.right - f.left + 1) / 100.0));
  const int heightMm = static_cast<std::int16_t>(RoundToInt((f.bottom - f.top + 1) / 100.0));
  std::unique_ptr<QPagedPaintDevice> owned;
  QString name = Description();
  name.remove(QChar(0));
  if (!device) {
    owned = Ui().OpenPrinter(name);
    device = owned.get();
  }
  if (!device) {
    Complain(QStringLiteral("Failed to start print job"));
    return false;
  }
  const int deviceWidthMm = device->widthMM(), deviceHeightMm = device->heightMM();
  const int deviceWidth = device->width(), deviceHeight = device->height();
  const int printedWidth = std::min(deviceWidthMm, widthMm);
  const int printedHeight = std::min(deviceHeightMm, heightMm);
  const int pw = RoundToInt(double(deviceWidth) / std::max(deviceWidthMm, 1) * printedWidth);
  const int ph = RoundToInt(double(deviceHeight) / std::max(deviceHeightMm, 1) * printedHeight);
  int left = 0, right = pw - 1;
  if (pw < deviceWidth) {
    left = (deviceWidth - pw) / 2;
    right = left + pw - 1;
  }
  QPainter painter;
  if (!painter.begin(device)) {
    Complain(QStringLiteral("Failed to start print job"));
    return false;
  }
  painter.setRenderHint(QPainter::Antialiasing);
  Play(painter, static_cast<float>(left), 0, static_cast<float>(right), static_cast<float>(ph - 1),
       false);
  if (!painter.end()) {
    Complain(QStringLiteral("Failed to end printed page"));
    return false;
  }
  return true;
}

ClipboardExtents Metafile::GetClipboardExtents() const {
  const MetaRect f = FrameRect();
  ClipboardExtents extents;
  extents.xExt = f.right - f.left + 1;
  extents.yExt = std::abs(f.bottom - f.top + 1);
  if (extents.xExt >= 32768 || extents.yExt >= 32768) {
    // Negative extents give the proportions only, within 16 bits.
    extents.xExt = RoundToInt(-extents.xExt / 256.0);
    extents.yExt = RoundToInt(-extents.yExt / 256.0);
  }
  return extents;
}

bool Metafile::CopyToClipboard(int bitmapWidth, int bitmapHeight) {
  const QString where = QStringLiteral("Error in Metafile.CopyToClipboard: ");
  if (!IsReady()) {
    Complain(where + QStringLiteral("Cannot get a copy of metafile for the clipboard."));
    return false;
  }
  std::unique_ptr<Bitmap> bitmap = MakeBitmap(bitmapWidth, bitmapHeight, 0, true);
  if (!bitmap) {
    Complain(where + QStringLiteral("Call to MakeBitmap failed."));
    return false;
  }
  const QByteArray emf = EmfBytes(*Picture());
  Ui().SetClipboardPicture(bitmap->ToRgb32(), emf);
  return true;
}

bool Metafile::CanOverwrite(const QString& file) {
  const QFileInfo info(file);
  if (!info.exists() && !info.isSymLink()) return true;
  const QFile::Permissions writable =
      QFile::WriteOwner | QFile::WriteUser | QFile::WriteGroup | QFile::WriteOther;
  // The permission bits, not access(): a file marked read-only stays so even
  // for a user who could write it anyway.
  if (info.isFile() && (info.permissions() & writable) && (info.permissions() & QFile::WriteOwner))
    return true;
  Complain(QStringLiteral("Cannot overwrite file ") + file);
  return false;
}

}  // namespace ombrelle
