#pragma once

#include <QRect>
#include <QSize>

namespace ombrelle {

// Pointer shapes the grid asks for over its header.
enum class GridPointer { Default, Up, Down };

// The platform-bound services the grid logic needs from the widget that shows
// it: the size of its surface, two scroll bars, repaint requests and pointer
// shapes. Tests drive the logic through a fake of it.
class OwnerGridHost {
 public:
  virtual ~OwnerGridHost() = default;

  // The drawing surface inside the border, scroll bar space included.
  virtual QSize SurfaceSize() const = 0;
  // Width of the vertical scroll bar, which is also the height of the
  // horizontal one.
  virtual int ScrollBarExtent() const = 0;
  // Range, value, large change or visibility of a scroll bar changed; the
  // host copies them from OwnerGridLogic::VScroll() and HScroll().
  virtual void ScrollBarsChanged() = 0;
  // Asks for a repaint of the whole surface, or of one rectangle of it.
  virtual void RepaintAll() = 0;
  virtual void RepaintRect(const QRect& rect) = 0;
  virtual void SetPointer(GridPointer shape) = 0;
  // 0 no border, 1 a single line.
  virtual void ApplyBorderStyle(int style) = 0;
};

}  // namespace ombrelle
