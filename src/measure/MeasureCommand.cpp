#include "measure/MeasureCommand.h"

#include <QDate>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include "measure/MeasureWriter.h"
#include "support/DateValue.h"
#include "support/FormatNum.h"

namespace ombrelle {

namespace {

const QString kProgram = QStringLiteral("qvzmeasure");

void Error(const MeasureCommand::Io& io, const QString& text) {
  io.writeErr(kProgram + QStringLiteral(": ") + text);
}

void Warnings(const MeasureCommand::Io& io, const QStringList& lines, const QString& prefix = {}) {
  for (const QString& line : lines)
    io.writeErr(kProgram + QStringLiteral(": warning: ") + prefix + line);
}

bool ParseDay(const QString& text, double& value) {
  static const QRegularExpression kShape(QStringLiteral("^\\d{4}-\\d{2}-\\d{2}$"));
  if (!kShape.match(text).hasMatch()) return false;
  const QDate day = QDate::fromString(text, Qt::ISODate);
  if (!day.isValid()) return false;
  value = DateFromQDate(day);
  return true;
}

QString Absolute(const QString& path, const QString& currentDir) {
  return QDir::cleanPath(QDir(currentDir).absoluteFilePath(path));
}

QString Subject(int files) {
  return files == 1 ? QStringLiteral("1 file") : QStringLiteral("%1 files").arg(files);
}

// Measures `sources` and writes the database to `path`; true when written.
bool MeasureAndWrite(const ProjectSources& sources, const MeasureWriter::Header& header,
                     const QString& path, const MeasureCommand::Io& io, const QString& prefix) {
  const MeasuredProject project = MeasureSources(sources.projectFile, sources.files);
  Warnings(io, project.warnings, prefix);
  QStringList notes;
  if (!MeasureWriter::Write(project, header, path, &notes)) {
    Error(io, prefix + path + QStringLiteral(": the database could not be written"));
    return false;
  }
  Warnings(io, notes, prefix);
  io.writeOut(path + QStringLiteral(" (") + Subject(static_cast<int>(sources.files.size())) +
              QStringLiteral(")"));
  return true;
}

}  // namespace

QString MeasureCommand::Usage() {
  return QStringLiteral(
      "Usage: qvzmeasure [options] PROJECT.vbp | FOLDER | FILE\n"
      "       qvzmeasure --git REPOSITORY [--since YYYY-MM-DD] [--every day|week|month] [options]\n"
      "\n"
      "Counts Visual Basic 6 and VBA source code (.bas .cls .frm .ctl .dsr) into a metrics\n"
      "database (.qvz) that qvzview opens. A .vbp measures the files it lists; a folder is\n"
      "searched for source files in all its subfolders; a single source file is measured\n"
      "on its own.\n"
      "\n"
      "  -o, --output FILE     the database to write (it must not exist yet); default: a\n"
      "                        name from the day and the project in the save folder of the\n"
      "                        viewer, or in the current folder when none is set\n"
      "  --date YYYY-MM-DD     the analysis date (default: now)\n"
      "  --title TEXT          the database title (default: the project's name)\n"
      "  --git REPOSITORY      measure the current branch's history: one database per\n"
      "                        sampled commit, dated by the commit; -o names the folder\n"
      "  --since YYYY-MM-DD    with --git: leave out commits before this day\n"
      "  --every PERIOD        with --git: the last commit of each day (default), week\n"
      "                        or month\n"
      "  -h, --help            show this text\n"
      "  --version             show the version\n"
      "\n"
      "Exit status: 0 when every database was written, 1 when something could not be\n"
      "measured or written, 2 for a command line that cannot be understood.");
}

bool MeasureCommand::Parse(const QStringList& arguments, Options& options, QString& error) {
  options = Options();
  bool sawDate = false, sawSince = false, sawEvery = false, sawOutput = false, sawTitle = false;
  bool optionsEnded = false;
  QStringList positional;
  for (qsizetype i = 0; i < arguments.size(); ++i) {
    QString argument = arguments[i];
    if (optionsEnded || !argument.startsWith(u'-') || argument == u"-") {
      positional << argument;
      continue;
    }
    if (argument == u"--") {
      optionsEnded = true;
      continue;
    }
    // "--name=value" is the same as "--name value".
    QString inlineValue;
    bool hasInline = false;
    if (argument.startsWith(QLatin1String("--")) && argument.contains(u'=')) {
      inlineValue = argument.section(u'=', 1);
      argument = argument.section(u'=', 0, 0);
      hasInline = true;
    }
    const auto value = [&](QString& target, bool& seen) {
      if (seen) {
        error = argument + QStringLiteral(" is given twice");
        return false;
      }
      seen = true;
      if (hasInline) {
        target = inlineValue;
      } else if (i + 1 < arguments.size()) {
        target = arguments[++i];
      } else {
        error = argument + QStringLiteral(" needs a value");
        return false;
      }
      if (target.isEmpty()) {
        error = argument + QStringLiteral(" needs a value");
        return false;
      }
      return true;
    };
    const bool takesValue = argument == u"-o" || argument == u"--output" || argument == u"--date" ||
                            argument == u"--title" || argument == u"--git" ||
                            argument == u"--since" || argument == u"--every";
    if (hasInline && !takesValue) {
      error = argument + QStringLiteral(" takes no value");
      return false;
    }
    QString text;
    if (argument == u"-h" || argument == u"--help") {
      options.help = true;
    } else if (argument == u"--version") {
      options.version = true;
    } else if (argument == u"-o" || argument == u"--output") {
      if (!value(options.output, sawOutput)) return false;
    } else if (argument == u"--title") {
      if (!value(options.title, sawTitle)) return false;
    } else if (argument == u"--git") {
      if (!value(options.input, options.git)) return false;
    } else if (argument == u"--date" || argument == u"--since") {
      const bool isDate = argument == u"--date";
      if (!value(text, isDate ? sawDate : sawSince)) return false;
      if (!ParseDay(text, isDate ? options.date : options.since)) {
        error = argument + QStringLiteral(" wants a day as YYYY-MM-DD, not \"") + text +
                QStringLiteral("\"");
        return false;
      }
      (isDate ? options.hasDate : options.hasSince) = true;
    } else if (argument == u"--every") {
      if (!value(text, sawEvery)) return false;
      if (text == u"day") {
        options.every = GitHistory::Every::Day;
      } else if (text == u"week") {
        options.every = GitHistory::Every::Week;
      } else if (text == u"month") {
        options.every = GitHistory::Every::Month;
      } else {
        error = QStringLiteral("--every wants day, week or month, not \"") + text +
                QStringLiteral("\"");
        return false;
      }
    } else {
      error = QStringLiteral("unknown option ") + argument;
      return false;
    }
  }
  if (options.help || options.version) return true;
  if (options.git) {
    if (!positional.isEmpty()) {
      error = QStringLiteral("--git takes the repository; \"") + positional.front() +
              QStringLiteral("\" is one name too many");
      return false;
    }
    if (options.hasDate) {
      error = QStringLiteral("--date cannot be used with --git: each commit gives its own date");
      return false;
    }
    return true;
  }
  if (sawSince || sawEvery) {
    error = (sawSince ? QStringLiteral("--since") : QStringLiteral("--every")) +
            QStringLiteral(" needs --git");
    return false;
  }
  if (positional.size() != 1) {
    error = positional.isEmpty() ? QStringLiteral("no project or folder given")
                                 : QStringLiteral("one project or folder at a time, not ") +
                                       QString::number(positional.size());
    return false;
  }
  options.input = positional.front();
  return true;
}

int MeasureCommand::Run(const QStringList& arguments, const Io& io) {
  Options options;
  QString error;
  if (!Parse(arguments, options, error)) {
    Error(io, error + QStringLiteral(" (see qvzmeasure --help)"));
    return kBadUsage;
  }
  if (options.help) {
    for (const QString& line : Usage().split(u'\n')) io.writeOut(line);
    return kWritten;
  }
  if (options.version) {
    io.writeOut(kProgram + QStringLiteral(" ") + VersionText(true));
    return kWritten;
  }
  return options.git ? MeasureHistory(options, io) : MeasureProject(options, io);
}

int MeasureCommand::MeasureProject(const Options& options, const Io& io) {
  const QString input = Absolute(options.input, io.currentDir);
  if (!QFileInfo::exists(input)) {
    Error(io, options.input + QStringLiteral(": no such file or folder"));
    return kFailed;
  }
  const ProjectSources sources = ProjectSources::FromPath(input);
  Warnings(io, sources.warnings);
  if (sources.files.empty()) {
    Error(io, options.input + QStringLiteral(": no source files to measure; no database written"));
    return kFailed;
  }
  MeasureWriter::Header header;
  header.title = options.title.isEmpty() ? sources.title : options.title;
  header.projectFile = sources.projectFile;
  header.analysisDate = options.hasDate ? options.date : io.now;
  QString path;
  if (options.output.isEmpty()) {
    path = MeasureWriter::GeneratedPath(header, MeasureWriter::SaveFolder(io.currentDir));
  } else {
    path = Absolute(options.output, io.currentDir);
    if (QFileInfo::exists(path)) {
      Error(io, options.output + QStringLiteral(" already exists; it is not replaced"));
      return kFailed;
    }
  }
  if (path.isEmpty()) {
    Error(io, QStringLiteral("no free name for the database; give one with -o"));
    return kFailed;
  }
  return MeasureAndWrite(sources, header, path, io, QString()) ? kWritten : kFailed;
}

int MeasureCommand::MeasureHistory(const Options& options, const Io& io) {
  const QString repository = Absolute(options.input, io.currentDir);
  if (!QFileInfo(repository).isDir()) {
    Error(io, options.input + QStringLiteral(": no such folder"));
    return kFailed;
  }
  const GitHistory history(repository);
  std::vector<GitHistory::Commit> commits;
  QString error;
  if (!history.Commits(commits, error)) {
    Error(io, error);
    return kFailed;
  }
  if (options.hasSince) {
    std::erase_if(commits, [&](const GitHistory::Commit& c) {
      return DateFromQDateTime(QDateTime::fromSecsSinceEpoch(c.time)) < options.since;
    });
  }
  commits = GitHistory::Sample(commits, options.every);
  if (commits.empty()) {
    Error(io, options.input + QStringLiteral(": no commits to measure"));
    return kFailed;
  }
  QString folder = MeasureWriter::SaveFolder(io.currentDir);
  if (!options.output.isEmpty()) {
    folder = Absolute(options.output, io.currentDir);
    if (!QDir().mkpath(folder)) {
      Error(io, options.output + QStringLiteral(": the folder cannot be made"));
      return kFailed;
    }
  }
  const QString folderName = QFileInfo(repository).fileName();
  int written = 0;
  bool failed = false;
  for (const GitHistory::Commit& commit : commits) {
    const QString shortId = commit.id.left(10);
    const QString prefix = QStringLiteral("commit ") + shortId + QStringLiteral(": ");
    ProjectSources sources;
    if (!history.ReadCommit(commit.id, folderName, sources, error)) {
      Error(io, prefix + error);
      failed = true;
      continue;
    }
    Warnings(io, sources.warnings, prefix);
    if (sources.files.empty()) {
      Warnings(io, {QStringLiteral("no source files; passed over")}, prefix);
      continue;
    }
    MeasureWriter::Header header;
    header.title = (options.title.isEmpty() ? sources.title : options.title) + QStringLiteral(" ") +
                   commit.id.left(7);
    header.projectFile = sources.projectFile;
    header.analysisDate = DateFromQDateTime(QDateTime::fromSecsSinceEpoch(commit.time));
    // A file in a commit is as old as the commit.
    for (SourceFile& file : sources.files) file.date = header.analysisDate;
    const QString path = MeasureWriter::GeneratedPath(header, folder);
    if (path.isEmpty()) {
      Error(io, prefix + QStringLiteral("no free name for the database"));
      failed = true;
      continue;
    }
    if (MeasureAndWrite(sources, header, path, io, prefix))
      ++written;
    else
      failed = true;
  }
  if (written == 0 && !failed) {
    Error(io,
          options.input + QStringLiteral(": no commit holds source files; no database written"));
    return kFailed;
  }
  return failed || written == 0 ? kFailed : kWritten;
}

}  // namespace ombrelle
