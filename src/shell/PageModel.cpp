#include "shell/PageModel.h"

#include <QFileInfo>

#include "core/MetricRead.h"
#include "grid/OwnerGridEvents.h"
#include "grid/OwnerGridLogic.h"
#include "limits/ChoiceList.h"
#include "limits/MetricLimits.h"
#include "shell/TableExport.h"
#include "stats/CStats.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

struct PageDefinition {
  const char* caption;
  const char* tip;
  MetricId firstMetric;
  int dataMode;
};

constexpr PageDefinition kPageDefinitions[kPageCount] = {
    {"&All analyses", "All analyses available", 1000, DataModes::AllFiles},
    {"&Latest analyses", "Compare the latest status of each project", 1000, DataModes::LatestSaves},
    {"Project in &time", "All analyses of a single project", 1000, DataModes::ProjectValues},
    {"F&iles", "File metrics", 2000, DataModes::OneFile},
    {"Classe&s", "Class metrics (object-oriented)", 3000, DataModes::OneFile},
    {"&Procedures", "Procedure metrics", 4000, DataModes::OneFile},
    {"&Variables", "Variable metrics", 5000, DataModes::OneFile},
};

const char* const kCompareClassItems[] = {"Entire analysis",
                                          "File:", "Class:", "Procedure:", "Variable:"};
const char* const kTimeStyleItems[] = {"Metric value", "Change (+/-)", "Relative change (%)",
                                       "Change/day (\u00B1/d)", "Change/month (\u00B1/m)"};

const QString kNoRefresh = QStringLiteral("Norefresh");

bool ValidPage(int page) { return page >= 0 && page < kPageCount; }

void CopyChoices(const ChoiceList& choices, ListModel& combo) {
  combo.Clear();
  for (const ChoiceList::Item& item : choices.Items()) combo.AddItem(item.text, item.data);
}

}  // namespace

// Turns the grid's events into the model's routines, swapping rows and
// columns while the view is rotated.
class PageModel::GridEvents : public OwnerGridEvents {
 public:
  explicit GridEvents(PageModel& model) : m_model(model) {}

  void DataRequest(int row, int column, QString& text, quint32& colour) override {
    m_model.DataRequest(row, column, text, colour);
  }
  void SortBy(int& column) override {
    column = m_model.Rotated() ? m_model.SortBy(0) : m_model.SortBy(column);
  }
  void EnterColumn(int column) override {
    if (!m_model.Rotated()) {
      m_model.ColumnChanged(column);
      return;
    }
    int row = m_model.Grid()->GetCurRow();
    m_model.SwapRowCol(row, column);
    m_model.RowChanged(row);
  }
  void EnterRow(int row) override {
    if (!m_model.Rotated()) {
      m_model.RowChanged(row);
      return;
    }
    int column = m_model.Grid()->GetCurColumn();
    m_model.SwapRowCol(row, column);
    m_model.ColumnChanged(column);
  }
  void EnterCell(int /*row*/, int /*column*/) override { m_model.Panel().UpdateGridChart(1); }
  void DblClickCell(int row, int column) override { m_model.DblClickCell(row, column); }

 private:
  PageModel& m_model;
};

PageModel::PageModel()
    : m_gridEvents(std::make_unique<GridEvents>(*this)),
      m_ownGrid(std::make_unique<OwnerGridLogic>()),
      m_series(1),
      m_seriesInfo(1),
      m_panel(*this) {
  m_grid = m_ownGrid.get();
  m_grid->SetOwner(m_gridEvents.get());
  for (int i = 0; i < kPageComboCount; ++i) {
    const auto combo = static_cast<PageCombo>(i);
    m_combos[static_cast<size_t>(i)].SetSelectionChangedHandler([this, combo](int index) {
      if (m_view) m_view->ComboSelectionChanged(combo);
      if (index >= 0 && !m_quietCombos) ComboClicked(combo);
    });
  }
  for (const char* item : kCompareClassItems) Combo(PageCombo::CompareClass).AddItem(item);
  for (const char* item : kTimeStyleItems)
    Combo(PageCombo::ProjectInTimeStyle).AddItem(QString::fromUtf8(item));
  ApplyVisibility();
}

PageModel::~PageModel() {
  if (m_grid) m_grid->SetOwner(nullptr);
}

void PageModel::AttachGrid(OwnerGridLogic& grid) {
  if (m_grid) m_grid->SetOwner(nullptr);
  m_grid = &grid;
  m_grid->SetOwner(m_gridEvents.get());
  m_ownGrid.reset();
}

void PageModel::Start(const QString& commandLineDatabase) {
  m_reader = std::make_unique<MetricRead>();
  // Only a start that finds nothing on the search paths looks beside the
  // program; otherwise every start would add the same folders again.
  if (m_reader->DatabaseCount() == 0) m_reader->FindFirstDatabases();
  m_series.clear();
  m_series.resize(1);
  m_seriesInfo.assign(1, SeriesEntry{});
  SetComboIndexQuietly(PageCombo::CompareClass, 0);
  SetComboIndexQuietly(PageCombo::ProjectInTimeStyle, 0);
  m_panel.LoadCurrentLimits();

  int database = 0;
  if (!commandLineDatabase.isEmpty() && QFileInfo::exists(commandLineDatabase))
    database = m_reader->LocateAndOpenDatabase(commandLineDatabase, true);
  if (database > 0) {
    m_currentDatabase = database;
    SelectPage(2);
    const PageRecord& record = Pages(2);
    for (int row = 1; row <= record.Rows; ++row) {
      if (m_reader->GridRowToQVZDatabase(row) == database) {
        PlaceCursor(row, m_grid->GetCurColumn());
        break;
      }
    }
  } else {
    SelectPage(0);
  }

  FillLimitCombo();
  FillSelectionCombo();
  m_grid->SetSortable(true);
}

// --- Fixed texts -------------------------------------------------------------

QString PageModel::PageCaption(int page) {
  return ValidPage(page) ? QString::fromUtf8(kPageDefinitions[page].caption) : QString();
}

QString PageModel::PageTip(int page) {
  return ValidPage(page) ? QString::fromUtf8(kPageDefinitions[page].tip) : QString();
}

MetricId PageModel::FirstMetricOfPage(int page) {
  return ValidPage(page) ? kPageDefinitions[page].firstMetric : kFirstMetricId;
}

int PageModel::DataModeOfPage(int page) {
  return ValidPage(page) ? kPageDefinitions[page].dataMode : DataModes::NoView;
}

// --- State -------------------------------------------------------------------

CStats* PageModel::Series(int index) const {
  if (index < 1 || index >= static_cast<int>(m_series.size())) return nullptr;
  return m_series[static_cast<size_t>(index)].get();
}

const SeriesEntry& PageModel::SeriesInfo(int index) const {
  static const SeriesEntry kNone;
  if (index < 1 || index >= static_cast<int>(m_seriesInfo.size())) return kNone;
  return m_seriesInfo[static_cast<size_t>(index)];
}

MetricLimits& PageModel::Limits() {
  if (!m_limits) m_limits = std::make_unique<MetricLimits>();
  return *m_limits;
}

int PageModel::CompareClassIndex() const {
  return std::max(0, Combo(PageCombo::CompareClass).ListIndex());
}

void PageModel::RefreshDetails() {
  m_detailsText = m_reader ? m_reader->GetDatabaseDetails(m_currentDatabase) : QString();
  if (m_currentDatabase == 0) m_detailsText.clear();
  if (m_view) m_view->DetailsChanged();
}

void PageModel::ApplyVisibility() {
  Combo(PageCombo::Analysis).SetVisible(m_currentPage >= 2);
  Combo(PageCombo::ProjectInTimeStyle).SetVisible(m_currentPage == 2);
  Combo(PageCombo::CompareClass).SetVisible(m_currentPage == 2);
  Combo(PageCombo::CompareRecord).SetVisible(m_currentPage == 2);
}

void PageModel::SetCompareRecordVisible(bool visible) {
  Combo(PageCombo::CompareRecord).SetVisible(visible);
  if (m_view) m_view->LayoutChanged();
}

void PageModel::SetComboIndexQuietly(PageCombo combo, int index) {
  m_quietCombos = true;
  Combo(combo).SetListIndex(index);
  m_quietCombos = false;
}

// --- Events of the window ------------------------------------------------------

void PageModel::TabClicked(int page) {
  if (!ValidPage(page)) return;
  m_pageLeft = m_currentPage;
  m_selectedTab = page;
  ActivatePage();
}

void PageModel::SelectPage(int page) {
  if (!ValidPage(page)) return;
  m_pageLeft = m_currentPage;
  m_currentPage = page;
  m_selectedTab = page;
  if (m_view) m_view->TabSelected(page);
  ActivatePage();
}

void PageModel::ChooseComboItem(PageCombo combo, int index) {
  ListModel& list = Combo(combo);
  if (index < 0 || index >= list.ListCount()) return;
  if (list.ListIndex() == index) {
    ComboClicked(combo);
  } else {
    list.SetListIndex(index);
  }
}

bool PageModel::WindowKeyDown(int keyCode, int shift) {
  const int page = m_currentPage;
  if (shift == GridShift::Ctrl && keyCode == WindowKey::PageUp) {
    if (page > 0) SelectPage(page - 1);
    return true;
  }
  if (shift == GridShift::Ctrl && keyCode == WindowKey::PageDown) {
    if (page < kPageCount - 1) SelectPage(page + 1);
    return true;
  }
  if (shift == GridShift::Ctrl && keyCode == WindowKey::Tab) {
    if (page < kPageCount - 1) SelectPage(page + 1);
    return true;
  }
  if (shift == (GridShift::Ctrl | GridShift::Shift) && keyCode == WindowKey::Tab) {
    if (page > 0) SelectPage(page - 1);
    return true;
  }
  if (shift == GridShift::Ctrl && keyCode == WindowKey::Insert) {
    TableExport(*this).CopyTable();
    return true;
  }
  if (shift == GridShift::Alt && keyCode == WindowKey::F5) {
    if (m_view) m_view->SetWindowState(0);
    return true;
  }
  if (shift == GridShift::Alt && keyCode == WindowKey::F10) {
    if (m_view) m_view->SetWindowState(2);
    return true;
  }
  return false;
}

void PageModel::FillLimitCombo() {
  ChoiceList choices;
  MetricLimits().FillList(choices);
  ListModel& combo = Combo(PageCombo::MetricLimit);
  m_quietCombos = true;
  CopyChoices(choices, combo);
  combo.SetListIndex(choices.Selected());
  m_quietCombos = false;
}

void PageModel::FillSelectionCombo() {
  ChoiceList choices;
  MetricSelection selection;
  selection.Load(MetricSelection::Current());
  selection.FillList(choices);
  ListModel& combo = Combo(PageCombo::MetricSelection);
  m_quietCombos = true;
  CopyChoices(choices, combo);
  combo.SetListIndex(choices.Selected());
  m_quietCombos = false;
}

// --- Combo clicks ------------------------------------------------------------------

void PageModel::ComboClicked(PageCombo combo) {
  switch (combo) {
    case PageCombo::Analysis:
      AnalysisClick();
      break;
    case PageCombo::CompareClass:
      CompareClassClick();
      break;
    case PageCombo::ProjectInTimeStyle:
      ProjectInTimeStyleClick();
      break;
    case PageCombo::CompareRecord:
      CompareRecordClick();
      break;
    case PageCombo::MetricLimit:
      MetricLimitClick();
      break;
    case PageCombo::MetricSelection:
      MetricSelectionClick();
      break;
  }
}

void PageModel::AnalysisClick() {
  const ListModel& combo = Combo(PageCombo::Analysis);
  if (combo.Tag() == kNoRefresh || !m_reader) return;
  BusyCursor busy;
  SelectDatabase(combo.ItemData(combo.ListIndex()));
  ReloadPage();
}

void PageModel::CompareClassClick() {
  if (!m_reader) return;
  BusyCursor busy;
  const int classIndex = CompareClassIndex();
  m_reader->SetDataMode(m_timeStyle + 1, m_currentDatabase, classIndex);
  ListModel& records = Combo(PageCombo::CompareRecord);
  if (classIndex > 0) {
    FillRecordsCombo();
    SetCompareRecordVisible(true);
  } else {
    SetCompareRecordVisible(false);
  }
  if (records.Visible() && records.ListCount() > 0 && records.ListIndex() < 0) {
    records.SetListIndex(0);
  } else {
    ClearCurrentPage();
    LoadPage(m_currentPage);
  }
}

void PageModel::CompareRecordClick() {
  if (!m_reader) return;
  m_reader->SetRecordName(Combo(PageCombo::CompareRecord).Text());
  ClearCurrentPage();
  LoadPage(m_currentPage);
}

void PageModel::ProjectInTimeStyleClick() {
  const ListModel& combo = Combo(PageCombo::ProjectInTimeStyle);
  m_timeStyle = std::max(0, combo.ListIndex());
  if (!combo.Visible() || !m_reader) return;
  m_reader->SetDataMode(m_timeStyle + 1, m_currentDatabase, CompareClassIndex());
  ClearCurrentPage();
  LoadPage(m_currentPage);
}

void PageModel::MetricLimitClick() {
  const ListModel& combo = Combo(PageCombo::MetricLimit);
  MetricLimits::SetCurrentLimitID(combo.ItemData(combo.ListIndex()));
  m_panel.UpdateLimitView();
}

void PageModel::MetricSelectionClick() {
  if (m_selectionGuard) return;
  const ListModel& combo = Combo(PageCombo::MetricSelection);
  const std::int32_t selection = combo.ItemData(combo.ListIndex());
  if (selection == 0) return;
  MetricSelection::SetCurrent(selection);
  if (m_reader) ReloadPage();
}

int PageModel::FillAnalysisCombo(int mode, int database) {
  // MetricRead marks the combo "Norefresh" around its own selection.
  return m_reader->FillCombo(Combo(PageCombo::Analysis), mode, database);
}

void PageModel::FillRecordsCombo() {
  ListModel& records = Combo(PageCombo::CompareRecord);
  m_quietCombos = true;
  m_reader->FillComboRecords(records);
  m_quietCombos = false;
}

// --- Page activation ------------------------------------------------------------------

void PageModel::ActivatePage() {
  if (m_activating || !m_reader) return;
  m_activating = true;
  {
    BusyCursor busy;
    const int oldPage = m_pageLeft;
    m_currentPage = m_selectedTab;
    PageRecord& record = Page();
    if (record.PageMetric == 0 && ValidPage(oldPage))
      record.PageMetric = m_pages[static_cast<size_t>(oldPage)].PageMetric;
    m_timeStyle = std::max(0, Combo(PageCombo::ProjectInTimeStyle).ListIndex());
    ApplyVisibility();
    m_grid->DisableRefresh();
    if (m_view) m_view->LayoutChanged();
    m_grid->EnableRefresh();

    switch (m_currentPage) {
      case 0:
      case 1:
        m_reader->SetDataMode(DataModeOfPage(m_currentPage), 0, 0);
        LoadPage(m_currentPage);
        break;
      case 2:
        ProjectInTimeRefresh();
        break;
      default:
        m_reader->SetDataMode(DataModes::OneFile, 0, 0);
        m_currentDatabase = FillAnalysisCombo(DataModes::AllFiles, m_currentDatabase);
        SelectDatabase(m_currentDatabase);
        ReloadPage();
        break;
    }
    m_pageLeft = m_currentPage;
  }
  m_activating = false;
}

void PageModel::ProjectInTimeRefresh() {
  if (!m_reader) return;
  if (Combo(PageCombo::CompareClass).ListIndex() < 0)
    SetComboIndexQuietly(PageCombo::CompareClass, 0);
  const int classIndex = CompareClassIndex();
  m_reader->SetDataMode(m_timeStyle + 1, m_currentDatabase, classIndex);
  const int listed = FillAnalysisCombo(DataModes::LatestSaves, m_currentDatabase);
  // Without an analysis in focus the project the list shows first is taken,
  // so that the page does not open empty.
  if (m_currentDatabase == 0) m_currentDatabase = listed;
  SelectDatabase(m_currentDatabase);
  const int remembered = m_currentDatabase;
  ReloadPage();
  if (classIndex >= 1) {
    SetCompareRecordVisible(true);
    FillRecordsCombo();
    ListModel& records = Combo(PageCombo::CompareRecord);
    if (records.ListCount() > 0 && records.ListIndex() < 0) records.SetListIndex(0);
  } else {
    SetCompareRecordVisible(false);
  }
  m_currentDatabase = remembered;
  RefreshDetails();
}

void PageModel::SelectDatabase(int database) {
  if (database > 0 && m_reader) {
    if (m_currentPage != 2) {
      m_currentDatabase = m_reader->OpenDatabase2(database) ? database : 0;
    } else {
      const int classIndex = CompareClassIndex();
      m_reader->SetDataMode(m_timeStyle + 1, database, classIndex);
      if (classIndex > 0) {
        FillRecordsCombo();
        ListModel& records = Combo(PageCombo::CompareRecord);
        if (records.ListCount() > 0 && records.ListIndex() < 0) {
          records.SetListIndex(0);
          RefreshDetails();
          return;
        }
      }
    }
  }
  RefreshDetails();
}

void PageModel::ReloadPage() {
  ClearAllPages();
  if (m_view) m_view->RepaintWindow();
  BusyCursor busy;
  LoadPage(m_currentPage);
}

void PageModel::ClearAllPages() {
  for (PageRecord& record : m_pages) record = PageRecord{};
  m_series.clear();
  m_series.resize(1);
  m_seriesInfo.assign(1, SeriesEntry{});
  m_currentSeries = 0;
  m_grid->SetRows(0);
  m_grid->SetColumns(0);
  m_grid->SetFixedColumns(0);
  m_grid->SetColumnCaption(1, QString());
}

void PageModel::ManageDatabases(const std::function<void()>& manager) {
  {
    BusyCursor busy;
    ClearAllPages();
    m_currentDatabase = 0;
    m_reader.reset();
  }
  if (manager) manager();
  BusyCursor busy;
  m_reader = std::make_unique<MetricRead>();
  SelectPage(0);
}

void PageModel::ReleasePageSeries(PageRecord& record) {
  for (int i = 0; i < record.ColumnCount; ++i) {
    const size_t index = static_cast<size_t>(record.FirstColumn + i);
    if (record.FirstColumn >= 1 && index < m_series.size()) m_series[index].reset();
  }
  record = PageRecord{};
}

void PageModel::ClearCurrentPage() {
  ReleasePageSeries(Page());
  m_currentSeries = 0;
}

}  // namespace ombrelle
