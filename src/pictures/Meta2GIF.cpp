#include "pictures/Meta2GIF.h"

#include <memory>

#include "pictures/Bitmap.h"
#include "pictures/GIFSaver.h"
#include "pictures/MetaRecord.h"
#include "pictures/Metafile.h"
#include "support/UiServices.h"

namespace ombrelle {

bool Meta2GIF(Metafile& metafile, const QString& file, int width, int height) {
  GIFSaver saver;
  QString result;
  const QString comment = DescriptionComment(metafile.Description());
  const std::vector<std::uint32_t> colors = metafile.GetColors();
  bool saved = false;
  if (width == 0 && height == 0) {
    metafile.Ready();
    if (metafile.Picture() == nullptr) {
      result = QStringLiteral("Cannot save an empty picture as GIF: ") + file;
    } else {
      // A copy of the recording, so that the metafile keeps its own.
      const auto picture = std::make_shared<const MetaPicture>(*metafile.Picture());
      saved = saver.Save(picture, file, result, 8, comment, colors);
    }
  } else {
    const std::unique_ptr<Bitmap> bitmap = metafile.MakeBitmap(width, height, 0, false);
    if (!bitmap) return false;  // MakeBitmap has said why
    saved = saver.Save(*bitmap, file, result, 8, comment, colors);
  }
  if (!saved) Ui().MsgBox(result, MsgStyle::Exclamation, QString());
  return saved;
}

}  // namespace ombrelle
