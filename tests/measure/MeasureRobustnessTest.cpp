// Damaged, binary, unterminated and enormous input: warnings, never a crash,
// never a quadratic run; and the decoding of text and line ends.
#include <gtest/gtest.h>

#include "measure/MeasuredProject.h"
#include "measure/SourceText.h"

#include <QElapsedTimer>

#include <cmath>

using namespace ombrelle;

namespace {

const MeasuredClass* Find(const MeasuredProject& p, MetricClass c) {
  for (const MeasuredClass& m : p.classes)
    if (m.classNr == c) return &m;
  return nullptr;
}

}  // namespace

TEST(MeasureRobustness, EmptyFileListGivesTheProjectRowAlone) {
  const MeasuredProject p = MeasureSources(QStringLiteral("Empty"), {});
  ASSERT_EQ(p.classes.size(), 1u);
  const MeasuredClass& c = p.classes[0];
  EXPECT_EQ(c.names, QStringList{QStringLiteral("Empty")});
  for (size_t k = 0; k < c.metrics.size(); ++k) {
    const double v = c.values[k][0];
    if (c.metrics[k] >= 1240 && c.metrics[k] <= 1244)
      EXPECT_TRUE(std::isnan(v));  // no name, no average length
    else
      EXPECT_EQ(v, c.metrics[k] == 1301 ? 1.0 : 0.0) << c.metrics[k];
  }
  EXPECT_TRUE(p.warnings.isEmpty());
}

TEST(MeasureRobustness, BinaryFileIsLeftOutWithAWarning) {
  QByteArray binary("MZ\x90\x00\x03", 5);
  binary.append(QByteArray(1000, '\xFF'));
  const MeasuredProject p =
      MeasureSources(QStringLiteral("P"), {{QStringLiteral("lib/Image.bas"), binary},
                                           {QStringLiteral("Good.bas"), "Sub A()\nEnd Sub\n"}});
  EXPECT_EQ(p.warnings, QStringList{QStringLiteral("lib/Image.bas: binary content, not measured")});
  EXPECT_EQ(Find(p, ClassFile)->names, QStringList{QStringLiteral("Good.bas")});
  EXPECT_EQ(Find(p, ClassProcedure)->names, QStringList{QStringLiteral("Good.A")});
}

TEST(MeasureRobustness, UnterminatedInputIsMeasuredWithWarnings) {
  const MeasuredProject p = MeasureSources(
      QStringLiteral("P"),
      {{QStringLiteral("T.bas"), "Public Type T\n  a As Long\n"},
       {QStringLiteral("U.bas"), "Sub A()\nx = \"abc\nSub B(p)\n#If X Then\n"},
       {QStringLiteral("F.frm"), "VERSION 5.00\nBegin VB.Form F\n  Caption = 1\n"},
       {QStringLiteral("S.bas"),
        "Sub A()\nIf a Then\nDo\nFor i = 1 To 2\nNext i, j, k\nLoop\nEnd If\nEnd If\nEnd Sub\n"}});
  EXPECT_EQ(p.warnings,
            (QStringList{QStringLiteral("T.bas: a Type or Enum block has no end"),
                         QStringLiteral("U.bas: A has no end; B has no end; an #If block has no "
                                        "#End If; 1 unterminated string(s)"),
                         QStringLiteral("F.frm: the designer header is not closed")}));
  const MeasuredClass* procs = Find(p, ClassProcedure);
  ASSERT_NE(procs, nullptr);
  EXPECT_EQ(procs->names,
            (QStringList{QStringLiteral("U.A"), QStringLiteral("U.B"), QStringLiteral("S.A")}));
  // A ends where B starts; B runs to the end of the file; S.A's extra closings
  // leave its depths at what was opened.
  EXPECT_EQ(procs->values[0][0], 2);   // 4001 of U.A
  EXPECT_EQ(procs->values[0][1], 2);   // 4001 of U.B
  EXPECT_EQ(procs->values[5][1], 1);   // 4030: one parameter
  EXPECT_EQ(procs->values[14][2], 1);  // 4140 of S.A
  EXPECT_EQ(procs->values[15][2], 2);  // 4141 of S.A
  const MeasuredClass* files = Find(p, ClassFile);
  EXPECT_EQ(files->values[1][2], 0);  // 2012: the open designer header holds no code
  EXPECT_EQ(files->values[0][2], 3);  // 2001: but its lines are lines
}

TEST(MeasureRobustness, MegabyteLinesTakeLinearTime) {
  const QByteArray pieces[] = {"a + ", " _ x", "If a Then ", "\"\"", "x: ", "(", "' _ "};
  for (const QByteArray& piece : pieces) {
    QByteArray source = "Sub A()\nx = ";
    source.append(piece.repeated(1'000'000 / piece.size()));
    source.append("\nEnd Sub\n");
    QElapsedTimer timer;
    timer.start();
    const MeasuredProject p =
        MeasureSources(QStringLiteral("P"), {{QStringLiteral("M.bas"), source}});
    EXPECT_LT(timer.elapsed(), 3000) << piece.constData();
    ASSERT_NE(Find(p, ClassProcedure), nullptr) << piece.constData();
  }
}

struct Decoding {
  const char* what;
  QByteArray bytes;
  QString text;
};

TEST(MeasureRobustness, TextIsUtf8WhenValidElseWindows1252) {
  const Decoding cases[] = {
      {"UTF-8 with byte-order mark", QByteArray("\xEF\xBB\xBFx = \"\xC3\xA9\""),
       QStringLiteral("x = \"\u00E9\"")},
      {"UTF-8 without mark", QByteArray("\xE2\x82\xAC"), QStringLiteral("\u20AC")},
      {"Windows-1252", QByteArray("\x80 \xE9"), QStringLiteral("\u20AC \u00E9")},
      {"overlong UTF-8 is Windows-1252", QByteArray("\xC0\xAF"), QStringLiteral("\u00C0\u00AF")},
      {"cut UTF-8 is Windows-1252", QByteArray("a\xC3"), QStringLiteral("a\u00C3")},
  };
  for (const Decoding& d : cases) EXPECT_EQ(DecodeSource(d.bytes), d.text) << d.what;
}

TEST(MeasureRobustness, PhysicalLinesEndAtCrLfLfOrCr) {
  const struct {
    QString text;
    std::vector<std::pair<int, int>> lines;
  } cases[] = {{QString(), {}},
               {QStringLiteral("\n"), {{0, 0}}},
               {QStringLiteral("ab\r\ncd\ref\n\ng"), {{0, 2}, {4, 2}, {7, 2}, {10, 0}, {11, 1}}},
               {QStringLiteral("\r\r\n"), {{0, 0}, {1, 0}}}};
  for (const auto& c : cases) {
    std::vector<std::pair<int, int>> got;
    for (const PhysicalLine& l : SplitPhysicalLines(c.text))
      got.emplace_back(static_cast<int>(l.begin), static_cast<int>(l.length));
    EXPECT_EQ(got, c.lines) << c.text.toStdString();
  }
}
