// The list of databases: scanning, order of saves, latest saves, damaged and
// vanished files, file dates, finding first databases, names, combos, lists.

#include <QDate>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include "common/MessageAssertions.h"
#include "common/QvzFixture.h"
#include "core/ListModel.h"
#include "core/MetricRead.h"
#include "core/MetricReadTestSupport.h"
#include "support/FormatNum.h"

namespace ombrelle {
namespace {

using test::AccessTest;
using test::ProjectSave;
using test::QvzFixture;

QStringList Titles(const MetricRead& reader) {
  QStringList titles;
  for (int i = 1; i <= reader.DatabaseCount(); ++i) titles.append(reader.Database(i).Title);
  return titles;
}

QStringList LatestTitles(const MetricRead& reader) {
  QStringList titles;
  for (int i = 1; i <= reader.DatabaseCount(); ++i) {
    if (reader.Database(i).Latest) titles.append(reader.Database(i).Title);
  }
  return titles;
}

QStringList Texts(const ListModel& list) {
  QStringList texts;
  for (int i = 0; i < list.ListCount(); ++i) texts.append(list.List(i));
  return texts;
}

class MetricReadScan : public AccessTest {};

TEST_F(MetricReadScan, OrdersSavesByProjectWithoutCaseThenStampAndMarksLatest) {
  const QString one = Folder(QStringLiteral("one"));
  const QString two = Folder(QStringLiteral("two"));
  Write(one, "1.qvz", ProjectSave("Beta 2", "beta.vbp", DateSerial(2024, 3, 1), {{1002, 30}}));
  Write(one, "2.qvz", ProjectSave("Alpha 1", "Alpha.VBP", DateSerial(2024, 1, 1), {{1002, 10}}));
  Write(one, "3.qvz", ProjectSave("Beta 1", "Beta.vbp", DateSerial(2024, 2, 1), {{1002, 20}}));
  Write(two, "4.qvz", ProjectSave("Alpha 2", "ALPHA.vbp", DateSerial(2024, 1, 15), {{1002, 11}}));
  Write(two, "5.qvz", ProjectSave("Gamma", "gamma.vbp", DateSerial(2023, 12, 1), {{1002, 5}}));
  // The writer put both folders on the search paths.
  ASSERT_EQ(StoredPaths(), QStringList({one, two}));

  ScopedScriptedUi ui;
  MetricRead reader;
  EXPECT_EQ(Titles(reader), QStringList({"Alpha 1", "Alpha 2", "Beta 1", "Beta 2", "Gamma"}));
  EXPECT_EQ(LatestTitles(reader), QStringList({"Alpha 2", "Beta 2", "Gamma"}));
  EXPECT_EQ(reader.Database(1).Path, JoinPath(one, "2.qvz"));
  EXPECT_DOUBLE_EQ(reader.Database(1).AnalysisDate, DateSerial(2024, 1, 1));
  EXPECT_EQ(reader.Database(1).Project, "Alpha.VBP");
  EXPECT_TRUE(ui.ui.messages.empty());
}

struct TieCase {
  const char* name;
  QByteArray savedA, savedB;  // SavedDate of a.qvz and b.qvz
  int minutesA, minutesB;     // file dates, minutes after a fixed time
  QStringList order;          // file names in list order
  QString latest;
};

TEST_F(MetricReadScan, EqualStampsAreDecidedBySavedDateThenFileDateThenPosition) {
  const std::vector<TieCase> cases = {
      {"saved date", "2024-02-02", "2024-02-01", 0, 5, {"b.qvz", "a.qvz"}, "a.qvz"},
      {"file date", "2024-02-01", "2024-02-01", 5, 0, {"b.qvz", "a.qvz"}, "a.qvz"},
      {"position", "2024-02-01", "2024-02-01", 0, 0, {"a.qvz", "b.qvz"}, "b.qvz"},
  };
  const QDateTime base(QDate(2024, 5, 1), QTime(12, 0));
  for (const TieCase& c : cases) {
    SCOPED_TRACE(c.name);
    const QString folder = Folder(QString::fromLatin1(c.name));
    SaveSetting("Databases", "path1", folder);
    for (const auto& [name, saved, minutes] :
         {std::tuple{QStringLiteral("a.qvz"), c.savedA, c.minutesA},
          std::tuple{QStringLiteral("b.qvz"), c.savedB, c.minutesB}}) {
      QvzFixture file = QvzFixture::SmallestVersion3();
      file.projectFilename = QStringLiteral("Same.vbp");
      file.savedDate = saved;
      file.analysisStamp = "20240131120000";
      const QString path = file.Write(JoinPath(folder, name));
      test::SetFileDate(path, base.addSecs(60 * minutes));
    }
    MetricRead reader;
    ASSERT_EQ(reader.DatabaseCount(), 2);
    EXPECT_EQ(FileNameOnly(reader.Database(1).Path), c.order[0]);
    EXPECT_EQ(FileNameOnly(reader.Database(2).Path), c.order[1]);
    const int latest = reader.Database(1).Latest ? 1 : 2;
    EXPECT_NE(reader.Database(1).Latest, reader.Database(2).Latest);
    EXPECT_EQ(FileNameOnly(reader.Database(latest).Path), c.latest);
  }
}

// Damaged files are skipped silently by the scan; named, each says why.
TEST_F(MetricReadScan, ListsTheSoundFilesAndNamedDamagedFilesSayWhy) {
  const QString folder = Folder(QStringLiteral("db"));
  const QDateTime base(QDate(2024, 3, 31), QTime(1, 59, 58, 123));
  int n = 0;
  auto save = [&](const char* name, const char* title) {
    const QString path =
        Write(folder, name, ProjectSave(title, "p.vbp", DateSerial(2024, 1, 1) + n, {}));
    test::SetFileDate(path, base.addSecs(3600 * 7 * n++));
    return path;
  };
  auto damage = [&](const QString& path, int offset, QByteArray bytes) {
    QByteArray file = QvzFixture::ReadBytes(path);
    if (offset < 0) {
      file.truncate(bytes.toInt());
    } else {
      file.replace(offset, bytes.size(), bytes);
    }
    QvzFixture::WriteBytes(path, file);
  };
  save("a.qvz", "Alpha");
  const QString upper = save("B.QVZ", "Bravo");
  const QString checksum = save("c.qvz", "Checksum");
  damage(checksum, 230, QByteArray(1, QvzFixture::ReadBytes(checksum)[230] == '0' ? '1' : '0'));
  const QString magic = save("d.qvz", "Magic");
  damage(magic, 0, "QVZ-XXXX");
  const QString version4 = save("e.qvz", "Four");
  float four = 4.0f;
  damage(version4, 8, QByteArray(reinterpret_cast<const char*>(&four), 4));
  const QString version1 = save("f.qvz", "One");
  float one = 1.0f;
  damage(version1, 8, QByteArray(reinterpret_cast<const char*>(&one), 4));
  const QString shortFile = save("g.qvz", "Short");
  damage(shortFile, -1, "553");
  save("h.qvz", "Hotel");
  QDir(folder).mkdir(QStringLiteral("i.qvz"));
  save(".hidden.qvz", "Hidden");

  ScopedScriptedUi ui;
  MetricRead reader;
  QStringList titles;
  for (int i = 1; i <= reader.DatabaseCount(); ++i) {
    const DatabaseEntry& entry = reader.Database(i);
    titles.append(entry.Title);
    // The date the scan takes from the file's status is the one the file
    // information of the toolkit gives.
    EXPECT_EQ(entry.FileDate, DateFromQDateTime(QFileInfo(entry.Path).lastModified()))
        << entry.Path.toStdString();
    EXPECT_EQ(entry.AnalysisDate, ParseTimestamp14(entry.AnalysisStampText()));
  }
  EXPECT_EQ(titles, QStringList({"Alpha", "Bravo", "Hotel"}));
  EXPECT_EQ(reader.Database(2).Path, upper);
  EXPECT_TRUE(ui.ui.messages.empty());

  const struct {
    QString path;
    std::string message;
  } cases[] = {
      {checksum, "Invalid metrics database file checksum"},
      {magic, "Invalid metrics database file format"},
      {version4, "Metrics database file version (4) not supported"},
      {version1, "Metrics database file version (1) not supported"},
      {shortFile, "Metrics database file too short"},
  };
  for (const auto& c : cases) {
    ScopedScriptedUi named;
    EXPECT_EQ(reader.LocateAndOpenDatabase(c.path, false), 0);
    EXPECT_ONLY_UI_MESSAGE(named.ui, c.message + ":\r\n" + c.path.toStdString(), 48);
  }
  EXPECT_EQ(reader.DatabaseCount(), 3);
  EXPECT_EQ(reader.LocateAndOpenDatabase(upper, false), 2);
}

TEST_F(MetricReadScan, VanishedSearchPathIsSkippedAndOnlyPathKeysCount) {
  const QString here = Folder(QStringLiteral("here"));
  const QString other = Folder(QStringLiteral("other"));
  Write(here, "x.qvz", ProjectSave("Here", "p", DateSerial(2024, 1, 1), {}));
  Write(other, "y.qvz", ProjectSave("Other", "q", DateSerial(2024, 1, 1), {}));
  DeleteSettingsTree("Databases");
  SaveSetting("Databases", "path1", m_dir.filePath("gone"));
  SaveSetting("Databases", "PathX", here);
  SaveSetting("Databases", "SavePath", other);

  ScopedScriptedUi ui;
  MetricRead reader;
  EXPECT_EQ(Titles(reader), QStringList({"Here"}));
  EXPECT_TRUE(ui.ui.messages.empty());
  ListModel paths;
  MetricRead::ListDatabaseSearchPaths(paths);
  QStringList listed = Texts(paths);
  listed.sort();
  EXPECT_EQ(listed, QStringList({m_dir.filePath("gone"), here}));
}

TEST_F(MetricReadScan, LocateScansTheFoldersOfUnknownFilesAndRemembersOnRequest) {
  const QString a = Folder(QStringLiteral("a"));
  const QString b = Folder(QStringLiteral("b"));
  const QString fileA = Write(a, "a.qvz", ProjectSave("A", "p", DateSerial(2024, 1, 1), {}));
  const QString fileB = Write(b, "b.qvz", ProjectSave("B", "p", DateSerial(2024, 1, 2), {}));
  DeleteSettingsTree("Databases");

  MetricRead reader;
  EXPECT_EQ(reader.DatabaseCount(), 0);
  EXPECT_EQ(reader.LocateAndOpenDatabase(fileB, false), 1);
  EXPECT_TRUE(StoredPaths().isEmpty());
  // The new file sorts before the known one; indexes change at each scan.
  EXPECT_EQ(reader.LocateAndOpenDatabase(fileA, true), 1);
  EXPECT_EQ(reader.LocateAndOpenDatabase(fileB, true), 2);
  EXPECT_EQ(StoredPaths(), QStringList({a}));  // b was found without a scan
  EXPECT_TRUE(reader.Database(2).Latest);
  EXPECT_FALSE(reader.Database(1).Latest);
  // A folder is remembered even when the named file is not found in it.
  EXPECT_EQ(reader.LocateAndOpenDatabase(JoinPath(b, "missing.qvz"), true), 0);
  EXPECT_EQ(StoredPaths(), QStringList({a, b}));
  EXPECT_EQ(reader.LocateAndOpenDatabase(m_dir.filePath("nofolder/x.qvz"), true), 0);
  EXPECT_EQ(StoredPaths(), QStringList({a, b}));
}

struct FirstCase {
  bool current, program, sample;
  int found;
  QStringList stored;  // names of the folders that join the search paths
};

TEST_F(MetricReadScan, FindFirstDatabasesLooksInCurrentThenProgramFolderAndSample) {
  const std::vector<FirstCase> cases = {
      {true, true, true, 2, {"cur", "prog/sample"}},
      {false, true, true, 2, {"prog", "prog/sample"}},
      {false, true, false, 1, {"prog"}},
      {true, false, false, 1, {"cur"}},
      {false, false, false, 0, {}},
  };
  int run = 0;
  for (const FirstCase& c : cases) {
    SCOPED_TRACE(run);
    const QString root = Folder(QString::number(++run));
    const QString cur = Folder(QString::number(run) + "/cur");
    const QString prog = Folder(QString::number(run) + "/prog");
    const QString sample = Folder(QString::number(run) + "/prog/sample");
    const auto spec = ProjectSave("T", "p", DateSerial(2024, 1, 1), {});
    if (c.current) Write(cur, "c.qvz", spec);
    if (c.program) Write(prog, "p.qvz", spec);
    if (c.sample) Write(sample, "s.qvz", spec);
    DeleteSettingsTree("Databases");
    MetricRead reader;
    ASSERT_EQ(reader.DatabaseCount(), 0);
    EXPECT_EQ(reader.FindFirstDatabases(cur, prog), c.found);
    EXPECT_EQ(reader.DatabaseCount(), c.found);
    QStringList expected;
    for (const QString& name : c.stored) expected.append(JoinPath(root, name));
    EXPECT_EQ(StoredPaths(), expected);
  }
}

TEST_F(MetricReadScan, FindFirstDatabasesReadsTheSampleFolderOnceWhenStartedInIt) {
  const QString prog = Folder(QStringLiteral("in-sample/prog"));
  const QString sample = Folder(QStringLiteral("in-sample/prog/sample"));
  Write(sample, "s.qvz", ProjectSave("T", "p", DateSerial(2024, 1, 1), {}));
  DeleteSettingsTree("Databases");
  MetricRead reader;
  EXPECT_EQ(reader.FindFirstDatabases(sample, prog), 1);
  EXPECT_EQ(reader.DatabaseCount(), 1);
}

TEST_F(MetricReadScan, NamesDetailsAndTheListOfFiles) {
  const QString folder = Folder(QStringLiteral("db"));
  Write(folder, "first.qvz", ProjectSave("Alpha 1   ", "Alpha.vbp", DateSerial(2024, 1, 1), {}));
  Write(folder, "second.qvz", ProjectSave("Beta", "Beta.vbp", DateSerial(2024, 2, 29), {}));
  MetricRead reader;
  ASSERT_EQ(reader.DatabaseCount(), 2);
  const QString today = FormatDateShort(DateFromQDate(QDate::currentDate()));
  EXPECT_EQ(reader.GetDatabaseName(1), "Alpha 1 <2024-01-01>");
  EXPECT_EQ(reader.GetDatabaseName(2), "Beta <2024-02-29>");
  EXPECT_EQ(reader.GetDatabaseDetails(2),
            "Project: Beta.vbp ** File: second.qvz ** Analyzed: " + today);
  EXPECT_EQ(reader.GetDatabaseFilename(1), JoinPath(folder, "first.qvz"));
  EXPECT_EQ(reader.GetDatabaseName(3), "");
  EXPECT_EQ(reader.GetDatabaseFilename(0), "");

  ListModel files;
  files.AddItem("stale");
  reader.ListDatabases(files);
  ASSERT_EQ(files.ListCount(), 2);
  EXPECT_EQ(files.List(1), "second.qvz");
  EXPECT_EQ(files.SubItem(1, 1), folder);
  EXPECT_EQ(files.SubItem(1, 2), "Beta.vbp");
  EXPECT_EQ(files.ItemTag(0), "Alpha 1 - Date: 2024-01-01");
}

class MetricReadCombo : public AccessTest {
 protected:
  void SetUp() override {
    AccessTest::SetUp();
    const QString folder = Folder(QStringLiteral("db"));
    Write(folder, "1.qvz", ProjectSave("A1", "a.vbp", DateSerial(2024, 1, 1), {}));
    Write(folder, "2.qvz", ProjectSave("A2", "A.VBP", DateSerial(2024, 1, 2), {}));
    Write(folder, "3.qvz", ProjectSave("B1", "b.vbp  ", DateSerial(2024, 1, 3), {}));
  }
};

struct ComboCase {
  int mode, database;
  QStringList texts;
  std::vector<int32_t> data;
  int selected;  // position
  int result;
};

TEST_F(MetricReadCombo, FillComboListsTheDatabasesOfAView) {
  const std::vector<ComboCase> cases = {
      {7, 2, {"A1  <2024-01-01>", "A2  <2024-01-02>", "B1  <2024-01-03>"}, {1, 2, 3}, 1, 2},
      {7, 0, {"A1  <2024-01-01>", "A2  <2024-01-02>", "B1  <2024-01-03>"}, {1, 2, 3}, 0, 1},
      {6, 1, {"A.VBP", "b.vbp"}, {2, 3}, 0, 2},
      {6, 3, {"A.VBP", "b.vbp"}, {2, 3}, 1, 3},
      {1, 2, {"A1  <2024-01-01>", "A2  <2024-01-02>"}, {1, 2}, 1, 2},
      {4, 3, {"B1  <2024-01-03>"}, {3}, 0, 3},
      {1, 0, {"<No data>"}, {0}, 0, 0},
      {0, 1, {"<No data>"}, {0}, 0, 0},
  };
  MetricRead reader;
  for (const ComboCase& c : cases) {
    SCOPED_TRACE(testing::Message() << "mode " << c.mode << " database " << c.database);
    ListModel combo;
    combo.AddItem("old", 9);
    QStringList tagsSeen;
    combo.SetSelectionChangedHandler([&](int) { tagsSeen.append(combo.Tag()); });
    EXPECT_EQ(reader.FillCombo(combo, c.mode, c.database), c.result);
    EXPECT_EQ(Texts(combo), c.texts);
    std::vector<int32_t> data;
    for (int i = 0; i < combo.ListCount(); ++i) data.push_back(combo.ItemData(i));
    EXPECT_EQ(data, c.data);
    EXPECT_EQ(combo.ListIndex(), c.selected);
    EXPECT_EQ(tagsSeen, QStringList({"Norefresh"}));
    EXPECT_EQ(combo.Tag(), "");
  }
}

TEST(ListModel, KeepsItemsSelectionAndSubItems) {
  ListModel list;
  std::vector<int> selections;
  int itemChanges = 0;
  list.SetSelectionChangedHandler([&](int index) { selections.push_back(index); });
  list.SetItemsChangedHandler([&] { ++itemChanges; });
  EXPECT_EQ(list.AddItem("a", 10), 0);
  EXPECT_EQ(list.AddItem("b", -20), 1);
  EXPECT_EQ(list.AddItem("c", 30), 2);
  list.SetSubItem(2, 2, "col3");
  EXPECT_EQ(list.SubItem(2, 1), "");
  EXPECT_EQ(list.SubItem(2, 2), "col3");
  EXPECT_EQ(list.SubItem(2, 0), "");
  EXPECT_EQ(list.ItemData(1), -20);
  EXPECT_EQ(list.ItemData(3), 0);
  EXPECT_EQ(list.List(-1), "");
  list.SetListIndex(2);
  list.SetListIndex(2);  // no change, no notice
  EXPECT_EQ(list.Text(), "c");
  list.RemoveItem(0);  // the selected item moves up with its position
  EXPECT_EQ(list.ListIndex(), 1);
  list.RemoveItem(1);  // the selected item goes: the last one takes its place
  EXPECT_EQ(list.ListIndex(), 0);
  EXPECT_EQ(list.Text(), "b");
  list.SetListIndex(5);
  EXPECT_EQ(list.ListIndex(), -1);
  list.Clear();
  EXPECT_EQ(list.ListCount(), 0);
  EXPECT_EQ(selections, std::vector<int>({2, 1, 0, -1}));
  EXPECT_EQ(itemChanges, 7);
}

#ifdef Q_OS_LINUX
// Bytes this process has read from files so far.
qint64 BytesRead() {
  QFile io(QStringLiteral("/proc/self/io"));
  if (!io.open(QIODevice::ReadOnly)) return -1;
  const QList<QByteArray> lines = io.readAll().split('\n');
  for (const QByteArray& line : lines) {
    if (line.startsWith("rchar:")) return line.mid(6).trimmed().toLongLong();
  }
  return -1;
}

TEST_F(MetricReadScan, ScanReadsHeadersOnlyNeverTheValues) {
  const QString folder = Folder(QStringLiteral("big"));
  std::vector<double> values(50000);
  for (size_t i = 0; i < values.size(); ++i) values[i] = 0.5 + static_cast<double>(i);
  constexpr int kFiles = 12;
  qint64 total = 0;
  for (int i = 0; i < kFiles; ++i) {
    QvzFixture file;
    file.AddClass(0, 1).series.push_back(test::SeriesSpec::Stored(1002, 0, {7.5}));
    test::ClassSpec& procs = file.AddClass(3, static_cast<int32_t>(values.size()));
    procs.series.push_back(test::SeriesSpec::Stored(4001, 0, values));
    const QByteArray bytes = file.Build();
    total += bytes.size();
    QvzFixture::WriteBytes(JoinPath(folder, QString::number(i) + ".qvz"), bytes);
  }
  SaveSetting("Databases", "path1", folder);
  const qint64 before = BytesRead();
  ASSERT_GE(before, 0);
  MetricRead reader;
  const qint64 read = BytesRead() - before;
  EXPECT_EQ(reader.DatabaseCount(), kFiles);
  // Each header is 554 bytes; the reader takes at most one 4 KiB window per
  // file, and the settings file is small. The values are 400 KB per file.
  EXPECT_LT(read, kFiles * 4096 + 16384);
  EXPECT_GT(total, kFiles * 400000);
}
#endif

}  // namespace
}  // namespace ombrelle
