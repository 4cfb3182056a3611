// The enhanced metafile form of a recording.
#include <algorithm>
#include <optional>

#include "pictures/EmfWriter.h"
#include "pictures/MetafileConversions.h"
#include "pictures/PictureWalk.h"

namespace ombrelle {

namespace {

constexpr uint32_t kTransparent = 1;
constexpr uint32_t kWinding = 2;
constexpr uint32_t kAnisotropic = 8;
constexpr int kDevicePixelsX = 1920;  // the reference device: 96 pixels per inch
constexpr int kDevicePixelsY = 1440;
constexpr int kDeviceMmX = 508;
constexpr int kDeviceMmY = 381;

struct Extents {
  int windowX = 1, windowY = 1;  // logical units, signed: y negative for y-up modes
  int pixelsX = 1, pixelsY = 1;
};

Extents PictureExtents(const MetaPicture& picture) {
  const MetaRect& f = picture.frameRect;
  const int w = f.right - f.left;
  const int h = f.bottom - f.top;
  Extents e;
  e.pixelsX = std::max(1, RoundEven(w * double(kReferenceDpi) / 2540));
  e.pixelsY = std::max(1, RoundEven(h * double(kReferenceDpi) / 2540));
  switch (picture.mapMode) {
    case 2:
      e.windowX = std::max(1, RoundEven(w / 10.0));
      e.windowY = -std::max(1, RoundEven(h / 10.0));
      break;
    case 3:
      e.windowX = std::max(1, w);
      e.windowY = -std::max(1, h);
      break;
    default:
      e.windowX = e.pixelsX;
      e.windowY = e.pixelsY;
      break;
  }
  return e;
}

// Emits the records of one recording, keeping track of the objects in force
// so that each is created, selected and deleted once per change.
class EmfEmitter {
 public:
  explicit EmfEmitter(EmfWriter& out, int mapMode) : m_out(out), m_mode(mapMode) {}

  void Walk(const MetaPicture& picture, const PictureMap& map, int depth) {
    for (const MetaRecord& r : picture.records) {
      if (r.kind == MetaRecord::Picture) {
        if (r.picture && depth < 8) Walk(*r.picture, NestedMap(*r.picture, r).Then(map), depth + 1);
        continue;
      }
      Emit(r, map);
    }
  }

  void Close() {
    if (m_penSlot) {
      m_out.SelectObject(EmfStock::NullPen);
      m_out.DeleteObject(*m_penSlot);
    }
    if (m_brushSlot) {
      m_out.SelectObject(EmfStock::NullBrush);
      m_out.DeleteObject(*m_brushSlot);
    }
    if (m_fontSlot) m_out.DeleteObject(*m_fontSlot);
  }

 private:
  RecordPoint Map(const PictureMap& map, QPointF p) const {
    const QPointF q = map.Apply(p);
    return {RoundEven(q.x()), RoundEven(q.y())};
  }
  std::vector<RecordPoint> MapAll(const PictureMap& map, const std::vector<QPoint>& points) const {
    std::vector<RecordPoint> out;
    out.reserve(points.size());
    for (const QPoint& p : points) out.push_back(Map(map, p));
    return out;
  }
  // Boxes are stored with left < right and top above bottom on the page, as
  // players normalise them; some readers draw nothing for an inverted box.
  RecordRect Box(const PictureMap& map, QPoint a, QPoint b) const {
    const RecordPoint p = Map(map, a), q = Map(map, b);
    const bool yUp = m_mode == 2 || m_mode == 3;
    const int top = yUp ? std::max(p.y, q.y) : std::min(p.y, q.y);
    const int bottom = yUp ? std::min(p.y, q.y) : std::max(p.y, q.y);
    return {std::min(p.x, q.x), top, std::max(p.x, q.x), bottom};
  }

  void UsePen(MetaPen pen) {
    if (pen.style == MetaPen::Null) pen = MetaPen{0, 0, MetaPen::Null};
    if (m_pen && *m_pen == pen) return;
    m_pen = pen;
    const std::optional<uint32_t> old = m_penSlot;
    if (pen.style == MetaPen::Null) {
      m_out.SelectObject(EmfStock::NullPen);
      m_penSlot.reset();
    } else {
      // A geometric pen (round ends and joins) of the width in logical
      // units; width 0 is the cosmetic one-pixel pen.
      m_penSlot = pen.width > 0 ? m_out.ExtCreatePen(0x00010000, pen.width, pen.color)
                                : m_out.ExtCreatePen(0, 1, pen.color);
      m_out.SelectObject(*m_penSlot);
    }
    if (old) m_out.DeleteObject(*old);
  }

  void UseBrush(MetaBrush brush) {
    if (brush.style == MetaBrush::Null) brush.color = 0;
    if (m_brush && *m_brush == brush) return;
    m_brush = brush;
    const std::optional<uint32_t> old = m_brushSlot;
    if (brush.style == MetaBrush::Null) {
      m_out.SelectObject(EmfStock::NullBrush);
      m_brushSlot.reset();
    } else {
      m_brushSlot = m_out.CreateBrushIndirect(0, brush.color);
      m_out.SelectObject(*m_brushSlot);
    }
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
    const std::optional<uint32_t> old = m_fontSlot;
    m_fontSlot = m_out.ExtCreateFontIndirectW(lf);
    m_out.SelectObject(*m_fontSlot);
    if (old) m_out.DeleteObject(*old);
  }

  void UseTextColor(uint32_t color) {
    if (m_textColor && *m_textColor == color) return;
    m_textColor = color;
    m_out.SetTextColor(color);
  }

  void UseAlign(uint32_t align) {
    if (m_align && *m_align == align) return;
    m_align = align;
    m_out.SetTextAlign(align);
  }

  static MetaPen Scaled(MetaPen pen, const PictureMap& map) {
    pen.width = RoundEven(pen.width * map.Length());
    return pen;
  }

  void Emit(const MetaRecord& r, const PictureMap& map) {
    if (r.kind == MetaRecord::Polygon || r.kind == MetaRecord::FillRect) {
      MetaPen none;
      none.style = MetaPen::Null;
      UsePen(none);
    } else if (UsesPen(r.kind)) {
      UsePen(Scaled(r.pen, map));
    }
    if (UsesBrush(r.kind)) UseBrush(r.brush);
    const std::vector<QPoint>& p = r.points;
    switch (r.kind) {
      case MetaRecord::Line:
        if (p.size() >= 2) {
          const RecordPoint a = Map(map, p[0]), b = Map(map, p[1]);
          m_out.MoveToEx(a.x, a.y);
          m_out.LineTo(b.x, b.y);
        }
        break;
      case MetaRecord::Polyline:
        if (p.size() >= 2) m_out.Polyline(MapAll(map, p));
        break;
      case MetaRecord::Polygon:
        if (p.size() >= 3) m_out.Polygon(MapAll(map, p));
        break;
      case MetaRecord::Bezier:
        if (p.size() >= 4) m_out.PolyBezier(MapAll(map, p));
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
          m_out.ExtFloodFill(s.x, s.y, r.borderColor, 0);
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
    MetaFont font = r.font;
    font.height = RoundEven(PictureText::StoredHeight(font, m_mode) * map.Length());
    UseFont(font);
    UseTextColor(r.textColor);
    const PictureText measure(font, m_mode);
    for (const PlacedLine& line : lines) {
      UseAlign(line.align);
      const RecordPoint at = Map(map, line.anchor);
      RecordRect clip;
      if (line.options & 4) {
        const RecordPoint a = Map(map, line.clip1), b = Map(map, line.clip2);
        clip = {a.x, a.y, b.x, b.y};
      }
      const std::vector<int> advances = measure.Advances(line.text);
      m_out.ExtTextOutW(at.x, at.y, line.text, line.options, clip,
                        std::vector<int32_t>(advances.begin(), advances.end()));
    }
  }

  EmfWriter& m_out;
  int m_mode;
  std::optional<MetaPen> m_pen;
  std::optional<MetaBrush> m_brush;
  std::optional<MetaFont> m_font;
  std::optional<uint32_t> m_textColor, m_align;
  std::optional<uint32_t> m_penSlot, m_brushSlot, m_fontSlot;
};

}  // namespace

QByteArray EmfBytes(const MetaPicture& picture) {
  const Extents e = PictureExtents(picture);
  EmfWriter out;
  out.SetDeviceMapping(double(e.pixelsX) / e.windowX, 0, double(e.pixelsY) / e.windowY, 0);
  out.SetMapMode(kAnisotropic);
  out.SetWindowOrgEx(0, 0);
  out.SetWindowExtEx(e.windowX, e.windowY);
  out.SetViewportOrgEx(0, 0);
  out.SetViewportExtEx(e.pixelsX, e.pixelsY);
  out.SetBkMode(kTransparent);
  out.SetPolyFillMode(kWinding);
  EmfEmitter emitter(out, picture.mapMode);
  emitter.Walk(picture, PictureMap{}, 0);
  emitter.Close();

  EmfHeaderInfo info;
  const MetaRect& f = picture.frameRect;
  info.frame = {f.left, f.top, f.right, f.bottom};
  info.bounds = {0, 0, e.pixelsX - 1, e.pixelsY - 1};
  info.description = picture.description;
  info.devicePixelsX = kDevicePixelsX;
  info.devicePixelsY = kDevicePixelsY;
  info.deviceMillimetersX = kDeviceMmX;
  info.deviceMillimetersY = kDeviceMmY;
  return out.Finish(info);
}

QString EMFDescription(const QByteArray& emf) {
  LittleEndianReader in(emf);
  if (in.U32() != EmrType::Header) return {};
  const uint32_t headerSize = in.U32();
  in.Seek(40);
  if (in.U32() != 0x464D4520) return {};
  in.Seek(60);
  const uint32_t chars = in.U32();
  const uint32_t offset = in.U32();
  if (in.Failed() || chars == 0 || offset < 88 || offset > headerSize ||
      static_cast<qsizetype>(offset) + 2 * static_cast<qsizetype>(chars) > emf.size() ||
      static_cast<qsizetype>(offset) + 2 * static_cast<qsizetype>(chars) > headerSize) {
    return {};
  }
  QString text;
  in.Seek(static_cast<int>(offset));
  for (uint32_t i = 0; i < chars; ++i) text.append(QChar(in.U16()));
  if (text.endsWith(QString(2, QChar(0)))) text.chop(2);
  if (text == QString(1, QChar(0))) text.clear();
  return text;
}

}  // namespace ombrelle
