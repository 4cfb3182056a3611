#pragma once

#include <QGroupBox>

class QLabel;
class QPlainTextEdit;

namespace ombrelle {

struct StatsTexts;

// The statistics frame below the grid: the metric's caption and long name as
// its title, the thirteen value labels with their captions and the
// description box. Shows the texts of the statistics panel model; holds none.
class StatsFrame : public QGroupBox {
  Q_OBJECT

 public:
  explicit StatsFrame(QWidget* parent = nullptr);

  // Puts every text of the panel in its place.
  void ShowTexts(const StatsTexts& texts);

  // The value label named `name` ("lblAvg", ... "lblProblematic"); null when none.
  QLabel* ValueLabel(const QString& name) const;
  QPlainTextEdit* DescriptionBox() const { return m_descr; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QLabel* AddValue(const QString& name, const QString& caption, int row, int column);

  QPlainTextEdit* m_descr = nullptr;
  QLabel* m_avg = nullptr;
  QLabel* m_median = nullptr;
  QLabel* m_stdDev = nullptr;
  QLabel* m_range = nullptr;
  QLabel* m_q5q95 = nullptr;
  QLabel* m_sum = nullptr;
  QLabel* m_count = nullptr;
  QLabel* m_outliers = nullptr;
  QLabel* m_extremeOutliers = nullptr;
  QLabel* m_skew = nullptr;
  QLabel* m_kurtosis = nullptr;
  QLabel* m_limits = nullptr;
  QLabel* m_problematic = nullptr;
};

}  // namespace ombrelle
