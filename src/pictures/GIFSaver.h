#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <QByteArray>
#include <QString>

namespace ombrelle {

class Bitmap;
struct MetaPicture;

// A picture of palette indices, as the GIF writer takes it.
struct IndexedPicture {
  int width = 0;
  int height = 0;
  int bitsPerPixel = 1;                // 1, 2, 4 or 8
  std::vector<std::uint32_t> palette;  // 0x00BBGGRR, at most 2^bitsPerPixel entries
  std::vector<std::uint8_t> pixels;    // width x height indices, top row first
};

// The source row (1-based) of the i-th row (1-based) of an interlaced GIF of
// `height` rows: every eighth row from the first, every eighth from the
// fifth, every fourth from the third, every second from the second.
int InterlaceRow(int i, int height);

// Writes GIF files: "GIF87a", or "GIF89a" when there is a comment or a
// transparent colour found in the palette; always interlaced; LZW data in
// blocks of 255 bytes; a comment extension after the image.
class GIFSaver {
 public:
  // Called after each row written, with the row's number (from 1) and the
  // number of rows. Not set: no call.
  using Progress = std::function<void(int row, int rows)>;
  void SetProgress(Progress progress) { m_progress = std::move(progress); }

  // The bytes of the file. The transparent colour marks the first palette
  // entry equal to it; a colour the palette lacks gives no transparency.
  QByteArray Encode(const IndexedPicture& picture, const QString& comment,
                    std::optional<std::uint32_t> transparent) const;
  // Writes the file through a temporary name. False when it cannot be
  // written, with the reason in `result` ("Cannot overwrite file " + file
  // when an existing file cannot be replaced); an existing file then stays.
  bool Save(const IndexedPicture& picture, const QString& file, QString& result,
            const QString& comment, std::optional<std::uint32_t> transparent) const;

  // A bitmap reduced to at most 2^depth colours by ReducePicture: `palette`
  // lists colours that must stay; the transparent colour, when given, marks
  // its palette entry.
  bool Save(const Bitmap& picture, const QString& file, QString& result, int depth,
            const QString& comment, const std::vector<std::uint32_t>& palette,
            std::optional<std::uint32_t> transparent = {}) const;
  // A recording at its own size. Without a palette it is played into a
  // 32-bit bitmap and the octree finds its colours; with one, the palette
  // and the transparent colour (white when none is given) are the colours
  // of an 8-bit bitmap when at most 256, else the octree reduces that list.
  // An empty comment takes the recording's description.
  bool Save(const std::shared_ptr<const MetaPicture>& picture, const QString& file, QString& result,
            int depth, const QString& comment, const std::vector<std::uint32_t>& palette,
            std::optional<std::uint32_t> transparent = {}) const;

  // Writes `bytes` to `file` through a temporary name, as Save does.
  static bool WriteReplacing(const QString& file, const QByteArray& bytes, QString& result);

 private:
  Progress m_progress;
};

// A recording's description as a GIF comment: each NUL becomes CR LF.
QString DescriptionComment(const QString& description);

}  // namespace ombrelle
