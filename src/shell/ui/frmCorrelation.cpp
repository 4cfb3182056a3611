#include "shell/ui/frmCorrelation.h"

#include <QComboBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

#include "chart/ZelmChart.h"
#include "core/ListModel.h"
#include "pictures/ui/MetaView.h"
#include "shell/ChartCommands.h"
#include "shell/PageModel.h"

namespace ombrelle {

namespace {

constexpr MetricId kDateMetric = 1000;

}  // namespace

frmCorrelation::frmCorrelation(PageModel& page, MetricId x, MetricId y, QWidget* owner)
    : QWidget(owner, Qt::Window), m_page(page) {
  setObjectName(QStringLiteral("frmCorrelation"));
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(QStringLiteral("Regression analysis"));
  auto* layout = new QGridLayout(this);
  const ChartCommands commands(page);
  const char* captions[2] = {"&X:", "&Y:"};
  const MetricId chosen[2] = {x, y};
  for (int i = 0; i < 2; ++i) {
    ListModel list;
    commands.FillMetricCombo(list, chosen[i], false);
    auto* combo = new QComboBox(this);
    combo->setObjectName(QStringLiteral("cboMetric%1").arg(i));
    for (int k = 0; k < list.ListCount(); ++k) combo->addItem(list.List(k), list.ItemData(k));
    combo->setCurrentIndex(list.ListIndex());
    auto* label = new QLabel(QString::fromLatin1(captions[i]), this);
    label->setBuddy(combo);
    layout->addWidget(label, 0, i * 2);
    layout->addWidget(combo, 0, i * 2 + 1);
    layout->setColumnStretch(i * 2 + 1, 1);
    m_combos[i] = combo;
    connect(combo, &QComboBox::currentIndexChanged, this, [this] { UpdateChart(); });
  }
  m_switch = new QPushButton(QStringLiteral("<->"), this);
  m_switch->setObjectName(QStringLiteral("cmdSwitch"));
  layout->addWidget(m_switch, 0, 4);
  connect(m_switch, &QPushButton::clicked, this, [this] { Switch(); });
  m_view = new MetaView(this);
  m_view->setMinimumSize(200, 150);
  layout->addWidget(m_view, 1, 0, 1, 5);
  layout->setRowStretch(1, 1);
  resize(720, 560);
  UpdateChart();
}

frmCorrelation* frmCorrelation::Display(PageModel& page, QWidget* owner) {
  if (!ChartCommands(page).XYChartPossible()) return nullptr;
  const MetricId y = page.CurrentMetric();
  const MetricId x = page.CurrentPage() == 2 ? kDateMetric : y;
  auto* window = new frmCorrelation(page, x, y, owner);
  window->show();
  return window;
}

MetricId frmCorrelation::MetricX() const { return m_combos[0]->currentData().toInt(); }

MetricId frmCorrelation::MetricY() const { return m_combos[1]->currentData().toInt(); }

void frmCorrelation::Switch() {
  {
    const QSignalBlocker blockX(m_combos[0]);
    const QSignalBlocker blockY(m_combos[1]);
    const int x = m_combos[0]->currentIndex();
    m_combos[0]->setCurrentIndex(m_combos[1]->currentIndex());
    m_combos[1]->setCurrentIndex(x);
  }
  UpdateChart();
}

void frmCorrelation::UpdateChart() {
  if (m_combos[0]->currentIndex() < 0 || m_combos[1]->currentIndex() < 0) return;
  m_view->SetMetafile(
      ChartMetafile(ChartCommands(m_page).GetCorrelationChart(MetricX(), MetricY())));
}

void frmCorrelation::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    close();
    return;
  }
  QWidget::keyPressEvent(event);
}

}  // namespace ombrelle
