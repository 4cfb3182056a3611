#include <gtest/gtest.h>

#include "common/QvzFixture.h"
#include "core/QVZFormat.h"

using namespace ombrelle;
using namespace ombrelle::test;

namespace {
QByteArray Hex(const char* hex) { return QByteArray::fromHex(hex); }
}  // namespace

TEST(QVZReadFormat, ClassRecordAndBlockHeadAreThreeLittleEndianIntegers) {
  const TQVZMetricClass record{1, 3, 0x01020304};
  EXPECT_EQ(record.Encode(), Hex("01000000"
                                 "03000000"
                                 "04030201"));
  const TQVZMetricClass back = TQVZMetricClass::Decode(Hex("04000000"
                                                           "ffff0100"
                                                           "feffffff")
                                                           .constData());
  EXPECT_EQ(back.ClassNr, 4);
  EXPECT_EQ(back.SeriesCount, 0x0001FFFF);
  EXPECT_EQ(back.ItemCount, -2);
  const RowBlockHead head{0x10, 2, 0};
  EXPECT_EQ(head.Encode(), Hex("10000000"
                               "02000000"
                               "00000000"));
}

TEST(QVZReadFormat, SeriesHeaderBytes) {
  SeriesHeader s;
  s.Count = 5;
  s.Mean = 7.0;    // 40 1C 00 00 00 00 00 00
  s.StdDev = 0.5;  // 3F E0 ...
  s.Min = -1.0;    // BF F0 ...
  s.Max = 2.0;     // 40 00 ...
  s.Median = 1.0;  // 3F F0 ...
  s.Q5 = 0.25;     // 3F D0 ...
  s.Q95 = 1.5;     // 3F F8 ...
  s.ValueSize = 1;
  s.ValueKind = 3;
  const QByteArray expected =
      Hex("05000000"
          "0000000000001c40"
          "000000000000e03f"
          "000000000000f0bf"
          "0000000000000040"
          "000000000000f03f"
          "000000000000d03f"
          "000000000000f83f"
          "0103"
          "0000000000000000000000000000");
  ASSERT_EQ(expected.size(), kSeriesHeaderSize);
  EXPECT_EQ(s.Encode(), expected);
  const SeriesHeader back = SeriesHeader::Decode(expected.constData());
  EXPECT_EQ(back.Count, 5);
  EXPECT_EQ(back.Mean, 7.0);
  EXPECT_EQ(back.Q95, 1.5);
  EXPECT_EQ(back.ValueSize, 1);
  EXPECT_EQ(back.ValueKind, 3);
}

TEST(QVZReadFormat, EffectiveValueSizeAndUsability) {
  const struct {
    uint8_t size, kind;
    int effective;
    bool usable;
  } cases[] = {{0, 0, 8, true}, {8, 0, 8, true}, {4, 1, 4, true},  {2, 2, 2, true},
               {1, 3, 1, true}, {0, 4, 0, true}, {3, 9, 3, false}, {0, 5, 0, false}};
  for (const auto& c : cases) {
    SeriesHeader s;
    s.ValueSize = c.size;
    s.ValueKind = c.kind;
    EXPECT_EQ(s.EffectiveValueSize(), c.effective) << int(c.kind);
    EXPECT_EQ(s.Usable(), c.usable) << int(c.kind);
  }
}

TEST(QVZReadFormat, HeaderFieldsAtTheirOffsetsAndRoundTrip) {
  QvzFixture f;
  f.version = 2.5f;
  f.flags = 1;
  f.classCount = -3;
  const QByteArray bytes = f.Build();
  ASSERT_GE(bytes.size(), kHeaderSize);
  const DatabaseHeader h = DatabaseHeader::Decode(bytes.constData());
  EXPECT_EQ(QByteArray(h.Magic.data(), 8), "QVZ-KRDB");
  EXPECT_EQ(h.Version, 2.5f);
  EXPECT_EQ(h.Flags, 1);
  EXPECT_EQ(QByteArray(h.Title.data(), 15), "Sample analysis");
  EXPECT_EQ(QByteArray(h.Checksum.data(), 32), QvzFixture::ChecksumOf(bytes));
  EXPECT_EQ(QByteArray(h.SavedBy.data(), 32), "Tarnwick 4.2                    ");
  EXPECT_EQ(QByteArray(h.SavedDate.data(), 10), "2024-01-31");
  EXPECT_EQ(QByteArray(h.AnalysisStamp.data(), 14), "20240131235959");
  EXPECT_EQ(h.ClassCount, -3);
  EXPECT_EQ(h.Encode(), bytes.left(kHeaderSize));
  // Version 3.0 is the float 0x40400000.
  EXPECT_EQ(QvzFixture().Build().mid(8, 4), Hex("00004040"));
}
