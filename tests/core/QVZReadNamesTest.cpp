#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <QTemporaryDir>

#include "common/QvzFixture.h"
#include "core/QVZRead.h"

using namespace ombrelle;
using namespace ombrelle::test;

namespace {

bool OpenFixture(QVZRead& reader, const QTemporaryDir& dir, const QvzFixture& f) {
  QString errorText;
  const bool ok = reader.Opendatabase(f.Write(dir.filePath("db.qvz")), errorText);
  EXPECT_TRUE(errorText.isEmpty()) << errorText.toStdString();
  return ok;
}

// A file whose file class (1) has the given names and one series.
struct NamesCase {
  std::string name;
  float version = 3.0f;
  int32_t flags = 3;
  int32_t itemCount = 0;
  QStringList stored;                 // names written by the fixture
  std::optional<QByteArray> rowText;  // raw block text instead (version 3)
  int32_t encoding = 2;
  QStringList expected;
};

QvzFixture FileWithNames(const NamesCase& c) {
  return QvzFixture::WithRowNames(c.version, c.flags, c.itemCount, c.stored, c.rowText, c.encoding);
}

QStringList NamesOf(QVZRead& reader, int metricClass, std::vector<int32_t>* order = nullptr) {
  QStringList names;
  std::vector<int32_t> rowOrder;
  reader.GetRowHeaders(metricClass, names, rowOrder);
  if (order) *order = rowOrder;
  return names;
}

}  // namespace

TEST(QVZReadNames, DecodesEveryVersionAndEncoding) {
  const QString cut127 = QString(127, u'x');
  const std::vector<NamesCase> cases = {
      {"v3 UTF-8",
       3.0f,
       3,
       3,
       {"Grüße.c", "日本語.cpp", "a b "},
       {},
       2,
       {"Grüße.c", "日本語.cpp", "a b "}},
      {"v3 1252", 3.0f, 1, 2, {"café€.c", "naïve"}, {}, 0, {"café€.c", "naïve"}},
      // The block's own Encoding decides, whatever the header says.
      {"v3 1252 block in UTF-8 file", 3.0f, 3, 1, {}, QByteArray("caf\xE9\x80", 5), 0, {"café€"}},
      {"v3 UTF-8 invalid byte",
       3.0f,
       3,
       1,
       {},
       QByteArray("a\xFF"
                  "b",
                  3),
       2,
       {QStringLiteral("a\uFFFDb")}},
      {"v3 empty names between", 3.0f, 3, 3, {}, QByteArray("a\0\0c", 4), 2, {"a", "", "c"}},
      {"v3 fewer names", 3.0f, 3, 4, {"a", "b"}, {}, 2, {"a", "b", "#3", "#4"}},
      {"v3 more names", 3.0f, 3, 2, {"a", "b", "c", "d"}, {}, 2, {"a", "b"}},
      {"v3 empty block", 3.0f, 3, 1, {}, {}, 2, {"#1"}},
      {"v3 no rows", 3.0f, 3, 0, {}, {}, 2, {}},
      // Older records: UTF-8 stops at the first zero, trailing blanks go.
      {"v2 UTF-8", 2.0f, 3, 2, {"Grüße.c  ", "b"}, {}, 2, {"Grüße.c", "b"}},
      {"v2 1252 blank padded", 2.0f, 1, 2, {"café€.c", "  lead"}, {}, 2, {"café€.c", "  lead"}},
      // A name that fills all 128 bytes has no terminator and is taken whole.
      {"v2 full field", 2.0f, 3, 1, {QString(128, u'n')}, {}, 2, {QString(128, u'n')}},
      {"v2 full field 1252", 2.0f, 1, 1, {QString(128, u'é')}, {}, 2, {QString(128, u'é')}},
      // A UTF-8 name cut inside a character keeps a replacement for the rest.
      {"v2 cut UTF-8", 2.0f, 3, 1, {cut127 + u'é'}, {}, 2, {cut127 + QChar(0xFFFD)}},
      {"v2 short of records", 2.0f, 3, 3, {"a"}, {}, 2, {"a", "", ""}},
  };
  for (const NamesCase& c : cases) {
    QTemporaryDir dir;
    QVZRead reader;
    ASSERT_TRUE(OpenFixture(reader, dir, FileWithNames(c))) << c.name;
    EXPECT_EQ(NamesOf(reader, 1), c.expected) << c.name;
  }
}

TEST(QVZReadNames, UnsortedFilesAreOrderedIgnoringCaseAndSortedOnesKeptAsStored) {
  const QStringList stored = {"beta.c", "Alpha.c", "gamma.c", "ALPHA2.c", "Delta.c"};
  const std::vector<std::pair<int32_t, std::vector<int32_t>>> cases = {
      {2, {2, 4, 1, 5, 3}},  // UTF-8, unsorted
      {0, {2, 4, 1, 5, 3}},  // ANSI, unsorted
      {3, {1, 2, 3, 4, 5}},  // sorted: kept as the file has it
      {1, {1, 2, 3, 4, 5}},
  };
  for (const auto& [flags, expectedOrder] : cases) {
    QTemporaryDir dir;
    QVZRead reader;
    NamesCase c;
    c.flags = flags;
    c.itemCount = 5;
    c.stored = stored;
    c.encoding = flags & 2;
    ASSERT_TRUE(OpenFixture(reader, dir, FileWithNames(c))) << flags;
    std::vector<int32_t> order;
    EXPECT_EQ(NamesOf(reader, 1, &order), stored) << "names stay in file order, flags " << flags;
    EXPECT_EQ(order, expectedOrder) << flags;
  }
}

TEST(QVZReadNames, EveryClassGetsItsOwnBlockInClassTableOrder) {
  QvzFixture f;
  f.flags = 2;  // unsorted
  ClassSpec& procs = f.AddClass(3, 2);
  procs.rowNames = {"zeta", "Eta"};
  procs.series.push_back(SeriesSpec::Stored(4001, 3, {1, 2}));
  ClassSpec& files = f.AddClass(1, 1);
  files.rowNames = {"main.c"};
  files.series.push_back(SeriesSpec::Stored(2001, 3, {1}));
  QTemporaryDir dir;
  QVZRead reader;
  ASSERT_TRUE(OpenFixture(reader, dir, f));
  std::vector<int32_t> order;
  EXPECT_EQ(NamesOf(reader, 3, &order), (QStringList{"zeta", "Eta"}));
  EXPECT_EQ(order, (std::vector<int32_t>{2, 1}));
  EXPECT_EQ(NamesOf(reader, 1), QStringList{"main.c"});
  EXPECT_EQ(NamesOf(reader, 0), QStringList{});
  EXPECT_EQ(NamesOf(reader, 4), QStringList{});
  EXPECT_TRUE(reader.Slot(3).RowNamesLoaded);
  EXPECT_TRUE(reader.Slot(1).RowNamesLoaded);
}

TEST(QVZReadNames, RowCountsTheFileCannotBackGetNoNames) {
  // Two billion rows claimed with an empty name block and only a constant
  // series: nothing in the file backs them, so no names are made.
  QvzFixture f;
  ClassSpec& cls = f.AddClass(4, 2000000000);
  cls.series.push_back(SeriesSpec::Constant(5001, 2000000000, 3));
  QTemporaryDir dir;
  QVZRead reader;
  ASSERT_TRUE(OpenFixture(reader, dir, f));
  std::vector<int32_t> order;
  EXPECT_TRUE(NamesOf(reader, 4, &order).isEmpty());
  EXPECT_TRUE(order.empty());
  CStats column;
  EXPECT_FALSE(reader.ReadSeries(5001, column, 0));

  // Rows backed by stored values get "#" names even without a text block.
  QvzFixture backed;
  ClassSpec& stored = backed.AddClass(4, 3);
  stored.series.push_back(SeriesSpec::Stored(5001, 3, {1, 2, 3}));
  QTemporaryDir dir2;
  QVZRead reader2;
  ASSERT_TRUE(OpenFixture(reader2, dir2, backed));
  EXPECT_EQ(NamesOf(reader2, 4), (QStringList{"#1", "#2", "#3"}));
}

// Older files name each row's file by number; version 3 files have no
// numbers and every row gives the first file.
TEST(QVZReadNames, ItemFileFollowsFileNumbersOfOlderFiles) {
  for (const float version : {2.0f, 3.0f}) {
    SCOPED_TRACE(version);
    QvzFixture f;
    f.version = version;
    // Each class is finished before the next is added: adding may move the
    // earlier ones.
    ClassSpec& files = f.AddClass(1, 2);
    files.rowNames = {"a.c", "b.c"};
    files.fileNrs = {7, 9};
    if (version >= 3.0f) files.series.push_back(SeriesSpec::Stored(2001, 3, {1, 2}));
    ClassSpec& procs = f.AddClass(3, 3);
    procs.rowNames = {"p1", "p2", "p3"};
    procs.fileNrs = {9, 7, 4};
    if (version >= 3.0f) procs.series.push_back(SeriesSpec::Stored(4001, 3, {1, 2, 3}));
    QTemporaryDir dir;
    QVZRead reader;
    ASSERT_TRUE(OpenFixture(reader, dir, f));
    const std::vector<std::pair<int32_t, QString>> cases =
        version >= 3.0f ? std::vector<std::pair<int32_t, QString>>{{1, "a.c"}, {2, "a.c"}}
                        : std::vector<std::pair<int32_t, QString>>{
                              {1, "b.c"}, {2, "a.c"}, {3, ""}, {0, ""}, {4, ""}};
    for (const auto& [row, expected] : cases) {
      QString filename = "stale";
      reader.GetItemFile(3, row, filename);
      EXPECT_EQ(filename, expected) << row;
    }
  }
}
