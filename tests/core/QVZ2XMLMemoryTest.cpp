// The memory of the XML export stays flat: exporting the largest sample
// database raises the peak resident memory of a fresh process by about a
// column of values and the row names, never by the size of the output.

#include <cstdio>
#include <cstring>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include "core/QVZ2XML.h"
#include "support/ScriptedUiServices.h"

namespace ombrelle {
namespace {

// A field of /proc/self/status in kilobytes, -1 when missing.
long long StatusKilobytes(const char* field) {
  FILE* status = std::fopen("/proc/self/status", "r");
  if (!status) return -1;
  char line[256];
  long long value = -1;
  const size_t length = std::strlen(field);
  while (std::fgets(line, sizeof line, status)) {
    if (std::strncmp(line, field, length) == 0 && line[length] == ':') {
      value = std::atoll(line + length + 1);
      break;
    }
  }
  std::fclose(status);
  return value;
}

// Exports `input` in a child process and gives the growth of its peak
// resident memory over what it held before, in kilobytes; -1 on failure.
// The child exports `warmUp` first, so that the program's code it runs is
// paged in before the measure.
long long ExportPeakGrowth(const QString& warmUp, const QString& input, const QString& output) {
  int pipeFds[2];
  if (::pipe(pipeFds) != 0) return -1;
  const pid_t child = ::fork();
  if (child < 0) return -1;
  if (child == 0) {
    ::close(pipeFds[0]);
    long long growth = -1;
    ScopedScriptedUi ui;
    QString first = output;
    const bool warm = SaveQVZ2XML(warmUp, first, false);
    // The peak starts again from what the process holds now.
    if (FILE* clear = warm ? std::fopen("/proc/self/clear_refs", "w") : nullptr) {
      std::fputs("5", clear);
      std::fclose(clear);
      const long long before = StatusKilobytes("VmRSS");
      QString name = output;
      if (SaveQVZ2XML(input, name, false)) growth = StatusKilobytes("VmHWM") - before;
    }
    const ssize_t written = ::write(pipeFds[1], &growth, sizeof growth);
    ::_exit(written == sizeof growth ? 0 : 1);
  }
  ::close(pipeFds[1]);
  long long growth = -1;
  if (::read(pipeFds[0], &growth, sizeof growth) != sizeof growth) growth = -1;
  ::close(pipeFds[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? growth : -1;
}

TEST(QVZ2XMLMemory, ExportOfTheLargestSampleGrowsByLessThanItsOutput) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the address sanitizer's shadow memory and quarantine hide the export's own";
#endif
  const QDir samples(QStringLiteral(OMBRELLE_BUILD_DIR "/sample"));
  const QFileInfoList files =
      samples.entryInfoList({QStringLiteral("*.qvz")}, QDir::Files, QDir::Size);
  ASSERT_FALSE(files.isEmpty()) << "sample databases missing in " << samples.path().toStdString();
  const QString input = files.first().filePath();  // the largest
  QTemporaryDir dir;
  const QString output = dir.filePath(QStringLiteral("largest.xml"));
  const long long growth = ExportPeakGrowth(files.last().filePath(), input, output);
  ASSERT_GE(growth, 0) << "the export in the child process failed";
  const qint64 xmlKilobytes = QFileInfo(output).size() / 1024;
  const qint64 fileKilobytes = files.first().size() / 1024;
  // The export streams: it holds a column of values, the row names of the
  // file and a buffer of 256 kilobytes, never its output, which is more than
  // eight times the file. (Measured: 6 to 10 MB of growth for 14 MB of XML;
  // more than half of the heap at its peak is the row names as text.)
  EXPECT_GT(xmlKilobytes, 8 * fileKilobytes);
  EXPECT_LT(growth, xmlKilobytes) << "peak grew by " << growth << " kB exporting " << fileKilobytes
                                  << " kB into " << xmlKilobytes << " kB";
  RecordProperty("peak_growth_kB", static_cast<int>(growth));
  std::printf("peak growth %lld kB for a %lld kB database, %lld kB of XML\n", growth,
              static_cast<long long>(fileKilobytes), static_cast<long long>(xmlKilobytes));
}

}  // namespace
}  // namespace ombrelle
