#pragma once

#include <memory>

#include <QDialog>

class QComboBox;
class QFrame;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace ombrelle {

class MetricLimitsDialogModel;
class OwnerGrid;

// The rules dialog of one limit set: a thin window over a
// MetricLimitsDialogModel, with the rules on an OwnerGrid and the edit frame
// below it.
class frmMetricLimits : public QDialog {
  Q_OBJECT

 public:
  frmMetricLimits(MetricLimitsDialogModel& model, QWidget* parent = nullptr);
  ~frmMetricLimits() override;

  // Shows the dialog modally over `model`; true when the user accepted.
  static bool Display(MetricLimitsDialogModel& model, QWidget* parent = nullptr);
  // Hands Display down to MetricLimits, whose Edit and View then show it.
  static void Install();

  OwnerGrid& Grid() const { return *m_grid; }

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  class GridOwner;

  void BuildWidgets();
  QWidget* BuildEditFrame();
  // Copies the model's state into the widgets.
  void Sync();
  void SyncGrid();
  void SyncFrame();
  void FillMetricCombo();

  MetricLimitsDialogModel& m_model;
  std::unique_ptr<GridOwner> m_gridOwner;
  QLineEdit* m_name = nullptr;
  QLabel* m_nameLabel = nullptr;
  OwnerGrid* m_grid = nullptr;
  QPushButton* m_add = nullptr;
  QPushButton* m_edit = nullptr;
  QPushButton* m_delete = nullptr;
  QGroupBox* m_frame = nullptr;
  QComboBox* m_class = nullptr;
  QComboBox* m_metric = nullptr;
  QComboBox* m_condition = nullptr;
  QLineEdit* m_limit[2] = {nullptr, nullptr};
  QLabel* m_rangeLine = nullptr;
  QLabel* m_metricName = nullptr;
  QPushButton* m_save = nullptr;
  QPushButton* m_discard = nullptr;
  QPushButton* m_ok = nullptr;
  QPushButton* m_cancel = nullptr;
  QLabel* m_readOnly = nullptr;
};

}  // namespace ombrelle
