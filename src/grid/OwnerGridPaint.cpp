// Painting of the grid onto any QPainter: header, fixed columns, cells,
// cursor and sort mark. Only cells that meet the clip region are asked for.
#include <algorithm>
#include <cstdlib>

#include <QFontMetricsF>
#include <QPainter>
#include <QPolygon>
#include <QRegion>

#include "grid/GridColours.h"
#include "grid/OwnerGridEvents.h"
#include "grid/OwnerGridLogic.h"

namespace ombrelle {

namespace {

// Rectangles here are inclusive of both corners, as the layout is reckoned.
QRect Box(int left, int top, int right, int bottom) {
  return QRect(QPoint(left, top), QPoint(right, bottom));
}

void Fill(QPainter& painter, const QRect& box, quint32 colour) {
  if (box.isValid()) painter.fillRect(box, ColourFromValue(colour));
}

void Outline(QPainter& painter, const QRect& box, quint32 colour) {
  if (!box.isValid()) return;
  painter.setPen(ColourFromValue(colour));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(box.left(), box.top(), box.width() - 1, box.height() - 1);
}

void Line(QPainter& painter, int x0, int y0, int x1, int y1, quint32 colour) {
  painter.setPen(ColourFromValue(colour));
  painter.drawLine(x0, y0, x1, y1);
}

// Text whose top-left corner is at (x, y), clipped to `clip`.
void ClippedText(QPainter& painter, const QRect& clip, double x, int y, const QString& text,
                 quint32 colour) {
  if (!clip.isValid()) return;
  painter.save();
  painter.setClipRect(clip, Qt::IntersectClip);
  painter.setPen(ColourFromValue(colour));
  painter.drawText(QPointF(x, y + painter.fontMetrics().ascent()), text);
  painter.restore();
}

}  // namespace

void OwnerGridLogic::Redraw(QPainter& painter, const QRegion& clip) {
  if (m_refreshDisabled) return;
  painter.save();
  painter.setClipRegion(clip);
  painter.setRenderHint(QPainter::Antialiasing, false);
  DrawHeader(painter, clip);
  DrawBody(painter, clip);
  painter.restore();
}

int OwnerGridLogic::DrawHeader(QPainter& painter, const QRegion& clip) {
  const int height = m_headerHeight;
  const int paintWidth = PaintWidth();
  if (!clip.intersects(QRect(0, 0, std::max(paintWidth, 1), height))) return height;

  double total = 0;
  for (int c = 1; c <= m_columns && total <= paintWidth; ++c) total += m_widths[c];
  const int right = std::min(qRound(total), paintWidth + 1) - 1;
  Fill(painter, Box(0, 0, right, height - 1), m_headerBackColor);
  Outline(painter, Box(0, 0, right, height - 1), SysColour::ButtonShadow);

  painter.setFont(m_headerPaintFont);
  const Range range = VisibleRange(false);
  const int sorted = std::abs(m_sortColumn);
  double x = 0;
  auto drawColumn = [&](int column) {
    const int left = qRound(x);
    const int cellRight = qRound(x + m_widths[column]) - 1;
    quint32 textColour = TextColour(false);
    if (column == m_cursorColumn) {
      Fill(painter, Box(left, 1, cellRight, height - 2), m_highlightBackColor);
      textColour = TextColour(true);
    }
    Line(painter, cellRight, 0, cellRight, height - 1, SysColour::ButtonShadow);
    QRect textClip = Box(left + 1, 1, cellRight - 1, height - 2);
    if (column == sorted) textClip.setRight(std::max(textClip.left(), textClip.right() - 10));
    ClippedText(painter, textClip, left + 2, 1, m_captions[column], textColour);
    if (column == sorted) {
      const int x0 = textClip.right();
      const int x1 = x0 + 8;
      const int y1 = (textClip.top() + textClip.bottom()) / 2 + 4;
      const int y0 = y1 - 8;
      const int tip = x0 + 4;
      if (m_sortColumn < 1) {
        Line(painter, x0, y1, tip, y0, SysColour::ButtonShadow);
        Line(painter, tip, y0, x1, y1, SysColour::ButtonShadow);
        Line(painter, x0, y1, x1, y1, SysColour::Highlight3D);
      } else {
        Line(painter, x0, y0, tip, y1, SysColour::ButtonShadow);
        Line(painter, tip, y1, x1, y0, SysColour::ButtonShadow);
        Line(painter, x0, y0, x1, y0, SysColour::Highlight3D);
      }
    }
    x += m_widths[column];
  };
  for (int c = 1; c <= m_fixedColumns && c <= m_columns; ++c) drawColumn(c);
  const int last = std::min(range.right + 1, m_columns);
  for (int c = range.left; c <= last && x <= paintWidth; ++c) drawColumn(c);

  painter.setFont(m_cellPaintFont);
  return height;
}

void OwnerGridLogic::DrawBody(QPainter& painter, const QRegion& clip) {
  const int paintWidth = PaintWidth();
  const int paintHeight = PaintHeight();
  const int top = m_headerHeight;
  const int fixedRight = qRound(FixedWidth()) - 1;
  if (m_fixedColumns > 0) {
    Fill(painter, Box(0, top, fixedRight, paintHeight - 1), m_headerBackColor);
    Line(painter, fixedRight, top, fixedRight, paintHeight - 1, SysColour::ButtonShadow);
  }
  Fill(painter, Box(fixedRight + 1, top, paintWidth - 1, paintHeight - 1), m_backColor);

  painter.setFont(m_cellPaintFont);
  const int left = LeftColumn();
  int row = TopRow();
  for (int y = top + 1; y < paintHeight && row <= m_rows; y += m_rowHeight, ++row) {
    if (!clip.intersects(QRect(0, y, std::max(paintWidth, 1), m_rowHeight))) continue;
    double x = 0;
    for (int c = 1; c <= m_fixedColumns && c <= m_columns; ++c) {
      PaintCell(painter, clip, row, c, row == m_cursorRow ? 1 : 0, qRound(x), y, m_rowHeight);
      x += m_widths[c];
    }
    for (int c = left; c <= m_columns && x < paintWidth; ++c) {
      const int state = row == m_cursorRow && c == m_cursorColumn ? 1 : 0;
      PaintCell(painter, clip, row, c, state, qRound(x), y, m_rowHeight);
      x += m_widths[c];
    }
  }

  if (!m_hScroll.visible)
    Line(painter, 0, paintHeight - 1, paintWidth - 1, paintHeight - 1, SysColour::ButtonShadow);
}

// State 1 paints the highlight of the cursor's cell or of a fixed cell in its
// row; state 0 paints on a background that is already right. A highlight is
// taken away by painting the cell's region again from a fresh background.
void OwnerGridLogic::PaintCell(QPainter& painter, const QRegion& clip, int row, int column,
                               int state, int x, int y, int height) {
  if (row < 1 || row > m_rows || column < 1 || column > m_columns) return;
  const int width = qRound(x + m_widths[column]) - x;
  if (!clip.intersects(QRect(x, y, std::max(width, 1), height))) return;

  quint32 colour = TextColour(state == 1);
  QString text;
  if (m_owner) m_owner->DataRequest(row, column, text, colour);

  const QRect box = Box(x + 1, y + 1, x + width - 2, y + height - 2);
  const bool fixed = column <= m_fixedColumns;
  if (state == 1) {
    if (!fixed) Outline(painter, box.adjusted(-1, -1, 1, 1), SysColour::ButtonShadow);
    const quint32 fill = fixed ? m_highlightBackColor : m_cursorBackColor;
    // The first two fixed columns read as one band with no gap.
    Fill(painter, m_fixedColumns >= 2 && column == 1 ? box.adjusted(0, 0, 2, 0) : box, fill);
  }
  if (text.isEmpty()) return;

  double textX = x + 2;
  const int alignment = m_alignments[column];
  if (alignment == 1 || alignment == 2) {
    const double textWidth = QFontMetricsF(m_cellPaintFont).horizontalAdvance(text);
    if (alignment == 1)
      textX = box.right() - 1 - textWidth;
    else
      textX = (box.left() + box.right() + 1) / 2.0 - textWidth / 2.0;
  }
  ClippedText(painter, box, textX, y, text, colour);
}

}  // namespace ombrelle
