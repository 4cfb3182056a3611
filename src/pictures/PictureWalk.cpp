#include "pictures/PictureWalk.h"

namespace ombrelle {

std::vector<PlacedLine> LayoutText(const MetaRecord& record, int mapMode) {
  const bool yUp = mapMode == 2 || mapMode == 3;
  std::vector<PlacedLine> lines;
  if (record.kind == MetaRecord::ExtTextOut) {
    if (record.points.empty()) return lines;
    PlacedLine line;
    line.text = record.text;
    line.anchor = record.points[0];
    line.align = record.align;
    line.options = record.flags & 0x4;
    if (line.options && record.points.size() >= 3) {
      line.clip1 = record.points[1];
      line.clip2 = record.points[2];
    } else {
      line.options = 0;
    }
    lines.push_back(line);
    return lines;
  }
  if (record.kind != MetaRecord::DrawText || record.points.size() < 2) return lines;
  const QPointF a = record.points[0];
  const QPointF b = record.points[1];
  const double height = PictureText(record.font, mapMode).LineHeight();
  double x = a.x();
  uint32_t align = 0;
  if (record.flags & 0x1) {
    x = (a.x() + b.x()) / 2;
    align = 6;
  } else if (record.flags & 0x2) {
    x = b.x();
    align = 2;
  }
  const QStringList texts = PictureText::Lines(record.text);
  for (int i = 0; i < texts.size(); ++i) {
    PlacedLine line;
    line.text = texts[i];
    line.anchor = QPointF(x, a.y() + (yUp ? -height : height) * i);
    line.align = align;
    if (!(record.flags & 0x100)) {
      line.options = 4;
      line.clip1 = a;
      line.clip2 = b;
    }
    if (!line.text.isEmpty()) lines.push_back(line);
  }
  return lines;
}

PictureMap NestedMap(const MetaPicture& inner, const MetaRecord& record) {
  PictureMap map;
  if (record.points.size() < 2) return map;
  const MetaRect& from = inner.playRect;
  const double w = from.right - from.left;
  const double h = from.bottom - from.top;
  const QPointF a = record.points[0];
  const QPointF b = record.points[1];
  map.ax = w != 0 ? (b.x() - a.x()) / w : 1;
  map.ay = h != 0 ? (b.y() - a.y()) / h : 1;
  map.bx = a.x() - map.ax * from.left;
  map.by = a.y() - map.ay * from.top;
  return map;
}

bool UsesPen(MetaRecord::Kind kind) {
  switch (kind) {
    case MetaRecord::Line:
    case MetaRecord::Polyline:
    case MetaRecord::Bezier:
    case MetaRecord::Ellipse:
    case MetaRecord::Pie:
    case MetaRecord::Polygon:   // with the null pen
    case MetaRecord::FillRect:  // with the null pen
      return true;
    default:
      return false;
  }
}

bool UsesBrush(MetaRecord::Kind kind) {
  switch (kind) {
    case MetaRecord::Polygon:
    case MetaRecord::FillRect:
    case MetaRecord::Ellipse:
    case MetaRecord::Pie:
    case MetaRecord::FloodFill:
      return true;
    default:
      return false;
  }
}

}  // namespace ombrelle
