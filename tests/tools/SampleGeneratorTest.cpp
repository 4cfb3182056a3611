#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "SampleGenerator.h"
#include "core/MetricDefinitions.h"
#include "support/Codepage.h"
#include "support/DateValue.h"

namespace ombrelle::samples {
namespace {

const SampleProject& Project(const QString& name) {
  for (const SampleProject& p : SampleProjects())
    if (p.Name == name) return p;
  throw std::invalid_argument("no such sample project");
}

// Every save of every project, generated once for the whole suite.
const SampleDatabase& Save(const SampleProject& p, int save) {
  static std::map<std::pair<QString, int>, SampleDatabase> cache;
  const auto key = std::make_pair(p.Name, save);
  auto it = cache.find(key);
  if (it == cache.end()) {
    const SampleGenerator generator(p);
    for (int s = 0; s < static_cast<int>(p.Saves.size()); ++s)
      cache[{p.Name, s}] = generator.Generate(s);
    it = cache.find(key);
  }
  return it->second;
}

const SampleDatabase& Final(const SampleProject& p) {
  return Save(p, static_cast<int>(p.Saves.size()) - 1);
}

const std::vector<double>& Column(const SampleDatabase& db, MetricId id) {
  const SampleTable* table = db.Table(MetricDefinitions::GetMetricClass(id));
  const std::vector<double>* values = table ? table->Find(id) : nullptr;
  if (!values) throw std::invalid_argument("metric not stored");
  return *values;
}

double ProjectValue(const SampleDatabase& db, MetricId id) { return Column(db, id).at(0); }

double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

int CountAbove(const std::vector<double>& v, double limit) {
  return static_cast<int>(std::count_if(v.begin(), v.end(), [&](double x) { return x > limit; }));
}

double Correlation(const std::vector<double>& x, const std::vector<double>& y) {
  const double n = static_cast<double>(x.size());
  double sx = 0, sy = 0, sxx = 0, syy = 0, sxy = 0;
  for (size_t i = 0; i < x.size(); ++i) {
    sx += x[i];
    sy += y[i];
    sxx += x[i] * x[i];
    syy += y[i] * y[i];
    sxy += x[i] * y[i];
  }
  return (n * sxy - sx * sy) / std::sqrt((n * sxx - sx * sx) * (n * syy - sy * sy));
}

TEST(SampleGenerator, EveryTableStoresExactlyTheStoredMetricsOfItsClassForEveryRow) {
  for (const SampleProject& p : SampleProjects()) {
    for (int save = 0; save < static_cast<int>(p.Saves.size()); ++save) {
      const SampleDatabase& db = Save(p, save);
      ASSERT_EQ(db.Tables.size(), 5u);
      for (int c = 0; c < 5; ++c) {
        const SampleTable* t = db.Table(c);
        ASSERT_NE(t, nullptr);
        std::vector<MetricId> ids;
        for (const SampleSeries& s : t->Series) {
          ids.push_back(s.Id);
          EXPECT_EQ(static_cast<int>(s.Values.size()), t->RowCount()) << s.Id;
        }
        EXPECT_EQ(ids, StoredSampleMetrics(c)) << p.Name.toStdString() << " class " << c;
      }
    }
  }
}

TEST(SampleGenerator, StoredMetricsLeaveDerivedOnesToTheirRecipes) {
  const std::vector<MetricId> project = StoredSampleMetrics(0);
  const std::vector<MetricId> procedure = StoredSampleMetrics(3);
  struct Case {
    const std::vector<MetricId>& ids;
    MetricId id;
    bool stored;
  };
  const Case cases[] = {
      {project, 1000, true},    {project, 1001, false},  {project, 1002, true},
      {project, 1008, false},   {project, 1100, false},  {project, 1207, false},
      {project, 1404, true},    {project, 1406, false},  {procedure, 4161, true},
      {procedure, 4162, false}, {procedure, 4120, true}, {procedure, 4011, false}};
  for (const Case& c : cases)
    EXPECT_EQ(std::count(c.ids.begin(), c.ids.end(), c.id), c.stored ? 1 : 0) << c.id;
  EXPECT_EQ(StoredSampleMetrics(4), (std::vector<MetricId>{5001, 5002, 5020, 5100}));
}

TEST(SampleGenerator, ProjectsHaveTheirSizesAndAStoryOfAboutTwoYears) {
  struct Case {
    const char* name;
    int files, classes, procedures, variables;
    double tolerance;
  };
  const Case cases[] = {{"Billing", 11, 8, 190, 95, 0.1},
                        {"Entrepôt", 60, 38, 1500, 1100, 0.1},
                        {"Harbour", 250, 300, 6000, 25000, 0.0}};
  for (const Case& c : cases) {
    const SampleProject& p = Project(QString::fromUtf8(c.name));
    SCOPED_TRACE(c.name);
    ASSERT_GE(p.Saves.size(), 4u);
    ASSERT_LE(p.Saves.size(), 10u);
    const SampleDatabase& first = Save(p, 0);
    const SampleDatabase& last = Final(p);
    const double span = last.AnalysisDate - first.AnalysisDate;
    EXPECT_GT(span, 600);
    EXPECT_LT(span, 800);
    EXPECT_NEAR(last.Table(1)->RowCount(), c.files, c.files * c.tolerance);
    EXPECT_NEAR(last.Table(2)->RowCount(), c.classes, c.classes * c.tolerance);
    EXPECT_NEAR(last.Table(3)->RowCount(), c.procedures, c.procedures * c.tolerance);
    EXPECT_NEAR(last.Table(4)->RowCount(), c.variables, c.variables * c.tolerance);
    // Growth: every save has more code than the one before.
    double lloc = 0;
    for (int save = 0; save < static_cast<int>(p.Saves.size()); ++save) {
      const SampleDatabase& db = Save(p, save);
      EXPECT_GT(ProjectValue(db, 1009), lloc) << save;
      lloc = ProjectValue(db, 1009);
      const double time = db.AnalysisDate - std::floor(db.AnalysisDate);
      EXPECT_GT(time, 0.3) << "analysed during the working day";
      EXPECT_LT(time, 0.8);
      EXPECT_EQ(db.Title, p.Name + QLatin1Char(' ') + p.Saves[static_cast<size_t>(save)].Version);
    }
  }
}

TEST(SampleGenerator, ValuesAreMutuallyConsistent) {
  for (const SampleProject& p : SampleProjects()) {
    const SampleDatabase& db = Final(p);
    SCOPED_TRACE(p.Name.toStdString());
    const auto& lines = Column(db, 4001);
    const auto& lloc = Column(db, 4012);
    const auto& comment = Column(db, 4013);
    const auto& blank = Column(db, 4014);
    const auto& stmt = Column(db, 4050);
    const auto& stmtd = Column(db, 4051);
    const auto& stmtc = Column(db, 4053);
    const auto& cc = Column(db, 4120);
    const auto& cc2 = Column(db, 4121);
    const auto& cc3 = Column(db, 4122);
    const auto& sfout = Column(db, 4201);
    const auto& scallt = Column(db, 4143);
    const auto& lloct = Column(db, 4025);
    const auto& dc = Column(db, 4161);
    const auto& iog = Column(db, 4080);
    const auto& iop = Column(db, 4081);
    for (size_t i = 0; i < lloc.size(); ++i) {
      ASSERT_GE(lloc[i], 1);
      ASSERT_LE(lloc[i] + comment[i] + blank[i], lines[i]);
      ASSERT_GE(stmtd[i], 2);
      ASSERT_LE(stmtd[i], stmt[i]);
      ASSERT_LE(stmtc[i], stmt[i] - stmtd[i]);
      ASSERT_GE(cc3[i], 1);
      ASSERT_LE(cc3[i], cc[i]);
      ASSERT_LE(cc[i], cc2[i]);
      ASSERT_GE(scallt[i], sfout[i]);
      ASSERT_GE(lloct[i], lloc[i]);
      ASSERT_NEAR(dc[i], (iog[i] + iop[i]) / (sfout[i] + 1), 5e-5);
    }
    // The project's totals are the sums of its files; its counts are the row counts.
    const struct {
      MetricId project, file;
    } sums[] = {{1002, 2001}, {1009, 2012}, {1010, 2013}, {1011, 2014},
                {1015, 2020}, {1019, 2030}, {1203, 2036}, {1202, 2035}};
    for (const auto& s : sums)
      EXPECT_EQ(ProjectValue(db, s.project), db.Table(1)->Sum(s.file)) << s.project;
    EXPECT_EQ(ProjectValue(db, 1200), db.Table(1)->RowCount());
    EXPECT_EQ(ProjectValue(db, 1201), db.Table(3)->RowCount());
    EXPECT_EQ(ProjectValue(db, 1400), db.Table(2)->RowCount());
    EXPECT_EQ(ProjectValue(db, 1201), db.Table(1)->Sum(2034));
    EXPECT_EQ(ProjectValue(db, 1404), db.Table(2)->Max(3002));
    EXPECT_EQ(ProjectValue(db, 1301), db.Table(3)->Sum(4120) - db.Table(3)->RowCount() + 1);
    EXPECT_EQ(ProjectValue(db, 1000), db.Table(1)->Max(2031));
    EXPECT_LE(ProjectValue(db, 1000), db.AnalysisDate);
    EXPECT_EQ(db.Table(2)->Sum(3003), db.Table(2)->RowCount() - ProjectValue(db, 1401))
        << "every child has one parent";
    const auto& fileLines = Column(db, 2001);
    const auto& fileLloc = Column(db, 2012);
    for (size_t i = 0; i < fileLines.size(); ++i) ASSERT_LT(fileLloc[i], fileLines[i]);
    for (MetricId ratio : {3011, 3015, 3016, 3017, 3018}) {
      for (double v : Column(db, ratio)) ASSERT_TRUE(v >= 0 && v <= 1) << ratio;
    }
    const auto& tcc = Column(db, 3015);
    const auto& lcc = Column(db, 3016);
    for (size_t i = 0; i < tcc.size(); ++i) ASSERT_LE(tcc[i], lcc[i]);
  }
}

TEST(SampleGenerator, ComplexityGrowsWithLengthAndSizesHaveLongTails) {
  const SampleDatabase& db = Final(Project(QStringLiteral("Harbour")));
  const auto& lloc = Column(db, 4012);
  const auto& cc = Column(db, 4120);
  EXPECT_GT(Correlation(lloc, cc), 0.7);
  const double median = Median(lloc);
  EXPECT_GT(db.Table(3)->Mean(4012), median * 1.2);
  EXPECT_GT(db.Table(3)->Max(4012), median * 20);
  EXPECT_GT(db.Table(1)->Max(2001), Median(Column(db, 2001)) * 5);
}

TEST(SampleGenerator, EveryProjectHasRowsOutsideTheDefaultLimits) {
  // Procedures longer than 66 lines, more complex than 10, with more than 5
  // parameters, loops nested deeper than 2, and under 3 lines of code.
  for (const SampleProject& p : SampleProjects()) {
    const SampleDatabase& db = Final(p);
    SCOPED_TRACE(p.Name.toStdString());
    EXPECT_GT(CountAbove(Column(db, 4001), 66), 0);
    EXPECT_GT(CountAbove(Column(db, 4120), 10), 0);
    EXPECT_GT(CountAbove(Column(db, 4030), 5), 0);
    EXPECT_GT(CountAbove(Column(db, 4141), 2), 0);
    EXPECT_GT(CountAbove(Column(db, 4140), 5), 0);
    const auto& lloc = Column(db, 4012);
    EXPECT_GT(std::count_if(lloc.begin(), lloc.end(), [](double v) { return v < 3; }), 0);
    // And most procedures are fine.
    EXPECT_LT(CountAbove(Column(db, 4120), 10), static_cast<int>(lloc.size() / 5));
  }
  const SampleDatabase& large = Final(Project(QStringLiteral("Harbour")));
  EXPECT_GT(CountAbove(Column(large, 3001), 50), 0) << "classes above WMC 50";
  EXPECT_GT(ProjectValue(large, 1404), 5) << "maxDIT above 5";
}

TEST(SampleGenerator, TheStoriesShowInTheProjectFigures) {
  // The refactoring release lowers the mean complexity of the procedures.
  const SampleProject& medium = Project(QString::fromUtf8("Entrepôt"));
  const int r = medium.RefactoringSave;
  ASSERT_GT(r, 0);
  const SampleDatabase& before = Save(medium, r - 1);
  const SampleDatabase& after = Save(medium, r);
  EXPECT_LT(after.Table(3)->Mean(4120), before.Table(3)->Mean(4120) * 0.95);
  EXPECT_LT(ProjectValue(after, 1221), ProjectValue(before, 1221)) << "dead code removed";

  // Comment density (MCOMM / LLOC) rises at every save of the small project.
  const SampleProject& small = Project(QStringLiteral("Billing"));
  double density = 0;
  for (int save = 0; save < static_cast<int>(small.Saves.size()); ++save) {
    const SampleDatabase& db = Save(small, save);
    const double d = ProjectValue(db, 1015) / ProjectValue(db, 1009);
    EXPECT_GT(d, density) << save;
    density = d;
  }
  EXPECT_GT(density, 0.2);

  // The large project's hierarchy deepens.
  const SampleProject& large = Project(QStringLiteral("Harbour"));
  double depth = 0;
  for (int save = 0; save < static_cast<int>(large.Saves.size()); ++save) {
    const double d = ProjectValue(Save(large, save), 1404);
    EXPECT_GE(d, depth) << save;
    depth = d;
  }
  EXPECT_LE(ProjectValue(Save(large, 0), 1404) + 3, depth);
}

TEST(SampleGenerator, RowNamesLookLikeACodeBase) {
  for (const SampleProject& p : SampleProjects()) {
    const SampleDatabase& db = Final(p);
    SCOPED_TRACE(p.Name.toStdString());
    EXPECT_EQ(db.Table(0)->Names, QStringList{p.ProjectFile});
    bool accented = false;
    for (int c = 1; c < 5; ++c) {
      const QStringList& names = db.Table(c)->Names;
      std::set<QString> unique;
      for (const QString& n : names) {
        unique.insert(n.toLower());
        // Row names travel in Windows-1252: each must survive the round trip.
        ASSERT_EQ(MultiByteToText(TextToMultiByte(n, kCodepageAnsi), kCodepageAnsi), n);
        for (QChar ch : n) accented = accented || ch.unicode() > 127;
        if (c == 1) {
          ASSERT_TRUE(n.contains(QLatin1Char('/'))) << n.toStdString();
        } else if (c >= 3) {
          ASSERT_EQ(n.count(QLatin1Char('.')), 1) << n.toStdString();
        }
      }
      EXPECT_EQ(unique.size(), static_cast<size_t>(names.size())) << "class " << c;
    }
    EXPECT_TRUE(accented);
  }
}

}  // namespace
}  // namespace ombrelle::samples
