#pragma once

#include <QDialog>

#include "support/UiServices.h"

class QFileSystemModel;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeView;

namespace ombrelle {

// The folder chooser: a folder tree (DirList) and the name box (DirName) in
// step, "&Create", "&View", "Delete all files", "&Select" and "Cancel". The
// buttons call the actions of its FolderRequest; "&Select" closes only when
// the request's checks take the folder.
class SelectFolderDialog : public QDialog {
  Q_OBJECT

 public:
  SelectFolderDialog(const FolderRequest& request, QWidget* parent = nullptr);

  // The folder taken; "" when cancelled.
  QString Folder() const { return m_chosen; }
  QLineEdit& DirName() const { return *m_dirName; }

 private:
  void ShowFolder(const QString& path);
  void UpdateWarning();
  void SelectClicked();

  FolderRequest m_request;
  QFileSystemModel* m_files = nullptr;
  QTreeView* m_tree = nullptr;
  QLineEdit* m_dirName = nullptr;
  QLabel* m_warn = nullptr;
  QString m_chosen;
  bool m_syncing = false;
};

}  // namespace ombrelle
