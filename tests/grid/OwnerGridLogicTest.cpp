#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "common/MessageAssertions.h"
#include "grid/GridTestFixture.h"

namespace ombrelle::test {
namespace {

using Events = std::vector<std::string>;

TEST(OwnerGridScale, ColumnsAndRowsAreClampedAndScaled) {
  struct Case {
    int columns, expectedColumns, hScale;
    int rows, expectedRows, vScale;
  };
  const std::vector<Case> cases = {
      {-5, 0, 1, -1, 0, 1},
      {3, 3, 1, 32767, 32767, 1},
      {32767, 32767, 1, 32768, 32768, 2},
      {262144, 262144, 9, 100000, 100000, 4},
      {262145, 262144, 9, 1000000, 1000000, 31},
      {0, 0, 1, 2147483647, 2147483647, 65536},
  };
  for (const Case& c : cases) {
    OwnerGridLogic grid;
    grid.SetColumns(c.columns);
    grid.SetRows(c.rows);
    EXPECT_EQ(grid.Columns(), c.expectedColumns) << c.columns;
    EXPECT_EQ(grid.HScale(), c.hScale) << c.columns;
    EXPECT_EQ(grid.Rows(), c.expectedRows) << c.rows;
    EXPECT_EQ(grid.VScale(), c.vScale) << c.rows;
  }
}

using OwnerGridScroll = GridFixture;

TEST_F(OwnerGridScroll, HundredThousandRowsScrollInStepsOfFour) {
  SizeForRows(20);  // rows top..top+19 are in view
  grid->SetRows(100000);
  ASSERT_EQ(grid->VScale(), 4);
  ASSERT_EQ(grid->VisibleRange(false).bottom - grid->VisibleRange(false).top, 19);
  // The bar is laid out as if the horizontal bar showed (19 rows, span 18);
  // its last step still shows the last row: ceiling(99981 / 4) + 1.
  EXPECT_EQ(grid->VScroll().maximum, 24997);
  EXPECT_TRUE(grid->VScroll().visible);

  struct Case {
    int row;
    int topRow;  // 1 + rows hidden above, a multiple of 4
    int barValue;
  };
  const std::vector<Case> cases = {
      {99990, 99973, 24994},   // ceiling(99970 / 4) * 4 = 99972 hidden
      {100000, 99981, 24996},  // 99980 hidden rows
      {99990, 99981, 24996},   // in view: no scroll
      {50001, 50001, 12501},   // upward: the row becomes the top row
      {50003, 50001, 12501},   // in view: no scroll
      {50030, 50013, 12504},   // ceiling(50010 / 4) * 4 = 50012 hidden
      {2, 1, 1},
  };
  for (const Case& c : cases) {
    grid->PlaceCursor(c.row, 1);
    const OwnerGridLogic::Range range = grid->VisibleRange(false);
    EXPECT_EQ(grid->TopRow(), c.topRow) << c.row;
    EXPECT_EQ((grid->TopRow() - 1) % 4, 0) << c.row;
    EXPECT_EQ(grid->VScroll().value, c.barValue) << c.row;
    EXPECT_LE(range.top, c.row);
    EXPECT_GE(range.bottom, c.row);
    EXPECT_EQ(grid->GetCurRow(), c.row);
  }
}

TEST_F(OwnerGridScroll, AllColumnsScrollInStepsOfNineAndReachTheLast) {
  host.size = QSize(1200, 300);  // 1184 pixels hold 11 columns
  grid->SetColumns(262144);
  ASSERT_EQ(grid->HScale(), 9);
  // Columns 262134..262144 fit at the end: ceiling(262133 / 9) + 1.
  EXPECT_EQ(grid->HScroll().maximum, 29127);
  struct Case {
    int column;
    int left;  // always 1 + a multiple of 9
  };
  const std::vector<Case> cases = {
      {262144, 262135},  // 262134 fits, rounded up to a step
      {100000, 100000},  // leftward: 1 + (99999 / 9) * 9
      {100010, 100000},  // in view
      {100011, 100009},  // 100001 fits first, rounded up
      {1, 1},
  };
  for (const Case& c : cases) {
    grid->PlaceCursor(1, c.column);
    const OwnerGridLogic::Range range = grid->VisibleRange(false);
    EXPECT_EQ(grid->LeftColumn(), c.left) << c.column;
    EXPECT_LE(range.left, c.column) << c.column;
    EXPECT_GE(range.right, c.column) << c.column;
  }
}

TEST_F(OwnerGridScroll, MouseScrollMovesTheBarWithinItsEndsAndNotTheCursor) {
  SizeForRows(10);
  grid->SetRows(1000);
  ASSERT_EQ(grid->VScroll().largeChange, 10);
  ASSERT_EQ(grid->VScroll().maximum, 993);  // (1000 - 8 + 1) / 1
  struct Case {
    int y;
    bool page;
    int value;
    int fullRepaints;
  };
  const std::vector<Case> cases = {
      {-3, false, 1, 0},                          // at the top: nothing
      {3, false, 4, 1},                           // three lines
      {2, true, 24, 1},                           // two pages of ten
      {-30, false, 1, 1},                         // stops at the top
      {5000, false, 993, 1}, {1, false, 993, 0},  // at the end: nothing
  };
  for (const Case& c : cases) {
    host.Clear();
    grid->Mouse_Scroll(0, c.y, c.page);
    EXPECT_EQ(grid->VScroll().value, c.value) << c.y;
    EXPECT_EQ(host.fullRepaints, c.fullRepaints) << c.y;
    EXPECT_EQ(grid->GetCurRow(), 1);
  }
  // Without y the horizontal bar moves.
  grid->SetColumns(20);
  ASSERT_TRUE(grid->HScroll().visible);
  grid->Mouse_Scroll(2, 0, false);
  EXPECT_EQ(grid->LeftColumn(), 3);
  EXPECT_EQ(grid->GetCurColumn(), 1);
}

TEST_F(OwnerGridScroll, WideColumnShowsFromItsLeftEdgeAndHidesTheNext) {
  SizeForRows(5);
  grid->SetColumns(4);
  grid->SetColumnWidth(2, 1000);
  grid->PlaceCursor(1, 2);
  OwnerGridLogic::Range range = grid->VisibleRange(false);
  EXPECT_EQ(range.left, 2);
  EXPECT_EQ(range.right, 2);
  // Column 3 comes into view only by scrolling to it.
  grid->PlaceCursor(1, 3);
  range = grid->VisibleRange(false);
  EXPECT_EQ(range.left, 3);
  EXPECT_EQ(range.right, 4);
}

TEST_F(OwnerGridScroll, RefreshDisabledPostponesScrollBarWork) {
  grid->SetColumns(10);
  host.Clear();
  grid->DisableRefresh();
  for (int c = 1; c <= 10; ++c) grid->SetColumnWidth(c, 20);
  EXPECT_EQ(host.scrollBarChanges, 0);
  EXPECT_TRUE(grid->HScroll().visible);  // still the old layout
  grid->EnableRefresh();
  EXPECT_EQ(host.scrollBarChanges, 1);
  EXPECT_FALSE(grid->HScroll().visible);
  EXPECT_EQ(host.fullRepaints, 0);  // the owner calls Refresh
  grid->Refresh();
  EXPECT_EQ(host.fullRepaints, 1);
}

using OwnerGridCursor = GridFixture;

TEST_F(OwnerGridCursor, PlaceCursorWithFixedColumnsRaisesEventsInOrder) {
  SizeForRows(10);
  grid->SetColumns(5);
  grid->SetRows(10);
  SetWidths(5, 50);
  owner.events.clear();

  struct Step {
    const char* what;
    int row, column;  // PlaceCursor, or FixedColumns when row is -1
    int cursorRow, cursorColumn;
    Events events;
  };
  const std::vector<Step> steps = {
      {"fix two", -1, 2, 1, 3, {"EnterColumn 3", "EnterCell 1 3"}},
      {"into the fixed ones", 1, 1, 1, 3, {}},
      {"row only", 4, 2, 4, 3, {"EnterRow 4", "EnterCell 4 3"}},
      {"column beyond", 4, 9, 4, 5, {"EnterColumn 5", "EnterCell 4 5"}},
      {"row beyond", 11, 4, 0, 4, {"EnterColumn 4"}},
      {"back to a row", 2, 4, 2, 4, {"EnterRow 2", "EnterCell 2 4"}},
      {"both", 3, 5, 3, 5, {"EnterColumn 5", "EnterRow 3", "EnterCell 3 5"}},
      {"all fixed", -1, 5, 3, 0, {}},
  };
  for (const Step& s : steps) {
    owner.events.clear();
    if (s.row == -1)
      grid->SetFixedColumns(s.column);
    else
      grid->PlaceCursor(s.row, s.column);
    EXPECT_EQ(grid->GetCurRow(), s.cursorRow) << s.what;
    EXPECT_EQ(grid->GetCurColumn(), s.cursorColumn) << s.what;
    EXPECT_EQ(owner.events, s.events) << s.what;
  }
}

TEST_F(OwnerGridCursor, FixedColumnsOutsideTheColumnsAreRefused) {
  grid->SetColumns(5);
  grid->SetFixedColumns(2);
  grid->SetFixedColumns(6);
  grid->SetFixedColumns(-1);
  EXPECT_EQ(grid->FixedColumns(), 2);
  EXPECT_EQ(grid->HScroll().minimum, 3);
}

TEST_F(OwnerGridCursor, NoRowsLeavesTheCursorOnRowZeroWithoutCellEvents) {
  grid->SetColumns(1);
  grid->SetRows(0);
  EXPECT_EQ(grid->GetCurRow(), 0);
  grid->PlaceCursor(1, 1);
  grid->MoveCursor(1, 0);
  EXPECT_EQ(grid->GetCurRow(), 0);
  EXPECT_EQ(grid->GetCurColumn(), 1);
  for (const std::string& e : owner.events) EXPECT_EQ(e.rfind("Enter", 0), std::string::npos) << e;
}

TEST_F(OwnerGridCursor, CursorMoveRepaintsOnlyChangedCellsAndHeader) {
  SizeForRows(10);
  grid->SetColumns(5);
  grid->SetRows(10);
  SetWidths(5, 50);
  grid->SetFixedColumns(2);
  grid->PlaceCursor(1, 3);
  host.Clear();
  grid->PlaceCursor(2, 4);
  const int hh = grid->HeaderHeight();
  const int rh = grid->RowHeight();
  const int y1 = hh + 1;
  const int y2 = hh + 1 + rh;
  const std::vector<QRect> expected = {
      QRect(100, y1, 50, rh),                                      // old cursor cell
      QRect(0, y1, 50, rh),                                        // fixed cells of the old row
      QRect(50, y1, 50, rh),  QRect(150, y2, 50, rh),              // new cursor cell
      QRect(0, y2, 50, rh),                                        // fixed cells of the new row
      QRect(50, y2, 50, rh),  QRect(0, 0, 400 - host.extent, hh),  // header, for its highlight
  };
  EXPECT_EQ(host.rects, expected);
  EXPECT_EQ(host.fullRepaints, 0);
}

TEST_F(OwnerGridCursor, HitTestWalksFixedColumnsThenTheScrolledOnes) {
  SizeForRows(5);
  grid->SetColumns(10);
  grid->SetRows(3);
  SetWidths(10, 50);
  grid->SetFixedColumns(1);
  grid->PlaceCursor(1, 10);  // scrolls so that column 10 is in view
  const int left = grid->LeftColumn();
  ASSERT_EQ(left, 5);  // 384 - 50 leaves room for columns 5..10 (300)
  const int hh = grid->HeaderHeight();
  const int rh = grid->RowHeight();
  struct Case {
    int x, y;
    bool hit;
    int row, column;
  };
  const std::vector<Case> cases = {
      {0, hh, true, 0, 1},     // header over the fixed column
      {49, -20, true, 0, 1},   // above the surface counts as the header
      {50, 5, true, 0, left},  // after the fixed column comes the left column
      {99, hh + 1, true, 1, left},
      {100, hh + rh, true, 2, left + 1},
      {349, hh + 2 * rh, true, 3, 10},
      {350, hh + 1, false, 0, 0},      // beyond the last column
      {-1, hh + 1, false, 1, 0},       // left of the surface
      {10, hh + 3 * rh, false, 4, 0},  // below the last row
  };
  for (const Case& c : cases) {
    const OwnerGridLogic::Hit hit = grid->HitTest(c.x, c.y);
    EXPECT_EQ(hit.hit, c.hit) << c.x << "," << c.y;
    if (c.hit) {
      EXPECT_EQ(hit.row, c.row) << c.x << "," << c.y;
      EXPECT_EQ(hit.column, c.column) << c.x << "," << c.y;
    }
  }
}

TEST_F(OwnerGridCursor, MouseMovesTheCursorAndDraggingAboveScrollsUp) {
  SizeForRows(5);
  grid->SetRows(100);
  const int hh = grid->HeaderHeight();
  const int rh = grid->RowHeight();
  grid->OnMouseDown(150, hh + 1 + 2 * rh, OwnerGridLogic::Button::Left);
  EXPECT_EQ(grid->GetCurRow(), 3);
  EXPECT_EQ(grid->GetCurColumn(), 2);
  grid->PlaceCursor(40, 2);
  grid->PlaceCursor(grid->TopRow(), 2);
  ASSERT_EQ(grid->TopRow(), 36);
  grid->OnMouseMove(150, -5, true);
  grid->OnMouseMove(150, -6, true);
  EXPECT_EQ(grid->GetCurRow(), 34);
  EXPECT_EQ(grid->TopRow(), 34);
  grid->OnMouseUp(150, -6, OwnerGridLogic::Button::Left);
  // A header press with Sortable false changes nothing.
  owner.events.clear();
  grid->OnMouseDown(50, 2, OwnerGridLogic::Button::Left);
  EXPECT_EQ(grid->GetCurRow(), 34);
  EXPECT_EQ(grid->GetCurColumn(), 2);
  EXPECT_TRUE(owner.events.empty());
  // A double click names the cursor cell.
  grid->OnDoubleClick();
  EXPECT_EQ(owner.events, Events{"DblClickCell 34 2"});
}

TEST_F(OwnerGridCursor, RightClickRaisesPopupOrShowsTheTextItself) {
  ScopedScriptedUi scripted;
  SizeForRows(5);
  grid->SetRows(10);
  grid->SetColumnCaption(3, QStringLiteral("Lines"));
  const int hh = grid->HeaderHeight();
  const int rh = grid->RowHeight();
  const int rowTwo = hh + 1 + rh;

  grid->OnMouseDown(250, rowTwo, OwnerGridLogic::Button::Right);
  grid->OnMouseUp(250, rowTwo, OwnerGridLogic::Button::Right);
  EXPECT_EQ(owner.events.back(), "Popup 2 3");
  owner.events.clear();
  grid->OnMouseUp(250, 3, OwnerGridLogic::Button::Right);  // header: no popup
  EXPECT_TRUE(owner.events.empty());
  EXPECT_TRUE(scripted.ui.messages.empty());

  grid->SetAutoPopup(true);
  grid->OnMouseUp(250, rowTwo, OwnerGridLogic::Button::Right);
  grid->OnMouseUp(250, 3, OwnerGridLogic::Button::Right);
  EXPECT_TRUE(owner.events.empty());
  ASSERT_EQ(scripted.ui.messages.size(), 2u);
  EXPECT_UI_MESSAGE(scripted.ui, 0, "r2c3", MsgStyle::Information);
  EXPECT_UI_MESSAGE(scripted.ui, 1, "Lines", MsgStyle::Information);
}

using OwnerGridSort = GridFixture;

TEST_F(OwnerGridSort, HeaderClicksNeverReturnToUnsortedButKeysDo) {
  SizeForRows(5);
  grid->SetColumns(5);
  SetWidths(5, 50);
  grid->SetSortable(true);
  grid->PlaceCursor(1, 2);
  owner.events.clear();
  const int hh = grid->HeaderHeight();
  enum Kind { Click, Plus, Minus };
  struct Step {
    Kind kind;
    int column;  // clicked column; ignored for keys (they use the cursor column 2)
    int sort;
    Events events;
  };
  const std::vector<Step> steps = {
      {Click, 2, 2, {"SortBy 2"}},
      {Click, 2, -2, {"SortBy -2"}},
      {Click, 2, 2, {"SortBy 2"}},
      {Click, 4, 4, {"SortBy 4"}},
      {Click, 4, -4, {"SortBy -4"}},
      {Plus, 0, 2, {"SortBy 2"}},
      {Plus, 0, 0, {"SortBy 0"}},  // plus on the ascending column: unsorted
      {Minus, 0, -2, {"SortBy -2"}},
      {Minus, 0, 0, {"SortBy 0"}},  // minus on the descending
                                    // column: unsorted
      {Minus, 0, -2, {"SortBy -2"}},
      {Plus, 0, 2, {"SortBy 2"}},
  };
  for (size_t i = 0; i < steps.size(); ++i) {
    const Step& s = steps[i];
    owner.events.clear();
    if (s.kind == Click) {
      grid->OnMouseDown(s.column * 50 - 25, hh / 2, OwnerGridLogic::Button::Left);
      grid->OnMouseUp(s.column * 50 - 25, hh / 2, OwnerGridLogic::Button::Left);
    } else {
      grid->OnKeyDown(s.kind == Plus ? GridKey::KeypadPlus : GridKey::KeypadMinus, 0);
      owner.events.erase(owner.events.begin());  // the KeyDown entry
    }
    EXPECT_EQ(grid->SortColumn(), s.sort) << "step " << i;
    EXPECT_EQ(owner.events, s.events) << "step " << i;
  }
  EXPECT_EQ(grid->GetCurRow(), 1);
  EXPECT_EQ(grid->GetCurColumn(), 2);
}

TEST_F(OwnerGridSort, OwnerMayChangeTheSortColumn) {
  grid->SetColumns(5);
  grid->SetSortable(true);
  owner.sortAnswer = -3;
  grid->HeaderClick(1);
  EXPECT_EQ(grid->SortColumn(), -3);
  owner.sortAnswer = 9;  // beyond the columns: no sort mark
  grid->HeaderClick(2);
  EXPECT_EQ(grid->SortColumn(), 0);
}

TEST_F(OwnerGridSort, SortableFalseRaisesSortByZero) {
  grid->SetColumns(5);
  grid->SetSortable(true);
  grid->HeaderClick(3);
  owner.events.clear();
  grid->SetSortable(false);
  EXPECT_EQ(owner.events, Events{"SortBy 0"});
  EXPECT_EQ(grid->SortColumn(), 0);
  grid->OnMouseDown(250, 2, OwnerGridLogic::Button::Left);  // header clicks need Sortable
  grid->OnKeyDown(GridKey::KeypadPlus, 0);
  EXPECT_EQ(grid->SortColumn(), 0);
}

TEST_F(OwnerGridSort, SortColumnBeyondColumnsIsRefusedAndReducingColumnsClearsIt) {
  grid->SetColumns(5);
  grid->SetSortColumn(-5);
  EXPECT_EQ(grid->SortColumn(), -5);
  grid->SetSortColumn(6);
  EXPECT_EQ(grid->SortColumn(), -5);
  grid->SetColumns(5);
  EXPECT_EQ(grid->SortColumn(), -5);
  grid->SetColumns(4);
  EXPECT_EQ(grid->SortColumn(), 0);
  EXPECT_TRUE(owner.events.empty());
}

TEST_F(OwnerGridSort, PointerOverHeaderShowsTheSortDirectionToCome) {
  grid->SetColumns(5);
  grid->SetSortable(true);
  grid->SetSortColumn(2);
  const int hh = grid->HeaderHeight();
  grid->OnMouseMove(150, hh - 1, false);
  EXPECT_EQ(host.pointer, GridPointer::Up);
  grid->OnMouseMove(250, hh - 1, false);
  EXPECT_EQ(host.pointer, GridPointer::Down);
  grid->OnMouseMove(250, hh + 5, false);
  EXPECT_EQ(host.pointer, GridPointer::Default);
  // After a sort the pointer follows the new mark under it.
  grid->OnMouseMove(250, hh - 1, false);
  grid->HeaderClick(3);
  EXPECT_EQ(host.pointer, GridPointer::Up);
}

}  // namespace
}  // namespace ombrelle::test
