// The two small charts beside the statistics panel: when they are drawn, the
// limit of 500 values on cursor moves, and the charts option.
#include "core/ListModel.h"
#include "pictures/Metafile.h"
#include "shell/PageModelFixture.h"

namespace ombrelle::test {
namespace {

class GridChartsTest : public PageModelTest {
 protected:
  int Made() const { return model->Panel().GridChartsMade(); }
};

TEST_F(GridChartsTest, WalkingDownALongColumnDrawsNoChartPerRow) {
  OpenAnalysis(5, "Harbour 3.1");
  ASSERT_GT(model->Pages(5).Rows, StatsPanel::kBarChartLimit);
  CursorOnMetric(4001);
  const int made = Made();
  ASSERT_TRUE(model->Panel().GridChart());
  ASSERT_TRUE(model->Panel().PageChart());
  for (int i = 0; i < 30; ++i) grid->MoveCursor(1, 0);
  EXPECT_EQ(grid->GetCurRow(), 31);
  EXPECT_EQ(Made(), made);
  // A sort draws it anew, without a busy cursor left behind.
  model->SortClicked(model->FindGridColumn(4001));
  EXPECT_EQ(Made(), made + 1);
  EXPECT_EQ(scripted.ui.BusyCount(), 0);
  EXPECT_TRUE(scripted.ui.messages.empty());
}

TEST_F(GridChartsTest, ShortColumnIsDrawnAtEachRowWithTheCursorsBar) {
  OpenAnalysis(3, "Billing 2.2");
  ASSERT_EQ(model->Pages(3).Rows, 9);
  CursorOnMetric(2001);
  const int made = Made();
  for (int i = 0; i < 3; ++i) grid->MoveCursor(1, 0);
  EXPECT_EQ(Made(), made + 3);
  EXPECT_TRUE(scripted.ui.messages.empty());
}

TEST_F(GridChartsTest, ChartsOptionEmptiesAndRefillsBothPlaces) {
  OpenAnalysis(3, "Billing 2.2");
  CursorOnMetric(2001);
  int changes = 0;
  model->Panel().SetChartsListener([&changes] { ++changes; });
  model->Panel().ToggleDisplayCharts();
  EXPECT_FALSE(model->Panel().PageChart());
  EXPECT_FALSE(model->Panel().GridChart());
  const int made = Made();
  grid->MoveCursor(1, 0);
  CursorOnMetric(2011);
  EXPECT_EQ(Made(), made);
  EXPECT_FALSE(model->Panel().GridChart());
  model->Panel().ToggleDisplayCharts();
  EXPECT_TRUE(model->Panel().PageChart());
  EXPECT_TRUE(model->Panel().GridChart());
  EXPECT_GE(changes, 4);
}

TEST_F(GridChartsTest, LoadingAPageEmptiesBothPlacesFirst) {
  OpenAnalysis(3, "Billing 2.2");
  CursorOnMetric(2001);
  std::vector<bool> seen;
  model->Panel().SetChartsListener(
      [this, &seen] { seen.push_back(model->Panel().PageChart() || model->Panel().GridChart()); });
  model->TabClicked(5);
  // The page chart goes first, then the bar chart.
  ASSERT_GE(seen.size(), 2u);
  EXPECT_FALSE(seen[1]);
  EXPECT_TRUE(model->Panel().PageChart());
}

}  // namespace
}  // namespace ombrelle::test
