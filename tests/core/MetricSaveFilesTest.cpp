// Files written by MetricSave: row names, value order, every encoding opened
// and read back by the reader, completion and what a failure leaves behind.
#include <map>

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "common/MessageAssertions.h"
#include "common/QvzFixture.h"
#include "core/MetricReadTestSupport.h"
#include "core/MetricSave.h"
#include "core/QVZFormat.h"
#include "core/QVZRead.h"
#include "stats/CStats.h"
#include "support/DateValue.h"
#include "support/SettingsStore.h"

namespace ombrelle {
namespace {

using test::QvzFixture;
using test::SeriesOf;

// One class to write: its row count, its names and its series.
struct ClassPlan {
  int classNr;
  int32_t itemCount;
  QStringList names;
  std::vector<std::pair<int32_t, std::vector<double>>> series;
};

bool WriteFile(const QString& path, const std::vector<ClassPlan>& plan) {
  test::SaveSpec spec{QStringLiteral("Title \u00e9\u03a9"),
                      QStringLiteral("/src/a.vbp"),
                      DateSerial(2024, 1, 31) + TimeSerial(7, 8, 9),
                      {}};
  for (const ClassPlan& c : plan)
    spec.classes.push_back({c.classNr, c.names, c.series, c.itemCount});
  return test::WriteSave(path, spec);
}

// The row-name block of the k-th class (0-based in file order) as stored.
QByteArray RowBlock(const QByteArray& file, const QVZRead& reader, int k) {
  qsizetype at = reader.RowNamesStart() - 1;
  for (int i = 0;; ++i) {
    const int32_t length = GetInt32(file.constData() + at);
    if (i == k) return file.mid(at, kRowBlockHeadSize + length);
    at += kRowBlockHeadSize + length;
  }
}

// The values of a stored series, decoded from the file's bytes.
std::vector<double> StoredValues(const QByteArray& file, qint64 position) {
  const SeriesHeader h = SeriesHeader::Decode(file.constData() + position - 1);
  std::vector<double> values;
  const char* p = file.constData() + position - 1 + kSeriesHeaderSize;
  for (int i = 0; i < h.Count; ++i) {
    switch (h.ValueKind) {
      case kValueDouble:
        values.push_back(GetDouble(p + 8 * i));
        break;
      case kValueInt32:
        values.push_back(GetInt32(p + 4 * i));
        break;
      case kValueInt16:
        values.push_back(GetInt16(p + 2 * i));
        break;
      case kValueByte:
        values.push_back(static_cast<uint8_t>(p[i]));
        break;
      default:
        values.push_back(h.Mean);
        break;
    }
  }
  return values;
}

using MetricSaveFiles = test::SaveFolderTest;

TEST_F(MetricSaveFiles, RowNameBlocksSortedWithTheirEncoding) {
  struct Case {
    const char* what;
    int32_t itemCount;
    QStringList names;
    QByteArray block;
    QStringList read;  // names as the reader gives them back
  };
  const auto head = [](int32_t length, int32_t encoding) {
    QByteArray out;
    test::AppendInt32(out, length);
    test::AppendInt32(out, encoding);
    test::AppendInt32(out, 0);
    return out;
  };
  const std::vector<Case> cases = {
      {"unsorted", 3, {"b", "A", "c"}, head(5, 0) + QByteArray("A\0b\0c", 5), {"A", "b", "c"}},
      {"sorted", 3, {"A", "b", "c"}, head(5, 0) + QByteArray("A\0b\0c", 5), {"A", "b", "c"}},
      {"1252, a character outside the code page becomes ?",
       3,
       {QStringLiteral("\u00e9t\u00e9"), "Zeta", QStringLiteral("\u03a9mega")},
       head(14, 0) + QByteArray("Zeta\0\xe9t\xe9\0?mega", 14),
       {"Zeta", QStringLiteral("\u00e9t\u00e9"), "?mega"}},
      {"only tildes go out in UTF-8",
       2,
       {"~~", "~"},
       head(4, 2) + QByteArray("~\0~~", 4),
       {"~", "~~"}},
      {"empty class", 0, {}, head(0, 0), {}},
      {"only empty names", 2, {"", ""}, head(0, 0), {"#1", "#2"}},
      {"one row", 1, {"only"}, head(4, 0) + QByteArray("only"), {"only"}},
      {"fewer names than rows",
       3,
       {"b", "a"},
       head(3, 0) + QByteArray("a\0b", 3),
       {"a", "b", "#3"}},
      {"names beyond the rows dropped",
       2,
       {"d", "c", "b", "a"},
       head(3, 0) + QByteArray("c\0d", 3),
       {"c", "d"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const QString path = Path(QStringLiteral("names.qvz"));
    ASSERT_TRUE(WriteFile(path, {{2, c.itemCount, c.names, {{3001, {}}}}}));
    QVZRead reader;
    QString error;
    ASSERT_TRUE(reader.Opendatabase(path, error)) << error.toStdString();
    EXPECT_EQ(reader.GetClassSize(2), c.itemCount);
    const QByteArray file = QvzFixture::ReadBytes(path);
    EXPECT_EQ(RowBlock(file, reader, 0).toHex().toStdString(), c.block.toHex().toStdString());
    QStringList names;
    std::vector<int32_t> order;
    reader.GetRowHeaders(2, names, order);
    EXPECT_EQ(names, c.read);
    for (int32_t i = 0; i < static_cast<int32_t>(order.size()); ++i)
      EXPECT_EQ(order[i], i + 1) << "stored sorted";
  }
}

TEST_F(MetricSaveFiles, ValuesFollowTheSortedNames) {
  struct Case {
    const char* what;
    int32_t itemCount;
    QStringList names;
    std::vector<double> values;
    std::vector<double> stored;
  };
  const std::vector<Case> cases = {
      {"sorted", 3, {"c", "a", "B"}, {1, 2, 3}, {2, 3, 1}},
      {"unnamed rows stay behind", 3, {"b", "a"}, {1, 2, 3}, {2, 1, 3}},
      {"a column of another length keeps its order", 2, {"b", "a"}, {5, 6, 7}, {5, 6, 7}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const QString path = Path(QStringLiteral("order.qvz"));
    ASSERT_TRUE(WriteFile(path, {{1, c.itemCount, c.names, {{2001, c.values}}}}));
    QVZRead reader;
    QString error;
    ASSERT_TRUE(reader.Opendatabase(path, error)) << error.toStdString();
    EXPECT_EQ(StoredValues(QvzFixture::ReadBytes(path), reader.Slot(1).SeriesPositions.at(0)),
              c.stored);
  }
}

// Names equal but for case may come out in either order; each keeps its value.
TEST_F(MetricSaveFiles, NamesEqualButForCaseKeepTheirValues) {
  const QString path = Path(QStringLiteral("case.qvz"));
  ASSERT_TRUE(WriteFile(path, {{1, 4, {"x", "b", "X", "A"}, {{2001, {1, 2, 3, 4}}}}}));
  QVZRead reader;
  QString error;
  ASSERT_TRUE(reader.Opendatabase(path, error)) << error.toStdString();
  const QByteArray file = QvzFixture::ReadBytes(path);
  const QList<QByteArray> names = RowBlock(file, reader, 0).mid(kRowBlockHeadSize).split('\0');
  const std::vector<double> values = StoredValues(file, reader.Slot(1).SeriesPositions.at(0));
  ASSERT_EQ(names.size(), 4);
  ASSERT_EQ(values.size(), 4u);
  const std::map<QByteArray, double> given = {{"x", 1}, {"b", 2}, {"X", 3}, {"A", 4}};
  EXPECT_EQ(names[0], QByteArray("A"));
  EXPECT_EQ(names[1], QByteArray("b"));
  for (int i = 0; i < 4; ++i) EXPECT_EQ(values[i], given.at(names[i])) << names[i].toStdString();
}

// Every encoding, an empty class and one-row classes in one file: the reader
// opens it, the checksum verifies, the stored values are the ones given and
// the reader gives them back under their rows.
TEST_F(MetricSaveFiles, EveryEncodingOpensInTheReader) {
  const QString path = Path(QStringLiteral("all.qvz"));
  const std::vector<ClassPlan> plan = {
      {0, 1, {"project"}, {{1002, {12345}}, {1012, {0.75}}}},
      {1,
       4,
       {"d.c", "b.c", "a.c", "c.c"},
       {{2001, {1.5e9, 2, 3, 4}},      // 32-bit
        {2012, {-5, 70, 9, 1000}},     // 16-bit
        {2013, {4, 3, 2, 1}},          // byte
        {2014, {6, 6, 6, 6}},          // constant
        {2015, {0.1, 0.2, 0.3, 0.4}},  // double
        {2030, {1e12, 0, 0, 0}}}},     // whole numbers out of 32-bit range
      {2, 0, {}, {{3001, {}}}},
      {3, 0, {}, {}},
      {4, 1, {QStringLiteral("v\u00e4r")}, {{5001, {3}}}},
  };
  ASSERT_TRUE(WriteFile(path, plan));
  EXPECT_TRUE(m_ui.ui.messages.empty());

  QVZRead reader;
  DatabaseHeader header;
  ASSERT_TRUE(reader.ReadHeader(path, header, true, true));
  QString error;
  ASSERT_TRUE(reader.Opendatabase(path, error)) << error.toStdString();
  EXPECT_EQ(reader.ClassOrderCount(), 5);
  EXPECT_EQ(reader.Title(), QStringLiteral("Title \u00e9\u03a9"));
  EXPECT_EQ(reader.ProjectFilename(), QStringLiteral("/src/a.vbp"));
  EXPECT_EQ(reader.GetAnalysisDate(), DateSerial(2024, 1, 31) + TimeSerial(7, 8, 9));
  const std::vector<int32_t> sizes = {1, 4, 0, 0, 1};
  const std::vector<std::vector<int32_t>> ids = {
      {1002, 1012}, {2001, 2012, 2013, 2014, 2015, 2030}, {3001}, {}, {5001}};
  const std::vector<int> kinds[] = {{4, 4}, {1, 2, 3, 4, 0, 0}, {4}, {}, {4}};
  const QByteArray file = QvzFixture::ReadBytes(path);
  for (int c = 0; c < 5; ++c) {
    SCOPED_TRACE(c);
    const ClassSlot& slot = reader.Slot(c);
    EXPECT_TRUE(slot.Present);
    EXPECT_EQ(reader.ClassOrderAt(c + 1), c);
    EXPECT_EQ(reader.GetClassSize(c), sizes[c]);
    EXPECT_EQ(slot.MetricIds, ids[c]);
    for (size_t j = 0; j < slot.SeriesPositions.size(); ++j) {
      EXPECT_TRUE(slot.SeriesUsable[j]);
      const SeriesHeader h = SeriesHeader::Decode(file.constData() + slot.SeriesPositions[j] - 1);
      EXPECT_EQ(h.ValueKind, kinds[c][j]) << j;
    }
  }
  // File rows in name order: a.c, b.c, c.c, d.c are given rows 3, 2, 4, 1.
  const auto values = [&](int j) { return StoredValues(file, reader.Slot(1).SeriesPositions[j]); };
  EXPECT_EQ(values(0), (std::vector<double>{3, 2, 4, 1.5e9}));
  EXPECT_EQ(values(1), (std::vector<double>{9, 70, 1000, -5}));
  EXPECT_EQ(values(2), (std::vector<double>{2, 3, 1, 4}));
  EXPECT_EQ(values(3), (std::vector<double>{6, 6, 6, 6}));
  EXPECT_EQ(values(4), (std::vector<double>{0.3, 0.2, 0.4, 0.1}));
  EXPECT_EQ(values(5), (std::vector<double>{0, 0, 0, 1e12}));
  QStringList names;
  std::vector<int32_t> order;
  reader.GetRowHeaders(1, names, order);
  EXPECT_EQ(names, (QStringList{"a.c", "b.c", "c.c", "d.c"}));
  for (size_t j = 0; j < plan[1].series.size(); ++j) {
    CStats read;
    ASSERT_TRUE(reader.ReadSeries(plan[1].series[j].first, read, 0)) << j;
    std::vector<double> got;
    for (int32_t row = 1; row <= read.count(); ++row) got.push_back(read.ValueAtIndex(row));
    EXPECT_EQ(got, values(static_cast<int>(j))) << j;
  }
  double value = 0;
  EXPECT_TRUE(reader.ReadValueForRow(2012, QStringLiteral("A.C"), value));
  EXPECT_EQ(value, 9);
  const SeriesHeader project =
      SeriesHeader::Decode(file.constData() + reader.Slot(0).SeriesPositions[0] - 1);
  EXPECT_EQ(project.Count, 1);
  EXPECT_EQ(project.Mean, 12345);
  EXPECT_EQ(RowBlock(file, reader, 4).mid(kRowBlockHeadSize), QByteArray("v\xe4r"));
}

TEST_F(MetricSaveFiles, SeriesStepOverClassesWithoutMetricsAndStopAtTheLast) {
  const QString path = Path(QStringLiteral("steps.qvz"));
  MetricSave save;
  ASSERT_TRUE(save.SaveDatabase(path, QStringLiteral("t"), QStringLiteral("p"), 45000));
  save.AddClass(0, 1, {"p"});
  save.ClassDone();
  save.AddClass(1, 2, {"a", "b"});
  save.AddMetricToClass(2001);
  save.ClassDone();
  CStats early = SeriesOf({1, 2});
  EXPECT_FALSE(save.SaveSeries(early)) << "no series before the classes are written";
  ASSERT_TRUE(save.SaveClasses());
  EXPECT_FALSE(save.SaveClasses());
  CStats s = SeriesOf({1, 2});
  EXPECT_TRUE(save.SaveSeries(s));
  EXPECT_FALSE(save.SaveSeries(s)) << "every declared series is written";
  ASSERT_TRUE(save.Close());
  EXPECT_FALSE(save.Close());
  QVZRead reader;
  QString error;
  ASSERT_TRUE(reader.Opendatabase(path, error)) << error.toStdString();
  EXPECT_EQ(reader.Slot(1).MetricIds, std::vector<int32_t>{2001});
  EXPECT_TRUE(reader.Slot(0).MetricIds.empty());
}

TEST_F(MetricSaveFiles, CompletionRemembersTheFolder) {
  ASSERT_TRUE(WriteFile(Path(QStringLiteral("one.qvz")), {{0, 1, {"p"}, {{1002, {1}}}}}));
  ASSERT_TRUE(WriteFile(Path(QStringLiteral("two.qvz")), {{0, 1, {"p"}, {{1002, {1}}}}}));
  const auto settings = GetAllSettings(QStringLiteral("Databases"));
  ASSERT_EQ(settings.size(), 1u);
  EXPECT_EQ(settings[0].first, QStringLiteral("path1"));
  EXPECT_EQ(settings[0].second, m_dir.path());
}

TEST_F(MetricSaveFiles, AnEmptyNameIsGeneratedInTheSaveFolder) {
  SaveSetting(QStringLiteral("Databases"), QStringLiteral("SavePath"), m_dir.path());
  MetricSave save;
  ASSERT_TRUE(save.SaveDatabase(QString(), QStringLiteral("t"), QStringLiteral("My.vbp"),
                                DateSerial(2012, 10, 11)));
  EXPECT_EQ(save.Filename(), m_dir.filePath(QStringLiteral("2012-10-11 My.qvz")));
}

TEST_F(MetricSaveFiles, AnOldFileIsReplacedOnlyOnCompletion) {
  const QString path = Path(QStringLiteral("old.qvz"));
  QvzFixture::WriteBytes(path, "old content");
  MetricSave save;
  ASSERT_TRUE(save.SaveDatabase(path, QStringLiteral("t"), QStringLiteral("p"), 45000));
  save.AddClass(0, 0, {});
  save.AddMetricToClass(1002);
  ASSERT_TRUE(save.SaveClasses());
  CStats empty;
  ASSERT_TRUE(save.SaveSeries(empty));
  EXPECT_EQ(QvzFixture::ReadBytes(path), QByteArray("old content"));
  ASSERT_TRUE(save.Close());
  EXPECT_EQ(QvzFixture::ReadBytes(path).size(), 658);
  EXPECT_EQ(QDir(m_dir.path()).entryList(QDir::Files), QStringList{"old.qvz"});
}

TEST_F(MetricSaveFiles, FailuresLeaveNoFileBehind) {
  // A folder that does not exist.
  const QString missing = m_dir.filePath(QStringLiteral("none/x.qvz"));
  {
    MetricSave save;
    EXPECT_FALSE(save.SaveDatabase(missing, QStringLiteral("t"), QStringLiteral("p"), 45000));
    EXPECT_FALSE(save.IsOpen());
  }
  ASSERT_EQ(m_ui.ui.messages.size(), 1u);
  EXPECT_EQ(m_ui.ui.messages[0].style, MsgStyle::Exclamation);
  EXPECT_TRUE(m_ui.ui.messages[0].text.startsWith(QStringLiteral("Error #5 saving metrics to ") +
                                                  missing + QStringLiteral(": \r\n")))
      << m_ui.ui.messages[0].text.toStdString();
  EXPECT_FALSE(QFileInfo::exists(missing));

  // A folder in the place of the file: it cannot be overwritten.
  const QString folder = Path(QStringLiteral("taken.qvz"));
  ASSERT_TRUE(QDir().mkpath(folder));
  m_ui.ui.messages.clear();
  {
    MetricSave save;
    EXPECT_FALSE(save.SaveDatabase(folder, QStringLiteral("t"), QStringLiteral("p"), 45000));
  }
  EXPECT_ONLY_UI_MESSAGE(m_ui.ui, "Cannot overwrite file " + folder.toStdString(),
                         MsgStyle::Exclamation);

  // The final name taken while the file was being written: completion fails,
  // the temporary file goes, and what stands under the name is untouched.
  const QString late = Path(QStringLiteral("late.qvz"));
  m_ui.ui.messages.clear();
  {
    MetricSave save;
    ASSERT_TRUE(save.SaveDatabase(late, QStringLiteral("t"), QStringLiteral("p"), 45000));
    save.AddClass(0, 0, {});
    save.AddMetricToClass(1002);
    ASSERT_TRUE(save.SaveClasses());
    CStats empty;
    ASSERT_TRUE(save.SaveSeries(empty));
    ASSERT_TRUE(QDir().mkpath(late + QStringLiteral("/inside")));
    EXPECT_FALSE(save.Close());
  }
  ASSERT_EQ(m_ui.ui.messages.size(), 1u);
  EXPECT_TRUE(m_ui.ui.messages[0].text.startsWith(QStringLiteral("Error #10 saving metrics to ") +
                                                  late + QStringLiteral(": \r\n")))
      << m_ui.ui.messages[0].text.toStdString();
  EXPECT_TRUE(QFileInfo(late).isDir());
  EXPECT_TRUE(QDir(m_dir.path()).entryList(QDir::Files).isEmpty())
      << QDir(m_dir.path()).entryList(QDir::Files).join(u' ').toStdString();
  EXPECT_TRUE(GetAllSettings(QStringLiteral("Databases")).empty());
}

}  // namespace
}  // namespace ombrelle
