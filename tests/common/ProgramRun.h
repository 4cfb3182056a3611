#pragma once

#include <QString>
#include <QStringList>

namespace ombrelle::test {

// What a finished program run left behind.
struct ProgramRun {
  int exitCode = -1;  // -1 when it crashed or did not end
  QString out;
  QString err;
};

// The built qvzview.
QString BuiltProgram();

// Runs `program` in `folder` as a script or scheduled job would: no display,
// a UTF-8 C locale, runtime folders of the test's own. Fails the test when it
// does not end within two minutes.
ProgramRun RunWithoutDisplay(const QString& program, const QStringList& arguments,
                             const QString& folder);

}  // namespace ombrelle::test
