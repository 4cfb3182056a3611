#include <QCoreApplication>
#include <QFileInfo>

#include "core/MetricSave.h"
#include "core/MetricSaveFields.h"
#include "support/FileIO.h"
#include "support/Filename.h"
#include "support/SelectFolder.h"
#include "support/SettingsStore.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

const QString kDatabasesSection = QStringLiteral("Databases");
const QString kSavePathKey = QStringLiteral("SavePath");

// The characters a generated name keeps: digits, "@" to "Z", "a" to "z",
// "+", "_", blank, "-" and ".".
bool KeptInName(QChar c) {
  return (c >= u'0' && c <= u'9') || (c >= u'@' && c <= u'Z') || (c >= u'a' && c <= u'z') ||
         c == u'+' || c == u'_' || c == u' ' || c == u'-' || c == u'.';
}

}  // namespace

void MetricSave::StoreInRegistry(const QString& folder) {
  if (folder.isEmpty()) return;
  for (const auto& [key, value] : GetAllSettings(kDatabasesSection)) {
    if (key.toLower().startsWith(QStringLiteral("path")) &&
        QString::compare(value, folder, Qt::CaseInsensitive) == 0)
      return;
  }
  for (int n = 1; n <= 32767; ++n) {
    const QString key = QStringLiteral("path") + QString::number(n);
    if (GetSetting(kDatabasesSection, key).isEmpty()) {
      SaveSetting(kDatabasesSection, key, folder);
      return;
    }
  }
}

QString MetricSave::GenerateDatabasename(const QString& name, double date, const QString& folder,
                                         const QString& extension) {
  const QString target = folder.isEmpty() ? GetDatabaseDirectory() : folder;
  if (target.isEmpty()) return QString();

  QString filtered;
  int dots = 0;
  for (const QChar c : name) {
    if (!KeptInName(c)) continue;
    if (c == u'.') ++dots;
    filtered += c;
  }
  // One dot ends the name with the project file's extension, which goes.
  // Several dots are part of the name.
  if (dots == 1) filtered.truncate(filtered.indexOf(u'.'));

  QString base = QString::fromLatin1(DateToIsoText(date));
  if (!filtered.isEmpty()) base += u' ' + filtered;

  // A name taken by another save of the day gets a letter, "a" and the codes
  // after it, one at a time.
  QString path = JoinPath(target, base + extension);
  for (char16_t letter = u'a'; QFileInfo::exists(path); ++letter) {
    if (letter >= 0xD800) return QString();  // no single character left
    path = JoinPath(target, base + QChar(letter) + extension);
  }
  return path;
}

QString MetricSave::GetDatabaseDirectory() {
  const auto current = [] {
    const QString folder = GetSetting(kDatabasesSection, kSavePathKey);
    return FolderExists(folder) ? folder : QString();
  };
  QString folder = current();
  if (folder.isEmpty()) {
    Configure();
    folder = current();
  }
  return folder;
}

bool MetricSave::Configure() {
  QString start = GetSetting(kDatabasesSection, kSavePathKey);
  if (!FolderExists(start)) {
    const QString documents = GetSpecialFolder(SpecialFolder::Documents);
    start = FolderExists(documents) ? JoinPath(documents, QStringLiteral("Ombrelle"))
                                    : QCoreApplication::applicationDirPath();
  }
  const QString answer = SelectFolder::GetAnyFolder(
      start, QStringLiteral("Choose directory for saving metrics files in"), true);
  if (answer.isEmpty()) return false;
  if (FolderExists(answer))
    SaveSetting(kDatabasesSection, kSavePathKey, answer);
  else
    DeleteSetting(kDatabasesSection, kSavePathKey);
  return true;
}

}  // namespace ombrelle
