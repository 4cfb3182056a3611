#include "limits/ui/frmMetricLimitMaintenance.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "limits/LimitMaintenanceModel.h"
#include "limits/ui/frmMetricLimits.h"

namespace ombrelle {

frmMetricLimitMaintenance::frmMetricLimitMaintenance(LimitMaintenanceModel& model, QWidget* parent)
    : QDialog(parent), m_model(model) {
  setObjectName(QStringLiteral("frmMetricLimitMaintenance"));
  setWindowTitle(LimitMaintenanceModel::Title());
  auto* layout = new QHBoxLayout(this);
  m_list = new QListWidget(this);
  m_list->setObjectName(QStringLiteral("LimitList"));
  m_list->setMinimumSize(260, 220);
  layout->addWidget(m_list, 1);

  auto* buttons = new QVBoxLayout();
  auto button = [this, buttons](const char* name, const QString& caption,
                                void (LimitMaintenanceModel::*action)()) {
    auto* b = new QPushButton(caption, this);
    b->setObjectName(QString::fromLatin1(name));
    b->setAutoDefault(false);
    buttons->addWidget(b);
    connect(b, &QPushButton::clicked, this, [this, action] { Run(action); });
    return b;
  };
  m_select = button("bSelect", QStringLiteral("&Select"), &LimitMaintenanceModel::Select);
  m_select->setDefault(true);
  button("bAdd", QStringLiteral("&Add..."), &LimitMaintenanceModel::Add);
  m_edit = button("bEdit", QStringLiteral("&Edit..."), &LimitMaintenanceModel::Edit);
  m_remove = button("bRemove", QStringLiteral("&Delete..."), &LimitMaintenanceModel::Remove);
  button("bImport", QStringLiteral("&Import..."), &LimitMaintenanceModel::Import);
  m_export = button("bExport", QStringLiteral("E&xport..."), &LimitMaintenanceModel::Export);
  buttons->addStretch(1);
  button("bClose", QStringLiteral("&Close"), &LimitMaintenanceModel::Close);
  layout->addLayout(buttons);

  connect(m_list, &QListWidget::currentRowChanged, this, [this](int row) {
    m_model.SetListIndex(row);
    Sync();
  });
  connect(m_list, &QListWidget::itemDoubleClicked, this,
          [this] { Run(&LimitMaintenanceModel::Select); });
  Sync();
}

void frmMetricLimitMaintenance::Run(void (LimitMaintenanceModel::*action)()) {
  (m_model.*action)();
  if (m_model.Closed()) {
    accept();
    return;
  }
  Sync();
}

void frmMetricLimitMaintenance::Sync() {
  {
    const QSignalBlocker quiet(m_list);
    bool same = m_list->count() == m_model.List().Count();
    for (int i = 0; same && i < m_list->count(); ++i)
      same = m_list->item(i)->text() == m_model.List().At(i).text;
    if (!same) {
      m_list->clear();
      for (const ChoiceList::Item& item : m_model.List().Items()) m_list->addItem(item.text);
    }
    m_list->setCurrentRow(m_model.List().Selected());
  }
  const bool chosen = m_model.HasSelection();
  m_select->setEnabled(chosen);
  m_edit->setEnabled(chosen);
  m_edit->setText(m_model.EditCaption());
  m_remove->setEnabled(m_model.RemoveEnabled());
  m_export->setEnabled(chosen);
}

void frmMetricLimitMaintenance::Display(QWidget* parent) {
  frmMetricLimits::Install();
  LimitMaintenanceModel model;
  frmMetricLimitMaintenance dialog(model, parent);
  dialog.exec();
}

}  // namespace ombrelle
