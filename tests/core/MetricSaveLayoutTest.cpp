// Byte layout of files written by MetricSave, checked against expectations
// worked out by hand from the format.
#include <cmath>

#include <QDate>
#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "common/QvzFixture.h"
#include "core/MetricReadTestSupport.h"
#include "core/MetricSave.h"
#include "core/MetricSaveFields.h"
#include "core/QVZRead.h"
#include "stats/CStats.h"
#include "support/DateValue.h"
#include "support/ScriptedUiServices.h"
#include "support/SettingsStore.h"

namespace ombrelle {
namespace {

using test::AppendDouble;
using test::AppendInt16;
using test::AppendInt32;
using test::QvzFixture;
using test::SeriesOf;

QByteArray Hex(const char* hex) { return QByteArray::fromHex(hex); }

// A series header as the format lays it out, from hand-computed statistics.
QByteArray SeriesHead(int32_t count, double mean, double sd, double min, double max, double median,
                      double q5, double q95, int size, int kind) {
  QByteArray out;
  AppendInt32(out, count);
  for (double v : {mean, sd, min, max, median, q5, q95}) AppendDouble(out, v);
  out.append(static_cast<char>(size));
  out.append(static_cast<char>(kind));
  out += QByteArray(14, '\0');
  return out;
}

using MetricSaveLayout = test::SaveFolderTest;

// Two classes, three value encodings: the whole file byte for byte.
TEST_F(MetricSaveLayout, SmallFileMatchesHandComputedBytes) {
  const double date = DateSerial(2024, 3, 5) + TimeSerial(13, 7, 9);
  const QString path = Path(QStringLiteral("small.qvz"));
  {
    MetricSave save;
    ASSERT_TRUE(
        save.SaveDatabase(path, QStringLiteral("Title \u00e9"), QStringLiteral("proj"), date));
    save.AddClass(1, 3, {QStringLiteral("beta"), QStringLiteral("Alpha"), QStringLiteral("gamma")});
    save.AddMetricToClass(2001);  // physical lines, format 1
    save.AddMetricToClass(2015);  // code percentage, format 5
    save.ClassDone();
    save.AddClass(0, 1, {QStringLiteral("Proj")});
    save.AddMetricToClass(1002);  // physical lines, format 2
    save.ClassDone();
    ASSERT_TRUE(save.SaveClasses());
    CStats lines = SeriesOf({10, 300, 7});  // rows beta, Alpha, gamma
    CStats share = SeriesOf({0.5, 0.25, 1.0});
    CStats total = SeriesOf({42});
    ASSERT_TRUE(save.SaveSeries(lines));
    ASSERT_TRUE(save.SaveSeries(share));
    ASSERT_TRUE(save.SaveSeries(total));
    EXPECT_FALSE(QFile::exists(path)) << "nothing under the final name before completion";
  }  // destruction completes the file
  const QByteArray file = QvzFixture::ReadBytes(path);
  ASSERT_EQ(file.size(), 892);

  // Header.
  EXPECT_EQ(file.mid(0, 8), QByteArray("QVZ-KRDB"));
  EXPECT_EQ(file.mid(8, 4), Hex("00004040"));  // 3.0f
  EXPECT_EQ(file.mid(12, 4), Hex("03000000"));
  EXPECT_EQ(file.mid(16, 214), Hex("5469746c6520c3a9") + QByteArray(206, '\0'));
  EXPECT_EQ(file.mid(230, 32), QvzFixture::ChecksumOf(file));
  EXPECT_EQ(file.mid(262, 10), QByteArray(10, '\0'));
  EXPECT_EQ(file.mid(272, 214), QByteArray("proj") + QByteArray(210, '\0'));
  EXPECT_EQ(file.mid(486, 32), test::Padded("Ombrelle Viewer 0.1.0", 32, ' '));
  EXPECT_EQ(file.mid(518, 10), QDate::currentDate().toString(u"yyyy-MM-dd").toLatin1());
  EXPECT_EQ(file.mid(528, 10), QByteArray("2024-03-05"));
  EXPECT_EQ(file.mid(538, 14), QByteArray("20240305130709"));
  EXPECT_EQ(file.mid(552, 2), Hex("0200"));

  QByteArray body;
  body +=
      Hex("01000000"
          "02000000"
          "03000000"
          "00000000"
          "01000000"
          "01000000");
  body +=
      Hex("d1070000"
          "df070000"
          "ea030000");
  // Names sorted case-insensitively, in ANSI: Alpha (row 2), beta (row 1), gamma (row 3).
  body += Hex("10000000"
              "00000000"
              "00000000") +
          QByteArray("Alpha\0beta\0gamma", 16);
  body += Hex("04000000"
              "00000000"
              "00000000") +
          QByteArray("Proj");
  // 7..300 in a whole-number format: 16-bit, values in sorted row order 300, 10, 7.
  body += SeriesHead(3, 317.0 / 3, std::sqrt(3 * 90149.0 - 317.0 * 317.0) / 3, 7, 300, 10, 7, 300,
                     2, 2);
  body +=
      Hex("2c01"
          "0a00"
          "0700");
  // A percentage stays double: 0.25, 0.5, 1.0 after sorting.
  body += SeriesHead(3, 1.75 / 3, std::sqrt(3 * 1.3125 - 1.75 * 1.75) / 3, 0.25, 1.0, 0.5, 0.25,
                     1.0, 8, 0);
  AppendDouble(body, 0.25);
  AppendDouble(body, 0.5);
  AppendDouble(body, 1.0);
  // One value: constant, nothing stored.
  body += SeriesHead(1, 42, 0, 42, 42, 42, 42, 42, 0, 4);
  EXPECT_EQ(file.mid(554).toHex().toStdString(), body.toHex().toStdString());

  // The reader accepts it with its checksum.
  QVZRead reader;
  DatabaseHeader header;
  EXPECT_TRUE(reader.ReadHeader(path, header, true, true));
  QString error;
  ASSERT_TRUE(reader.Opendatabase(path, error)) << error.toStdString();
  EXPECT_EQ(reader.Title(), QStringLiteral("Title \u00e9"));
  EXPECT_EQ(reader.GetClassSize(1), 3);
  EXPECT_EQ(reader.GetClassSize(0), 1);
  EXPECT_TRUE(m_ui.ui.messages.empty());
}

// Each encoding on the boundaries of its range, as stored in a file class.
TEST_F(MetricSaveLayout, ValueKindAndSizeByFormatAndRange) {
  struct Case {
    int32_t id;
    std::vector<double> values;
    int kind;
    int size;
    QByteArray stored;  // value bytes in row order
  };
  const std::vector<Case> cases = {
      {2001, {0, 255}, 3, 1, Hex("00ff")},
      {2001, {-1, 2}, 2, 2, Hex("ffff0200")},
      {2001, {-32768, 32767}, 2, 2, Hex("0080ff7f")},
      {2001,
       {0, 32768},
       1,
       4,
       Hex("00000000"
           "00800000")},
      {2001,
       {-2147483648.0, 2147483647.0},
       1,
       4,
       Hex("00000080"
           "ffffff7f")},
      {2001,
       {0, 2147483648.0},
       0,
       8,
       Hex("0000000000000000"
           "000000000000e041")},
      {2001, {2.5, 3.5}, 3, 1, Hex("0204")},  // rounded half to even
      {2031,
       {45000.75, 45001},
       1,
       4,
       Hex("c9af0000"
           "c9af0000")},  // a date, format 9
      {2015,
       {0, 1},
       0,
       8,
       Hex("0000000000000000"
           "000000000000f03f")},
      {2015, {7, 7}, 4, 0, QByteArray()},
      {2001, {7, 7}, 4, 0, QByteArray()},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.id);
    SCOPED_TRACE(c.stored.toHex().toStdString());
    const QString path = Path(QStringLiteral("kind.qvz"));
    MetricSave save;
    ASSERT_TRUE(save.SaveDatabase(path, QStringLiteral("t"), QStringLiteral("p"), 45000));
    save.AddClass(1, 2, {QStringLiteral("a"), QStringLiteral("b")});
    save.AddMetricToClass(c.id);
    save.ClassDone();
    ASSERT_TRUE(save.SaveClasses());
    CStats s = SeriesOf(c.values);
    ASSERT_TRUE(save.SaveSeries(s));
    ASSERT_TRUE(save.Close());
    const QByteArray file = QvzFixture::ReadBytes(path);
    // Header 554, class 12, id 4, names "a\0b" 12 + 3: the series starts at 585.
    const qsizetype at = 585;
    EXPECT_EQ(static_cast<int>(static_cast<uint8_t>(file.at(at + 60))), c.size);
    EXPECT_EQ(static_cast<int>(static_cast<uint8_t>(file.at(at + 61))), c.kind);
    EXPECT_EQ(file.mid(at + 76).toHex().toStdString(), c.stored.toHex().toStdString());
    QVZRead reader;
    QString error;
    EXPECT_TRUE(reader.Opendatabase(path, error)) << error.toStdString();
  }
}

// The pure choice, including NaN extremes, which stay doubles.
TEST(MetricSaveEncoding, ChoiceTable) {
  struct Case {
    int format;
    double min, max;
    int kind, size;
  };
  const double nan = std::nan("");
  const std::vector<Case> cases = {
      {1, 3, 3, 4, 0},    {0, -5, -5, 4, 0},      {2, 0, 255, 3, 1},          {9, 0, 256, 2, 2},
      {1, -0.5, 3, 2, 2}, {2, -32768.5, 0, 1, 4}, {1, 0, 2147483647.5, 0, 8}, {6, 0, 1, 0, 8},
      {10, 0, 1, 0, 8},   {1, nan, 3, 0, 8},      {1, 0, nan, 0, 8},
  };
  for (const Case& c : cases) {
    const ValueEncoding e = ChooseValueEncoding(c.format, c.min, c.max);
    EXPECT_EQ(e.Kind, c.kind) << c.format << " " << c.min << " " << c.max;
    EXPECT_EQ(e.Size, c.size) << c.format << " " << c.min << " " << c.max;
  }
}

TEST(MetricSaveFields, DatesAndStampsRoundToTheSecond) {
  struct Case {
    double date;
    const char* iso;
    const char* stamp;
  };
  const std::vector<Case> cases = {
      {DateSerial(2012, 10, 11), "2012-10-11", "20121011000000"},
      {DateSerial(2012, 10, 11) + TimeSerial(23, 59, 59), "2012-10-11", "20121011235959"},
      {DateSerial(2012, 10, 11) + 0.9999999, "2012-10-12", "20121012000000"},
      {ParseTimestamp14(QStringLiteral("20240131235958")), "2024-01-31", "20240131235958"},
      {-1.25, "1899-12-29", "18991229060000"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(DateToIsoText(c.date), QByteArray(c.iso));
    EXPECT_EQ(DateToStamp14(c.date), QByteArray(c.stamp));
  }
}

TEST(MetricSaveFields, TextFieldsCutOnWholeCharacters) {
  std::array<char, kTextFieldSize> field{};
  // 213 bytes and a two-byte character: the character does not fit.
  SetTextFieldUtf8(field, QString(213, u'a') + QStringLiteral("\u00e9"));
  EXPECT_EQ(QByteArray(field.data(), kTextFieldSize), QByteArray(213, 'a') + QByteArray(1, '\0'));
  // 210 bytes and a four-byte character fit exactly.
  SetTextFieldUtf8(field, QString(210, u'b') + QStringLiteral("\U0001F600") + u'c');
  EXPECT_EQ(QByteArray(field.data(), kTextFieldSize), QByteArray(210, 'b') + Hex("f09f9880"));
  // ANSI: blank-padded, characters outside the code page as "?".
  SetTextFieldAnsi(field, QStringLiteral("\u00e9\u03a9"));
  EXPECT_EQ(QByteArray(field.data(), kTextFieldSize), Hex("e93f") + QByteArray(212, ' '));
  SetTextFieldAnsi(field, QString(300, u'x'));
  EXPECT_EQ(QByteArray(field.data(), kTextFieldSize), QByteArray(214, 'x'));
}

}  // namespace
}  // namespace ombrelle
