#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include <QDate>
#include <QFile>
#include <QTemporaryDir>

#include "common/QvzFixture.h"
#include "core/QVZRead.h"

using namespace ombrelle;
using namespace ombrelle::test;

namespace {

using Column = std::vector<double>;

Column Values(const CStats& s) {
  Column out;
  for (std::int32_t i = 1; i <= s.count(); ++i) out.push_back(s.ValueAtIndex(i));
  return out;
}

void ExpectColumn(const Column& got, const Column& expected, const std::string& what) {
  ASSERT_EQ(got.size(), expected.size()) << what;
  for (size_t i = 0; i < got.size(); ++i) EXPECT_DOUBLE_EQ(got[i], expected[i]) << what << " " << i;
}

// A single stored value (Count 1, served from its Mean).
SeriesSpec One(int32_t metric, double value) { return SeriesSpec::Stored(metric, 3, {value}); }

// A small analysis with stored primary metrics in four classes, for the
// derived metrics of each formula shape.
QvzFixture SampleProject() {
  QvzFixture f;
  f.flags = 2;  // UTF-8, rows not sorted
  ClassSpec& project = f.AddClass(0, 1);
  project.rowNames = {"sample"};
  for (const auto& [metric, value] : std::vector<std::pair<int32_t, double>>{{1009, 100},
                                                                             {1010, 20},
                                                                             {1011, 30},
                                                                             {1201, 4},
                                                                             {1202, 5},
                                                                             {1203, 6},
                                                                             {1206, 2},
                                                                             {1221, 1},
                                                                             {1222, 2},
                                                                             {1223, 3},
                                                                             {1400, 10},
                                                                             {1401, 4},
                                                                             {1402, 5}})
    project.series.push_back(One(metric, value));

  ClassSpec& files = f.AddClass(1, 3);
  files.rowNames = {"b.c", "A.c", "c.c"};
  files.series.push_back(SeriesSpec::Stored(2012, 2, {10, 6, 0}));
  files.series.push_back(SeriesSpec::Stored(2013, 1, {2, 2, 0}));
  files.series.push_back(SeriesSpec::Stored(2014, 0, {8, 0, 0}));
  files.series.push_back(SeriesSpec::Stored(2100, 3, {5, 7, 0}));

  ClassSpec& procs = f.AddClass(3, 3);
  procs.rowNames = {"p", "q", "r"};
  procs.series.push_back(SeriesSpec::Stored(4080, 3, {1, 2, 3}));
  procs.series.push_back(SeriesSpec::Stored(4081, 3, {4, 5, 5}));
  procs.series.push_back(SeriesSpec::Stored(4100, 3, {1, 2, 3}));  // 4101 is missing
  procs.series.push_back(SeriesSpec::Stored(4142, 3, {3, 9, 4}));
  procs.series.push_back(SeriesSpec::Stored(4161, 3, {1, 1, 1}));
  // Stored although it has a formula (SC + DC would give 5, 10, 1).
  procs.series.push_back(SeriesSpec::Stored(4162, 2, {100, 200, 300}));
  procs.series.push_back(SeriesSpec::Stored(4201, 3, {2, 3, 0}));

  ClassSpec& vars = f.AddClass(4, 2);
  vars.rowNames = {"v", "w"};
  vars.series.push_back(SeriesSpec::Stored(5001, 3, {4, 0}));
  vars.series.push_back(SeriesSpec::Stored(5002, 3, {3, 1}));
  return f;
}

class QVZReadSeriesTest : public ::testing::Test {
 protected:
  void Open(const QvzFixture& f) {
    m_path = f.Write(m_dir.filePath("db.qvz"), &m_layout);
    QString errorText;
    ASSERT_TRUE(m_reader.Opendatabase(m_path, errorText)) << errorText.toStdString();
  }
  Column Read(MetricId metric, int32_t expectedCount = 0) {
    CStats s;
    EXPECT_TRUE(m_reader.ReadSeries(metric, s, expectedCount)) << metric;
    return Values(s);
  }

  QTemporaryDir m_dir;
  QString m_path;
  FixtureLayout m_layout;
  QVZRead m_reader;
};

}  // namespace

TEST_F(QVZReadSeriesTest, ReadsEveryValueKind) {
  QvzFixture f;
  ClassSpec& files = f.AddClass(1, 5);
  files.series.push_back(SeriesSpec::Stored(2001, 0, {1.5, -2.25, 3, 1e10, 0}));
  files.series.push_back(SeriesSpec::Stored(2002, 1, {70000, -5, 3, -2147483648.0, 2147483647}));
  files.series.push_back(SeriesSpec::Stored(2003, 2, {-300, 2, 1, -32768, 32767}));
  files.series.push_back(SeriesSpec::Stored(2004, 3, {0, 255, 7, 1, 2}));
  files.series.push_back(SeriesSpec::Constant(2005, 5, 7));
  SeriesSpec old = SeriesSpec::Stored(2006, 0, {1, 2, 3, 4, 5});
  old.valueSize = 0;  // files from before the compact kinds: both zero
  files.series.push_back(old);
  SeriesSpec single = SeriesSpec::Stored(2008, 0, {99});
  single.mean = 4;  // one value is served from the header's mean
  files.series.push_back(single);
  files.series.push_back(SeriesSpec::Constant(2009, 0, 5));
  Open(f);

  const std::vector<std::pair<MetricId, Column>> cases = {
      {2001, {1.5, -2.25, 3, 1e10, 0}},
      {2002, {70000, -5, 3, -2147483648.0, 2147483647}},
      {2003, {-300, 2, 1, -32768, 32767}},
      {2004, {0, 255, 7, 1, 2}},
      {2005, {7, 7, 7, 7, 7}},
      {2006, {1, 2, 3, 4, 5}},
      {2008, {4}},
      {2009, {}},
  };
  for (const auto& [metric, expected] : cases) {
    ExpectColumn(Read(metric), expected, std::to_string(metric));
    EXPECT_TRUE(m_reader.MetricStored(metric)) << metric;
  }
}

TEST_F(QVZReadSeriesTest, UnknownValueKindReadsAsAbsent) {
  QvzFixture f;
  ClassSpec& files = f.AddClass(1, 2);
  SeriesSpec broken = SeriesSpec::Stored(2001, 3, {1, 2});
  broken.valueKind = 9;
  files.series.push_back(broken);
  files.series.push_back(SeriesSpec::Stored(2002, 3, {5, 6}));
  Open(f);
  CStats s;
  EXPECT_FALSE(m_reader.ReadSeries(2001, s, 0));
  EXPECT_FALSE(m_reader.MetricStored(2001));
  double value = 0;
  EXPECT_FALSE(m_reader.ReadSingleValue(2001, value));
  // The walk skipped it by its size: the next series reads right.
  ExpectColumn(Read(2002), {5, 6}, "after kind 9");
  ASSERT_TRUE(m_reader.LoadSeriesHeaders());
  EXPECT_FALSE(m_reader.ReadSingleValue(2001, value));
}

TEST_F(QVZReadSeriesTest, ExpectedCountRefusesOtherLengthsAndTriesTheFormula) {
  QvzFixture f;
  ClassSpec& files = f.AddClass(1, 4);
  files.series.push_back(SeriesSpec::Stored(2011, 3, {1, 1, 1}));  // LLINES, three values only
  files.series.push_back(SeriesSpec::Stored(2012, 3, {1, 2, 3, 4}));
  files.series.push_back(SeriesSpec::Stored(2013, 3, {0, 1, 2, 3}));
  files.series.push_back(SeriesSpec::Stored(2014, 3, {2, 3, 4, 5}));
  files.series.push_back(SeriesSpec::Stored(2020, 3, {1, 2, 3}));  // no formula
  Open(f);
  ExpectColumn(Read(2011, 0), {1, 1, 1}, "stored wins");
  ExpectColumn(Read(2011, 3), {1, 1, 1}, "stored of the expected length");
  ExpectColumn(Read(2011, 4), {3, 6, 9, 12}, "formula of four rows");
  CStats s;
  EXPECT_FALSE(m_reader.ReadSeries(2011, s, 5));
  EXPECT_FALSE(m_reader.ReadSeries(2020, s, 4));
  ExpectColumn(Read(2020, 3), {1, 2, 3}, "no formula");
}

TEST_F(QVZReadSeriesTest, ProjectDateComesFromTheStampUnlessStored) {
  QvzFixture f = QvzFixture::SmallestVersion3();
  f.analysisStamp = "20240131180000";
  Open(f);
  const double expected = QDate(1899, 12, 30).daysTo(QDate(2024, 1, 31)) + 0.75;
  ExpectColumn(Read(1000), {expected}, "stamp");

  QvzFixture stored;
  stored.AddClass(0, 1).series.push_back(One(1000, 45000));
  QVZRead reader;
  QString errorText;
  ASSERT_TRUE(reader.Opendatabase(stored.Write(m_dir.filePath("stored.qvz")), errorText));
  CStats s;
  ASSERT_TRUE(reader.ReadSeries(1000, s, 0));
  ExpectColumn(Values(s), {45000}, "stored");
}

TEST_F(QVZReadSeriesTest, GlobalVariablesCountAsStoredWhenTheVariableClassIsPresent) {
  QvzFixture without = QvzFixture::SmallestVersion3();
  Open(without);
  EXPECT_FALSE(m_reader.MetricStored(1207));

  QvzFixture with = QvzFixture::SmallestVersion3();
  with.AddClass(4, 0);
  QVZRead reader;
  QString errorText;
  ASSERT_TRUE(reader.Opendatabase(with.Write(m_dir.filePath("vars.qvz")), errorText))
      << errorText.toStdString();
  EXPECT_TRUE(reader.MetricStored(1207));
}

TEST_F(QVZReadSeriesTest, SeriesListedUnderAForeignClassAreFoundByTheSeek) {
  QvzFixture f;
  ClassSpec& project = f.AddClass(0, 1);
  project.series.push_back(One(1009, 3));
  project.series.push_back(One(2100, 42));  // a file metric in the project's list
  Open(f);
  EXPECT_FALSE(m_reader.MetricStored(2100));
  EXPECT_TRUE(m_reader.MetricStored(1009));
  ExpectColumn(Read(2100), {42}, "foreign");
  EXPECT_FALSE(m_reader.MetricStored(2101));
}

TEST_F(QVZReadSeriesTest, DerivedColumnsEqualTheHandCalculation) {
  Open(SampleProject());
  const std::vector<std::pair<MetricId, Column>> cases = {
      {1008, {150}},            // LLOC + LLOC' + LLOW
      {1012, {100.0 / 150}},    // LLOC / LLINES
      {2011, {20, 8, 0}},       // per file
      {2015, {0.5, 0.75, 0}},   // a zero divisor gives 0
      {1230, {0.4}},            // DEAD: (1 + 2 + 3) / (4 + 5 + 6)
      {1421, {1.2}},            // S: (10 - 4) / (10 - 5)
      {1285, {0.25}},           // ENUMR: 2 / (2 + 6)
      {1620, {6}},              // sum of IOg over procedures
      {1621, {14}},             // sum of IOp
      {1622, {0.3}},            // IOg%: 6 / (14 + 6)
      {4160, {4, 9, 0}},        // SC: SFOUT squared
      {4162, {100, 200, 300}},  // stored SYSC wins over SC + DC
      {5012, {10, 2}},          // WRITES * 2 + READS
      {1600, {4}},              // TREADS
      {1602, {8}},              // TREADS + TWRITES
      {1603, {0.08}},           // TRW / LLOC
      {1100, {12}},             // STMT summed over files
      {1325, {9}},              // maximum of DCALLT
  };
  for (const auto& [metric, expected] : cases) {
    ExpectColumn(Read(metric), expected, std::to_string(metric));
  }
  // A metric with an absent term is absent itself: 4101 (IFOUT), 2101
  // (STMTd) and 4143 (SCALLT) are not stored.
  for (MetricId absent : {4102, 4103, 1101, 1102, 1104, 1326}) {
    CStats s;
    EXPECT_FALSE(m_reader.ReadSeries(absent, s, 0)) << absent;
  }
}

TEST_F(QVZReadSeriesTest, SummariesComeFromSeriesHeadersAlone) {
  // The value bytes of READS and DCALLT are garbage: 255 in every row. Their
  // headers say count 2, mean 2 and maximum 3 (and 9 for DCALLT); the
  // summaries follow the headers, so no value byte was read for them.
  QvzFixture f;
  f.AddClass(0, 1).series.push_back(One(1009, 1));
  ClassSpec& procs = f.AddClass(3, 2);
  SeriesSpec calls = SeriesSpec::Stored(4142, 3, {255, 255});
  calls.max = 9;
  procs.series.push_back(calls);
  ClassSpec& vars = f.AddClass(4, 2);
  SeriesSpec reads = SeriesSpec::Stored(5001, 3, {255, 255});
  reads.mean = 2;
  reads.max = 3;
  vars.series.push_back(reads);
  Open(f);

  ExpectColumn(Read(5001), {255, 255}, "the values themselves");
  ExpectColumn(Read(1600), {4}, "sum = count x mean of the header");
  ExpectColumn(Read(1325), {9}, "maximum of the header");
  double value = 0;
  ASSERT_TRUE(m_reader.ReadSingleValue(1600, value));
  EXPECT_DOUBLE_EQ(value, 4);
  ASSERT_TRUE(m_reader.ReadSingleValue(1325, value));
  EXPECT_DOUBLE_EQ(value, 9);
}

TEST_F(QVZReadSeriesTest, SingleValuesOfStoredAndDerivedMetrics) {
  Open(SampleProject());
  const std::vector<std::pair<MetricId, double>> cases = {
      {1009, 100},                           // stored: its mean
      {2012, 16.0 / 3},                      // stored column: its mean
      {1008, 150},                           // whole number, one project row: from terms
      {1230, 0.4},                           // DEAD over single values
      {2015, (0.5 + 0.75 + 0) / 3},          // a quotient over several rows: mean of the rows
      {2011, 16.0 / 3 + 4.0 / 3 + 8.0 / 3},  // whole number: formula over the terms' means
      {1600, 4},                             // stored summary
      {1325, 9},
      {4162, 200},  // stored wins
  };
  for (const auto& [metric, expected] : cases) {
    double value = -1;
    ASSERT_TRUE(m_reader.ReadSingleValue(metric, value)) << metric;
    EXPECT_DOUBLE_EQ(value, expected) << metric;
    EXPECT_FALSE(m_reader.IsFileOpen()) << metric;
  }
  double value = 0;
  EXPECT_FALSE(m_reader.ReadSingleValue(4103, value));
  EXPECT_FALSE(m_reader.IsFileOpen());
}

TEST_F(QVZReadSeriesTest, LoadedHeadersServeSingleValuesWithoutTheFile) {
  Open(SampleProject());
  ASSERT_TRUE(m_reader.LoadSeriesHeaders());
  const ClassSlot& files = m_reader.Slot(1);
  ASSERT_TRUE(files.HeadersLoaded);
  ASSERT_EQ(files.SeriesHeaders.size(), 4u);
  EXPECT_EQ(files.SeriesHeaders[0].Count, 3);
  EXPECT_DOUBLE_EQ(files.SeriesHeaders[0].Mean, 16.0 / 3);
  EXPECT_DOUBLE_EQ(files.SeriesHeaders[0].Max, 10);
  EXPECT_EQ(files.SeriesHeaders[0].ValueKind, 2);
  EXPECT_FALSE(m_reader.Slot(2).HeadersLoaded);  // the file has no class 2

  m_reader.CloseDatabaseFile();
  ASSERT_TRUE(QFile::remove(m_path));
  const std::vector<std::pair<MetricId, double>> cases = {{1009, 100}, {1230, 0.4}, {1008, 150},
                                                          {1600, 4},   {1325, 9},   {1622, 0.3}};
  for (const auto& [metric, expected] : cases) {
    double value = -1;
    ASSERT_TRUE(m_reader.ReadSingleValue(metric, value)) << metric;
    EXPECT_DOUBLE_EQ(value, expected) << metric;
  }
  // Values need the file, which is gone: absent, no error.
  CStats s;
  EXPECT_FALSE(m_reader.ReadSeries(2012, s, 0));
  double value = 0;
  EXPECT_FALSE(m_reader.ReadSingleValue(2015, value));
}

TEST_F(QVZReadSeriesTest, ValueForRowFindsTheNameIgnoringCase) {
  Open(SampleProject());
  const std::vector<std::tuple<MetricId, QString, double>> cases = {
      {2012, "a.C", 6}, {2012, "B.C", 10}, {2011, "c.c", 0}, {5002, "W", 1}, {1009, "Sample", 100}};
  for (const auto& [metric, name, expected] : cases) {
    double value = -1;
    ASSERT_TRUE(m_reader.ReadValueForRow(metric, name, value)) << name.toStdString();
    EXPECT_DOUBLE_EQ(value, expected) << name.toStdString();
  }
  double value = 0;
  EXPECT_FALSE(m_reader.ReadValueForRow(2012, "d.c", value));
  EXPECT_FALSE(m_reader.ReadValueForRow(4103, "p", value));
}

TEST_F(QVZReadSeriesTest, ConstantColumnsLongerThanTheClassCanHoldAreRefused) {
  QvzFixture f;
  ClassSpec& files = f.AddClass(1, 2);
  files.rowNames = {"a", "b"};
  files.series.push_back(SeriesSpec::Constant(2001, 2000000000, 1));
  files.series.push_back(SeriesSpec::Constant(2002, 2, 1));
  Open(f);
  CStats s;
  EXPECT_FALSE(m_reader.ReadSeries(2001, s, 0));
  ExpectColumn(Read(2002), {1, 1}, "within the class");
}

TEST_F(QVZReadSeriesTest, OlderFilesStoreDoublesForEveryRow) {
  QvzFixture f;
  f.version = 2.0f;
  ClassSpec& files = f.AddClass(1, 2);
  files.rowNames = {"a.c", "b.c"};
  files.series.push_back(SeriesSpec::Stored(2012, 0, {1.5, 2.5}));
  files.series.push_back(SeriesSpec::Stored(2013, 0, {0.5, 0}));
  Open(f);
  ExpectColumn(Read(2012), {1.5, 2.5}, "LLOC");
  ExpectColumn(Read(2013, 2), {0.5, 0}, "LLOC'");
  double value = 0;
  ASSERT_TRUE(m_reader.ReadValueForRow(2013, "A.C", value));
  EXPECT_DOUBLE_EQ(value, 0.5);
}
