#include "core/DatabaseFiles.h"

#include <algorithm>
#include <cstring>

#include <QDir>
#include <QFile>

#ifdef Q_OS_UNIX
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#endif

namespace ombrelle {

namespace {

#ifdef Q_OS_UNIX
bool EndsWithQvz(const char* name, size_t length) {
  if (length < 4) return false;
  const char* tail = name + length - 4;
  return tail[0] == '.' && (tail[1] | 0x20) == 'q' && (tail[2] | 0x20) == 'v' &&
         (tail[3] | 0x20) == 'z';
}

// Whether an entry of the folder counts as a file. The folder's own entry
// type answers for plain files and everything else but links, and file
// systems that give no type; a link counts when what it leads to exists
// and is no folder.
bool CountsAsFile(int folderFd, const dirent& entry) {
  unsigned char type = entry.d_type;
  struct stat info {};
  if (type == DT_UNKNOWN) {
    if (::fstatat(folderFd, entry.d_name, &info, AT_SYMLINK_NOFOLLOW) != 0) return false;
    if (S_ISREG(info.st_mode)) return true;
    if (!S_ISLNK(info.st_mode)) return false;
    type = DT_LNK;
  }
  if (type == DT_REG) return true;
  if (type != DT_LNK) return false;
  return ::fstatat(folderFd, entry.d_name, &info, 0) == 0 && !S_ISDIR(info.st_mode);
}
#endif

}  // namespace

QStringList ListDatabaseFiles(const QString& folder) {
#ifdef Q_OS_UNIX
  QStringList names;
  DIR* dir = ::opendir(QFile::encodeName(folder).constData());
  if (!dir) return names;
  const int fd = ::dirfd(dir);
  while (const dirent* entry = ::readdir(dir)) {
    const char* name = entry->d_name;
    if (name[0] == '.') continue;  // hidden, and the folder's own entries
    const size_t length = std::strlen(name);
    if (!EndsWithQvz(name, length) || !CountsAsFile(fd, *entry)) continue;
    names.append(QFile::decodeName(QByteArray::fromRawData(name, static_cast<qsizetype>(length))));
  }
  ::closedir(dir);
  std::sort(names.begin(), names.end());
  return names;
#else
  return QDir(folder).entryList({QStringLiteral("*.qvz")}, QDir::Files, QDir::Name);
#endif
}

}  // namespace ombrelle
