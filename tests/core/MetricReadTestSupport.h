#pragma once

// Shared setup of the access-layer tests: a temporary folder, a settings file
// of its own, and databases written by MetricSave.

#include <utility>
#include <vector>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "core/MetricSave.h"
#include "stats/CStats.h"
#include "support/DateValue.h"
#include "support/Filename.h"
#include "support/ScriptedUiServices.h"
#include "support/SettingsStore.h"

namespace ombrelle::test {

// One class of a save: row names and the values of each metric by row.
struct SaveClass {
  int classNr = 0;
  QStringList rows;
  std::vector<std::pair<int32_t, std::vector<double>>> series;
  int32_t itemCount = -1;  // the class's row count; -1: one row per name
};

// One save of a project.
struct SaveSpec {
  QString title;
  QString project;
  double date = 0;
  std::vector<SaveClass> classes;
};

// A save whose project class holds one row with the given metrics.
inline SaveSpec ProjectSave(const QString& title, const QString& project, double date,
                            std::vector<std::pair<int32_t, double>> metrics) {
  SaveSpec spec{title, project, date, {}};
  SaveClass projectClass{0, {title}, {}};
  for (const auto& [id, value] : metrics) projectClass.series.push_back({id, {value}});
  spec.classes.push_back(std::move(projectClass));
  return spec;
}

// A series of `values` in row order, as the writer takes it.
inline CStats SeriesOf(const std::vector<double>& values) {
  CStats stats;
  stats.Init(static_cast<int32_t>(values.size()));
  for (double v : values) stats.AddValue(v);
  return stats;
}

// Writes `spec` to `path` through the writer; false when it failed.
inline bool WriteSave(const QString& path, const SaveSpec& spec) {
  MetricSave save;
  if (!save.SaveDatabase(path, spec.title, spec.project, spec.date)) return false;
  for (const SaveClass& c : spec.classes) {
    save.AddClass(c.classNr, c.itemCount < 0 ? static_cast<int32_t>(c.rows.size()) : c.itemCount,
                  c.rows);
    for (const auto& s : c.series) save.AddMetricToClass(s.first);
    save.ClassDone();
  }
  if (!save.SaveClasses()) return false;
  for (const SaveClass& c : spec.classes) {
    for (const auto& s : c.series) {
      CStats stats = SeriesOf(s.second);
      if (!save.SaveSeries(stats)) return false;
    }
  }
  return save.Close();
}

inline void SetFileDate(const QString& path, const QDateTime& when) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadWrite));
  ASSERT_TRUE(file.setFileTime(when, QFileDevice::FileModificationTime));
}

// A temporary folder with the settings file inside it; the search paths start
// empty.
class AccessTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_dir.isValid());
    SetSettingsFilePath(m_dir.filePath(QStringLiteral("settings.ini")));
  }
  void TearDown() override { SetSettingsFilePath(QString()); }

  // A folder below the temporary one, made when missing.
  QString Folder(const QString& name) const {
    const QString path = m_dir.filePath(name);
    QDir().mkpath(path);
    return path;
  }
  // Writes a save into `folder` under `name`; the writer adds the folder to
  // the search paths.
  QString Write(const QString& folder, const QString& name, const SaveSpec& spec) const {
    const QString path = JoinPath(folder, name);
    EXPECT_TRUE(WriteSave(path, spec)) << path.toStdString();
    return path;
  }
  // The values of the "Databases" section whose keys are search paths.
  static QStringList StoredPaths() {
    QStringList paths;
    for (const auto& [key, value] : GetAllSettings(QStringLiteral("Databases"))) {
      if (key.toLower().startsWith(QStringLiteral("path"))) paths.append(value);
    }
    return paths;
  }

  QTemporaryDir m_dir;
};

// A temporary folder for files written by MetricSave, with the writer's
// remembered folders cleared and the dialogs scripted.
class SaveFolderTest : public ::testing::Test {
 protected:
  void SetUp() override { DeleteSettingsTree(QStringLiteral("Databases")); }
  QString Path(const QString& name) const { return m_dir.filePath(name); }

  QTemporaryDir m_dir;
  ScopedScriptedUi m_ui;
};

}  // namespace ombrelle::test
