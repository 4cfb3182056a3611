#include "shell/ui/frmMetrics.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QFileInfo>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QStyle>
#include <QTabBar>
#include <QVBoxLayout>

#include <algorithm>

#include "grid/OwnerGridLogic.h"
#include "grid/ui/OwnerGrid.h"
#include "pictures/ui/MetaView.h"
#include "shell/StartupState.h"
#include "shell/ui/AboutBox.h"
#include "shell/ui/ChartMenus.h"
#include "shell/ui/ComboBinding.h"
#include "shell/ui/OptionsMenuEntries.h"
#include "shell/ui/DatabasesMenu.h"
#include "shell/ui/StatsFrame.h"
#include "shell/ui/ReportMenus.h"
#include "shell/ui/TableMenus.h"
#include "support/UiServices.h"
#include "support/ui/WindowPlacementUi.h"

namespace ombrelle {

namespace {

// The help server's copy of the start page, for a program without its pages.
const QString kHelpServerPage = QStringLiteral("https://ombrelle.example.org/pm-index.html");

// Size of each of the two chart places beside the statistics frame.
constexpr int kChartWidth = 240;
constexpr int kChartHeight = 150;

// Point size of the grid's cells and headers: metric columns are at least 50
// pixels wide, which holds a seven-digit number with separators at this size.
constexpr double kGridPointSize = 8.0;

// A place for one small chart: a sunken picture control.
MetaView* MakeChartPlace(const QString& name, QWidget* parent) {
  auto* frame = new MetaView(parent);
  frame->setObjectName(name);
  frame->setFrameShape(QFrame::StyledPanel);
  frame->setFrameShadow(QFrame::Sunken);
  frame->setFixedSize(kChartWidth, kChartHeight);
  frame->setAutoFillBackground(true);
  frame->setBackgroundRole(QPalette::Base);
  return frame;
}

// Key code of a window-level key in the grid's numbering; 0 for keys the
// window does not look at.
int WindowKeyCode(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
      return WindowKey::Tab;
    case Qt::Key_PageUp:
      return WindowKey::PageUp;
    case Qt::Key_PageDown:
      return WindowKey::PageDown;
    case Qt::Key_Insert:
      return WindowKey::Insert;
    case Qt::Key_F5:
      return WindowKey::F5;
    case Qt::Key_F10:
      return WindowKey::F10;
    default:
      return 0;
  }
}

}  // namespace

frmMetrics::frmMetrics(QWidget* parent) : QMainWindow(parent) {
  setObjectName(QStringLiteral("frmMetrics"));
  setWindowTitle(UiServices::AppTitle());

  auto* central = new QWidget(this);
  auto* layout = new QVBoxLayout(central);
  layout->setContentsMargins(4, 4, 4, 4);
  layout->setSpacing(4);

  m_tabs = new QTabBar(central);
  m_tabs->setObjectName(QStringLiteral("Tabs"));
  m_tabs->setExpanding(false);
  m_tabs->setDrawBase(true);
  for (int page = 0; page < kPageCount; ++page) {
    m_tabs->addTab(PageModel::PageCaption(page));
    m_tabs->setTabToolTip(page, PageModel::PageTip(page));
  }
  connect(m_tabs, &QTabBar::currentChanged, this, &frmMetrics::OnTabChanged);
  layout->addWidget(m_tabs);
  layout->addWidget(BuildTopStrip());

  m_grid = new OwnerGrid(central);
  m_grid->setObjectName(QStringLiteral("Grid"));
  layout->addWidget(m_grid, 1);
  layout->addWidget(BuildBottomStrip());
  setCentralWidget(central);
  BuildMenus();

  // The grid takes the window's font at the compact size the column widths
  // are made for; the model measures with what the grid paints.
  QFont gridFont = font();
  gridFont.setPointSizeF(kGridPointSize);
  m_grid->Logic().SetCellFont(gridFont);
  m_grid->Logic().SetHeaderFont(gridFont);
  m_model.AttachGrid(m_grid->Logic());
  m_model.SetView(this);
  BindCombos();
  LayoutChanged();
  resize(1100, 760);

  // Window-level keys are seen before the focused control takes them.
  qApp->installEventFilter(this);
}

frmMetrics::~frmMetrics() {
  qApp->removeEventFilter(this);
  m_model.SetView(nullptr);
}

QWidget* frmMetrics::BuildTopStrip() {
  auto* strip = new QWidget(this);
  auto* rows = new QVBoxLayout(strip);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(3);
  auto* combos = new QHBoxLayout();
  combos->setSpacing(6);
  combos->addWidget(AddCombo(PageCombo::Analysis, QStringLiteral("cboAnalysis"),
                             QStringLiteral("Analysis")), 3);
  combos->addWidget(AddCombo(PageCombo::ProjectInTimeStyle, QStringLiteral("cboProjectInTimeStyle"),
                             QStringLiteral("Values or changes between analyses")), 1);
  combos->addWidget(AddCombo(PageCombo::CompareClass, QStringLiteral("cboCompareClass"),
                             QStringLiteral("Follow the project or one item")), 1);
  combos->addWidget(AddCombo(PageCombo::CompareRecord, QStringLiteral("cboCompareRecord"),
                             QStringLiteral("The item followed through the analyses")), 2);
  combos->addStretch(0);
  combos->addWidget(AddCombo(PageCombo::MetricLimit, QStringLiteral("cboMetricLimit"),
                             QStringLiteral("Limit set")), 1);
  combos->addWidget(AddCombo(PageCombo::MetricSelection, QStringLiteral("cboMetricSelection"),
                             QStringLiteral("Metric selection")), 1);
  rows->addLayout(combos);

  m_details = new QLabel(strip);
  m_details->setObjectName(QStringLiteral("DatabaseDetails"));
  m_details->setTextInteractionFlags(Qt::TextSelectableByMouse);
  m_details->setMinimumHeight(m_details->fontMetrics().height());
  rows->addWidget(m_details);
  return strip;
}

QWidget* frmMetrics::BuildBottomStrip() {
  auto* strip = new QWidget(this);
  auto* row = new QHBoxLayout(strip);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(6);
  m_stats = new StatsFrame(strip);
  row->addWidget(m_stats, 1);
  m_metaView = MakeChartPlace(QStringLiteral("MetaView"), strip);
  m_metaView2 = MakeChartPlace(QStringLiteral("MetaView2"), strip);
  row->addWidget(m_metaView, 0, Qt::AlignTop);
  row->addWidget(m_metaView2, 0, Qt::AlignTop);
  AttachGridCharts(m_model.Panel(), *m_metaView, *m_metaView2);
  return strip;
}

QComboBox* frmMetrics::AddCombo(PageCombo combo, const QString& name, const QString& tip) {
  auto* widget = new QComboBox(this);
  widget->setObjectName(name);
  widget->setToolTip(tip);
  widget->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  widget->setMinimumContentsLength(12);
  widget->setMaxVisibleItems(24);
  m_comboWidgets[static_cast<size_t>(combo)] = widget;
  return widget;
}

void frmMetrics::BindCombos() {
  for (int i = 0; i < kPageComboCount; ++i) {
    const auto combo = static_cast<PageCombo>(i);
    m_bindings[static_cast<size_t>(i)] = new ComboBinding(
        m_model.Combo(combo), *m_comboWidgets[static_cast<size_t>(i)],
        [this, combo](int index) {
          m_model.ChooseComboItem(combo, index);
          SyncCombos();
        },
        this);
  }
}

void frmMetrics::SyncCombos() {
  for (ComboBinding* binding : m_bindings) binding->SyncIfChanged();
}

QAction* frmMetrics::AddEntry(QMenu* menu, const QString& name, const QString& caption) {
  QAction* action = menu->addAction(caption);
  action->setObjectName(name);
  return action;
}

void frmMetrics::BuildMenus() {
  QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
  file->setObjectName(QStringLiteral("mFile"));
  AddDatabasesMenuEntry(*file, m_model, *this);
  QAction* fileExit = AddEntry(file, QStringLiteral("mFileClose"), QStringLiteral("E&xit"));
  connect(fileExit, &QAction::triggered, this, &QWidget::close);

  QMenu* options = menuBar()->addMenu(QStringLiteral("&Options"));
  options->setObjectName(QStringLiteral("mOptions"));
  m_charts = AddEntry(options, QStringLiteral("mOptionsCharts"), QStringLiteral("&Display charts"));
  m_charts->setCheckable(true);
  connect(m_charts, &QAction::triggered, this, [this] {
    m_model.Panel().ToggleDisplayCharts();
    MenuChecksChanged();
  });
  m_rotated = AddEntry(options, QStringLiteral("mOptionsRotated"), QStringLiteral("&Rotated view"));
  m_rotated->setCheckable(true);
  connect(m_rotated, &QAction::triggered, this, [this] {
    m_model.ToggleRotated();
    MenuChecksChanged();
  });
  AddOptionsDialogEntries(*options, m_model, this);

  QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
  help->setObjectName(QStringLiteral("mHelp"));
  connect(AddEntry(help, QStringLiteral("mHelpContents"), QStringLiteral("&Contents")),
          &QAction::triggered, this, [] { ShowHelpContents(); });
  connect(AddEntry(help, QStringLiteral("mHelpAbout"), QStringLiteral("&About Ombrelle")),
          &QAction::triggered, this, &frmMetrics::ShowAbout);

  AddTableMenus(*this, m_model, file, fileExit);
  AddReportMenus(*this, m_model);
  AddChartMenus(*this, m_model);
}

void frmMetrics::Load(const QString& inputFile, bool about, int aboutMs) {
  if (!RestoreWindowPlacement(*this)) {
    // First start: most of the screen, centred.
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
      const QRect area = screen->availableGeometry();
      const QSize size(std::min(area.width() * 9 / 10, 1400), std::min(area.height() * 9 / 10, 950));
      setGeometry(QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter, size, area));
    }
  }
  // Shown first: column widths are capped by the grid's width, which the
  // layout gives only to a visible window.
  show();
  m_grid->Logic().SetSortable(true);
  {
    BusyCursor busy;
    m_model.Start(inputFile);
  }
  SyncCombos();
  m_grid->setFocus();
  setWindowTitle(m_model.ProgramTitle());
  MenuChecksChanged();
  if (about) AboutBox::ShowAtStart(m_model.ProgramTitle(), this, aboutMs);
}

QComboBox& frmMetrics::ComboWidget(PageCombo combo) const {
  return *m_comboWidgets[static_cast<size_t>(combo)];
}

QAction* frmMetrics::MenuEntry(const QString& name) const {
  return findChild<QAction*>(name);
}

QString frmMetrics::HelpPagePath() {
  const QString configured = Startup().HelpFile;
  if (!configured.isEmpty()) return configured;
  return QCoreApplication::applicationDirPath() + QStringLiteral("/www/pm-index.html");
}

void frmMetrics::ShowHelpContents() {
  const QString page = HelpPagePath();
  Ui().ShellOpen(QFileInfo::exists(page) ? page : kHelpServerPage);
}

void frmMetrics::ShowAbout() {
  AboutBox box(m_model.ProgramTitle(), this);
  box.exec();
}

void frmMetrics::OnTabChanged(int index) {
  if (m_syncingTab) return;
  m_model.TabClicked(index);
  SyncCombos();
}

bool frmMetrics::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress && watched->isWidgetType() &&
      static_cast<QWidget*>(watched)->window() == this) {
    if (WindowKey(static_cast<QKeyEvent*>(event))) return true;
  }
  return QMainWindow::eventFilter(watched, event);
}

bool frmMetrics::WindowKey(QKeyEvent* event) {
  const int code = WindowKeyCode(*event);
  if (code == 0) return false;
  int shift = GridShiftFromQt(event->modifiers());
  // Qt reports Shift+Tab as a key of its own.
  if (event->key() == Qt::Key_Backtab) shift |= GridShift::Shift;
  const bool taken = m_model.WindowKeyDown(code, shift);
  if (taken) SyncCombos();
  return taken;
}

void frmMetrics::closeEvent(QCloseEvent* event) {
  SaveWindowPlacement(*this);
  event->accept();
}

// --- What the model reports ---------------------------------------------------

void frmMetrics::TabSelected(int page) {
  m_syncingTab = true;
  m_tabs->setCurrentIndex(page);
  m_syncingTab = false;
}

void frmMetrics::LayoutChanged() {
  for (ComboBinding* binding : m_bindings) binding->SyncVisibility();
}

void frmMetrics::ComboSelectionChanged(PageCombo combo) {
  m_bindings[static_cast<size_t>(combo)]->SyncSelection();
}

void frmMetrics::DetailsChanged() { m_details->setText(m_model.DatabaseDetailsText()); }

void frmMetrics::StatsChanged() { m_stats->ShowTexts(m_model.Panel().Texts()); }

void frmMetrics::RepaintWindow() {
  if (isVisible()) repaint();
}

void frmMetrics::MenuChecksChanged() {
  m_rotated->setChecked(m_model.Rotated());
  m_charts->setChecked(m_model.Panel().DisplayCharts());
}

void frmMetrics::SetWindowState(int state) {
  if (state == 2)
    showMaximized();
  else
    showNormal();
}

int frmMetrics::GridWidthPixels() const { return m_grid->width(); }

}  // namespace ombrelle
