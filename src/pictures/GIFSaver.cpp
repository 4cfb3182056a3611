#include "pictures/GIFSaver.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <QFileInfo>
#include <QSaveFile>

#include "pictures/BitmapData.h"
#include "pictures/GifLzwEncoder.h"
#include "support/Text.h"

namespace ombrelle {

namespace {

void AppendWord(QByteArray& out, int value) {
  out.append(char(value & 0xFF)).append(char((value >> 8) & 0xFF));
}

constexpr int kCommentBlock = 254;

}  // namespace

int InterlaceRow(int i, int height) {
  const int a = (height - 1) / 8 + 1;
  const int b = (height - 1) / 4 + 1;
  const int c = (height - 1) / 2 + 1;
  int row;
  if (i <= a)
    row = (i - 1) * 8;
  else if (i <= b)
    row = (i - 1 - a) * 8 + 4;
  else if (i <= c)
    row = (i - 1 - b) * 4 + 2;
  else
    row = (i - 1 - c) * 2 + 1;
  return row + 1;
}

QByteArray GIFSaver::Encode(const IndexedPicture& picture, const QString& comment,
                            std::optional<std::uint32_t> transparent) const {
  const int bits = picture.bitsPerPixel <= 1   ? 1
                   : picture.bitsPerPixel <= 2 ? 2
                   : picture.bitsPerPixel <= 4 ? 4
                                               : 8;
  const int entries = 1 << bits;
  const int width = picture.width;
  const int height = picture.height;

  int transparentIndex = -1;
  if (transparent) {
    const std::uint32_t wanted = *transparent & 0xFFFFFF;
    for (std::size_t i = 0; i < picture.palette.size() && int(i) < entries; ++i) {
      if ((picture.palette[i] & 0xFFFFFF) == wanted) {
        transparentIndex = int(i);
        break;
      }
    }
  }
  const QByteArray text = ToAscii7(comment).toLatin1();

  QByteArray out;
  out.reserve(64 + entries * 3 + qsizetype(width) * height / 2 + text.size());
  out.append(text.isEmpty() && transparentIndex < 0 ? "GIF87a" : "GIF89a");
  AppendWord(out, width);
  AppendWord(out, height);
  out.append(char(0xF0 + bits - 1)).append('\0').append('\0');
  for (int i = 0; i < entries; ++i) {
    const std::uint32_t c = std::size_t(i) < picture.palette.size() ? picture.palette[i] : 0;
    out.append(char(RedOf(c))).append(char(GreenOf(c))).append(char(BlueOf(c)));
  }
  if (transparentIndex >= 0) {
    out.append("\x21\xF9\x04\x01\x00\x00", 6);
    out.append(char(transparentIndex)).append('\0');
  }
  out.append(char(0x2C));
  AppendWord(out, 0);
  AppendWord(out, 0);
  AppendWord(out, width);
  AppendWord(out, height);
  out.append(char(0x47));  // interlaced, no local table

  GifLzwEncoder encoder(bits, out);
  const std::uint8_t* pixels = picture.pixels.data();
  for (int i = 1; i <= height; ++i) {
    const int row = InterlaceRow(i, height) - 1;
    encoder.AddPixels(pixels + std::size_t(row) * std::size_t(width), width);
    if (m_progress) m_progress(i, height);
  }
  encoder.Finish();

  if (!text.isEmpty()) {
    out.append("\x21\xFE", 2);
    for (qsizetype at = 0; at < text.size(); at += kCommentBlock) {
      const qsizetype n = std::min<qsizetype>(kCommentBlock, text.size() - at);
      out.append(char(n)).append(text.constData() + at, n);
    }
    out.append('\0');
  }
  out.append(char(0x3B));
  return out;
}

bool GIFSaver::WriteReplacing(const QString& file, const QByteArray& bytes, QString& result) {
  const QFileInfo existing(file);
  if (existing.exists() && (existing.isDir() || !QFileInfo(existing.absolutePath()).isWritable())) {
    result = QStringLiteral("Cannot overwrite file ") + file;
    return false;
  }
  QSaveFile out(file);
  errno = 0;
  bool ok = out.open(QIODevice::WriteOnly);
  if (ok) ok = out.write(bytes) == bytes.size();
  if (!ok) {
    const int number = errno != 0 ? errno : EIO;
    const QString reason =
        errno != 0 ? QString::fromLocal8Bit(std::strerror(errno)) : out.errorString();
    out.cancelWriting();
    result = QStringLiteral("Error #") + QString::number(number) + QStringLiteral(" saving to ") +
             file + QStringLiteral(":\r\n") + reason;
    return false;
  }
  errno = 0;
  if (!out.commit()) {
    const int number = errno != 0 ? errno : EIO;
    result = QStringLiteral("Error #") + QString::number(number) + QStringLiteral(" saving to ") +
             file + QStringLiteral(":\r\n") + out.errorString();
    return false;
  }
  result.clear();
  return true;
}

bool GIFSaver::Save(const IndexedPicture& picture, const QString& file, QString& result,
                    const QString& comment, std::optional<std::uint32_t> transparent) const {
  if (picture.width <= 0 || picture.height <= 0 || picture.width > 65535 ||
      picture.height > 65535 ||
      picture.pixels.size() < std::size_t(picture.width) * std::size_t(picture.height)) {
    result = QStringLiteral("Cannot save an empty picture as GIF: ") + file;
    return false;
  }
  const std::uint8_t limit = std::uint8_t((1 << std::clamp(picture.bitsPerPixel, 1, 8)) - 1);
  for (const std::uint8_t index : picture.pixels) {
    if (index > limit) {
      result = QStringLiteral("Palette index out of range in GIF picture: ") + file;
      return false;
    }
  }
  return WriteReplacing(file, Encode(picture, comment, transparent), result);
}

}  // namespace ombrelle
