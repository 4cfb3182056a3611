#include "support/ui/SelectFolderDialog.h"

#include <QDir>
#include <QFileSystemModel>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace ombrelle {

namespace {

QPushButton* Button(QWidget* parent, const QString& name, const QString& text,
                    const QString& tip = {}) {
  auto* button = new QPushButton(text, parent);
  button->setObjectName(name);
  button->setToolTip(tip);
  button->setAutoDefault(false);
  return button;
}

}  // namespace

SelectFolderDialog::SelectFolderDialog(const FolderRequest& request, QWidget* parent)
    : QDialog(parent), m_request(request) {
  setObjectName(QStringLiteral("SelectFolder"));
  setWindowTitle(request.title.isEmpty() ? QStringLiteral("Select directory") : request.title);
  auto* layout = new QVBoxLayout(this);
  if (!request.prompt.isEmpty()) {
    auto* prompt = new QLabel(request.prompt, this);
    prompt->setWordWrap(true);
    layout->addWidget(prompt);
  }
  m_files = new QFileSystemModel(this);
  m_files->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot | QDir::Drives);
  m_files->setRootPath(QDir::rootPath());
  m_tree = new QTreeView(this);
  m_tree->setObjectName(QStringLiteral("DirList"));
  m_tree->setModel(m_files);
  for (int column = 1; column < m_files->columnCount(); ++column) m_tree->hideColumn(column);
  m_tree->header()->hide();
  layout->addWidget(m_tree, 1);

  auto* nameRow = new QHBoxLayout;
  auto* nameLabel = new QLabel(QStringLiteral("&Directory:"), this);
  m_dirName = new QLineEdit(this);
  m_dirName->setObjectName(QStringLiteral("DirName"));
  nameLabel->setBuddy(m_dirName);
  nameRow->addWidget(nameLabel);
  nameRow->addWidget(m_dirName, 1);
  layout->addLayout(nameRow);
  m_warn = new QLabel(QStringLiteral("Directory not empty."), this);
  m_warn->setObjectName(QStringLiteral("WarnNotEmpty"));
  m_warn->setStyleSheet(QStringLiteral("color: #b00000;"));
  layout->addWidget(m_warn);

  auto* buttons = new QHBoxLayout;
  QPushButton* create = Button(this, QStringLiteral("Create"), QStringLiteral("&Create"));
  QPushButton* view = Button(this, QStringLiteral("ViewFolder"), QStringLiteral("&View"),
                             QStringLiteral("Explore directory contents"));
  QPushButton* kill = Button(this, QStringLiteral("bKill"), QStringLiteral("Delete all files"),
                             QStringLiteral("Delete all files in directory"));
  QPushButton* ok = Button(this, QStringLiteral("OK"), QStringLiteral("&Select"));
  ok->setDefault(true);
  QPushButton* cancel = Button(this, QStringLiteral("Cancel"), QStringLiteral("Cancel"));
  create->setVisible(request.allowCreate && static_cast<bool>(request.create));
  view->setVisible(static_cast<bool>(request.view));
  kill->setVisible(request.showKill && static_cast<bool>(request.kill));
  buttons->addWidget(create);
  buttons->addWidget(view);
  buttons->addWidget(kill);
  buttons->addStretch(1);
  buttons->addWidget(ok);
  buttons->addWidget(cancel);
  layout->addLayout(buttons);

  connect(m_tree->selectionModel(), &QItemSelectionModel::currentChanged, this,
          [this](const QModelIndex& index) {
            if (m_syncing) return;
            m_syncing = true;
            m_dirName->setText(QDir::toNativeSeparators(m_files->filePath(index)));
            m_syncing = false;
            UpdateWarning();
          });
  connect(m_dirName, &QLineEdit::textEdited, this, [this](const QString& text) {
    if (QFileInfo(text).isDir()) {
      m_syncing = true;
      ShowFolder(text);
      m_syncing = false;
    }
    UpdateWarning();
  });
  connect(create, &QPushButton::clicked, this, [this] {
    if (m_request.create(m_dirName->text())) ShowFolder(m_dirName->text());
  });
  connect(view, &QPushButton::clicked, this, [this] { m_request.view(m_dirName->text()); });
  connect(kill, &QPushButton::clicked, this, [this] {
    m_request.kill(m_dirName->text());
    UpdateWarning();
  });
  connect(ok, &QPushButton::clicked, this, &SelectFolderDialog::SelectClicked);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

  resize(480, 420);
  m_dirName->setText(request.folder);
  ShowFolder(request.folder);
  UpdateWarning();
}

void SelectFolderDialog::ShowFolder(const QString& path) {
  const QModelIndex index = m_files->index(path);
  if (!index.isValid()) return;
  m_tree->setCurrentIndex(index);
  m_tree->scrollTo(index, QAbstractItemView::PositionAtCenter);
}

void SelectFolderDialog::UpdateWarning() {
  m_warn->setVisible(m_request.warnNotEmpty && m_request.warnNotEmpty(m_dirName->text()));
}

void SelectFolderDialog::SelectClicked() {
  const QString folder = QDir::fromNativeSeparators(m_dirName->text().trimmed());
  if (folder.isEmpty()) return;
  if (m_request.accept && !m_request.accept(folder)) return;
  m_chosen = folder;
  accept();
}

}  // namespace ombrelle
