#include "support/ProgramFolders.h"

#include <QDir>
#include <QFileInfo>

namespace ombrelle {

QString ProgramDataFolder(const QString& programFolder, const QString& name) {
  const QString beside = QDir(programFolder).filePath(name);
  if (QFileInfo(beside).isDir()) return beside;
  const QString installed =
      QDir::cleanPath(programFolder + QStringLiteral("/../share/ombrelle/") + name);
  if (QFileInfo(installed).isDir()) return installed;
  return beside;
}

}  // namespace ombrelle
