#include "common/OutsideReaders.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QStandardPaths>

namespace ombrelle::test {

void ExpectXmllintAccepts(const QString& path) {
  const QString xmllint = QStandardPaths::findExecutable(QStringLiteral("xmllint"));
  if (xmllint.isEmpty()) GTEST_SKIP() << "xmllint (libxml2-utils) is not installed";
  QProcess process;
  process.start(xmllint, {QStringLiteral("--noout"), path});
  ASSERT_TRUE(process.waitForFinished(60000));
  EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
  EXPECT_TRUE(process.readAllStandardError().isEmpty());
}

}  // namespace ombrelle::test

namespace ombrelle::test {

void ExpectXmllintHtmlAccepts(const QString& path) {
  const QString xmllint = QStandardPaths::findExecutable(QStringLiteral("xmllint"));
  if (xmllint.isEmpty()) GTEST_SKIP() << "xmllint (libxml2-utils) is not installed";
  QProcess process;
  process.start(xmllint, {QStringLiteral("--html"), QStringLiteral("--noout"), path});
  ASSERT_TRUE(process.waitForFinished(60000));
  EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
  const QByteArray errors = process.readAllStandardError();
  EXPECT_TRUE(errors.isEmpty()) << errors.toStdString();
}

QList<QStringList> PythonCsvRows(const QString& path, const QString& delimiter,
                                 const QString& encoding) {
  QList<QStringList> rows;
  const QString python = QStandardPaths::findExecutable(QStringLiteral("python3"));
  if (python.isEmpty()) {
    ADD_FAILURE() << "python3 is not installed";
    return rows;
  }
  // Each row comes back as one line of JSON, so that any character survives.
  const QString script = QStringLiteral(
      "import csv, json, sys\n"
      "with open(sys.argv[1], newline='', encoding=sys.argv[3]) as f:\n"
      "    for row in csv.reader(f, delimiter=sys.argv[2]):\n"
      "        print(json.dumps(row))\n");
  QProcess process;
  process.start(python, {QStringLiteral("-c"), script, path, delimiter, encoding});
  if (!process.waitForFinished(60000)) {
    ADD_FAILURE() << "python3 did not finish";
    return rows;
  }
  EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
  const QList<QByteArray> lines = process.readAllStandardOutput().split('\n');
  for (const QByteArray& line : lines) {
    if (line.trimmed().isEmpty()) continue;
    const QJsonArray array = QJsonDocument::fromJson(line).array();
    QStringList row;
    for (const QJsonValue& value : array) row << value.toString();
    rows << row;
  }
  return rows;
}

}  // namespace ombrelle::test

#include <QImage>

namespace ombrelle::test {

namespace {

// Runs `program` with `arguments`, feeding `input`; the standard output, or
// an empty array and a test failure.
QByteArray RunReader(const QString& program, const QStringList& arguments,
                     const QByteArray& input = {}) {
  const QString path = QStandardPaths::findExecutable(program);
  if (path.isEmpty()) {
    ADD_FAILURE() << program.toStdString() << " is not installed (scripts/install-deps.sh test)";
    return {};
  }
  QProcess process;
  process.start(path, arguments);
  if (!input.isEmpty()) process.write(input);
  process.closeWriteChannel();
  if (!process.waitForFinished(60000) || process.exitCode() != 0) {
    ADD_FAILURE() << program.toStdString()
                  << " failed: " << process.readAllStandardError().toStdString();
    return {};
  }
  return process.readAllStandardOutput();
}

// A binary PPM (P6, maxval 255) as an image.
QImage FromPpm(const QByteArray& ppm) {
  QImage image;
  if (!image.loadFromData(ppm, "PPM")) ADD_FAILURE() << "not a PPM image";
  return image.convertToFormat(QImage::Format_RGB32);
}

}  // namespace

QImage DecodeWithImageMagick(const QString& path) {
  const QByteArray ppm =
      RunReader(QStringLiteral("convert"),
                {QStringLiteral("-regard-warnings"), path, QStringLiteral("-depth"),
                 QStringLiteral("8"), QStringLiteral("ppm:-")});
  return ppm.isEmpty() ? QImage() : FromPpm(ppm);
}

QImage DecodeWithBmptopnm(const QString& path) {
  const QByteArray pnm = RunReader(QStringLiteral("bmptopnm"), {path});
  if (pnm.isEmpty()) return {};
  const QByteArray ppm = RunReader(QStringLiteral("ppmtoppm"), {}, pnm);
  return ppm.isEmpty() ? QImage() : FromPpm(ppm);
}

}  // namespace ombrelle::test

namespace ombrelle::test {

QByteArray RunOutsideReader(const QString& program, const QStringList& arguments) {
  const QString path = QStandardPaths::findExecutable(program);
  if (path.isEmpty()) {
    ADD_FAILURE() << program.toStdString()
                  << " is not installed (scripts/install-deps.sh test installs it)";
    return {};
  }
  QProcess process;
  process.start(path, arguments);
  if (!process.waitForFinished(60000)) {
    ADD_FAILURE() << program.toStdString() << " did not finish";
    process.kill();
    return {};
  }
  const QByteArray out = process.readAllStandardOutput();
  if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
    ADD_FAILURE() << program.toStdString() << " " << arguments.join(' ').toStdString()
                  << " failed: " << process.readAllStandardError().toStdString();
    return {};
  }
  return out;
}

QByteArray Gif2RgbPixels(const QString& path) {
  // gif2rgb writes to a file only; -1 gives one file of red, green, blue.
  const QString out = path + QStringLiteral(".rgb");
  QFile::remove(out);
  RunOutsideReader(QStringLiteral("gif2rgb"),
                   {QStringLiteral("-1"), QStringLiteral("-o"), out, path});
  QFile file(out);
  if (!file.open(QIODevice::ReadOnly)) return {};
  const QByteArray pixels = file.readAll();
  file.close();
  QFile::remove(out);
  return pixels;
}

QByteArray ImageMagickRgbPixels(const QString& path) {
  return RunOutsideReader(QStringLiteral("convert"),
                          {QStringLiteral("-regard-warnings"), path, QStringLiteral("-depth"),
                           QStringLiteral("8"), QStringLiteral("rgb:-")});
}

QString GiftextReport(const QString& path) {
  return QString::fromLatin1(RunOutsideReader(QStringLiteral("giftext"), {path}));
}

}  // namespace ombrelle::test
