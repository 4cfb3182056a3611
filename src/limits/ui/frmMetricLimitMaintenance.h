#pragma once

#include <QDialog>

class QListWidget;
class QPushButton;

namespace ombrelle {

class LimitMaintenanceModel;

// The dialog of the limit sets ("Metric limits"): a thin window over a
// LimitMaintenanceModel, the list on the left and the buttons beside it.
class frmMetricLimitMaintenance : public QDialog {
  Q_OBJECT

 public:
  explicit frmMetricLimitMaintenance(LimitMaintenanceModel& model, QWidget* parent = nullptr);

  // Shows the dialog modally until the user closes it.
  static void Display(QWidget* parent = nullptr);

 private:
  // Runs a button's action and shows the model's state afterwards.
  void Run(void (LimitMaintenanceModel::*action)());
  void Sync();

  LimitMaintenanceModel& m_model;
  QListWidget* m_list = nullptr;
  QPushButton* m_select = nullptr;
  QPushButton* m_edit = nullptr;
  QPushButton* m_remove = nullptr;
  QPushButton* m_export = nullptr;
};

}  // namespace ombrelle
