#include <algorithm>
#include <cmath>
#include <iostream>
#include <memory>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "SampleGenerator.h"
#include "SampleWriter.h"
#include "core/QVZRead.h"
#include "stats/CStats.h"
#include "support/DateValue.h"

namespace ombrelle::samples {
namespace {

QByteArray FileBytes(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The whole set is written once for the suite, into a temporary folder.
class SampleDatabases : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    s_folder = std::make_unique<QTemporaryDir>();
    QElapsedTimer timer;
    timer.start();
    s_written = WriteAllSamples(s_folder->path());
    std::cout << "Wrote " << s_written.size() << " sample databases in " << timer.elapsed()
              << " ms\n";
  }
  static void TearDownTestSuite() { s_folder.reset(); }

  static std::unique_ptr<QTemporaryDir> s_folder;
  static QStringList s_written;
};

std::unique_ptr<QTemporaryDir> SampleDatabases::s_folder;
QStringList SampleDatabases::s_written;

TEST_F(SampleDatabases, EverySaveOfEveryProjectIsWritten) {
  QStringList expected;
  for (const SampleProject& p : SampleProjects())
    for (int save = 0; save < static_cast<int>(p.Saves.size()); ++save)
      expected << QDir(s_folder->path()).filePath(SampleFileName(p, save));
  EXPECT_EQ(s_written, expected);
  EXPECT_EQ(s_written.size(), 21);
  EXPECT_EQ(QFileInfo(s_written.first()).fileName(), QStringLiteral("2024-01-16 Billing.qvz"));
}

TEST_F(SampleDatabases, ASecondRunWritesTheSameBytesAndRemovesStaleFiles) {
  QTemporaryDir again;
  QFile stale(again.filePath(QStringLiteral("2020-01-01 Old.qvz")));
  ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
  stale.close();
  const QStringList written = WriteAllSamples(again.path());
  ASSERT_EQ(written.size(), s_written.size());
  EXPECT_FALSE(stale.exists());
  for (qsizetype i = 0; i < written.size(); ++i) {
    const QByteArray first = FileBytes(s_written[i]);
    ASSERT_GT(first.size(), 554);
    EXPECT_TRUE(first == FileBytes(written[i])) << written[i].toStdString();
  }
}

TEST_F(SampleDatabases, TheBuildPutTheSameDatabasesBesideTheProgram) {
  const QDir built(QStringLiteral(OMBRELLE_BUILD_DIR "/sample"));
  ASSERT_TRUE(built.exists()) << "the build writes build/sample";
  EXPECT_EQ(built.entryList({QStringLiteral("*.qvz")}, QDir::Files, QDir::Name).size(),
            s_written.size());
  for (const QString& path : s_written)
    EXPECT_TRUE(FileBytes(path) == FileBytes(built.filePath(QFileInfo(path).fileName())))
        << path.toStdString();
}

bool InsideRange(const MetricRange& range, double v) {
  const double eps = 1e-9;
  if (range.LowKind == BoundClosed && v < range.Low - eps) return false;
  if (range.LowKind == BoundOpen && v <= range.Low) return false;
  if (range.HighKind == BoundClosed && v > range.High + eps) return false;
  if (range.HighKind == BoundOpen && v >= range.High) return false;
  return true;
}

std::vector<double> SortedValues(const CStats& stats) {
  std::vector<double> values;
  for (int32_t i = 1; i <= stats.count(); ++i) values.push_back(stats.ValueAtIndex(i));
  std::sort(values.begin(), values.end());
  return values;
}

// Every sample opens with its checksum, header, classes and series
// summaries; its stored columns read back as generated; and every metric the
// catalogue names, stored or derived, lies in its theoretical range.
TEST_F(SampleDatabases, EverySampleReadsBackAndEveryMetricStaysInItsRange) {
  const MetricDefinitions definitions;
  qsizetype next = 0;
  for (const SampleProject& p : SampleProjects()) {
    const SampleGenerator generator(p);
    for (int save = 0; save < static_cast<int>(p.Saves.size()); ++save) {
      const SampleDatabase db = generator.Generate(save);
      const QString path = s_written.at(next++);
      SCOPED_TRACE(path.toStdString());
      QVZRead reader;
      DatabaseHeader header;
      ASSERT_TRUE(reader.ReadHeader(path, header, false, true)) << "checksum verifies";
      QString error;
      ASSERT_TRUE(reader.Opendatabase(path, error)) << error.toStdString();
      EXPECT_EQ(reader.Title(), db.Title);
      EXPECT_EQ(reader.ProjectFilename(), db.Project);
      EXPECT_NEAR(reader.GetAnalysisDate(), db.AnalysisDate, 0.5 / 86400);
      EXPECT_EQ(reader.GetSavedDate(), DateToQDate(db.AnalysisDate).toString(Qt::ISODate));
      const QByteArray bytes = FileBytes(path);
      for (const SampleTable& table : db.Tables) {
        const ClassSlot& slot = reader.Slot(table.ClassNr);
        ASSERT_TRUE(slot.Present);
        EXPECT_EQ(slot.ItemCount, table.RowCount());
        ASSERT_EQ(slot.MetricIds.size(), table.Series.size());
        for (size_t k = 0; k < table.Series.size(); ++k) {
          const SampleSeries& series = table.Series[k];
          EXPECT_EQ(slot.MetricIds[k], series.Id);
          const SeriesHeader h =
              SeriesHeader::Decode(bytes.constData() + slot.SeriesPositions[k] - 1);
          ASSERT_EQ(h.Count, static_cast<int32_t>(series.Values.size()));
          std::vector<double> expected = series.Values;
          std::sort(expected.begin(), expected.end());
          CStats stats;
          ASSERT_TRUE(reader.ReadSeries(series.Id, stats, 0)) << series.Id;
          ASSERT_EQ(SortedValues(stats), expected) << series.Id;
          if (expected.empty()) continue;
          EXPECT_EQ(h.Min, expected.front()) << series.Id;
          EXPECT_EQ(h.Max, expected.back()) << series.Id;
          EXPECT_NEAR(h.Mean, table.Mean(series.Id), 1e-9 * std::max(1.0, std::fabs(h.Mean)));
        }
      }
      // Days passed and the count of module-level variables come from the
      // access layer, not from a file. The specialization ratio is undefined,
      // and read as 0, in a project without superclasses.
      const bool superclasses = db.Table(0)->Sum(1400) > db.Table(0)->Sum(1402);
      for (MetricId id = kFirstMetricId; id <= kLastMetricId; ++id) {
        if (!definitions.MetricSupported(id) || id == 1001 || id == 1207 ||
            (id == 1421 && !superclasses))
          continue;
        CStats stats;
        ASSERT_TRUE(reader.ReadSeries(id, stats, 0)) << id;
        const MetricRange range = definitions.GetMetricRange(id);
        for (double v : SortedValues(stats)) ASSERT_TRUE(InsideRange(range, v)) << id << " " << v;
      }
    }
  }
}

TEST_F(SampleDatabases, DerivedPercentagesOfTheLargestSampleAreSensible) {
  QVZRead reader;
  QString error;
  ASSERT_TRUE(reader.Opendatabase(s_written.last(), error)) << error.toStdString();
  struct Case {
    MetricId id;
    double low, high;  // the project's value
  };
  // Code about two thirds of the lines, comments rising to a fifth, a
  // sixth of lines blank, most statements executable.
  const Case cases[] = {{1012, 0.55, 0.8},  {1013, 0.1, 0.25}, {1014, 0.08, 0.25},
                        {1016, 0.12, 0.35}, {1110, 0.5, 0.95}, {1111, 0.1, 0.4},
                        {1230, 0.01, 0.1},  {1420, 0.2, 0.8},  {1421, 1.0, 5.0}};
  for (const Case& c : cases) {
    double value = 0;
    ASSERT_TRUE(reader.ReadSingleValue(c.id, value)) << c.id;
    EXPECT_GE(value, c.low) << c.id;
    EXPECT_LE(value, c.high) << c.id;
  }
}

}  // namespace
}  // namespace ombrelle::samples
