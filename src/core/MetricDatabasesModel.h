#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <QString>
#include <QStringList>

#include "core/ListModel.h"

namespace ombrelle {

class MetricRead;

// The database manager, free of widgets: the search paths of the settings
// store, the databases found on them (file, folder, project; the details as
// the tag) and what the user may do with them: add and remove paths, edit a
// header, delete and rename files. Keeps its own access object, made anew
// after every change since database indexes change at each scan.
class MetricDatabasesModel {
 public:
  // Shows the header dialog for a file; true when the header was changed.
  using EditFunction = std::function<bool(const QString& file)>;

  explicit MetricDatabasesModel(EditFunction editor);
  ~MetricDatabasesModel();
  MetricDatabasesModel(const MetricDatabasesModel&) = delete;
  MetricDatabasesModel& operator=(const MetricDatabasesModel&) = delete;

  // Both lists again, with a fresh scan; the details line is emptied.
  void RefreshLists();

  const QStringList& Paths() const { return m_paths; }
  int SelectedPath() const { return m_selectedPath; }
  void SelectPath(int index);

  // The files: Text the file name, sub-item 1 the folder, 2 the project,
  // Tag the details.
  int FileCount() const { return static_cast<int>(m_files.size()); }
  const ListItem& FileItem(int index) const { return m_files.at(static_cast<size_t>(index)); }
  int SelectedFile() const { return m_selectedFile; }
  // Selects a file (-1 for none); the details line shows its tag.
  void SelectFile(int index);
  const QString& FileDetails() const { return m_details; }
  // The selected file's full path; "" without a selection.
  QString CurrentFile() const;
  // Whether edit and delete can act (a file is selected).
  bool FileActionsEnabled() const { return m_selectedFile >= 0; }

  // A click on column `column` (0 File, 1 Path, 2 Project): sorts by it,
  // reversing the order on the second click on the same column.
  void SortClicked(int column);
  int SortColumn() const { return m_sortColumn; }
  bool SortDescending() const { return m_sortDescending; }

  // "&Add path...": a folder from the chooser joins the search paths.
  void AddPath();
  // "&Remove path": every search-path key holding the selected path goes.
  void RemovePath();
  // "&Edit file".
  void EditDatabase();
  // "Delete file...": asks, deletes, selects the next item. True when a file
  // was deleted.
  bool DeleteFile();
  // "&Rename...". True when the file was renamed.
  bool Rename();

  // Called after the lists or the selection change, for the window.
  void SetChangedHandler(std::function<void()> handler) { m_changed = std::move(handler); }

 private:
  void Changed() const;
  void SortFiles();

  EditFunction m_editor;
  std::unique_ptr<MetricRead> m_reader;
  QStringList m_paths;
  int m_selectedPath = -1;
  std::vector<ListItem> m_files;
  int m_selectedFile = -1;
  QString m_details;
  int m_sortColumn = -1;
  bool m_sortDescending = false;
  std::function<void()> m_changed;
};

}  // namespace ombrelle
