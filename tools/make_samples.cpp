// Writes the sample databases that the viewer finds in the "sample" folder
// beside it on a first start. Run by the build: make_samples <folder>.

#include <cstdio>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include "SampleWriter.h"
#include "support/ConsoleUiServices.h"
#include "support/SettingsStore.h"

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  const QStringList args = QCoreApplication::arguments();
  if (args.size() != 2) {
    std::fprintf(stderr, "usage: make_samples <folder>\n");
    return 2;
  }
  ombrelle::ConsoleUiServices console;
  ombrelle::SetUi(&console);
  // The writer remembers the folder of every file it completes; that memory
  // goes to a throw-away settings file, never to the settings of whoever builds.
  QTemporaryDir settings;
  if (!settings.isValid()) {
    std::fprintf(stderr, "make_samples: no temporary folder\n");
    return 1;
  }
  ombrelle::SetSettingsFilePath(settings.filePath(QStringLiteral("settings.ini")));

  QElapsedTimer timer;
  timer.start();
  const QStringList written = ombrelle::samples::WriteAllSamples(args.at(1));
  if (written.isEmpty()) {
    std::fprintf(stderr, "make_samples: the sample databases could not be written to %s\n",
                 qPrintable(args.at(1)));
    return 1;
  }
  std::printf("Wrote %d sample databases to %s in %lld ms\n", static_cast<int>(written.size()),
              qPrintable(args.at(1)), static_cast<long long>(timer.elapsed()));
  return 0;
}
