// GIFSaver's roads from a bitmap and from a recorded picture to the indexed
// picture its writer takes.
#include <algorithm>

#include "pictures/Bitmap.h"
#include "pictures/BitmapData.h"
#include "pictures/GIFSaver.h"
#include "pictures/MetaRecord.h"
#include "pictures/ReducePicture.h"

namespace ombrelle {

namespace {

constexpr int kMaxColors = 256;

// The pixels of a bitmap as the reducer reads them.
bool ReadBitmap(const Bitmap& bitmap, BitmapData& data) {
  if (bitmap.IsEmpty()) return false;
  const QImage& image = bitmap.Image();
  if (bitmap.Depth() <= 8 && image.format() == QImage::Format_Indexed8) {
    std::vector<std::uint32_t> table;
    for (const QRgb rgb : bitmap.Palette())
      table.push_back(RgbColor(qRed(rgb), qGreen(rgb), qBlue(rgb)));
    return data.SetBits(image.width(), image.height(), 8, image.constBits(), image.bytesPerLine(),
                        std::move(table), true);
  }
  return data.GetData(image);
}

}  // namespace

QString DescriptionComment(const QString& description) {
  QString comment = description;
  comment.replace(QChar(0), QStringLiteral("\r\n"));
  return comment;
}

bool GIFSaver::Save(const Bitmap& picture, const QString& file, QString& result, int depth,
                    const QString& comment, const std::vector<std::uint32_t>& palette,
                    std::optional<std::uint32_t> transparent) const {
  BitmapData data;
  if (!ReadBitmap(picture, data)) {
    result = QStringLiteral("Cannot save an empty picture as GIF: ") + file;
    return false;
  }
  return Save(ReducePicture(data, depth, transparent, palette), file, result, comment, transparent);
}

bool GIFSaver::Save(const std::shared_ptr<const MetaPicture>& picture, const QString& file,
                    QString& result, int depth, const QString& comment,
                    const std::vector<std::uint32_t>& palette,
                    std::optional<std::uint32_t> transparent) const {
  if (!picture) {
    result = QStringLiteral("Cannot save an empty picture as GIF: ") + file;
    return false;
  }
  const QString text = comment.isEmpty() ? DescriptionComment(picture->description) : comment;
  // The colours that must stay and the transparent colour: a bitmap of
  // 8 bits with exactly those when they fit, else a deep bitmap whose
  // colours the octree reduces from the list.
  std::vector<std::uint32_t> colors;
  for (const std::uint32_t c : palette)
    if (std::find(colors.begin(), colors.end(), c & 0xFFFFFF) == colors.end())
      colors.push_back(c & 0xFFFFFF);
  if (!colors.empty()) {
    const std::uint32_t clear = transparent.value_or(0xFFFFFF) & 0xFFFFFF;
    if (std::find(colors.begin(), colors.end(), clear) == colors.end()) colors.push_back(clear);
  }
  const bool eightBits = !colors.empty() && int(colors.size()) <= kMaxColors;
  Bitmap bitmap;
  try {
    if (!bitmap.CreateFromStdPicture(picture, 0, 0, eightBits ? 8 : 32,
                                     eightBits ? colors : std::vector<std::uint32_t>{})) {
      result = QStringLiteral("Cannot make a bitmap of the picture for ") + file;
      return false;
    }
  } catch (const BitmapError& error) {
    result = QStringLiteral("Error #") + QString::number(error.Number()) + QStringLiteral(" in ") +
             error.Source() + QStringLiteral(" making the picture for ") + file +
             QStringLiteral(":\r\n") + error.Text();
    return false;
  }
  return Save(bitmap, file, result, depth, text, palette, transparent);
}

}  // namespace ombrelle
