#pragma once

// Shared setup of the page model tests: the sample databases the build wrote,
// reached through a search path in a settings file of the suite's own, a
// grid logic on a fake surface and a view that records what it is told.

#include <memory>
#include <string>
#include <vector>

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "core/MetricRead.h"
#include "grid/GridTestDoubles.h"
#include "grid/OwnerGridLogic.h"
#include "limits/MetricLimits.h"
#include "limits/MetricSelection.h"
#include "shell/PageModel.h"
#include "shell/StartupState.h"
#include "stats/CStats.h"
#include "support/ScriptedUiServices.h"
#include "support/SettingsStore.h"

namespace ombrelle::test {

// Records the model's calls to its window.
class RecordingPageView : public PageView {
 public:
  void TabSelected(int page) override { tabs.push_back(page); }
  void LayoutChanged() override { ++layouts; }
  void DetailsChanged() override { ++details; }
  void StatsChanged() override { ++stats; }
  void MenuChecksChanged() override { ++menuChecks; }
  void SetWindowState(int state) override { windowStates.push_back(state); }
  int GridWidthPixels() const override { return gridWidth; }

  std::vector<int> tabs;
  std::vector<int> windowStates;
  int layouts = 0;
  int details = 0;
  int stats = 0;
  int menuChecks = 0;
  int gridWidth = 0;
};

// Index of the first item of `list` that starts with `prefix`, -1 when none.
inline int ItemStartingWith(const ListModel& list, const QString& prefix) {
  for (int i = 0; i < list.ListCount(); ++i)
    if (list.List(i).startsWith(prefix)) return i;
  return -1;
}

inline QString SampleFolder() { return QStringLiteral(OMBRELLE_BUILD_DIR "/sample"); }

class PageModelTest : public ::testing::Test {
 public:
  static void SetUpTestSuite() {
    s_settings = std::make_unique<QTemporaryDir>();
    SetSettingsFilePath(s_settings->filePath(QStringLiteral("settings.ini")));
  }
  static void TearDownTestSuite() { s_settings.reset(); }

  void SetUp() override {
    ASSERT_TRUE(QDir(SampleFolder()).exists()) << "sample databases missing";
    SaveSetting(QStringLiteral("Databases"), QStringLiteral("Path1"), SampleFolder());
    MetricLimits::SetCurrentLimitID(LimitSet::Default);
    MetricSelection::SetCurrent(SelectionSet::All);
    Startup().DisplayCharts = true;
    StartModel();
  }

  void StartModel(const QString& commandLineDatabase = QString()) {
    model.reset();
    view = RecordingPageView();
    model = std::make_unique<PageModel>();
    grid = std::make_unique<OwnerGridLogic>(nullptr, &host);
    model->AttachGrid(*grid);
    model->SetView(&view);
    model->Start(commandLineDatabase);
  }

  // The text and colour the grid would paint in a cell.
  std::pair<QString, quint32> Cell(int row, int column) {
    QString text;
    quint32 colour = grid->ForeColor();
    model->DataRequest(row, column, text, colour);
    return {text, colour};
  }

  // 1-based index of the first database of `project` ("Harbour").
  int FirstDatabaseOf(const QString& project) const {
    const MetricRead& reader = model->Reader();
    for (int i = 1; i <= reader.DatabaseCount(); ++i)
      if (reader.Database(i).Title.startsWith(project)) return i;
    return 0;
  }
  int SavesOf(const QString& project) const {
    int n = 0;
    const MetricRead& reader = model->Reader();
    for (int i = 1; i <= reader.DatabaseCount(); ++i)
      n += reader.Database(i).Title.startsWith(project) ? 1 : 0;
    return n;
  }

  // Shows `page` on the first analysis whose name starts with `analysis`.
  void OpenAnalysis(int page, const QString& analysis) {
    model->TabClicked(page);
    const int item = ItemStartingWith(model->Combo(PageCombo::Analysis), analysis);
    ASSERT_GE(item, 0) << analysis.toStdString();
    model->ChooseComboItem(PageCombo::Analysis, item);
  }

  // Places the grid's cursor on the column of `metric` (not rotated).
  void CursorOnMetric(MetricId metric) {
    const int column = model->FindGridColumn(metric);
    ASSERT_GT(column, 0) << "metric " << metric << " not on page " << model->CurrentPage();
    grid->PlaceCursor(grid->GetCurRow() < 1 ? 1 : grid->GetCurRow(), column + 1);
  }

  static inline std::unique_ptr<QTemporaryDir> s_settings;
  ScopedScriptedUi scripted;
  FakeGridHost host{QSize(1200, 600)};
  RecordingPageView view;
  std::unique_ptr<OwnerGridLogic> grid;
  std::unique_ptr<PageModel> model;
};

}  // namespace ombrelle::test
