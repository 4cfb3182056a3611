#pragma once

#include <memory>

#include <gtest/gtest.h>
#include <QFont>

#include "grid/GridTestDoubles.h"
#include "grid/OwnerGridLogic.h"

namespace ombrelle::test {

// A grid on a 400 x 300 surface with fixed pixel fonts, its owner and host,
// and the events of its creation forgotten.
class GridFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    grid = std::make_unique<OwnerGridLogic>(&owner, &host);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(12);
    grid->SetCellFont(font);
    grid->SetHeaderFont(font);
    owner.events.clear();
    host.Clear();
  }

  // Makes the surface exactly `rows` data rows high and `width` wide, with
  // scroll bars one row thick: a shown horizontal bar leaves `rows` - 1 rows.
  void SizeForRows(int rows, int width = 400) {
    host.extent = grid->RowHeight();
    host.size = QSize(width, grid->HeaderHeight() + 1 + rows * grid->RowHeight());
    grid->OnResize();
  }

  void SetWidths(int columns, float width) {
    grid->DisableRefresh();
    for (int c = 1; c <= columns; ++c) grid->SetColumnWidth(c, width);
    grid->EnableRefresh();
  }

  FakeGridHost host;
  RecordingOwner owner;
  std::unique_ptr<OwnerGridLogic> grid;
};

}  // namespace ombrelle::test
