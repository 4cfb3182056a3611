// Model defaults and the edge cases of drawing, checked on the recorded primitives.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "ChartTestSupport.h"
#include "pictures/Bitmap.h"
#include "pictures/Metafile.h"

#include <QDir>
#include <QFile>

using namespace ombrelle;
using namespace ombrelle::charttest;

namespace {

const std::vector<MetaRecord>& Drawn(ZelmChart& chart, int type, std::vector<CStats> series,
                                     bool blackWhite = true) {
  chart.SetChartType(type);
  chart.SetData(series);
  chart.Draw(blackWhite);
  return chart.GetMetafile().Records();
}

std::vector<double> Ramp(int n) {
  std::vector<double> v;
  for (int i = 1; i <= n; ++i) v.push_back(i % 17 + 1);
  return v;
}

// Lines in the series colour with the given pen width.
int LinesOf(const std::vector<MetaRecord>& records, std::uint32_t colour, int width) {
  int n = 0;
  for (const MetaRecord& r : records)
    if (r.kind == MetaRecord::Line && r.pen.color == colour && r.pen.width == width) ++n;
  return n;
}

}  // namespace

TEST(ZelmChartModel, DefaultsAndSeriesColours) {
  ZelmChart chart;
  EXPECT_EQ(chart.ChartType(), 0);
  EXPECT_EQ(chart.GridColor, 0xEEEEEEu);
  EXPECT_EQ(chart.MarkIndex, 0);
  EXPECT_TRUE(chart.YLines().empty());
  EXPECT_EQ(chart.SeriesColor(1), 84u | (104u << 8) | (159u << 16));
  EXPECT_EQ(chart.SeriesColor(6), 255u | (219u << 8));
  EXPECT_EQ(chart.SeriesColor(10), 0u);
  EXPECT_EQ(chart.SeriesColor(0), 0u);
  EXPECT_EQ(chart.SeriesColor(11), 0u);
  chart.SetSeriesColor(0, 0x123456);
  chart.SetSeriesColor(11, 0x123456);
  chart.SetSeriesColor(10, 0x123456);
  EXPECT_EQ(chart.SeriesColor(10), 0x123456u);
  EXPECT_EQ(chart.SeriesColor(0), 0u);
  ASSERT_EQ(chart.DataColors().size(), 10u);
  EXPECT_EQ(chart.DataColors()[1], chart.SeriesColor(2));
  chart.EnsureDataColors(14);
  ASSERT_EQ(chart.DataColors().size(), 14u);
  EXPECT_EQ(chart.DataColors()[0], chart.SeriesColor(1));  // old entries kept
  EXPECT_EQ(chart.DataColors()[10], GeneratedDataColor(11, 14));

  chart.SetData({Series({1, 2}), Series({3})});
  chart.SetLegendData({QStringLiteral("only one")});
  EXPECT_TRUE(chart.ShowLegend);
  EXPECT_TRUE(chart.LegendGiven);
  chart.SetDataKiviat({Series({1, 2, 3}), Series({1, 2, 3, 4})}, {"a", "b"}, true);
  EXPECT_EQ(chart.AxisCount(), 4);
  EXPECT_EQ(chart.Scale().YFormat, kAxisPercent);
}

TEST(ZelmChartDraw, PageSizesByType) {
  for (int type : {0, 3, 9, 8}) {
    ZelmChart chart;
    Drawn(chart, type, {Series({1, 2, 3})});
    const bool round = type == 3 || type == 9;
    EXPECT_EQ(chart.PageHeight(), round ? 150 : 112);
    EXPECT_EQ(chart.GetMetafile().FrameRect(), (MetaRect{0, 0, 15000, round ? 15000 : 11200}));
    EXPECT_EQ(chart.Frame().Bottom, round ? -1499 : -1119);
  }
}

TEST(ZelmChartDraw, UnknownTypeIsAnEmptyPageWithTheTitle) {
  ZelmChart chart;
  chart.Title = QStringLiteral("Nothing");
  const auto& records = Drawn(chart, 12, {Series({1, 2, 3})});
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].text, QStringLiteral("Nothing"));
}

TEST(ZelmChartDraw, HundredValuesAreBoxesAndHundredAndOneAreLines) {
  ZelmChart boxes;
  const auto& r100 = Drawn(boxes, 0, {Series(Ramp(100))}, false);
  EXPECT_EQ(RecordsOf(r100, MetaRecord::FillRect).size(), 100u);
  EXPECT_EQ(LinesOf(r100, boxes.SeriesColor(1), 2), 0);

  ZelmChart lines;
  const auto& r101 = Drawn(lines, 0, {Series(Ramp(101))}, false);
  EXPECT_EQ(RecordsOf(r101, MetaRecord::FillRect).size(), 0u);
  EXPECT_EQ(LinesOf(r101, lines.SeriesColor(1), 2), 101);
}

TEST(ZelmChartDraw, OneValueAllEqualAllZeroAndNegativeBars) {
  struct Case {
    std::vector<double> values;
    double yMin, yMax;
    std::int32_t yFormat = kAxisNumber;
  };
  // Dates (days since 1899-12-30) keep a scale above zero: their bars stand
  // on the axis, not on a zero line far below the plot.
  const Case cases[] = {{{4}, 0, 4},
                        {{5, 5, 5}, 0, 5},
                        {{0, 0}, 0, 1},
                        {{-3, 6, -7}, -10, 10},
                        {{45000, 45100, 45200}, 44986, 45229.5, kAxisDate}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.values.front());
    ZelmChart chart;
    chart.SetNumberFormat(c.yFormat, kAxisNumber);
    const auto& records = Drawn(chart, 0, {Series(c.values)});
    EXPECT_EQ(chart.Scale().YMin, c.yMin);
    EXPECT_EQ(chart.Scale().YMax, c.yMax);
    const auto boxes = RecordsOf(records, MetaRecord::FillRect);
    ASSERT_EQ(boxes.size(), c.values.size());
    // Each box stands on the zero line (or the axis); a negative one hangs below it.
    const double zero = chart.Scale().ValueToY(std::max(0.0, chart.Scale().YMin), chart.Plot().Top,
                                               chart.Plot().Bottom);
    for (std::size_t i = 0; i < boxes.size(); ++i) {
      EXPECT_NEAR(boxes[i]->points[0].y(), zero, 0.5001);
      if (c.values[i] < 0) {
        EXPECT_LT(boxes[i]->points[1].y(), zero);
      }
    }
  }
}

TEST(ZelmChartDraw, MarkIndexDrawsTheArrowOnlyAboveZero) {
  auto arrowLines = [](int mark) {
    ZelmChart chart;
    chart.MarkIndex = mark;
    const auto& records = Drawn(chart, 0, {Series({1, 2, 3})});
    int n = 0;
    for (const MetaRecord& r : records)
      if (r.kind == MetaRecord::Line && r.points[0].y() == chart.Plot().Bottom &&
          r.points[1].y() < chart.Plot().Bottom - 10)
        ++n;
    return n;
  };
  EXPECT_EQ(arrowLines(0), 0);
  EXPECT_EQ(arrowLines(2), 3);  // shaft and two barbs
}

TEST(ZelmChartDraw, LongYLineLabelMovesThePlotEdge) {
  ZelmChart plain;
  Drawn(plain, 0, {Series({1, 2, 3})});
  ZelmChart labelled;
  labelled.AddYLine(2, QStringLiteral("Upper limit of the project"), 0xFF);
  const auto& records = Drawn(labelled, 0, {Series({1, 2, 3})});
  EXPECT_EQ(plain.Plot().Right, 1449);
  EXPECT_LT(labelled.Plot().Right, 1449 - 300);
  EXPECT_TRUE(TextsOf(records).contains(QStringLiteral("Upper limit of the project ")));
}

TEST(ZelmChartDraw, TimeChartGapAndSteps) {
  const std::vector<double> x = {1, 2, 3, 4, 5};
  // Lines: a hole at 3 leaves 1-2 and 4-5.
  ZelmChart lines;
  const auto& r = Drawn(
      lines, 4, {Series(x), SeriesWithHoles({5, 6, 0, 8, 9}, {true, true, false, true, true})});
  EXPECT_EQ(LinesOf(r, 0, 6), 2);
  // Steps: two lines between each pair of points, none after the last.
  ZelmChart steps;
  const auto& s = Drawn(steps, 5, {Series(x), Series({5, 6, 7, 8, 9})});
  const auto thick = [&] {
    std::vector<const MetaRecord*> v;
    for (const MetaRecord& rec : s)
      if (rec.kind == MetaRecord::Line && rec.pen.width == 6) v.push_back(&rec);
    return v;
  }();
  ASSERT_EQ(thick.size(), 8u);
  EXPECT_EQ(thick.back()->points[1].x(), steps.Plot().Right);  // the last horizontal ends at x 5
  ZelmChart single;
  EXPECT_EQ(LinesOf(Drawn(single, 4, {Series({3}), Series({7})}), 0, 6), 0);
}

TEST(ZelmChartDraw, KiviatWithOneAndFourAxesScalesSmallValuesAgainstOne) {
  ZelmChart four;
  four.SetChartType(8);
  four.SetDataKiviat({Series({0.5, 0.5, 0.5, 0.5})}, {"N", "E", "S", "W"}, false);
  four.Draw(true);
  const auto& records = four.GetMetafile().Records();
  EXPECT_TRUE(TextsOf(records).contains(QStringLiteral("Max = 1.0")));
  // The polygon is a square at half the radius: four lines of the series colour.
  EXPECT_EQ(LinesOf(records, 0, 2) >= 4, true);

  ZelmChart one;
  one.SetChartType(8);
  one.SetDataKiviat({Series({0.2})}, {"Only"}, false);
  one.Draw(true);
  EXPECT_TRUE(TextsOf(one.GetMetafile().Records()).contains(QStringLiteral("Only")));
}

TEST(ZelmChartDraw, PieZeroSliceAndZeroTotal) {
  ZelmChart pie;
  const auto& r = Drawn(pie, 9, {Series({2, 0, 2})}, false);
  ASSERT_EQ(RecordsOf(r, MetaRecord::Pie).size(), 2u);
  EXPECT_EQ(RecordsOf(r, MetaRecord::Pie)[1]->brush.color, pie.SeriesColor(3));
  const auto circles = RecordsOf(r, MetaRecord::Ellipse);
  ASSERT_EQ(circles.size(), 1u);
  EXPECT_EQ(circles[0]->pen.width, 6);

  ZelmChart empty;
  const auto& z = Drawn(empty, 9, {Series({0, 0, 0})});
  EXPECT_TRUE(RecordsOf(z, MetaRecord::Pie).empty());
  EXPECT_EQ(RecordsOf(z, MetaRecord::Ellipse).size(), 1u);

  ZelmChart whole;
  const auto& w = Drawn(whole, 9, {Series({5})});
  EXPECT_TRUE(RecordsOf(w, MetaRecord::Pie).empty());
  EXPECT_EQ(RecordsOf(w, MetaRecord::Ellipse).size(), 1u);
}

TEST(ZelmChartDraw, ScatterBelowTenPointsHasNoOutlierColouring) {
  ZelmChart chart;
  chart.SeedSpread(1);
  const auto& r = Drawn(chart, 7, {Series({1, 2, 3, 4, 100})}, false);
  for (const auto* e : RecordsOf(r, MetaRecord::Ellipse))
    EXPECT_EQ(e->brush.style, MetaBrush::Null);
  ZelmChart many;
  many.SeedSpread(1);
  const auto& m = Drawn(many, 7, {Series({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 100})}, false);
  int filled = 0;
  for (const auto* e : RecordsOf(m, MetaRecord::Ellipse))
    if (e->brush.style != MetaBrush::Null) ++filled;
  EXPECT_EQ(filled, 1);
}

TEST(ZelmChartDraw, SeededSpreadRepeatsAndAllEqualXGetsARange) {
  ZelmChart a, b;
  a.SeedSpread(7);
  b.SeedSpread(7);
  const QString da = DumpRecords(Drawn(a, 7, {Series(Ramp(30))}));
  EXPECT_EQ(da, DumpRecords(Drawn(b, 7, {Series(Ramp(30))})));
  a.SeedSpread(8);
  EXPECT_NE(da, DumpRecords(Drawn(a, 7, {Series(Ramp(30))})));
}

TEST(ZelmChartDraw, ScatterTexts) {
  ZelmChart flat;  // no correlation at all
  const auto& r = Drawn(flat, 6, {Series({1, 2, 3, 4, 5, 6}), Series({3, 1, 4, 1, 5, 2})});
  bool found = false;
  for (const QString& t : TextsOf(r))
    found = found || t.startsWith("Correlation not significant (R²=");
  EXPECT_TRUE(found);
  ZelmChart line;
  const auto& l = Drawn(line, 6, {Series({1, 2, 3, 4}), Series({-1, 1, 3, 5})});
  EXPECT_TRUE(TextsOf(l).contains(QStringLiteral("y = 2.00 x x -3.00  (R²=100%)")))
      << TextsOf(l).join(QLatin1Char('|')).toStdString();
}

TEST(ZelmChartOutput, BitmapKeepsTheAspectAndWmfIsPlaceable) {
  ZelmChart chart;
  Drawn(chart, 0, {Series({1, 2, 3})});
  const std::unique_ptr<Bitmap> bitmap = chart.GetBitmap(600, 24);
  ASSERT_NE(bitmap, nullptr);
  EXPECT_EQ(bitmap->Width(), 600);
  EXPECT_EQ(bitmap->Height(), 448);  // 150 x 112 mm
  const QString file = QDir::temp().filePath(QStringLiteral("chart.wmf"));
  ASSERT_TRUE(chart.SaveWMF(file, 1));
  QFile wmf(file);
  ASSERT_TRUE(wmf.open(QIODevice::ReadOnly));
  EXPECT_EQ(wmf.read(4), QByteArray("\xD7\xCD\xC6\x9A", 4)) << "the placeable key";
  wmf.close();
  QFile::remove(file);
}

// Every kind on the data sets that break charts: nothing, one value, all equal, all zero,
// negative values. Each draw ends with a finished recording of finite, on-page coordinates.
TEST(ZelmChartDraw, EveryKindOnDegenerateData) {
  const std::vector<std::vector<double>> sets = {
      {}, {7}, {5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5}, {0, 0, 0}, {-4, -1, -9, 3, -2}};
  for (int type = 0; type <= 10; ++type) {
    for (const auto& values : sets) {
      ZelmChart chart;
      chart.Title = QStringLiteral("T");
      chart.SeedSpread(3);
      chart.SetLegendData({QStringLiteral("a"), QStringLiteral("b")});
      std::vector<double> x;
      for (std::size_t i = 0; i < values.size(); ++i) x.push_back(45000 + 30.0 * i);
      if (type == 8) {
        chart.SetChartType(8);
        chart.SetDataKiviat({Series(values)}, {}, false);
        chart.Draw(false);
      } else if (type >= 4 && type <= 6) {
        Drawn(chart, type, {Series(x), Series(values)}, false);
      } else {
        Drawn(chart, type, {Series(values)}, false);
      }
      const Metafile& picture = chart.GetMetafile();
      ASSERT_TRUE(picture.IsReady()) << type;
      for (const MetaRecord& r : picture.Records())
        for (const QPoint& p : r.points) {
          ASSERT_GE(p.x(), -2000) << type << " " << values.size();
          ASSERT_LE(p.x(), 3000) << type << " " << values.size();
          ASSERT_LE(p.y(), 2000) << type << " " << values.size();
          ASSERT_GE(p.y(), -3000) << type << " " << values.size();
        }
    }
  }
}
