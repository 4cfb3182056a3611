// Options > Selections... and Options > Limits... around their dialogs.
#include "shell/OptionsCommands.h"
#include "shell/PageModelFixture.h"

namespace ombrelle::test {
namespace {

TEST_F(PageModelTest, SelectionsDialogHoldsTheComboBackAndReloadsOnlyWhenChanged) {
  const int columns = model->Pages(0).ColumnCount;
  bool guardedDuringDialog = false;
  // The dialog makes a stored selection current but says nothing changed:
  // the page stays, the combo learns the new selection.
  OptionsSelections(*model, [&] {
    guardedDuringDialog = model->SelectionGuard();
    MetricSelection mine;
    mine.Create(QStringLiteral("Dates only"));
    mine.Save();
    MetricSelection::SetCurrent(mine.GetID());
    return false;
  });
  EXPECT_TRUE(guardedDuringDialog);
  EXPECT_FALSE(model->SelectionGuard());
  EXPECT_EQ(model->Pages(0).ColumnCount, columns);
  const ListModel& combo = model->Combo(PageCombo::MetricSelection);
  EXPECT_EQ(combo.Text(), "Dates only");

  ASSERT_GT(model->FindGridColumn(1002), 0);
  OptionsSelections(*model, [] { return true; });  // changed: the page is read again
  EXPECT_LT(model->Pages(0).ColumnCount, columns);
  EXPECT_EQ(model->FindGridColumn(1000), 1);  // DATE stays, LINES is gone
  EXPECT_EQ(model->FindGridColumn(1002), 0);
  MetricSelection::Delete(1);
}

TEST_F(PageModelTest, LimitsDialogRefillsTheComboAndJudgesAgain) {
  OptionsLimits(*model, [] {
    MetricLimits limits;
    limits.Generate();
    limits.SetRules(QStringLiteral("Nothing passes"), {{1002, LimitAtMost, -1, 0}});
    limits.Save();
    MetricLimits::SetCurrentLimitID(limits.GetID());
  });
  EXPECT_EQ(model->Combo(PageCombo::MetricLimit).Text(), "Nothing passes");
  EXPECT_EQ(model->Limits().GetName(), "Nothing passes");
  EXPECT_TRUE(model->Limits().RuleExists(1002));
  MetricLimits::Delete(model->Limits().GetID());
}

}  // namespace
}  // namespace ombrelle::test
