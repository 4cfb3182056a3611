// Reading a 16-bit metafile of this program back into a recording.
#include <variant>

#include "pictures/MetafileConversions.h"
#include "pictures/PictureWalk.h"
#include "pictures/WmfWriter.h"
#include "support/Codepage.h"

namespace ombrelle {

namespace {

using WmfObject = std::variant<std::monostate, MetaPen, MetaBrush, MetaFont>;

struct ReadState {
  double perUnit = 2540.0 / 1440;  // 0.01 mm per metafile unit
  int orgX = 0, orgY = 0;
  MetaPen pen;
  MetaBrush brush;
  MetaFont font;
  uint32_t textColor = 0;
  uint32_t align = 0;
  QPoint position;
  std::vector<WmfObject> objects;

  // Metafile units (y down) to 0.01 mm with y up.
  QPoint Point(int16_t x, int16_t y) const {
    return {RoundEven((x - orgX) * perUnit), -RoundEven((y - orgY) * perUnit)};
  }
  int Length(int v) const { return RoundEven(v * perUnit); }
};

}  // namespace

std::shared_ptr<MetaPicture> WMF2EMF(const QByteArray& wmf) {
  LittleEndianReader in(wmf);
  int start = 0;
  int units = 1440;
  RecordRect box;
  bool placeable = false;
  if (in.U32() == kPlaceableKey) {
    in.U16();
    box.left = in.I16();
    box.top = in.I16();
    box.right = in.I16();
    box.bottom = in.I16();
    units = in.U16();
    placeable = true;
    start = kPlaceableHeaderSize;
  }
  in.Seek(start);
  const uint16_t type = in.U16();
  const uint16_t headerWords = in.U16();
  in.U16();
  const uint32_t totalWords = in.U32();
  if (in.Failed() || (type != 1 && type != 2) || headerWords != 9 || units <= 0 ||
      static_cast<qsizetype>(totalWords) * 2 > wmf.size() - start) {
    return nullptr;
  }

  auto picture = std::make_shared<MetaPicture>();
  picture->mapMode = 3;
  ReadState s;
  s.perUnit = 2540.0 / units;
  if (placeable) {
    s.orgX = box.left;
    s.orgY = box.top;
  }
  int pos = start + kWmfHeaderSize;
  const int end = start + static_cast<int>(totalWords) * 2;
  bool sawWindow = false;
  bool sawDrawing = false;
  while (pos + 6 <= end) {
    in.Seek(pos);
    const uint32_t words = in.U32();
    const uint16_t function = in.U16();
    if (words < 3 || static_cast<qint64>(pos) + words * 2LL > end) return nullptr;
    const int next = pos + static_cast<int>(words) * 2;
    auto add = [&](MetaRecord::Kind kind) -> MetaRecord& {
      sawDrawing = true;
      MetaRecord& r = picture->records.emplace_back();
      r.kind = kind;
      if (UsesPen(kind)) r.pen = s.pen;
      if (UsesBrush(kind)) r.brush = s.brush;
      return r;
    };
    auto readBox = [&](MetaRecord& r) {
      const int16_t bottom = in.I16(), right = in.I16(), top = in.I16(), left = in.I16();
      r.points.push_back(s.Point(left, top));
      r.points.push_back(s.Point(right, bottom));
    };
    auto place = [&](WmfObject object) {
      for (WmfObject& slot : s.objects) {
        if (std::holds_alternative<std::monostate>(slot)) {
          slot = object;
          return;
        }
      }
      s.objects.push_back(object);
    };
    switch (function) {
      case WmfFunc::Eof:
        pos = end;
        continue;
      case WmfFunc::SetWindowOrg: {
        const int16_t y = in.I16(), x = in.I16();
        if (!placeable) s.orgX = x, s.orgY = y;
        break;
      }
      case WmfFunc::SetWindowExt: {
        const int16_t y = in.I16(), x = in.I16();
        if (!placeable) box = {s.orgX, s.orgY, s.orgX + x, s.orgY + y};
        sawWindow = true;
        break;
      }
      case WmfFunc::SetTextColor:
        s.textColor = in.U32();
        break;
      case WmfFunc::SetTextAlign:
        s.align = in.U16();
        break;
      case WmfFunc::CreatePenIndirect: {
        MetaPen pen;
        pen.style = in.U16() == 5 ? MetaPen::Null : MetaPen::Solid;
        pen.width = s.Length(in.I16());
        in.I16();
        pen.color = in.U32();
        if (pen.style == MetaPen::Null) pen = MetaPen{0, 0, MetaPen::Null};
        place(pen);
        break;
      }
      case WmfFunc::CreateBrushIndirect: {
        MetaBrush brush;
        brush.style = in.U16() == 1 ? MetaBrush::Null : MetaBrush::Solid;
        brush.color = in.U32();
        place(brush);
        break;
      }
      case WmfFunc::CreateFontIndirect: {
        MetaFont font;
        font.height = -s.Length(-in.I16());
        in.I16();
        font.escapement = in.I16();
        in.I16();
        font.weight = in.I16();
        font.italic = in.U8() != 0;
        font.underline = in.U8() != 0;
        font.strikeout = in.U8() != 0;
        font.charset = in.U8();
        in.Skip(4);
        QByteArray face;
        for (int i = 0; i < 32 && in.Pos() < next; ++i) {
          const char c = static_cast<char>(in.U8());
          if (c == 0) break;
          face.append(c);
        }
        font.face = MultiByteToText(face, kCodepageAnsi);
        place(font);
        break;
      }
      case WmfFunc::SelectObject: {
        const uint16_t slot = in.U16();
        if (slot < s.objects.size()) {
          const WmfObject& o = s.objects[slot];
          if (auto* pen = std::get_if<MetaPen>(&o)) s.pen = *pen;
          if (auto* brush = std::get_if<MetaBrush>(&o)) s.brush = *brush;
          if (auto* font = std::get_if<MetaFont>(&o)) s.font = *font;
        }
        break;
      }
      case WmfFunc::DeleteObject: {
        const uint16_t slot = in.U16();
        if (slot < s.objects.size()) s.objects[slot] = std::monostate{};
        break;
      }
      case WmfFunc::MoveTo: {
        const int16_t y = in.I16(), x = in.I16();
        s.position = s.Point(x, y);
        break;
      }
      case WmfFunc::LineTo: {
        const int16_t y = in.I16(), x = in.I16();
        MetaRecord& r = add(MetaRecord::Line);
        r.points = {s.position, s.Point(x, y)};
        s.position = r.points[1];
        break;
      }
      case WmfFunc::Polyline:
      case WmfFunc::Polygon: {
        const int16_t count = in.I16();
        if (count < 0 || 8 + count * 4 > static_cast<int>(words) * 2) return nullptr;
        MetaRecord& r =
            add(function == WmfFunc::Polyline ? MetaRecord::Polyline : MetaRecord::Polygon);
        for (int i = 0; i < count; ++i) {
          const int16_t x = in.I16(), y = in.I16();
          r.points.push_back(s.Point(x, y));
        }
        break;
      }
      case WmfFunc::Rectangle: {
        const int16_t bottom = in.I16(), right = in.I16(), top = in.I16(), left = in.I16();
        // The invisible frame the writer puts first is not part of the picture.
        const bool frame = !sawDrawing && s.brush.style == MetaBrush::Null &&
                           s.pen.style == MetaPen::Null &&
                           RecordRect{left, top, right, bottom} == box;
        sawDrawing = true;
        if (frame) break;
        MetaRecord& r = add(MetaRecord::FillRect);
        r.points = {s.Point(left, top), s.Point(right, bottom)};
        break;
      }
      case WmfFunc::Ellipse:
        readBox(add(MetaRecord::Ellipse));
        break;
      case WmfFunc::Pie: {
        MetaRecord& r = add(MetaRecord::Pie);
        const int16_t y2 = in.I16(), x2 = in.I16(), y1 = in.I16(), x1 = in.I16();
        readBox(r);
        r.points.push_back(s.Point(x1, y1));
        r.points.push_back(s.Point(x2, y2));
        break;
      }
      case WmfFunc::ExtFloodFill: {
        in.U16();
        const uint32_t color = in.U32();
        const int16_t y = in.I16(), x = in.I16();
        MetaRecord& r = add(MetaRecord::FloodFill);
        r.borderColor = color;
        r.points = {s.Point(x, y)};
        break;
      }
      case WmfFunc::ExtTextOut: {
        const int16_t y = in.I16(), x = in.I16();
        const int16_t length = in.I16();
        const uint16_t options = in.U16();
        MetaRecord& r = add(MetaRecord::ExtTextOut);
        r.points = {s.Point(x, y)};
        if (options & 0x0006) {
          const int16_t left = in.I16(), top = in.I16(), right = in.I16(), bottom = in.I16();
          r.points.push_back(s.Point(left, top));
          r.points.push_back(s.Point(right, bottom));
        }
        if (length < 0 || in.Pos() + length > next) return nullptr;
        r.text = MultiByteToText(wmf.constData() + in.Pos(), length, kCodepageAnsi);
        r.flags = options & 0x4;
        r.align = s.align;
        r.font = s.font;
        r.textColor = s.textColor;
        break;
      }
      default:
        break;  // state this program never writes
    }
    if (in.Failed()) return nullptr;
    pos = next;
  }
  if (!placeable && !sawWindow) return nullptr;
  const int width = RoundEven((box.right - box.left) * s.perUnit);
  const int height = RoundEven((box.bottom - box.top) * s.perUnit);
  picture->frameRect = {0, 0, width, height};
  const int pixel = RoundEven(2540.0 / kReferenceDpi);
  picture->playRect = {0, 0, width - pixel, -height + pixel};
  return picture;
}

}  // namespace ombrelle
