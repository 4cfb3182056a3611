#include "shell/ui/StatsFrame.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPlainTextEdit>

#include "shell/StatsPanel.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

// Values sit in columns of label pairs: caption, value.
constexpr int kPairColumns = 3;

}  // namespace

StatsFrame::StatsFrame(QWidget* parent) : QGroupBox(parent) {
  setObjectName(QStringLiteral("frameStats"));
  auto* layout = new QGridLayout(this);
  layout->setContentsMargins(8, 4, 8, 6);
  layout->setHorizontalSpacing(10);
  layout->setVerticalSpacing(2);

  m_avg = AddValue(QStringLiteral("lblAvg"), StatsPanel::CaptionAvg(), 0, 0);
  m_median = AddValue(QStringLiteral("lblMedian"), StatsPanel::CaptionMedian(), 1, 0);
  m_stdDev = AddValue(QStringLiteral("lblStdDev"), StatsPanel::CaptionStdDev(), 2, 0);
  m_range = AddValue(QStringLiteral("lblRange"), StatsPanel::CaptionRange(), 3, 0);
  m_q5q95 = AddValue(QStringLiteral("lblQ5Q95"), StatsPanel::CaptionQ5Q95(), 4, 0);
  m_sum = AddValue(QStringLiteral("lblSum"), StatsPanel::CaptionSum(), 0, 1);
  m_count = AddValue(QStringLiteral("lblCount"), StatsPanel::CaptionCount(), 1, 1);
  m_outliers = AddValue(QStringLiteral("lblOutliers"), StatsPanel::CaptionOutliers(), 2, 1);
  m_extremeOutliers = AddValue(QStringLiteral("lblExtremeOutliers"),
                               StatsPanel::CaptionExtremeOutliers(), 3, 1);
  m_skew = AddValue(QStringLiteral("lblSkew"), StatsPanel::CaptionSkew(), 4, 1);
  m_kurtosis = AddValue(QStringLiteral("lblKurtosis"), StatsPanel::CaptionKurtosis(), 0, 2);
  m_limits = AddValue(QStringLiteral("lblLimits"), StatsPanel::CaptionLimits(), 1, 2);
  m_problematic = AddValue(QStringLiteral("lblProblematic"), StatsPanel::CaptionProblematic(), 2, 2);

  // The description: read-only, several lines, never holding the focus, so
  // that Tab passes over it; a double click shows the whole text.
  m_descr = new QPlainTextEdit(this);
  m_descr->setObjectName(QStringLiteral("lblDescr"));
  m_descr->setReadOnly(true);
  m_descr->setFocusPolicy(Qt::NoFocus);
  m_descr->setFrameShape(QFrame::NoFrame);
  m_descr->setBackgroundRole(QPalette::Window);
  m_descr->viewport()->setBackgroundRole(QPalette::Window);
  m_descr->setFixedHeight(m_descr->fontMetrics().lineSpacing() * 3 + 8);
  m_descr->viewport()->installEventFilter(this);
  layout->addWidget(m_descr, 5, 0, 1, kPairColumns * 2);
  for (int column = 0; column < kPairColumns; ++column)
    layout->setColumnStretch(column * 2 + 1, 1);
}

QLabel* StatsFrame::AddValue(const QString& name, const QString& caption, int row, int column) {
  auto* layout = static_cast<QGridLayout*>(this->layout());
  auto* label = new QLabel(caption, this);
  auto* value = new QLabel(this);
  value->setObjectName(name);
  value->setTextInteractionFlags(Qt::TextSelectableByMouse);
  value->setMinimumWidth(value->fontMetrics().horizontalAdvance(QStringLiteral("0000.00 .. 0000.00")));
  layout->addWidget(label, row, column * 2);
  layout->addWidget(value, row, column * 2 + 1);
  return value;
}

void StatsFrame::ShowTexts(const StatsTexts& texts) {
  setTitle(texts.Title);
  m_descr->setPlainText(texts.Descr);
  m_avg->setText(texts.Avg);
  m_median->setText(texts.Median);
  m_stdDev->setText(texts.StdDev);
  m_range->setText(texts.Range);
  m_q5q95->setText(texts.Q5Q95);
  m_sum->setText(texts.Sum);
  m_count->setText(texts.Count);
  m_outliers->setText(texts.Outliers);
  m_extremeOutliers->setText(texts.ExtremeOutliers);
  m_skew->setText(texts.Skew);
  m_kurtosis->setText(texts.Kurtosis);
  m_limits->setText(texts.Limits);
  m_problematic->setText(texts.Problematic);
}

QLabel* StatsFrame::ValueLabel(const QString& name) const {
  return findChild<QLabel*>(name, Qt::FindDirectChildrenOnly);
}

bool StatsFrame::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_descr->viewport() && event->type() == QEvent::MouseButtonDblClick) {
    const QString text = m_descr->toPlainText();
    if (!text.isEmpty()) Ui().MsgBox(text, MsgStyle::Information, UiServices::AppTitle());
    return true;
  }
  return QGroupBox::eventFilter(watched, event);
}

}  // namespace ombrelle
