#pragma once

#include <memory>

#include <QImage>

#include "pictures/MetaRecord.h"

namespace ombrelle {

// Facts about a picture object: a recording (vector, no pixels of its own)
// or a bitmap (its pixels). Recordings measure at the screen's 96 pixels per
// inch from their frame, as the drawing surface's GetSize does; their pixel
// facts (depth, size in bytes, colours) are 0.
class StdPictInfo {
 public:
  StdPictInfo() = default;
  explicit StdPictInfo(std::shared_ptr<const MetaPicture> picture) {
    SetPicture(std::move(picture));
  }
  explicit StdPictInfo(const QImage& bitmap) { SetPicture(bitmap); }

  void SetPicture(std::shared_ptr<const MetaPicture> picture);
  void SetPicture(const QImage& bitmap);
  std::shared_ptr<const MetaPicture> Picture() const { return m_picture; }
  bool IsBitmap() const { return !m_image.isNull(); }

  int Width() const;
  int Height() const;
  // Bits per pixel of a bitmap: 1, 4 or 8 for palette pictures (by the
  // number of palette entries), else the image's depth.
  int ColorDepth() const;
  int DPIx() const;
  int DPIy() const;
  int PixelsPerMeterX() const;
  int PixelsPerMeterY() const;
  // Bytes of the pixels in the device-independent layout: rows padded to 4 bytes.
  qint64 UncompressedSize() const;
  // The pixels of a bitmap; null for a recording.
  const QImage* hDIB() const { return IsBitmap() ? &m_image : nullptr; }
  bool IsGrayscale() const;
  bool IsBlackWhite() const;
  int UniqueColorCount() const;

 private:
  std::shared_ptr<const MetaPicture> m_picture;
  QImage m_image;
};

}  // namespace ombrelle
