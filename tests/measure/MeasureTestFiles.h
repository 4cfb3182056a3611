#pragma once

// Small helpers of the measuring program's tests: files made on disc and a
// command run whose output lines are kept.

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <gtest/gtest.h>

#include "measure/MeasureCommand.h"
#include "support/DateValue.h"

namespace ombrelle::test {

inline void PutFile(const QString& path, const QByteArray& bytes) {
  ASSERT_TRUE(QDir().mkpath(QFileInfo(path).absolutePath()));
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
  ASSERT_EQ(file.write(bytes), bytes.size());
}

// A module of `procedures` small procedures: more procedures, more lines.
inline QByteArray Module(const QString& name, int procedures) {
  QByteArray text = "Attribute VB_Name = \"" + name.toUtf8() + "\"\r\nOption Explicit\r\n";
  for (int i = 1; i <= procedures; ++i) {
    text += "Public Sub Work" + QByteArray::number(i) + "(ByVal n As Long)\r\n";
    text += "  If n > " + QByteArray::number(i) + " Then n = n - 1 ' step\r\n";
    text += "End Sub\r\n";
  }
  return text;
}

struct CommandRun {
  int status = -1;
  QStringList out;
  QStringList err;
};

// Runs qvzmeasure's command with `arguments` in `currentDir`, the clock at
// 2025-03-04 10:00.
inline CommandRun RunMeasure(const QStringList& arguments, const QString& currentDir) {
  CommandRun run;
  MeasureCommand::Io io;
  io.writeOut = [&](const QString& line) { run.out << line; };
  io.writeErr = [&](const QString& line) { run.err << line; };
  io.currentDir = currentDir;
  io.now = DateSerial(2025, 3, 4) + TimeSerial(10, 0, 0);
  run.status = MeasureCommand::Run(arguments, io);
  return run;
}

inline QStringList QvzFiles(const QString& folder) {
  return QDir(folder).entryList({QStringLiteral("*.qvz")}, QDir::Files, QDir::Name);
}

}  // namespace ombrelle::test
