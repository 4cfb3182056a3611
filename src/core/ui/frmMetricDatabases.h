#pragma once

#include <QDialog>

#include "core/MetricDatabasesModel.h"

class QLabel;
class QListWidget;
class QMenu;
class QPushButton;
class QTreeWidget;

namespace ombrelle {

// The database manager: a thin binding of MetricDatabasesModel. Edits
// headers with frmQVZEdit.
class frmMetricDatabases : public QDialog {
  Q_OBJECT

 public:
  explicit frmMetricDatabases(QWidget* parent = nullptr);
  ~frmMetricDatabases() override;

  // Shows the manager modally.
  static void Display(QWidget* parent = nullptr);

  MetricDatabasesModel& Model() { return m_model; }
  QListWidget& PathList() const { return *m_pathList; }
  QTreeWidget& FileList() const { return *m_fileList; }
  QLabel& FileDetails() const { return *m_details; }
  QMenu& PopupFile() const { return *m_popup; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void done(int result) override;

 private:
  void Sync();
  void ShowPopup(const QPoint& position);

  MetricDatabasesModel m_model;
  QListWidget* m_pathList = nullptr;
  QTreeWidget* m_fileList = nullptr;
  QLabel* m_details = nullptr;
  QPushButton* m_addPath = nullptr;
  QPushButton* m_removePath = nullptr;
  QPushButton* m_edit = nullptr;
  QPushButton* m_delete = nullptr;
  QPushButton* m_close = nullptr;
  QMenu* m_popup = nullptr;
  QAction* m_popupEdit = nullptr;
  QAction* m_popupDelete = nullptr;
  QAction* m_popupRename = nullptr;
  bool m_syncing = false;
};

}  // namespace ombrelle
