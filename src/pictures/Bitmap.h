#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <vector>

#include <QImage>
#include <QString>

class QPainter;

namespace ombrelle {

class Metafile;
struct MetaPicture;

// The numbered error of Bitmap::Create (14343-14346): the only exception the
// program raises; caught where a picture is requested.
class BitmapError : public std::runtime_error {
 public:
  BitmapError(int number, const QString& text);
  int Number() const { return m_number; }
  QString Source() const { return QStringLiteral("Bitmap"); }
  QString Text() const { return m_text; }

 private:
  int m_number;
  QString m_text;
};

// A device-independent bitmap of 1, 4, 8, 16, 24 or 32 bits that recorded
// pictures are played into and that is saved as a BMP file (raw or RLE) or
// copied to the clipboard. Owns its pixels.
//
// Pixel access for encoders:
// - Depth() <= 8: Image() is QImage::Format_Indexed8, one byte per pixel
//   holding a palette index below 2^Depth(); Palette() is the colour table of
//   exactly 2^Depth() entries as QRgb (opaque).
// - Depth() 16: Format_RGB555; 24: Format_RGB888; 32: Format_RGB32.
// - PixelIndex(x, y) and PixelColor(x, y) read one pixel (top row is y = 0);
//   Image().constScanLine(y) gives a whole row, top row first.
// - GetBits gives the BMP pixel layout: rows bottom first, padded to 4 bytes.
class Bitmap {
 public:
  Bitmap();
  ~Bitmap();
  Bitmap(const Bitmap&) = delete;
  Bitmap& operator=(const Bitmap&) = delete;

  // Mode: 1, 4, 8, 16, 24, 32, or -4 / -8 for the RLE-compressed forms.
  // Colors (0x00BBGGRR, system colours allowed) fill the palette of 4 and 8
  // bits, reduced to the table size when longer; empty gives the standard
  // palette. A negative height gives a positive Height. Raises BitmapError.
  bool Create(int width, int height, int mode, const std::vector<std::uint32_t>& colors = {},
              bool transparent = false);
  // A bitmap of the picture's size (or the size given) with the picture played in.
  bool CreateFromStdPicture(const std::shared_ptr<const MetaPicture>& picture, int width,
                            int height, int mode, const std::vector<std::uint32_t>& colors = {});

  // Fills the whole area with the colour.
  void DrawBackColor(std::uint32_t color);
  // Plays a finished metafile into (x, y, w, h), stretched, without antialiasing
  // at 8 bits or fewer, so that every pixel keeps a palette colour.
  void PlayMeta(const Metafile& metafile, int x, int y, int w, int h);
  void PlayStdPicture(const std::shared_ptr<const MetaPicture>& picture);

  // Pixels in the BMP layout (rows bottom first, each padded to 4 bytes).
  bool GetBits(std::vector<std::uint8_t>& bits) const;
  // The same as rows: rows[0] is the bottom row.
  bool GetBits2(std::vector<std::vector<std::uint8_t>>& rows) const;
  // Writes pixels in the GetBits layout; more data than the bitmap holds is
  // refused with "Too much data to set to bitmap".
  bool SetBits(const std::vector<std::uint8_t>& bits);

  // BMP file: raw, or RLE when Compress is set and that is smaller.
  bool Save(const QString& file) const;
  // As Save, RLE forced on (mode 4 or 8 picks the form; the depth must match).
  bool SaveRLE(const QString& file, int mode) const;
  // The BMP file bytes Save would write.
  QByteArray EncodeBMP(bool allowRle) const;

  bool CopyToClipboard(bool addToClipboard = false) const;
  void Paint(QPainter& painter, int x, int y) const;

  int Width() const { return m_width; }
  int Height() const { return m_height; }
  int Depth() const { return m_depth; }
  int Mode() const { return m_mode; }
  bool Compress() const { return m_compress; }
  bool IsEmpty() const { return m_image.isNull(); }

  const QImage& Image() const { return m_image; }
  const QList<QRgb>& Palette() const { return m_palette; }
  int PixelIndex(int x, int y) const;
  QRgb PixelColor(int x, int y) const;
  // The picture as 32-bit colours (a copy).
  QImage ToRgb32() const;

 private:
  void ToCanvas(QImage& canvas) const;
  void FromCanvas(const QImage& canvas);

  int m_depth = 0;
  bool m_compress = false;
  int m_width = 0;
  int m_height = 0;
  int m_mode = 0;
  QImage m_image;
  QList<QRgb> m_palette;
};

// The colour table of `size` entries for a list of colours (resolved
// 0x00BBGGRR): the list itself when it fits, the rest black; else a reduced
// table. The one place the palette reduction plugs in.
QList<QRgb> ChoosePalette(const std::vector<std::uint32_t>& colors, int size);

}  // namespace ombrelle
