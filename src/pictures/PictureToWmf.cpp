// The 16-bit metafile form of a recording, with and without the placeable header.
#include <algorithm>
#include <optional>

#include "pictures/MetafileConversions.h"
#include "pictures/PictureWalk.h"
#include "pictures/WmfWriter.h"

namespace ombrelle {

namespace {

constexpr uint16_t kTransparent = 1;
constexpr uint16_t kOpaque = 2;
constexpr uint16_t kWinding = 2;
constexpr uint16_t kAnisotropic = 8;
constexpr int kBezierSteps = 16;

int16_t Clamp16(double v) { return static_cast<int16_t>(std::clamp(RoundEven(v), -32768, 32767)); }

// Logical units of the recording to metafile units: y downwards from the
// frame's top left.
PictureMap UnitsMap(const MetaPicture& picture, int units) {
  double perLogical = units / double(kReferenceDpi);  // map mode 1: pixels
  double ySign = 1;
  if (picture.mapMode == 2) {
    perLogical = 10.0 * units / 2540;
    ySign = -1;
  } else if (picture.mapMode == 3) {
    perLogical = double(units) / 2540;
    ySign = -1;
  }
  PictureMap map;
  map.ax = perLogical;
  map.ay = ySign * perLogical;
  map.bx = -picture.frameRect.left * double(units) / 2540;
  map.by = -picture.frameRect.top * double(units) / 2540;
  return map;
}

RecordRect BoundingBox(const MetaPicture& picture, int units) {
  const MetaRect& f = picture.frameRect;
  auto u = [units](int v) { return RoundEven(v * double(units) / 2540); };
  return {u(f.left), u(f.top), u(f.right), u(f.bottom)};
}

class WmfEmitter {
 public:
  WmfEmitter(WmfWriter& out, int mapMode) : m_out(out), m_mode(mapMode) {}

  // `frame`: the one record is the invisible frame, written as a rectangle.
  void Walk(const MetaPicture& picture, const PictureMap& map, int depth, bool frame = false) {
    for (const MetaRecord& r : picture.records) {
      if (r.kind == MetaRecord::Picture) {
        if (r.picture && depth < 8) Walk(*r.picture, NestedMap(*r.picture, r).Then(map), depth + 1);
        continue;
      }
      if (frame) {
        UseTransparent(false);
        UsePen(r.pen);
        UseBrush(r.brush);
        m_out.Rectangle(Box(map, r.points[0], r.points[1]));
        continue;
      }
      Emit(r, map);
    }
  }

  void Close() {
    for (std::optional<uint16_t>* slot : {&m_penSlot, &m_brushSlot, &m_fontSlot}) {
      if (*slot) m_out.DeleteObject(**slot);
    }
  }

 private:
  RecordPoint Map(const PictureMap& map, QPointF p) const {
    const QPointF q = map.Apply(p);
    return {Clamp16(q.x()), Clamp16(q.y())};
  }
  std::vector<RecordPoint> MapAll(const PictureMap& map, const std::vector<QPoint>& points) const {
    std::vector<RecordPoint> out;
    for (const QPoint& p : points) out.push_back(Map(map, p));
    return out;
  }
  // Boxes are stored with left < right and top < bottom, as players
  // normalise them; some readers draw nothing for an inverted box.
  RecordRect Box(const PictureMap& map, QPoint a, QPoint b) const {
    const RecordPoint p = Map(map, a), q = Map(map, b);
    return {std::min(p.x, q.x), std::min(p.y, q.y), std::max(p.x, q.x), std::max(p.y, q.y)};
  }

  // The format has no curves: each cubic segment becomes a chain of
  // kBezierSteps lines, repeated points left out.
  std::vector<RecordPoint> Flatten(const PictureMap& map, const std::vector<QPoint>& p) const {
    std::vector<RecordPoint> out{Map(map, p[0])};
    for (size_t i = 0; i + 3 < p.size(); i += 3) {
      const QPointF p0 = map.Apply(p[i]), p1 = map.Apply(p[i + 1]);
      const QPointF p2 = map.Apply(p[i + 2]), p3 = map.Apply(p[i + 3]);
      for (int k = 1; k <= kBezierSteps; ++k) {
        const double t = double(k) / kBezierSteps, s = 1 - t;
        const QPointF q = s * s * s * p0 + 3 * s * s * t * p1 + 3 * s * t * t * p2 + t * t * t * p3;
        const RecordPoint r{Clamp16(q.x()), Clamp16(q.y())};
        if (!(r == out.back())) out.push_back(r);
      }
    }
    return out;
  }

  void UsePen(MetaPen pen) {
    if (pen.style == MetaPen::Null) pen = MetaPen{0, 0, MetaPen::Null};
    if (m_pen && *m_pen == pen) return;
    m_pen = pen;
    const std::optional<uint16_t> old = m_penSlot;
    m_penSlot = pen.style == MetaPen::Null
                    ? m_out.CreatePenIndirect(5, 0, 0)
                    : m_out.CreatePenIndirect(0, Clamp16(pen.width), pen.color);
    m_out.SelectObject(*m_penSlot);
    if (old) m_out.DeleteObject(*old);
  }

  void UseBrush(MetaBrush brush) {
    if (brush.style == MetaBrush::Null) brush.color = 0;
    if (m_brush && *m_brush == brush) return;
    m_brush = brush;
    const std::optional<uint16_t> old = m_brushSlot;
    m_brushSlot = brush.style == MetaBrush::Null ? m_out.CreateBrushIndirect(1, 0)
                                                 : m_out.CreateBrushIndirect(0, brush.color);
    m_out.SelectObject(*m_brushSlot);
    if (old) m_out.DeleteObject(*old);
  }

  void UseFont(const MetaFont& font) {
    if (m_font && *m_font == font) return;
    m_font = font;
    LogicalFont lf;
    lf.height = font.height;
    lf.weight = font.weight;
    lf.italic = font.italic;
    lf.underline = font.underline;
    lf.strikeOut = font.strikeout;
    lf.charSet = static_cast<uint8_t>(font.charset);
    lf.escapement = font.escapement;
    lf.orientation = font.escapement;
    lf.faceName = font.face;
    const std::optional<uint16_t> old = m_fontSlot;
    m_fontSlot = m_out.CreateFontIndirect(lf);
    m_out.SelectObject(*m_fontSlot);
    if (old) m_out.DeleteObject(*old);
  }

  // Text never paints a background. The mode is transparent only around
  // text, since some readers also let shapes through in that mode.
  void UseTransparent(bool transparent) {
    if (m_transparent == transparent) return;
    m_transparent = transparent;
    m_out.SetBkMode(transparent ? kTransparent : kOpaque);
  }

  void Emit(const MetaRecord& r, const PictureMap& map) {
    const bool text = r.kind == MetaRecord::DrawText || r.kind == MetaRecord::ExtTextOut;
    if (!text) UseTransparent(false);
    if (r.kind == MetaRecord::Polygon || r.kind == MetaRecord::FillRect) {
      MetaPen none;
      none.style = MetaPen::Null;
      UsePen(none);
    } else if (UsesPen(r.kind)) {
      MetaPen pen = r.pen;
      pen.width = RoundEven(pen.width * map.Length());
      UsePen(pen);
    }
    if (UsesBrush(r.kind)) UseBrush(r.brush);
    const std::vector<QPoint>& p = r.points;
    switch (r.kind) {
      case MetaRecord::Line:
        if (p.size() >= 2) {
          const RecordPoint a = Map(map, p[0]), b = Map(map, p[1]);
          m_out.MoveTo(static_cast<int16_t>(a.x), static_cast<int16_t>(a.y));
          m_out.LineTo(static_cast<int16_t>(b.x), static_cast<int16_t>(b.y));
        }
        break;
      case MetaRecord::Polyline:
        if (p.size() >= 2) m_out.Polyline(MapAll(map, p));
        break;
      case MetaRecord::Bezier:
        if (p.size() >= 4) m_out.Polyline(Flatten(map, p));
        break;
      case MetaRecord::Polygon:
        if (p.size() >= 3) m_out.Polygon(MapAll(map, p));
        break;
      case MetaRecord::FillRect:
        if (p.size() >= 2) m_out.Rectangle(Box(map, p[0], p[1]));
        break;
      case MetaRecord::Ellipse:
        if (p.size() >= 2) m_out.Ellipse(Box(map, p[0], p[1]));
        break;
      case MetaRecord::Pie:
        if (p.size() >= 4) m_out.Pie(Box(map, p[0], p[1]), Map(map, p[2]), Map(map, p[3]));
        break;
      case MetaRecord::FloodFill:
        if (!p.empty()) {
          const RecordPoint s = Map(map, p[0]);
          m_out.ExtFloodFill(static_cast<int16_t>(s.x), static_cast<int16_t>(s.y), r.borderColor,
                             0);
        }
        break;
      case MetaRecord::DrawText:
      case MetaRecord::ExtTextOut:
        EmitText(r, map);
        break;
      case MetaRecord::Picture:
        break;
    }
  }

  void EmitText(const MetaRecord& r, const PictureMap& map) {
    const std::vector<PlacedLine> lines = LayoutText(r, m_mode);
    if (lines.empty()) return;
    UseTransparent(true);
    MetaFont font = r.font;
    font.height = Clamp16(PictureText::StoredHeight(font, m_mode) * map.Length());
    UseFont(font);
    if (!m_textColor || *m_textColor != r.textColor) {
      m_textColor = r.textColor;
      m_out.SetTextColor(r.textColor);
    }
    for (const PlacedLine& line : lines) {
      if (!m_align || *m_align != line.align) {
        m_align = line.align;
        m_out.SetTextAlign(static_cast<uint16_t>(line.align));
      }
      const RecordPoint at = Map(map, line.anchor);
      RecordRect clip;
      if (line.options & 4) {
        const RecordPoint a = Map(map, line.clip1), b = Map(map, line.clip2);
        clip = {a.x, a.y, b.x, b.y};
      }
      // No advances: readers space the characters by the font, which keeps
      // the file the same after a round trip through a recording.
      m_out.ExtTextOut(static_cast<int16_t>(at.x), static_cast<int16_t>(at.y), line.text,
                       static_cast<uint16_t>(line.options), clip, {});
    }
  }

  WmfWriter& m_out;
  int m_mode;
  bool m_transparent = false;  // players start opaque
  std::optional<MetaPen> m_pen;
  std::optional<MetaBrush> m_brush;
  std::optional<MetaFont> m_font;
  std::optional<uint32_t> m_textColor, m_align;
  std::optional<uint16_t> m_penSlot, m_brushSlot, m_fontSlot;
};

}  // namespace

int PictureUnitsPerInch(const MetaPicture& picture) {
  int units = 1440;
  const MetaRect& f = picture.frameRect;
  for (int v : {f.top, f.left, f.right, f.bottom}) units = FitUnits(v, units);
  return units;
}

QByteArray RegularMetafileBytes(const MetaPicture& picture, int unitsPerInch) {
  const RecordRect box = BoundingBox(picture, unitsPerInch);
  WmfWriter out;
  out.SetMapMode(kAnisotropic);
  out.SetWindowOrg(Clamp16(box.left), Clamp16(box.top));
  out.SetWindowExt(Clamp16(box.right - box.left), Clamp16(box.bottom - box.top));
  out.SetPolyFillMode(kWinding);
  WmfEmitter emitter(out, picture.mapMode);
  // Some readers size a picture by what it draws: an invisible rectangle
  // (no pen, no brush) over the bounding box comes first, so that the frame
  // and not the drawing decides the size.
  MetaRecord frame;
  frame.kind = MetaRecord::Ellipse;  // drawn with pen and brush, both empty
  frame.pen.style = MetaPen::Null;
  frame.brush.style = MetaBrush::Null;
  frame.points = {{box.left, box.top}, {box.right, box.bottom}};
  MetaPicture outline;
  outline.records.push_back(frame);
  emitter.Walk(outline, PictureMap{}, 0, true);
  emitter.Walk(picture, UnitsMap(picture, unitsPerInch), 0);
  emitter.Close();
  return out.Finish();
}

QByteArray CloneRegularMetafile(const MetaPicture& picture) {
  return RegularMetafileBytes(picture, PictureUnitsPerInch(picture));
}

QByteArray PlaceableWmfBytes(const MetaPicture& picture, float scale) {
  const int units = PictureUnitsPerInch(picture);
  const double stated = scale > 0 ? units / double(scale) : units;
  const uint16_t header = static_cast<uint16_t>(std::clamp(RoundEven(stated), 1, 65535));
  return PlaceableHeader(BoundingBox(picture, units), header) +
         RegularMetafileBytes(picture, units);
}

}  // namespace ombrelle
