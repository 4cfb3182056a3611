#pragma once

#include <vector>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "measure/MeasuredProject.h"

namespace ombrelle {

// The source files of one project, gathered for counting: from a VB6 project
// file (`.vbp`) and the files it lists, or from a folder searched for source
// files. Files that cannot be measured are left out with a warning each, so a
// damaged project still gives what can be counted.
class ProjectSources {
 public:
  // A source file above this size is not read at all (left out with a
  // warning), so that no input makes the program take a huge allocation.
  static constexpr qint64 kMaxFileBytes = 64LL * 1024 * 1024;

  QString
      projectFile;  // the project row's name and the header's project: "App.vbp" or a folder name
  QString title;    // the project's own name ("Name=" of the .vbp) or the folder's name
  std::vector<SourceFile> files;  // in the order the project lists them, or sorted by path
  QStringList warnings;           // "name: reason", one per file left out

  // Reads a `.vbp` file, a folder (searched recursively) or a single source
  // file on disc. A path that is none of these gives no files and a warning.
  static ProjectSources FromPath(const QString& path);

  // The source files a `.vbp` names ("Module=Name; path", "Class=Name; path",
  // "Form=path", "UserControl=path", "Designer=path"), as written, in order,
  // each once; `name` receives the value of "Name=" when given.
  static QStringList ListedFiles(const QByteArray& vbp, QString* name = nullptr);
  // True for names ending in .bas, .cls, .frm, .ctl or .dsr, in any case.
  static bool IsSourceName(const QString& fileName);
  // An empty text when `bytes` can be counted, else the reason it cannot
  // (a NUL byte in the first block: not a text file).
  static QString RefusalOf(const QByteArray& bytes);
  // The reason a file of `size` bytes is refused, or an empty text.
  static QString RefusalOfSize(qint64 size);
  // Orders `files` by name, case-insensitively, so a folder gives the same
  // database on every machine.
  static void SortByName(std::vector<SourceFile>& files);
};

}  // namespace ombrelle
