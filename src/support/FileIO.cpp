#include "support/FileIO.h"

#include <cerrno>
#include <cstring>

#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include "support/Codepage.h"
#include "support/Filename.h"
#include "support/Text.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

void ShowWriteError(const QString& path, int number, const QString& text) {
  Ui().MsgBox(QStringLiteral("Error #") + QString::number(number) + QStringLiteral(" saving to ") +
                  path + QLatin1Char(':') + kCrLf + text,
              MsgStyle::Exclamation, QString());
}

// A failed call of `file` as the system's error number and text. The number
// is errno when the failing call left one, else the general I/O error.
void ShowFileError(const QString& path, int savedErrno, const QSaveFile& file) {
  if (savedErrno != 0)
    ShowWriteError(path, savedErrno, QString::fromLocal8Bit(std::strerror(savedErrno)));
  else
    ShowWriteError(path, EIO, file.errorString());
}

bool WriteWholeFile(const QString& path, const QByteArray& bytes) {
  if (!IsAbsolutePath(path)) {
    Ui().MsgBox(
        QStringLiteral("Error saving to ") + path + kCrLf + QStringLiteral("Path not absolute."),
        MsgStyle::Exclamation, QString());
    return false;
  }
  const QFileInfo existing(path);
  if (existing.isDir() || (existing.exists() && !QFileInfo(existing.absolutePath()).isWritable())) {
    Ui().MsgBox(QStringLiteral("Error overwriting file ") + path, MsgStyle::Exclamation, QString());
    return false;
  }
  QSaveFile file(path);
  errno = 0;
  if (!file.open(QIODevice::WriteOnly)) {
    ShowFileError(path, errno, file);
    return false;
  }
  errno = 0;
  if (file.write(bytes) != bytes.size()) {
    const int saved = errno;
    file.cancelWriting();
    file.commit();  // drops the temporary file
    ShowFileError(path, saved, file);
    return false;
  }
  errno = 0;
  if (!file.commit()) {
    ShowFileError(path, errno, file);
    return false;
  }
  return true;
}

}  // namespace

bool SaveTextFile(const QString& path, const QString& text) {
  return WriteWholeFile(path, TextToMultiByte(text, kCodepageAnsi));
}

bool SaveUnicodeFile(const QString& path, const QString& text) {
  QByteArray bytes;
  bytes.reserve(2 + text.size() * 2);
  bytes.append('\xFF').append('\xFE');
  for (const QChar c : text) {
    const char16_t u = c.unicode();
    bytes.append(static_cast<char>(u & 0xFF)).append(static_cast<char>(u >> 8));
  }
  return WriteWholeFile(path, bytes);
}

bool SaveBinaryFile(const QString& path, const QByteArray& bytes) {
  return WriteWholeFile(path, bytes);
}

QString SaveFileDialog(const QString& extension, const QString& filter, const QString& folder,
                       const QString& fileName, const QString& title) {
  FileDialogRequest request;
  request.title = title;
  request.folder = folder;
  request.fileName = fileName;
  request.filter = filter;
  request.defaultExtension = extension;
  request.overwritePrompt = true;
  QString chosen = Ui().SaveFileDialog(request);
  if (!chosen.isEmpty() && !extension.isEmpty() && FileExtension(chosen).isEmpty())
    chosen = ReplaceExtension(chosen, extension);
  return chosen;
}

QString GetSpecialFolder(int code) {
  QStandardPaths::StandardLocation location;
  switch (code) {
    case SpecialFolder::Desktop:
      location = QStandardPaths::DesktopLocation;
      break;
    case SpecialFolder::Documents:
      location = QStandardPaths::DocumentsLocation;
      break;
    case SpecialFolder::Music:
      location = QStandardPaths::MusicLocation;
      break;
    case SpecialFolder::Videos:
      location = QStandardPaths::MoviesLocation;
      break;
    case SpecialFolder::AppData:
      location = QStandardPaths::GenericConfigLocation;
      break;
    case SpecialFolder::LocalAppData:
      location = QStandardPaths::GenericDataLocation;
      break;
    case SpecialFolder::Pictures:
      location = QStandardPaths::PicturesLocation;
      break;
    case SpecialFolder::Profile:
      location = QStandardPaths::HomeLocation;
      break;
    default:
      return QString();
  }
  return QStandardPaths::writableLocation(location);
}

}  // namespace ombrelle
