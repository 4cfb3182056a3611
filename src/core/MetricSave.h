#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <QString>
#include <QStringList>

#include "core/MetricDefinitions.h"
#include "core/QVZFormat.h"
#include "support/StringList.h"

class QSaveFile;

namespace ombrelle {

class CStats;

// The writing half of the metrics database format: writes a complete
// version-3 file class by class and series by series, and owns the services
// around saved files: header editing, new file names, the save folder and
// the search paths. Owns the file being written until it is completed.
//
// Calling order for a new file: SaveDatabase; for each class AddClass, then
// AddMetricToClass for each of its metrics, then ClassDone; SaveClasses;
// SaveSeries once for each metric of each class in the same order; Close (or
// destruction) completes the file.
class MetricSave {
 public:
  MetricSave();
  // Completes a file that is still open, as Close does.
  ~MetricSave();
  MetricSave(const MetricSave&) = delete;
  MetricSave& operator=(const MetricSave&) = delete;

  // Starts a new database `file` (a generated name in the save folder when
  // empty) and writes a first header. False, after a box, when the file
  // cannot be made.
  bool SaveDatabase(const QString& file, const QString& title, const QString& project, double date);
  // Declares a class with `itemCount` rows named `names` (in row order). The
  // `rowKeys` are kept beside the names; version 3 does not store them.
  void AddClass(int classNr, int32_t itemCount, const QStringList& names,
                const std::vector<int32_t>& rowKeys = {});
  // Declares a metric of the class added last.
  void AddMetricToClass(MetricId id);
  // Ends the declaration of the class added last.
  void ClassDone();
  // Writes the class table, the metric id lists and the row names.
  bool SaveClasses();
  // Writes the next series, its values in the sorted order of the row names.
  // Sorts and summarises `stats` (CalcStatsQuick) on the way.
  bool SaveSeries(CStats& stats);
  // Completes the file: the header again with the checksum for the final
  // length, then the file takes its final name and its folder joins the
  // search paths. A file that failed on the way is discarded instead. True
  // when a complete file stands under its name; false also when none is open.
  bool Close();

  bool IsOpen() const { return m_file != nullptr; }
  const QString& Filename() const { return m_filename; }
  const DatabaseHeader& Header() const { return m_header; }

  // Rewrites the descriptive fields of a finished file: title, project and
  // analysis date, keeping SavedDate and SavedBy. Only the 554 header bytes
  // are written, in one write. False, after a box, on any failure.
  static bool EditHeader(const QString& file, const QString& title, const QString& project,
                         double date);
  // Adds `folder` to the database search paths unless one of them names it.
  static void StoreInRegistry(const QString& folder);
  // A new file's path: `folder` (the save folder when empty), the date as
  // "yyyy-mm-dd", a blank and the name's safe characters, a letter when the
  // name is taken, `extension`. Empty when there is no folder.
  static QString GenerateDatabasename(const QString& name, double date, const QString& folder,
                                      const QString& extension);
  // The save folder; asks the user for one when none is set.
  static QString GetDatabaseDirectory();
  // Lets the user choose the save folder; true when an answer was given.
  static bool Configure();

  // The text stored in `SavedBy`: the application title and the long version.
  static QString SavedByText();

 private:
  // The row names of one class, sorted, each with its original 1-based row
  // as Data; Positions[i] is the row whose value goes to place i + 1.
  struct RowList {
    StringList Names;
    std::vector<int32_t> Positions;
  };

  bool WriteBytes(const QByteArray& bytes);
  void ReportError();
  void Discard();
  QByteArray RowNameBlock(const RowList& rows) const;
  // The value bytes of a series; reads `stats` in order of arrival and
  // leaves it in the order it had.
  QByteArray EncodeValues(CStats& stats, const SeriesHeader& header, const RowList& rows) const;

  QString m_filename;
  std::unique_ptr<QSaveFile> m_file;
  qint64 m_length = 0;  // bytes written so far: the file's length
  bool m_failed = false;
  DatabaseHeader m_header;
  std::vector<TQVZMetricClass> m_classes;
  std::vector<QStringList> m_classNames;
  std::vector<std::vector<int32_t>> m_classRowKeys;
  std::vector<std::vector<MetricId>> m_classMetrics;
  std::vector<MetricId> m_pendingMetrics;  // ids of the class being declared
  std::vector<RowList> m_rowLists;
  bool m_classesSaved = false;
  int m_nextClass = 0;              // 1-based; 0 before the first series
  int m_nextSeries = 0;             // 1-based within the class
  MetricDefinitions m_definitions;  // the display format chooses the value encoding
};

}  // namespace ombrelle
