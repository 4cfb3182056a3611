#pragma once

#include <vector>

#include <QDialog>

#include "core/MetricDefinitions.h"

class QComboBox;

namespace ombrelle {

class ChartCommands;

// Five drop-down lists of the page's metrics, the first showing the current
// metric and the others "<None>". OK with all five on "<None>" warns
// "Select 1 or more metrics." and stays open.
class frmSelectManyMetrics : public QDialog {
 public:
  frmSelectManyMetrics(QWidget* parent, const ChartCommands& commands, MetricId selected);

  // The chosen metric ids in the order of the lists, "<None>" left out.
  const std::vector<MetricId>& Metrics() const { return m_metrics; }

  // Runs the dialog; true with the chosen metrics on OK.
  static bool Display(QWidget* parent, const ChartCommands& commands, MetricId selected,
                      std::vector<MetricId>& metrics);

 private:
  void OkClicked();

  QComboBox* m_combos[5] = {};
  std::vector<MetricId> m_metrics;
};

}  // namespace ombrelle
