#include "pictures/RichPicture.h"

namespace ombrelle::test {

namespace {

MetaRecord Make(MetaRecord::Kind kind, std::vector<QPoint> points) {
  MetaRecord r;
  r.kind = kind;
  r.points = std::move(points);
  return r;
}

MetaPen Pen(uint32_t color, int width) { return MetaPen{color, width, MetaPen::Solid}; }
MetaBrush Brush(uint32_t color) { return MetaBrush{color, MetaBrush::Solid}; }

}  // namespace

std::shared_ptr<MetaPicture> EmptyPicture(int widthMm, int heightMm) {
  auto p = std::make_shared<MetaPicture>();
  p->mapMode = 2;
  p->frameRect = {0, 0, widthMm * 100, heightMm * 100};
  p->playRect = {0, 0, widthMm * 10 - 3, -heightMm * 10 + 3};
  return p;
}

std::shared_ptr<MetaPicture> RichPicture(const QString& description, int widthMm, int heightMm) {
  auto p = EmptyPicture(widthMm, heightMm);
  p->description = description;
  auto& rs = p->records;
  auto add = [&](MetaRecord r) -> MetaRecord& { return rs.emplace_back(std::move(r)); };

  add(Make(MetaRecord::FillRect, {{50, -50}, {700, -520}})).brush = Brush(0x00CCFFFF);
  add(Make(MetaRecord::Polygon, {{100, -600}, {400, -600}, {250, -900}})).brush = Brush(0x000000FF);
  add(Make(MetaRecord::Line, {{50, -1080}, {1450, -1080}})).pen = Pen(0, 5);
  add(Make(MetaRecord::Polyline, {{800, -100}, {900, -300}, {1000, -150}, {1100, -350}})).pen =
      Pen(0x00FF0000, 8);
  MetaRecord& filled = add(Make(MetaRecord::Ellipse, {{800, -400}, {1100, -650}}));
  filled.pen = Pen(0, 3);
  filled.brush = Brush(0x0000A000);
  MetaRecord& hollow = add(Make(MetaRecord::Ellipse, {{1150, -400}, {1400, -650}}));
  hollow.pen = Pen(0x00FF00FF, 10);
  hollow.brush = MetaBrush{0xFFFFFF, MetaBrush::Null};
  MetaRecord& pie =
      add(Make(MetaRecord::Pie, {{500, -650}, {750, -900}, {750, -775}, {625, -650}}));
  pie.pen = Pen(0, 2);
  pie.brush = Brush(0x000080FF);
  add(Make(MetaRecord::Bezier, {{100, -950}, {250, -1060}, {400, -850}, {600, -1040}})).pen =
      Pen(0x00006000, 6);

  MetaFont title;
  title.face = "Verdana";
  title.height = -50;
  title.weight = 700;
  MetaRecord& text = add(Make(MetaRecord::DrawText, {{50, -60}, {700, -220}}));
  text.text = "Centred title\r\nsecond line";
  text.flags = 0x801;
  text.font = title;
  text.textColor = 0x00800000;
  MetaFont body;
  body.face = "Verdana";
  body.height = -35;
  MetaRecord& clipped = add(Make(MetaRecord::ExtTextOut, {{80, -300}, {50, -280}, {690, -360}}));
  clipped.text = "Clipped text at a point";
  clipped.flags = 4;
  clipped.font = body;
  clipped.textColor = 0;

  add(Make(MetaRecord::Polyline,
           {{1200, -80}, {1400, -80}, {1400, -300}, {1200, -300}, {1200, -80}}))
      .pen = Pen(0, 12);
  MetaRecord& fill = add(Make(MetaRecord::FloodFill, {{1300, -190}}));
  fill.brush = Brush(0x00FFFF00);
  fill.borderColor = 0;

  auto inner = EmptyPicture(20, 20);
  MetaRecord box = Make(MetaRecord::FillRect, {{20, -20}, {180, -180}});
  box.brush = Brush(0x00C08040);
  inner->records.push_back(box);
  MetaRecord cross = Make(MetaRecord::Line, {{20, -20}, {180, -180}});
  cross.pen = Pen(0x00FFFFFF, 6);
  inner->records.push_back(cross);
  MetaRecord nested = Make(MetaRecord::Picture, {{1200, -750}, {1400, -950}});
  nested.picture = inner;
  add(nested);
  return p;
}

}  // namespace ombrelle::test
