#include "shell/ui/frmSelectManyMetrics.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/ListModel.h"
#include "shell/ChartCommands.h"
#include "support/UiServices.h"

namespace ombrelle {

frmSelectManyMetrics::frmSelectManyMetrics(QWidget* parent, const ChartCommands& commands,
                                           MetricId selected)
    : QDialog(parent) {
  setObjectName(QStringLiteral("frmSelectManyMetrics"));
  setWindowTitle(QStringLiteral("Select metrics"));
  auto* layout = new QVBoxLayout(this);
  for (int i = 0; i < 5; ++i) {
    ListModel list;
    commands.FillMetricCombo(list, i == 0 ? selected : 0, true);
    auto* combo = new QComboBox(this);
    combo->setObjectName(QStringLiteral("cboMetric%1").arg(i));
    for (int k = 0; k < list.ListCount(); ++k) combo->addItem(list.List(k), list.ItemData(k));
    combo->setCurrentIndex(list.ListIndex());
    layout->addWidget(combo);
    m_combos[i] = combo;
  }
  auto* buttons = new QHBoxLayout();
  buttons->addStretch(1);
  auto* ok = new QPushButton(QStringLiteral("OK"), this);
  ok->setObjectName(QStringLiteral("bOK"));
  ok->setDefault(true);
  auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
  cancel->setObjectName(QStringLiteral("bCancel"));
  buttons->addWidget(ok);
  buttons->addWidget(cancel);
  layout->addLayout(buttons);
  connect(ok, &QPushButton::clicked, this, [this] { OkClicked(); });
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

void frmSelectManyMetrics::OkClicked() {
  std::vector<MetricId> metrics;
  for (QComboBox* combo : m_combos) {
    const MetricId metric = combo->currentData().toInt();
    if (metric != 0) metrics.push_back(metric);
  }
  if (metrics.empty()) {
    Ui().MsgBox(QStringLiteral("Select 1 or more metrics."), MsgStyle::Exclamation, QString());
    return;
  }
  m_metrics = std::move(metrics);
  accept();
}

bool frmSelectManyMetrics::Display(QWidget* parent, const ChartCommands& commands,
                                   MetricId selected, std::vector<MetricId>& metrics) {
  frmSelectManyMetrics dialog(parent, commands, selected);
  if (dialog.exec() != QDialog::Accepted) return false;
  metrics = dialog.Metrics();
  return true;
}

}  // namespace ombrelle
