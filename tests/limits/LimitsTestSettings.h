#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "support/SettingsStore.h"

namespace ombrelle::test {

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
