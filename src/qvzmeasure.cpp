// Entry point of qvzmeasure: hands the arguments, the standard streams, the
// current folder and the clock to the measuring command. No windows: messages
// of the database writer reach standard error through the console service.
#include <cstdio>

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QStringList>

#include "measure/MeasureCommand.h"
#include "support/DateValue.h"

namespace {

void WriteLine(FILE* stream, const QString& line) {
  const QByteArray bytes = line.toUtf8();
  std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stream);
  std::fputc('\n', stream);
  std::fflush(stream);
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication app(argc, argv);
  QCoreApplication::setApplicationName(QStringLiteral("qvzmeasure"));
  QStringList arguments;
  for (int i = 1; i < argc; ++i) arguments.append(QString::fromLocal8Bit(argv[i]));

  ombrelle::MeasureCommand::Io io;
  io.writeOut = [](const QString& line) { WriteLine(stdout, line); };
  io.writeErr = [](const QString& line) { WriteLine(stderr, line); };
  io.currentDir = QDir::currentPath();
  io.now = ombrelle::DateFromQDateTime(QDateTime::currentDateTime());
  return ombrelle::MeasureCommand::Run(arguments, io);
}
