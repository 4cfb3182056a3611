#pragma once

#include <vector>

#include <QString>

#include "measure/ProjectSources.h"

namespace ombrelle {

// Reads a project's history out of a git repository through the `git`
// program itself: the commits of the current branch (first parents only) and
// the source files of a commit's tree. Only reading commands are run, so the
// user's work tree and index are never touched.
class GitHistory {
 public:
  enum class Every { Day, Week, Month };

  struct Commit {
    QString id;       // full object name
    qint64 time = 0;  // committer time, seconds since 1970 (UTC)
  };

  explicit GitHistory(QString repository);

  // The commits of the current branch following first parents, oldest
  // first. False with `error` set when git cannot list them.
  bool Commits(std::vector<Commit>& commits, QString& error) const;

  // The last commit of each day, week (Monday to Sunday) or month in local
  // time, from `commits` ordered oldest first; the result keeps that order.
  static std::vector<Commit> Sample(const std::vector<Commit>& commits, Every every);

  // The project as it stood in `commit`: the `.vbp` of the tree and the files
  // it lists when the tree holds exactly one, otherwise every source file of
  // the tree. The project is named after the `.vbp` or `folderName`. False
  // with `error` set when git fails; files that cannot be measured are warnings.
  bool ReadCommit(const QString& commit, const QString& folderName, ProjectSources& sources,
                  QString& error) const;

 private:
  QString m_repository;
};

}  // namespace ombrelle
