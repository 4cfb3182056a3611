// The limit and selection dialogs on a real X display (the CTest entry
// ui.LimitDialogsOnXvfb starts the suite under xvfb-run): a new limit set
// turns a procedure value red, travels through an `.mtl` file and back; a
// selection without CC takes its column off the page. Screenshots of the
// three dialogs go to <build>/test-output/LimitDialogs/.
#include <functional>
#include <memory>

#include <gtest/gtest.h>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>

#include "common/OutsideReaders.h"
#include "grid/OwnerGridLogic.h"
#include "grid/ui/OwnerGrid.h"
#include "limits/MetricLimits.h"
#include "limits/MetricSelection.h"
#include "shell/StartupState.h"
#include "shell/ui/frmMetrics.h"
#include "support/ScriptedUiServices.h"
#include "support/SettingsStore.h"
#include "ui/WindowFixture.h"

namespace ombrelle {
namespace {

constexpr int kProcedures = 5;
constexpr MetricId kCC = 4120;
constexpr quint32 kRed = 255;

QString OutputFolder() { return test::ArtefactFolder(QStringLiteral("LimitDialogs")); }

void Shoot(QWidget& widget, const QString& name) {
  ProcessEvents();
  const QImage image = widget.grab().toImage();
  ASSERT_FALSE(image.isNull());
  EXPECT_TRUE(image.save(OutputFolder() + QLatin1Char('/') + name + QStringLiteral(".png")));
}

template <typename T>
T& Child(QWidget& dialog, const char* name) {
  T* child = dialog.findChild<T*>(QString::fromLatin1(name));
  // A missing control ends the run here, which fails it.
  if (!child) qFatal("no control %s in %s", name, qPrintable(dialog.objectName()));
  return *child;
}

void Click(QWidget& dialog, const char* button) { Child<QPushButton>(dialog, button).click(); }

// Runs `step` once the modal dialog `name` is shown. A dialog that does not
// come within 20 s fails the test, and whatever modal is open is closed so
// that the test cannot hang.
void WhenModal(const QString& name, std::function<void(QDialog&)> step) {
  auto* timer = new QTimer(qApp);
  timer->setInterval(20);
  auto clock = std::make_shared<QElapsedTimer>();
  clock->start();
  QObject::connect(timer, &QTimer::timeout, qApp, [timer, name, step, clock] {
    auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (modal && modal->objectName() == name && modal->isVisible()) {
      timer->stop();
      timer->deleteLater();
      ProcessEvents();
      step(*modal);
      return;
    }
    if (clock->elapsed() > 20000) {
      timer->stop();
      timer->deleteLater();
      ADD_FAILURE() << "dialog " << name.toStdString() << " did not open";
      if (modal) modal->reject();
    }
  });
  timer->start();
}

// Picks an item of a combo of a dialog as the user does.
void Pick(QComboBox& combo, const QString& text) {
  const int index = combo.findText(text);
  ASSERT_GE(index, 0) << text.toStdString();
  combo.setCurrentIndex(index);
  Q_EMIT combo.activated(index);
}

void Type(QLineEdit& edit, const QString& text) {
  edit.setText(text);
  Q_EMIT edit.textEdited(text);
}

void SelectListItem(QListWidget& list, const QString& text) {
  const auto found = list.findItems(text, Qt::MatchExactly);
  ASSERT_EQ(found.size(), 1) << text.toStdString();
  list.setCurrentItem(found.first());
}

std::vector<MetricLimitRule> RulesOf(std::int32_t set) {
  MetricLimits limits;
  EXPECT_TRUE(limits.Load(set));
  std::vector<MetricLimitRule> rules;
  for (int i = 1; i <= limits.RuleCount(); ++i) rules.push_back(limits.GetRule(i));
  return rules;
}

class LimitDialogsWindow : public WindowTest {
 protected:
  void SetUp() override {
    if (QGuiApplication::platformName() != QStringLiteral("xcb"))
      GTEST_SKIP() << "runs on a display: ctest -R LimitDialogsOnXvfb";
    WindowTest::SetUp();
    Open();
    ClickTab(kProcedures);
    ASSERT_EQ(m_window->Model().CurrentPage(), kProcedures);
  }

  // The grid column of `metric` on the page, 0 when it has none.
  int GridColumnOf(MetricId metric) {
    const int column = m_window->Model().FindGridColumn(metric);
    return column > 0 ? column + 1 : 0;
  }

  // The colour the page model gives a cell, starting from the grid's colour.
  quint32 CellColour(int row, int column) {
    QString text;
    quint32 colour = 0x80000008;
    m_window->Model().DataRequest(row, column, text, colour);
    return colour;
  }

  ScopedScriptedUi m_scripted;
};

TEST_F(LimitDialogsWindow, NewSetTurnsAValueRedAndTravelsThroughAnMtlFile) {
  PageModel& model = m_window->Model();
  const int column = GridColumnOf(kCC);
  ASSERT_GT(column, 0) << "CC is not on the procedures page";
  // The largest CC of the analysis, and a row that has it.
  int highRow = 0;
  double high = 0;
  const int rows = m_window->Grid().Logic().Rows();
  for (int row = 1; row <= rows; ++row) {
    double value = 0;
    bool defined = false;
    model.CellDefined(row, column, value, defined);
    if (defined && value > high) {
      high = value;
      highRow = row;
    }
  }
  ASSERT_GT(high, 2.0);
  ASSERT_NE(CellColour(highRow, column), kRed);
  const QString bound = QString::number(high - 1);

  // Options > Limits..., Add: a new set with the rule "CC <= high - 1".
  WhenModal(QStringLiteral("frmMetricLimitMaintenance"), [&](QDialog& sets) {
    Shoot(sets, QStringLiteral("frmMetricLimitMaintenance"));
    EXPECT_EQ(sets.windowTitle(), "Metric limits");
    SelectListItem(Child<QListWidget>(sets, "LimitList"), QStringLiteral("<Default limits>"));
    EXPECT_EQ(Child<QPushButton>(sets, "bEdit").text(), "&View");
    EXPECT_FALSE(Child<QPushButton>(sets, "bRemove").isEnabled());
    WhenModal(QStringLiteral("frmMetricLimits"), [&](QDialog& view) {
      Shoot(view, QStringLiteral("frmMetricLimits-view"));
      EXPECT_EQ(view.windowTitle(), "Metric limits - <Default limits>");
      EXPECT_TRUE(Child<QLabel>(view, "lblReadOnly").isVisible());
      EXPECT_FALSE(Child<QPushButton>(view, "bOK").isVisible());
      EXPECT_FALSE(Child<QWidget>(view, "frameEdit").isVisible());
      EXPECT_EQ(Child<QPushButton>(view, "bCancel").text(), "Close");
      Click(view, "bCancel");
    });
    Click(sets, "bEdit");

    WhenModal(QStringLiteral("frmMetricLimits"), [&](QDialog& rules) {
      EXPECT_EQ(rules.windowTitle(), "Metric limits - New limits");
      Type(Child<QLineEdit>(rules, "txtMetricLimitName"), QStringLiteral("Window rules"));
      Click(rules, "bAdd");
      Pick(Child<QComboBox>(rules, "cboMetricClass"), QStringLiteral("Procedure"));
      Pick(Child<QComboBox>(rules, "cboMetricName"), QStringLiteral("CC"));
      EXPECT_EQ(Child<QLabel>(rules, "lblMetricName").text(), "Cyclomatic complexity");
      Pick(Child<QComboBox>(rules, "cboCondition"), QStringLiteral("range"));
      EXPECT_TRUE(Child<QLineEdit>(rules, "Limit1").isVisible());
      Type(Child<QLineEdit>(rules, "Limit0"), QStringLiteral("7"));
      Type(Child<QLineEdit>(rules, "Limit1"), QStringLiteral("6"));
      Click(rules, "bSave");  // refused: 7 to 6
      Pick(Child<QComboBox>(rules, "cboCondition"), QStringLiteral("<="));
      EXPECT_FALSE(Child<QLineEdit>(rules, "Limit1").isVisible());
      Type(Child<QLineEdit>(rules, "Limit0"), bound);
      Shoot(rules, QStringLiteral("frmMetricLimits-edit"));
      Click(rules, "bSave");
      Shoot(rules, QStringLiteral("frmMetricLimits-saved"));
      Click(rules, "bOK");
    });
    Click(sets, "bAdd");
    QListWidget& list = Child<QListWidget>(sets, "LimitList");
    ASSERT_NE(list.currentItem(), nullptr);
    EXPECT_EQ(list.currentItem()->text(), "Window rules");
    Click(sets, "bSelect");
  });
  Trigger("mOptionsLimits");
  EXPECT_EQ(m_scripted.ui.MessageTexts(),
            QStringList({"Invalid range. Lower limit must not exceed upper limit."}));
  const std::int16_t set = MetricLimits::GetCurrentLimitID();
  ASSERT_GT(set, 0);
  const std::vector<MetricLimitRule> rules = RulesOf(set);
  EXPECT_EQ(rules, (std::vector<MetricLimitRule>{{kCC, 0, high - 1, 0}}));
  EXPECT_EQ(m_window->ComboWidget(PageCombo::MetricLimit).currentText(), "Window rules");
  EXPECT_EQ(CellColour(highRow, column), kRed);

  // Export it, delete it, import it back.
  const QString path = m_dir.filePath(QStringLiteral("window.mtl"));
  m_scripted.ui.messages.clear();
  WhenModal(QStringLiteral("frmMetricLimitMaintenance"), [&](QDialog& sets) {
    QListWidget& list = Child<QListWidget>(sets, "LimitList");
    SelectListItem(list, QStringLiteral("Window rules"));
    m_scripted.ui.fileAnswers = {path};
    Click(sets, "bExport");
    ASSERT_FALSE(m_scripted.ui.fileRequests.empty());
    EXPECT_EQ(m_scripted.ui.fileRequests.back().fileName, "Window rules.mtl");
    m_scripted.ui.msgAnswers = {MsgResult::Yes};
    Click(sets, "bRemove");
    EXPECT_TRUE(list.findItems(QStringLiteral("Window rules"), Qt::MatchExactly).isEmpty());
    m_scripted.ui.fileAnswers = {path};
    m_scripted.ui.inputAnswers = {QStringLiteral("Window rules again")};
    Click(sets, "bImport");
    ASSERT_NE(list.currentItem(), nullptr);
    EXPECT_EQ(list.currentItem()->text(), "Window rules again");
    Click(sets, "bSelect");
  });
  Trigger("mOptionsLimits");
  EXPECT_TRUE(QFile::exists(path));
  EXPECT_EQ(m_scripted.ui.MessageTexts(), QStringList({"Delete the selected limits?"}));
  const std::int16_t imported = MetricLimits::GetCurrentLimitID();
  ASSERT_GT(imported, 0);
  EXPECT_EQ(RulesOf(imported), rules);
  EXPECT_EQ(m_window->ComboWidget(PageCombo::MetricLimit).currentText(), "Window rules again");
  EXPECT_EQ(CellColour(highRow, column), kRed);
  Shoot(*m_window, QStringLiteral("procedures-with-window-rules"));
}

TEST_F(LimitDialogsWindow, SelectionWithoutCCTakesItsColumnOffThePage) {
  ASSERT_GT(GridColumnOf(kCC), 0);
  const MetricId kept[] = {4001, 4012, 4140};
  for (MetricId metric : kept) ASSERT_GT(GridColumnOf(metric), 0) << metric;
  WhenModal(QStringLiteral("frmMetricSelection"), [&](QDialog& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Select metrics to view");
    QTabBar& tabs = Child<QTabBar>(dialog, "Tabs");
    QTreeWidget& metrics = Child<QTreeWidget>(dialog, "MetricListview");
    tabs.setCurrentIndex(3);
    auto itemOf = [&](MetricId metric) -> QTreeWidgetItem* {
      for (int i = 0; i < metrics.topLevelItemCount(); ++i)
        if (metrics.topLevelItem(i)->data(0, Qt::UserRole).toString() ==
            QStringLiteral("mtr") + QString::number(metric))
          return metrics.topLevelItem(i);
      return nullptr;
    };
    // The built-in selection keeps its checks.
    QTreeWidgetItem* cc = itemOf(kCC);
    if (!cc) {
      ADD_FAILURE() << "no row of CC";
      dialog.reject();
      return;
    }
    EXPECT_TRUE(Child<QLabel>(dialog, "lblReadOnly").isVisible());
    cc->setCheckState(0, Qt::Unchecked);
    EXPECT_EQ(cc->checkState(0), Qt::Checked);
    metrics.setCurrentItem(cc);
    EXPECT_TRUE(Child<QLabel>(dialog, "lblDescription").text().startsWith("McCabe"));
    Shoot(dialog, QStringLiteral("frmMetricSelection-builtin"));

    m_scripted.ui.inputAnswers = {QStringLiteral("Without CC")};
    Click(dialog, "bAdd");
    EXPECT_FALSE(Child<QLabel>(dialog, "lblReadOnly").isVisible());
    tabs.setCurrentIndex(3);
    for (int i = 0; i < metrics.topLevelItemCount(); ++i)
      metrics.topLevelItem(i)->setCheckState(0, Qt::Checked);
    itemOf(kCC)->setCheckState(0, Qt::Unchecked);
    EXPECT_EQ(itemOf(kCC)->checkState(0), Qt::Unchecked);
    Shoot(dialog, QStringLiteral("frmMetricSelection-custom"));
    Click(dialog, "bClose");
  });
  Trigger("mOptionsSelections");
  EXPECT_FALSE(m_window->Model().SelectionGuard());
  EXPECT_EQ(m_window->ComboWidget(PageCombo::MetricSelection).currentText(), "Without CC");
  EXPECT_EQ(GridColumnOf(kCC), 0);
  for (MetricId metric : kept) EXPECT_GT(GridColumnOf(metric), 0) << metric;
  Shoot(*m_window, QStringLiteral("procedures-without-cc"));
}

}  // namespace
}  // namespace ombrelle
