// Entry point of qvzview: makes the application object the run needs, puts the
// process's arguments, streams and dialog services into the start-up hooks and
// hands over to the shell. The exit status is the shell's: 0, or 1 when a
// report, table or chart switch could not write its file.
#include <cstdio>
#include <memory>

#include <QCoreApplication>
#include <QDir>
#include <QStringList>

#include "core/QVZ2XML.h"
#include "core/ui/frmQVZEdit.h"
#include "shell/Startup.h"
#include "shell/ui/ApplicationObject.h"
#include "shell/ui/MainWindowRoad.h"
#include "support/ui/EchoingUiServices.h"
#include "support/ui/QtUiServices.h"

namespace {

void WriteLine(FILE* stream, const QString& line) {
  const QByteArray bytes = line.toUtf8();
  std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stream);
  std::fputc('\n', stream);
  std::fflush(stream);
}

bool HasDisplay() {
  return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

}  // namespace

int main(int argc, char** argv) {
  // The arguments as the user typed them, before Qt takes out options of its own.
  QStringList arguments;
  for (int i = 0; i < argc; ++i) arguments.append(QString::fromLocal8Bit(argv[i]));

  const bool hasDisplay = HasDisplay();
  const std::unique_ptr<QCoreApplication> app = ombrelle::MakeApplicationObject(
      argc, argv, hasDisplay, ombrelle::TakesBatchReportRoad(arguments));
  QCoreApplication::setApplicationName(QStringLiteral("qvzview"));
  QCoreApplication::setApplicationVersion(ombrelle::ProgramVersion());

  ombrelle::QtUiServices dialogs;
  ombrelle::EchoingUiServices dialogsAndStderr(dialogs);

  ombrelle::StartupHooks hooks;
  hooks.programPath = QCoreApplication::applicationFilePath();
  hooks.currentDir = QDir::currentPath();
  hooks.hasDisplay = hasDisplay;
  hooks.writeOut = [](const QString& line) { WriteLine(stdout, line); };
  hooks.writeErr = [](const QString& line) { WriteLine(stderr, line); };
  if (hasDisplay) {
    // Without a display the console service in force already answers.
    hooks.interactiveUi = &dialogs;
    hooks.batchUi = &dialogsAndStderr;
  }
  hooks.runMainWindow = ombrelle::RunMainWindow;
  hooks.exportXml = ombrelle::SaveQVZ2XML;
  hooks.editHeader = [](const QString& file) { ombrelle::frmQVZEdit::Display(file); };

  return ombrelle::Main(arguments, hooks);
}
