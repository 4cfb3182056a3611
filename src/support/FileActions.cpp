// File tests and actions of the Filename module: the routines that touch the
// file system.
#include <cerrno>
#include <cstring>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QStandardPaths>

#include "support/FileIO.h"
#include "support/Filename.h"
#include "support/Text.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

QString SystemText(int error) { return QString::fromLocal8Bit(std::strerror(error)); }

void ShowRecycleError(int number, const QString& text) {
  Ui().MsgBox(QStringLiteral("Error #") + QString::number(number) +
                  QStringLiteral(" calling SHFileOperation:") + kCrLf + text,
              MsgStyle::Exclamation, QString());
}

}  // namespace

bool FileExists(const QString& path) {
  if (path.trimmed().isEmpty()) return false;
  const QFileInfo info(path);
  return info.exists() && !info.isDir();
}

bool FolderExists(const QString& path) {
  if (path.trimmed().isEmpty()) return false;
  return QFileInfo(path).isDir();
}

bool FolderIsEmpty(const QString& path) {
  return QDir(path)
      .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot)
      .isEmpty();
}

bool FolderHasSubfolders(const QString& path) {
  return !QDir(path)
              .entryList(QDir::Dirs | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot)
              .isEmpty();
}

bool DeleteFile(const QString& path) {
  if (!IsAbsolutePath(path)) return false;
  const QFileInfo info(path);
  if (!info.exists() && !info.isSymLink()) return !PathHasWildcards(path);
  if (info.isDir() && !info.isSymLink()) return false;
  QFile::remove(path);
  return !QFileInfo::exists(path) && !QFileInfo(path).isSymLink();
}

bool RecycleFile(const QString& path, bool undo, bool /*silent*/) {
  if (!IsAbsolutePath(path)) {
    Ui().MsgBox(QStringLiteral("Path not absolute in call to Recycle:") + kCrLf + path,
                MsgStyle::Exclamation, QString());
    return false;
  }
  const QFileInfo info(path);
  if (!info.exists() && !info.isSymLink()) {
    ShowRecycleError(ENOENT, SystemText(ENOENT));
    return false;
  }
  QFile file(path);
  errno = 0;
  const bool done = undo ? file.moveToTrash() : file.remove();
  if (!done) {
    const int number = errno != 0 ? errno : EIO;
    ShowRecycleError(number,
                     file.errorString().isEmpty() ? SystemText(number) : file.errorString());
    return false;
  }
  return true;
}

bool CreateFolderPath(const QString& path) {
  const QString title;  // the application title
  if (!IsAbsolutePath(path)) {
    Ui().MsgBox(QStringLiteral("Cannot create directory:") + kCrLf + path, MsgStyle::Exclamation,
                title);
    return false;
  }
  const QString target = ResolvePath(QStringLiteral("/"), path);
  // Walk down from the root so that a file in the way is named exactly.
  QString current;
  for (const QString& part : target.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
    current += QLatin1Char('/') + part;
    const QFileInfo info(current);
    if (info.isDir()) continue;
    if (info.exists() || info.isSymLink()) {
      Ui().MsgBox(QStringLiteral("Cannot create directory:") + kCrLf + current + kCrLf +
                      QStringLiteral("The name is in use."),
                  MsgStyle::Exclamation, title);
      return false;
    }
    errno = 0;
    if (!QDir().mkdir(current)) {
      const int number = errno != 0 ? errno : EIO;
      Ui().MsgBox(QStringLiteral("Error creating directory ") + current + QLatin1Char(':') + kCrLf +
                      SystemText(number),
                  MsgStyle::Exclamation, title);
      return false;
    }
  }
  return true;
}

QString GetTempFolder() {
  const QString system = QStandardPaths::writableLocation(QStandardPaths::TempLocation);
  if (FolderExists(system)) return system;
  for (int code : {SpecialFolder::LocalAppData, SpecialFolder::AppData}) {
    const QString base = GetSpecialFolder(code);
    if (base.isEmpty()) continue;
    const QString folder = JoinPath(base, QStringLiteral("Temp"));
    if (FolderExists(folder) || QDir().mkpath(folder)) return folder;
  }
  return system;
}

QString GetUniqueTempName(const QString& prefix, const QString& extension) {
  static const QString alphabet = QStringLiteral("0123456789abcdefghijklmnopqrstuvwxyz-+");
  QString stem = prefix;
  if (stem.isEmpty()) {
    for (const QChar c : UiServices::AppTitle()) {
      if (c.isLetterOrNumber() && c.unicode() < 128) stem += c;
      if (stem.size() == 3) break;
    }
    if (stem.isEmpty()) stem = QStringLiteral("$");
  }
  const QString folder = GetTempFolder();
  QRandomGenerator& random = *QRandomGenerator::global();
  for (int attempt = 0; attempt < 10000; ++attempt) {
    QString name = stem;
    while (name.size() < 6) name += alphabet[random.bounded(static_cast<int>(alphabet.size()))];
    if (!extension.isEmpty()) name += QLatin1Char('.') + extension;
    const QString path = JoinPath(folder, name);
    if (!QFileInfo::exists(path)) return path;
    if (attempt % 16 == 15) stem += alphabet[random.bounded(static_cast<int>(alphabet.size()))];
  }
  return QString();
}

QString MakeUniqueFilename(const QString& folder, const QString& base, const QString& extension,
                           int mode) {
  constexpr qsizetype kPathLimit = 259;
  constexpr int kTries = 9999;
  const QString tail = extension.isEmpty() ? QString() : QLatin1Char('.') + extension;
  for (int n = mode == UniqueName::AlwaysNumber ? 1 : 0; n <= kTries; ++n) {
    const QString number = n == 0 ? QString() : QLatin1Char('x') + NumberToLetters(n);
    QString path = JoinPath(folder, base + number + tail);
    const qsizetype excess = path.size() - kPathLimit;
    if (excess > 0) {
      if (excess >= base.size()) return QString();
      path = JoinPath(folder, base.left(base.size() - excess) + number + tail);
    }
    if (!QFileInfo::exists(path) && !QFileInfo(path).isSymLink()) return path;
  }
  return QString();
}

}  // namespace ombrelle
