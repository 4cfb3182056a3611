// Views of MetricRead: every data mode, trends, the view by row name, made-up
// shapes without data, and files that vanish after the scan.

#include <optional>

#include <QFile>

#include <gtest/gtest.h>

#include "common/MessageAssertions.h"
#include "core/ListModel.h"
#include "core/MetricRead.h"
#include "core/MetricReadTestSupport.h"

namespace ombrelle {
namespace {

using test::AccessTest;
using test::SaveClass;
using test::SaveSpec;
using Column = std::vector<std::optional<double>>;
constexpr std::nullopt_t kNone = std::nullopt;

// Every row of a column: its value, or nothing where the row is undefined.
Column Rows(const CStats& stats) {
  Column rows;
  for (int32_t p = 1; p <= stats.Capacity(); ++p) {
    double v = 0;
    rows.push_back(stats.ValueAtIndexDefined(p, v) ? std::optional<double>(v) : std::nullopt);
  }
  return rows;
}

void ExpectColumn(const CStats& stats, const Column& expected) {
  const Column rows = Rows(stats);
  ASSERT_EQ(rows.size(), expected.size());
  for (size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE(testing::Message() << "row " << i + 1);
    ASSERT_EQ(rows[i].has_value(), expected[i].has_value());
    if (rows[i]) {
      EXPECT_NEAR(*rows[i], *expected[i], 1e-9);
    }
  }
}

// Five saves of one project and one of another. The project's lines (1002):
// 100, none, 0, 50, 50 on days 0, 5, 10, 10 (same stamp), 40. Its procedures
// (4001 by row): "Main" 10, 11, absent, 12, "MAIN" 20.
class MetricReadView : public AccessTest {
 protected:
  void SetUp() override {
    AccessTest::SetUp();
    m_folder = Folder(QStringLiteral("db"));
    const double day0 = DateSerial(2024, 1, 1);
    struct Save {
      const char* file;
      const char* title;
      double day;
      std::optional<double> lines;
      QStringList procs;
      std::vector<double> procLines;
    };
    const std::vector<Save> saves = {
        {"p1.qvz", "P1", 0, 100, {"Main", "Helper"}, {10, 3}},
        {"p2.qvz", "P2", 5, std::nullopt, {"Main"}, {11}},
        {"p3.qvz", "P3", 10, 0, {"Helper"}, {4}},
        {"p4.qvz", "P4", 10, 50, {"Main", "main2"}, {12, 1}},
        {"p5.qvz", "P5", 40, 50, {"MAIN", "Zed"}, {20, 1}},
    };
    const QDateTime fileTime(QDate(2024, 6, 1), QTime(8, 0));
    int n = 0;
    for (const Save& s : saves) {
      SaveSpec spec{s.title, "Proj.vbp", day0 + s.day, {}};
      SaveClass project{0, {s.title}, {}};
      if (s.lines) project.series.push_back({1002, {*s.lines}});
      project.series.push_back({1009, {40}});
      spec.classes.push_back(project);
      spec.classes.push_back(SaveClass{3, s.procs, {{4001, s.procLines}}});
      if (n == 0) spec.classes.push_back(SaveClass{4, {"a", "b", "c"}, {{5001, {1, 2, 3}}}});
      const QString path = Write(m_folder, s.file, spec);
      // p3 and p4 share their stamp and saved date: the file dates order them.
      test::SetFileDate(path, fileTime.addSecs(60 * n++));
    }
    SaveSpec other{"O1", "other.vbp", day0 + 3, {}};
    other.classes.push_back(SaveClass{0, {"O1"}, {{1002, {7}}, {1009, {5}}, {1008, {10}}}});
    Write(m_folder, "o1.qvz", other);
  }

  // Index of the save with `title`.
  static int IndexOf(const MetricRead& reader, const QString& title) {
    for (int i = 1; i <= reader.DatabaseCount(); ++i) {
      if (reader.Database(i).Title == title) return i;
    }
    return 0;
  }

  QString m_folder;
};

TEST_F(MetricReadView, EachViewGivesOneValuePerDatabase) {
  ScopedScriptedUi ui;
  MetricRead reader;
  ASSERT_EQ(reader.DatabaseCount(), 6);
  const int p1 = IndexOf(reader, "P1");
  struct Case {
    int mode;
    QStringList rows;
    Column lines;
  };
  const std::vector<Case> cases = {
      {7, {"O1", "P1", "P2", "P3", "P4", "P5"}, {7, 100, kNone, 0, 50, 50}},
      {6, {"O1", "P5"}, {7, 50}},
      {1, {"P1", "P2", "P3", "P4", "P5"}, {100, kNone, 0, 50, 50}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.mode);
    reader.SetDataMode(c.mode, p1, 0);
    EXPECT_EQ(reader.GetClassSize(0), c.rows.size());
    EXPECT_EQ(reader.GetClassSize(3), c.rows.size());
    QStringList names;
    std::vector<int32_t> order;
    reader.GetRowHeaders(names, 0, order);
    EXPECT_EQ(names, c.rows);
    EXPECT_EQ(order.size(), static_cast<size_t>(c.rows.size()));
    EXPECT_EQ(order.front(), 1);
    EXPECT_TRUE(reader.MetricAvailable(1002));
    EXPECT_EQ(reader.MetricAvailable(1001), c.mode == 1);
    const CStats lines = reader.GetValues(1002);
    ExpectColumn(lines, c.lines);
    EXPECT_EQ(lines.DataType, 1);  // whole numbers
    // Readers of these views hold every series header and no open file.
    for (int i = 1; i <= reader.DatabaseCount(); ++i) {
      const DatabaseEntry& entry = reader.Database(i);
      if (entry.Included) {
        EXPECT_FALSE(entry.Reader->IsFileOpen());
      }
    }
  }
  EXPECT_EQ(reader.GridRowToQVZDatabase(2), IndexOf(reader, "P2"));
  EXPECT_EQ(reader.GridRowToQVZDatabase(0), 0);
  EXPECT_EQ(reader.GridRowToQVZDatabase(6), 0);
  // A procedure metric in a project view: one value per save, the mean.
  ExpectColumn(reader.GetValues(4001), {6.5, 11, 4, 6.5, 10.5});
  // The project date and the variable count come from the file itself.
  ExpectColumn(reader.GetValues(1000),
               {DateSerial(2024, 1, 1), DateSerial(2024, 1, 6), DateSerial(2024, 1, 11),
                DateSerial(2024, 1, 11), DateSerial(2024, 2, 10)});
  ExpectColumn(reader.GetValues(1207), {3, kNone, kNone, kNone, kNone});
  EXPECT_DOUBLE_EQ(reader.GetSingleValue(1002), 50);  // mean of 100, 0, 50, 50
  EXPECT_TRUE(ui.ui.messages.empty());
}

TEST_F(MetricReadView, TrendsKeepUndefinedRowsUndefined) {
  MetricRead reader;
  const int p3 = IndexOf(reader, "P3");
  struct Case {
    int mode;
    Column lines;
  };
  // Defined rows 1, 3, 4, 5; row 3 follows row 1 after 10 days, row 4 has the
  // same stamp as row 3 and a predecessor of 0.
  const std::vector<Case> cases = {
      {2, {kNone, kNone, -100, 50, 0}},
      {3, {kNone, kNone, -1, kNone, 0}},
      {4, {kNone, kNone, -10, kNone, 0}},
      {5, {kNone, kNone, -300, kNone, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.mode);
    reader.SetDataMode(c.mode, p3, 0);
    const CStats lines = reader.GetValues(1002);
    ExpectColumn(lines, c.lines);
    EXPECT_FALSE(lines.TheorMin);
    // The date itself is never turned into a trend.
    EXPECT_EQ(Rows(reader.GetValues(1000)).front(), DateSerial(2024, 1, 1));
    // Days between saves in every save-by-save view.
    ExpectColumn(reader.GetValues(1001), {kNone, 5, 5, 0, 30});
  }
  reader.SetDataMode(1, p3, 0);
  const CStats days = reader.GetValues(1001);
  EXPECT_EQ(days.count(), 4);  // one value fewer than rows
  EXPECT_DOUBLE_EQ(days.Mean, 10);
}

TEST_F(MetricReadView, ByRowNameViewFollowsOneProcedureAcrossSaves) {
  MetricRead reader;
  const int p1 = IndexOf(reader, "P1");
  reader.SetDataMode(1, p1, 3);
  EXPECT_EQ(reader.RecordClass(), 3);
  // Following a row reads columns: the files keep their structure, open.
  EXPECT_TRUE(reader.Database(p1).Reader->IsFileOpen());
  EXPECT_FALSE(reader.Database(p1).Reader->Slot(3).HeadersLoaded);
  ListModel records;
  reader.FillComboRecords(records);
  QStringList names;
  for (int i = 0; i < records.ListCount(); ++i) names.append(records.List(i));
  EXPECT_EQ(names, QStringList({"Helper", "Main", "main2", "MAIN", "Zed"}));

  reader.SetRecordName("main");
  ExpectColumn(reader.GetValues(4001), {10, 11, kNone, 12, 20});
  // Project metrics keep to one value per save.
  ExpectColumn(reader.GetValues(1002), {100, kNone, 0, 50, 50});
  reader.SetDataMode(2, p1, 3);
  ExpectColumn(reader.GetValues(4001), {kNone, 1, kNone, 1, 8});
  reader.SetRecordName("Helper");
  ExpectColumn(reader.GetValues(4001), {kNone, kNone, 1, kNone, kNone});
}

TEST_F(MetricReadView, OneFileViewReadsTheRowsOfTheOpenFile) {
  MetricRead reader;
  const int p1 = IndexOf(reader, "P1");
  reader.SetDataMode(0, 0, 0);
  EXPECT_EQ(reader.GetClassSize(3), 0);       // nothing open yet
  EXPECT_TRUE(reader.MetricAvailable(1012));  // supported by the catalogue
  ASSERT_TRUE(reader.OpenDatabase2(p1));
  EXPECT_EQ(reader.GetClassSize(3), 2);
  EXPECT_EQ(reader.GetClassSize(4), 3);
  QStringList names;
  std::vector<int32_t> order;
  reader.GetRowHeaders(names, 3, order);
  EXPECT_EQ(names, QStringList({"Helper", "Main"}));
  EXPECT_EQ(order, std::vector<int32_t>({1, 2}));
  reader.GetRowHeaders(names, 0, order);
  EXPECT_EQ(names, QStringList({"P1"}));
  const CStats procs = reader.GetValues(4001);
  ExpectColumn(procs, {3, 10});
  EXPECT_TRUE(procs.TheorMin);
  EXPECT_EQ(procs.TheorMinValue, 1);
  EXPECT_FALSE(procs.TheorMax);
  EXPECT_DOUBLE_EQ(reader.GetSingleValue(1002), 100);
  // LLOC% needs logical lines, which need three stored counts P1 lacks.
  EXPECT_FALSE(reader.MetricAvailable(1012));
  EXPECT_FALSE(reader.MetricAvailable(1001));
  EXPECT_TRUE(reader.MetricAvailable(1000));
  // A metric that cannot be read shows as zeros.
  ExpectColumn(reader.GetValues(4002), {0, 0});
  ASSERT_TRUE(reader.OpenDatabase2(IndexOf(reader, "O1")));
  EXPECT_TRUE(reader.MetricAvailable(1012));
  const CStats share = reader.GetValues(1012);
  ExpectColumn(share, {0.5});
  EXPECT_TRUE(share.TheorMin && share.TheorMax);
  EXPECT_EQ(share.TheorMaxValue, 1);
  EXPECT_EQ(share.DataType, 0);

  EXPECT_FALSE(reader.OpenDatabase2(99));
  EXPECT_EQ(reader.DataState(), 0);
  EXPECT_EQ(reader.GetClassSize(3), 0);
  EXPECT_EQ(reader.CurrentReader(), nullptr);
}

TEST_F(MetricReadView, FileDeletedAfterTheScanDropsOutOfTheView) {
  ScopedScriptedUi ui;
  MetricRead reader;
  const int p1 = IndexOf(reader, "P1");
  const int p2 = IndexOf(reader, "P2");
  reader.SetDataMode(1, p1, 0);  // P2 gets a reader
  ASSERT_TRUE(QFile::remove(reader.GetDatabaseFilename(p2)));
  ASSERT_TRUE(QFile::remove(reader.GetDatabaseFilename(IndexOf(reader, "P4"))));
  reader.SetDataMode(7, p1, 0);
  EXPECT_EQ(reader.DatabaseCount(), 6);
  EXPECT_EQ(reader.IncludedCount(), 4);
  ExpectColumn(reader.GetValues(1002), {7, 100, 0, 50});
  EXPECT_EQ(reader.GridRowToQVZDatabase(3), IndexOf(reader, "P3"));
  EXPECT_TRUE(ui.ui.messages.empty());

  reader.SetDataMode(8, 0, 0);
  EXPECT_EQ(reader.IncludedCount(), 0);
  for (int i = 1; i <= reader.DatabaseCount(); ++i) EXPECT_EQ(reader.Database(i).Reader, nullptr);
}

TEST_F(AccessTest, WithoutDataTheViewsHaveMadeUpShapes) {
  MetricRead reader;
  ASSERT_EQ(reader.DatabaseCount(), 0);
  reader.SetDataState(1);
  EXPECT_EQ(reader.GetClassSize(2), 150);
  EXPECT_EQ(reader.GetClassSize(0), 50);
  QStringList names;
  std::vector<int32_t> order;
  reader.GetRowHeaders(names, 2, order);
  ASSERT_EQ(names.size(), 150);
  EXPECT_EQ(names.front(), "1 Class");
  EXPECT_EQ(names.back(), "150 Class");
  EXPECT_EQ(order.back(), 150);
  reader.GetRowHeaders(names, 0, order);
  EXPECT_EQ(names.value(49), "50 Project");
  EXPECT_TRUE(reader.MetricAvailable(1002));
  EXPECT_FALSE(reader.MetricAvailable(1003));  // not in the catalogue
  EXPECT_FALSE(reader.MetricAvailable(1001));
  ExpectColumn(reader.GetValues(3001), Column(150, 0.0));

  reader.SetDataState(0);
  EXPECT_EQ(reader.GetClassSize(2), 0);
  reader.GetRowHeaders(names, 2, order);
  EXPECT_TRUE(names.isEmpty());
  EXPECT_TRUE(order.empty());
  EXPECT_FALSE(reader.MetricAvailable(1002));
  EXPECT_EQ(reader.GetItemFilename(1, 1), "");
}

}  // namespace
}  // namespace ombrelle
