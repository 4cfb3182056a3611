#include "pictures/MetaPlayer.h"

#include <cmath>
#include <vector>

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include "pictures/TextMeasure.h"

namespace ombrelle {

namespace {

QColor ToQColor(std::uint32_t color) {
  return QColor(color & 0xFF, (color >> 8) & 0xFF, (color >> 16) & 0xFF);
}

// Logical units of one picture to device coordinates.
class Mapping {
 public:
  Mapping(const MetaPicture& picture, const MetaRect& device) {
    const double mm = TextMeasure::MmPerUnit(picture.mapMode);
    const double frameW = std::max(1, picture.frameRect.right - picture.frameRect.left) / 100.0;
    const double frameH = std::max(1, picture.frameRect.bottom - picture.frameRect.top) / 100.0;
    m_kx = mm * (device.right - device.left + 1) / frameW;
    m_ky = mm * (device.bottom - device.top + 1) / frameH;
    if (picture.mapMode == 2 || picture.mapMode == 3) m_ky = -m_ky;  // y upwards
    m_x0 = device.left - picture.frameRect.left / 100.0 / mm * m_kx;
    m_y0 = device.top;
    m_scale = std::sqrt(std::abs(m_kx * m_ky));
  }
  QPointF operator()(const QPoint& p) const {
    return QPointF(m_x0 + p.x() * m_kx, m_y0 + p.y() * m_ky);
  }
  QRectF Rect(const QPoint& a, const QPoint& b) const {
    return QRectF((*this)(a), (*this)(b)).normalized();
  }
  double Scale() const { return m_scale; }
  double ScaleY() const { return std::abs(m_ky); }

 private:
  double m_kx, m_ky, m_x0, m_y0, m_scale;
};

class Player {
 public:
  Player(QPainter& painter, const MetaPicture& picture, const MetaRect& device)
      : m_painter(painter),
        m_picture(picture),
        m_map(picture, device),
        m_antialias(painter.testRenderHint(QPainter::Antialiasing)),
        m_dpi(painter.device() ? painter.device()->logicalDpiY() : 96) {}

  void Run() {
    for (const MetaRecord& record : m_picture.records) Draw(record);
  }

 private:
  void UsePen(const MetaPen& pen) {
    if (m_hasPen && pen == m_pen) return;
    m_pen = pen;
    m_hasPen = true;
    if (pen.style == MetaPen::Null) {
      m_painter.setPen(Qt::NoPen);
      return;
    }
    double width = pen.width * m_map.Scale();
    if (width < 1.5) width = 0;  // the thinnest line the device draws
    QPen qpen(ToQColor(pen.color), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    m_painter.setPen(qpen);
  }
  void NoPen() {
    m_painter.setPen(Qt::NoPen);
    m_hasPen = false;
  }
  void UseBrush(const MetaBrush& brush) {
    if (brush.style == MetaBrush::Null)
      m_painter.setBrush(Qt::NoBrush);
    else
      m_painter.setBrush(ToQColor(brush.color));
  }
  std::vector<QPointF> Points(const MetaRecord& record) const {
    std::vector<QPointF> points;
    points.reserve(record.points.size());
    for (const QPoint& p : record.points) points.push_back(m_map(p));
    return points;
  }

  void Draw(const MetaRecord& r) {
    const size_t n = r.points.size();
    switch (r.kind) {
      case MetaRecord::Line:
        if (n < 2) return;
        UsePen(r.pen);
        m_painter.drawLine(m_map(r.points[0]), m_map(r.points[1]));
        return;
      case MetaRecord::Polyline: {
        if (n < 2) return;
        UsePen(r.pen);
        const auto points = Points(r);
        m_painter.drawPolyline(points.data(), static_cast<int>(points.size()));
        return;
      }
      case MetaRecord::Polygon: {
        if (n < 3) return;
        NoPen();
        UseBrush(r.brush);
        const auto points = Points(r);
        m_painter.drawPolygon(points.data(), static_cast<int>(points.size()), Qt::WindingFill);
        return;
      }
      case MetaRecord::FillRect: {
        if (n < 2 || r.brush.style == MetaBrush::Null) return;
        const QRectF rect = m_map.Rect(r.points[0], r.points[1]);
        m_painter.fillRect(rect, ToQColor(r.brush.color));
        return;
      }
      case MetaRecord::Ellipse:
        if (n < 2) return;
        UsePen(r.pen);
        UseBrush(r.brush);
        m_painter.drawEllipse(m_map.Rect(r.points[0], r.points[1]));
        return;
      case MetaRecord::Pie:
        if (n < 4) return;
        DrawPie(r);
        return;
      case MetaRecord::Bezier: {
        if (n < 4) return;
        UsePen(r.pen);
        QPainterPath path(m_map(r.points[0]));
        for (size_t i = 1; i + 2 < n; i += 3)
          path.cubicTo(m_map(r.points[i]), m_map(r.points[i + 1]), m_map(r.points[i + 2]));
        m_painter.strokePath(path, m_painter.pen());
        return;
      }
      case MetaRecord::DrawText:
      case MetaRecord::ExtTextOut:
        DrawText(r);
        return;
      case MetaRecord::FloodFill:
        if (n >= 1) FloodFill(r);
        return;
      case MetaRecord::Picture:
        if (n < 2 || !r.picture) return;
        {
          const QRectF rect = m_map.Rect(r.points[0], r.points[1]);
          const MetaRect inner{static_cast<int>(std::lround(rect.left())),
                               static_cast<int>(std::lround(rect.top())),
                               static_cast<int>(std::lround(rect.right())),
                               static_cast<int>(std::lround(rect.bottom()))};
          m_painter.save();
          Player(m_painter, *r.picture, inner).Run();
          m_painter.restore();
          m_hasPen = false;
        }
        return;
    }
  }

  void DrawPie(const MetaRecord& r) {
    const QRectF box = m_map.Rect(r.points[0], r.points[1]);
    const QPointF c = box.center();
    const QPointF s = m_map(r.points[2]), e = m_map(r.points[3]);
    // Angles as seen on the page, counter-clockwise from three o'clock.
    const double a1 = std::atan2(-(s.y() - c.y()), s.x() - c.x()) * 180 / M_PI;
    const double a2 = std::atan2(-(e.y() - c.y()), e.x() - c.x()) * 180 / M_PI;
    double span = std::fmod(a2 - a1 + 720.0, 360.0);
    if (span <= 1e-9) span = 360;
    UsePen(r.pen);
    UseBrush(r.brush);
    m_painter.drawPie(box, static_cast<int>(std::lround(a1 * 16)),
                      static_cast<int>(std::lround(span * 16)));
  }

  void UseFont(const MetaFont& font) {
    if (m_hasFont && font == m_font) return;
    m_font = font;
    m_hasFont = true;
    const double pixels = TextMeasure::EmMillimetres(font, m_picture.mapMode) /
                          TextMeasure::MmPerUnit(m_picture.mapMode) * m_map.ScaleY();
    m_qfont = TextMeasure::MakeFont(font, pixels, m_dpi, m_antialias);
    m_painter.setFont(m_qfont);
    m_metrics = QFontMetricsF(m_qfont, m_painter.device());
  }

  void DrawText(const MetaRecord& r) {
    if (r.points.empty() || r.text.isEmpty()) return;
    UseFont(r.font);
    m_painter.setPen(ToQColor(r.textColor));
    m_hasPen = false;
    const QStringList lines = r.text.split(QStringLiteral("\r\n"));
    const double ascent = m_metrics.ascent(), lineHeight = m_metrics.height();
    bool clipped = false;
    QRectF box;
    double y = 0;
    if (r.kind == MetaRecord::DrawText) {
      box = m_map.Rect(r.points[0], r.points.size() > 1 ? r.points[1] : r.points[0]);
      clipped = !(r.flags & 0x100);
      y = box.top();
    } else {
      const QPointF at = m_map(r.points[0]);
      y = at.y();
      if ((r.align & 24) == 8) y -= lineHeight * lines.size();
      if ((r.align & 24) == 24) y -= ascent;
      box = QRectF(at, at);
      if ((r.flags & 4) && r.points.size() >= 3) {
        clipped = true;
        box = m_map.Rect(r.points[1], r.points[2]);
      }
    }
    if (clipped) {
      m_painter.save();
      m_painter.setClipRect(box, Qt::IntersectClip);
    }
    for (const QString& line : lines) {
      const double width = m_metrics.horizontalAdvance(line);
      double x;
      if (r.kind == MetaRecord::DrawText) {
        x = box.left();
        if (r.flags & 0x2) x = box.right() - width;
        if (r.flags & 0x1) x = (box.left() + box.right()) / 2 - width / 2;
      } else {
        x = m_map(r.points[0]).x();
        if ((r.align & 6) == 6)
          x -= width / 2;
        else if (r.align & 2)
          x -= width;
      }
      m_painter.drawText(QPointF(x, y + ascent), line);
      y += lineHeight;
    }
    if (clipped) m_painter.restore();
    if (clipped) m_hasFont = m_hasPen = false;
  }

  // Fills the area around the seed up to the border colour, span by span.
  void FloodFill(const MetaRecord& r) {
    QPaintDevice* device = m_painter.device();
    if (!device || device->devType() != QInternal::Image) return;
    const QImage& image = *static_cast<const QImage*>(device);
    const QPointF seed = m_painter.transform().map(m_map(r.points[0]));
    const int w = image.width(), h = image.height();
    const int sx = static_cast<int>(std::floor(seed.x())),
              sy = static_cast<int>(std::floor(seed.y()));
    if (sx < 0 || sy < 0 || sx >= w || sy >= h) return;
    const QRgb border = ToQColor(r.borderColor).rgb() & 0xFFFFFF;
    const auto isBorder = [&](int x, int y) { return (image.pixel(x, y) & 0xFFFFFF) == border; };
    if (isBorder(sx, sy)) return;
    std::vector<std::uint8_t> seen(static_cast<size_t>(w) * h, 0);
    std::vector<QPoint> stack{QPoint(sx, sy)};
    std::vector<QRect> spans;
    while (!stack.empty()) {
      const QPoint p = stack.back();
      stack.pop_back();
      int y = p.y(), left = p.x(), right = p.x();
      if (seen[size_t(y) * w + left] || isBorder(left, y)) continue;
      while (left > 0 && !seen[size_t(y) * w + left - 1] && !isBorder(left - 1, y)) --left;
      while (right + 1 < w && !seen[size_t(y) * w + right + 1] && !isBorder(right + 1, y)) ++right;
      for (int x = left; x <= right; ++x) seen[size_t(y) * w + x] = 1;
      spans.emplace_back(left, y, right - left + 1, 1);
      for (int ny : {y - 1, y + 1}) {
        if (ny < 0 || ny >= h) continue;
        for (int x = left; x <= right; ++x)
          if (!seen[size_t(ny) * w + x] && !isBorder(x, ny)) stack.emplace_back(x, ny);
      }
    }
    m_painter.save();
    m_painter.resetTransform();
    for (const QRect& span : spans) m_painter.fillRect(span, ToQColor(r.brush.color));
    m_painter.restore();
  }

  QPainter& m_painter;
  const MetaPicture& m_picture;
  Mapping m_map;
  bool m_antialias;
  double m_dpi;
  MetaPen m_pen;
  bool m_hasPen = false;
  MetaFont m_font;
  bool m_hasFont = false;
  QFont m_qfont;
  QFontMetricsF m_metrics{QFont()};
};

}  // namespace

void PlayPicture(QPainter& painter, const MetaPicture& picture, const MetaRect& device) {
  painter.save();
  painter.setRenderHint(QPainter::TextAntialiasing, painter.testRenderHint(QPainter::Antialiasing));
  Player(painter, picture, device).Run();
  painter.restore();
}

}  // namespace ombrelle
