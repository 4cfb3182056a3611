// Names of databases and the lists the windows show: drop-downs of saves and
// of row names, the search paths and the files found.

#include <QDate>

#include "core/ListModel.h"
#include "core/MetricRead.h"
#include "support/DateValue.h"
#include "support/Filename.h"
#include "support/FormatNum.h"
#include "support/SettingsStore.h"
#include "support/StringsUniq.h"

namespace ombrelle {

namespace {

QString RightTrimBlanks(QString text) {
  qsizetype end = text.size();
  while (end > 0 && text.at(end - 1) == u' ') --end;
  text.truncate(end);
  return text;
}

}  // namespace

QString MetricRead::GetDatabaseName(int database) const {
  if (!ValidDatabase(database)) return QString();
  const DatabaseEntry& entry = Database(database);
  return RightTrimBlanks(entry.Title) + QStringLiteral(" <") + entry.AnalysisDateText() +
         QStringLiteral(">");
}

QString MetricRead::GetDatabaseDetails(int database) const {
  if (!ValidDatabase(database)) return QString();
  const DatabaseEntry& entry = Database(database);
  const QString saved = entry.SavedDateText();
  const QDate date = QDate::fromString(saved, QStringLiteral("yyyy-MM-dd"));
  const QString savedText = date.isValid() ? FormatDateShort(DateFromQDate(date)) : saved.trimmed();
  return QStringLiteral("Project: ") + entry.Project + QStringLiteral(" ** File: ") +
         FileNameOnly(entry.Path) + QStringLiteral(" ** Analyzed: ") + savedText;
}

QString MetricRead::GetDatabaseFilename(int database) const {
  return ValidDatabase(database) ? Database(database).Path : QString();
}

void MetricRead::ListDatabaseSearchPaths(ListModel& list) {
  for (const auto& [key, value] : GetAllSettings(kDatabasesSection)) {
    if (IsSearchPathKey(key)) list.AddItem(value);
  }
}

void MetricRead::ListDatabases(ListModel& listView) const {
  listView.Clear();
  for (const DatabaseEntry& entry : m_databases) {
    const int item = listView.AddItem(FileNameOnly(entry.Path));
    listView.SetSubItem(item, 1, FileFolder(entry.Path));
    listView.SetSubItem(item, 2, RightTrimBlanks(entry.Project));
    listView.SetItemTag(item, RightTrimBlanks(entry.Title) + QStringLiteral(" - Date: ") +
                                  entry.AnalysisDateText());
  }
}

int MetricRead::FillCombo(ListModel& combo, int mode, int database) const {
  combo.Clear();
  const bool projectMode = mode >= DataModes::ProjectValues && mode <= DataModes::LatestSaves;
  const bool keyed = projectMode && ValidDatabase(database);
  const QString key = keyed ? Database(database).Project.toLower() : QString();
  int preselected = -1;
  for (int i = 1; i <= DatabaseCount(); ++i) {
    const DatabaseEntry& entry = Database(i);
    const bool sameProject = keyed && entry.Project.toLower() == key;
    bool listed = false;
    if (mode == DataModes::AllFiles) {
      listed = true;
    } else if (mode == DataModes::LatestSaves) {
      listed = entry.Latest;
    } else if (mode >= DataModes::ProjectValues && mode <= DataModes::ProjectChangePerMonth) {
      listed = sameProject;
    }
    if (!listed) continue;
    QString text;
    if (mode == DataModes::LatestSaves) {
      text = RightTrimBlanks(entry.Project);
    } else {
      text = RightTrimBlanks(entry.Title) + QStringLiteral("  <") + entry.AnalysisDateText() +
             QStringLiteral(">");
    }
    const int item = combo.AddItem(text, i);
    // The latest save stands for its project; in the other views the
    // database itself is the one to show.
    if (mode == DataModes::LatestSaves ? sameProject : i == database) preselected = item;
  }
  // The tag tells the click handler that the program, not the user, moves
  // the selection.
  combo.SetTag(QStringLiteral("Norefresh"));
  if (combo.ListCount() == 0) {
    combo.AddItem(QStringLiteral("<No data>"), 0);
    combo.SetListIndex(0);
  } else {
    combo.SetListIndex(preselected >= 0 ? preselected : 0);
  }
  combo.SetTag(QString());
  return combo.ItemData(combo.ListIndex());
}

void MetricRead::FillComboRecords(ListModel& combo) {
  combo.Clear();
  StringsUniq seen;
  for (DatabaseEntry* entry : ViewEntries()) {
    QVZRead& reader = *entry->Reader;
    if (!reader.EnsureFileOpen()) continue;
    if (reader.GetClassSize(m_recordClass) > 0) {
      QStringList names;
      std::vector<int32_t> order;
      reader.GetRowHeaders(m_recordClass, names, order);
      for (const QString& name : names) {
        if (seen.Find(name) != 0) continue;
        seen.Store(name);
        combo.AddItem(name);
      }
    }
  }
}

}  // namespace ombrelle
