#pragma once

#include <array>
#include <memory>

#include <QMainWindow>

#include "shell/PageModel.h"

class QAction;
class QComboBox;
class QFrame;
class QLabel;
class QTabBar;

namespace ombrelle {

class ComboBinding;
class MetaView;
class OwnerGrid;
class StatsFrame;

// The program's main window: the tab strip of the seven pages, the combos,
// the details line, the grid, the statistics frame, the two chart places and
// the menus. A thin binding: every event goes to the PageModel it owns, and
// what the model reports back is shown.
class frmMetrics : public QMainWindow, private PageView {
  Q_OBJECT

 public:
  explicit frmMetrics(QWidget* parent = nullptr);
  ~frmMetrics() override;

  // The load step: restores the window's rectangle, shows the window, opens
  // the databases (on `inputFile` when one was named) and, with `about`,
  // shows the About box, which closes itself after `aboutMs` milliseconds.
  void Load(const QString& inputFile, bool about = true, int aboutMs = 4000);

  PageModel& Model() { return m_model; }
  OwnerGrid& Grid() const { return *m_grid; }
  QTabBar& Tabs() const { return *m_tabs; }
  StatsFrame& Stats() const { return *m_stats; }
  QLabel& DatabaseDetails() const { return *m_details; }
  QComboBox& ComboWidget(PageCombo combo) const;
  // A menu entry by its name ("mOptionsRotated"); null when there is none.
  QAction* MenuEntry(const QString& name) const;

  // The help start page: "www/pm-index.html" beside the program.
  static QString HelpPagePath();
  // Opens the help start page, or the help server's copy when it is missing.
  static void ShowHelpContents();
  // The About box, modal, until the user closes it.
  void ShowAbout();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  // PageView
  void TabSelected(int page) override;
  void LayoutChanged() override;
  void ComboSelectionChanged(PageCombo combo) override;
  void DetailsChanged() override;
  void StatsChanged() override;
  void RepaintWindow() override;
  void MenuChecksChanged() override;
  void SetWindowState(int state) override;
  int GridWidthPixels() const override;

  QWidget* BuildTopStrip();
  QWidget* BuildBottomStrip();
  void BuildMenus();
  QAction* AddEntry(QMenu* menu, const QString& name, const QString& caption);
  QComboBox* AddCombo(PageCombo combo, const QString& name, const QString& tip);
  void BindCombos();
  void SyncCombos();
  void OnTabChanged(int index);
  bool WindowKey(QKeyEvent* event);

  PageModel m_model;
  QTabBar* m_tabs = nullptr;
  std::array<QComboBox*, kPageComboCount> m_comboWidgets{};
  std::array<ComboBinding*, kPageComboCount> m_bindings{};
  QLabel* m_details = nullptr;
  OwnerGrid* m_grid = nullptr;
  StatsFrame* m_stats = nullptr;
  MetaView* m_metaView = nullptr;
  MetaView* m_metaView2 = nullptr;
  QAction* m_rotated = nullptr;
  QAction* m_charts = nullptr;
  bool m_syncingTab = false;
};

}  // namespace ombrelle
