// The main window on the sample databases: pages, combos, statistics frame,
// rotation, sorting, keys, menus, help, the About box and window placement.
// Screenshots of every step go to <build>/test-output/MainWindow/.
#include <functional>
#include <memory>

#include <gtest/gtest.h>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTimer>

#include "common/MessageAssertions.h"
#include "common/OutsideReaders.h"
#include "core/MetricRead.h"
#include "grid/OwnerGridLogic.h"
#include "grid/ui/OwnerGrid.h"
#include "shell/StartupState.h"
#include "shell/TableExport.h"
#include "shell/ui/AboutBox.h"
#include "shell/ui/StatsFrame.h"
#include "shell/ui/frmMetrics.h"
#include "support/ScriptedUiServices.h"
#include "support/SettingsStore.h"
#include "support/ui/QtUiServices.h"
#include "ui/WindowFixture.h"

namespace ombrelle {
namespace {

constexpr int kProcedures = 5;

QString OutputFolder() { return test::ArtefactFolder(QStringLiteral("MainWindow")); }

// The samples, a window on them, and a help page path in the test's folder.
class MainWindow : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    Startup().HelpFile = m_dir.filePath(QStringLiteral("www/pm-index.html"));
  }

  // Picks an item of a combo as the user does.
  void Choose(PageCombo combo, const QString& text) {
    QComboBox& widget = m_window->ComboWidget(combo);
    const int index = widget.findText(text);
    ASSERT_GE(index, 0) << text.toStdString();
    widget.setCurrentIndex(index);
    Q_EMIT widget.activated(index);
    ProcessEvents();
  }

  void Screenshot(const QString& name) {
    const QImage image = m_window->grab().toImage();
    ASSERT_FALSE(image.isNull());
    EXPECT_TRUE(image.save(OutputFolder() + QLatin1Char('/') + name + QStringLiteral(".png")));
  }

  // The visible cells the page model paints in `colour`.
  int CountVisibleCells(quint32 colour) {
    OwnerGridLogic& grid = m_window->Grid().Logic();
    const OwnerGridLogic::Range range = grid.VisibleRange(false);
    int count = 0;
    for (int row = range.top; row <= range.bottom; ++row) {
      for (int column = grid.FixedColumns() + 1; column <= range.right; ++column) {
        QString text;
        quint32 cellColour = grid.ForeColor();
        m_window->Model().DataRequest(row, column, text, cellColour);
        if (cellColour == colour) ++count;
      }
    }
    return count;
  }

  // Pixels of the grid that are clearly red.
  int RedPixels() {
    const QImage image = m_window->Grid().grab().toImage().convertToFormat(QImage::Format_RGB32);
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x) {
        const QRgb pixel = image.pixel(x, y);
        if (qRed(pixel) > 200 && qGreen(pixel) < 80 && qBlue(pixel) < 80) ++count;
      }
    return count;
  }

  QString ValueLabel(const char* name) {
    QLabel* label = m_window->Stats().ValueLabel(QString::fromLatin1(name));
    return label ? label->text() : QStringLiteral("<missing>");
  }
};

// The texts themselves are checked on the page model.
TEST_F(MainWindow, TabsCarryTheSevenCaptionsAndTips) {
  frmMetrics& window = Open();
  ASSERT_EQ(window.Tabs().count(), 7);
  for (int page = 0; page < 7; ++page) {
    EXPECT_EQ(window.Tabs().tabText(page), PageModel::PageCaption(page));
    EXPECT_EQ(window.Tabs().tabToolTip(page), PageModel::PageTip(page));
  }
  EXPECT_EQ(window.windowTitle(), window.Model().ProgramTitle());
}

TEST_F(MainWindow, EveryPageShowsItsCombosAndPanel) {
  frmMetrics& window = Open();
  // Page, whether the analysis list shows, whether the project-in-time lists show.
  const struct {
    int page;
    bool analysis;
    bool projectInTime;
    const char* shot;
  } pages[] = {
      {0, false, false, "page0-all-analyses"},  {1, false, false, "page1-latest-analyses"},
      {2, true, true, "page2-project-in-time"}, {3, true, false, "page3-files"},
      {4, true, false, "page4-classes"},        {5, true, false, "page5-procedures"},
      {6, true, false, "page6-variables"},
  };
  for (const auto& c : pages) {
    SCOPED_TRACE(c.page);
    ClickTab(c.page);
    EXPECT_EQ(window.Model().CurrentPage(), c.page);
    EXPECT_EQ(window.Tabs().currentIndex(), c.page);
    EXPECT_EQ(!window.ComboWidget(PageCombo::Analysis).isHidden(), c.analysis);
    EXPECT_EQ(!window.ComboWidget(PageCombo::ProjectInTimeStyle).isHidden(), c.projectInTime);
    EXPECT_EQ(!window.ComboWidget(PageCombo::CompareClass).isHidden(), c.projectInTime);
    EXPECT_FALSE(window.ComboWidget(PageCombo::MetricLimit).isHidden());
    EXPECT_FALSE(window.ComboWidget(PageCombo::MetricSelection).isHidden());
    if (c.analysis) {
      // The widget holds what the model filled, with the model's selection.
      const ListModel& list = window.Model().Combo(PageCombo::Analysis);
      QComboBox& combo = window.ComboWidget(PageCombo::Analysis);
      ASSERT_EQ(combo.count(), list.ListCount());
      EXPECT_GT(combo.count(), 0);
      EXPECT_EQ(combo.currentIndex(), list.ListIndex());
      EXPECT_EQ(combo.currentText(), list.Text());
    }
    // The frame names the column under the cursor and counts its values.
    EXPECT_FALSE(window.Stats().title().isEmpty());
    EXPECT_EQ(window.Stats().title(), window.Model().Panel().Texts().Title);
    EXPECT_EQ(ValueLabel("lblCount"), window.Model().Panel().Texts().Count);
    EXPECT_FALSE(ValueLabel("lblCount").isEmpty());
    EXPECT_EQ(window.DatabaseDetails().text(), window.Model().DatabaseDetailsText());
    Screenshot(QString::fromLatin1(c.shot));
  }
}

TEST_F(MainWindow, ProjectInTimeListsHoldTheirDesignTimeItems) {
  frmMetrics& window = Open();
  ClickTab(2);
  // The widgets hold the model's lists, whose texts the model tests check.
  for (PageCombo combo : {PageCombo::CompareClass, PageCombo::ProjectInTimeStyle}) {
    const ListModel& list = window.Model().Combo(combo);
    QComboBox& widget = window.ComboWidget(combo);
    ASSERT_EQ(widget.count(), list.ListCount());
    for (int i = 0; i < widget.count(); ++i) EXPECT_EQ(widget.itemText(i), list.List(i));
  }
  // A style chosen in the widget reaches the model and the captions.
  Choose(PageCombo::ProjectInTimeStyle, QStringLiteral("Change (+/-)"));
  EXPECT_EQ(window.Model().TimeStyle(), 1);
  bool marked = false;
  const OwnerGridLogic& grid = window.Grid().Logic();
  for (int column = 3; column <= grid.Columns(); ++column)
    marked = marked || grid.ColumnCaption(column).startsWith(QString::fromUtf8("\u00B1"));
  EXPECT_TRUE(marked);
  Screenshot(QStringLiteral("page2-change"));
  // Following one file shows the record list.
  Choose(PageCombo::CompareClass, QStringLiteral("File:"));
  EXPECT_FALSE(window.ComboWidget(PageCombo::CompareRecord).isHidden());
  EXPECT_GT(window.ComboWidget(PageCombo::CompareRecord).count(), 0);
  EXPECT_EQ(window.ComboWidget(PageCombo::CompareRecord).currentIndex(), 0);
  Screenshot(QStringLiteral("page2-file-record"));
}

TEST_F(MainWindow, ProceduresPageShowsRedCellsWithTheDefaultLimits) {
  frmMetrics& window = Open();
  Choose(PageCombo::MetricLimit, QStringLiteral("<Default limits>"));
  ClickTab(kProcedures);
  ASSERT_EQ(window.Model().CurrentPage(), kProcedures);
  EXPECT_GT(CountVisibleCells(255), 0);
  EXPECT_GT(RedPixels(), 0);
  EXPECT_FALSE(ValueLabel("lblLimits").isEmpty());
  Screenshot(QStringLiteral("page5-procedures-default-limits"));

  // Without limits nothing is red.
  Choose(PageCombo::MetricLimit, QStringLiteral("<No limits>"));
  EXPECT_EQ(CountVisibleCells(255), 0);
  EXPECT_EQ(RedPixels(), 0);
}

TEST_F(MainWindow, RotatedViewTransposesAndComesBack) {
  frmMetrics& window = Open();
  ClickTab(3);
  const OwnerGridLogic& grid = window.Grid().Logic();
  const int rows = grid.Rows();
  const int metrics = grid.Columns() - 1;
  QAction* rotate = window.MenuEntry(QStringLiteral("mOptionsRotated"));
  ASSERT_NE(rotate, nullptr);
  rotate->trigger();
  ProcessEvents();
  EXPECT_TRUE(window.Model().Rotated());
  EXPECT_TRUE(rotate->isChecked());
  EXPECT_EQ(grid.Rows(), metrics);
  Screenshot(QStringLiteral("page3-rotated"));
  rotate->trigger();
  ProcessEvents();
  EXPECT_FALSE(window.Model().Rotated());
  EXPECT_FALSE(rotate->isChecked());
  EXPECT_EQ(grid.Rows(), rows);
}

TEST_F(MainWindow, WindowKeysMovePagesFromAnyControl) {
  frmMetrics& window = Open();
  window.Grid().setFocus();
  const struct {
    int key;
    Qt::KeyboardModifiers modifiers;
    int page;
  } steps[] = {
      {Qt::Key_PageDown, Qt::ControlModifier, 1},
      {Qt::Key_Tab, Qt::ControlModifier, 2},
      {Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier, 1},
      {Qt::Key_PageUp, Qt::ControlModifier, 0},
      {Qt::Key_PageUp, Qt::ControlModifier, 0},  // no page below the first
  };
  for (const auto& step : steps) {
    QKeyEvent press(QEvent::KeyPress, step.key, step.modifiers);
    QApplication::sendEvent(&window.Grid(), &press);
    ProcessEvents();
    EXPECT_EQ(window.Model().CurrentPage(), step.page);
    EXPECT_EQ(window.Tabs().currentIndex(), step.page);
  }
  // Alt+F10 maximises, Alt+F5 brings the normal window back.
  QKeyEvent maximise(QEvent::KeyPress, Qt::Key_F10, Qt::AltModifier);
  QApplication::sendEvent(&window.Grid(), &maximise);
  EXPECT_TRUE(window.windowState() & Qt::WindowMaximized);
  QKeyEvent normal(QEvent::KeyPress, Qt::Key_F5, Qt::AltModifier);
  QApplication::sendEvent(&window.Grid(), &normal);
  EXPECT_FALSE(window.windowState() & Qt::WindowMaximized);
  EXPECT_EQ(window.Model().CurrentPage(), 0);

  // Ctrl+Insert puts the table copy on the real clipboard.
  QtUiServices qtServices;
  UiServices* previous = SetUi(&qtServices);
  QApplication::clipboard()->clear();
  QKeyEvent copy(QEvent::KeyPress, Qt::Key_Insert, Qt::ControlModifier);
  QApplication::sendEvent(&window.Grid(), &copy);
  ProcessEvents();
  SetUi(previous);
  EXPECT_TRUE(QApplication::clipboard()->text().startsWith(QStringLiteral("Project\t")));
  EXPECT_EQ(QApplication::clipboard()->text(), TableExport(window.Model()).CopyText());
}

TEST_F(MainWindow, MenusHoldOnlyWorkingEntries) {
  frmMetrics& window = Open();
  QStringList seen;
  for (QAction* top : window.menuBar()->actions()) {
    QStringList entries;
    for (QAction* entry : top->menu()->actions()) entries << entry->text();
    seen << top->text() + QLatin1Char(':') + entries.join(QLatin1Char('|'));
  }
  EXPECT_EQ(seen, QStringList({"&File:&Databases...|&Export table...|Export X&ML...|E&xit",
                               "&Edit:&Copy table|&Find line...|Find &again",
                               "&Chart:&Bar chart of metric|&Histogram of metric|"
                               "&Distribution of metric|&Compare metrics...|"
                               "C&ompare histograms...|&Time chart...||"
                               "&Pie of limits on metric|"
                               "&Kiviat of limits on page|&XY chart of 2 metrics...",
                               "&Report:&Data on current page|D&ata+Summary on current page|"
                               "&Statistics on current page|C&harts on current page|"
                               "Cor&relation analysis||&Project status|"
                               "&Compare project status|&Limits report||&Metrics list|"
                               "Metrics list, s&orted||&Explore saved reports",
                               "&Options:&Selections...|&Limits...||&Display charts|&Rotated view",
                               "&Help:&Contents|&About Ombrelle"}));
}

// Acts on the next modal dialog as soon as it shows.
void WhenDialogShows(std::function<void(QDialog&)> act) {
  QTimer::singleShot(10, [act] {
    if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
      act(*dialog);
    else
      WhenDialogShows(act);
  });
}

// The compare dialog refuses all five metrics on "<None>" and stays open.
TEST_F(MainWindow, CompareEntryRefusesNoMetric) {
  frmMetrics& window = Open();
  ScopedScriptedUi scripted;
  ClickTab(4);
  WhenDialogShows([](QDialog& dialog) {
    auto* first = dialog.findChild<QComboBox*>(QStringLiteral("cboMetric0"));
    first->setCurrentIndex(0);
    dialog.findChild<QPushButton*>(QStringLiteral("bOK"))->click();
    EXPECT_TRUE(dialog.isVisible());
    dialog.findChild<QPushButton*>(QStringLiteral("bCancel"))->click();
  });
  window.MenuEntry(QStringLiteral("mChartCompare1"))->trigger();
  ProcessEvents();
  EXPECT_EQ(scripted.ui.MessageTexts(), QStringList{"Select 1 or more metrics."});
  EXPECT_TRUE(window.findChildren<QWidget*>(QStringLiteral("MetaForm")).isEmpty());
}

TEST_F(MainWindow, HelpContentsOpensThePageBesideTheProgram) {
  Open();
  ScopedScriptedUi scripted;
  QAction* contents = m_window->MenuEntry(QStringLiteral("mHelpContents"));
  ASSERT_NE(contents, nullptr);
  // The page is missing: the help server's copy.
  contents->trigger();
  // The page is there: the local file.
  QDir().mkpath(m_dir.filePath(QStringLiteral("www")));
  QFile page(Startup().HelpFile);
  ASSERT_TRUE(page.open(QIODevice::WriteOnly));
  page.close();
  contents->trigger();
  ASSERT_EQ(scripted.ui.opened.size(), 2u);
  EXPECT_EQ(scripted.ui.opened[0], QStringLiteral("https://ombrelle.example.org/pm-index.html"));
  EXPECT_EQ(scripted.ui.opened[1], Startup().HelpFile);
  EXPECT_TRUE(scripted.ui.messages.empty());
}

TEST_F(MainWindow, DescriptionDoubleClickShowsTheWholeText) {
  frmMetrics& window = Open();
  ScopedScriptedUi scripted;
  QPlainTextEdit* descr = window.Stats().DescriptionBox();
  const QString text = descr->toPlainText();
  ASSERT_FALSE(text.isEmpty());
  EXPECT_EQ(descr->focusPolicy(), Qt::NoFocus);
  QMouseEvent click(QEvent::MouseButtonDblClick, QPointF(5, 5), QPointF(5, 5), Qt::LeftButton,
                    Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(descr->viewport(), &click);
  EXPECT_ONLY_UI_MESSAGE(scripted.ui, text.toStdString(), MsgStyle::Information);
}

TEST_F(MainWindow, CommandLineDatabaseOpensProjectInTimeOnItsRow) {
  const QString file = SamplePath(m_sampleFiles.at(2));
  frmMetrics& window = Open(file);
  EXPECT_EQ(window.Model().CurrentPage(), 2);
  EXPECT_EQ(window.Tabs().currentIndex(), 2);
  const int database = window.Model().CurrentDatabase();
  ASSERT_GT(database, 0);
  EXPECT_EQ(QFileInfo(window.Model().Reader().GetDatabaseFilename(database)).fileName(),
            m_sampleFiles.at(2));
  EXPECT_TRUE(window.DatabaseDetails().text().contains(m_sampleFiles.at(2)))
      << window.DatabaseDetails().text().toStdString();
  Screenshot(QStringLiteral("command-line-database"));
}

TEST_F(MainWindow, PlacementIsSavedOnCloseAndRestored) {
  frmMetrics& first = Open();
  first.setGeometry(40, 30, 900, 640);
  ProcessEvents();
  const QRect saved = first.geometry();
  first.close();
  EXPECT_FALSE(
      GetSetting(QStringLiteral("WindowPlacement"), QStringLiteral("frmMetrics.Left"), QString())
          .isEmpty());
  frmMetrics& second = Open();
  EXPECT_EQ(second.geometry().size(), saved.size());
}

TEST(AboutBox, ClosesItselfAtStartAndOnAClick) {
  QPointer<AboutBox> box = AboutBox::ShowAtStart(QStringLiteral("Title 1.0"), nullptr, 30);
  ASSERT_FALSE(box.isNull());
  EXPECT_TRUE(box->isVisible());
  QLabel* title = box->findChild<QLabel*>(QStringLiteral("lblTitle"));
  ASSERT_NE(title, nullptr);
  EXPECT_EQ(title->text(), QStringLiteral("Title 1.0"));
  QElapsedTimer clock;
  clock.start();
  while (!box.isNull() && clock.elapsed() < 3000) {
    QApplication::processEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  EXPECT_TRUE(box.isNull()) << "still open after 3 s";

  AboutBox clicked(QStringLiteral("Title"), nullptr);
  clicked.show();
  EXPECT_EQ(clicked.CloseTimer(), nullptr);
  QMouseEvent press(QEvent::MouseButtonPress, QPointF(3, 3), QPointF(3, 3), Qt::LeftButton,
                    Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&clicked, &press);
  EXPECT_FALSE(clicked.isVisible());
  EXPECT_EQ(clicked.result(), QDialog::Accepted);
}

}  // namespace
}  // namespace ombrelle
