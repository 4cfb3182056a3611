// Chart windows on the sample databases: the regression window, a chart
// saved at the control's size and as SVG, its popup and zoom, and the
// small charts beside the grid following the charts option. That every Chart
// entry opens a picture is the end-to-end walk's part.
// Screenshots go to <build>/test-output/ChartWindows/.
#include <memory>

#include <gtest/gtest.h>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QImage>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QPointer>
#include <QSvgRenderer>
#include <QTabBar>
#include <QTemporaryDir>
#include <QToolBar>

#include "common/OutsideReaders.h"
#include "grid/OwnerGridLogic.h"
#include "grid/ui/OwnerGrid.h"
#include "limits/MetricLimits.h"
#include "pictures/Metafile.h"
#include "pictures/ui/MetaForm.h"
#include "pictures/ui/MetaView.h"
#include "shell/PageModel.h"
#include "shell/StartupState.h"
#include "shell/ui/frmCorrelation.h"
#include "shell/ui/frmMetrics.h"
#include "support/ScriptedUiServices.h"
#include "support/SettingsStore.h"
#include "ui/WindowFixture.h"

namespace ombrelle {
namespace {

constexpr int kProjectInTime = 2;
constexpr int kProcedures = 5;
constexpr MetricId kProcedureLines = 4001;  // has a limit in the default set

QString Artefact(const QString& name) { return test::ArtefactPath("ChartWindows", name); }

void SaveScreenshot(QWidget& widget, const QString& name) {
  ProcessEvents();
  EXPECT_TRUE(widget.grab().save(Artefact(name + QStringLiteral(".png"))));
}

class ChartWindows : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    Startup().DisplayCharts = true;
    MetricLimits::SetCurrentLimitID(LimitSet::Default);
    Open();
    ShowPage(kProcedures);
    m_scripted = std::make_unique<ScopedScriptedUi>();
  }
  void TearDown() override {
    m_scripted.reset();
    WindowTest::TearDown();
  }

  // Shows `page` with the cursor on the procedure lines where there are.
  void ShowPage(int page) {
    m_window->Tabs().setCurrentIndex(page);
    ProcessEvents();
    const int column = m_window->Model().FindGridColumn(kProcedureLines);
    if (page == kProcedures && column > 0) m_window->Grid().Logic().PlaceCursor(1, column + 1);
    ProcessEvents();
  }

  // The one picture window open; the tests delete each when done.
  MetaForm* NewForm() {
    const QList<MetaForm*> forms = m_window->findChildren<MetaForm*>();
    return forms.size() == 1 ? forms[0] : nullptr;
  }

  std::unique_ptr<ScopedScriptedUi> m_scripted;
};

// The XY entry opens the regression window on the current column.
TEST_F(ChartWindows, XYEntryOpensTheRegressionWindow) {
  Trigger("mChartScatter");
  auto* regression = m_window->findChild<frmCorrelation*>();
  ASSERT_NE(regression, nullptr);
  EXPECT_EQ(regression->windowTitle(), "Regression analysis");
  EXPECT_EQ(regression->MetricX(), regression->MetricY());
  EXPECT_FALSE(regression->View()->GetMetafile());  // a metric against itself
  regression->Combo(0)->setCurrentIndex(regression->Combo(1)->currentIndex() == 0 ? 1 : 0);
  ASSERT_TRUE(regression->View()->GetMetafile());
  const MetricId x = regression->MetricX();
  regression->Switch();
  EXPECT_EQ(regression->MetricY(), x);
  EXPECT_TRUE(regression->View()->GetMetafile()->Title().startsWith("Y="));
  SaveScreenshot(*regression, QStringLiteral("mChartScatter"));
  const QPointer<frmCorrelation> alive(regression);
  QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
  QApplication::sendEvent(regression, &escape);
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(alive.isNull());  // Esc closed and freed it
  EXPECT_TRUE(m_scripted->ui.messages.empty());
}

TEST_F(ChartWindows, SavesAtTheControlsSizeAndAsSvg) {
  Trigger("mChartHistogram");
  MetaForm* form = NewForm();
  ASSERT_NE(form, nullptr);
  form->resize(700, 500);
  ProcessEvents();
  EXPECT_EQ(form->ToolBar()->actions().size(), 3);
  MetaView& view = *form->View();
  const QSize size = view.contentsRect().size();
  ScriptedUiServices& ui = m_scripted->ui;
  // Bitmaps take the control's size and SVG is the window library's; each
  // format's bytes and readers are the picture model's tests.
  ui.fileAnswers = {Artefact("saved-png.png"), Artefact("saved-svg.svg")};
  ui.filterAnswers = {5, 6};
  ASSERT_TRUE(view.Save());
  ASSERT_TRUE(view.Save());
  EXPECT_TRUE(ui.messages.empty()) << ui.MessageTexts().join("|").toStdString();
  EXPECT_EQ(test::DecodeWithImageMagick(Artefact("saved-png.png")).size(), size);
  test::ExpectXmllintAccepts(Artefact("saved-svg.svg"));
  // The SVG drawn again, to look at.
  QSvgRenderer svg(Artefact("saved-svg.svg"));
  ASSERT_TRUE(svg.isValid());
  EXPECT_EQ(svg.viewBox().size(), size);
  QImage drawn(size, QImage::Format_RGB32);
  drawn.fill(Qt::white);
  QPainter painter(&drawn);
  svg.render(&painter);
  painter.end();
  drawn.save(Artefact("saved-svg-drawn.png"));
  // The dialog starts on the filter used last.
  view.Save();
  EXPECT_EQ(ui.fileRequests.back().filterIndex, 6);

  // The popup: Copy, Print, Save, and no Zoom in the viewer itself.
  QMenu* popup = view.Popup();
  for (const char* name : {"mPopupCopy", "mPopupPrint", "mPopupSave", "mPopupZoom"})
    EXPECT_NE(popup->findChild<QAction*>(QString::fromLatin1(name)), nullptr) << name;
  ASSERT_TRUE(view.CopyToClipboard());
  EXPECT_EQ(ui.clipboardImage.size(), size);

  // A wheel step enlarges the window by a tenth.
  const int width = view.width();
  form->Zoom(1);
  ProcessEvents();
  EXPECT_NEAR(view.width(), width * 1.1, 2);
}

TEST_F(ChartWindows, GridChartsFollowTheChartsOption) {
  auto* page = m_window->findChild<MetaView*>(QStringLiteral("MetaView"));
  auto* grid = m_window->findChild<MetaView*>(QStringLiteral("MetaView2"));
  ASSERT_NE(page, nullptr);
  ASSERT_NE(grid, nullptr);
  EXPECT_TRUE(page->GetMetafile());
  EXPECT_TRUE(grid->GetMetafile());
  SaveScreenshot(*m_window, QStringLiteral("main-window-charts"));
  SaveScreenshot(*page, QStringLiteral("page-chart"));
  SaveScreenshot(*grid, QStringLiteral("grid-chart"));
  m_window->Tabs().setCurrentIndex(kProjectInTime);
  ProcessEvents();
  EXPECT_TRUE(page->GetMetafile());
  SaveScreenshot(*page, QStringLiteral("page-chart-time"));
  SaveScreenshot(*grid, QStringLiteral("grid-chart-time"));

  Trigger("mOptionsCharts");
  EXPECT_FALSE(m_window->MenuEntry(QStringLiteral("mOptionsCharts"))->isChecked());
  EXPECT_FALSE(page->GetMetafile());
  EXPECT_FALSE(grid->GetMetafile());
  EXPECT_EQ(GetSetting(QStringLiteral("Options"), QStringLiteral("DisplayCharts")), "0");
  SaveScreenshot(*m_window, QStringLiteral("main-window-no-charts"));
  Trigger("mOptionsCharts");
  EXPECT_TRUE(page->GetMetafile());
  EXPECT_TRUE(grid->GetMetafile());
}

}  // namespace
}  // namespace ombrelle
