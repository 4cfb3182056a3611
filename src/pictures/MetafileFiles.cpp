// Saving recordings as metafile files.
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

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

bool CanOverwrite(const QString& file) {
  const QFileInfo info(file);
  bool ok = !file.isEmpty();
  if (ok && info.exists()) {
    // A folder, a file marked read-only or a folder that cannot take the new
    // file are left alone, even for a user the system would let through.
    ok = !info.isDir() && (QFile::permissions(file) & QFileDevice::WriteOwner) &&
         QFileInfo(info.absolutePath()).isWritable();
  }
  if (!ok) Warn(QStringLiteral("Cannot overwrite file ") + file);
  return ok;
}

bool SaveEMF(const MetaPicture* picture, const QString& file) {
  if (!picture) {
    // There are no recording's bytes to fetch: 6 is the platform's number for
    // a handle that is not valid, and the call's result is 0.
    Warn(QStringLiteral("Metafile.SaveEMF: Call to GetEnhMetaFileBits failed with error code 60"));
    return false;
  }
  const QByteArray bytes = EmfBytes(*picture);
  if (!CanOverwrite(file)) return false;
  return WriteReplacing(file, bytes, QStringLiteral("Metafile.SaveEMF"));
}

bool SavePlaceableWMF(const MetaPicture* picture, const QString& file, float scale) {
  if (!picture) {
    Warn(QStringLiteral("Call to GetEnhMetaFileHeader failed in EMF2WMF.SavePlaceableWMF."));
    return false;
  }
  const QByteArray bytes = PlaceableWmfBytes(*picture, scale);
  if (!CanOverwrite(file)) return false;
  return WriteReplacing(file, bytes, QStringLiteral("EMF2WMF.SavePlaceableWMF"));
}

}  // namespace ombrelle
