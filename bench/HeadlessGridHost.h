#pragma once

#include <QRect>
#include <QSize>

#include "grid/OwnerGridHost.h"

namespace ombrelle::bench {

// A grid surface of a fixed size that nothing shows: scroll bars, pointer and
// repaint requests go nowhere, so a benchmark measures only the grid's work.
class HeadlessGridHost : public OwnerGridHost {
 public:
  explicit HeadlessGridHost(QSize size) : m_size(size) {}
  QSize SurfaceSize() const override { return m_size; }
  int ScrollBarExtent() const override { return 16; }
  void ScrollBarsChanged() override {}
  void RepaintAll() override {}
  void RepaintRect(const QRect&) override {}
  void SetPointer(GridPointer) override {}
  void ApplyBorderStyle(int) override {}

 private:
  QSize m_size;
};

}  // namespace ombrelle::bench
