#include "support/SettingsStore.h"

#include <memory>

#include <QSettings>
#include <QStandardPaths>

namespace ombrelle {

namespace {

QString& OverridePath() {
  static QString path;
  return path;
}

std::unique_ptr<QSettings>& Store() {
  static std::unique_ptr<QSettings> store;
  if (!store) store = std::make_unique<QSettings>(SettingsFilePath(), QSettings::IniFormat);
  return store;
}

// "Limits\3\Rule1" becomes the group path "Limits/3/Rule1".
QString GroupPath(const QString& section) {
  QString group = section;
  group.replace(QLatin1Char('\\'), QLatin1Char('/'));
  while (group.endsWith(QLatin1Char('/'))) group.chop(1);
  return group;
}

QString KeyPath(const QString& section, const QString& key) {
  const QString group = GroupPath(section);
  return group.isEmpty() ? key : group + QLatin1Char('/') + key;
}

int g_batchDepth = 0;

// Writes the file now, unless a SettingsBatch holds the writing back.
void Flush() {
  if (g_batchDepth == 0) Store()->sync();
}

}  // namespace

SettingsBatch::SettingsBatch() { ++g_batchDepth; }

SettingsBatch::~SettingsBatch() {
  if (--g_batchDepth == 0) Store()->sync();
}

QString SettingsFilePath() {
  if (!OverridePath().isEmpty()) return OverridePath();
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         QStringLiteral("/Ombrelle/Ombrelle.ini");
}

void SetSettingsFilePath(const QString& path) {
  OverridePath() = path;
  Store().reset();
}

QString GetSetting(const QString& section, const QString& key, const QString& defaultValue) {
  const QVariant value = Store()->value(KeyPath(section, key));
  return value.isValid() ? value.toString() : defaultValue;
}

double GetSettingNumber(const QString& section, const QString& key, double defaultValue) {
  const QVariant value = Store()->value(KeyPath(section, key));
  if (!value.isValid()) return defaultValue;
  bool ok = false;
  const double number = value.toString().trimmed().toDouble(&ok);
  return ok ? number : 0.0;
}

void SaveSetting(const QString& section, const QString& key, const QString& value) {
  Store()->setValue(KeyPath(section, key), value);
  Flush();
}

void DeleteSetting(const QString& section, const QString& key) {
  Store()->remove(KeyPath(section, key));
  Flush();
}

std::vector<std::pair<QString, QString>> GetAllSettings(const QString& section) {
  std::vector<std::pair<QString, QString>> result;
  QSettings& store = *Store();
  store.beginGroup(GroupPath(section));
  const QStringList keys = store.childKeys();
  for (const QString& key : keys) result.emplace_back(key, store.value(key).toString());
  store.endGroup();
  return result;
}

void DeleteSettingsTree(const QString& section) {
  const QString group = GroupPath(section);
  if (group.isEmpty()) return;  // never wipe the whole tree by accident
  Store()->remove(group);
  Flush();
}

QStringList EnumSubkeys(const QString& section) {
  QSettings& store = *Store();
  store.beginGroup(GroupPath(section));
  const QStringList groups = store.childGroups();
  store.endGroup();
  return groups;
}

}  // namespace ombrelle
