// Exchange of limit sets with `.mtl` files: Windows-style INI text with one
// head section and one section per rule.

#include "limits/MetricLimits.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "limits/LimitNumbers.h"
#include "support/Codepage.h"
#include "support/IniFile.h"
#include "support/SettingsStore.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

const QString kHeadSection = QStringLiteral("MTL Metric limits");

// No set holds more: 32767 rules of at most four keys, and the head. A file
// with more entries is no limits file, and is not copied into the settings.
constexpr size_t kMaxImportEntries = 32767 * 4 + 16;

void ShowFileError(const QString& text) {
  Ui().MsgBox(text, MsgStyle::Exclamation, UiServices::AppTitle());
}

// The file's key and section names count without regard to case, as the
// import's own check reads them, but the settings store tells case apart: the
// names the loader reads are stored in its spelling.
QString LoaderSpelling(const QString& name) {
  static const QStringList known = {QStringLiteral("Name"),      QStringLiteral("Version"),
                                    QStringLiteral("Rules"),     QStringLiteral("Metric"),
                                    QStringLiteral("LimitType"), QStringLiteral("LimitMin"),
                                    QStringLiteral("LimitMax"),  QStringLiteral("Limit")};
  for (const QString& k : known)
    if (k.compare(name, Qt::CaseInsensitive) == 0) return k;
  // "rule7" is the section "Rule7".
  if (name.size() > 4 && name.startsWith(QStringLiteral("Rule"), Qt::CaseInsensitive)) {
    bool number = false;
    name.mid(4).toInt(&number);
    if (number) return QStringLiteral("Rule") + name.mid(4);
  }
  return name;
}

// Copies `keys` into settings section `target`. A key that occurs again
// (in any case) is skipped: the first occurrence is the one the check read.
void CopyKeys(const QString& target, const std::vector<std::pair<QString, QString>>& keys) {
  QStringList copied;
  for (const auto& [key, value] : keys) {
    const QString name = LoaderSpelling(key);
    if (copied.contains(name, Qt::CaseInsensitive)) continue;
    copied.append(name);
    SaveSetting(target, name, value);
  }
}

}  // namespace

bool MetricLimits::Export(const QString& fileName) {
  const QFileInfo info(fileName);
  if ((info.exists() || info.isSymLink()) && !QFile::remove(fileName)) {
    ShowFileError(QStringLiteral("Cannot delete existing file: ") + fileName);
    return false;
  }
  QSaveFile file(fileName);
  if (!file.open(QIODevice::WriteOnly)) {
    ShowFileError(QStringLiteral("Cannot create file ") + fileName + QStringLiteral(": ") +
                  file.errorString());
    return false;
  }

  QStringList lines;
  lines << QLatin1Char('[') + kHeadSection + QLatin1Char(']')
        << QStringLiteral("; Saved by ") + UiServices::AppTitle() << QStringLiteral("Version=1.0")
        << QStringLiteral("Name=") + m_name
        << QStringLiteral("Rules=") + QString::number(m_rules.size()) << QString();
  for (size_t i = 0; i < m_rules.size(); ++i) {
    const MetricLimitRule& rule = m_rules[i];
    lines << QStringLiteral("[Rule") + QString::number(i + 1) + QLatin1Char(']')
          << QStringLiteral("Metric=") + QString::number(rule.Metric)
          << QStringLiteral("LimitType=") + QString::number(rule.LimitType);
    if (rule.LimitType == LimitRange) {
      lines << QStringLiteral("LimitMin=") + LimitNumberText(rule.LimitMin)
            << QStringLiteral("LimitMax=") + LimitNumberText(rule.LimitMax);
    } else {
      lines << QStringLiteral("Limit=") + LimitNumberText(rule.LimitMin);
    }
  }
  for (const QString& line : lines) {
    if (file.write(TextToMultiByte(line + QStringLiteral("\r\n"), kCodepageAnsi)) < 0) break;
  }
  if (!file.commit()) {
    ShowFileError(file.errorString());
    return false;
  }
  return true;
}

std::int32_t MetricLimits::Import(const QString& fileName) {
  IniFile file;
  file.Load(fileName);  // a missing or unreadable file reads empty and fails the version check
  const auto sections = file.Sections();
  size_t entries = 0;
  const std::vector<std::pair<QString, QString>>* head = nullptr;
  for (const auto& [section, keys] : sections) {
    entries += keys.size();
    if (!head && section.compare(kHeadSection, Qt::CaseInsensitive) == 0) head = &keys;
  }
  auto headValue = [&](const QString& key) {
    if (head)
      for (const auto& [name, value] : *head)
        if (name.compare(key, Qt::CaseInsensitive) == 0) return value;
    return QString();
  };
  if (ParseLimitNumber(headValue(QStringLiteral("Version"))) != 1.0 ||
      entries > kMaxImportEntries) {
    ShowFileError(QStringLiteral("Unsupported file format or version in ") + fileName);
    return 0;
  }

  const QString name = Ui().InputBox(QStringLiteral("Import as:"), UiServices::AppTitle(),
                                     headValue(QStringLiteral("Name")));
  if (name.isEmpty()) return 0;

  // The keys arrive as they stand; LoadFromSettings checks them at the next load.
  const std::int16_t nr = FindFreeLimitID();
  const QString target = SetSection(nr);
  const SettingsBatch batch;
  CopyKeys(target, *head);
  for (const auto& [section, keys] : sections) {
    if (&keys == head) continue;
    // A name that is empty or holds a separator would land outside the set's own sections.
    if (section.isEmpty() || section.contains(QLatin1Char('\\')) ||
        section.contains(QLatin1Char('/')))
      continue;
    CopyKeys(target + QLatin1Char('\\') + LoaderSpelling(section), keys);
  }
  SaveSetting(target, QStringLiteral("Name"), name);
  return nr;
}

}  // namespace ombrelle
