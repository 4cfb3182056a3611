#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <vector>

#include "limits/MetricLimits.h"
#include "support/SettingsStore.h"

namespace ombrelle::test {

// The rules of `limits` in order.
inline std::vector<MetricLimitRule> Rules(const MetricLimits& limits) {
  std::vector<MetricLimitRule> rules;
  for (int i = 1; i <= limits.RuleCount(); ++i) rules.push_back(limits.GetRule(i));
  return rules;
}

// The bytes of a file; empty when it cannot be read.
inline QByteArray ReadAll(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A fixture whose settings tree is a fresh file in a temporary folder, so
// every test starts from an empty store.
class LimitsSettingsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_dir.isValid());
    SetSettingsFilePath(m_dir.filePath(QStringLiteral("Ombrelle.ini")));
  }
  void TearDown() override { SetSettingsFilePath(QString()); }

  QString TempPath(const QString& name) const { return m_dir.filePath(name); }

  QTemporaryDir m_dir;
};

}  // namespace ombrelle::test
