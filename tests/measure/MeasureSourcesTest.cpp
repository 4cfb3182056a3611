// Counts of hand-made source files, worked out by hand line by line, and the
// counting rules one at a time on small snippets.
#include <gtest/gtest.h>

#include "measure/MeasuredProject.h"

#include <QFile>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace ombrelle;

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

SourceFile Load(const QString& name, const QString& path) {
  QFile f(QStringLiteral(OMBRELLE_TEST_DATA "/measure/") + path);
  EXPECT_TRUE(f.open(QIODevice::ReadOnly)) << path.toStdString();
  return {name, f.readAll()};
}

const MeasuredClass* Find(const MeasuredProject& p, MetricClass c) {
  for (const MeasuredClass& m : p.classes)
    if (m.classNr == c) return &m;
  return nullptr;
}

struct Row {
  MetricClass classNr;
  const char* name;
  std::vector<double> values;  // in the order of the class's metric list below
};

const std::vector<std::vector<MetricId>> kMetrics = {
    {1002, 1009, 1010, 1011, 1015, 1019, 1200, 1201, 1202, 1203, 1204, 1205,
     1206, 1207, 1210, 1211, 1240, 1241, 1242, 1243, 1244, 1301, 1400},
    {2001, 2012, 2013, 2014, 2020, 2030, 2034, 2035, 2036, 2100, 2101, 2103},
    {3001, 3101, 3112, 3113, 3114, 3150, 3151, 3153, 3200, 3210, 3212, 3213, 3215, 3320},
    {4001, 4012, 4013, 4014, 4020, 4030, 4035, 4050, 4051, 4053, 4080, 4120, 4121, 4122, 4140, 4141,
     4180},
    {5001, 5002, 5020, 5100}};

// Lines.bas (ASCII, LF), Shapes.cls (Windows-1252, CR LF, class header),
// Main.frm (UTF-8 with byte-order mark, LF, form designer header, #If).
const std::vector<Row> kExpected = {
    {ClassProject, "Demo", {117, 83, 4, 7, 6,          2605 / 1024.0, 3,        7, 13, 3,  1, 1,
                            2,   6,  1, 1, 120 / 28.0, 3.5,           11 / 3.0, 8, 1,  15, 2}},
    {ClassFile, "Modules/Lines.bas", {38, 28, 3, 2, 4, 838 / 1024.0, 2, 7, 2, 30, 16, 8}},
    {ClassFile, "Shapes.cls", {47, 37, 1, 3, 1, 1077 / 1024.0, 3, 5, 0, 40, 12, 18}},
    {ClassFile, "Forms/Main.frm", {32, 18, 0, 2, 1, 690 / 1024.0, 2, 1, 1, 13, 7, 2}},
    {ClassClass, "Forme", {3, 47, 37, 1, 3, 40, 12, 18, 1, 2, 2, 1, 1, 10}},
    {ClassClass, "frmMain", {2, 32, 18, 0, 2, 13, 7, 2, 0, 0, 1, 0, 0, 2}},
    {ClassProcedure,
     "Tools.GetTickCount",
     {1, 1, 0, 0, 0, 0, NaN, 1, 1, 0, NaN, NaN, NaN, NaN, NaN, NaN, 12}},
    {ClassProcedure, "Tools.Describe", {18, 15, 1, 0, 2, 2, 2, 17, 3, 8, 2, 5, 6, 5, 1, 1, 8}},
    {ClassProcedure, "Forme.Size (Get)", {3, 3, 0, 0, 0, 0, 0, 3, 2, 0, 1, 1, 1, 1, 0, 0, 4}},
    {ClassProcedure, "Forme.Size (Let)", {6, 5, 1, 0, 1, 1, 0, 7, 2, 2, 2, 2, 2, 2, 1, 0, 4}},
    {ClassProcedure,
     "Forme.IShape_Kind",
     {24, 24, 0, 0, 0, 1, 1, 25, 3, 16, 1, 9, 10, 8, 2, 2, 11}},
    {ClassProcedure, "frmMain.cmdOK_Click", {6, 6, 0, 0, 1, 0, 0, 6, 2, 2, 1, 2, 2, 2, 1, 0, 11}},
    {ClassProcedure, "frmMain.Form_Load", {3, 3, 0, 0, 0, 0, 0, 4, 2, 0, 1, 1, 1, 1, 0, 0, 9}},
    {ClassVariable, "Tools.gCount", {1, 1, 1, 6}},
    {ClassVariable, "Tools.gNames", {0, 0, 0, 6}},
    {ClassVariable, "Tools.mLast", {1, 1, 1, 5}},
    {ClassVariable, "Forme.mTaille", {2, 1, 1, 7}},
    {ClassVariable, "Forme.Größe", {1, 1, 1, 5}},
    {ClassVariable, "frmMain.mClicks", {2, 2, 1, 7}},
};

MeasuredProject MeasureSamples() {
  return MeasureSources(QStringLiteral("Demo"),
                        {Load(QStringLiteral("Modules/Lines.bas"), "Lines.bas"),
                         Load(QStringLiteral("Shapes.cls"), "Shapes.cls"),
                         Load(QStringLiteral("Forms/Main.frm"), "Main.frm")});
}

}  // namespace

TEST(MeasureSources, HandCountedFilesGiveEveryRowAndValue) {
  const MeasuredProject p = MeasureSamples();
  EXPECT_TRUE(p.warnings.isEmpty()) << p.warnings.join(QLatin1Char('\n')).toStdString();
  ASSERT_EQ(p.classes.size(), 5u);
  QStringList rowOrder[5];
  for (const Row& r : kExpected) rowOrder[r.classNr] << QString::fromUtf8(r.name);
  for (int c = 0; c < 5; ++c) {
    const MeasuredClass* m = Find(p, static_cast<MetricClass>(c));
    ASSERT_NE(m, nullptr) << c;
    EXPECT_EQ(m->metrics, kMetrics[static_cast<size_t>(c)]) << c;
    EXPECT_EQ(m->names, rowOrder[c]) << m->names.join(QLatin1Char(',')).toStdString();
  }
  for (const Row& r : kExpected) {
    const MeasuredClass* m = Find(p, r.classNr);
    const qsizetype row = m->names.indexOf(QString::fromUtf8(r.name));
    ASSERT_GE(row, 0) << r.name;
    for (size_t k = 0; k < r.values.size(); ++k) {
      const double got = m->values[k][static_cast<size_t>(row)];
      if (std::isnan(r.values[k]))
        EXPECT_TRUE(std::isnan(got)) << r.name << " metric " << m->metrics[k] << " = " << got;
      else
        EXPECT_DOUBLE_EQ(got, r.values[k]) << r.name << " metric " << m->metrics[k];
    }
  }
}

// One rule at a time, on a standard module holding only the snippet.
struct Snippet {
  const char* what;
  const char* source;
  double physical, code, comment, blank, statements, control, totalComplexity;
};

const Snippet kSnippets[] = {
    {"every Do and Loop form",
     "Sub A()\nDo While x\nLoop\nDo Until x\nLoop\nDo\nLoop While x\nDo\nLoop Until "
     "x\nDo\nLoop\nEnd Sub\n",
     12, 12, 0, 0, 12, 10, 5},
    {"continuation after an end-of-line comment", "Sub A()\nx = 1 ' note _\nstill note\nEnd Sub\n",
     4, 3, 0, 0, 3, 0, 1},
    {"Rem after a colon keeps its colons", "Sub A()\nx = 1: Rem a: b\nEnd Sub\n", 3, 3, 0, 0, 3, 0,
     1},
    {"Remove is no comment", "Sub A()\nRemove x\nEnd Sub\n", 3, 3, 0, 0, 3, 0, 1},
    {"named arguments and a line number", "Sub A()\n10 Foo a:=1, b:=2\nGoTo 10\nEnd Sub\n", 4, 4, 0,
     0, 4, 1, 1},
    {"Case Else is no decision",
     "Sub A()\nSelect Case x\nCase Is > 5\nCase 1 To 3, 7\nCase Else\nEnd Select\nEnd Sub\n", 7, 7,
     0, 0, 7, 5, 3},
    {"nested single-line If", "Sub A()\nIf a Then If b Then c Else d\nEnd Sub\n", 3, 3, 0, 0, 6, 2,
     3},
    {"date literal holding colons", "Sub A()\nt = #12:30:00 PM#: u = 1\nEnd Sub\n", 3, 3, 0, 0, 4,
     0, 1},
    {"lone CR line ends", "Sub A()\rx = 1\r\rEnd Sub", 4, 3, 0, 1, 3, 0, 1},
    {"comment, then a blank joined by a continuation", "'\n_\n\n", 3, 0, 1, 1, 0, 0, 1},
    {"And and Or are no decisions", "Sub A()\nWhile a And b Or c\nWend\nEnd Sub\n", 4, 4, 0, 0, 4,
     2, 2},
};

TEST(MeasureSources, SnippetsFollowTheCountingRules) {
  for (const Snippet& s : kSnippets) {
    const MeasuredProject p =
        MeasureSources(QStringLiteral("P"), {{QStringLiteral("M.bas"), QByteArray(s.source)}});
    const MeasuredClass* file = Find(p, ClassFile);
    ASSERT_NE(file, nullptr) << s.what;
    // 2001 lines, 2012 code, 2013 comment, 2014 blank, 2100 statements, 2103 control.
    const double got[] = {file->values[0][0],
                          file->values[1][0],
                          file->values[2][0],
                          file->values[3][0],
                          file->values[9][0],
                          file->values[11][0],
                          Find(p, ClassProject)->values[21][0]};
    const double want[] = {s.physical,   s.code,    s.comment,        s.blank,
                           s.statements, s.control, s.totalComplexity};
    for (int k = 0; k < 7; ++k) EXPECT_EQ(got[k], want[k]) << s.what << " value " << k;
    EXPECT_TRUE(p.warnings.isEmpty()) << s.what;
  }
}

TEST(MeasureSources, NameLengthsLeaveOutHandlersAndCountPropertiesOnce) {
  const char* source =
      "Private a As Long\nPrivate WithEvents tmr As Timer\nPrivate Sub Form_Load(x)\nDim A\n"
      "End Sub\nPrivate Sub tmr_Timer(y)\nEnd Sub\nSub F(a)\nEnd Sub\nProperty Get P()\n"
      "End Property\nProperty Let P(v)\nEnd Property\n";
  const MeasuredProject p =
      MeasureSources(QStringLiteral("P"), {{QStringLiteral("W.frm"), QByteArray(source)}});
  const MeasuredClass* project = Find(p, ClassProject);
  // Variables a, tmr, A (local), a and v (parameters; x and y belong to
  // handlers); procedures F and P; the class W. Distinct: a, tmr, v, F, P, W.
  const std::pair<MetricId, double> expected[] = {
      {1240, 10 / 8.0}, {1241, 7 / 5.0}, {1242, NaN}, {1243, 1.0}, {1244, 6 / 8.0}};
  for (const auto& [id, value] : expected) {
    const auto k = static_cast<size_t>(
        std::find(project->metrics.begin(), project->metrics.end(), id) - project->metrics.begin());
    ASSERT_LT(k, project->metrics.size());
    if (std::isnan(value))
      EXPECT_TRUE(std::isnan(project->values[k][0])) << id;
    else
      EXPECT_DOUBLE_EQ(project->values[k][0], value) << id;
  }
  EXPECT_EQ(Find(p, ClassProcedure)->names,
            (QStringList{QStringLiteral("W.Form_Load"), QStringLiteral("W.tmr_Timer"),
                         QStringLiteral("W.F"), QStringLiteral("W.P (Get)"),
                         QStringLiteral("W.P (Let)")}));
}
