#include <gtest/gtest.h>

#include <QBuffer>
#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <bit>
#include <cstring>
#include <random>
#include <vector>

#include "stats/CStats.h"

using namespace ombrelle;

namespace {

QByteArray Bytes(std::initializer_list<int> bytes) {
  QByteArray out;
  for (int b : bytes) out.append(static_cast<char>(b));
  return out;
}

std::vector<double> Values(const CStats& s) {
  std::vector<double> out;
  for (int i = 1; i <= s.count(); ++i) out.push_back(s.ValueAtIndex(i));
  return out;
}

}  // namespace

TEST(CStatsFile, SaveWritesEveryAllocatedSlotAsLittleEndianDoubles) {
  CStats s;
  s.Init(3);
  s.AddValue(1.0);
  s.AddValue(-2.5);
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  buffer.write("ab");  // written at the device's position, after whatever is there
  ASSERT_TRUE(s.Save(buffer));
  EXPECT_EQ(buffer.data(), QByteArray("ab") + Bytes({0, 0, 0, 0, 0, 0, 0xF0, 0x3F,  // 1.0
                                                     0, 0, 0, 0, 0, 0, 0x04, 0xC0,  // -2.5
                                                     0, 0, 0, 0, 0, 0, 0,    0}));  // unfilled slot
  CStats empty;
  ASSERT_TRUE(empty.Save(buffer));
  EXPECT_EQ(buffer.data().size(), 26);

  QBuffer readOnly;
  readOnly.open(QIODevice::ReadOnly);
  EXPECT_FALSE(s.Save(readOnly));
}

TEST(CStatsFile, LoadFamilyWidensLittleEndianValues) {
  struct Case {
    const char* what;
    QByteArray bytes;
    int number;
    bool (CStats::*load)(QIODevice&, std::int32_t);
    std::vector<double> expected;
  };
  const Case cases[] = {
      {"double",
       Bytes({0, 0, 0, 0, 0, 0, 0x04, 0xC0, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F}),
       2,
       &CStats::Load,
       {-2.5, 1.0}},
      {"long",
       Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0x80, 1, 0, 0, 0}),
       3,
       &CStats::LoadLong,
       {-1, -2147483648.0, 1}},
      {"int",
       Bytes({0xFF, 0x7F, 0x00, 0x80, 0xFE, 0xFF}),
       3,
       &CStats::LoadInt,
       {32767, -32768, -2}},
      {"byte", Bytes({0x00, 0x7F, 0xFF}), 3, &CStats::LoadByte, {0, 127, 255}},
  };
  for (const Case& c : cases) {
    QByteArray data = QByteArray("xyz") + c.bytes + QByteArray("tail");
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    buffer.seek(3);
    CStats s;
    s.Init(10);
    s.AddValue(99);
    s.DataType = 1;
    ASSERT_TRUE((s.*c.load)(buffer, c.number)) << c.what;
    EXPECT_EQ(Values(s), c.expected) << c.what;
    EXPECT_EQ(s.count(), c.number) << c.what;
    EXPECT_EQ(s.Capacity(), c.number) << c.what;
    EXPECT_EQ(s.DataType, 0) << c.what;  // Load starts with Init
    EXPECT_EQ(s.Sum, 0) << c.what;       // and computes nothing
    EXPECT_EQ(buffer.pos(), 3 + c.bytes.size()) << c.what;
  }
}

TEST(CStatsFile, CountsTheFileCannotHoldAreRefusedBeforeAllocating) {
  QByteArray data(20, '\0');
  QBuffer buffer(&data);
  buffer.open(QIODevice::ReadOnly);
  struct Case {
    qint64 at;
    int number;
    bool (CStats::*load)(QIODevice&, std::int32_t);
    bool ok;
  };
  const Case cases[] = {
      {0, 3, &CStats::Load, false},  // 24 bytes wanted, 20 there
      {0, 2, &CStats::Load, true},   // 16 of 20
      {8, 2, &CStats::Load, false},  // 12 left after position 8
      {0, 2147483647, &CStats::Load, false}, {0, 2147483647, &CStats::LoadByte, false},
      {0, -1, &CStats::LoadLong, false},     {20, 0, &CStats::LoadInt, true},
      {10, 5, &CStats::LoadInt, true},       {10, 6, &CStats::LoadInt, false},
  };
  for (const Case& c : cases) {
    buffer.seek(c.at);
    CStats s;
    s.Init(4);
    s.AddValue(5);
    EXPECT_EQ((s.*c.load)(buffer, c.number), c.ok) << c.at << " " << c.number;
    if (!c.ok) {
      EXPECT_EQ(s.count(), 0);
      EXPECT_EQ(s.Capacity(), 0);
    }
  }
  QBuffer closed;
  CStats s;
  EXPECT_FALSE(s.Load(closed, 1));
}

TEST(CStatsFile, RoundTripThroughFile) {
  QTemporaryDir dir;
  ASSERT_TRUE(dir.isValid());
  const QString path = dir.filePath("series.bin");
  std::mt19937_64 random(3);
  CStats original;
  original.Init(100000);
  for (int i = 0; i < 100000; ++i)
    original.AddValueQuick(std::bit_cast<double>(random() & 0x7FEFFFFFFFFFFFFFull));
  {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("HEAD", 4);
    ASSERT_TRUE(original.Save(file));
  }
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  ASSERT_EQ(file.size(), 4 + 800000);
  file.seek(4);
  CStats loaded;
  ASSERT_TRUE(loaded.Load(file, 100000));
  ASSERT_EQ(loaded.count(), 100000);
  for (int i = 1; i <= 100000; ++i)
    ASSERT_EQ(std::bit_cast<std::uint64_t>(loaded.ValueAtIndex(i)),
              std::bit_cast<std::uint64_t>(original.ValueAtIndex(i)));
}
