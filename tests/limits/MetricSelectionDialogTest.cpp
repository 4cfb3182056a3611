// The metric selection dialog without its window.
#include <gtest/gtest.h>

#include "common/MessageAssertions.h"
#include "limits/LimitsTestSettings.h"
#include "limits/MetricSelectionDialogModel.h"
#include "support/ScriptedUiServices.h"

namespace ombrelle {
namespace {

using SelectionDialogTest = test::LimitsSettingsTest;

int RowOf(const MetricSelectionDialogModel& dialog, MetricId metric) {
  const auto& rows = dialog.Rows();
  for (size_t i = 0; i < rows.size(); ++i)
    if (rows[i].metric == metric) return static_cast<int>(i);
  return -1;
}

TEST_F(SelectionDialogTest, OpensOnTheCurrentSelectionWithTheProjectTab) {
  MetricSelectionDialogModel dialog;
  EXPECT_EQ(MetricSelectionDialogModel::Title(), "Select metrics to view");
  EXPECT_EQ(MetricSelectionDialogModel::TabCaptions(),
            QStringList({"Project", "File", "Class", "Procedure", "Variable"}));
  EXPECT_EQ(MetricSelectionDialogModel::ColumnCaption(1), "Metric");
  EXPECT_EQ(MetricSelectionDialogModel::ColumnCaption(2), "Description");
  EXPECT_EQ(dialog.Selections().Count(), 11);
  EXPECT_EQ(dialog.Selections().At(dialog.Selections().Selected()).text, "<Starter metrics>");
  EXPECT_TRUE(dialog.ReadOnlyLabelVisible());
  EXPECT_FALSE(dialog.RenameEnabled());
  EXPECT_FALSE(dialog.DeleteEnabled());

  const auto& first = dialog.Rows().at(0);
  EXPECT_EQ(first.key, "mtr1000");
  EXPECT_EQ(first.abbreviation, "DATE");
  EXPECT_TRUE(first.checked);
  const int lines = RowOf(dialog, 1002);
  ASSERT_GE(lines, 0);
  EXPECT_EQ(dialog.Rows()[static_cast<size_t>(lines)].abbreviation, "LINES");
  EXPECT_TRUE(dialog.Rows()[static_cast<size_t>(lines)].checked);

  dialog.SetTabIndex(3);
  const int cc = RowOf(dialog, 4120);
  ASSERT_GE(cc, 0);
  EXPECT_EQ(dialog.Rows()[static_cast<size_t>(cc)].key, "mtr4120");
  EXPECT_EQ(dialog.Rows()[static_cast<size_t>(cc)].description, "Cyclomatic complexity");
  for (const auto& row : dialog.Rows()) EXPECT_EQ(MetricDefinitions::GetMetricClass(row.metric), 3);
  dialog.SetCurrentRow(cc);
  EXPECT_TRUE(dialog.DescriptionText().startsWith("McCabe cyclomatic complexity"));
}

TEST_F(SelectionDialogTest, ChecksSpringBackInABuiltInSelection) {
  MetricSelectionDialogModel dialog;
  for (int index = 0; index < 11; ++index) {
    dialog.PickSelection(index);
    EXPECT_TRUE(dialog.Shown().ReadOnly());
    EXPECT_FALSE(dialog.DeleteEnabled());
    const auto rows = dialog.Rows();
    for (int row : {0, 2, static_cast<int>(rows.size()) - 1}) {
      const bool was = rows[static_cast<size_t>(row)].checked;
      EXPECT_EQ(dialog.SetChecked(row, !was), was) << index << " " << row;
      EXPECT_EQ(dialog.Rows()[static_cast<size_t>(row)].checked, was);
    }
  }
  EXPECT_FALSE(dialog.Close());  // nothing changed, and the last one picked was current
}

TEST_F(SelectionDialogTest, AddCheckRenameDeleteAndTheChangedAnswer) {
  ScopedScriptedUi scripted;
  {
    MetricSelectionDialogModel dialog;
    scripted.ui.inputAnswers = {QString()};  // cancelled
    dialog.Add();
    EXPECT_EQ(dialog.Selections().Count(), 11);

    scripted.ui.inputAnswers = {QStringLiteral("Mine")};
    dialog.Add();
    EXPECT_EQ(scripted.ui.inputPrompts, std::vector<QString>(2, QStringLiteral("Add selection:")));
    EXPECT_EQ(dialog.Selections().Count(), 12);
    EXPECT_EQ(dialog.Selections().At(dialog.Selections().Selected()).text, "Mine");
    EXPECT_FALSE(dialog.ReadOnlyLabelVisible());
    EXPECT_TRUE(dialog.RenameEnabled());
    // A new selection shows DATE and DAYS only.
    EXPECT_EQ(dialog.Shown().Selected(), (std::vector<MetricId>{1000, 1001}));
    EXPECT_TRUE(dialog.Rows()[0].checked);

    dialog.SetTabIndex(3);
    EXPECT_TRUE(dialog.SetChecked(RowOf(dialog, 4120), true));
    EXPECT_TRUE(dialog.SetChecked(RowOf(dialog, 4001), true));
    EXPECT_FALSE(dialog.SetChecked(RowOf(dialog, 4001), false));

    scripted.ui.inputAnswers = {QStringLiteral("Ours")};
    dialog.Rename();
    EXPECT_EQ(dialog.Selections().At(dialog.Selections().Selected()).text, "Ours");
    EXPECT_TRUE(dialog.Close());
  }
  const std::int16_t stored = MetricSelection::Current();
  ASSERT_EQ(stored, 1);
  MetricSelection saved;
  saved.Load(stored);
  EXPECT_EQ(saved.GetName(), "Ours");
  EXPECT_EQ(saved.Selected(), (std::vector<MetricId>{1000, 1001, 4120}));

  {
    MetricSelectionDialogModel dialog;
    EXPECT_EQ(dialog.Shown().GetID(), 1);
    EXPECT_FALSE(MetricSelectionDialogModel().Close());  // opened and closed: unchanged

    scripted.ui.msgAnswers = {MsgResult::No};
    dialog.Delete();
    EXPECT_UI_MESSAGE(scripted.ui, 0, "Delete Ours?", 36);
    EXPECT_EQ(dialog.Selections().Count(), 12);
    scripted.ui.msgAnswers = {MsgResult::Yes};
    dialog.Delete();
    EXPECT_EQ(dialog.Selections().Count(), 11);
    // The stored selection is gone: the fallback of the current one shows.
    EXPECT_EQ(dialog.Shown().GetID(), SelectionSet::Starter);
    EXPECT_TRUE(dialog.Close());
  }
  EXPECT_EQ(MetricSelection::Current(), SelectionSet::Starter);
  EXPECT_TRUE(EnumSubkeys(QStringLiteral("Selections")).isEmpty());
}

TEST_F(SelectionDialogTest, ShownSelectionIsSavedBeforeAnotherIsPicked) {
  MetricSelection mine;
  mine.Create(QStringLiteral("Mine"));
  mine.Save();
  MetricSelectionDialogModel dialog;
  dialog.PickSelection(dialog.Selections().FindData(1));
  dialog.SetTabIndex(1);
  dialog.SetChecked(RowOf(dialog, 2012), true);
  dialog.PickSelection(dialog.Selections().FindData(SelectionSet::All));
  MetricSelection saved;
  saved.Load(1);
  EXPECT_TRUE(saved.IsSelected(2012));
  EXPECT_TRUE(dialog.Close());  // another selection is current now
  EXPECT_EQ(MetricSelection::Current(), SelectionSet::All);
}

}  // namespace
}  // namespace ombrelle
