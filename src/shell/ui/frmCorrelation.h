#pragma once

#include <QWidget>

#include "core/MetricDefinitions.h"

class QComboBox;
class QPushButton;

namespace ombrelle {

class MetaView;
class PageModel;

// The regression window: an XY chart with its regression line of the metric
// chosen as Y against the one chosen as X, both columns of the current page.
class frmCorrelation : public QWidget {
  Q_OBJECT

 public:
  // Both combos list the page's metric columns with `x` and `y` chosen.
  frmCorrelation(PageModel& page, MetricId x, MetricId y, QWidget* owner);

  // Opens the window for the XY command: X and Y both the current column's
  // metric, on the page of a project in time X the project date.
  static frmCorrelation* Display(PageModel& page, QWidget* owner);

  MetricId MetricX() const;
  MetricId MetricY() const;
  QComboBox* Combo(int index) const { return m_combos[index]; }
  MetaView* View() const { return m_view; }
  // Exchanges the X and Y choices.
  void Switch();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void UpdateChart();

  PageModel& m_page;
  QComboBox* m_combos[2] = {nullptr, nullptr};
  QPushButton* m_switch = nullptr;
  MetaView* m_view = nullptr;
};

}  // namespace ombrelle
