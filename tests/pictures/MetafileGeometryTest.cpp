// Recorded display lists: the integer points of every shape, arrow heads,
// boxes, pies, text placement, play rectangles and the monochrome rules.
#include <gtest/gtest.h>

#include <cmath>

#include <QGuiApplication>
#include <QPalette>

#include "common/MessageAssertions.h"
#include "pictures/Bitmap.h"
#include "pictures/Metafile.h"
#include "pictures/MetafileConversions.h"

namespace ombrelle {
namespace {

using Points = std::vector<QPoint>;
using Kinds = std::vector<MetaRecord::Kind>;

struct ShapeCase {
  ShapeCase(const char* n, int mode, void (*d)(Metafile&), Kinds k, std::vector<Points> p)
      : name(n), mapMode(mode), draw(d), kinds(std::move(k)), points(std::move(p)) {}
  const char* name;
  int mapMode;
  void (*draw)(Metafile&);
  Kinds kinds;
  std::vector<Points> points;  // per record
};

using M = Metafile;
constexpr auto Poly = MetaRecord::Polygon;
constexpr auto Line = MetaRecord::Line;
constexpr auto Chain = MetaRecord::Polyline;
constexpr auto Ellipse = MetaRecord::Ellipse;
constexpr auto Bezier = MetaRecord::Bezier;
constexpr auto Fill = MetaRecord::FillRect;

const Points kHexagon = {{10, -40}, {35, -10}, {85, -10}, {110, -40}, {85, -70}, {35, -70}};
const Points kOuter = {{20, -40}, {100, -40}, {80, 0}, {0, 0}};
const Points kInner = {{20, -34}, {94, -34}, {80, -6}, {6, -6}};
const Points kDiamond = {{0, -25}, {50, -50}, {100, -25}, {50, 0}};
const Points kSquare = {{50, 200}, {0, 100}, {50, 0}, {100, 100}};
const Points kArrow = {{100, 0}, {61, -10}, {61, 10}};

TEST(ShapeGeometry, RecordsTheExpectedIntegerPoints) {
  const ShapeCase cases[] = {
      ShapeCase("triangle rounds half to even", 2,
                [](M& m) { m.DrawTriangle(0.5f, 1.5f, 2.5f, -0.5f, -1.5f, 3.5f, 0xFF); }, {Poly},
                {{{0, 2}, {2, 0}, {-2, 4}}}),
      ShapeCase("diamond with border", 2, [](M& m) { m.DrawDiamond(0, 0, 100, -50, 0xFF, true); },
                {Poly, Chain, Line}, {kDiamond, kDiamond, {{50, 0}, {0, -25}}}),
      ShapeCase("hexagon", 2, [](M& m) { m.DrawHexagon(10, -10, 110, -70, 0xFF); }, {Poly},
                {kHexagon}),
      ShapeCase("hexagon inset 2.5 rounds to 2", 2,
                [](M& m) { m.DrawHexagon(0, 0, 10, -20, 0xFF); }, {Poly},
                {{{0, -10}, {2, 0}, {8, 0}, {10, -10}, {8, -20}, {2, -20}}}),
      ShapeCase("hexagon without colour is an outline", 2,
                [](M& m) { m.DrawHexagon(10, -10, 110, -70); }, {Chain, Line},
                {kHexagon, {{35, -70}, {10, -40}}}),
      ShapeCase("inverted house", 2, [](M& m) { m.DrawInvHouse(0, 0, 60, -90, 0xFF); }, {Poly},
                {{{0, -90}, {0, 30}, {30, 0}, {60, 30}, {60, -90}}}),
      ShapeCase("parallelogram", 2, [](M& m) { m.DrawParallelogram(0, 0, 100, -40, 0xFF); },
                {Poly, Chain, Line}, {kOuter, kOuter, {{0, 0}, {20, -40}}}),
      ShapeCase("parallelogram with inset copy", 2,
                [](M& m) { m.DrawParallelogram(0, 0, 100, -40, 0xFF, true); },
                {Chain, Line, Poly, Chain, Line, Poly, Chain, Line},
                {kOuter,
                 {{0, 0}, {20, -40}},
                 kOuter,
                 kOuter,
                 {{0, 0}, {20, -40}},
                 kInner,
                 kInner,
                 {{6, -6}, {20, -34}}}),
      ShapeCase("square polygon in a box taller than wide", 1,
                [](M& m) { m.DrawPolygon(0, 0, 100, 200, 4, 0xFF); }, {Poly, Chain, Line},
                {kSquare, kSquare, {{100, 100}, {50, 200}}}),
      ShapeCase("square polygon with negative y", 2,
                [](M& m) { m.DrawPolygon(0, 0, 100, -200, 4); }, {Chain, Line},
                {{{50, -200}, {0, -100}, {50, 0}, {100, -100}}, {{100, -100}, {50, -200}}}),
      ShapeCase("borderless filled box grows right and away from y1", 2,
                [](M& m) { m.DrawBox(10, -10, 50, -40, 0xFF); }, {Fill}, {{{10, -10}, {51, -41}}}),
      ShapeCase("borderless filled box, y downwards", 1,
                [](M& m) { m.DrawBox(10, 10, 50, 40, 0xFF); }, {Fill}, {{{10, 10}, {51, 41}}}),
      ShapeCase("bordered box keeps its corners", 2,
                [](M& m) { m.DrawBox(10, -10, 50, -40, 0xFF, true); }, {Fill, Chain},
                {{{10, -10}, {50, -40}}, {{10, -10}, {50, -10}, {50, -40}, {10, -40}, {10, -10}}}),
      ShapeCase("arrow head on a horizontal line", 2,
                [](M& m) { m.DrawArrowHead(0, 0, 100, 0, 0xFF, false, 1); }, {Poly}, {kArrow}),
      ShapeCase("arrow head pushed forward", 2,
                [](M& m) { m.DrawArrowHead(0, 0, 100, 0, 0xFF, true, 1); }, {Poly},
                {{{127, 0}, {88, -10}, {88, 10}}}),
      ShapeCase("arrow head on a vertical line", 2,
                [](M& m) { m.DrawArrowHead(0, 0, 0, -100, 0xFF, false, 1); }, {Poly},
                {{{0, -100}, {-10, -61}, {10, -61}}}),
      ShapeCase("arrow head on a line of no length", 2,
                [](M& m) { m.DrawArrowHead(5, 5, 5, 5, 0xFF, false, 1); }, {Poly},
                {{{5, 5}, {-34, -5}, {-34, 15}}}),
      ShapeCase("open arrow head has a border", 2,
                [](M& m) { m.DrawArrowHead(0, 0, 100, 0, 0xFF, false, 2); }, {Poly, Chain, Line},
                {kArrow, kArrow, {{61, 10}, {100, 0}}}),
      ShapeCase("line arrow head", 3, [](M& m) { m.DrawArrowHead(0, 0, 1000, 0, 0xFF, false, 3); },
                {Line, Line}, {{{1000, 0}, {614, -104}}, {{1000, 0}, {614, 104}}}),
      ShapeCase("round arrow head", 2, [](M& m) { m.DrawArrowHead(0, 0, 100, 0, 0xFF, false, 4); },
                {Ellipse}, {{{80, -13}, {100, 7}}}),
      ShapeCase("unknown arrow style draws nothing", 2,
                [](M& m) { m.DrawArrowHead(0, 0, 100, 0, 0xFF, false, 5); }, {}, {}),
      ShapeCase("bezier with its arrow from the point before the last", 2,
                [](M& m) {
                  m.DrawBezier({0, 0, 30, 0, 70, 0, 100, 0}, 0xFF, 2, 1);
                },
                {Bezier, Poly}, {{{0, 0}, {30, 0}, {70, 0}, {100, 0}}, kArrow}),
      ShapeCase("bezier whose last control point lies on its end", 2,
                [](M& m) {
                  m.DrawBezier({0, 0, 0, 100, 100, 0, 100, 0}, 0xFF, {}, 1);
                },
                {Bezier, Poly}, {{{0, 0}, {0, 100}, {100, 0}, {100, 0}}, kArrow}),
      ShapeCase("pie by angles", 2, [](M& m) { m.DrawPieAngle(0, 0, 100, 0, 1.5707964f, 0xFF); },
                {MetaRecord::Pie}, {{{-100, -100}, {100, 100}, {100, 0}, {0, 100}}}),
      ShapeCase("circle", 2, [](M& m) { m.DrawCircle(50, -50, 20, 0); }, {Ellipse},
                {{{30, -70}, {70, -30}}}),
  };
  for (const ShapeCase& c : cases) {
    SCOPED_TRACE(c.name);
    Metafile meta;
    ASSERT_TRUE(meta.Create(150, 112, false, QStringLiteral("T"), QString(), c.mapMode));
    c.draw(meta);
    const auto& records = meta.Records();
    ASSERT_EQ(records.size(), c.kinds.size());
    for (size_t i = 0; i < records.size(); ++i) {
      EXPECT_EQ(records[i].kind, c.kinds[i]) << "record " << i;
      EXPECT_EQ(records[i].points, c.points[i]) << "record " << i;
    }
  }
}

TEST(MetafileGeometry, PerCallPenAndCurrentPen) {
  Metafile meta;
  meta.Create(150, 112);
  meta.DrawLine(0, 0, 10, 10);
  meta.SetLineProperties(3, 0xFF0000);
  meta.DrawLine(0, 0, 10, 10);
  meta.DrawLine(0, 0, 10, 10, 0x00FF00);
  meta.DrawLine(0, 0, 10, 10, std::nullopt, 7);
  meta.DrawLine(0, 0, 10, 10);
  const auto& r = meta.Records();
  ASSERT_EQ(r.size(), 5u);
  EXPECT_EQ(r[0].pen, (MetaPen{0, 0}));  // the thinnest black pen of a new recording
  EXPECT_EQ(r[1].pen, (MetaPen{0xFF0000, 3}));
  EXPECT_EQ(r[2].pen, (MetaPen{0x00FF00, 3}));
  EXPECT_EQ(r[3].pen, (MetaPen{0xFF0000, 7}));
  EXPECT_EQ(r[4].pen, (MetaPen{0xFF0000, 3}));
  EXPECT_EQ(meta.GetColors(), (std::vector<std::uint32_t>{0xFFFFFF, 0xFF0000, 0x00FF00}));
}

TEST(MetafileGeometry, LineAngles) {
  const double pi = 3.14159265358979;
  EXPECT_DOUBLE_EQ(Metafile::GetLineAngle(0, 0), pi);
  EXPECT_DOUBLE_EQ(Metafile::GetLineAngle(0, 5), pi / 2 + pi);
  EXPECT_DOUBLE_EQ(Metafile::GetLineAngle(0, -5), -pi / 2 + pi);
  EXPECT_DOUBLE_EQ(Metafile::GetLineAngle(-4, 0), 0);
  EXPECT_DOUBLE_EQ(Metafile::GetLineAngle(1, 1), std::atan(1.0) + pi);
}

TEST(MetafileGeometry, PieInMapMode2RunsCounterClockwiseOnThePage) {
  Metafile meta;
  meta.Create(100, 100);  // 1000 x 1000 units, y from 0 down to -1000
  meta.DrawPieAngle(500, -500, 300, 0, 1.5707964f, 0x0000FF);
  meta.Ready();
  auto bitmap = meta.MakeBitmap(100, 100, 32, false);
  ASSERT_TRUE(bitmap);
  const QRgb red = qRgb(255, 0, 0), white = qRgb(255, 255, 255);
  EXPECT_EQ(bitmap->PixelColor(60, 40), red);    // upper right quarter of the page
  EXPECT_EQ(bitmap->PixelColor(60, 60), white);  // lower right stays empty
  EXPECT_EQ(bitmap->PixelColor(40, 40), white);
}

TEST(MetafileGeometry, TextRectangleAlignment) {
  Metafile meta;
  meta.Create(150, 112);
  meta.Font().size = 30;
  meta.ApplyFont(false);
  const float th = meta.TextHeight(QStringLiteral("Tg"));
  ASSERT_GT(th, 30);
  EXPECT_EQ(meta.TextHeight(QString()), th);
  EXPECT_EQ(meta.TextHeight(QStringLiteral("a\r\nb")), 2 * th);
  EXPECT_EQ(meta.TextWidth(QStringLiteral("ii\r\nWWWW")), meta.TextWidth(QStringLiteral("WWWW")));
  meta.PrintTextRect(QStringLiteral("Tg"), 0, -100, 200, -300, 2, 2);
  meta.PrintTextRect(QStringLiteral("Tg"), 0, -100, 200, -300, 1, 1);
  meta.PrintTextRect(QStringLiteral("Tg"), 0, -100, 200, -110, 0, 1);  // too low: stays at the top
  meta.PrintText(QStringLiteral("x"), 5, -6);
  const auto& r = meta.Records();
  ASSERT_EQ(r.size(), 4u);
  const int centreTop = static_cast<int>(std::nearbyint(-100 - 100 + th / 2));
  EXPECT_EQ(r[0].points, (Points{{0, centreTop}, {200, -300}}));
  EXPECT_EQ(r[0].flags, 0x801u);
  EXPECT_EQ(r[1].points, (Points{{0, static_cast<int>(-300 + th)}, {200, -300}}));
  EXPECT_EQ(r[1].flags, 0x802u);
  EXPECT_EQ(r[2].points, (Points{{0, -100}, {200, -110}}));
  EXPECT_EQ(r[3].flags, 0x900u);
  EXPECT_EQ(r[3].font.height, -30);
  EXPECT_EQ(r[3].font.face, QStringLiteral("Verdana"));
}

TEST(MetafileGeometry, FontInPointsUsesLogicalUnitsOfTheMapMode) {
  EXPECT_EQ(Metafile::PointsToLogical(10, 2), 35);
  EXPECT_EQ(Metafile::PointsToLogical(10, 3), 353);
  EXPECT_EQ(Metafile::PointsToLogical(10, 1), 0);
}

struct AreaCase {
  bool centred;
  bool stretch;
  float x1, y1, x2, y2;
  MetaRect expected;
};

TEST(MetafilePlay, RectanglesKeepTheAspect) {
  Metafile meta;
  meta.Create(150, 100);  // aspect 15001 / 10001
  meta.Ready();
  const AreaCase cases[] = {
      {false, false, 0, 0, 299, 299, {0, 0, 299, 199}},
      {false, false, 10, 20, 1000, 220, {10, 20, 310, 220}},
      {false, true, 10, 20, 1000, 220, {10, 20, 1000, 220}},
      {true, false, 0, 0, 400, 400, {0, 67, 400, 333}},
      {true, false, 0, 0, 1000, 100, {425, 0, 575, 100}},
  };
  for (const AreaCase& c : cases) {
    const MetaRect got = c.centred ? meta.CenteredArea(c.x1, c.y1, c.x2, c.y2)
                                   : meta.PlayArea(c.x1, c.y1, c.x2, c.y2, c.stretch);
    EXPECT_EQ(got, c.expected) << c.x1 << "," << c.y1 << "," << c.x2 << "," << c.y2;
  }
  int w = 300, h = 300;
  meta.GetSizeFit(w, h);
  EXPECT_EQ(w, 300);
  EXPECT_EQ(h, 200);
  w = 300, h = 100;
  meta.GetSizeFit(w, h);
  EXPECT_EQ(w, 150);
  EXPECT_EQ(h, 100);
}

TEST(MetafileCreate, FrameAndPlayRectangles) {
  Metafile meta;
  ASSERT_TRUE(meta.Create(150, 112));
  EXPECT_EQ(meta.FrameRect(), (MetaRect{0, 0, 15000, 11200}));
  EXPECT_EQ(meta.PlayRect(), (MetaRect{0, 0, 1497, -1117}));
  ASSERT_TRUE(meta.Create(150, 112, false, {}, {}, 3));
  EXPECT_EQ(meta.PlayRect(), (MetaRect{0, 0, 14974, -11174}));
  EXPECT_FALSE(meta.Create(150, 112, false, {}, {}, 4));
}

TEST(MetafileCreate, DescriptionUsesTheFirstTitleLine) {
  Metafile meta;
  meta.Create(10, 10, false, QStringLiteral("Charts"), QStringLiteral("Size\r\nof files"));
  EXPECT_EQ(meta.Description(), QStringLiteral("Charts - Size") + QChar(0));
  meta.Create(10, 10, false, QStringLiteral("Charts"), QString());
  EXPECT_EQ(meta.Description(), QStringLiteral("Charts") + QChar(0));
  meta.Create(10, 10, false, QString(), QStringLiteral("T"));
  EXPECT_EQ(meta.Description(), QStringLiteral("Ombrelle Viewer - T") + QChar(0));
  EXPECT_EQ(meta.Picture()->description,
            QStringLiteral("Ombrelle Viewer") + QChar(0) + "T" + QChar(0) + QChar(0));
}

TEST(MetafileCreate, StdPictureLeavesTheObjectEmpty) {
  Metafile meta;
  meta.Create(10, 10);
  meta.DrawLine(0, 0, 10, -10);
  auto picture = meta.GetStdPicture();
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->records.size(), 1u);
  EXPECT_EQ(meta.Picture(), nullptr);
  EXPECT_TRUE(meta.Records().empty());
  ScopedScriptedUi ui;
  int w = 0, h = 0;
  EXPECT_FALSE(meta.GetSize(w, h));
  EXPECT_ONLY_UI_MESSAGE(ui.ui,
                         "Cannot retrieve metafile size. Call to GetEnhMetaFileHeader failed.",
                         MsgStyle::Exclamation);
}

TEST(MetafileClipboard, ExtentsOfALargePictureGiveProportionsOnly) {
  Metafile meta;
  meta.Create(400, 300);
  EXPECT_EQ(meta.GetClipboardExtents().xExt, -156);
  EXPECT_EQ(meta.GetClipboardExtents().yExt, -117);
  meta.Create(150, 112);
  EXPECT_EQ(meta.GetClipboardExtents().xExt, 15001);
  EXPECT_EQ(meta.GetClipboardExtents().yExt, 11201);
  EXPECT_EQ(meta.GetClipboardExtents().mappingMode, 8);
}

TEST(MetafileClipboard, CopiesTheBitmapThroughTheService) {
  ScopedScriptedUi ui;
  Metafile meta;
  meta.Create(50, 20);
  meta.DrawBox(0, 0, 100, -100, 0x0000FF);
  meta.DrawLine(0, -150, 10, -150, 0x00FF00);  // three colours: a 4-bit picture
  meta.Ready();
  ASSERT_TRUE(meta.CopyToClipboard(200, 0));
  EXPECT_EQ(ui.ui.clipboardImage.size(), QSize(200, 80));
  EXPECT_EQ(ui.ui.clipboardImage.pixel(2, 2), qRgb(255, 0, 0));
  EXPECT_EQ(ui.ui.clipboardEmf, EmfBytes(*meta.Picture()));
  EXPECT_TRUE(ui.ui.messages.empty());
}

TEST(MetafileBitmap, DepthFollowsTheNumberOfColours) {
  const struct {
    int colours;
    int depth;
    int mode;
  } cases[] = {{2, 1, 1}, {3, 4, -4}, {16, 4, -4}, {17, 8, -8}, {256, 8, -8}, {257, 16, 16}};
  for (const auto& c : cases) {
    Metafile meta;
    meta.Create(20, 20);
    for (int i = 1; i < c.colours; ++i) meta.DrawBox(0, 0, 10, -10, static_cast<std::uint32_t>(i));
    meta.Ready();
    ASSERT_EQ(meta.GetColors().size(), static_cast<size_t>(c.colours));
    auto bitmap = meta.MakeBitmap(40, 40, 0, true);
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->Depth(), c.depth) << c.colours;
    EXPECT_EQ(bitmap->Mode(), c.mode) << c.colours;
  }
}

TEST(MetafileMonochrome, PensAndTextTurnBlackFillsStay) {
  Metafile meta;
  meta.Create(20, 20, true);
  meta.SetLineProperties(2, 0x0000FF);
  meta.DrawLine(0, 0, 1, 1);
  meta.DrawLine(0, 0, 1, 1, 0xFFFFFF);
  meta.DrawLine(0, 0, 1, 1, 0x80000008);
  meta.SetTextColor(0x123456);
  meta.PrintText(QStringLiteral("a"), 0, 0);
  meta.DrawBox(0, 0, 10, -10, 0x00FF00);
  meta.DrawPieAngle(0, 0, 10, 0, 1, 0x00FFFF);
  const auto& r = meta.Records();
  ASSERT_EQ(r.size(), 6u);
  EXPECT_EQ(r[0].pen.color, 0u);
  EXPECT_EQ(r[1].pen.color, 0xFFFFFFu);
  EXPECT_EQ(r[2].pen.color, 0u);
  EXPECT_EQ(r[3].textColor, 0u);
  EXPECT_EQ(r[4].brush.color, 0x00FF00u);
  EXPECT_EQ(r[5].brush.color, 0x00FFFFu);
  EXPECT_EQ(meta.MapColor(0x80000005), 0xFFFFFFu);  // the window background is white here
}

TEST(MetafileColours, SystemColoursResolveThroughTheApplicationPalette) {
  Metafile meta;
  meta.Create(20, 20);
  meta.DrawBox(0, 0, 10, -10, 0x80000005);
  meta.SetTextColor(0x80000008);
  const QColor base = QGuiApplication::palette().color(QPalette::Base);
  const std::uint32_t expected =
      static_cast<std::uint32_t>(base.red() | base.green() << 8 | base.blue() << 16);
  EXPECT_EQ(meta.Records()[0].brush.color, expected);
  EXPECT_EQ(meta.GetColors().size(), expected == 0xFFFFFF ? 1u : 2u);  // kept as a set
}

}  // namespace
}  // namespace ombrelle
