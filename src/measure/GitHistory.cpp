#include "measure/GitHistory.h"

#include <algorithm>
#include <map>

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QProcess>

namespace ombrelle {

namespace {

// One blob of a tree as `git ls-tree -l` lists it.
struct TreeBlob {
  QString path;
  QByteArray id;
  qint64 size = 0;
};

// Runs git in `repository` with `arguments` and `input` on its standard input.
// False with `error` set when git does not start or does not end with 0.
bool RunGit(const QString& repository, const QStringList& arguments, const QByteArray& input,
            QByteArray& output, QString& error) {
  QProcess git;
  QStringList all = {QStringLiteral("--no-pager"), QStringLiteral("-C"), repository,
                     QStringLiteral("-c"), QStringLiteral("log.showSignature=false")};
  all += arguments;
  // Reading commands only; optional locks would let git refresh the index.
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("GIT_OPTIONAL_LOCKS"), QStringLiteral("0"));
  git.setProcessEnvironment(environment);
  git.start(QStringLiteral("git"), all);
  if (!git.waitForStarted(-1)) {
    error = QStringLiteral("git cannot be started: ") + git.errorString();
    return false;
  }
  if (!input.isEmpty()) git.write(input);
  git.closeWriteChannel();
  git.waitForFinished(-1);
  output = git.readAllStandardOutput();
  if (git.exitStatus() != QProcess::NormalExit || git.exitCode() != 0) {
    QString reason = QString::fromLocal8Bit(git.readAllStandardError()).trimmed();
    reason = reason.section(u'\n', 0, 0);
    error = QStringLiteral("git ") + arguments.value(0) + QStringLiteral(" failed") +
            (reason.isEmpty() ? QString() : QStringLiteral(": ") + reason);
    return false;
  }
  return true;
}

// The period a commit time falls in, as one comparable number.
qint64 PeriodOf(qint64 time, GitHistory::Every every) {
  const QDate day = QDateTime::fromSecsSinceEpoch(time).date();
  switch (every) {
    case GitHistory::Every::Week: {
      // Monday of the week, as a day number.
      return day.toJulianDay() - (day.dayOfWeek() - 1);
    }
    case GitHistory::Every::Month:
      return static_cast<qint64>(day.year()) * 12 + day.month();
    case GitHistory::Every::Day:
    default:
      return day.toJulianDay();
  }
}

bool ListTree(const QString& repository, const QString& commit, std::vector<TreeBlob>& blobs,
              QString& error) {
  QByteArray output;
  if (!RunGit(repository,
              {QStringLiteral("ls-tree"), QStringLiteral("-r"), QStringLiteral("-z"),
               QStringLiteral("-l"), QStringLiteral("--full-tree"), commit},
              {}, output, error))
    return false;
  // "<mode> SP <type> SP <object> SP+ <size> TAB <path> NUL"
  for (const QByteArray& record : output.split('\0')) {
    const qsizetype tab = record.indexOf('\t');
    if (tab < 0) continue;
    const QList<QByteArray> fields = record.left(tab).simplified().split(' ');
    if (fields.size() != 4 || fields[1] != "blob") continue;
    bool ok = false;
    const qint64 size = fields[3].toLongLong(&ok);
    if (!ok) continue;
    blobs.push_back({QString::fromUtf8(record.mid(tab + 1)), fields[2], size});
  }
  return true;
}

// The contents of `blobs` in one `git cat-file --batch` run, in order.
bool ReadBlobs(const QString& repository, const std::vector<const TreeBlob*>& blobs,
               std::vector<QByteArray>& contents, QString& error) {
  contents.clear();
  if (blobs.empty()) return true;
  QByteArray input;
  for (const TreeBlob* blob : blobs) input += blob->id + '\n';
  QByteArray output;
  if (!RunGit(repository, {QStringLiteral("cat-file"), QStringLiteral("--batch")}, input, output,
              error))
    return false;
  // "<object> SP blob SP <size> LF <bytes> LF" for each request.
  qsizetype at = 0;
  for (size_t i = 0; i < blobs.size(); ++i) {
    const qsizetype lineEnd = output.indexOf('\n', at);
    if (lineEnd < 0) break;
    const QList<QByteArray> fields = output.mid(at, lineEnd - at).split(' ');
    bool ok = false;
    const qint64 size = fields.size() == 3 ? fields[2].toLongLong(&ok) : -1;
    if (!ok || size < 0 || lineEnd + 1 + size > output.size()) break;
    contents.push_back(output.mid(lineEnd + 1, size));
    at = lineEnd + 1 + size + 1;
  }
  if (contents.size() != blobs.size()) {
    error = QStringLiteral("git cat-file gave an answer that cannot be read");
    return false;
  }
  return true;
}

}  // namespace

GitHistory::GitHistory(QString repository) : m_repository(std::move(repository)) {}

bool GitHistory::Commits(std::vector<Commit>& commits, QString& error) const {
  QByteArray output;
  if (!RunGit(m_repository,
              {QStringLiteral("log"), QStringLiteral("--first-parent"),
               QStringLiteral("--format=%H %ct"), QStringLiteral("HEAD"), QStringLiteral("--")},
              {}, output, error))
    return false;
  commits.clear();
  for (const QByteArray& line : output.split('\n')) {
    const QList<QByteArray> fields = line.trimmed().split(' ');
    if (fields.size() != 2) continue;
    bool ok = false;
    const qint64 time = fields[1].toLongLong(&ok);
    if (ok) commits.push_back({QString::fromLatin1(fields[0]), time});
  }
  std::reverse(commits.begin(), commits.end());
  return true;
}

std::vector<GitHistory::Commit> GitHistory::Sample(const std::vector<Commit>& commits,
                                                   Every every) {
  std::vector<Commit> sampled;
  for (size_t i = 0; i < commits.size(); ++i) {
    const bool lastOfPeriod = i + 1 == commits.size() || PeriodOf(commits[i + 1].time, every) !=
                                                             PeriodOf(commits[i].time, every);
    if (lastOfPeriod) sampled.push_back(commits[i]);
  }
  return sampled;
}

bool GitHistory::ReadCommit(const QString& commit, const QString& folderName,
                            ProjectSources& sources, QString& error) const {
  sources = ProjectSources();
  std::vector<TreeBlob> blobs;
  if (!ListTree(m_repository, commit, blobs, error)) return false;
  std::map<QString, const TreeBlob*> byLowerPath;
  std::vector<const TreeBlob*> projectFiles;
  for (const TreeBlob& blob : blobs) {
    byLowerPath.emplace(blob.path.toLower(), &blob);
    if (blob.path.endsWith(QLatin1String(".vbp"), Qt::CaseInsensitive))
      projectFiles.push_back(&blob);
  }

  // The files to read, each with the name it is measured under.
  std::vector<std::pair<const TreeBlob*, QString>> chosen;
  if (projectFiles.size() == 1) {
    const TreeBlob& vbp = *projectFiles.front();
    const QString vbpName = QFileInfo(vbp.path).fileName();
    std::vector<QByteArray> text;
    if (vbp.size > ProjectSources::kMaxFileBytes) {
      error = vbp.path + QStringLiteral(": ") + ProjectSources::RefusalOfSize(vbp.size);
      return false;
    }
    if (!ReadBlobs(m_repository, {&vbp}, text, error)) return false;
    QString name;
    const QStringList listed = ProjectSources::ListedFiles(text.front(), &name);
    sources.projectFile = vbpName;
    sources.title = name.isEmpty() ? QFileInfo(vbpName).completeBaseName() : name;
    const QString folder = QFileInfo(vbp.path).path();
    for (QString entry : listed) {
      entry.replace(u'\\', u'/');
      const QString path =
          QDir::cleanPath(folder == u"." ? entry : folder + QLatin1Char('/') + entry);
      const auto found = byLowerPath.find(path.toLower());
      if (path.startsWith(QLatin1String("../")) || found == byLowerPath.end()) {
        sources.warnings << entry + QStringLiteral(": listed in ") + vbpName +
                                QStringLiteral(" but not in the commit; left out");
        continue;
      }
      // Named from the project's folder, as on disc.
      const QString name =
          folder == u"." ? found->second->path : found->second->path.mid(folder.size() + 1);
      chosen.emplace_back(found->second, name);
    }
  } else {
    sources.projectFile = folderName;
    sources.title = folderName;
    for (const TreeBlob& blob : blobs)
      if (ProjectSources::IsSourceName(blob.path)) chosen.emplace_back(&blob, blob.path);
    std::sort(chosen.begin(), chosen.end(), [](const auto& a, const auto& b) {
      const int order = a.second.compare(b.second, Qt::CaseInsensitive);
      return order != 0 ? order < 0 : a.second < b.second;
    });
  }

  std::vector<const TreeBlob*> toRead;
  std::vector<QString> names;
  for (const auto& [blob, name] : chosen) {
    const QString refusal = ProjectSources::RefusalOfSize(blob->size);
    if (!refusal.isEmpty()) {
      sources.warnings << name + QStringLiteral(": ") + refusal + QStringLiteral("; left out");
      continue;
    }
    toRead.push_back(blob);
    names.push_back(name);
  }
  std::vector<QByteArray> contents;
  if (!ReadBlobs(m_repository, toRead, contents, error)) return false;
  for (size_t i = 0; i < contents.size(); ++i) {
    const QString refusal = ProjectSources::RefusalOf(contents[i]);
    if (!refusal.isEmpty()) {
      sources.warnings << names[i] + QStringLiteral(": ") + refusal + QStringLiteral("; left out");
      continue;
    }
    sources.files.push_back({names[i], contents[i]});
  }
  return true;
}

}  // namespace ombrelle
