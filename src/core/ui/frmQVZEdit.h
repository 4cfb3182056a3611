#pragma once

#include <QDialog>

#include "core/QVZEditModel.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace ombrelle {

// The header dialog of one database: a thin binding of QVZEditModel.
class frmQVZEdit : public QDialog {
  Q_OBJECT

 public:
  explicit frmQVZEdit(QWidget* parent = nullptr);

  // Reads `file` into the dialog; false (after a box) when it cannot be opened.
  bool Load(const QString& file);
  // Shows the dialog modally for `file`; true when the header was changed.
  static bool Display(const QString& file, QWidget* parent = nullptr);

  QVZEditModel& Model() { return m_model; }
  QLineEdit& TitleEdit() const { return *m_title; }
  QLineEdit& ProjectEdit() const { return *m_project; }
  QLineEdit& DateEdit() const { return *m_date; }
  QPushButton& SaveButton() const { return *m_save; }
  QPushButton& CancelButton() const { return *m_cancel; }

 private:
  void SaveClicked();

  QVZEditModel m_model;
  QLineEdit* m_title = nullptr;
  QLineEdit* m_project = nullptr;
  QLineEdit* m_date = nullptr;
  QLabel* m_saved = nullptr;
  QLabel* m_version = nullptr;
  QLabel* m_fileDate = nullptr;
  QLabel* m_flags = nullptr;
  QPushButton* m_save = nullptr;
  QPushButton* m_cancel = nullptr;
};

}  // namespace ombrelle
