#include "common/OutsideReaders.h"

#include <gtest/gtest.h>

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
