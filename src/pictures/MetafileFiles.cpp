// Saving recordings as metafile files.
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "pictures/Metafile.h"
#include "pictures/MetafileConversions.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

void Warn(const QString& text) { Ui().MsgBox(text, MsgStyle::Exclamation, QString()); }

// Writes `bytes` to a temporary name beside `file` and renames it into place;
// on failure the message names the routine and the system's error.
bool WriteReplacing(const QString& file, const QByteArray& bytes, const QString& routine) {
  QSaveFile out(file);
  if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit()) {
    Warn(QStringLiteral("Error #") + QString::number(static_cast<int>(out.error())) +
         QStringLiteral(" in ") + routine + QStringLiteral(":\r\n") + out.errorString());
    out.cancelWriting();
    return false;
  }
  return true;
}

}  // namespace

bool SaveEMF(const MetaPicture* picture, const QString& file) {
  if (!picture) {
    // There are no recording's bytes to fetch: 6 is the platform's number for
    // a handle that is not valid, and the call's result is 0.
    Warn(QStringLiteral("Metafile.SaveEMF: Call to GetEnhMetaFileBits failed with error code 60"));
    return false;
  }
  const QByteArray bytes = EmfBytes(*picture);
  if (!Metafile::CanOverwrite(file)) return false;
  return WriteReplacing(file, bytes, QStringLiteral("Metafile.SaveEMF"));
}

bool SavePlaceableWMF(const MetaPicture* picture, const QString& file, float scale) {
  if (!picture) {
    Warn(QStringLiteral("Call to GetEnhMetaFileHeader failed in EMF2WMF.SavePlaceableWMF."));
    return false;
  }
  const QByteArray bytes = PlaceableWmfBytes(*picture, scale);
  if (!Metafile::CanOverwrite(file)) return false;
  return WriteReplacing(file, bytes, QStringLiteral("EMF2WMF.SavePlaceableWMF"));
}

}  // namespace ombrelle

namespace ombrelle {

bool Metafile::SaveEMF(const QString& file) {
  return ombrelle::SaveEMF(IsReady() ? Picture() : nullptr, file);
}

bool Metafile::SavePlaceableWMF(const QString& file, float scale, int /*option*/) {
  return ombrelle::SavePlaceableWMF(IsReady() ? Picture() : nullptr, file, scale);
}

}  // namespace ombrelle
