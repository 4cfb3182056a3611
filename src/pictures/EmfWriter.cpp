#include "pictures/EmfWriter.h"

#include <algorithm>
#include <cmath>

namespace ombrelle {

namespace {

constexpr uint32_t kSignature = 0x464D4520;  // " EMF"
constexpr uint32_t kVersion = 0x00010000;
constexpr int kHeaderSize = 108;  // the base header with both extensions
constexpr int kFontFaceChars = 32;

int32_t RoundToInt(double v) { return static_cast<int32_t>(std::lround(v)); }

void WriteWide(LittleEndianWriter& out, const QString& text, int chars) {
  for (int i = 0; i < chars; ++i) out.U16(i < text.size() ? text.at(i).unicode() : 0);
}

}  // namespace

void EmfWriter::SetDeviceMapping(double scaleX, double offsetX, double scaleY, double offsetY) {
  m_scaleX = scaleX;
  m_offsetX = offsetX;
  m_scaleY = scaleY;
  m_offsetY = offsetY;
}

void EmfWriter::Begin(uint32_t type) {
  m_recordStart = m_out.Size();
  m_out.U32(type);
  m_out.U32(0);  // size, patched by End()
}

void EmfWriter::End() {
  m_out.PatchU32(m_recordStart + 4, static_cast<uint32_t>(m_out.Size() - m_recordStart));
  ++m_records;
}

void EmfWriter::Simple(uint32_t type, uint32_t value) {
  Begin(type);
  m_out.U32(value);
  End();
}

void EmfWriter::Pair(uint32_t type, int32_t x, int32_t y) {
  Begin(type);
  m_out.I32(x);
  m_out.I32(y);
  End();
}

void EmfWriter::Box(uint32_t type, const RecordRect& box) {
  Begin(type);
  m_out.I32(box.left);
  m_out.I32(box.top);
  m_out.I32(box.right);
  m_out.I32(box.bottom);
  End();
}

uint32_t EmfWriter::TakeSlot() {
  for (size_t i = 1; i < m_slots.size(); ++i) {
    if (!m_slots[i]) {
      m_slots[i] = true;
      return static_cast<uint32_t>(i);
    }
  }
  m_slots.push_back(true);
  return static_cast<uint32_t>(m_slots.size() - 1);
}

uint32_t EmfWriter::CreatePen(uint32_t style, int32_t width, uint32_t color) {
  const uint32_t slot = TakeSlot();
  Begin(EmrType::CreatePen);
  m_out.U32(slot);
  m_out.U32(style);
  m_out.I32(width);  // the width is a point; only x counts
  m_out.I32(0);
  m_out.U32(color);
  End();
  return slot;
}

uint32_t EmfWriter::ExtCreatePen(uint32_t style, int32_t width, uint32_t color) {
  const uint32_t slot = TakeSlot();
  Begin(EmrType::ExtCreatePen);
  m_out.U32(slot);
  m_out.Zeros(16);  // no pattern bitmap: its offset and size, and its bits'
  m_out.U32(style);
  m_out.I32(width);
  m_out.U32(0);  // solid brush style
  m_out.U32(color);
  m_out.U32(0);  // hatch
  m_out.U32(0);  // no dash entries
  End();
  return slot;
}

uint32_t EmfWriter::CreateBrushIndirect(uint32_t style, uint32_t color, uint32_t hatch) {
  const uint32_t slot = TakeSlot();
  Begin(EmrType::CreateBrushIndirect);
  m_out.U32(slot);
  m_out.U32(style);
  m_out.U32(color);
  m_out.U32(hatch);
  End();
  return slot;
}

uint32_t EmfWriter::ExtCreateFontIndirectW(const LogicalFont& font) {
  const uint32_t slot = TakeSlot();
  Begin(EmrType::ExtCreateFontIndirectW);
  m_out.U32(slot);
  // The logical font (92 bytes)...
  m_out.I32(font.height);
  m_out.I32(font.width);
  m_out.I32(font.escapement);
  m_out.I32(font.orientation);
  m_out.I32(font.weight);
  m_out.U8(font.italic ? 1 : 0);
  m_out.U8(font.underline ? 1 : 0);
  m_out.U8(font.strikeOut ? 1 : 0);
  m_out.U8(font.charSet);
  m_out.Zeros(4);  // output and clip precision, quality, pitch and family
  WriteWide(m_out, font.faceName.left(kFontFaceChars - 1), kFontFaceChars);
  // ...then the extended part of 228 bytes: full name (64 characters), style
  // (32), version, style size, match, reserved, vendor, culture, panose (10)
  // and 2 bytes of padding, all empty.
  m_out.Zeros(128 + 64 + 6 * 4 + 10 + 2);
  End();
  return slot;
}

void EmfWriter::SelectObject(uint32_t slot) { Simple(EmrType::SelectObject, slot); }

void EmfWriter::DeleteObject(uint32_t slot) {
  Simple(EmrType::DeleteObject, slot);
  if (slot < m_slots.size()) m_slots[slot] = false;
}

void EmfWriter::DeviceBounds(const std::vector<RecordPoint>& points) {
  if (points.empty()) {
    m_out.Zeros(16);
    return;
  }
  double left = 1e300, top = 1e300, right = -1e300, bottom = -1e300;
  for (const RecordPoint& p : points) {
    const double x = p.x * m_scaleX + m_offsetX;
    const double y = p.y * m_scaleY + m_offsetY;
    left = std::min(left, x);
    right = std::max(right, x);
    top = std::min(top, y);
    bottom = std::max(bottom, y);
  }
  m_out.I32(RoundToInt(std::floor(left)));
  m_out.I32(RoundToInt(std::floor(top)));
  m_out.I32(RoundToInt(std::ceil(right)));
  m_out.I32(RoundToInt(std::ceil(bottom)));
}

void EmfWriter::Poly16(uint32_t type, const std::vector<RecordPoint>& points) {
  Begin(type);
  DeviceBounds(points);
  m_out.U32(static_cast<uint32_t>(points.size()));
  for (const RecordPoint& p : points) {
    m_out.I16(static_cast<int16_t>(p.x));
    m_out.I16(static_cast<int16_t>(p.y));
  }
  End();
}

void EmfWriter::Poly32(uint32_t type, const std::vector<RecordPoint>& points) {
  Begin(type);
  DeviceBounds(points);
  m_out.U32(static_cast<uint32_t>(points.size()));
  for (const RecordPoint& p : points) {
    m_out.I32(p.x);
    m_out.I32(p.y);
  }
  End();
}

namespace {
bool FitsSixteenBits(const std::vector<RecordPoint>& points) {
  return std::all_of(points.begin(), points.end(), [](const RecordPoint& p) {
    return p.x >= -32768 && p.x <= 32767 && p.y >= -32768 && p.y <= 32767;
  });
}
}  // namespace

void EmfWriter::Polyline(const std::vector<RecordPoint>& points) {
  FitsSixteenBits(points) ? Polyline16(points) : Poly32(EmrType::Polyline, points);
}

void EmfWriter::Polygon(const std::vector<RecordPoint>& points) {
  FitsSixteenBits(points) ? Polygon16(points) : Poly32(EmrType::Polygon, points);
}

void EmfWriter::PolyBezier(const std::vector<RecordPoint>& points) {
  FitsSixteenBits(points) ? PolyBezier16(points) : Poly32(EmrType::PolyBezier, points);
}

void EmfWriter::Pie(const RecordRect& box, RecordPoint start, RecordPoint end) {
  Begin(EmrType::Pie);
  m_out.I32(box.left);
  m_out.I32(box.top);
  m_out.I32(box.right);
  m_out.I32(box.bottom);
  m_out.I32(start.x);
  m_out.I32(start.y);
  m_out.I32(end.x);
  m_out.I32(end.y);
  End();
}

void EmfWriter::ExtFloodFill(int32_t x, int32_t y, uint32_t color, uint32_t mode) {
  Begin(EmrType::ExtFloodFill);
  m_out.I32(x);
  m_out.I32(y);
  m_out.U32(color);
  m_out.U32(mode);
  End();
}

void EmfWriter::ExtTextOutW(int32_t x, int32_t y, const QString& text, uint32_t options,
                            const RecordRect& clip, const std::vector<int32_t>& advances) {
  constexpr int kFixed = 76;  // record head, bounds, mode, scales and the text block
  const int chars = static_cast<int>(text.size());
  const int stringBytes = (chars * 2 + 3) / 4 * 4;
  int32_t width = 0;
  for (int i = 0; i < chars; ++i) width += i < static_cast<int>(advances.size()) ? advances[i] : 0;
  Begin(EmrType::ExtTextOutW);
  DeviceBounds({{x, y}, {x + width, y}});
  m_out.U32(1);  // compatible graphics mode
  m_out.F32(0);  // scales from page units to 0.01 mm: not used by players
  m_out.F32(0);
  m_out.I32(x);
  m_out.I32(y);
  m_out.U32(static_cast<uint32_t>(chars));
  m_out.U32(kFixed);
  m_out.U32(options);
  m_out.I32(clip.left);
  m_out.I32(clip.top);
  m_out.I32(clip.right);
  m_out.I32(clip.bottom);
  m_out.U32(static_cast<uint32_t>(kFixed + stringBytes));
  WriteWide(m_out, text, chars);
  m_out.Zeros(stringBytes - chars * 2);
  for (int i = 0; i < chars; ++i)
    m_out.I32(i < static_cast<int>(advances.size()) ? advances[i] : 0);
  End();
}

QByteArray EmfWriter::Finish(const EmfHeaderInfo& info) const {
  // The description is stored as given, in UTF-16, padded to 4 bytes.
  const int descChars = static_cast<int>(info.description.size());
  const int descBytes = (descChars * 2 + 3) / 4 * 4;
  const int headerSize = kHeaderSize + descBytes;
  constexpr int kEofSize = 20;
  const int total = headerSize + m_out.Size() + kEofSize;

  LittleEndianWriter out;
  out.U32(EmrType::Header);
  out.U32(static_cast<uint32_t>(headerSize));
  for (const RecordRect& r : {info.bounds, info.frame}) {
    out.I32(r.left);
    out.I32(r.top);
    out.I32(r.right);
    out.I32(r.bottom);
  }
  out.U32(kSignature);
  out.U32(kVersion);
  out.U32(static_cast<uint32_t>(total));
  out.U32(static_cast<uint32_t>(m_records + 2));  // with the header and end records
  out.U16(static_cast<uint16_t>(m_slots.size()));
  out.U16(0);
  out.U32(static_cast<uint32_t>(descChars));
  out.U32(descChars > 0 ? kHeaderSize : 0);
  out.U32(0);  // no palette
  out.I32(info.devicePixelsX);
  out.I32(info.devicePixelsY);
  out.I32(info.deviceMillimetersX);
  out.I32(info.deviceMillimetersY);
  out.Zeros(12);  // no pixel format, no OpenGL records
  out.I32(info.deviceMillimetersX * 1000);
  out.I32(info.deviceMillimetersY * 1000);
  WriteWide(out, info.description, descChars);
  out.Zeros(descBytes - descChars * 2);
  out.Bytes(m_out.Data());
  out.U32(EmrType::Eof);
  out.U32(kEofSize);
  out.U32(0);   // no palette entries
  out.U32(16);  // offset of the (empty) palette
  out.U32(kEofSize);
  return out.Take();
}

}  // namespace ombrelle
