// The list of databases: scanning the search paths, ordering the saves,
// marking the latest save of each project, and finding a named file.

#include <algorithm>
#include <cstring>
#include <ctime>
#include <limits>
#include <unordered_map>
#include <utility>

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include "core/DatabaseFiles.h"
#include "core/MetricRead.h"
#include "core/MetricSave.h"
#include "support/Codepage.h"
#include "support/DateValue.h"
#include "support/Filename.h"
#include "support/ProgramFolders.h"
#include "support/SettingsStore.h"

namespace ombrelle {

namespace {

template <size_t N>
QString HeaderText(const std::array<char, N>& field) {
  return MultiByteToText(field.data(), static_cast<qsizetype>(N), kCodepageAnsi);
}

// -1, 0 or 1 as `a` sorts before, with or after `b`.
template <class T>
int Compare3(const T& a, const T& b) {
  return a < b ? -1 : (b < a ? 1 : 0);
}

int CompareBytes(const char* a, const char* b, size_t n) {
  const int result = std::memcmp(a, b, n);
  return result < 0 ? -1 : (result > 0 ? 1 : 0);
}

}  // namespace

QString DatabaseEntry::AnalysisStampText() const { return HeaderText(Header.AnalysisStamp); }
QString DatabaseEntry::SavedDateText() const { return HeaderText(Header.SavedDate); }
QString DatabaseEntry::AnalysisDateText() const { return HeaderText(Header.AnalysisDate); }

MetricRead::MetricRead() {
  ScanSearchPaths();
  SortDatabases();
  m_dataState = 2;
}

MetricRead::~MetricRead() {
  ApplyView(DataModes::NoView, 0);
  CloseCurrent();
}

bool MetricRead::IsSearchPathKey(const QString& key) {
  return key.toLower().startsWith(QStringLiteral("path"));
}

void MetricRead::ScanSearchPaths() {
  for (const auto& [key, value] : GetAllSettings(MetricRead::kDatabasesSection)) {
    if (IsSearchPathKey(key)) ScanFolder(value, QString());
  }
  MarkLatestSaves();
}

int MetricRead::ScanFolder(const QString& folder, const QString& namedFile) {
  if (folder.isEmpty()) return 0;
  const QString base = ResolvePath(QString(), folder);
  // A folder that is gone or cannot be read lists nothing: it is passed over.
  const QStringList names = ListDatabaseFiles(base);
  if (names.isEmpty()) return 0;
  // `base` is folded already and the names hold no separators: joining them
  // needs no further folding.
  const QString prefix = base.endsWith(QLatin1Char('/')) ? base : base + QLatin1Char('/');
  const QString named = namedFile.toLower();
  // Lower case maps code by code: the folder's part is lowered once.
  const QString lowerPrefix = prefix.toLower();
  // The time zone is read once for the file dates of the whole folder.
  tzset();
  int added = 0;
  for (const QString& name : names) {
    const QString path = prefix + name;
    QString lower = lowerPrefix + name.toLower();
    if (m_knownPaths.contains(lower) && FindDatabase(path) != 0) continue;
    DatabaseHeader header;
    double fileDate = 0;
    // The checksum is enforced here: a damaged file is left out of the list,
    // and only the file the user named says why.
    if (!named.isEmpty() && lower == named) {
      QVZRead reader;
      if (!reader.ReadHeader(path, header, true, true)) continue;
      reader.CloseDatabaseFile();
      const QDateTime modified = QFileInfo(path).lastModified();
      fileDate = modified.isValid() ? DateFromQDateTime(modified) : 0;
    } else if (!QVZRead::ProbeHeader(path, header, fileDate)) {
      continue;
    }
    AddDatabaseEntry(path, std::move(lower), header, fileDate);
    ++added;
  }
  return added;
}

void MetricRead::AddDatabaseEntry(const QString& path, QString lowerPath,
                                  const DatabaseHeader& header, double fileDate) {
  DatabaseEntry entry;
  entry.Header = header;
  entry.Path = path;
  entry.AnalysisDate = ParseTimestamp14(header.AnalysisStamp.data(),
                                        static_cast<qsizetype>(header.AnalysisStamp.size()));
  entry.FileDate = fileDate;
  entry.Project = QVZRead::ProjectFilename(header);
  entry.Title = QVZRead::Title(header);
  m_knownPaths.insert(std::move(lowerPath));
  m_databases.push_back(std::move(entry));
}

int MetricRead::FindDatabase(const QString& file) const {
  if (!m_knownPaths.contains(file.toLower())) return 0;
  for (int i = 0; i < DatabaseCount(); ++i) {
    if (m_databases[i].Path.compare(file, Qt::CaseInsensitive) == 0) return i + 1;
  }
  return 0;
}

void MetricRead::SortDatabases() {
  // Keys computed once: the project in lower case, then the header texts.
  const int n = DatabaseCount();
  if (n < 2) return;
  std::vector<QString> projects(n);
  for (int i = 0; i < n; ++i) projects[i] = m_databases[i].Project.toLower();
  auto compare = [&](int a, int b) {
    const DatabaseEntry& x = m_databases[a];
    const DatabaseEntry& y = m_databases[b];
    int c = Compare3(projects[a], projects[b]);
    if (c == 0) c = CompareBytes(x.Header.AnalysisStamp.data(), y.Header.AnalysisStamp.data(), 14);
    if (c == 0) c = CompareBytes(x.Header.SavedDate.data(), y.Header.SavedDate.data(), 10);
    if (c == 0) c = Compare3(x.FileDate, y.FileDate);
    return c;
  };
  // Each entry's rank on the key, equal keys sharing a rank.
  std::vector<int> byKey(n);
  for (int i = 0; i < n; ++i) byKey[i] = i;
  std::sort(byKey.begin(), byKey.end(), [&](int a, int b) { return compare(a, b) < 0; });
  std::vector<int> rank(n);
  for (int k = 0, r = 0; k < n; ++k) {
    if (k > 0 && compare(byKey[k - 1], byKey[k]) != 0) ++r;
    rank[byKey[k]] = r;
  }
  // The order of a selection sort, in which a later position replaces the
  // pick only when strictly smaller and the pick swaps places with position
  // i, so that equal entries end up as that sort leaves them. A tournament
  // tree over the positions finds each pick: the smallest rank, then the
  // smallest position; a position already placed holds no rank.
  constexpr int kPlaced = std::numeric_limits<int>::max();
  int leaves = 1;
  while (leaves < n) leaves *= 2;
  std::vector<std::pair<int, int>> tree(2 * static_cast<size_t>(leaves), {kPlaced, kPlaced});
  std::vector<int> at(n);  // entry now at each position
  auto set = [&](int position, int value) {
    size_t node = static_cast<size_t>(leaves + position);
    tree[node] = {value, position};
    for (node /= 2; node >= 1; node /= 2) tree[node] = std::min(tree[2 * node], tree[2 * node + 1]);
  };
  for (int p = 0; p < n; ++p) {
    at[p] = p;
    tree[static_cast<size_t>(leaves + p)] = {rank[p], p};
  }
  for (int node = leaves - 1; node >= 1; --node)
    tree[node] = std::min(tree[2 * node], tree[2 * node + 1]);
  for (int i = 0; i < n - 1; ++i) {
    const int pick = tree[1].second;
    if (pick != i) {
      std::swap(at[i], at[pick]);
      set(pick, rank[at[pick]]);
    }
    set(i, kPlaced);
  }
  std::vector<DatabaseEntry> sorted;
  sorted.reserve(n);
  for (int p = 0; p < n; ++p) sorted.push_back(std::move(m_databases[at[p]]));
  m_databases = std::move(sorted);
}

void MetricRead::MarkLatestSaves() {
  // The newest save of a project: the greatest stamp, then saved date, then
  // file date, then the later position in the list.
  std::unordered_map<std::u16string, int> best;
  for (int i = 0; i < DatabaseCount(); ++i) {
    DatabaseEntry& entry = m_databases[i];
    entry.Latest = false;
    const QString key = entry.Project.toLower();
    auto [it, inserted] = best.try_emplace(key.toStdU16String(), i);
    if (inserted) continue;
    const DatabaseEntry& held = m_databases[it->second];
    int c = CompareBytes(entry.Header.AnalysisStamp.data(), held.Header.AnalysisStamp.data(), 14);
    if (c == 0) c = CompareBytes(entry.Header.SavedDate.data(), held.Header.SavedDate.data(), 10);
    if (c == 0) c = Compare3(entry.FileDate, held.FileDate);
    if (c >= 0) it->second = i;  // at a tie the later position wins
  }
  for (const auto& [key, index] : best) m_databases[index].Latest = true;
}

int MetricRead::FindFirstDatabases() {
  const QString program =
      QCoreApplication::instance() ? QCoreApplication::applicationDirPath() : QString();
  return FindFirstDatabases(QDir::currentPath(), program);
}

int MetricRead::FindFirstDatabases(const QString& currentFolder, const QString& programFolder) {
  int found = 0;
  QStringList scanned;
  auto scan = [&](const QString& folder) {
    // Started inside the program's sample folder, the folder is read once.
    const QString canonical = QFileInfo(folder).canonicalFilePath();
    if (!canonical.isEmpty()) {
      if (scanned.contains(canonical)) return 0;
      scanned.append(canonical);
    }
    const int added = ScanFolder(folder, QString());
    if (added > 0) MetricSave::StoreInRegistry(folder);
    found += added;
    return added;
  };
  scan(currentFolder);
  if (found == 0 && !programFolder.isEmpty()) scan(programFolder);
  if (!programFolder.isEmpty()) scan(ProgramDataFolder(programFolder, QStringLiteral("sample")));
  if (found > 0) {
    SortDatabases();
    MarkLatestSaves();
  }
  return found;
}

int MetricRead::LocateAndOpenDatabase(const QString& file, bool remember) {
  if (file.isEmpty()) return 0;
  const QString path = ResolvePath(QString(), file);
  int database = FindDatabase(path);
  if (database != 0) return database;
  const QString folder = FileFolder(path);
  if (!FolderExists(folder)) return 0;
  ScanFolder(folder, path);
  SortDatabases();
  MarkLatestSaves();
  database = FindDatabase(path);
  if (remember) MetricSave::StoreInRegistry(folder);
  return database;
}

}  // namespace ombrelle
