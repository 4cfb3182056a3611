// The table as the grid sees it: sorting, rotation, cell texts and red
// cells.
#include <cmath>
#include <map>

#include "shell/PageModelFixture.h"
#include "support/FormatNum.h"

namespace ombrelle::test {
namespace {

constexpr quint32 kRed = 255;

// Header text -> cell text of one column, for headers that occur once.
std::map<QString, QString> ColumnByHeader(PageModelTest& test, const OwnerGridLogic& grid,
                                          int column) {
  std::map<QString, QString> values;
  std::map<QString, int> seen;
  for (int row = 1; row <= grid.Rows(); ++row) {
    const QString header = test.Cell(row, 1).first;
    ++seen[header];
    values[header] = test.Cell(row, column).first;
  }
  for (const auto& [header, count] : seen)
    if (count > 1) values.erase(header);
  return values;
}

class PageModelSortTest : public PageModelTest, public testing::WithParamInterface<int> {};

// On every kind of page: ascending, then the second click descending; rows
// keep their values, and the column reads in order.
TEST_P(PageModelSortTest, SortAndReverseKeepRowsTogether) {
  const int page = GetParam();
  model->TabClicked(page);
  const int column =
      model->FindGridColumn(page <= 2 ? 1009 : MetricId(page == 3 ? 2001 : 4001)) + 1;
  ASSERT_GT(column, 1);
  const auto unsorted = ColumnByHeader(*this, *grid, column);
  ASSERT_GT(unsorted.size(), 2u);

  for (const int direction : {1, -1}) {
    SCOPED_TRACE(direction);
    grid->SortClick(direction * column);
    EXPECT_EQ(grid->SortColumn(), direction * column);
    EXPECT_EQ(model->Pages(page).SortColumn, direction * column);
    double previous = direction > 0 ? -HUGE_VAL : HUGE_VAL;
    int defined = 0;
    for (int row = 1; row <= grid->Rows(); ++row) {
      const QVariant value = model->CellValue(row, column);
      if (!value.isValid()) continue;
      ++defined;
      EXPECT_TRUE(direction > 0 ? value.toDouble() >= previous : value.toDouble() <= previous)
          << "row " << row;
      previous = value.toDouble();
    }
    EXPECT_GT(defined, 2);
    for (const auto& [header, text] : ColumnByHeader(*this, *grid, column))
      EXPECT_EQ(text, unsorted.at(header)) << header.toStdString();
  }

  // Back to the header column: the metric column returns to arrival order.
  grid->SortClick(1);
  const CStats* series = model->Series(model->ColumnToSeries(page, column));
  EXPECT_EQ(series->CurrentOrder(), series->DefaultOrder());
  if (page <= 2) {
    EXPECT_EQ(grid->SortColumn(), 0);
    EXPECT_EQ(model->Pages(page).SortColumn, 0);
    int row = 1;
    model->GridRowToDataRow(row, 1);
    EXPECT_EQ(row, 1);
  } else {
    EXPECT_EQ(grid->SortColumn(), 1);
    grid->SortClick(-1);
    EXPECT_EQ(model->Pages(page).SortColumn, -1);
    int first = 1;
    int last = grid->Rows();
    model->GridRowToDataRow(first, 1);
    model->GridRowToDataRow(last, 1);
    EXPECT_EQ(first, model->Pages(page).RowOrder.back());
    EXPECT_EQ(last, model->Pages(page).RowOrder.front());
  }
  for (const auto& [header, text] : ColumnByHeader(*this, *grid, column))
    EXPECT_EQ(text, unsorted.at(header)) << header.toStdString();
}

INSTANTIATE_TEST_SUITE_P(EachPageKind, PageModelSortTest, testing::Values(0, 1, 2, 3, 5));

TEST_F(PageModelTest, SeriesInRowOrderFollowsTheDisplay) {
  model->TabClicked(3);
  const int column = model->FindGridColumn(2001) + 1;
  grid->SortClick(-column);
  const int index = model->ColumnToSeries(3, column);
  CStats ordered = model->SeriesInRowOrder(index);
  const CStats* series = model->Series(index);
  ASSERT_EQ(ordered.count(), series->count());
  for (int row = 1; row <= grid->Rows(); ++row) {
    double value = 0;
    ASSERT_TRUE(ordered.ValueAtIndexDefined(row, value));
    EXPECT_EQ(model->CellValue(row, column).toDouble(), value);
  }
  EXPECT_EQ(ordered.Sum, series->Sum);
  EXPECT_EQ(ordered.TheorMin, series->TheorMin);
  EXPECT_EQ(ordered.TheorMinValue, series->TheorMinValue);
}

TEST_F(PageModelTest, RotationRoundTrip) {
  model->TabClicked(5);
  const PageRecord& page = model->Pages(5);
  grid->SortClick(0);
  const int metricColumn = model->FindGridColumn(4012) + 1;
  grid->PlaceCursor(3, metricColumn);
  const QString before = Cell(3, metricColumn).first;
  const QString header = Cell(3, 1).first;
  const int rows = grid->Rows();
  const int columns = grid->Columns();

  model->ToggleRotated();
  EXPECT_TRUE(model->Rotated());
  EXPECT_EQ(view.menuChecks, 1);
  EXPECT_FALSE(grid->Sortable());
  EXPECT_EQ(page.SortColumn, 0);
  EXPECT_EQ(grid->Rows(), page.ColumnCount);
  EXPECT_EQ(grid->Columns(), page.Rows + 2);
  EXPECT_EQ(grid->FixedColumns(), 2);
  EXPECT_EQ(grid->ColumnCaption(1), "Metric");
  EXPECT_EQ(grid->ColumnCaption(2), "Procedure");
  EXPECT_EQ(grid->ColumnCaption(5), header);
  EXPECT_EQ(grid->ColumnAlignment(1), 0);
  EXPECT_EQ(grid->ColumnAlignment(5), 1);
  EXPECT_EQ(grid->ColumnWidth(1), 100.0f);
  EXPECT_EQ(grid->ColumnWidth(2), 240.0f);
  EXPECT_EQ(grid->GetCurRow(), metricColumn - 1);
  EXPECT_EQ(grid->GetCurColumn(), 5);
  EXPECT_EQ(model->CurrentMetric(), 4012);
  EXPECT_EQ(Cell(metricColumn - 1, 5).first, before);
  EXPECT_EQ(Cell(metricColumn - 1, 1).first, "LLOC");
  EXPECT_EQ(Cell(metricColumn - 1, 2).first, model->Definitions().GetMetricName(4012, NameLong));
  // The cursor on another row is another metric.
  grid->PlaceCursor(1, 5);
  EXPECT_EQ(model->CurrentMetric(), model->SeriesMetric(page.FirstColumn));
  grid->PlaceCursor(metricColumn - 1, 5);
  // A rotated table cannot be sorted.
  grid->SortClick(4);
  EXPECT_EQ(grid->SortColumn(), 0);

  model->ToggleRotated();
  EXPECT_FALSE(model->Rotated());
  EXPECT_TRUE(grid->Sortable());
  EXPECT_EQ(grid->Rows(), rows);
  EXPECT_EQ(grid->Columns(), columns);
  EXPECT_EQ(grid->GetCurRow(), 3);
  EXPECT_EQ(grid->GetCurColumn(), metricColumn);
  EXPECT_EQ(Cell(3, metricColumn).first, before);
  EXPECT_EQ(grid->ColumnCaption(1), "Procedure");
  EXPECT_EQ(model->CurrentMetric(), 4012);
}

// Red is "outside limits" on pages 0, 1, 3 to 6 and on page 2 with plain
// values; differences are never judged.
TEST_F(PageModelTest, RedCellsOnlyWhereValuesBreakTheirRule) {
  struct Case {
    int page;
    int style;
    bool judged;
    bool someOutside;  // the first screen holds values outside their rules
  };
  const Case cases[] = {{0, 0, true, true},  {1, 0, true, true},  {2, 0, true, true},
                        {2, 1, false, true}, {2, 2, false, true}, {3, 0, true, false},
                        {5, 0, true, true},  {6, 0, true, false}};
  int redsSeen = 0;
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "page " << c.page << " style " << c.style);
    if (model->CurrentPage() != c.page) model->TabClicked(c.page);
    if (c.page == 2) model->ChooseComboItem(PageCombo::ProjectInTimeStyle, c.style);
    int outside = 0;
    int reds = 0;
    for (int row = 1; row <= std::min(grid->Rows(), 60); ++row) {
      for (int column = 2; column <= grid->Columns(); ++column) {
        const auto [text, colour] = Cell(row, column);
        const int index = model->ColumnToSeries(c.page, column);
        int dataRow = row;
        model->GridRowToDataRow(dataRow, column);
        double value = 0;
        const bool defined = model->Series(index)->ValueAtIndexDefined(dataRow, value);
        EXPECT_EQ(text == "-", !defined);
        if (defined) {
          EXPECT_EQ(text, FormatMetric(model->SeriesInfo(index).Format, value));
        }
        const bool broken =
            defined && !model->Limits().IsInsideLimits(model->SeriesMetric(index), value,
                                                       *model->Series(index));
        outside += broken ? 1 : 0;
        reds += colour == kRed ? 1 : 0;
        EXPECT_EQ(colour == kRed, c.judged && broken) << row << "," << column;
        if (colour != kRed) {
          EXPECT_EQ(colour, grid->ForeColor());
        }
      }
    }
    EXPECT_EQ(outside > 0, c.someOutside);
    redsSeen += reds;
  }
  EXPECT_GT(redsSeen, 0);
}

TEST_F(PageModelTest, ColumnWidthsComeFromTheTexts) {
  model->TabClicked(3);
  // The widest file name sets the header column, never below 240.
  EXPECT_GE(grid->ColumnWidth(1), 240.0f);
  EXPECT_EQ(model->ColumnWidthFor(QStringLiteral("x"), 50), 50);
  const int wide = model->ColumnWidthFor(QString(200, QLatin1Char('W')), 50);
  EXPECT_GT(wide, 300);
  view.gridWidth = 600;
  EXPECT_EQ(model->ColumnWidthFor(QString(200, QLatin1Char('W')), 50), 200);
  // A date column is sized on a full date, not on "DATE".
  model->TabClicked(0);
  EXPECT_EQ(grid->ColumnWidth(2), model->ColumnWidthFor(FormatMetric(9, 36525), 50));
}

TEST_F(PageModelTest, ClearAllPagesKeepsTheMetric) {
  model->TabClicked(3);
  CursorOnMetric(2012);
  model->ClearAllPages();
  EXPECT_EQ(model->SeriesUpperBound(), 0);
  EXPECT_EQ(grid->Rows(), 0);
  EXPECT_EQ(grid->Columns(), 0);
  EXPECT_EQ(grid->FixedColumns(), 0);
  EXPECT_FALSE(model->Pages(3).Loaded);
  EXPECT_EQ(model->CurrentMetric(), 2012);
  EXPECT_EQ(model->CellValue(1, 1), QVariant());
  model->LoadPage(3);
  EXPECT_EQ(model->CurrentMetric(), 2012);
  EXPECT_EQ(grid->GetCurColumn(), model->FindGridColumn(2012) + 1);
}

}  // namespace
}  // namespace ombrelle::test
