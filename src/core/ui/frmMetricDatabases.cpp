#include "core/ui/frmMetricDatabases.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "core/ui/frmQVZEdit.h"
#include "support/ui/WindowPlacementUi.h"

namespace ombrelle {

namespace {

QPushButton* AddButton(QWidget* parent, const QString& name, const QString& text) {
  auto* button = new QPushButton(text, parent);
  button->setObjectName(name);
  button->setAutoDefault(false);
  return button;
}

}  // namespace

frmMetricDatabases::frmMetricDatabases(QWidget* parent)
    : QDialog(parent),
      m_model([this](const QString& file) { return frmQVZEdit::Display(file, this); }) {
  setObjectName(QStringLiteral("frmMetricDatabases"));
  setWindowTitle(QStringLiteral("Ombrelle Databases (*.qvz)"));
  setSizeGripEnabled(true);

  auto* layout = new QVBoxLayout(this);
  auto* pathLabel = new QLabel(QStringLiteral("Search &paths:"), this);
  layout->addWidget(pathLabel);
  auto* pathRow = new QHBoxLayout;
  m_pathList = new QListWidget(this);
  m_pathList->setObjectName(QStringLiteral("PathList"));
  m_pathList->setMaximumHeight(110);
  pathLabel->setBuddy(m_pathList);
  pathRow->addWidget(m_pathList, 1);
  auto* pathButtons = new QVBoxLayout;
  m_addPath = AddButton(this, QStringLiteral("bAddPath"), QStringLiteral("&Add path..."));
  m_removePath = AddButton(this, QStringLiteral("bRemovePath"), QStringLiteral("&Remove path"));
  pathButtons->addWidget(m_addPath);
  pathButtons->addWidget(m_removePath);
  pathButtons->addStretch(1);
  pathRow->addLayout(pathButtons);
  layout->addLayout(pathRow);

  auto* fileLabel = new QLabel(QStringLiteral("&Found *.qvz database files:"), this);
  layout->addWidget(fileLabel);
  auto* fileRow = new QHBoxLayout;
  m_fileList = new QTreeWidget(this);
  m_fileList->setObjectName(QStringLiteral("FileList"));
  m_fileList->setRootIsDecorated(false);
  m_fileList->setUniformRowHeights(true);
  m_fileList->setHeaderLabels(
      {QStringLiteral("File"), QStringLiteral("Path"), QStringLiteral("Project")});
  m_fileList->header()->setSectionsClickable(true);
  m_fileList->header()->setSortIndicatorShown(true);
  m_fileList->setContextMenuPolicy(Qt::CustomContextMenu);
  m_fileList->installEventFilter(this);
  fileLabel->setBuddy(m_fileList);
  fileRow->addWidget(m_fileList, 1);
  auto* fileButtons = new QVBoxLayout;
  m_edit = AddButton(this, QStringLiteral("bEditDatabase"), QStringLiteral("&Edit file"));
  m_delete = AddButton(this, QStringLiteral("bDeleteFile"), QStringLiteral("Delete file..."));
  fileButtons->addWidget(m_edit);
  fileButtons->addWidget(m_delete);
  fileButtons->addStretch(1);
  m_close = AddButton(this, QStringLiteral("bClose"), QStringLiteral("&Done"));
  fileButtons->addWidget(m_close);
  fileRow->addLayout(fileButtons);
  layout->addLayout(fileRow, 1);

  m_details = new QLabel(QStringLiteral("File details"), this);
  m_details->setObjectName(QStringLiteral("lblFileDetails"));
  m_details->setFrameShape(QFrame::StyledPanel);
  m_details->setMinimumHeight(m_details->fontMetrics().height() + 8);
  layout->addWidget(m_details);

  m_popup = new QMenu(this);
  m_popup->setObjectName(QStringLiteral("mPopupFile"));
  m_popupEdit = m_popup->addAction(QStringLiteral("&Edit"));
  m_popupEdit->setObjectName(QStringLiteral("mPopupFileEdit"));
  m_popupDelete = m_popup->addAction(QStringLiteral("&Delete..."));
  m_popupDelete->setObjectName(QStringLiteral("mPopupFileDelete"));
  m_popupRename = m_popup->addAction(QStringLiteral("&Rename..."));
  m_popupRename->setObjectName(QStringLiteral("mPopupRename"));

  connect(m_addPath, &QPushButton::clicked, this, [this] { m_model.AddPath(); });
  connect(m_removePath, &QPushButton::clicked, this, [this] { m_model.RemovePath(); });
  connect(m_edit, &QPushButton::clicked, this, [this] { m_model.EditDatabase(); });
  connect(m_delete, &QPushButton::clicked, this, [this] { m_model.DeleteFile(); });
  connect(m_close, &QPushButton::clicked, this, &QDialog::accept);
  connect(m_popupEdit, &QAction::triggered, this, [this] { m_model.EditDatabase(); });
  connect(m_popupDelete, &QAction::triggered, this, [this] { m_model.DeleteFile(); });
  connect(m_popupRename, &QAction::triggered, this, [this] { m_model.Rename(); });
  connect(m_pathList, &QListWidget::currentRowChanged, this, [this](int row) {
    if (!m_syncing) m_model.SelectPath(row);
  });
  connect(m_fileList, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
    if (!m_syncing) m_model.SelectFile(item ? m_fileList->indexOfTopLevelItem(item) : -1);
  });
  connect(m_fileList, &QTreeWidget::itemDoubleClicked, this, [this] { m_model.EditDatabase(); });
  connect(m_fileList->header(), &QHeaderView::sectionClicked, this,
          [this](int column) { m_model.SortClicked(column); });
  connect(m_fileList, &QWidget::customContextMenuRequested, this, &frmMetricDatabases::ShowPopup);
  m_model.SetChangedHandler([this] { Sync(); });

  resize(820, 480);
  RestoreWindowPlacement(*this);
  m_model.RefreshLists();
}

frmMetricDatabases::~frmMetricDatabases() { m_model.SetChangedHandler({}); }

void frmMetricDatabases::Sync() {
  m_syncing = true;
  m_pathList->clear();
  m_pathList->addItems(m_model.Paths());
  m_pathList->setCurrentRow(m_model.SelectedPath());
  m_fileList->clear();
  for (int i = 0; i < m_model.FileCount(); ++i) {
    const ListItem& entry = m_model.FileItem(i);
    QStringList columns{entry.Text};
    columns << entry.SubItems;
    auto* item = new QTreeWidgetItem(m_fileList, columns.mid(0, 3));
    item->setToolTip(0, entry.Tag);
  }
  if (m_model.SortColumn() >= 0)
    m_fileList->header()->setSortIndicator(
        m_model.SortColumn(), m_model.SortDescending() ? Qt::DescendingOrder : Qt::AscendingOrder);
  else
    m_fileList->header()->setSortIndicator(-1, Qt::AscendingOrder);
  if (m_model.SelectedFile() >= 0) {
    QTreeWidgetItem* current = m_fileList->topLevelItem(m_model.SelectedFile());
    m_fileList->setCurrentItem(current);
  }
  for (int column = 0; column < 3; ++column) m_fileList->resizeColumnToContents(column);
  m_details->setText(m_model.FileDetails());
  const bool enabled = m_model.FileActionsEnabled();
  m_edit->setEnabled(enabled);
  m_delete->setEnabled(enabled);
  m_popupEdit->setEnabled(enabled);
  m_popupDelete->setEnabled(enabled);
  m_popupRename->setEnabled(enabled);
  m_removePath->setEnabled(m_model.SelectedPath() >= 0);
  m_syncing = false;
}

void frmMetricDatabases::ShowPopup(const QPoint& position) {
  if (QTreeWidgetItem* item = m_fileList->itemAt(position)) m_fileList->setCurrentItem(item);
  m_popup->popup(m_fileList->viewport()->mapToGlobal(position));
}

bool frmMetricDatabases::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_fileList && event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
      m_model.EditDatabase();
      return true;
    }
    if (key == Qt::Key_Delete) {
      m_model.DeleteFile();
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

void frmMetricDatabases::done(int result) {
  SaveWindowPlacement(*this);
  QDialog::done(result);
}

void frmMetricDatabases::Display(QWidget* parent) {
  frmMetricDatabases dialog(parent);
  dialog.exec();
}

}  // namespace ombrelle
