// The row names handed out one by one straight from the file against the
// list of GetRowHeaders: the same names for every encoding, count and damage,
// and the same escaped bytes for names of ASCII bytes and of text.

#include <optional>
#include <string>
#include <vector>

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "common/QvzFixture.h"
#include "core/QVZRead.h"
#include "core/RowNameSink.h"
#include "core/XmlOutputFile.h"

namespace ombrelle {
namespace {

using test::ClassSpec;
using test::QvzFixture;
using test::SeriesSpec;

// Collects the names it is given, and how many came as ASCII bytes.
class Collect final : public RowNameSink {
 public:
  QStringList names;
  int ascii = 0;
  void AsciiName(std::string_view bytes) override {
    for (const char c : bytes) EXPECT_GE(static_cast<signed char>(c), 0);
    names.append(QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size())));
    ++ascii;
  }
  void TextName(QStringView text) override { names.append(text.toString()); }
};

struct Case {
  const char* name;
  float version;
  int32_t itemCount;
  QStringList stored;                 // names joined by the fixture
  std::optional<QByteArray> rowText;  // or raw block bytes
  int32_t encoding;                   // 2 UTF-8, 0 the single-byte code page
  int asciiNames;                     // names expected on the byte road
};

TEST(RowNameRoad, SameNamesAsTheListForEveryBlock) {
  const std::vector<Case> cases = {
      {"ascii with quotes and controls", 3.0f, 3, {"a'b", "<c&d>", "tab\tx"}, {}, 2, 3},
      {"utf-8", 3.0f, 2, {"Grüße.c", "日本語.cpp"}, {}, 2, 0},
      {"utf-8 cut before a zero byte", 3.0f, 3, {}, QByteArray("a\xE2\x82\0b\0\xF0", 7), 2, 0},
      {"single-byte high bytes", 3.0f, 2, {}, QByteArray("caf\xE9\0\x80x", 7), 0, 0},
      {"empty names and a trailing zero", 3.0f, 4, {}, QByteArray("a\0\0c\0", 5), 2, 4},
      {"fewer names than rows", 3.0f, 4, {"a", "b"}, {}, 2, 4},
      {"more names than rows", 3.0f, 2, {"a", "b", "c"}, {}, 2, 2},
      {"empty block", 3.0f, 2, {}, {}, 2, 2},
      {"no rows", 3.0f, 0, {}, {}, 2, 0},
      {"older records", 2.0f, 2, {"Grüße.c", "b"}, {}, 2, 0},
  };
  for (const Case& c : cases) {
    const QvzFixture f =
        QvzFixture::WithRowNames(c.version, 3, c.itemCount, c.stored, c.rowText, c.encoding);
    QTemporaryDir dir;
    const QString path = f.Write(dir.filePath("db.qvz"));
    QString error;
    QVZRead listReader, roadReader;
    ASSERT_TRUE(listReader.Opendatabase(path, error)) << c.name;
    ASSERT_TRUE(roadReader.Opendatabase(path, error)) << c.name;
    QStringList expected;
    std::vector<int32_t> order;
    listReader.GetRowHeaders(1, expected, order);
    Collect road;
    roadReader.ForEachRowName(1, road);
    EXPECT_EQ(road.names, expected) << c.name;
    EXPECT_EQ(road.ascii, c.asciiNames) << c.name;
    // The file's own block serves the names: no list is built.
    EXPECT_EQ(roadReader.Slot(1).RowNamesLoaded, c.version < 3.0f) << c.name;
    // Once the list exists, it serves.
    Collect again;
    listReader.ForEachRowName(1, again);
    EXPECT_EQ(again.names, expected) << c.name;
    EXPECT_EQ(again.ascii, 0) << c.name;
  }
}

TEST(RowNameRoad, UnbackedRowCountGetsNoNames) {
  QvzFixture f;
  ClassSpec& cls = f.AddClass(4, 2000000000);
  cls.series.push_back(SeriesSpec::Constant(5001, 2000000000, 3));
  QTemporaryDir dir;
  QString error;
  QVZRead reader;
  ASSERT_TRUE(reader.Opendatabase(f.Write(dir.filePath("db.qvz")), error));
  Collect road;
  reader.ForEachRowName(4, road);
  reader.ForEachRowName(2, road);  // a class the file does not have
  EXPECT_TRUE(road.names.isEmpty());
}

// Every byte below 128 escapes as its 16-bit code does, in pieces that are
// escaped in place in the buffer and in pieces too long for that.
TEST(RowNameRoad, AsciiBytesEscapeAsTheirCodes) {
  std::string bytes;
  QString text;
  for (int i = 0; i < 40; ++i) {
    for (int c = 0; c < 128; ++c) {
      bytes += static_cast<char>(c);
      text += QChar(c);
    }
  }
  QTemporaryDir dir;
  for (const qsizetype piece : {16, 5120}) {
    const QString a = dir.filePath(QStringLiteral("a.xml"));
    const QString b = dir.filePath(QStringLiteral("b.xml"));
    XmlOutputFile first(1024), second(1024);
    ASSERT_TRUE(first.Create(a) && second.Create(b));
    for (qsizetype at = 0; at < text.size(); at += piece) {
      first.WriteEscaped(std::string_view(bytes).substr(at, piece));
      second.WriteEscaped(QStringView(text).mid(at, piece));
    }
    ASSERT_TRUE(first.Commit() && second.Commit());
    QFile fa(a), fb(b);
    ASSERT_TRUE(fa.open(QIODevice::ReadOnly) && fb.open(QIODevice::ReadOnly));
    const QByteArray written = fa.readAll();
    EXPECT_EQ(written, fb.readAll()) << piece;
    EXPECT_TRUE(written.startsWith("&#0;&#1;")) << piece;
    EXPECT_TRUE(written.contains("%&#38;&#39;(")) << piece;
    EXPECT_TRUE(written.contains("}~&#127;&#0;")) << piece;
  }
}

}  // namespace
}  // namespace ombrelle
