// Fuzz target: a database file of arbitrary bytes is checked, opened and read
// completely (row names, every series the catalogue knows, single values,
// aggregates). Every input must end in a refusal or a complete read; nothing
// delivered may be longer than the file can back. A file that opens is also
// exported to XML through the database list, as the command line does.
#include <cstdint>
#include <cstdlib>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "FuzzSupport.h"
#include "common/QvzRobustness.h"
#include "core/QVZ2XML.h"
#include "core/QVZRead.h"
#include "support/SettingsStore.h"

using namespace ombrelle;

namespace {

// How every refusal begins; the negative SeriesCount leaves the text empty
// and says it in a box.
bool DescribedRefusal(const QString& text) {
  static const QStringList starts = {
      QStringLiteral("Database header verification failed."),
      QStringLiteral("Metrics database file corrupted. Negative Length at byte "),
      QStringLiteral("Metrics database file too short. Possibly corrupted. Reading byte: "),
      QStringLiteral("Invalid file size."),
      QStringLiteral("Metrics database file includes an unsupported metrics class: "),
      QStringLiteral("Metrics database file corrupted: TQVZMetricClass("),
      QStringLiteral("SeriesHeader.Count<0 at byte "),
      QStringLiteral("SeriesHeader.Count too large at byte "),
      QStringLiteral("Metrics database file too long. Expected: "),
      QStringLiteral("Metrics database file too short. Expected: "),
  };
  if (text.isEmpty()) return true;
  for (const QString& start : starts)
    if (text.startsWith(start)) return true;
  return false;
}

// The export reads its input through the database list, which scans the
// input's folder: the input gets a folder of its own, and the settings a
// private file.
struct ExportFolder {
  QTemporaryDir dir{fuzz::PrivateFolderTemplate()};
  QString input;
  QString output;
  ExportFolder() {
    SetSettingsFilePath(dir.filePath(QStringLiteral("settings.ini")));
    QDir(dir.path()).mkdir(QStringLiteral("in"));
    input = dir.filePath(QStringLiteral("in/fuzzed.qvz"));
    output = dir.filePath(QStringLiteral("fuzzed.xml"));
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static fuzz::MemoryFile file("fuzz-qvz");
  static fuzz::FuzzUi ui;
  static ExportFolder folder;
  if (size > (1u << 20)) return -1;  // keep the corpus small
  if (!file.Write(data, size)) return 0;
  ui.NewInput();

  {
    // The list scan: header and checksum alone.
    QVZRead header;
    DatabaseHeader read;
    header.ReadHeader(file.Path(), read, true, true);
  }

  QVZRead reader;
  QString errorText;
  if (!reader.Opendatabase(file.Path(), errorText)) {
    if (reader.IsFileOpen()) abort();  // a failed open leaves no handle behind
    if (!DescribedRefusal(errorText)) abort();
    return 0;
  }
  const test::ReadAllTally tally = test::ReadWholeDatabase(reader, true);
  const int64_t backed = static_cast<int64_t>(size) + 1;
  if (tally.longestColumn > backed || tally.mostRows > backed) abort();
  QString title, project;
  double date = 0;
  reader.GetProjectInfo(title, project, date);
  (void)reader.GetSavedBy();
  (void)reader.GetVersionText();
  reader.CloseDatabaseFile();

  QFile::remove(folder.input);
  QFile::remove(folder.output);
  QFile copy(folder.input);
  if (!copy.open(QIODevice::WriteOnly) ||
      copy.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size)) !=
          static_cast<qint64>(size))
    return 0;
  copy.close();
  QString output = folder.output;
  if (SaveQVZ2XML(folder.input, output, false) && !QFile::exists(output)) abort();
  return 0;
}
