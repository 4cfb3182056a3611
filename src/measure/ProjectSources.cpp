#include "measure/ProjectSources.h"

#include <algorithm>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include "support/Codepage.h"
#include "support/DateValue.h"

namespace ombrelle {

namespace {

// The keys of a project file whose values name a source file; the first two
// carry the module's name before a semicolon.
bool IsNamedKey(const QString& key) {
  return key.compare(u"Module", Qt::CaseInsensitive) == 0 ||
         key.compare(u"Class", Qt::CaseInsensitive) == 0;
}

bool IsPlainKey(const QString& key) {
  return key.compare(u"Form", Qt::CaseInsensitive) == 0 ||
         key.compare(u"UserControl", Qt::CaseInsensitive) == 0 ||
         key.compare(u"Designer", Qt::CaseInsensitive) == 0;
}

QString Unquoted(QString text) {
  text = text.trimmed();
  if (text.size() >= 2 && text.startsWith(u'"') && text.endsWith(u'"'))
    text = text.mid(1, text.size() - 2);
  return text;
}

// `relative` (backslashes or slashes) under `base`, each part matched without
// regard to case where the exact spelling does not exist, as the system the
// projects come from would. Empty when some part is not there.
QString ResolveWithoutCase(const QString& base, const QString& relative) {
  QString path = relative;
  path.replace(u'\\', u'/');
  if (path.size() >= 2 && path[1] == u':') return QString();  // a drive of another machine
  QString current = path.startsWith(u'/') ? QStringLiteral("/") : base;
  const QStringList parts = path.split(u'/', Qt::SkipEmptyParts);
  for (qsizetype i = 0; i < parts.size(); ++i) {
    const QString& part = parts[i];
    if (part == u".") continue;
    if (part == u"..") {
      current = QFileInfo(current).path();
      continue;
    }
    const QDir dir(current);
    const bool last = i + 1 == parts.size();
    if (QFileInfo::exists(dir.filePath(part))) {
      current = dir.filePath(part);
      continue;
    }
    const QDir::Filters filters =
        (last ? QDir::Files : QDir::Dirs) | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    QString found;
    for (const QString& entry : dir.entryList(filters, QDir::Name)) {
      if (entry.compare(part, Qt::CaseInsensitive) == 0) {
        found = entry;
        break;
      }
    }
    if (found.isEmpty()) return QString();
    current = dir.filePath(found);
  }
  return current;
}

// Reads one file on disc into `files`, or adds the reason it was left out.
void ReadSource(const QString& path, const QString& name, ProjectSources& sources) {
  const QFileInfo info(path);
  if (!info.isFile()) {
    sources.warnings << name + QStringLiteral(": not a regular file; left out");
    return;
  }
  QString refusal = ProjectSources::RefusalOfSize(info.size());
  QByteArray bytes;
  if (refusal.isEmpty()) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
      refusal = QStringLiteral("cannot be read (") + file.errorString() + QStringLiteral(")");
    } else {
      // Read no more than the limit even if the file grew since it was looked
      // at: one byte more than its size tells that it grew. Read straight into
      // a buffer of that size, which then only shrinks: no copy on the way.
      const qint64 wanted = std::min(info.size(), ProjectSources::kMaxFileBytes) + 1;
      bytes = QByteArray(wanted, Qt::Uninitialized);
      const qint64 got = file.read(bytes.data(), wanted);
      bytes.resize(std::max<qint64>(got, 0));
      refusal = bytes.size() > ProjectSources::kMaxFileBytes
                    ? ProjectSources::RefusalOfSize(bytes.size())
                    : ProjectSources::RefusalOf(bytes);
    }
  }
  if (!refusal.isEmpty()) {
    sources.warnings << name + QStringLiteral(": ") + refusal + QStringLiteral("; left out");
    return;
  }
  sources.files.push_back({name, bytes, DateFromQDateTime(info.lastModified())});
}

ProjectSources FromProjectFile(const QFileInfo& vbp) {
  ProjectSources sources;
  sources.projectFile = vbp.fileName();
  QFile file(vbp.filePath());
  // A project file is a short list; anything beyond the limit is not one.
  const QByteArray text =
      file.open(QIODevice::ReadOnly) ? file.read(ProjectSources::kMaxFileBytes) : QByteArray();
  if (!file.isOpen()) {
    sources.warnings << vbp.fileName() + QStringLiteral(": cannot be read (") + file.errorString() +
                            QStringLiteral(")");
    return sources;
  }
  QString name;
  const QStringList listed = ProjectSources::ListedFiles(text, &name);
  sources.title = name.isEmpty() ? vbp.completeBaseName() : name;
  const QString base = vbp.absolutePath();
  const QDir baseDir(base);
  for (const QString& entry : listed) {
    const QString path = ResolveWithoutCase(base, entry);
    if (path.isEmpty()) {
      sources.warnings << entry + QStringLiteral(": listed in ") + vbp.fileName() +
                              QStringLiteral(" but not found; left out");
      continue;
    }
    ReadSource(path, QDir::cleanPath(baseDir.relativeFilePath(path)), sources);
  }
  return sources;
}

ProjectSources FromFolder(const QFileInfo& folder) {
  ProjectSources sources;
  const QString root = folder.absoluteFilePath();
  sources.projectFile = QFileInfo(QDir::cleanPath(root)).fileName();
  if (sources.projectFile.isEmpty()) sources.projectFile = QStringLiteral("root");
  sources.title = sources.projectFile;
  const QDir rootDir(root);
  QStringList paths;
  QDirIterator it(root, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
  while (it.hasNext()) {
    const QString path = it.next();
    if (ProjectSources::IsSourceName(path)) paths << path;
  }
  std::sort(paths.begin(), paths.end(), [](const QString& a, const QString& b) {
    const int order = a.compare(b, Qt::CaseInsensitive);
    return order != 0 ? order < 0 : a < b;
  });
  for (const QString& path : paths) ReadSource(path, rootDir.relativeFilePath(path), sources);
  return sources;
}

}  // namespace

ProjectSources ProjectSources::FromPath(const QString& path) {
  const QFileInfo info(path);
  if (info.isDir()) return FromFolder(info);
  if (info.isFile() && IsSourceName(info.fileName())) {
    // One source file on its own is a project of that file.
    ProjectSources sources;
    sources.projectFile = info.fileName();
    sources.title = info.completeBaseName();
    ReadSource(info.absoluteFilePath(), info.fileName(), sources);
    return sources;
  }
  if (info.isFile()) return FromProjectFile(info);
  ProjectSources sources;
  sources.warnings << path + QStringLiteral(": no such file or folder");
  return sources;
}

QStringList ProjectSources::ListedFiles(const QByteArray& vbp, QString* name) {
  // Project files are written in the ANSI code page; UTF-8 ones read the same
  // as far as keys and plain names go.
  const QString text = MultiByteToText(vbp, kCodepageAnsi);
  QStringList files;
  for (QString line : text.split(u'\n')) {
    line = line.trimmed();
    if (line.startsWith(u'[')) break;  // later sections belong to add-ins
    const qsizetype equals = line.indexOf(u'=');
    if (equals <= 0) continue;
    const QString key = line.left(equals).trimmed();
    QString value = line.mid(equals + 1);
    if (name && key.compare(u"Name", Qt::CaseInsensitive) == 0) *name = Unquoted(value);
    if (IsNamedKey(key)) {
      const qsizetype semicolon = value.indexOf(u';');
      if (semicolon < 0) continue;
      value = value.mid(semicolon + 1);
    } else if (!IsPlainKey(key)) {
      continue;
    }
    value = Unquoted(value);
    if (value.isEmpty()) continue;
    const bool known = std::any_of(files.cbegin(), files.cend(), [&](const QString& f) {
      return f.compare(value, Qt::CaseInsensitive) == 0;
    });
    if (!known) files << value;
  }
  return files;
}

bool ProjectSources::IsSourceName(const QString& fileName) {
  static const char* const kExtensions[] = {".bas", ".cls", ".frm", ".ctl", ".dsr"};
  return std::any_of(std::begin(kExtensions), std::end(kExtensions), [&](const char* extension) {
    return fileName.endsWith(QLatin1String(extension), Qt::CaseInsensitive) && fileName.size() > 4;
  });
}

QString ProjectSources::RefusalOf(const QByteArray& bytes) {
  if (QByteArrayView(bytes).first(std::min<qsizetype>(bytes.size(), 8192)).contains('\0'))
    return QStringLiteral("not a text file");
  return QString();
}

QString ProjectSources::RefusalOfSize(qint64 size) {
  if (size <= kMaxFileBytes) return QString();
  return QStringLiteral("larger than %1 MB").arg(kMaxFileBytes / (1024 * 1024));
}

void ProjectSources::SortByName(std::vector<SourceFile>& files) {
  std::stable_sort(files.begin(), files.end(), [](const SourceFile& a, const SourceFile& b) {
    const int order = a.name.compare(b.name, Qt::CaseInsensitive);
    return order != 0 ? order < 0 : a.name < b.name;
  });
}

}  // namespace ombrelle
