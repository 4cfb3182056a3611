#include <set>
#include <utility>

#include <gtest/gtest.h>
#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include "grid/GridColours.h"
#include "grid/OwnerGridEvents.h"
#include "grid/ui/OwnerGrid.h"

namespace ombrelle {
namespace {

// An owner of a 1,000,000 x 50 table that counts what it is asked for; one
// cell is red.
class CountingOwner : public OwnerGridEvents {
 public:
  void DataRequest(int row, int column, QString& text, quint32& colour) override {
    asked.push_back({row, column});
    text = QStringLiteral("%1.%2").arg(row).arg(column);
    if (row == 3 && column == 4) colour = 255;
  }
  std::vector<std::pair<int, int>> asked;
};

class OwnerGridWidget : public ::testing::Test {
 protected:
  void SetUp() override {
    grid.SetOwner(&owner);
    grid.resize(800, 600);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(13);
    font.setStyleStrategy(QFont::NoAntialias);
    OwnerGridLogic& logic = grid.Logic();
    logic.SetCellFont(font);
    logic.SetHeaderFont(font);
    logic.SetRows(1000000);
    logic.SetColumns(50);
    logic.SetSortable(true);
    grid.show();
    QApplication::processEvents();
    logic.SetSortColumn(3);
    logic.PlaceCursor(5, 2);
    QApplication::processEvents();
    owner.asked.clear();
  }

  // The pixel at a point of the viewport, as 8-bit channels.
  QRgb Pixel(const QImage& image, int x, int y) const {
    return image.pixel(grid.viewport()->mapTo(&grid, QPoint(x, y)));
  }

  int CountColour(const QImage& image, const QRect& area, const QColor& colour) const {
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y)
      for (int x = area.left(); x <= area.right(); ++x)
        if (Pixel(image, x, y) == colour.rgb()) ++count;
    return count;
  }

  CountingOwner owner;
  OwnerGrid grid;
};

TEST_F(OwnerGridWidget, FullPaintAsksOnlyForVisibleCells) {
  const QImage image = grid.grab().toImage();
  ASSERT_FALSE(image.isNull());
  const OwnerGridLogic& logic = grid.Logic();
  const QSize view = grid.viewport()->size();
  // Both bars show; the viewport is what is left of the surface.
  EXPECT_TRUE(logic.VScroll().visible);
  EXPECT_TRUE(logic.HScroll().visible);
  EXPECT_EQ(view.width(), 800 - grid.verticalScrollBar()->sizeHint().width());
  const int rows =
      (view.height() - logic.HeaderHeight() - 1 + logic.RowHeight() - 1) / logic.RowHeight();
  const int columns = (view.width() + 99) / 100;
  std::set<std::pair<int, int>> expected;
  for (int r = 1; r <= rows; ++r)
    for (int c = 1; c <= columns; ++c) expected.insert({r, c});
  const std::set<std::pair<int, int>> asked(owner.asked.begin(), owner.asked.end());
  EXPECT_EQ(asked, expected);
  EXPECT_EQ(owner.asked.size(), expected.size());
}

TEST_F(OwnerGridWidget, CursorRedCellAndSortMarkArePainted) {
  const QImage image = grid.grab().toImage();
  const OwnerGridLogic& logic = grid.Logic();
  const int hh = logic.HeaderHeight();
  const int rh = logic.RowHeight();
  const QRgb cursorBack = ColourFromValue(logic.CursorBackColor()).rgb();
  const QRgb back = ColourFromValue(logic.BackColor()).rgb();
  const QColor shadow = ColourFromValue(SysColour::ButtonShadow);
  ASSERT_NE(cursorBack, back);

  // Cursor cell (5, 2): its own background inside an outline; the cell
  // beside it keeps the plain background.
  const int y5 = hh + 1 + 4 * rh;
  EXPECT_EQ(Pixel(image, 103, y5 + 2), cursorBack);
  EXPECT_EQ(Pixel(image, 100, y5 + rh / 2), shadow.rgb());
  EXPECT_EQ(Pixel(image, 203, y5 + 2), back);

  // Red text in cell (3, 4) only.
  const int y3 = hh + 1 + 2 * rh;
  EXPECT_GT(CountColour(image, QRect(301, y3 + 1, 98, rh - 2), QColor(255, 0, 0)), 10);
  EXPECT_EQ(CountColour(image, QRect(401, y3 + 1, 98, rh - 2), QColor(255, 0, 0)), 0);

  // Sort mark of column 3 (ascending): an 8-pixel triangle 11 pixels in from
  // the column's right edge; column 4 has none.
  const int y1 = (1 + hh - 2) / 2 + 4;
  const QRect mark(288, y1 - 8, 9, 9);
  EXPECT_GE(CountColour(image, mark, shadow), 8);
  EXPECT_EQ(CountColour(image, mark.translated(100, 0), shadow), 0);
  // The highlight of the cursor's column in the header.
  EXPECT_EQ(Pixel(image, 103, 2), ColourFromValue(logic.HighlightBackColor()).rgb());
}

TEST_F(OwnerGridWidget, KeysWheelAndScrollBarsReachTheLogic) {
  OwnerGridLogic& logic = grid.Logic();
  QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
  QApplication::sendEvent(&grid, &down);
  QKeyEvent end(QEvent::KeyPress, Qt::Key_End, Qt::ControlModifier);
  QApplication::sendEvent(&grid, &end);
  EXPECT_EQ(logic.GetCurRow(), 1000000);
  EXPECT_EQ(logic.GetCurColumn(), 50);
  // The real bars follow the logic's.
  EXPECT_EQ(grid.verticalScrollBar()->value(), logic.VScroll().value);
  EXPECT_EQ(grid.verticalScrollBar()->maximum(), logic.VScroll().maximum);
  EXPECT_EQ(grid.horizontalScrollBar()->value(), logic.HScroll().value);

  // Moving a bar scrolls without moving the cursor.
  grid.verticalScrollBar()->setValue(100);
  EXPECT_EQ(logic.VScroll().value, 100);
  EXPECT_EQ(logic.TopRow(), 99 * logic.VScale() + 1);
  grid.horizontalScrollBar()->setValue(logic.HScroll().minimum);
  EXPECT_EQ(logic.LeftColumn(), 1);

  // One notch down scrolls the system's number of lines.
  const QPointF at(50, 50);
  QWheelEvent wheel(at, grid.viewport()->mapToGlobal(at), QPoint(), QPoint(0, -120), Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(grid.viewport(), &wheel);
  EXPECT_EQ(logic.VScroll().value, 100 + QApplication::wheelScrollLines());
  EXPECT_EQ(logic.GetCurRow(), 1000000);
}

}  // namespace
}  // namespace ombrelle
