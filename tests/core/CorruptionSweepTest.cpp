// Damaged databases: every truncation of a small valid file and byte flips in
// every header, class record, block head and series header. Each case must end
// in one of the reader's own messages or in a file that reads completely, with
// no fault, no hang and no memory beyond what the file can back.
#include <sys/resource.h>

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "common/QvzFixture.h"
#include "common/QvzRobustness.h"
#include "core/MetricReadTestSupport.h"
#include "core/QVZRead.h"
#include "stats/CStats.h"
#include "support/ScriptedUiServices.h"

namespace ombrelle {
namespace {

using test::QvzFixture;

// Every outcome of a failed open: the errorText patterns, and the patterns of
// the boxes shown on the way. `P` stands for the file's path.
const QStringList kErrorPatterns = {
    QStringLiteral("Database header verification failed\\."),
    QStringLiteral("Metrics database file corrupted\\. Negative Length at byte \\d+"),
    QStringLiteral("Metrics database file too short\\. Possibly corrupted\\. Reading byte: \\d+"),
    QStringLiteral("Invalid file size\\."),
    QStringLiteral("Metrics database file includes an unsupported metrics class: "
                   "TQVZMetricClass\\(\\d+\\)\\.ClassNr = -?\\d+\\."),
    QStringLiteral("Metrics database file corrupted: TQVZMetricClass\\(\\d+\\)\\.ItemCount is "
                   "negative\\."),
    QStringLiteral("SeriesHeader\\.Count<0 at byte \\d+"),
    QStringLiteral("SeriesHeader\\.Count too large at byte \\d+"),
    QStringLiteral("Metrics database file too long\\. Expected: \\d+ bytes, not \\d+\\."),
    QStringLiteral("Metrics database file too short\\. Expected: \\d+ bytes, not \\d+\\."),
    // The negative SeriesCount is told in a box and leaves the text empty.
    QString(),
};
const QStringList kBoxPatterns = {
    QStringLiteral("Metrics database file too short:\r\nP"),
    QStringLiteral("Invalid metrics database file format:\r\nP"),
    QStringLiteral("Metrics database file version \\([^)]*\\) not supported:\r\nP"),
    QStringLiteral("Invalid metrics database file checksum:\r\nP"),
    QStringLiteral("Metrics database file corrupted: TQVZMetricClass\\(\\d+\\)\\.SeriesCount is "
                   "negative\\."),
};

// The patterns compiled once, with the path put in for `P`.
class Patterns {
 public:
  Patterns(const QStringList& patterns, const QString& path) {
    for (QString pattern : patterns) {
      pattern.replace(QStringLiteral("\r\nP"),
                      QStringLiteral("\r\n") + QRegularExpression::escape(path));
      m_compiled.emplace_back(QRegularExpression::anchoredPattern(pattern));
    }
  }
  bool MatchesOne(const QString& text) const {
    for (const QRegularExpression& pattern : m_compiled)
      if (pattern.match(text).hasMatch()) return true;
    return false;
  }

 private:
  std::vector<QRegularExpression> m_compiled;
};

long PeakRssKb() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

// Runs the cases of one sample and checks every outcome.
class CorruptionSweep {
 public:
  explicit CorruptionSweep(const QString& path)
      : m_path(path), m_errors(kErrorPatterns, path), m_boxes(kBoxPatterns, path) {}

  // One damaged file: opens it, and reads everything when it opens.
  void Run(const QByteArray& bytes, const std::string& what) {
    // A new file each time: truncating and rewriting one makes the file
    // system flush it to disk at every close.
    QFile::remove(m_path);
    QvzFixture::WriteBytes(m_path, bytes);
    ScopedScriptedUi scripted;
    {
      // The check of the list scan: header and checksum alone.
      QVZRead header;
      DatabaseHeader read;
      header.ReadHeader(m_path, read, true, true);
    }
    QVZRead reader;
    QString errorText;
    const bool opened = reader.Opendatabase(m_path, errorText);
    if (opened) {
      ++m_opened;
      EXPECT_TRUE(errorText.isEmpty()) << what;
      const test::ReadAllTally tally = test::ReadWholeDatabase(reader, false);
      // Nothing the reader delivers may be longer than the file can back.
      EXPECT_LE(tally.longestColumn, bytes.size() + 1) << what;
      EXPECT_LE(tally.mostRows, bytes.size() + 1) << what;
      m_valuesRead += tally.valuesRead;
      QString title, project;
      double date = 0;
      reader.GetProjectInfo(title, project, date);
      (void)reader.GetSavedBy();
      (void)reader.GetSavedDate();
      (void)reader.GetVersionText();
    } else {
      ++m_refused;
      // Counted by the text before its first number.
      static const QRegularExpression digit(QStringLiteral("\\d"));
      ++m_outcomes[errorText.left(errorText.indexOf(digit)).toStdString()];
      EXPECT_TRUE(m_errors.MatchesOne(errorText)) << what << ": " << errorText.toStdString();
      EXPECT_FALSE(reader.IsFileOpen()) << what;
    }
    for (const QString& box : scripted.ui.MessageTexts())
      EXPECT_TRUE(m_boxes.MatchesOne(box)) << what << ": " << box.toStdString();
    for (const auto& message : scripted.ui.messages) EXPECT_EQ(message.style, 48) << what;
  }

  int m_opened = 0;
  int m_refused = 0;
  int64_t m_valuesRead = 0;
  std::map<std::string, int> m_outcomes;

 private:
  QString m_path;
  Patterns m_errors;
  Patterns m_boxes;
};

// One field of a fixed record, and whether it steers the structure (counts,
// sizes, kinds, numbers) or only carries text or a value.
struct Field {
  qint64 from = 0;
  qint64 to = 0;
  bool structural = true;
};

// The fields of the fixed records of a valid file, found by opening it: the
// header, the class table, the block heads (version 3) and every series
// header.
std::vector<Field> FixedRecords(const QString& path) {
  QVZRead reader;
  QString errorText;
  EXPECT_TRUE(reader.Opendatabase(path, errorText)) << errorText.toStdString();
  const QByteArray bytes = QvzFixture::ReadBytes(path);
  const qint64 classTable = kHeaderSize;
  std::vector<Field> fields = {
      {0, 16, true},             // magic, version, flags
      {16, 230, false},          // title
      {230, 262, true},          // checksum
      {262, 486, false},         // reserved, project file name
      {486, kHeaderSize, true},  // saved by, dates, stamp, class count
      {classTable, classTable + kClassRecordSize * reader.ClassOrderCount(), true},
  };
  if (reader.IsVersion3()) {
    qint64 head = reader.RowNamesStart() - 1;
    while (head < reader.SeriesStart() - 1) {
      fields.push_back({head, head + kRowBlockHeadSize, true});
      head += kRowBlockHeadSize + GetInt32(bytes.constData() + head);
    }
  }
  for (int k = 1; k <= reader.ClassOrderCount(); ++k) {
    for (qint64 position : reader.Slot(reader.ClassOrderAt(k)).SeriesPositions) {
      const qint64 s = position - 1;
      fields.push_back({s, s + 4, true});                        // Count
      fields.push_back({s + 4, s + 60, false});                  // mean to Q95
      fields.push_back({s + 60, s + 62, true});                  // ValueSize, ValueKind
      fields.push_back({s + 62, s + kSeriesHeaderSize, false});  // reserved
    }
  }
  return fields;
}

void Sweep(const QByteArray& valid, int minOpened) {
  QTemporaryDir dir;
  ASSERT_TRUE(dir.isValid());
  const QString original = dir.filePath(QStringLiteral("valid.qvz"));
  QvzFixture::WriteBytes(original, valid);
  const std::vector<Field> fields = FixedRecords(original);
  ASSERT_GT(fields.size(), 6u);
  CorruptionSweep sweep(dir.filePath(QStringLiteral("damaged.qvz")));
  const long rssBefore = PeakRssKb();
  const auto start = std::chrono::steady_clock::now();

  // The valid file itself reads completely.
  sweep.Run(valid, "valid file");
  ASSERT_EQ(sweep.m_opened, 1);
  ASSERT_GT(sweep.m_valuesRead, 0);

  // Every truncation, from nothing to one byte short.
  for (qsizetype length = 0; length < valid.size(); ++length)
    sweep.Run(valid.left(length), "truncated to " + std::to_string(length));

  // Flips of every byte of every fixed record: in fields that steer the
  // structure all bits, the sign bit and the lowest bit; elsewhere all bits.
  int flips = 0;
  std::vector<bool> inRecord(valid.size(), false);
  for (const Field& field : fields) {
    for (qint64 i = field.from; i < field.to; ++i) {
      inRecord[i] = true;
      for (const uint8_t mask : {0xFF, 0x80, 0x01}) {
        QByteArray damaged = valid;
        damaged[i] = static_cast<char>(damaged[i] ^ mask);
        sweep.Run(damaged, "byte " + std::to_string(i) + " ^ " + std::to_string(mask));
        ++flips;
        if (!field.structural) break;
      }
    }
  }
  // Every other byte (ids, row text, values) once.
  for (qsizetype i = 0; i < valid.size(); ++i) {
    if (inRecord[i]) continue;
    QByteArray damaged = valid;
    damaged[i] = static_cast<char>(damaged[i] ^ 0xA5);
    sweep.Run(damaged, "byte " + std::to_string(i) + " ^ 0xA5");
  }

  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  EXPECT_GT(flips, kHeaderSize);
  EXPECT_GE(sweep.m_opened, minOpened);
  EXPECT_GT(sweep.m_refused, valid.size());
  // Every way of refusing the file the damage can reach is met at least once.
  EXPECT_GE(sweep.m_outcomes.size(), 5u);
  // A hang or a huge allocation would show here.
  EXPECT_LT(seconds, 120.0);
  EXPECT_LT(PeakRssKb() - rssBefore, 256 * 1024L);
}

TEST(CorruptionSweepTest, Version3EveryTruncationAndFlip) {
  Sweep(test::RobustnessSampleVersion3().Build(), 200);
}

TEST(CorruptionSweepTest, Version2EveryTruncationAndFlip) {
  Sweep(test::RobustnessSampleVersion2().Build(), 200);
}

// A file as the program's own writer makes it.
TEST(CorruptionSweepTest, WrittenFileEveryTruncationAndFlip) {
  ScopedScriptedUi scripted;
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("written.qvz"));
  test::SaveSpec spec{QStringLiteral("Written"), QStringLiteral("/src/app.vbp"), 45000.25, {}};
  spec.classes = {
      {0, {"app"}, {{1002, {1200}}, {1100, {90}}}},
      {1,
       {"b.c", "a.c", "c.h"},
       {{2012, {10, 600, 0}}, {2013, {2, 2, 2}}, {2014, {8, 0.5, -1}}, {2100, {5, 7, 70000}}}},
      {3, {"main", QStringLiteral("r\u00e4kna")}, {{4080, {1, -3}}}},
  };
  ASSERT_TRUE(test::WriteSave(path, spec));
  EXPECT_TRUE(scripted.ui.messages.empty());
  Sweep(QvzFixture::ReadBytes(path), 200);
}

}  // namespace
}  // namespace ombrelle
