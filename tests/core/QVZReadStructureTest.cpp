#include <chrono>

#include <gtest/gtest.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "common/MessageAssertions.h"
#include "common/QvzFixture.h"
#include "core/QVZRead.h"

using namespace ombrelle;
using namespace ombrelle::test;

namespace {

// Writes `f` into `dir` and opens it; `errorText` receives the open's text.
bool OpenFixture(QVZRead& reader, const QTemporaryDir& dir, const QvzFixture& f,
                 QString* errorText = nullptr, FixtureLayout* layout = nullptr) {
  QString text;
  const QString path = f.Write(dir.filePath("db.qvz"), layout);
  const bool ok = reader.Opendatabase(path, text);
  if (errorText) *errorText = text;
  return ok;
}

std::vector<qint64> Positions(const ClassSlot& slot) { return slot.SeriesPositions; }

}  // namespace

TEST(QVZReadStructure, SmallestVersion3File) {
  QTemporaryDir dir;
  QVZRead reader;
  FixtureLayout layout;
  ASSERT_TRUE(OpenFixture(reader, dir, QvzFixture::SmallestVersion3(), nullptr, &layout));
  EXPECT_EQ(reader.FileLength(), 658);
  EXPECT_EQ(reader.ClassOrderCount(), 1);
  EXPECT_EQ(reader.ClassOrderAt(1), 0);
  EXPECT_EQ(reader.RowNamesStart(), 571);
  EXPECT_EQ(reader.SeriesStart(), 583);
  const ClassSlot& slot = reader.Slot(0);
  EXPECT_TRUE(slot.Present);
  EXPECT_EQ(slot.MetricIds, std::vector<int32_t>{1001});
  EXPECT_EQ(Positions(slot), std::vector<qint64>{583});
  EXPECT_EQ(slot.SeriesUsable, std::vector<bool>{true});
  for (int c = 1; c <= 4; ++c) EXPECT_FALSE(reader.Slot(c).Present) << c;
}

TEST(QVZReadStructure, SmallestOlderFilesAreALoneHeader) {
  for (float version : {1.0f, 2.0f, 2.5f}) {
    QTemporaryDir dir;
    QVZRead reader;
    QvzFixture f;
    f.version = version;
    QString errorText;
    ASSERT_TRUE(OpenFixture(reader, dir, f, &errorText)) << version << errorText.toStdString();
    EXPECT_EQ(reader.FileLength(), 554);
    EXPECT_EQ(reader.SeriesStart(), 555);
    for (int c = 0; c <= 4; ++c) {
      EXPECT_FALSE(reader.Slot(c).Present);
      EXPECT_EQ(reader.GetClassSize(c), 0);
    }
  }
}

TEST(QVZReadStructure, OlderLayoutHasRowRecordsAndFixedSeries) {
  QvzFixture f;
  f.version = 2.5f;
  ClassSpec& files = f.AddClass(1, 2);
  files.rowNames = {"a.c", "b.c"};
  files.series.push_back(SeriesSpec::Stored(2001, 0, {1, 2}));
  ClassSpec& procs = f.AddClass(3, 3);
  procs.series.push_back(SeriesSpec::Stored(4001, 0, {1, 2, 3}));
  procs.series.push_back(SeriesSpec::Stored(4002, 0, {4, 5, 6}));
  QTemporaryDir dir;
  QVZRead reader;
  FixtureLayout layout;
  QString errorText;
  ASSERT_TRUE(OpenFixture(reader, dir, f, &errorText, &layout)) << errorText.toStdString();
  // 554 + 2 records + 3 ids = 590; rows 5 x 130 = 650; series 92, 100, 100.
  EXPECT_EQ(reader.RowNamesStart(), 591);
  EXPECT_EQ(reader.SeriesStart(), 1241);
  EXPECT_EQ(Positions(reader.Slot(1)), std::vector<qint64>{1241});
  EXPECT_EQ(Positions(reader.Slot(3)), (std::vector<qint64>{1333, 1433}));
  EXPECT_EQ(reader.Slot(3).MetricIds, (std::vector<int32_t>{4001, 4002}));
  EXPECT_EQ(layout.seriesHeaders, (std::vector<qint64>{1240, 1332, 1432}));
  EXPECT_EQ(reader.GetClassSize(3), 3);

  // The length must be exact: a compact encoding is not allowed here.
  f.classes[0].series[0] = SeriesSpec::Stored(2001, 3, {1, 2});
  EXPECT_FALSE(OpenFixture(reader, dir, f, &errorText));
  EXPECT_EQ(errorText.toStdString(), "Invalid file size.");
}

TEST(QVZReadStructure, Version3WalksBlocksEncodingsAndUnusableKinds) {
  QvzFixture f;
  f.AddClass(0, 1).series.push_back(SeriesSpec::Constant(1001, 1, 5.0));
  ClassSpec& cls = f.AddClass(2, 3);
  cls.rowNames = {"alpha", "beta", "gamma"};
  cls.series.push_back(SeriesSpec::Stored(3001, 3, {1, 2, 3}));
  cls.series.push_back(SeriesSpec::Stored(3002, 1, {-70000, 0, 70000}));
  SeriesSpec odd = SeriesSpec::Stored(3003, 3, {1, 2, 3});
  odd.valueKind = 9;  // unknown encoding of 3-byte values
  odd.valueSize = 3;
  odd.values = QByteArray(9, '\x01');
  cls.series.push_back(odd);
  cls.series.push_back(SeriesSpec::Constant(3004, 3, 7.0));
  QTemporaryDir dir;
  QVZRead reader;
  FixtureLayout layout;
  QString errorText;
  ASSERT_TRUE(OpenFixture(reader, dir, f, &errorText, &layout)) << errorText.toStdString();
  // 554 + 24 + 20 ids; blocks: 12 + 12 + 16 of names.
  EXPECT_EQ(reader.RowNamesStart(), 599);
  EXPECT_EQ(reader.SeriesStart(), 639);
  EXPECT_EQ(Positions(reader.Slot(0)), std::vector<qint64>{639});
  // 76 (constant), 76 + 3, 76 + 12, 76 + 9
  EXPECT_EQ(Positions(reader.Slot(2)), (std::vector<qint64>{715, 794, 882, 967}));
  EXPECT_EQ(reader.Slot(2).SeriesUsable, (std::vector<bool>{true, true, false, true}));
  for (size_t i = 0; i < layout.seriesHeaders.size(); ++i)
    EXPECT_EQ(layout.seriesHeaders[i] + 1, i == 0 ? 639 : reader.Slot(2).SeriesPositions[i - 1]);
}

TEST(QVZReadStructure, DuplicatedClassRecordOverwritesTheSlot) {
  QvzFixture f;
  ClassSpec& first = f.AddClass(1, 4);
  first.series.push_back(SeriesSpec::Constant(2001, 4, 1.0));
  ClassSpec& second = f.AddClass(1, 0);
  second.series.push_back(SeriesSpec::Constant(2002, 0, 2.0));
  QTemporaryDir dir;
  QVZRead reader;
  QString errorText;
  ASSERT_TRUE(OpenFixture(reader, dir, f, &errorText)) << errorText.toStdString();
  EXPECT_EQ(reader.ClassOrderCount(), 2);
  EXPECT_EQ(reader.ClassOrderAt(1), 1);
  EXPECT_EQ(reader.ClassOrderAt(2), 1);
  EXPECT_EQ(reader.GetClassSize(1), 0);
  EXPECT_EQ(reader.Slot(1).MetricIds, std::vector<int32_t>{2002});
  EXPECT_EQ(Positions(reader.Slot(1)), std::vector<qint64>{554 + 24 + 8 + 24 + 76 + 1});

  // When the second record claims more series than the file holds for it,
  // the walk reads the lists in the wrong places and the length test decides.
  f.classes[1].seriesCount = 2;
  EXPECT_FALSE(OpenFixture(reader, dir, f, &errorText));
  EXPECT_FALSE(errorText.isEmpty());
}

TEST(QVZReadStructure, SeriesCountUsesItsLow16BitsAsSigned) {
  const struct {
    int32_t stored;
    int used;
  } cases[] = {{1, 1}, {0x7FFF, 32767}, {0x00010002, 2}, {0x8000, 0}, {0x7FFFFFFF, 0}};
  for (const auto& c : cases) {
    ClassSlot slot;
    slot.SeriesCount = c.stored;
    EXPECT_EQ(slot.SeriesCount16(), c.used) << c.stored;
  }
  QvzFixture f = QvzFixture::SmallestVersion3();
  f.classes[0].seriesCount = 0x00010001;
  QTemporaryDir dir;
  QVZRead reader;
  ASSERT_TRUE(OpenFixture(reader, dir, f));
  EXPECT_EQ(reader.Slot(0).MetricIds.size(), 1u);
}

TEST(QVZReadStructure, HostileCountsAreRefusedWithoutReservingMemory) {
  const auto hostile = [](float version, int16_t classCount, const QByteArray& body) {
    QvzFixture f;
    f.version = version;
    f.classCount = classCount;
    f.trailing = body.leftJustified(600 - 554, '\0');
    return f;
  };
  QByteArray oneRecord;
  AppendInt32(oneRecord, 1);
  AppendInt32(oneRecord, 1000);
  AppendInt32(oneRecord, 0);
  QvzFixture manyIds;
  manyIds.AddClass(1, 0).seriesCount = 32767;
  manyIds.trailing = QByteArray(600 - 554 - 12, '\0');
  QvzFixture hugeItems2;
  hugeItems2.version = 2.0f;
  hugeItems2.AddClass(1, 0x7FFFFFFF).rowRecords = 0;
  hugeItems2.trailing = QByteArray(600 - 554 - 12, '\0');

  const struct {
    const char* name;
    QvzFixture fixture;
    const char* errorText;
    int classOrderCount;
  } cases[] = {
      {"32767 class records", hostile(3.0f, 0x7FFF, {}),
       "Metrics database file too short. Possibly corrupted. Reading byte: 393759", 0},
      {"32767 class records, version 2", hostile(2.0f, 0x7FFF, {}), "Invalid file size.", 0},
      // The one real record lists 1000 ids; the records behind the end read as
      // zeros and name class 0.
      {"32767 records, first with 1000 series", hostile(3.0f, 0x7FFF, oneRecord),
       "Metrics database file too short. Possibly corrupted. Reading byte: 397759", 0},
      {"negative class count", hostile(3.0f, -1, {}),
       "Metrics database file too long. Expected: 554 bytes, not 600.", 0},
      {"32767 metric ids", manyIds,
       "Metrics database file too short. Possibly corrupted. Reading byte: 131635", 1},
      {"2147483647 rows, version 2", hugeItems2, "Invalid file size.", 1},
  };
  QTemporaryDir dir;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    ScopedScriptedUi scoped;
    QVZRead reader;
    QString errorText;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(OpenFixture(reader, dir, c.fixture, &errorText));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500));
    EXPECT_EQ(errorText.toStdString(), c.errorText);
    EXPECT_EQ(QFileInfo(dir.filePath("db.qvz")).size(), c.fixture.Build().size());
    EXPECT_EQ(reader.ClassOrderCount(), c.classOrderCount);
    for (int k = 0; k <= 4; ++k) EXPECT_TRUE(reader.Slot(k).MetricIds.empty());
    EXPECT_TRUE(scoped.ui.messages.empty());
  }
}

TEST(QVZReadStructure, Version3DoesNotBoundRowsByLength) {
  // Rows cost no bytes when their names are empty, so the walk accepts the
  // count as it stands; nothing is sized by it while opening. A count the
  // file cannot back makes the class empty.
  QvzFixture f = QvzFixture::SmallestVersion3();
  f.classes[0].itemCount = 0x7FFFFFFF;
  QTemporaryDir dir;
  QVZRead reader;
  ASSERT_TRUE(OpenFixture(reader, dir, f));
  EXPECT_EQ(reader.Slot(0).ItemCount, 0x7FFFFFFF);
  EXPECT_EQ(reader.GetClassSize(0), 0);
  EXPECT_TRUE(reader.Slot(0).RowNames.isEmpty());

  f.classes[0].itemCount = 1;
  QVZRead single;
  ASSERT_TRUE(OpenFixture(single, dir, f));
  EXPECT_EQ(single.GetClassSize(0), 1);
}

TEST(QVZReadStructure, TextFieldsFollowTheUtf8Flag) {
  const QByteArray e214 = QByteArray("\xC3\xA9").repeated(107);
  const struct {
    const char* name;
    int32_t flags;
    QByteArray bytes;
    QString text;
  } cases[] = {
      {"UTF-8 stops at the first zero", 3, QByteArray("Ab  \0junk", 9), "Ab"},
      {"UTF-8 filling all 214 bytes", 2, e214, QString(107, QChar(0xE9))},
      {"UTF-8 cut inside a character", 2, QByteArray(213, 'a') + "\xC3",
       QString(213, 'a') + QChar(0xFFFD)},
      {"UTF-8 empty", 3, QByteArray(1, '\0') + "x", ""},
      {"ANSI with trailing blanks", 1, "Caf\xE9 \x80   ", QStringLiteral("Caf\u00E9 \u20AC")},
      {"ANSI does not stop at zero", 0, QByteArray("A\0B", 3), QString::fromUtf16(u"A\0B", 3)},
      {"ANSI all blanks", 0, QByteArray(214, ' '), ""},
  };
  QTemporaryDir dir;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    QvzFixture f;
    f.version = 2.0f;
    f.flags = c.flags;
    f.titleBytes = (c.flags & 2) ? c.bytes : c.bytes.leftJustified(214, ' ');
    f.projectBytes = f.titleBytes;
    QVZRead reader;
    ASSERT_TRUE(OpenFixture(reader, dir, f));
    EXPECT_EQ(reader.Title(), c.text);
    EXPECT_EQ(reader.ProjectFilename(), c.text);
  }
}

TEST(QVZReadStructure, HeaderGetters) {
  QvzFixture f = QvzFixture::SmallestVersion3();
  f.version = 3.0f;
  f.flags = 1;
  f.title = "Nightly";
  f.projectFilename = "/src/app.tpj";
  f.savedBy = "Tarnwick 4.2";
  f.savedDate = "2024-1-31";
  QTemporaryDir dir;
  QVZRead reader;
  ASSERT_TRUE(OpenFixture(reader, dir, f));
  EXPECT_EQ(reader.GetFlags(), 1);
  EXPECT_EQ(reader.GetSavedBy().toStdString(), "Tarnwick 4.2");
  EXPECT_EQ(reader.GetSavedDate().toStdString(), "2024-1-31 ");
  EXPECT_EQ(reader.GetVersionText().toStdString(), "3.0");
  EXPECT_EQ(reader.GetAnalysisDate(), 45322.0 + 86399.0 / 86400.0);
  QString title, project;
  double date = 0;
  reader.GetProjectInfo(title, project, date);
  EXPECT_EQ(title.toStdString(), "Nightly");
  EXPECT_EQ(project.toStdString(), "/src/app.tpj");
  EXPECT_EQ(date, reader.GetAnalysisDate());
  EXPECT_EQ(reader.GetClassSize(9), 0);

  f.version = 3.9f;
  f.savedBy = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
  f.analysisStamp = "2024-01-31 23:5";
  ASSERT_TRUE(OpenFixture(reader, dir, f));
  EXPECT_EQ(reader.GetVersionText().toStdString(), "3.9");
  EXPECT_EQ(reader.GetSavedBy().toStdString(), "ABCDEFGHIJKLMNOPQRSTUVWXYZ012345");
  EXPECT_EQ(reader.GetAnalysisDate(), 0.0);
}

// Reading, closing and reopening by name never write the file; a closed
// reader keeps its tables, and cannot reopen a file that is gone.
TEST(QVZReadStructure, ReadingNeverWritesTheFile) {
  QTemporaryDir dir;
  const QString path = QvzFixture::SmallestVersion3().Write(dir.filePath("keep.qvz"));
  const QDateTime past(QDate(2020, 5, 17), QTime(8, 30, 0));
  {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(past, QFileDevice::FileModificationTime));
  }
  QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::ReadGroup);
  const QByteArray before = QvzFixture::ReadBytes(path);
  {
    QVZRead reader;
    QString errorText;
    ASSERT_TRUE(reader.Opendatabase(path, errorText));
    QString title, project;
    double date = 0;
    reader.GetProjectInfo(title, project, date);
    EXPECT_EQ(date, 45322.0 + 86399.0 / 86400.0);
    reader.CloseDatabaseFile();
    EXPECT_FALSE(reader.IsFileOpen());
    EXPECT_EQ(reader.Slot(0).MetricIds, std::vector<int32_t>{1001});
    ASSERT_TRUE(reader.EnsureFileOpen());
    EXPECT_TRUE(reader.IsFileOpen());
    EXPECT_TRUE(reader.EnsureFileOpen());
    DatabaseHeader header;
    ASSERT_TRUE(reader.ReadHeader(path, header, true, true));
    EXPECT_EQ(QvzFixture::ReadBytes(path), before);
    EXPECT_EQ(QFileInfo(path).lastModified(), past);
    reader.CloseDatabaseFile();
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_FALSE(reader.EnsureFileOpen());
    EXPECT_FALSE(reader.IsFileOpen());
  }
}
