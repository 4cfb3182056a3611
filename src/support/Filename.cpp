#include "support/Filename.h"

#include <QDir>
#include <QStringList>

namespace ombrelle {

namespace {
// Folds "." and ".." of an absolute POSIX path; repeated slashes count as one.
QString FoldAbsolute(const QString& path) {
  QStringList parts;
  for (const QString& part : path.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
    if (part == QLatin1String(".")) continue;
    if (part == QLatin1String("..")) {
      if (!parts.isEmpty()) parts.removeLast();
      continue;
    }
    parts << part;
  }
  return QLatin1Char('/') + parts.join(QLatin1Char('/'));
}
}  // namespace

QString ResolvePath(const QString& base, const QString& path) {
  if (path.startsWith(QLatin1Char('/'))) return FoldAbsolute(path);
  QString folder = base.isEmpty() ? QDir::currentPath() : base;
  if (!folder.startsWith(QLatin1Char('/'))) folder = QDir::currentPath() + QLatin1Char('/') + folder;
  if (path.isEmpty()) return FoldAbsolute(folder);
  return FoldAbsolute(folder + QLatin1Char('/') + path);
}

}  // namespace ombrelle
