#pragma once

#include <cstdint>
#include <vector>

#include <QByteArray>
#include <QString>

#include "pictures/LittleEndianWriter.h"

namespace ombrelle {

// Record types of the enhanced metafile format that the writer produces.
namespace EmrType {
constexpr uint32_t Header = 1;
constexpr uint32_t PolyBezier = 2;
constexpr uint32_t Polygon = 3;
constexpr uint32_t Polyline = 4;
constexpr uint32_t Eof = 14;
constexpr uint32_t SetWindowExtEx = 9;
constexpr uint32_t SetWindowOrgEx = 10;
constexpr uint32_t SetViewportExtEx = 11;
constexpr uint32_t SetViewportOrgEx = 12;
constexpr uint32_t SetMapMode = 17;
constexpr uint32_t SetBkMode = 18;
constexpr uint32_t SetPolyFillMode = 19;
constexpr uint32_t SetTextAlign = 22;
constexpr uint32_t SetTextColor = 24;
constexpr uint32_t MoveToEx = 27;
constexpr uint32_t SelectObject = 37;
constexpr uint32_t CreatePen = 38;
constexpr uint32_t CreateBrushIndirect = 39;
constexpr uint32_t DeleteObject = 40;
constexpr uint32_t Ellipse = 42;
constexpr uint32_t Rectangle = 43;
constexpr uint32_t Pie = 47;
constexpr uint32_t ExtFloodFill = 53;
constexpr uint32_t LineTo = 54;
constexpr uint32_t ExtCreateFontIndirectW = 82;
constexpr uint32_t ExtTextOutW = 84;
constexpr uint32_t PolyBezier16 = 85;
constexpr uint32_t Polygon16 = 86;
constexpr uint32_t Polyline16 = 87;
constexpr uint32_t ExtCreatePen = 95;
}  // namespace EmrType

// Stock objects that a record may select without creating them.
namespace EmfStock {
constexpr uint32_t NullBrush = 0x80000005;
constexpr uint32_t NullPen = 0x80000008;
}  // namespace EmfStock

struct RecordPoint {
  int32_t x = 0;
  int32_t y = 0;
  bool operator==(const RecordPoint&) const = default;
};

struct RecordRect {
  int32_t left = 0;
  int32_t top = 0;
  int32_t right = 0;
  int32_t bottom = 0;
  bool operator==(const RecordRect&) const = default;
};

// A logical font as both metafile forms describe it.
struct LogicalFont {
  int32_t height = 0;  // logical units; negative: the character height
  int32_t width = 0;
  int32_t escapement = 0;
  int32_t orientation = 0;
  int32_t weight = 400;
  bool italic = false;
  bool underline = false;
  bool strikeOut = false;
  uint8_t charSet = 0;
  QString faceName;  // at most 31 characters are kept
  bool operator==(const LogicalFont&) const = default;
};

// What the header of an enhanced metafile tells about the picture as a whole.
struct EmfHeaderInfo {
  RecordRect bounds;    // device pixels, inclusive
  RecordRect frame;     // 0.01 mm, inclusive
  QString description;  // stored as given, UTF-16; empty: none
  int32_t devicePixelsX = 0;
  int32_t devicePixelsY = 0;
  int32_t deviceMillimetersX = 0;
  int32_t deviceMillimetersY = 0;
};

// Builds an enhanced metafile record by record, in the published layout:
// each record is a 32-bit type, a 32-bit size in bytes and its fields, all
// little-endian. Objects (pens, brushes, fonts) take the lowest free slot of
// the object table, as a player allocates them; Finish() puts the header with
// the record count, byte count and table size in front and the end record
// behind.
class EmfWriter {
 public:
  // Records carry bounds in device units; points are mapped to the device by
  // device = logical * scale + offset, separately for x and y.
  void SetDeviceMapping(double scaleX, double offsetX, double scaleY, double offsetY);

  // Object records; each returns the slot it used.
  uint32_t CreatePen(uint32_t style, int32_t width, uint32_t color);
  uint32_t ExtCreatePen(uint32_t style, int32_t width, uint32_t color);
  uint32_t CreateBrushIndirect(uint32_t style, uint32_t color, uint32_t hatch = 0);
  uint32_t ExtCreateFontIndirectW(const LogicalFont& font);
  void SelectObject(uint32_t slot);
  void DeleteObject(uint32_t slot);

  // State records.
  void SetMapMode(uint32_t mode) { Simple(EmrType::SetMapMode, mode); }
  void SetBkMode(uint32_t mode) { Simple(EmrType::SetBkMode, mode); }
  void SetPolyFillMode(uint32_t mode) { Simple(EmrType::SetPolyFillMode, mode); }
  void SetTextAlign(uint32_t align) { Simple(EmrType::SetTextAlign, align); }
  void SetTextColor(uint32_t color) { Simple(EmrType::SetTextColor, color); }
  void SetWindowExtEx(int32_t x, int32_t y) { Pair(EmrType::SetWindowExtEx, x, y); }
  void SetWindowOrgEx(int32_t x, int32_t y) { Pair(EmrType::SetWindowOrgEx, x, y); }
  void SetViewportExtEx(int32_t x, int32_t y) { Pair(EmrType::SetViewportExtEx, x, y); }
  void SetViewportOrgEx(int32_t x, int32_t y) { Pair(EmrType::SetViewportOrgEx, x, y); }
  void MoveToEx(int32_t x, int32_t y) { Pair(EmrType::MoveToEx, x, y); }
  void LineTo(int32_t x, int32_t y) { Pair(EmrType::LineTo, x, y); }

  // Drawing records. The 16-bit point forms need every coordinate within
  // -32768..32767; the caller keeps them there.
  void Polyline16(const std::vector<RecordPoint>& points) { Poly16(EmrType::Polyline16, points); }
  void Polygon16(const std::vector<RecordPoint>& points) { Poly16(EmrType::Polygon16, points); }
  void PolyBezier16(const std::vector<RecordPoint>& points) {
    Poly16(EmrType::PolyBezier16, points);
  }
  // The same with 32-bit points when a coordinate needs them.
  void Polyline(const std::vector<RecordPoint>& points);
  void Polygon(const std::vector<RecordPoint>& points);
  void PolyBezier(const std::vector<RecordPoint>& points);
  void Rectangle(const RecordRect& box) { Box(EmrType::Rectangle, box); }
  void Ellipse(const RecordRect& box) { Box(EmrType::Ellipse, box); }
  void Pie(const RecordRect& box, RecordPoint start, RecordPoint end);
  // mode 0: fill up to the border colour; 1: fill the area of that colour.
  void ExtFloodFill(int32_t x, int32_t y, uint32_t color, uint32_t mode);
  // Text at the reference point; `options` 4 clips to `clip`. Every character
  // advances by the matching entry of `advances` (logical units).
  void ExtTextOutW(int32_t x, int32_t y, const QString& text, uint32_t options,
                   const RecordRect& clip, const std::vector<int32_t>& advances);

  int RecordCount() const { return m_records; }
  // The whole file: header, the records so far, end record.
  QByteArray Finish(const EmfHeaderInfo& info) const;

 private:
  void Begin(uint32_t type);
  void End();
  void Simple(uint32_t type, uint32_t value);
  void Pair(uint32_t type, int32_t x, int32_t y);
  void Box(uint32_t type, const RecordRect& box);
  void Poly16(uint32_t type, const std::vector<RecordPoint>& points);
  void Poly32(uint32_t type, const std::vector<RecordPoint>& points);
  void DeviceBounds(const std::vector<RecordPoint>& points);
  uint32_t TakeSlot();

  LittleEndianWriter m_out;
  int m_recordStart = 0;
  int m_records = 0;
  std::vector<bool> m_slots{true};  // slot 0 stands for the metafile itself
  double m_scaleX = 1, m_offsetX = 0, m_scaleY = 1, m_offsetY = 0;
};

}  // namespace ombrelle
