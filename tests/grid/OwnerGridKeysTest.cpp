#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "grid/GridTestFixture.h"

namespace ombrelle::test {
namespace {

using OwnerGridKeys = GridFixture;

constexpr int kNone = 0;
constexpr int kShift = GridShift::Shift;
constexpr int kCtrl = GridShift::Ctrl;
constexpr int kAlt = GridShift::Alt;

// 100 rows, 10 columns of which column 1 is fixed, sortable; every case
// starts from the cursor at row 50, column 7, unsorted unless told.
TEST_F(OwnerGridKeys, EveryKeyAloneAndWithCtrlOrAlt) {
  SizeForRows(10);
  grid->SetColumns(10);
  grid->SetRows(100);
  SetWidths(10, 30);
  grid->SetFixedColumns(1);
  grid->SetSortable(true);

  struct Case {
    const char* name;
    int key;
    int shift;
    int row, column;   // cursor afterwards
    int sort;          // SortColumn afterwards
    std::string last;  // last event raised, when not an Enter event
    int startRow = 50;
    int startColumn = 7;
    int startSort = 0;
  };
  const std::vector<Case> cases = {
      {"Home", GridKey::Home, kNone, 50, 2, 0, ""},
      {"Ctrl+Home", GridKey::Home, kCtrl, 1, 2, 0, ""},
      {"Alt+Home", GridKey::Home, kAlt, 50, 2, 0, ""},
      {"End", GridKey::End, kNone, 50, 10, 0, ""},
      {"Ctrl+End", GridKey::End, kCtrl, 100, 10, 0, ""},
      {"Alt+End", GridKey::End, kAlt, 50, 10, 0, ""},
      {"Left", GridKey::Left, kNone, 50, 6, 0, ""},
      {"Ctrl+Left", GridKey::Left, kCtrl, 50, 2, 0, ""},
      {"Alt+Left", GridKey::Left, kAlt, 50, 6, 0, ""},
      {"Left at the first data column", GridKey::Left, kNone, 50, 2, 0, "", 50, 2},
      {"Right", GridKey::Right, kNone, 50, 8, 0, ""},
      {"Ctrl+Right", GridKey::Right, kCtrl, 50, 10, 0, ""},
      {"Alt+Right", GridKey::Right, kAlt, 50, 8, 0, ""},
      {"Right at the last column", GridKey::Right, kNone, 50, 10, 0, "", 50, 10},
      {"Up", GridKey::Up, kNone, 49, 7, 0, ""},
      {"Ctrl+Up", GridKey::Up, kCtrl, 1, 7, 0, ""},
      {"Alt+Up", GridKey::Up, kAlt, 49, 7, 0, ""},
      {"Up at row 1", GridKey::Up, kNone, 1, 7, 0, "", 1, 7},
      {"Down", GridKey::Down, kNone, 51, 7, 0, ""},
      {"Ctrl+Down", GridKey::Down, kCtrl, 100, 7, 0, ""},
      {"Alt+Down", GridKey::Down, kAlt, 51, 7, 0, ""},
      {"Down at the last row", GridKey::Down, kNone, 100, 7, 0, "", 100, 7},
      {"Page Up", GridKey::PageUp, kNone, 45, 7, 0, ""},
      {"Ctrl+Page Up", GridKey::PageUp, kCtrl, 50, 7, 0, ""},
      {"Alt+Page Up", GridKey::PageUp, kAlt, 50, 2, 0, ""},
      {"Shift+Page Up", GridKey::PageUp, kShift, 50, 7, 0, ""},
      {"Alt+Page Up refused near the left", GridKey::PageUp, kAlt, 50, 5, 0, "", 50, 5},
      {"Page Up near the top", GridKey::PageUp, kNone, 1, 7, 0, "", 3, 7},
      {"Page Down", GridKey::PageDown, kNone, 55, 7, 0, ""},
      {"Ctrl+Page Down", GridKey::PageDown, kCtrl, 50, 7, 0, ""},
      {"Alt+Page Down", GridKey::PageDown, kAlt, 50, 10, 0, ""},
      {"Ctrl+Alt+Page Down", GridKey::PageDown, kCtrl | kAlt, 50, 7, 0, ""},
      {"Page Down near the end", GridKey::PageDown, kNone, 100, 7, 0, "", 98, 7},
      {"plus", GridKey::KeypadPlus, kNone, 50, 7, 7, "SortBy 7"},
      {"Ctrl+plus", GridKey::KeypadPlus, kCtrl, 50, 7, 7, "SortBy 7"},
      {"plus on the ascending column", GridKey::KeypadPlus, kNone, 50, 7, 0, "SortBy 0", 50, 7, 7},
      {"plus on the descending column", GridKey::KeypadPlus, kNone, 50, 7, 7, "SortBy 7", 50, 7,
       -7},
      {"minus", GridKey::KeypadMinus, kNone, 50, 7, -7, "SortBy -7"},
      {"Alt+minus", GridKey::KeypadMinus, kAlt, 50, 7, -7, "SortBy -7"},
      {"minus on the descending column", GridKey::KeypadMinus, kNone, 50, 7, 0, "SortBy 0", 50, 7,
       -7},
      {"minus on another column", GridKey::KeypadMinus, kNone, 50, 7, -7, "SortBy -7", 50, 7, 3},
      {"context menu", GridKey::ContextMenu, kNone, 50, 7, 0, "Popup 50 7"},
      {"Ctrl+context menu", GridKey::ContextMenu, kCtrl, 50, 7, 0, "Popup 50 7"},
      {"a letter", 'A', kNone, 50, 7, 0, ""},
  };
  for (const Case& c : cases) {
    grid->PlaceCursor(c.startRow, c.startColumn);
    grid->SetSortColumn(c.startSort);
    owner.events.clear();
    grid->OnKeyDown(c.key, c.shift);
    EXPECT_EQ(grid->GetCurRow(), c.row) << c.name;
    EXPECT_EQ(grid->GetCurColumn(), c.column) << c.name;
    EXPECT_EQ(grid->SortColumn(), c.sort) << c.name;
    ASSERT_FALSE(owner.events.empty()) << c.name;
    EXPECT_EQ(owner.events.front(),
              "KeyDown " + std::to_string(c.key) + " " + std::to_string(c.shift))
        << c.name;
    if (!c.last.empty()) {
      EXPECT_EQ(owner.events.back(), c.last) << c.name;
    }
    const bool moved = c.row != c.startRow || c.column != c.startColumn;
    EXPECT_EQ(owner.events.size() > 1, moved || !c.last.empty()) << c.name;
  }
}

TEST_F(OwnerGridKeys, WithoutSortableOrWithAutoPopupTheirKeysDoNothing) {
  grid->SetColumns(5);
  grid->SetRows(5);
  grid->SetAutoPopup(true);
  owner.events.clear();
  for (int key : {GridKey::KeypadPlus, GridKey::KeypadMinus, GridKey::ContextMenu})
    grid->OnKeyDown(key, 0);
  EXPECT_EQ(owner.events,
            (std::vector<std::string>{"KeyDown 107 0", "KeyDown 109 0", "KeyDown 93 0"}));
  EXPECT_EQ(grid->SortColumn(), 0);
}

TEST_F(OwnerGridKeys, OwnerMaySwallowAKeyInKeyDown) {
  grid->SetRows(5);
  owner.swallowKeys = true;
  grid->OnKeyDown(GridKey::Down, 0);
  grid->OnKeyPress(QChar('x'));
  grid->OnKeyUp(GridKey::Down, 0);
  EXPECT_EQ(grid->GetCurRow(), 1);
  EXPECT_EQ(owner.events, (std::vector<std::string>{"KeyDown 40 0", "KeyPress x", "KeyUp 40 0"}));
}

TEST(OwnerGridKeyCodes, QtKeysMapToTheGridsCodes) {
  struct Case {
    int qtKey;
    Qt::KeyboardModifiers modifiers;
    int code;
    int shift;
  };
  const std::vector<Case> cases = {
      {Qt::Key_Home, Qt::NoModifier, GridKey::Home, 0},
      {Qt::Key_End, Qt::ControlModifier, GridKey::End, kCtrl},
      {Qt::Key_PageUp, Qt::AltModifier, GridKey::PageUp, kAlt},
      {Qt::Key_PageDown, Qt::ShiftModifier | Qt::ControlModifier, GridKey::PageDown,
       kShift | kCtrl},
      {Qt::Key_Left, Qt::KeypadModifier, GridKey::Left, 0},
      {Qt::Key_Right, Qt::NoModifier, GridKey::Right, 0},
      {Qt::Key_Up, Qt::NoModifier, GridKey::Up, 0},
      {Qt::Key_Down, Qt::NoModifier, GridKey::Down, 0},
      {Qt::Key_Menu, Qt::NoModifier, GridKey::ContextMenu, 0},
      {Qt::Key_Plus, Qt::KeypadModifier, GridKey::KeypadPlus, 0},
      {Qt::Key_Plus, Qt::ShiftModifier, '+', kShift},  // the plus of the main keyboard
      {Qt::Key_Minus, Qt::KeypadModifier, GridKey::KeypadMinus, 0},
      {Qt::Key_F2, Qt::NoModifier, 0x71, 0},
      {Qt::Key_Q, Qt::NoModifier, 'Q', 0},
      {Qt::Key_Tab, Qt::NoModifier, 0, 0},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(GridKeyFromQt(c.qtKey, c.modifiers), c.code) << c.qtKey;
    EXPECT_EQ(GridShiftFromQt(c.modifiers), c.shift) << c.qtKey;
  }
}

}  // namespace
}  // namespace ombrelle::test
