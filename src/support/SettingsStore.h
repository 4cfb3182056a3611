#pragma once

#include <utility>
#include <vector>

#include <QString>
#include <QStringList>

namespace ombrelle {

// The per-user settings tree "Ombrelle": section, key, string value. Kept in
// one INI file in the user's configuration folder; sections nest with "\"
// ("Limits\3\Rule1") and map to settings groups.

// Reads one value; `defaultValue` when the key is absent.
QString GetSetting(const QString& section, const QString& key, const QString& defaultValue = {});
// Reads one value as a number: `defaultValue` when the key is absent, 0 when
// its text is not a number (blanks around it are allowed, "." is the decimal
// point).
double GetSettingNumber(const QString& section, const QString& key, double defaultValue = 0);
// Writes one value and flushes the file (written to a temporary name and
// renamed into place).
void SaveSetting(const QString& section, const QString& key, const QString& value);
// Removes one key; absent keys are no error.
void DeleteSetting(const QString& section, const QString& key);
// The keys and values directly in `section`, in the store's order; empty for
// an empty or absent section.
std::vector<std::pair<QString, QString>> GetAllSettings(const QString& section);
// Removes `section` with all its sub-sections.
void DeleteSettingsTree(const QString& section);
// The names of the sections directly below `section`.
QStringList EnumSubkeys(const QString& section);

// The file that holds the tree. Tests and tools may move it; an empty path
// returns to the default in the user's configuration folder.
QString SettingsFilePath();
void SetSettingsFilePath(const QString& path);

// While one lives, writes and deletes change the tree in memory only; the
// last one to end writes the file once. Saving a set of many keys thus costs
// one write of the file instead of one per key.
class SettingsBatch {
 public:
  SettingsBatch();
  ~SettingsBatch();
  SettingsBatch(const SettingsBatch&) = delete;
  SettingsBatch& operator=(const SettingsBatch&) = delete;
};

}  // namespace ombrelle
