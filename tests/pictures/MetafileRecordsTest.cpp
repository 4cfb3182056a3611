// Byte layouts of the enhanced and 16-bit metafile writers, against bytes
// worked out by hand from the published record layouts.
#include <functional>

#include <gtest/gtest.h>

#include "pictures/EmfWriter.h"
#include "pictures/WmfWriter.h"

using namespace ombrelle;

namespace {

QByteArray Hex(const char* text) { return QByteArray::fromHex(QByteArray(text).replace(' ', "")); }

// The records between the 108-byte header (no description) and the end record.
QByteArray EmfBody(const EmfWriter& w) {
  const QByteArray file = w.Finish({});
  return file.mid(108, file.size() - 108 - 20);
}

// The records between the 18-byte header and the 6-byte end record.
QByteArray WmfBody(const WmfWriter& w) {
  const QByteArray file = w.Finish();
  return file.mid(18, file.size() - 18 - 6);
}

}  // namespace

TEST(EmfWriterBytes, WholeFileWithHeaderDescriptionObjectsAndEnd) {
  EmfWriter w;
  const uint32_t pen = w.CreatePen(0, 2, 0x000000FF);
  EXPECT_EQ(pen, 1u);  // slot 0 is the metafile itself
  w.SelectObject(pen);
  w.Polyline16({{1, 2}, {-3, 4}});
  w.DeleteObject(pen);
  EmfHeaderInfo info;
  info.bounds = {0, 0, 9, 9};
  info.frame = {0, 0, 99, 99};
  info.description = QString("A") + QChar(0) + "B" + QChar(0) + QChar(0);
  info.devicePixelsX = 640;
  info.devicePixelsY = 480;
  info.deviceMillimetersX = 169;
  info.deviceMillimetersY = 127;
  const QByteArray expected = Hex(
      // header: type, size 120, bounds, frame, signature, version
      "01000000 78000000 00000000 00000000 09000000 09000000"
      "00000000 00000000 63000000 63000000 20454D46 00000100"
      // 228 bytes, 6 records, 2 handles, reserved, 5 characters at 108, no palette
      "E4000000 06000000 0200 0000 05000000 6C000000 00000000"
      // device pixels, millimetres, no pixel format or OpenGL, micrometres
      "80020000 E0010000 A9000000 7F000000 00000000 00000000 00000000"
      "28940200 18F00100"
      // "A", NUL, "B", NUL, NUL, padding to 4 bytes
      "4100 0000 4200 0000 0000 0000"
      // create pen 1: solid, width 2, red
      "26000000 1C000000 01000000 00000000 02000000 00000000 FF000000"
      "25000000 0C000000 01000000"
      // polyline: bounds -3,2 to 1,4, two points
      "57000000 24000000 FDFFFFFF 02000000 01000000 04000000 02000000 0100 0200 FDFF 0400"
      "28000000 0C000000 01000000"
      // end: no palette, its offset 16, the size again
      "0E000000 14000000 00000000 10000000 14000000");
  EXPECT_EQ(w.Finish(info).toHex(' '), expected.toHex(' '));
}

TEST(EmfWriterBytes, EachRecordLayout) {
  struct Case {
    const char* name;
    std::function<void(EmfWriter&)> write;
    const char* hex;
  };
  const RecordRect box{1, 2, 3, 4};
  const std::vector<Case> cases = {
      {"map mode", [](EmfWriter& w) { w.SetMapMode(8); }, "11000000 0C000000 08000000"},
      {"background mode", [](EmfWriter& w) { w.SetBkMode(1); }, "12000000 0C000000 01000000"},
      {"text align", [](EmfWriter& w) { w.SetTextAlign(6); }, "16000000 0C000000 06000000"},
      {"text colour", [](EmfWriter& w) { w.SetTextColor(0x00332211); },
       "18000000 0C000000 11223300"},
      {"window extent", [](EmfWriter& w) { w.SetWindowExtEx(1500, -1120); },
       "09000000 10000000 DC050000 A0FBFFFF"},
      {"window origin", [](EmfWriter& w) { w.SetWindowOrgEx(0, 0); },
       "0A000000 10000000 00000000 00000000"},
      {"viewport extent", [](EmfWriter& w) { w.SetViewportExtEx(567, 423); },
       "0B000000 10000000 37020000 A7010000"},
      {"viewport origin", [](EmfWriter& w) { w.SetViewportOrgEx(-1, 1); },
       "0C000000 10000000 FFFFFFFF 01000000"},
      {"rectangle", [&](EmfWriter& w) { w.Rectangle(box); },
       "2B000000 18000000 01000000 02000000 03000000 04000000"},
      {"ellipse", [&](EmfWriter& w) { w.Ellipse(box); },
       "2A000000 18000000 01000000 02000000 03000000 04000000"},
      {"pie",
       [&](EmfWriter& w) {
         w.Pie(box, {5, 6}, {7, -8});
       },
       "2F000000 28000000 01000000 02000000 03000000 04000000 05000000 06000000 07000000 "
       "F8FFFFFF"},
      {"flood fill", [](EmfWriter& w) { w.ExtFloodFill(10, -10, 0x000000FF, 0); },
       "35000000 18000000 0A000000 F6FFFFFF FF000000 00000000"},
      {"brush", [](EmfWriter& w) { w.CreateBrushIndirect(0, 0x00FF8000); },
       "27000000 18000000 01000000 00000000 0080FF00 00000000"},
      {"extended pen", [](EmfWriter& w) { w.ExtCreatePen(0x10000, 3, 0x000000FF); },
       "5F000000 34000000 01000000 00000000 00000000 00000000 00000000"
       "00000100 03000000 00000000 FF000000 00000000 00000000"},
      {"polygon",
       [](EmfWriter& w) {
         w.Polygon16({{0, 0}, {4, 0}, {0, -4}});
       },
       "56000000 28000000 00000000 FCFFFFFF 04000000 00000000 03000000 0000 0000 0400 0000 "
       "0000 FCFF"},
      {"bezier",
       [](EmfWriter& w) {
         w.PolyBezier16({{0, 0}, {1, 1}, {2, 1}, {3, 0}});
       },
       "55000000 2C000000 00000000 00000000 03000000 01000000 04000000 0000 0000 0100 0100 "
       "0200 0100 0300 0000"},
      {"text",
       [](EmfWriter& w) {
         w.ExtTextOutW(10, -20, "Ab", 4, {1, 2, 3, 4}, {5, 6});
       },
       // bounds from the advances, compatible mode, scales 0, reference point,
       // 2 characters at 76, clipped, rectangle, advances at 80
       "54000000 58000000 0A000000 ECFFFFFF 15000000 ECFFFFFF 01000000 00000000 00000000 "
       "0A000000 ECFFFFFF 02000000 4C000000 04000000 01000000 02000000 03000000 04000000 "
       "50000000 4100 6200 05000000 06000000"},
  };
  for (const Case& c : cases) {
    EmfWriter w;
    c.write(w);
    EXPECT_EQ(EmfBody(w).toHex(' '), Hex(c.hex).toHex(' ')) << c.name;
  }
}

TEST(EmfWriterBytes, FontRecordHasLogFontAndEmptyExtension) {
  EmfWriter w;
  LogicalFont font;
  font.height = -35;
  font.weight = 700;
  font.italic = true;
  font.faceName = "DejaVu Sans";
  w.ExtCreateFontIndirectW(font);
  const QByteArray body = EmfBody(w);
  ASSERT_EQ(body.size(), 332);
  EXPECT_EQ(body.left(40).toHex(' '),
            Hex("52000000 4C010000 01000000 DDFFFFFF 00000000 00000000 00000000 BC020000 "
                "01000000 00000000")
                .toHex(' '));
  EXPECT_EQ(QString::fromUtf16(reinterpret_cast<const char16_t*>(body.constData() + 40)),
            "DejaVu Sans");
  EXPECT_EQ(body.mid(40 + 64), QByteArray(228, '\0'));
}

TEST(EmfWriterBytes, FreedSlotsAreReusedAndCountedOnce) {
  EmfWriter w;
  const uint32_t a = w.CreateBrushIndirect(0, 1);
  const uint32_t b = w.CreateBrushIndirect(0, 2);
  w.DeleteObject(a);
  EXPECT_EQ(w.CreateBrushIndirect(0, 3), a);
  EXPECT_EQ(b, 2u);
  const QByteArray file = w.Finish({});
  EXPECT_EQ(static_cast<uint8_t>(file[56]), 3);  // handles: slots 0, 1, 2
  EXPECT_EQ(static_cast<uint8_t>(file[52]), 6);  // 4 records, header, end
}

TEST(WmfWriterBytes, WholeFileWithObjects) {
  WmfWriter w;
  EXPECT_EQ(w.CreatePenIndirect(0, 1, 0x00FF0000), 0);
  w.SelectObject(0);
  w.Rectangle({1, 2, 3, 4});
  w.DeleteObject(0);
  const QByteArray expected = Hex(
      // in memory, 9 words, version 3.0, 35 words, 1 object, largest record 8, none
      "0100 0900 0003 23000000 0100 08000000 0000"
      "08000000 FA02 0000 0100 0000 0000FF00"
      "04000000 2D01 0000"
      // bottom, right, top, left
      "07000000 1B04 0400 0300 0200 0100"
      "04000000 F001 0000"
      "03000000 0000");
  EXPECT_EQ(w.Finish().toHex(' '), expected.toHex(' '));
}

TEST(WmfWriterBytes, EachRecordLayout) {
  struct Case {
    const char* name;
    std::function<void(WmfWriter&)> write;
    const char* hex;
  };
  const std::vector<Case> cases = {
      {"map mode", [](WmfWriter& w) { w.SetMapMode(8); }, "04000000 0301 0800"},
      {"window origin, y first", [](WmfWriter& w) { w.SetWindowOrg(1, 2); },
       "05000000 0B02 0200 0100"},
      {"window extent", [](WmfWriter& w) { w.SetWindowExt(8504, 6350); },
       "05000000 0C02 CE18 3821"},
      {"viewport extent", [](WmfWriter& w) { w.SetViewportExt(3, 4); }, "05000000 0E02 0400 0300"},
      {"text colour", [](WmfWriter& w) { w.SetTextColor(0x00332211); }, "05000000 0902 1122 3300"},
      {"move and line",
       [](WmfWriter& w) {
         w.MoveTo(1, 2);
         w.LineTo(-1, -2);
       },
       "05000000 1402 0200 0100 05000000 1302 FEFF FFFF"},
      {"polyline",
       [](WmfWriter& w) {
         w.Polyline({{1, 2}, {3, 4}});
       },
       "08000000 2503 0200 0100 0200 0300 0400"},
      {"polygon",
       [](WmfWriter& w) {
         w.Polygon({{0, 0}, {5, 0}, {0, 5}});
       },
       "0A000000 2403 0300 0000 0000 0500 0000 0000 0500"},
      {"ellipse",
       [](WmfWriter& w) {
         w.Ellipse({1, 2, 3, 4});
       },
       "07000000 1804 0400 0300 0200 0100"},
      {"pie: second radial, first radial, box",
       [](WmfWriter& w) {
         w.Pie({1, 2, 3, 4}, {5, 6}, {7, 8});
       },
       "0B000000 1A08 0800 0700 0600 0500 0400 0300 0200 0100"},
      {"flood fill", [](WmfWriter& w) { w.ExtFloodFill(10, 20, 0x000000FF, 0); },
       "08000000 4805 0000 FF000000 1400 0A00"},
      {"brush", [](WmfWriter& w) { w.CreateBrushIndirect(0, 0x00FF8000); },
       "07000000 FC02 0000 0080FF00 0000"},
      {"clipped text, odd length padded",
       [](WmfWriter& w) {
         w.ExtTextOut(10, 20, "Abc", 4, {1, 2, 3, 4}, {});
       },
       "0D000000 320A 1400 0A00 0300 0400 0100 0200 0300 0400 416263 00"},
      {"text with advances, no rectangle",
       [](WmfWriter& w) {
         w.ExtTextOut(1, 2, QString::fromUtf8("\u00e9\u03a9"), 0, {}, {7, 8});
       },
       // Windows-1252: e-acute is E9, omega has no byte and becomes "?"
       "0A000000 320A 0200 0100 0200 0000 E93F 0700 0800"},
  };
  for (const Case& c : cases) {
    WmfWriter w;
    c.write(w);
    EXPECT_EQ(WmfBody(w).toHex(' '), Hex(c.hex).toHex(' ')) << c.name;
  }
}

TEST(WmfWriterBytes, FontRecordHasThirtyTwoByteFace) {
  WmfWriter w;
  LogicalFont font;
  font.height = -42;
  font.weight = 400;
  font.underline = true;
  font.faceName = "DejaVu Sans";
  w.CreateFontIndirect(font);
  const QByteArray body = WmfBody(w);
  ASSERT_EQ(body.size(), 56);  // 28 words
  EXPECT_EQ(body.left(24).toHex(' '),
            Hex("1C000000 FB02 D6FF 0000 0000 0000 9001 00 01 00 00 00000000").toHex(' '));
  EXPECT_EQ(body.mid(24), QByteArray("DejaVu Sans").append(21, '\0'));
}

TEST(PlaceableHeader, BytesAndChecksumOfTheTenWords) {
  // 150 by 112.5 mm at 1440 units per inch.
  const QByteArray header = PlaceableHeader({0, 0, 8504, 6350}, 1440);
  // checksum: CDD7 ^ 9AC6 ^ 2138 ^ 18CE ^ 05A0 = 6B47
  EXPECT_EQ(header.toHex(' '),
            Hex("D7CDC69A 0000 0000 0000 3821 CE18 A005 00000000 476B").toHex(' '));
  EXPECT_EQ(PlaceableChecksum(header.left(20)), 0x6B47);
}

TEST(PlaceableHeader, FitUnitsHalvesUntilSixteenBitsHold) {
  struct Case {
    int32_t frame;
    int expected;
  };
  for (const Case& c : std::vector<Case>{{15000, 1440},  // 8504
                                         {100000, 720},  // 56693 -> 28346
                                         {57798, 1440},  // 32767.37 rounds to 32767
                                         {57799, 720},   // 32767.94 rounds to 32768
                                         {0, 1440},
                                         {1000000000, 1}}) {  // stops at 1
    EXPECT_EQ(FitUnits(c.frame, 1440), c.expected) << c.frame;
  }
}
