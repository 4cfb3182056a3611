#include "support/SelectFolder.h"

#include <QDir>
#include <QFile>

#include "support/Filename.h"
#include "support/Text.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

void Exclaim(const QString& text) { Ui().MsgBox(text, MsgStyle::Exclamation, QString()); }

FolderRequest BaseRequest(const QString& folder, const QString& prompt) {
  FolderRequest request;
  request.title = QStringLiteral("Select directory");
  request.prompt = prompt;
  request.folder = folder;
  request.create = &SelectFolder::Create;
  request.view = &SelectFolder::View;
  request.kill = [](const QString& name) { SelectFolder::DeleteAllFiles(name); };
  return request;
}

}  // namespace

QString SelectFolder::GetAnyFolder(const QString& folder, const QString& prompt, bool allowCreate,
                                   const QString& preset) {
  FolderRequest request = BaseRequest(preset.isEmpty() ? folder : JoinPath(folder, preset), prompt);
  request.allowCreate = allowCreate;
  request.accept = &SelectFolder::CheckAnyTarget;
  return Ui().ChooseFolder(request);
}

QString SelectFolder::GetEmptyFolder(const QString& folder, double /*minFree*/,
                                     const QString& prompt, bool warn) {
  FolderRequest request = BaseRequest(folder, prompt);
  request.showKill = true;
  request.accept = [warn](const QString& name) { return CheckEmptyTarget(name, warn); };
  if (warn) request.warnNotEmpty = &SelectFolder::NotEmpty;
  return Ui().ChooseFolder(request);
}

bool SelectFolder::CheckEmptyTarget(const QString& name, bool emptyCheck) {
  if (!FolderExists(name)) {
    Exclaim(name + QStringLiteral(" is not a directory."));
    return false;
  }
  if (emptyCheck) {
    if (!QDir(name).entryList(QDir::Files | QDir::Hidden | QDir::System).isEmpty()) {
      Exclaim(QStringLiteral("Directory not empty."));
      return false;
    }
    if (FolderHasSubfolders(name)) {
      Exclaim(QStringLiteral("Directory ") + name + QStringLiteral(" has sub-directories."));
      return false;
    }
  }
  return WriteTest(name);
}

bool SelectFolder::CheckAnyTarget(const QString& name) {
  if (!FileExists(name)) return true;
  Exclaim(name + QStringLiteral(" is not a directory."));
  return false;
}

bool SelectFolder::WriteTest(const QString& folder) {
  const QString path = MakeUniqueFilename(folder, QStringLiteral("$test"), QStringLiteral("tmp"),
                                          UniqueName::AlwaysNumber);
  if (path.isEmpty()) {
    Exclaim(QStringLiteral("Internal error. Cannot get unique filename in ") + folder);
    return false;
  }
  QFile file(path);
  bool written = file.open(QIODevice::WriteOnly | QIODevice::NewOnly);
  if (written) {
    const QByteArray content = WriteTestContent().toLatin1();
    written = file.write(content) == content.size();
    file.close();
  }
  if (file.exists()) QFile::remove(path);
  if (!written) {
    Exclaim(QStringLiteral("Cannot write to directory") + kCrLf + folder);
    return false;
  }
  return true;
}

bool SelectFolder::Create(const QString& name) {
  if (name.trimmed().isEmpty()) return false;
  return CreateFolderPath(name);
}

void SelectFolder::View(const QString& name) {
  if (FolderExists(name)) Ui().ShellOpen(name);
}

int SelectFolder::DeleteAllFiles(const QString& name) {
  if (!FolderExists(name)) return 0;
  if (Ui().MsgBox(QStringLiteral("Delete all files?") + kCrLf + name, MsgStyle::YesNoQuestion,
                  QString()) != MsgResult::Yes)
    return 0;
  int deleted = 0;
  const QDir folder(name);
  for (const QString& file : folder.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
    if (QFile::remove(folder.filePath(file))) ++deleted;
  }
  return deleted;
}

bool SelectFolder::NotEmpty(const QString& name) {
  return FolderExists(name) && !FolderIsEmpty(name);
}

}  // namespace ombrelle
