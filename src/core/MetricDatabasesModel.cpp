#include "core/MetricDatabasesModel.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <QDir>
#include <QFile>

#include "core/MetricRead.h"
#include "core/MetricSave.h"
#include "support/FileIO.h"
#include "support/Filename.h"
#include "support/SelectFolder.h"
#include "support/SettingsStore.h"
#include "support/Text.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

const QString kDatabasesSection = QStringLiteral("Databases");

void Exclaim(const QString& text) { Ui().MsgBox(text, MsgStyle::Exclamation, QString()); }

// The text an item shows in `column`.
QString ColumnText(const ListItem& item, int column) {
  if (column <= 0) return item.Text;
  return column - 1 < item.SubItems.size() ? item.SubItems.at(column - 1) : QString();
}

}  // namespace

MetricDatabasesModel::MetricDatabasesModel(EditFunction editor) : m_editor(std::move(editor)) {}

MetricDatabasesModel::~MetricDatabasesModel() = default;

void MetricDatabasesModel::Changed() const {
  if (m_changed) m_changed();
}

void MetricDatabasesModel::RefreshLists() {
  BusyCursor busy;
  m_reader.reset();
  m_reader = std::make_unique<MetricRead>();
  ListModel paths;
  MetricRead::ListDatabaseSearchPaths(paths);
  m_paths.clear();
  for (int i = 0; i < paths.ListCount(); ++i) m_paths.append(paths.List(i));
  m_selectedPath =
      m_paths.isEmpty() ? -1 : std::min(std::max(m_selectedPath, 0), int(m_paths.size()) - 1);
  ListModel files;
  m_reader->ListDatabases(files);
  m_files.clear();
  for (int i = 0; i < files.ListCount(); ++i) m_files.push_back(files.Item(i));
  SortFiles();
  m_selectedFile = -1;
  m_details.clear();
  Changed();
}

void MetricDatabasesModel::SelectPath(int index) {
  m_selectedPath = index >= 0 && index < m_paths.size() ? index : -1;
  Changed();
}

void MetricDatabasesModel::SelectFile(int index) {
  m_selectedFile = index >= 0 && index < FileCount() ? index : -1;
  m_details = m_selectedFile >= 0 ? FileItem(m_selectedFile).Tag : QString();
  Changed();
}

QString MetricDatabasesModel::CurrentFile() const {
  if (m_selectedFile < 0) return QString();
  const ListItem& item = FileItem(m_selectedFile);
  return JoinPath(ColumnText(item, 1), item.Text);
}

void MetricDatabasesModel::SortClicked(int column) {
  if (column < 0 || column > 2) return;
  m_sortDescending = column == m_sortColumn ? !m_sortDescending : false;
  m_sortColumn = column;
  const QString selected = CurrentFile();
  SortFiles();
  m_selectedFile = -1;
  for (int i = 0; i < FileCount(); ++i) {
    if (JoinPath(ColumnText(FileItem(i), 1), FileItem(i).Text) == selected && !selected.isEmpty())
      m_selectedFile = i;
  }
  Changed();
}

void MetricDatabasesModel::SortFiles() {
  if (m_sortColumn < 0) return;
  const int column = m_sortColumn;
  const bool descending = m_sortDescending;
  std::stable_sort(
      m_files.begin(), m_files.end(), [column, descending](const ListItem& a, const ListItem& b) {
        const int order =
            QString::compare(ColumnText(a, column), ColumnText(b, column), Qt::CaseInsensitive);
        return descending ? order > 0 : order < 0;
      });
}

void MetricDatabasesModel::AddPath() {
  QString start;
  if (m_selectedPath >= 0)
    start = m_paths.at(m_selectedPath);
  else if (!m_paths.isEmpty())
    start = m_paths.first();
  else
    start = GetSpecialFolder(SpecialFolder::Documents);
  const QString folder =
      SelectFolder::GetAnyFolder(start, QStringLiteral("Select directory"), true);
  if (folder.isEmpty()) return;
  MetricSave::StoreInRegistry(folder);
  RefreshLists();
}

void MetricDatabasesModel::RemovePath() {
  if (m_selectedPath < 0) return;
  const QString path = m_paths.at(m_selectedPath);
  {
    SettingsBatch batch;
    for (const auto& [key, value] : GetAllSettings(kDatabasesSection)) {
      if (key.toLower().startsWith(QStringLiteral("path")) &&
          QString::compare(value, path, Qt::CaseInsensitive) == 0)
        DeleteSetting(kDatabasesSection, key);
    }
  }
  RefreshLists();
}

void MetricDatabasesModel::EditDatabase() {
  const QString file = CurrentFile();
  if (file.isEmpty() || !m_editor) return;
  if (m_editor(file)) RefreshLists();
}

bool MetricDatabasesModel::DeleteFile() {
  if (m_selectedFile < 0) return false;
  const QString file = CurrentFile();
  if (!FileExists(file)) {
    Exclaim(QStringLiteral("File ") + file + QStringLiteral(" doesn't exist."));
    return false;
  }
  // Default button No: a hasty Enter keeps the file.
  if (Ui().MsgBox(QStringLiteral("Delete disk file ") + file + QStringLiteral("?"),
                  MsgStyle::YesNoQuestion + 256, QString()) != MsgResult::Yes)
    return false;
  const QByteArray native = QFile::encodeName(file);
  if (std::remove(native.constData()) != 0) {
    const int number = errno;
    Exclaim(QStringLiteral("Error #") + QString::number(number) +
            QStringLiteral(" deleting file ") + file + QStringLiteral(": ") +
            QString::fromLocal8Bit(std::strerror(number)));
    return false;
  }
  const int index = m_selectedFile;
  m_files.erase(m_files.begin() + index);
  // The item that took the place of the deleted one, else the one before.
  SelectFile(index < FileCount() ? index : FileCount() - 1);
  return true;
}

bool MetricDatabasesModel::Rename() {
  if (m_selectedFile < 0) return false;
  const QString file = CurrentFile();
  if (!FileExists(file)) {
    Exclaim(QStringLiteral("File not found: ") + kCrLf + file);
    return false;
  }
  FileDialogRequest request;
  request.title = QStringLiteral("Rename ") + FileNameOnly(file) + QStringLiteral(" as");
  request.folder = FileFolder(file);
  request.fileName = FileNameOnly(file);
  request.filter = QStringLiteral("Ombrelle database (*.qvz)");
  request.defaultExtension = QStringLiteral("qvz");
  QString target = Ui().SaveFileDialog(request);
  if (target.isEmpty()) return false;
  target = ResolvePath(FileFolder(file), target);
  if (QString::compare(target, file, Qt::CaseInsensitive) == 0) {
    Exclaim(QStringLiteral("Old and new filename are the same."));
    return false;
  }
  if (QString::compare(FileExtension(target), QStringLiteral("qvz"), Qt::CaseInsensitive) != 0) {
    Exclaim(QStringLiteral("New filename extension is not .qvz."));
    return false;
  }
  QFile source(file);
  if (!source.rename(target)) {
    Exclaim(QStringLiteral("Error renaming: ") + source.errorString());
    return false;
  }
  if (FileExists(target)) {
    ListItem& item = m_files.at(static_cast<size_t>(m_selectedFile));
    item.Text = FileNameOnly(target);
    if (item.SubItems.isEmpty()) item.SubItems.append(QString());
    item.SubItems[0] = FileFolder(target);
  }
  Changed();
  return true;
}

}  // namespace ombrelle
