#pragma once

#include <functional>

#include <QString>
#include <QStringList>

#include "measure/GitHistory.h"

namespace ombrelle {

// The command line of `qvzmeasure`: measures a project (a `.vbp` or a folder)
// into one database, or the history of a git repository into one database per
// sampled commit. Messages are single lines; warnings and errors go to the
// error stream, the paths of the databases written to the output stream.
class MeasureCommand {
 public:
  struct Options {
    QString input;   // the .vbp or folder; with `git`, the repository
    QString output;  // -o: the database (one project) or the folder (history)
    QString title;   // --title; empty: the project's own name
    bool git = false;
    bool hasDate = false;
    double date = 0;  // --date: the analysis date of a single measurement
    bool hasSince = false;
    double since = 0;  // --since: first day of history taken
    GitHistory::Every every = GitHistory::Every::Day;
    bool help = false;
    bool version = false;
  };

  struct Io {
    std::function<void(const QString&)> writeOut;
    std::function<void(const QString&)> writeErr;
    QString currentDir;  // relative names are taken from here
    double now = 0;      // the analysis date when none is given
  };

  // Exit statuses.
  static constexpr int kWritten = 0;   // every database was written
  static constexpr int kFailed = 1;    // nothing to measure, or a database could not be written
  static constexpr int kBadUsage = 2;  // the command line cannot be understood

  // Reads `arguments` (without the program's name). False with a one-line
  // `error` on an unknown option, a missing or doubled value, a bad date.
  static bool Parse(const QStringList& arguments, Options& options, QString& error);

  // Runs the whole command and returns its exit status.
  static int Run(const QStringList& arguments, const Io& io);

  static QString Usage();

 private:
  static int MeasureProject(const Options& options, const Io& io);
  static int MeasureHistory(const Options& options, const Io& io);
};

}  // namespace ombrelle
