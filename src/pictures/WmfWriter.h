#pragma once

#include <cstdint>
#include <vector>

#include <QByteArray>
#include <QString>

#include "pictures/EmfWriter.h"
#include "pictures/LittleEndianWriter.h"

namespace ombrelle {

// Record functions of the 16-bit metafile format that the writer produces.
namespace WmfFunc {
constexpr uint16_t Eof = 0x0000;
constexpr uint16_t SetBkMode = 0x0102;
constexpr uint16_t SetMapMode = 0x0103;
constexpr uint16_t SetPolyFillMode = 0x0106;
constexpr uint16_t SetTextAlign = 0x012E;
constexpr uint16_t SelectObject = 0x012D;
constexpr uint16_t DeleteObject = 0x01F0;
constexpr uint16_t SetTextColor = 0x0209;
constexpr uint16_t SetWindowOrg = 0x020B;
constexpr uint16_t SetWindowExt = 0x020C;
constexpr uint16_t SetViewportOrg = 0x020D;
constexpr uint16_t SetViewportExt = 0x020E;
constexpr uint16_t LineTo = 0x0213;
constexpr uint16_t MoveTo = 0x0214;
constexpr uint16_t CreatePenIndirect = 0x02FA;
constexpr uint16_t CreateFontIndirect = 0x02FB;
constexpr uint16_t CreateBrushIndirect = 0x02FC;
constexpr uint16_t Polygon = 0x0324;
constexpr uint16_t Polyline = 0x0325;
constexpr uint16_t Ellipse = 0x0418;
constexpr uint16_t Rectangle = 0x041B;
constexpr uint16_t ExtFloodFill = 0x0548;
constexpr uint16_t Pie = 0x081A;
constexpr uint16_t ExtTextOut = 0x0A32;
}  // namespace WmfFunc

constexpr uint32_t kPlaceableKey = 0x9AC6CDD7;
constexpr int kPlaceableHeaderSize = 22;
constexpr int kWmfHeaderSize = 18;

// Builds a 16-bit metafile record by record in the published layout: each
// record is its size in 16-bit words (32 bits), its function (16 bits) and its
// parameters, points as y before x where the format says so. Coordinates are
// 16-bit; the caller keeps them within range. Objects take the lowest free
// slot of the object table. Finish() adds the 18-byte header (with the file
// size in words, the table size and the largest record) and the end record.
class WmfWriter {
 public:
  uint16_t CreatePenIndirect(uint16_t style, int16_t width, uint32_t color);
  uint16_t CreateBrushIndirect(uint16_t style, uint32_t color, uint16_t hatch = 0);
  // The face name is stored as Windows-1252 in a 32-byte field.
  uint16_t CreateFontIndirect(const LogicalFont& font);
  void SelectObject(uint16_t slot) { Words(WmfFunc::SelectObject, {slot}); }
  void DeleteObject(uint16_t slot);

  void SetMapMode(uint16_t mode) { Words(WmfFunc::SetMapMode, {mode}); }
  void SetBkMode(uint16_t mode) { Words(WmfFunc::SetBkMode, {mode}); }
  void SetPolyFillMode(uint16_t mode) { Words(WmfFunc::SetPolyFillMode, {mode}); }
  void SetTextAlign(uint16_t align) { Words(WmfFunc::SetTextAlign, {align}); }
  void SetTextColor(uint32_t color);
  void SetWindowOrg(int16_t x, int16_t y) { YX(WmfFunc::SetWindowOrg, x, y); }
  void SetWindowExt(int16_t x, int16_t y) { YX(WmfFunc::SetWindowExt, x, y); }
  void SetViewportOrg(int16_t x, int16_t y) { YX(WmfFunc::SetViewportOrg, x, y); }
  void SetViewportExt(int16_t x, int16_t y) { YX(WmfFunc::SetViewportExt, x, y); }
  void MoveTo(int16_t x, int16_t y) { YX(WmfFunc::MoveTo, x, y); }
  void LineTo(int16_t x, int16_t y) { YX(WmfFunc::LineTo, x, y); }

  void Polyline(const std::vector<RecordPoint>& points) { Poly(WmfFunc::Polyline, points); }
  void Polygon(const std::vector<RecordPoint>& points) { Poly(WmfFunc::Polygon, points); }
  void Rectangle(const RecordRect& box) { Box(WmfFunc::Rectangle, box); }
  void Ellipse(const RecordRect& box) { Box(WmfFunc::Ellipse, box); }
  void Pie(const RecordRect& box, RecordPoint start, RecordPoint end);
  void ExtFloodFill(int16_t x, int16_t y, uint32_t color, uint16_t mode);
  // Text as Windows-1252 at (x, y); `options` 4 clips to `clip`, which is
  // then stored; advances are stored only when given.
  void ExtTextOut(int16_t x, int16_t y, const QString& text, uint16_t options,
                  const RecordRect& clip, const std::vector<int16_t>& advances);

  int RecordCount() const { return m_records; }
  QByteArray Finish() const;

 private:
  void Begin(uint16_t function);
  void End();
  void Words(uint16_t function, std::initializer_list<uint16_t> words);
  void YX(uint16_t function, int16_t x, int16_t y);
  void Box(uint16_t function, const RecordRect& box);
  void Poly(uint16_t function, const std::vector<RecordPoint>& points);
  uint16_t TakeSlot();

  LittleEndianWriter m_out;
  int m_recordStart = 0;
  int m_records = 0;
  uint32_t m_maxRecordWords = 3;  // the end record
  std::vector<bool> m_slots;
  size_t m_tableSize = 0;
};

// The largest units per inch, starting from `units` and halving, at which a
// length of `hundredthsMm` stays within a signed 16-bit number.
int FitUnits(int32_t hundredthsMm, int units);

// The 22-byte placeable header for a bounding box in metafile units and the
// units per inch it states, with its checksum (XOR of the ten words before).
QByteArray PlaceableHeader(const RecordRect& box, uint16_t unitsPerInch);
uint16_t PlaceableChecksum(const QByteArray& firstTwentyBytes);

}  // namespace ombrelle
