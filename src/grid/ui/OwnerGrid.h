#pragma once

#include <QAbstractScrollArea>
#include <QCursor>

#include "grid/OwnerGridHost.h"
#include "grid/OwnerGridLogic.h"

namespace ombrelle {

class OwnerGridEvents;

// The owner-drawn table as a widget: it holds no cell data, paints what
// OwnerGridLogic lays out (asking the owner for every painted cell) and
// forwards mouse, keys, wheel and scroll bars to it.
class OwnerGrid : public QAbstractScrollArea, private OwnerGridHost {
  Q_OBJECT

 public:
  explicit OwnerGrid(QWidget* parent = nullptr);
  ~OwnerGrid() override;

  // Properties and methods live on the logic: grid->Logic().SetRows(n).
  OwnerGridLogic& Logic() { return m_logic; }
  const OwnerGridLogic& Logic() const { return m_logic; }
  // The owner answers DataRequest and the other events; not owned.
  void SetOwner(OwnerGridEvents* owner) { m_logic.SetOwner(owner); }
  // The window handle.
  WId hWnd() { return winId(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;

 private:
  // OwnerGridHost
  QSize SurfaceSize() const override;
  int ScrollBarExtent() const override;
  void ScrollBarsChanged() override;
  void RepaintAll() override;
  void RepaintRect(const QRect& rect) override;
  void SetPointer(GridPointer shape) override;
  void ApplyBorderStyle(int style) override;

  OwnerGridLogic m_logic;
  QCursor m_upCursor;
  QCursor m_downCursor;
  bool m_shown = false;
  bool m_syncing = false;
  QPoint m_wheelRemainder;
};

}  // namespace ombrelle
