// The rules dialog without its window: frame, checks and messages, and the
// Edit and View of a limit set through a scripted dialog.
#include <gtest/gtest.h>

#include "common/MessageAssertions.h"
#include "limits/LimitsTestSettings.h"
#include "limits/MetricLimits.h"
#include "limits/MetricLimitsDialogModel.h"
#include "support/ScriptedUiServices.h"

namespace ombrelle {
namespace {

constexpr int kExclamation = 48;

// Opens a new rule on `metric` with `condition` and the two limit texts.
void FillNewRule(MetricLimitsDialogModel& dialog, MetricId metric, int condition,
                 const QString& low, const QString& high = QString()) {
  dialog.Add();
  dialog.SetClassIndex(MetricDefinitions::GetMetricClass(metric));
  dialog.SetMetricIndex(dialog.MetricChoices().FindData(metric));
  dialog.SetConditionIndex(condition);
  dialog.SetLimitText(0, low);
  dialog.SetLimitText(1, high);
}

// Installs a dialog runner for the life of the object.
class ScopedRunner {
 public:
  explicit ScopedRunner(MetricLimits::DialogRunner runner) {
    MetricLimits::SetDialogRunner(std::move(runner));
  }
  ~ScopedRunner() { MetricLimits::SetDialogRunner(nullptr); }
};

TEST(MetricLimitsDialog, FixedItemsAndTitles) {
  EXPECT_EQ(MetricLimitsDialogModel::ConditionItems(),
            QStringList({"<=", "range", ">=", "Outliers", "Extreme outliers"}));
  EXPECT_EQ(MetricLimitsDialogModel::ClassItems(),
            QStringList({"Project", "File", "Class", "Procedure", "Variable"}));
  MetricLimitsDialogModel dialog;
  EXPECT_EQ(MetricLimitsDialogModel::DesignTitle(), "Metric limits - Configuration of rules");
  EXPECT_EQ(dialog.Name(), "My rules");
  dialog.SetName(QStringLiteral("Team"));
  EXPECT_EQ(dialog.Title(), "Metric limits - Team");
  EXPECT_EQ(dialog.CancelCaption(), "Cancel");
  EXPECT_EQ(MetricLimitsDialogModel::ColumnCaption(1), "Metric");
  EXPECT_EQ(MetricLimitsDialogModel::ColumnCaption(2), "Rule");
}

TEST(MetricLimitsDialog, ClassListsItsSupportedMetricsWithoutDateAndDays) {
  MetricDefinitions catalogue;
  MetricLimitsDialogModel dialog;
  for (int metricClass = 0; metricClass < kMetricClassCount; ++metricClass) {
    dialog.SetClassIndex(metricClass);
    int expected = 0;
    for (MetricId id = kFirstMetricId + 2; id <= kLastMetricId; ++id)
      if (MetricDefinitions::GetMetricClass(id) == metricClass && catalogue.MetricSupported(id))
        ++expected;
    EXPECT_EQ(dialog.MetricChoices().Count(), expected) << metricClass;
    EXPECT_EQ(dialog.MetricIndex(), -1);
  }
  dialog.SetClassIndex(0);
  EXPECT_EQ(dialog.MetricChoices().FindData(1000), -1);
  EXPECT_EQ(dialog.MetricChoices().FindData(1001), -1);
  EXPECT_EQ(dialog.MetricChoices().At(0).data, 1002);
  EXPECT_EQ(dialog.MetricChoices().At(0).text, "LINES");
  dialog.SetClassIndex(3);
  dialog.SetMetricIndex(dialog.MetricChoices().FindData(4120));
  EXPECT_EQ(dialog.MetricChoices().At(dialog.MetricIndex()).text, "CC");
  EXPECT_EQ(dialog.MetricLongName(), "Cyclomatic complexity");
}

TEST(MetricLimitsDialog, ConditionShowsHidesAndOrdersTheBoxes) {
  struct Case {
    int condition;
    bool first, second;
  };
  const Case cases[] = {
      {0, true, false}, {1, true, true}, {2, true, false}, {3, false, false}, {4, false, false}};
  MetricLimitsDialogModel dialog;
  dialog.Add();
  for (const Case& c : cases) {
    dialog.SetConditionIndex(c.condition);
    EXPECT_EQ(dialog.LimitVisible(0), c.first) << c.condition;
    EXPECT_EQ(dialog.LimitVisible(1), c.second) << c.condition;
    EXPECT_EQ(dialog.RangeLineVisible(), c.condition == 1) << c.condition;
  }
  dialog.SetConditionIndex(0);
  dialog.SetLimitText(0, QStringLiteral("9"));
  dialog.SetLimitText(1, QStringLiteral("3,5"));
  dialog.SetConditionIndex(1);  // wrong order: exchanged
  EXPECT_EQ(dialog.LimitText(0), "3,5");
  EXPECT_EQ(dialog.LimitText(1), "9");
  dialog.SetConditionIndex(1);  // in order: kept
  EXPECT_EQ(dialog.LimitText(0), "3,5");
}

TEST(MetricLimitsDialog, SaveRuleChecksInOrderAndEqualBoundsAreValid) {
  ScopedScriptedUi scripted;
  MetricLimitsDialogModel dialog;
  dialog.Add();
  dialog.SetConditionIndex(1);
  dialog.SetLimitText(0, QStringLiteral("6"));
  dialog.SetLimitText(1, QStringLiteral("5"));
  EXPECT_FALSE(dialog.SaveRule());  // the metric is checked first
  EXPECT_ONLY_UI_MESSAGE(scripted.ui, "No metric selected.", kExclamation);

  scripted.ui.messages.clear();
  FillNewRule(dialog, 4120, 1, QStringLiteral("6"), QStringLiteral("5"));
  // The condition put the values in order; the user turns them round again.
  dialog.SetLimitText(0, QStringLiteral("6"));
  dialog.SetLimitText(1, QStringLiteral("5"));
  EXPECT_FALSE(dialog.SaveRule());
  EXPECT_ONLY_UI_MESSAGE(scripted.ui, "Invalid range. Lower limit must not exceed upper limit.",
                         kExclamation);
  EXPECT_TRUE(dialog.FrameOpen());
  EXPECT_EQ(dialog.GetRules(), 0);

  scripted.ui.messages.clear();
  dialog.SetLimitText(0, QStringLiteral("5"));
  EXPECT_TRUE(dialog.SaveRule());
  EXPECT_TRUE(scripted.ui.messages.empty());
  EXPECT_FALSE(dialog.FrameOpen());
  ASSERT_EQ(dialog.GetRules(), 1);
  EXPECT_EQ(dialog.Rules()[0], (MetricLimitRule{4120, 1, 5, 5}));
  EXPECT_EQ(dialog.CellText(1, 1), "CC");
  EXPECT_EQ(dialog.CellText(1, 2), "[ 5, 5 ]");
  EXPECT_EQ(dialog.CurrentRow(), 1);
}

TEST(MetricLimitsDialog, LimitTextMustBeANumber) {
  ScopedScriptedUi scripted;
  MetricLimitsDialogModel dialog;
  FillNewRule(dialog, 4001, 0, QStringLiteral("sixty"));
  EXPECT_FALSE(dialog.SaveRule());
  EXPECT_ONLY_UI_MESSAGE(scripted.ui, "Invalid limit. Enter a number.", kExclamation);
  dialog.SetLimitText(0, QStringLiteral(" 66,5 "));
  EXPECT_TRUE(dialog.SaveRule());
  EXPECT_EQ(dialog.Rules()[0], (MetricLimitRule{4001, 0, 66.5, 0}));
  // Hidden boxes are not read.
  FillNewRule(dialog, 4120, 3, QStringLiteral("x"), QStringLiteral("y"));
  EXPECT_TRUE(dialog.SaveRule());
  EXPECT_EQ(dialog.Rules()[1], (MetricLimitRule{4120, 3, 0, 0}));
}

TEST(MetricLimitsDialog, GridTextOfEachKindOfRule) {
  MetricLimitsDialogModel dialog;
  dialog.AddRule(4120, 0, 10, 0);
  dialog.AddRule(1014, 1, 0.1, 0.3);
  dialog.AddRule(4012, 2, 3, 0);
  dialog.AddRule(3002, 3, 0, 0);
  dialog.AddRule(4001, 4, 0, 0);
  const char* expected[][2] = {{"CC", "<= 10"},
                               {"LLOW%", "[ 0.1, 0.3 ]"},
                               {"LLOC", ">= 3"},
                               {"DIT", "Outliers"},
                               {"LINES", "Extreme outliers"}};
  for (int row = 1; row <= 5; ++row) {
    EXPECT_EQ(dialog.CellText(row, 1), expected[row - 1][0]);
    EXPECT_EQ(dialog.CellText(row, 2), expected[row - 1][1]);
  }
  EXPECT_EQ(dialog.CellText(6, 1), QString());
  EXPECT_EQ(dialog.CurrentRow(), 1);
}

TEST(MetricLimitsDialog, EditAndDeleteNeedARow) {
  ScopedScriptedUi scripted;
  MetricLimitsDialogModel dialog;
  dialog.EditRule();
  dialog.DeleteRule();
  EXPECT_EQ(scripted.ui.MessageTexts(), QStringList({"No rule selected.", "No rule selected."}));
  EXPECT_FALSE(dialog.FrameOpen());

  scripted.ui.messages.clear();
  dialog.AddRule(4120, 0, 10, 0);
  dialog.AddRule(3002, 2, 1, 0);
  dialog.SetCurrentRow(2);
  dialog.EditRule();  // the frame takes the rule under the cursor
  EXPECT_EQ(dialog.ClassIndex(), 2);
  EXPECT_EQ(dialog.MetricChoices().At(dialog.MetricIndex()).data, 3002);
  EXPECT_EQ(dialog.ConditionIndex(), 2);
  EXPECT_EQ(dialog.LimitText(0), "1");
  dialog.SetConditionIndex(0);
  dialog.SetLimitText(0, QStringLiteral("4"));
  EXPECT_TRUE(dialog.SaveRule());  // written into the row under edit
  EXPECT_EQ(dialog.Rules(), (std::vector<MetricLimitRule>{{4120, 0, 10, 0}, {3002, 0, 4, 0}}));

  dialog.Add();  // a new rule starts in the class of the current rule
  EXPECT_EQ(dialog.ClassIndex(), 2);
  EXPECT_EQ(dialog.EditRow(), 0);
  dialog.Discard();
  EXPECT_FALSE(dialog.FrameOpen());
  EXPECT_EQ(dialog.GetRules(), 2);

  dialog.SetCurrentRow(1);
  dialog.DeleteRule();
  EXPECT_EQ(dialog.Rules(), (std::vector<MetricLimitRule>{{3002, 0, 4, 0}}));
  dialog.DeleteRule();
  EXPECT_EQ(dialog.GetRules(), 0);
  EXPECT_EQ(dialog.CurrentRow(), 0);
  EXPECT_TRUE(scripted.ui.messages.empty());
}

TEST(MetricLimitsDialog, ReadOnlyViewLeavesOnlyClose) {
  ScopedScriptedUi scripted;
  MetricLimitsDialogModel dialog(true);
  dialog.AddRule(4120, 0, 10, 0);
  EXPECT_EQ(dialog.CancelCaption(), "Close");
  EXPECT_EQ(MetricLimitsDialogModel::ReadOnlyText(), "Default limits are not editable");
  EXPECT_FALSE(dialog.ListButtonsEnabled());
  dialog.Add();
  dialog.EditRule();
  dialog.DeleteRule();
  EXPECT_FALSE(dialog.FrameOpen());
  EXPECT_EQ(dialog.GetRules(), 1);
  EXPECT_TRUE(scripted.ui.messages.empty());
}

using MetricLimitsEditTest = test::LimitsSettingsTest;

TEST_F(MetricLimitsEditTest, AcceptedEditTakesRulesAndNameAndSaves) {
  ScopedScriptedUi scripted;
  QString shownName;
  ScopedRunner runner([&](MetricLimitsDialogModel& dialog) {
    shownName = dialog.Name();
    EXPECT_FALSE(dialog.ReadOnly());
    FillNewRule(dialog, 4120, 0, QStringLiteral("12"));
    EXPECT_TRUE(dialog.SaveRule());
    dialog.SetName(QStringLiteral("Strict"));
    dialog.Accept();
    return true;
  });
  MetricLimits limits;
  limits.Generate();
  ASSERT_TRUE(limits.Edit());
  EXPECT_EQ(shownName, "New limits");
  MetricLimits loaded;
  ASSERT_TRUE(loaded.Load(limits.GetID()));
  EXPECT_EQ(loaded.GetName(), "Strict");
  ASSERT_EQ(loaded.RuleCount(), 1);
  EXPECT_EQ(loaded.GetRule(1), (MetricLimitRule{4120, 0, 12, 0}));
}

TEST_F(MetricLimitsEditTest, CancelledEditSavesNothing) {
  ScopedRunner runner([](MetricLimitsDialogModel& dialog) {
    dialog.AddRule(4120, 0, 1, 0);
    return false;
  });
  MetricLimits limits;
  limits.Generate();
  EXPECT_FALSE(limits.Edit());
  EXPECT_EQ(limits.RuleCount(), 0);
  EXPECT_TRUE(EnumSubkeys(QStringLiteral("Limits")).isEmpty());
}

TEST_F(MetricLimitsEditTest, ViewShowsTheBuiltInRulesReadOnly) {
  std::vector<MetricLimitRule> shown;
  bool readOnly = false;
  ScopedRunner runner([&](MetricLimitsDialogModel& dialog) {
    shown = dialog.Rules();
    readOnly = dialog.ReadOnly();
    EXPECT_EQ(dialog.Title(), "Metric limits - <Require comments>");
    return false;
  });
  MetricLimits limits;
  ASSERT_TRUE(limits.Load(LimitSet::RequireComments));
  limits.View();
  EXPECT_TRUE(readOnly);
  ASSERT_EQ(shown.size(), 5u);
  EXPECT_EQ(shown[1], (MetricLimitRule{1014, 1, 0.1, 0.3}));
}

TEST_F(MetricLimitsEditTest, WithoutAWindowNothingIsEdited) {
  MetricLimits limits;
  limits.Generate();
  EXPECT_FALSE(limits.Edit());
  limits.View();
  EXPECT_TRUE(EnumSubkeys(QStringLiteral("Limits")).isEmpty());
}

}  // namespace
}  // namespace ombrelle
