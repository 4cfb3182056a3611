// Databases written by MetricSave and read back by QVZRead: the same names,
// each row with its own values, and a checksum that verifies.
#include <map>

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "core/MetricSave.h"
#include "core/QVZRead.h"
#include "stats/CStats.h"
#include "support/DateValue.h"
#include "support/ScriptedUiServices.h"
#include "support/SettingsStore.h"

namespace ombrelle {
namespace {

struct SeriesPlan {
  MetricId id;
  std::vector<double> values;  // in the order of the names given
};

struct ClassPlan {
  int classNr;
  int32_t itemCount;
  QStringList names;
  std::vector<SeriesPlan> series;
};

class MetricSaveRoundTrip : public ::testing::Test {
 protected:
  void SetUp() override { DeleteSettingsTree(QStringLiteral("Databases")); }

  QString Write(const std::vector<ClassPlan>& plan) {
    const QString path = m_dir.filePath(QStringLiteral("round.qvz"));
    MetricSave save;
    EXPECT_TRUE(save.SaveDatabase(path, QStringLiteral("Round trip \u00e9\u03a9"),
                                  QStringLiteral("/src/app.vbp"),
                                  DateSerial(2024, 5, 6) + TimeSerial(7, 8, 9)));
    for (const ClassPlan& c : plan) {
      save.AddClass(c.classNr, c.itemCount, c.names);
      for (const SeriesPlan& s : c.series) save.AddMetricToClass(s.id);
      save.ClassDone();
    }
    EXPECT_TRUE(save.SaveClasses());
    for (const ClassPlan& c : plan) {
      for (const SeriesPlan& s : c.series) {
        CStats stats;
        stats.Init(static_cast<int32_t>(s.values.size()));
        for (double v : s.values) stats.AddValue(v);
        EXPECT_TRUE(save.SaveSeries(stats));
      }
    }
    EXPECT_TRUE(save.Close());
    return path;
  }

  QTemporaryDir m_dir;
  ScopedScriptedUi m_ui;
};

// Every row of every class reads back under its name with its values.
void ExpectSameRows(QVZRead& reader, const ClassPlan& c, const QStringList& expectedNames) {
  SCOPED_TRACE(c.classNr);
  QStringList names;
  std::vector<int32_t> order;
  reader.GetRowHeaders(c.classNr, names, order);
  EXPECT_EQ(names, expectedNames);
  ASSERT_EQ(order.size(), static_cast<size_t>(c.itemCount));
  for (int32_t i = 0; i < c.itemCount; ++i) EXPECT_EQ(order[i], i + 1) << "stored sorted";
  for (const SeriesPlan& s : c.series) {
    SCOPED_TRACE(s.id);
    CStats stats;
    ASSERT_TRUE(reader.ReadSeries(s.id, stats, 0));
    ASSERT_EQ(stats.count(), static_cast<int32_t>(s.values.size()));
    // The value of each name as given; names are unique in these plans.
    std::map<QString, double> given;
    for (qsizetype r = 0; r < c.names.size(); ++r) given[c.names[r]] = s.values[r];
    for (int32_t row = 1; row <= stats.count(); ++row)
      EXPECT_EQ(stats.ValueAtIndex(row), given.at(names[row - 1])) << row;
  }
}

TEST_F(MetricSaveRoundTrip, EveryEncodingAndClassShapeReadsBack) {
  const std::vector<ClassPlan> plan = {
      {0, 1, {"app"}, {{1002, {98765}}, {1112, {1.25}}}},
      {1,
       5,
       {"main.c", "Util.c", "io.c", "B.c", "zeta.c"},
       {{2001, {120, 30000, 7, 310, 1}},                // 16-bit
        {2012, {3e9, 1, 2, 3, 4}},                      // double: beyond 32 bits
        {2013, {-70000, 5, 6, 7, 8}},                   // 32-bit
        {2014, {9, 8, 7, 6, 5}},                        // byte
        {2020, {4, 4, 4, 4, 4}},                        // constant
        {2015, {0.5, 0.125, 0.75, 0.0, 1.0}},           // double by format
        {2031, {45000, 45100, 45200, 45300, 45400}}}},  // a date in 32 bits
      {2, 0, {}, {{3001, {}}}},                         // empty class
      {3, 1, {"only"}, {{4001, {17}}}},                 // one row
  };
  const QString path = Write(plan);
  EXPECT_TRUE(m_ui.ui.messages.empty());

  QVZRead reader;
  DatabaseHeader header;
  ASSERT_TRUE(reader.ReadHeader(path, header, true, true)) << "checksum";
  QString error;
  ASSERT_TRUE(reader.Opendatabase(path, error)) << error.toStdString();
  EXPECT_EQ(reader.Title(), QStringLiteral("Round trip \u00e9\u03a9"));
  EXPECT_EQ(reader.ProjectFilename(), QStringLiteral("/src/app.vbp"));
  EXPECT_EQ(reader.GetAnalysisDate(), DateSerial(2024, 5, 6) + TimeSerial(7, 8, 9));
  EXPECT_EQ(reader.GetClassSize(4), 0);
  EXPECT_FALSE(reader.Slot(4).Present);

  ExpectSameRows(reader, plan[0], {"app"});
  ExpectSameRows(reader, plan[1], {"B.c", "io.c", "main.c", "Util.c", "zeta.c"});
  ExpectSameRows(reader, plan[2], {});
  ExpectSameRows(reader, plan[3], {"only"});

  double value = 0;
  EXPECT_TRUE(reader.ReadValueForRow(2001, QStringLiteral("util.c"), value));
  EXPECT_EQ(value, 30000);
  EXPECT_TRUE(reader.ReadSingleValue(1002, value));
  EXPECT_EQ(value, 98765);
}

TEST_F(MetricSaveRoundTrip, NamesInEitherEncodingReadBack) {
  struct Case {
    const char* what;
    QStringList names;
    QStringList read;  // in file order
  };
  const std::vector<Case> cases = {
      {"unsorted ANSI", {"gamma", "Alpha", "beta"}, {"Alpha", "beta", "gamma"}},
      {"sorted ANSI", {"Alpha", "beta", "gamma"}, {"Alpha", "beta", "gamma"}},
      {"1252 letters",
       {QStringLiteral("\u20acuro"), QStringLiteral("na\u00efve"), QStringLiteral("\u00c4rger")},
       {QStringLiteral("na\u00efve"), QStringLiteral("\u00c4rger"), QStringLiteral("\u20acuro")}},
      {"UTF-8", {"~~~", "~", "~~"}, {"~", "~~", "~~~"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const ClassPlan plan = {1, 3, c.names, {{2001, {1, 2, 3}}}};
    const QString path = Write({plan});
    QVZRead reader;
    QString error;
    ASSERT_TRUE(reader.Opendatabase(path, error)) << error.toStdString();
    ExpectSameRows(reader, plan, c.read);
  }
}

// A character that the ANSI code page lacks does not survive in a row name:
// the block goes out in ANSI and the character becomes "?".
TEST_F(MetricSaveRoundTrip, CharactersOutsideTheCodePageBecomeQuestionMarks) {
  const QString path = Write({{1, 2, {QStringLiteral("\u03a9.c"), "a.c"}, {{2001, {5, 6}}}}});
  QVZRead reader;
  QString error;
  ASSERT_TRUE(reader.Opendatabase(path, error)) << error.toStdString();
  QStringList names;
  std::vector<int32_t> order;
  reader.GetRowHeaders(1, names, order);
  EXPECT_EQ(names, (QStringList{"a.c", "?.c"}));
  CStats stats;
  ASSERT_TRUE(reader.ReadSeries(2001, stats, 0));
  EXPECT_EQ(stats.ValueAtIndex(1), 6);
  EXPECT_EQ(stats.ValueAtIndex(2), 5);
}

}  // namespace
}  // namespace ombrelle
