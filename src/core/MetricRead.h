#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include <QSet>
#include <QString>
#include <QStringList>

#include "core/MetricDefinitions.h"
#include "core/QVZFormat.h"
#include "core/QVZRead.h"
#include "stats/CStats.h"

namespace ombrelle {

class ListModel;

// One database file found on the search paths.
struct DatabaseEntry {
  DatabaseHeader Header;            // as read by the scan
  QString Path;                     // full path of the file
  std::unique_ptr<QVZRead> Reader;  // empty while the database is in no view
  double AnalysisDate = 0;          // the header's AnalysisStamp as a date value
  QString Project;                  // ProjectFilename of the header
  QString Title;                    // Title of the header
  bool Latest = false;              // the newest save of its project
  bool Included = false;            // part of the current view
  double FileDate = 0;              // last-modified time of the file

  // Raw text fields of the header, for ordering and display.
  QString AnalysisStampText() const;
  QString SavedDateText() const;
  QString AnalysisDateText() const;  // the 10 characters "yyyy-mm-dd"
};

// The views of MetricRead.
namespace DataModes {
constexpr int OneFile = 0;
constexpr int ProjectValues = 1;
constexpr int ProjectChange = 2;
constexpr int ProjectRelativeChange = 3;
constexpr int ProjectChangePerDay = 4;
constexpr int ProjectChangePerMonth = 5;
constexpr int LatestSaves = 6;
constexpr int AllFiles = 7;
constexpr int NoView = 8;
}  // namespace DataModes

// What the rest of the program reads databases through. Keeps the list of all
// databases found on the search paths (1-based indexes, 0 for none), knows
// which of them the current view looks at (one file, the saves of one project,
// the latest save of every project, every file) and answers with rows and,
// for a metric, one CStats column with an entry per row. Owns one QVZRead per
// database of the current view and the reader of the single open file.
class MetricRead {
 public:
  // Scans the search paths of the settings store and sorts what it finds.
  MetricRead();
  // Releases every reader.
  ~MetricRead();
  MetricRead(const MetricRead&) = delete;
  MetricRead& operator=(const MetricRead&) = delete;

  // --- The list of databases -------------------------------------------
  int DatabaseCount() const { return static_cast<int>(m_databases.size()); }
  // The entry of a 1-based index; only for 1..DatabaseCount().
  const DatabaseEntry& Database(int database) const { return m_databases.at(database - 1); }

  // Title, " <", the header's analysis date, ">"; "" for an invalid index.
  QString GetDatabaseName(int database) const;
  // "Project: ...  ** File: ... ** Analyzed: ..." for the details line.
  QString GetDatabaseDetails(int database) const;
  QString GetDatabaseFilename(int database) const;

  // Looks for databases where the program starts: the current folder, else
  // the program's folder, then its "sample" folder; folders that yield files
  // join the search paths. Returns the number of databases found.
  int FindFirstDatabases();
  // The same with the folders given, for callers that know them.
  int FindFirstDatabases(const QString& currentFolder, const QString& programFolder);
  // Index of `file` in the list, scanning its folder when it is not there
  // yet; with `remember` the folder joins the search paths. 0 when the file
  // cannot be had (a named file that fails its checks says why in a box).
  int LocateAndOpenDatabase(const QString& file, bool remember);

  // --- Views --------------------------------------------------------------
  // Opens `database` as the single open file. False, without a message,
  // when it cannot be opened.
  bool OpenDatabase2(int database);
  // Sets up a view: `mode` one of DataModes, `database` the database whose
  // project modes 1 to 5 follow, `recordClass` the class of the named row
  // those modes follow (0: the project's own values).
  void SetDataMode(int mode, int database, int recordClass);
  // Row count of a class in the current view.
  int32_t GetClassSize(int metricClass) const;
  // Row names (0-based list) and the order to show them in (1-based indexes
  // into the names).
  void GetRowHeaders(QStringList& names, int metricClass, std::vector<int32_t>& order);
  // The names of GetRowHeaders handed to `sink` one by one, without a list
  // where the open file can serve them straight.
  void ForEachRowName(int metricClass, RowNameSink& sink);
  // Whether a column can be had for `metric` in this view.
  bool MetricAvailable(MetricId metric);
  // The column of `metric` in this view, with its statistics, display format
  // and theoretical range; zeros when it cannot be read.
  CStats GetValues(MetricId metric);
  // The same column without its statistics (Sum, Mean and the rest stay 0),
  // for a reader that only walks the values.
  CStats GetValuesUnsummarised(MetricId metric);
  // The only value of GetValues, or its mean when there are several.
  double GetSingleValue(MetricId metric);
  // Database index of the `row`-th row of a multi-database view; 0 outside.
  int GridRowToQVZDatabase(int32_t row) const;
  // The file a row belongs to; "" without a single open file.
  QString GetItemFilename(int metricClass, int32_t row);

  // --- Lists for the windows ----------------------------------------------
  // Fills a drop-down with the databases of a view; returns the database
  // selected in it (0 for none).
  int FillCombo(ListModel& combo, int mode, int database) const;
  // Fills a drop-down with the distinct row names of class RecordClass over
  // the databases of the view.
  void FillComboRecords(ListModel& combo);
  // The search paths of the settings store.
  static void ListDatabaseSearchPaths(ListModel& list);
  // One item per database: file name, folder, project; tag with the details.
  void ListDatabases(ListModel& listView) const;

  // --- State -----------------------------------------------------------------
  int DataState() const { return m_dataState; }
  // 0 nothing to show; 1 no databases, made-up rows and columns; 2 data.
  void SetDataState(int state) {
    m_dataState = state;
    m_available.clear();
  }
  int DataMode() const { return m_dataMode; }
  int DataDatabase() const { return m_dataDatabase; }
  int RecordClass() const { return m_recordClass; }
  const QString& RecordName() const { return m_recordName; }
  void SetRecordName(const QString& name) { m_recordName = name; }
  int IncludedCount() const { return m_includedCount; }
  QVZRead* CurrentReader() const { return m_currentReader.get(); }
  const MetricDefinitions& Definitions() const { return m_definitions; }

 private:
  static inline const QString kDatabasesSection = QStringLiteral("Databases");
  static bool IsSearchPathKey(const QString& key);
  void ScanSearchPaths();
  int ScanFolder(const QString& folder, const QString& namedFile);
  void AddDatabaseEntry(const QString& path, QString lowerPath, const DatabaseHeader& header,
                        double fileDate);
  void SortDatabases();
  void MarkLatestSaves();
  int FindDatabase(const QString& file) const;
  bool ValidDatabase(int database) const { return database >= 1 && database <= DatabaseCount(); }

  void ApplyView(int mode, int database);
  bool HeadersOnly(int mode) const;
  void CloseCurrent();
  bool FormulaAvailable(MetricId metric, QVZRead& reader);
  CStats CollectValues(MetricId metric);
  CStats ApplyTrend(CStats& values, int mode) const;
  // The entries of the view in row order (Included and with a Reader).
  std::vector<DatabaseEntry*> ViewEntries();

  std::vector<DatabaseEntry> m_databases;
  QSet<QString> m_knownPaths;  // Path of every entry in lower case
  int m_dataState = 2;
  int m_dataMode = DataModes::OneFile;
  int m_dataDatabase = 0;
  int m_recordClass = 0;
  QString m_recordName;
  std::unique_ptr<QVZRead> m_currentReader;
  int m_includedCount = 0;
  MetricDefinitions m_definitions;
  // MetricAvailable answers of the current view.
  std::unordered_map<MetricId, bool> m_available;
};

}  // namespace ombrelle
