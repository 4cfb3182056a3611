#include <algorithm>
#include <set>
#include <utility>

#include <gtest/gtest.h>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QRegion>

#include "grid/GridColours.h"
#include "grid/GridTestFixture.h"

namespace ombrelle::test {
namespace {

using Cells = std::set<std::pair<int, int>>;

// A 1,000,000 x 50 table with one fixed column on a 400 x 300 surface.
class OwnerGridPaint : public GridFixture {
 protected:
  void SetUp() override {
    GridFixture::SetUp();
    grid->SetColumns(50);
    grid->SetRows(1000000);
    grid->SetFixedColumns(1);
    image = QImage(host.size, QImage::Format_RGB32);
    owner.requested.clear();
  }

  Cells Paint(const QRegion& region) {
    owner.requested.clear();
    owner.colours.clear();
    QPainter painter(&image);
    grid->Redraw(painter, region);
    return Cells(owner.requested.begin(), owner.requested.end());
  }

  QImage image;
};

TEST_F(OwnerGridPaint, FullPaintAsksForEachVisibleCellOnce) {
  grid->PlaceCursor(500000, 20);
  ASSERT_TRUE(grid->VScroll().visible);
  ASSERT_TRUE(grid->HScroll().visible);
  const int width = 400 - host.extent;
  const int height = 300 - host.extent;
  const int top = grid->TopRow();
  const int left = grid->LeftColumn();
  // Rows start at the header height + 1; a row partly in view is painted, as
  // is a column that starts within the width.
  const int rows =
      (height - (grid->HeaderHeight() + 1) + grid->RowHeight() - 1) / grid->RowHeight();
  const int dataColumns = (width - 100 + 99) / 100;
  Cells expected;
  for (int r = top; r < top + rows; ++r) {
    expected.insert({r, 1});
    for (int c = left; c < left + dataColumns; ++c) expected.insert({r, c});
  }
  const Cells asked = Paint(QRegion(0, 0, 400, 300));
  EXPECT_EQ(asked, expected);
  EXPECT_EQ(owner.requested.size(), expected.size());  // none twice
  EXPECT_EQ(expected.size(), static_cast<size_t>(rows * (1 + dataColumns)));
}

TEST_F(OwnerGridPaint, CursorMovePaintsOnlyTheChangedCells) {
  grid->PlaceCursor(3, 2);
  host.Clear();
  grid->PlaceCursor(4, 3);
  ASSERT_EQ(host.fullRepaints, 0);
  QRegion changed;
  for (const QRect& rect : host.rects) changed += rect;
  const Cells expected = {{3, 1}, {3, 2}, {4, 1}, {4, 3}};
  EXPECT_EQ(Paint(changed), expected);
}

TEST_F(OwnerGridPaint, RefreshDisabledPaintsNothing) {
  grid->DisableRefresh();
  EXPECT_TRUE(Paint(QRegion(0, 0, 400, 300)).empty());
  grid->EnableRefresh();
  EXPECT_FALSE(Paint(QRegion(0, 0, 400, 300)).empty());
}

TEST_F(OwnerGridPaint, CellsAskedWithTheTextColourInForce) {
  grid->PlaceCursor(2, 3);
  grid->SetForeColor(0x123456);
  struct Case {
    bool enabled;
    int row, column;
    quint32 colour;
  };
  const std::vector<Case> cases = {
      {true, 2, 3, 0},         // cursor cell: highlight text
      {true, 2, 1, 0},         // fixed cell in the cursor row
      {true, 2, 2, 0x123456},  // beside the cursor
      {true, 1, 1, 0x123456},
      {false, 2, 3, SysColour::GrayText},
      {false, 1, 2, SysColour::GrayText},
  };
  for (const Case& c : cases) {
    grid->SetEnabled(c.enabled);
    Paint(QRegion(0, 0, 400, 300));
    const auto at =
        std::find(owner.requested.begin(), owner.requested.end(), std::make_pair(c.row, c.column));
    ASSERT_NE(at, owner.requested.end());
    EXPECT_EQ(owner.colours[at - owner.requested.begin()], c.colour) << c.row << "," << c.column;
  }
}

TEST(OwnerGridColours, ValuesAreBgrAndSystemColoursResolve) {
  EXPECT_EQ(ColourFromValue(255), QColor(255, 0, 0));
  EXPECT_EQ(ColourFromValue(0xFFF0F0), QColor(240, 240, 255));
  EXPECT_EQ(ColourFromValue(13811126), QColor(0xB6, 0xBD, 0xD2));
  EXPECT_EQ(ValueFromColour(QColor(1, 2, 3)), 0x030201u);
  EXPECT_EQ(ColourFromValue(SysColour::Window), QGuiApplication::palette().color(QPalette::Base));
  EXPECT_EQ(ColourFromValue(SysColour::WindowText),
            QGuiApplication::palette().color(QPalette::Text));
  EXPECT_EQ(MixColours(0x000000, 0xFFFFFF), 0x7F7F7Fu);
  EXPECT_EQ(MixColours(0x0000FF, 0x00FF00), 0x007F7Fu);
}

TEST(OwnerGridProperties, DefaultsAndStoredNames) {
  OwnerGridLogic grid;
  EXPECT_EQ(grid.Columns(), 3);
  EXPECT_EQ(grid.Rows(), 1);
  EXPECT_EQ(grid.GetCurRow(), 1);
  EXPECT_EQ(grid.GetCurColumn(), 1);
  EXPECT_EQ(grid.ColumnWidth(262144), 100.0f);
  EXPECT_EQ(grid.ColumnAlignment(7), 1);
  EXPECT_EQ(grid.GridColor(), 0xE0E0E0u);
  EXPECT_EQ(grid.BackColor(), SysColour::ButtonFace);
  EXPECT_EQ(grid.ForeColor(), SysColour::ButtonText);
  EXPECT_EQ(grid.CursorBackColor(), 0xFFF0F0u);
  EXPECT_EQ(grid.HighlightBackColor(), 13811126u);
  EXPECT_EQ(grid.HeaderBackColor(), MixColours(SysColour::ButtonFace, 0xFFFFFF));

  grid.SetColumns(2);
  grid.SetColumnWidth(2, 55.5f);
  grid.SetColumnAlignment(2, 2);
  grid.SetColumnCaption(2, QStringLiteral("Name"));
  grid.SetSortable(true);
  grid.SetSortColumn(-2);
  grid.SetFixedColumns(1);
  const QVariantMap stored = grid.StoreProperties();
  const QStringList names = {
      "AutoPopup",        "BackColor",      "BorderStyle",    "CellFont",     "ColumnAlignment1",
      "ColumnAlignment2", "ColumnCaption1", "ColumnCaption2", "ColumnWidth1", "ColumnWidth2",
      "Columns",          "Enabled",        "FixedColumns",   "ForeColor",    "GridColor",
      "HeaderFont",       "Rows",           "SortColumn",     "Sortable"};
  EXPECT_EQ(stored.keys(), names);

  OwnerGridLogic copy;
  copy.LoadProperties(stored);
  EXPECT_EQ(copy.Columns(), 2);
  EXPECT_EQ(copy.ColumnWidth(2), 55.5f);
  EXPECT_EQ(copy.ColumnAlignment(2), 2);
  EXPECT_EQ(copy.ColumnCaption(2), QStringLiteral("Name"));
  EXPECT_EQ(copy.SortColumn(), -2);
  EXPECT_TRUE(copy.Sortable());
  EXPECT_EQ(copy.FixedColumns(), 1);
  EXPECT_EQ(copy.GetCurColumn(), 2);
}

}  // namespace
}  // namespace ombrelle::test
