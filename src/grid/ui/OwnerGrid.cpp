#include "grid/ui/OwnerGrid.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPixmap>
#include <QPolygon>
#include <QScrollBar>
#include <QWheelEvent>

namespace ombrelle {

namespace {

// The header pointers: an arrow up (the next click sorts the column the
// other way) or down (the next click sorts it ascending).
QCursor ArrowCursor(bool up) {
  QPixmap pixmap(16, 16);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setPen(QPen(Qt::white, 1));
  painter.setBrush(Qt::black);
  const QPolygon head = up ? QPolygon({QPoint(8, 1), QPoint(14, 8), QPoint(2, 8)})
                           : QPolygon({QPoint(8, 14), QPoint(14, 7), QPoint(2, 7)});
  painter.drawPolygon(head);
  painter.fillRect(up ? QRect(6, 8, 5, 7) : QRect(6, 1, 5, 6), Qt::black);
  painter.end();
  return QCursor(pixmap, 8, up ? 1 : 14);
}

}  // namespace

OwnerGrid::OwnerGrid(QWidget* parent)
    : QAbstractScrollArea(parent), m_upCursor(ArrowCursor(true)), m_downCursor(ArrowCursor(false)) {
  setFocusPolicy(Qt::StrongFocus);
  viewport()->setMouseTracking(true);
  viewport()->setContextMenuPolicy(Qt::PreventContextMenu);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this](int value) {
    if (!m_syncing) m_logic.OnScrollBar(OwnerGridLogic::Bar::Vertical, value);
  });
  connect(horizontalScrollBar(), &QScrollBar::valueChanged, this, [this](int value) {
    if (!m_syncing) m_logic.OnScrollBar(OwnerGridLogic::Bar::Horizontal, value);
  });
  m_logic.SetHost(this);
}

OwnerGrid::~OwnerGrid() { m_logic.SetHost(nullptr); }

// ---- events ---------------------------------------------------------------

void OwnerGrid::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  m_logic.Redraw(painter, event->region());
}

void OwnerGrid::resizeEvent(QResizeEvent*) {
  // Showing or hiding a scroll bar resizes only the viewport, not the surface.
  if (m_syncing) return;
  m_logic.OnResize();
}

void OwnerGrid::showEvent(QShowEvent* event) {
  QAbstractScrollArea::showEvent(event);
  if (m_shown) return;
  m_shown = true;
  m_logic.OnResize();
  m_logic.OnFirstShow();
}

void OwnerGrid::mousePressEvent(QMouseEvent* event) {
  const QPoint p = event->position().toPoint();
  if (event->button() == Qt::LeftButton)
    m_logic.OnMouseDown(p.x(), p.y(), OwnerGridLogic::Button::Left);
  else if (event->button() == Qt::RightButton)
    m_logic.OnMouseDown(p.x(), p.y(), OwnerGridLogic::Button::Right);
  event->accept();
}

void OwnerGrid::mouseMoveEvent(QMouseEvent* event) {
  const QPoint p = event->position().toPoint();
  const bool down = event->buttons() & (Qt::LeftButton | Qt::RightButton);
  m_logic.OnMouseMove(p.x(), p.y(), down);
  event->accept();
}

void OwnerGrid::mouseReleaseEvent(QMouseEvent* event) {
  const QPoint p = event->position().toPoint();
  if (event->button() == Qt::LeftButton)
    m_logic.OnMouseUp(p.x(), p.y(), OwnerGridLogic::Button::Left);
  else if (event->button() == Qt::RightButton)
    m_logic.OnMouseUp(p.x(), p.y(), OwnerGridLogic::Button::Right);
  event->accept();
}

void OwnerGrid::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) m_logic.OnDoubleClick();
  event->accept();
}

void OwnerGrid::keyPressEvent(QKeyEvent* event) {
  const int code = GridKeyFromQt(event->key(), event->modifiers());
  if (code != 0) m_logic.OnKeyDown(code, GridShiftFromQt(event->modifiers()));
  const QString text = event->text();
  if (!text.isEmpty()) m_logic.OnKeyPress(text.at(0));
  event->accept();
}

void OwnerGrid::keyReleaseEvent(QKeyEvent* event) {
  const int code = GridKeyFromQt(event->key(), event->modifiers());
  if (code != 0) m_logic.OnKeyUp(code, GridShiftFromQt(event->modifiers()));
  event->accept();
}

void OwnerGrid::wheelEvent(QWheelEvent* event) {
  // One notch is 120; a notch scrolls the system's number of lines, or one
  // column sideways.
  m_wheelRemainder += event->angleDelta();
  const int stepsY = m_wheelRemainder.y() / 120;
  const int stepsX = m_wheelRemainder.x() / 120;
  m_wheelRemainder -= QPoint(stepsX * 120, stepsY * 120);
  if (stepsY != 0)
    m_logic.Mouse_Scroll(0, -stepsY * QApplication::wheelScrollLines(), false);
  else if (stepsX != 0)
    m_logic.Mouse_Scroll(-stepsX, 0, false);
  event->accept();
}

void OwnerGrid::scrollContentsBy(int, int) {
  // The logic repaints after a scroll; nothing is moved by pixels.
}

// ---- host -----------------------------------------------------------------

QSize OwnerGrid::SurfaceSize() const { return contentsRect().size(); }

int OwnerGrid::ScrollBarExtent() const { return verticalScrollBar()->sizeHint().width(); }

void OwnerGrid::ScrollBarsChanged() {
  m_syncing = true;
  const auto copy = [](QScrollBar* bar, const OwnerGridLogic::ScrollBar& state) {
    bar->setRange(state.minimum, state.maximum);
    bar->setPageStep(state.largeChange);
    bar->setSingleStep(1);
    bar->setValue(state.value);
  };
  const OwnerGridLogic::ScrollBar& v = m_logic.VScroll();
  const OwnerGridLogic::ScrollBar& h = m_logic.HScroll();
  copy(verticalScrollBar(), v);
  copy(horizontalScrollBar(), h);
  setVerticalScrollBarPolicy(v.visible ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
  setHorizontalScrollBarPolicy(h.visible ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
  m_syncing = false;
}

void OwnerGrid::RepaintAll() { viewport()->update(); }

void OwnerGrid::RepaintRect(const QRect& rect) { viewport()->update(rect); }

void OwnerGrid::SetPointer(GridPointer shape) {
  switch (shape) {
    case GridPointer::Up:
      viewport()->setCursor(m_upCursor);
      break;
    case GridPointer::Down:
      viewport()->setCursor(m_downCursor);
      break;
    case GridPointer::Default:
      viewport()->unsetCursor();
      break;
  }
}

void OwnerGrid::ApplyBorderStyle(int style) {
  setFrameShape(style == 0 ? QFrame::NoFrame : QFrame::Box);
  setLineWidth(1);
}

}  // namespace ombrelle
