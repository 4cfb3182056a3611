#pragma once

// The window tests' shared start: settings in a temporary INI file, a copy of
// the sample databases on the search path, and the main window on them. The
// start-up state and the settings file in force are put back afterwards.

#include <memory>

#include <gtest/gtest.h>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTabBar>
#include <QTemporaryDir>

#include "shell/StartupState.h"
#include "shell/ui/frmMetrics.h"
#include "support/SettingsStore.h"

namespace ombrelle {

inline void ProcessEvents() {
  for (int i = 0; i < 3; ++i) QApplication::processEvents();
}

class WindowTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_dir.isValid());
    m_previousSettings = SettingsFilePath();
    m_savedState = Startup();
    m_started = true;
    SetSettingsFilePath(m_dir.filePath(QStringLiteral("settings.ini")));
    const QDir samples(QStringLiteral(OMBRELLE_BUILD_DIR "/sample"));
    m_sampleFiles = samples.entryList({QStringLiteral("*.qvz")}, QDir::Files);
    ASSERT_GE(m_sampleFiles.size(), 3)
        << "sample databases missing in " << samples.path().toStdString();
    QDir().mkpath(m_dir.filePath(QStringLiteral("sample")));
    for (const QString& file : m_sampleFiles)
      ASSERT_TRUE(QFile::copy(samples.filePath(file), SamplePath(file)));
    SaveSetting(QStringLiteral("Databases"), QStringLiteral("path1"),
                m_dir.filePath(QStringLiteral("sample")));
  }

  void TearDown() override {
    m_window.reset();
    if (!m_started) return;
    Startup() = m_savedState;
    SetSettingsFilePath(m_previousSettings);
  }

  QString SamplePath(const QString& file) const {
    return m_dir.filePath(QStringLiteral("sample/") + file);
  }

  // A new main window loaded on the samples (and on `inputFile` when given).
  frmMetrics& Open(const QString& inputFile = QString()) {
    m_window = std::make_unique<frmMetrics>();
    m_window->Load(inputFile, false);
    ProcessEvents();
    return *m_window;
  }

  void ClickTab(int page) {
    m_window->Tabs().setCurrentIndex(page);
    ProcessEvents();
  }

  // Triggers the menu entry of that object name, which must be there and on.
  void Trigger(const char* entry) {
    QAction* action = m_window->MenuEntry(QString::fromLatin1(entry));
    ASSERT_NE(action, nullptr) << entry;
    ASSERT_TRUE(action->isEnabled()) << entry;
    action->trigger();
    ProcessEvents();
  }

  QTemporaryDir m_dir;
  QString m_previousSettings;
  StartupState m_savedState;
  bool m_started = false;
  QStringList m_sampleFiles;
  std::unique_ptr<frmMetrics> m_window;
};

}  // namespace ombrelle
