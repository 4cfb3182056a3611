#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include <QFont>
#include <QString>
#include <QStringList>
#include <QVariant>

#include "core/ListModel.h"
#include "core/MetricDefinitions.h"
#include "limits/MetricSelection.h"
#include "shell/StatsPanel.h"

namespace ombrelle {

class CStats;
class MetricLimits;
class MetricRead;
class OwnerGridEvents;
class OwnerGridLogic;

// The seven pages of the main window, in tab order (0-based page index).
inline constexpr int kPageCount = 7;

// Per-page state of the main window's table.
struct PageRecord {
  bool Loaded = false;                 // series read; the grid may ask for cells
  int FirstColumn = 0;                 // index in Series of the page's first column
  int ColumnCount = 0;                 // number of metric columns
  std::int32_t Rows = 0;               // number of data rows
  QStringList RowHeaders;              // 1-based in the model's terms: RowHeaders[i - 1]
  std::vector<std::int32_t> RowOrder;  // display position i -> data row, at RowOrder[i - 1]
  int SortColumn = 0;                  // grid column sorted on, negative descending, 0 none
  MetricId PageMetric = 0;             // metric under the cursor when the page was last left
};

// One entry of SeriesInfo, beside each element of Series.
struct SeriesEntry {
  std::int32_t MetricId = 0;  // metric of the column
  int Format = 0;             // display format of the value (MetricFormatOnPage kind 0)
};

// The drop-down lists of the window, each a ListModel the model owns.
enum class PageCombo {
  Analysis,            // cboAnalysis
  CompareClass,        // cboCompareClass
  ProjectInTimeStyle,  // cboProjectInTimeStyle
  CompareRecord,       // cboCompareRecord
  MetricLimit,         // cboMetricLimit
  MetricSelection,     // cboMetricSelection
};
inline constexpr int kPageComboCount = 6;

// Key codes of the window-level keys, in the grid's numbering.
namespace WindowKey {
constexpr int Tab = 0x09;
constexpr int PageUp = 0x21;
constexpr int PageDown = 0x22;
constexpr int Insert = 0x2D;
constexpr int F5 = 0x74;
constexpr int F10 = 0x79;
}  // namespace WindowKey

// What the page model asks of the window that shows it. Every call has an
// empty default; the window overrides what it binds.
class PageView {
 public:
  virtual ~PageView() = default;
  // The program selected a tab (page 0..6): show it without raising a click.
  virtual void TabSelected(int /*page*/) {}
  // Visibility of the combos changed (read Combo(x).Visible()); the top strip
  // may change height: lay the window out again.
  virtual void LayoutChanged() {}
  // The program selected an item of a combo (already stored in the
  // ListModel): show it without raising a click. Items changes are reported by
  // the ListModel's own items handler, which the window may install.
  virtual void ComboSelectionChanged(PageCombo /*combo*/) {}
  // The details line changed: read DatabaseDetailsText().
  virtual void DetailsChanged() {}
  // The statistics panel changed: read Panel().Texts().
  virtual void StatsChanged() {}
  // Repaint the whole window now (before a long reload).
  virtual void RepaintWindow() {}
  // The check of "Rotated view" or "Display charts" changed: read Rotated()
  // and Panel().DisplayCharts().
  virtual void MenuChecksChanged() {}
  // Alt+F5 (0, normal) and Alt+F10 (2, maximised).
  virtual void SetWindowState(int /*state*/) {}
  // Width of the grid in pixels, for the cap on column widths; 0 for none.
  virtual int GridWidthPixels() const { return 0; }
};

// The main window without widgets: seven pages of a table of CStats columns
// read through MetricRead, the combos, the state of the grid it drives
// through an OwnerGridLogic, and the statistics panel. Owns the series of
// all loaded pages, the reader, the limit set in force and the selection.
//
// A window binds to it so: AttachGrid(its grid's logic), SetView(itself),
// Start(); tab clicks go to TabClicked, a user's choice in a combo to
// ChooseComboItem, window keys to WindowKeyDown, the menu's rotated view to
// ToggleRotated and its display charts to Panel().ToggleDisplayCharts().
// The grid's events reach the model directly. The window reads the texts
// back (PageCaption, Combo(x), DatabaseDetailsText, Panel().Texts()) when
// PageView tells it they changed.
class PageModel {
 public:
  PageModel();
  ~PageModel();
  PageModel(const PageModel&) = delete;
  PageModel& operator=(const PageModel&) = delete;

  // --- Binding ------------------------------------------------------------
  // The grid the model lays out and answers; the model becomes its owner of
  // events. Not owned; attach before Start. Until then the model lays out a
  // grid of its own.
  void AttachGrid(OwnerGridLogic& grid);
  OwnerGridLogic* Grid() const { return m_grid; }
  // The window; not owned, may be null.
  void SetView(PageView* view) { m_view = view; }
  PageView* View() const { return m_view; }
  // Font that column widths are measured with; the grid's cell font when unset.
  void SetMeasureFont(const QFont& font) {
    m_measureFont = font;
    m_hasMeasureFont = true;
  }

  // --- Start (Form_Load) ---------------------------------------------------
  // Makes the reader (looking for first databases when none is known), fills
  // the combos, loads the limits and opens page 0, or page 2 on the database
  // `commandLineDatabase` names when it is found.
  void Start(const QString& commandLineDatabase = QString());

  // --- Fixed texts -----------------------------------------------------------
  static QString PageCaption(int page);  // "&All analyses" ...
  static QString PageTip(int page);      // "All analyses available" ...
  static MetricId FirstMetricOfPage(int page);
  static int DataModeOfPage(int page);  // for pages other than 2
  QString ProgramTitle() const;
  QString PageTitle() const;
  const QString& DatabaseDetailsText() const { return m_detailsText; }

  // --- State -------------------------------------------------------------------
  int CurrentPage() const { return m_currentPage; }
  int TimeStyle() const { return m_timeStyle; }
  const PageRecord& Pages(int page) const { return m_pages.at(static_cast<size_t>(page)); }
  // Upper bound of Series (slot 0 is never used).
  int SeriesUpperBound() const { return static_cast<int>(m_series.size()) - 1; }
  // The series at `index`; null for 0, out of range or a released slot.
  CStats* Series(int index) const;
  const SeriesEntry& SeriesInfo(int index) const;
  int CurrentDatabase() const { return m_currentDatabase; }
  int CurrentSeries() const { return m_currentSeries; }
  MetricId CurrentMetric() const { return m_currentMetric; }
  bool Rotated() const { return m_rotated; }
  bool SelectionGuard() const { return m_selectionGuard; }
  void SetSelectionGuard(bool guard) { m_selectionGuard = guard; }
  bool Activating() const { return m_activating; }
  int SelectedTab() const { return m_selectedTab; }

  // The access object; made by Start.
  MetricRead& Reader() const { return *m_reader; }
  const MetricDefinitions& Definitions() const { return m_definitions; }
  // The rule set in force, made on first use.
  MetricLimits& Limits();
  bool HasLimits() const { return m_limits != nullptr; }
  const MetricSelection& Selection() const { return m_selection; }
  ListModel& Combo(PageCombo combo) { return m_combos.at(static_cast<size_t>(combo)); }
  const ListModel& Combo(PageCombo combo) const { return m_combos.at(static_cast<size_t>(combo)); }
  StatsPanel& Panel() { return m_panel; }
  const StatsPanel& Panel() const { return m_panel; }

  // --- Events of the window -------------------------------------------------------
  // A click on tab `page` (0-based).
  void TabClicked(int page);
  // The user chose item `index` of a combo; runs its click even when the item
  // was already selected.
  void ChooseComboItem(PageCombo combo, int index);
  // Window-level keys (grid key codes, shift bits 1 Shift, 2 Ctrl, 4 Alt);
  // true when the key was taken.
  bool WindowKeyDown(int keyCode, int shift);
  // "&Rotated view".
  void ToggleRotated();
  // Refills cboMetricLimit and cboMetricSelection from the stored sets.
  void FillLimitCombo();
  void FillSelectionCombo();

  // --- Page operations ------------------------------------------------------------
  void SelectPage(int page);
  void ActivatePage();
  void ProjectInTimeRefresh();
  void SelectDatabase(int database);
  void LoadPage(int page);
  void LayoutGrid();
  void ReloadPage();
  void ClearAllPages();
  // Runs the database manager `manager`: every page and the access object are
  // released before it, a new access object is made after it and page 0
  // shown, since files and database indexes may have changed.
  void ManageDatabases(const std::function<void()>& manager);
  void ClearCurrentPage();
  // Sorts on a grid column (negative descending, 0 none); returns the column used.
  int SortBy(int column);
  void SortClicked(int column);
  void ColumnChanged(int column);
  void RowChanged(int row);

  // --- Reading the table -----------------------------------------------------------
  int MetricClassOfPage(int page) const;
  int ColumnToSeries(int page, int column) const;
  MetricId SeriesMetric(int index) const;
  QString SeriesCaption(int index) const;
  QString MetricCaption(MetricId id) const;
  int MetricFormatOnPage(MetricId id, int kind) const;
  int ColumnWidthFor(const QString& text, int minimum) const;
  // Turns a displayed row into the data row (both 1-based).
  void GridRowToDataRow(int& row, int column) const;
  // Swaps a grid cell into page terms when rotated.
  void SwapRowCol(int& row, int& column) const;
  // Row header text (QString), the number (double), or an invalid QVariant.
  QVariant CellValue(int row, int column) const;
  // Value of a data cell in page terms.
  void CellDefined(int row, int column, double& value, bool& defined) const;
  // The grid's DataRequest: text "-" when undefined, colour 255 outside limits.
  void DataRequest(int row, int column, QString& text, quint32& colour);
  // A new defined-order series of a column in the rows' display order.
  CStats SeriesInRowOrder(int index) const;
  int FindSeries(MetricId id) const;
  int FindGridColumn(MetricId id) const;
  // The command the row action sends for a grid cell; "" when none.
  QString RowActionCommand(int row, int column) const;
  // The double click on a cell: RowActionCommand through SendToAnalyzer.
  void DblClickCell(int row, int column);

 private:
  class GridEvents;
  friend class StatsPanel;

  PageRecord& Page() { return m_pages[static_cast<size_t>(m_currentPage)]; }
  const PageRecord& Page() const { return m_pages[static_cast<size_t>(m_currentPage)]; }
  int CompareClassIndex() const;
  void RefreshDetails();
  void ApplyVisibility();
  void ReleasePageSeries(PageRecord& record);
  void PlaceCursor(int row, int column);
  int ChooseCursorColumn() const;
  void ComboClicked(PageCombo combo);
  void AnalysisClick();
  void CompareClassClick();
  void CompareRecordClick();
  void ProjectInTimeStyleClick();
  void MetricLimitClick();
  void MetricSelectionClick();
  int FillAnalysisCombo(int mode, int database);
  void FillRecordsCombo();
  void SetCompareRecordVisible(bool visible);
  void SetComboIndexQuietly(PageCombo combo, int index);

  OwnerGridLogic* m_grid = nullptr;
  std::unique_ptr<GridEvents> m_gridEvents;
  std::unique_ptr<OwnerGridLogic> m_ownGrid;  // until the window attaches its grid
  PageView* m_view = nullptr;
  QFont m_measureFont;
  bool m_hasMeasureFont = false;

  int m_currentPage = 0;
  int m_selectedTab = 0;
  int m_pageLeft = -1;  // the page before the one being activated
  int m_timeStyle = 0;
  std::array<PageRecord, kPageCount> m_pages;
  std::vector<std::unique_ptr<CStats>> m_series;
  std::vector<SeriesEntry> m_seriesInfo;
  std::unique_ptr<MetricLimits> m_limits;
  MetricDefinitions m_definitions;
  std::unique_ptr<MetricRead> m_reader;
  MetricSelection m_selection;
  int m_currentDatabase = 0;
  int m_currentSeries = 0;
  MetricId m_currentMetric = 0;
  bool m_rotated = false;
  bool m_selectionGuard = false;
  bool m_activating = false;
  bool m_quietCombos = false;  // a selection made by the program runs no click
  QString m_detailsText;
  std::array<ListModel, kPageComboCount> m_combos;
  StatsPanel m_panel;
};

}  // namespace ombrelle
