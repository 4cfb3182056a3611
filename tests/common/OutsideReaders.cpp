#include "common/OutsideReaders.h"

#include <gtest/gtest.h>

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
