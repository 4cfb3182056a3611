#include "pictures/WmfWriter.h"

#include <cmath>

#include "support/Codepage.h"

namespace ombrelle {

namespace {
constexpr int kFaceBytes = 32;
}

void WmfWriter::Begin(uint16_t function) {
  m_recordStart = m_out.Size();
  m_out.U32(0);  // size in words, patched by End()
  m_out.U16(function);
}

void WmfWriter::End() {
  if ((m_out.Size() - m_recordStart) % 2 != 0) m_out.U8(0);
  const uint32_t words = static_cast<uint32_t>((m_out.Size() - m_recordStart) / 2);
  m_out.PatchU32(m_recordStart, words);
  m_maxRecordWords = std::max(m_maxRecordWords, words);
  ++m_records;
}

void WmfWriter::Words(uint16_t function, std::initializer_list<uint16_t> words) {
  Begin(function);
  for (uint16_t w : words) m_out.U16(w);
  End();
}

void WmfWriter::YX(uint16_t function, int16_t x, int16_t y) {
  Words(function, {static_cast<uint16_t>(y), static_cast<uint16_t>(x)});
}

void WmfWriter::Box(uint16_t function, const RecordRect& box) {
  Words(function, {static_cast<uint16_t>(box.bottom), static_cast<uint16_t>(box.right),
                   static_cast<uint16_t>(box.top), static_cast<uint16_t>(box.left)});
}

void WmfWriter::Poly(uint16_t function, const std::vector<RecordPoint>& points) {
  Begin(function);
  m_out.I16(static_cast<int16_t>(points.size()));
  for (const RecordPoint& p : points) {
    m_out.I16(static_cast<int16_t>(p.x));
    m_out.I16(static_cast<int16_t>(p.y));
  }
  End();
}

uint16_t WmfWriter::TakeSlot() {
  for (size_t i = 0; i < m_slots.size(); ++i) {
    if (!m_slots[i]) {
      m_slots[i] = true;
      return static_cast<uint16_t>(i);
    }
  }
  m_slots.push_back(true);
  m_tableSize = std::max(m_tableSize, m_slots.size());
  return static_cast<uint16_t>(m_slots.size() - 1);
}

uint16_t WmfWriter::CreatePenIndirect(uint16_t style, int16_t width, uint32_t color) {
  const uint16_t slot = TakeSlot();
  Begin(WmfFunc::CreatePenIndirect);
  m_out.U16(style);
  m_out.I16(width);  // the width is a point; only x counts
  m_out.I16(0);
  m_out.U32(color);
  End();
  return slot;
}

uint16_t WmfWriter::CreateBrushIndirect(uint16_t style, uint32_t color, uint16_t hatch) {
  const uint16_t slot = TakeSlot();
  Begin(WmfFunc::CreateBrushIndirect);
  m_out.U16(style);
  m_out.U32(color);
  m_out.U16(hatch);
  End();
  return slot;
}

uint16_t WmfWriter::CreateFontIndirect(const LogicalFont& font) {
  const uint16_t slot = TakeSlot();
  Begin(WmfFunc::CreateFontIndirect);
  m_out.I16(static_cast<int16_t>(font.height));
  m_out.I16(static_cast<int16_t>(font.width));
  m_out.I16(static_cast<int16_t>(font.escapement));
  m_out.I16(static_cast<int16_t>(font.orientation));
  m_out.I16(static_cast<int16_t>(font.weight));
  m_out.U8(font.italic ? 1 : 0);
  m_out.U8(font.underline ? 1 : 0);
  m_out.U8(font.strikeOut ? 1 : 0);
  m_out.U8(font.charSet);
  m_out.Zeros(4);  // output and clip precision, quality, pitch and family
  QByteArray face = TextToMultiByte(font.faceName, kCodepageAnsi).left(kFaceBytes - 1);
  face.append(kFaceBytes - face.size(), '\0');
  m_out.Bytes(face);
  End();
  return slot;
}

void WmfWriter::DeleteObject(uint16_t slot) {
  Words(WmfFunc::DeleteObject, {slot});
  if (slot < m_slots.size()) m_slots[slot] = false;
}

void WmfWriter::SetTextColor(uint32_t color) {
  Begin(WmfFunc::SetTextColor);
  m_out.U32(color);
  End();
}

void WmfWriter::Pie(const RecordRect& box, RecordPoint start, RecordPoint end) {
  Words(WmfFunc::Pie, {static_cast<uint16_t>(end.y), static_cast<uint16_t>(end.x),
                       static_cast<uint16_t>(start.y), static_cast<uint16_t>(start.x),
                       static_cast<uint16_t>(box.bottom), static_cast<uint16_t>(box.right),
                       static_cast<uint16_t>(box.top), static_cast<uint16_t>(box.left)});
}

void WmfWriter::ExtFloodFill(int16_t x, int16_t y, uint32_t color, uint16_t mode) {
  Begin(WmfFunc::ExtFloodFill);
  m_out.U16(mode);
  m_out.U32(color);
  m_out.I16(y);
  m_out.I16(x);
  End();
}

void WmfWriter::ExtTextOut(int16_t x, int16_t y, const QString& text, uint16_t options,
                           const RecordRect& clip, const std::vector<int16_t>& advances) {
  const QByteArray bytes = TextToMultiByte(text, kCodepageAnsi);
  Begin(WmfFunc::ExtTextOut);
  m_out.I16(y);
  m_out.I16(x);
  m_out.I16(static_cast<int16_t>(bytes.size()));
  m_out.U16(options);
  if (options & 0x0006) {  // clipped or opaque: the rectangle is stored
    m_out.I16(static_cast<int16_t>(clip.left));
    m_out.I16(static_cast<int16_t>(clip.top));
    m_out.I16(static_cast<int16_t>(clip.right));
    m_out.I16(static_cast<int16_t>(clip.bottom));
  }
  m_out.Bytes(bytes);
  if (bytes.size() % 2 != 0) m_out.U8(0);
  if (!advances.empty()) {
    for (qsizetype i = 0; i < bytes.size(); ++i) {
      m_out.I16(i < static_cast<qsizetype>(advances.size()) ? advances[i] : 0);
    }
  }
  End();
}

QByteArray WmfWriter::Finish() const {
  const uint32_t totalWords = static_cast<uint32_t>((kWmfHeaderSize + m_out.Size()) / 2 + 3);
  LittleEndianWriter out;
  out.U16(1);       // a metafile in memory
  out.U16(9);       // header size in words
  out.U16(0x0300);  // format version
  out.U32(totalWords);
  out.U16(static_cast<uint16_t>(m_tableSize));
  out.U32(m_maxRecordWords);
  out.U16(0);  // unused
  out.Bytes(m_out.Data());
  out.U32(3);
  out.U16(WmfFunc::Eof);
  return out.Take();
}

int FitUnits(int32_t hundredthsMm, int units) {
  while (units > 1 && std::nearbyint(static_cast<double>(hundredthsMm) * units / 2540.0) > 32767) {
    units /= 2;
  }
  return units;
}

uint16_t PlaceableChecksum(const QByteArray& firstTwentyBytes) {
  LittleEndianReader in(firstTwentyBytes);
  uint16_t sum = 0;
  for (int i = 0; i < 10; ++i) sum ^= in.U16();
  return sum;
}

QByteArray PlaceableHeader(const RecordRect& box, uint16_t unitsPerInch) {
  LittleEndianWriter out;
  out.U32(kPlaceableKey);
  out.U16(0);  // no metafile handle
  out.I16(static_cast<int16_t>(box.left));
  out.I16(static_cast<int16_t>(box.top));
  out.I16(static_cast<int16_t>(box.right));
  out.I16(static_cast<int16_t>(box.bottom));
  out.U16(unitsPerInch);
  out.U32(0);
  out.U16(PlaceableChecksum(out.Data()));
  return out.Take();
}

}  // namespace ombrelle
