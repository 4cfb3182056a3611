#include "common/ProgramRun.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>

namespace ombrelle::test {

QString BuiltProgram() { return QStringLiteral(OMBRELLE_BUILD_DIR "/qvzview"); }

ProgramRun RunWithoutDisplay(const QString& program, const QStringList& arguments,
                             const QString& folder) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.remove(QStringLiteral("DISPLAY"));
  environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
  environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
  environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
  const QString runtime = QDir::temp().filePath(QStringLiteral("runtime"));
  QDir().mkpath(runtime);
  QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
  QProcess process;
  process.setProcessEnvironment(environment);
  process.setWorkingDirectory(folder);
  process.start(program, arguments);
  ProgramRun run;
  if (!process.waitForFinished(120000)) {
    process.kill();
    process.waitForFinished();
    ADD_FAILURE() << program.toStdString() << " did not finish";
    return run;
  }
  run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
  run.out = QString::fromUtf8(process.readAllStandardOutput());
  run.err = QString::fromUtf8(process.readAllStandardError());
  return run;
}

}  // namespace ombrelle::test
