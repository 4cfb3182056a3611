#include "limits/ui/frmMetricSelection.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTabBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "limits/MetricSelectionDialogModel.h"
#include "support/ui/DialogButton.h"

namespace ombrelle {

frmMetricSelection::frmMetricSelection(MetricSelectionDialogModel& model, QWidget* parent)
    : QDialog(parent), m_model(model) {
  setObjectName(QStringLiteral("frmMetricSelection"));
  setWindowTitle(MetricSelectionDialogModel::Title());
  auto* layout = new QVBoxLayout(this);
  auto* columns = new QHBoxLayout();

  auto* left = new QVBoxLayout();
  m_selections = new QListWidget(this);
  m_selections->setObjectName(QStringLiteral("Selections"));
  m_selections->setMinimumWidth(200);
  left->addWidget(m_selections, 1);
  auto* listButtons = new QHBoxLayout();
  m_add = MakeDialogButton(QStringLiteral("bAdd"), QStringLiteral("&Add..."), this);
  m_rename = MakeDialogButton(QStringLiteral("bRename"), QStringLiteral("&Rename..."), this);
  m_delete = MakeDialogButton(QStringLiteral("bDelete"), QStringLiteral("&Delete..."), this);
  for (QPushButton* button : {m_add, m_rename, m_delete}) listButtons->addWidget(button);
  left->addLayout(listButtons);
  columns->addLayout(left);

  auto* right = new QVBoxLayout();
  right->setSpacing(0);
  m_tabs = new QTabBar(this);
  m_tabs->setObjectName(QStringLiteral("Tabs"));
  m_tabs->setExpanding(false);
  m_tabs->setDrawBase(false);
  for (const QString& caption : MetricSelectionDialogModel::TabCaptions()) m_tabs->addTab(caption);
  right->addWidget(m_tabs);
  m_metrics = new QTreeWidget(this);
  m_metrics->setObjectName(QStringLiteral("MetricListview"));
  m_metrics->setRootIsDecorated(false);
  m_metrics->setUniformRowHeights(true);
  m_metrics->setHeaderLabels(
      {MetricSelectionDialogModel::ColumnCaption(1), MetricSelectionDialogModel::ColumnCaption(2)});
  m_metrics->header()->setStretchLastSection(true);
  m_metrics->setColumnWidth(0, 120);
  m_metrics->setMinimumSize(440, 320);
  right->addWidget(m_metrics, 1);
  columns->addLayout(right, 1);
  layout->addLayout(columns, 1);

  m_readOnly = new QLabel(MetricSelectionDialogModel::ReadOnlyText(), this);
  m_readOnly->setObjectName(QStringLiteral("lblReadOnly"));
  m_readOnly->setWordWrap(true);
  layout->addWidget(m_readOnly);
  m_description = new QLabel(this);
  m_description->setObjectName(QStringLiteral("lblDescription"));
  m_description->setWordWrap(true);
  m_description->setMinimumHeight(m_description->fontMetrics().lineSpacing() * 3);
  m_description->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  m_description->setFrameShape(QFrame::StyledPanel);
  layout->addWidget(m_description);

  auto* bottom = new QHBoxLayout();
  bottom->addStretch(1);
  auto* close = MakeDialogButton(QStringLiteral("bClose"), QStringLiteral("&Close"), this);
  close->setDefault(true);
  bottom->addWidget(close);
  layout->addLayout(bottom);

  connect(m_selections, &QListWidget::currentRowChanged, this, [this](int row) {
    m_model.PickSelection(row);
    FillRows();
    Sync();
  });
  connect(m_tabs, &QTabBar::currentChanged, this, [this](int index) {
    m_model.SetTabIndex(index);
    FillRows();
  });
  connect(m_metrics, &QTreeWidget::itemChanged, this, &frmMetricSelection::CheckChanged);
  connect(m_metrics, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
    m_model.SetCurrentRow(item ? m_metrics->indexOfTopLevelItem(item) : -1);
    m_description->setText(m_model.DescriptionText());
  });
  connect(m_add, &QPushButton::clicked, this, [this] {
    m_model.Add();
    FillList();
    FillRows();
    Sync();
  });
  connect(m_rename, &QPushButton::clicked, this, [this] {
    m_model.Rename();
    FillList();
  });
  connect(m_delete, &QPushButton::clicked, this, [this] {
    m_model.Delete();
    FillList();
    FillRows();
    Sync();
  });
  connect(close, &QPushButton::clicked, this, &QDialog::accept);

  FillList();
  FillRows();
  Sync();
}

void frmMetricSelection::FillList() {
  const QSignalBlocker quiet(m_selections);
  m_selections->clear();
  for (const ChoiceList::Item& item : m_model.Selections().Items())
    m_selections->addItem(item.text);
  m_selections->setCurrentRow(m_model.Selections().Selected());
}

void frmMetricSelection::FillRows() {
  const QSignalBlocker quiet(m_metrics);
  m_metrics->clear();
  QList<QTreeWidgetItem*> items;
  for (const MetricSelectionDialogModel::Row& row : m_model.Rows()) {
    auto* item = new QTreeWidgetItem({row.abbreviation, row.description});
    item->setData(0, Qt::UserRole, row.key);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    item->setCheckState(0, row.checked ? Qt::Checked : Qt::Unchecked);
    items << item;
  }
  m_metrics->addTopLevelItems(items);
  m_description->clear();
}

void frmMetricSelection::CheckChanged(QTreeWidgetItem* item, int column) {
  if (column != 0) return;
  const int row = m_metrics->indexOfTopLevelItem(item);
  const bool shown = m_model.SetChecked(row, item->checkState(0) == Qt::Checked);
  // A read-only selection keeps its state: the check springs back.
  if (shown != (item->checkState(0) == Qt::Checked)) {
    const QSignalBlocker quiet(m_metrics);
    item->setCheckState(0, shown ? Qt::Checked : Qt::Unchecked);
  }
}

void frmMetricSelection::Sync() {
  m_readOnly->setVisible(m_model.ReadOnlyLabelVisible());
  m_rename->setEnabled(m_model.RenameEnabled());
  m_delete->setEnabled(m_model.DeleteEnabled());
}

void frmMetricSelection::done(int result) {
  if (!m_done) {
    m_done = true;
    m_changed = m_model.Close();
  }
  QDialog::done(result);
}

bool frmMetricSelection::Display(QWidget* parent) {
  MetricSelectionDialogModel model;
  frmMetricSelection dialog(model, parent);
  dialog.exec();
  return dialog.Changed();
}

}  // namespace ombrelle
