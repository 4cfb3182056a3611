#include "pictures/Metafile.h"

#include <cmath>

#include <QGuiApplication>
#include <QPalette>

#include "pictures/TextMeasure.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

constexpr double kPi = 3.14159265358979;
constexpr double kTwoPi = 6.28318530717958;
constexpr double kArrowWing = 0.2617993877991492;  // 15 degrees
constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::uint32_t kSystemColor = 0x80000000u;

// Half-to-even rounding of a coordinate to a recorded integer.
int Round(double value) { return static_cast<int>(std::nearbyint(value)); }

QPoint P(double x, double y) { return QPoint(Round(x), Round(y)); }

int Sign(double value) { return (value > 0) - (value < 0); }

std::uint32_t FromQColor(const QColor& color) {
  return static_cast<std::uint32_t>(color.red()) |
         (static_cast<std::uint32_t>(color.green()) << 8) |
         (static_cast<std::uint32_t>(color.blue()) << 16);
}

// The first line of text: up to the first CR LF; `text` keeps the rest.
QString FirstLine(QString& text) {
  const qsizetype at = text.indexOf(QStringLiteral("\r\n"));
  if (at < 0) {
    QString line = text;
    text.clear();
    return line;
  }
  QString line = text.left(at);
  text.remove(0, at + 2);
  return line;
}

MetaFont DefaultFont() {
  MetaFont font;
  font.face = QStringLiteral("Verdana");
  return font;  // height 0: the default size
}

}  // namespace

Metafile::Metafile() { m_font = DefaultFont(); }

Metafile::~Metafile() = default;

QString Metafile::Description() const {
  QString title = m_title;
  const QString first = FirstLine(title);
  if (first.isEmpty()) return m_appName + QChar(0);
  return m_appName + QStringLiteral(" - ") + first + QChar(0);
}

std::uint32_t Metafile::MapColor(std::uint32_t color) const {
  if (color & kSystemColor) {
    const QPalette palette = QGuiApplication::instance() ? QGuiApplication::palette() : QPalette();
    switch (color & ~kSystemColor) {
      case 5:  // window background
        color = FromQColor(palette.color(QPalette::Active, QPalette::Base));
        break;
      case 8:  // window text
        color = FromQColor(palette.color(QPalette::Active, QPalette::Text));
        break;
      case 15:  // button face
        color = FromQColor(palette.color(QPalette::Active, QPalette::Button));
        break;
      case 18:  // button text
        color = FromQColor(palette.color(QPalette::Active, QPalette::ButtonText));
        break;
      default:
        color = FromQColor(palette.color(QPalette::Active, QPalette::WindowText));
        break;
    }
  }
  color &= 0xFFFFFF;
  if (m_blackWhite) return color == kWhite ? kWhite : 0;
  return color;
}

void Metafile::RememberColor(std::uint32_t color) {
  // Brushes keep their colour as given, so resolve system colours only.
  if (color & kSystemColor) {
    const bool blackWhite = m_blackWhite;
    m_blackWhite = false;
    color = MapColor(color);
    m_blackWhite = blackWhite;
  }
  for (std::uint32_t known : m_colors)
    if (known == color) return;
  m_colors.push_back(color);
}

MetaBrush Metafile::BrushFor(std::uint32_t color) {
  RememberColor(color);
  MetaBrush brush;
  const bool blackWhite = m_blackWhite;
  m_blackWhite = false;  // fills are not made monochrome
  brush.color = MapColor(color);
  m_blackWhite = blackWhite;
  return brush;
}

MetaPen Metafile::CallPen(std::optional<std::uint32_t> color, std::optional<int> width) {
  if (!color && !width) return m_pen;
  MetaPen pen;
  pen.width = width.value_or(m_penWidth);
  pen.color = MapColor(color.value_or(m_penColor));
  RememberColor(pen.color);
  return pen;
}

MetaRecord& Metafile::Add(MetaRecord::Kind kind) {
  static MetaRecord discarded;
  if (!m_recording || !m_picture) {
    discarded = MetaRecord();  // drawing outside a recording goes nowhere
    return discarded;
  }
  MetaRecord& record = m_picture->records.emplace_back();
  record.kind = kind;
  record.pen = m_pen;
  return record;
}

const std::vector<MetaRecord>& Metafile::Records() const {
  static const std::vector<MetaRecord> none;
  return m_picture ? m_picture->records : none;
}

void Metafile::Reset() {
  m_picture.reset();
  m_recording = false;
  m_pen = MetaPen();
  m_font = DefaultFont();
  m_measure.reset();
  m_textColor = 0;
  m_colors.clear();
  m_colors.push_back(MapColor(kWhite));
}

bool Metafile::Create(double width, double height, bool blackWhite, const QString& appName,
                      const QString& title, int mapMode) {
  Reset();
  if (mapMode < 1 || mapMode > 3) return false;
  m_blackWhite = blackWhite;
  m_penWidth = 1;
  m_penColor = 0;
  m_mode = mapMode;
  m_appName = appName.isEmpty() ? UiServices::AppTitle() : appName;
  m_title = title;
  auto picture = std::make_shared<MetaPicture>();
  picture->mapMode = mapMode;
  picture->frameRect = {0, 0, Round(width * 100), Round(height * 100)};
  picture->description = m_appName + QChar(0) + m_title + QChar(0) + QChar(0);
  const MetaRect& f = picture->frameRect;
  // One screen pixel in 0.01 mm: the last pixel row and column of the frame
  // are inside the picture, so the play rectangle ends one pixel short.
  const double p = 2540.0 / TextMeasure::kScreenDpi;
  switch (mapMode) {
    case 3:
      picture->playRect = {f.left, -f.top, Round(f.right - p), Round(-f.bottom + p)};
      break;
    case 2:
      picture->playRect = {Round(f.left / 10.0), Round(-f.top / 10.0),
                           Round(f.right / 10.0 - p / 10), Round(-f.bottom / 10.0 + p / 10)};
      break;
    default: {
      const double twips = 0.5669291338582677;  // per 0.01 mm
      picture->playRect = {Round(f.left * twips), Round(f.top * twips), Round(f.right * twips),
                           Round(f.bottom * twips)};
      break;
    }
  }
  m_picture = std::move(picture);
  m_recording = true;
  return true;
}

void Metafile::Ready() { m_recording = false; }

std::shared_ptr<const MetaPicture> Metafile::GetStdPicture() {
  Ready();
  std::shared_ptr<const MetaPicture> picture = std::move(m_picture);
  m_picture.reset();
  return picture;
}

void Metafile::SetLineProperties(int width, std::uint32_t color) {
  m_penWidth = width;
  m_penColor = MapColor(color);
  m_pen = MetaPen{m_penColor, width, MetaPen::Solid};
  RememberColor(m_penColor);
}

void Metafile::SetTextColor(std::uint32_t color) { m_textColor = MapColor(color); }

int Metafile::PointsToLogical(double points, int mapMode) {
  if (mapMode == 2) return Round(points * 3.5277777777777777);
  if (mapMode == 3) return Round(points * 35.27777777777778);
  return 0;
}

double Metafile::GetLineAngle(double dx, double dy) {
  double angle = dx == 0 ? Sign(dy) * kPi / 2 : std::atan(dy / dx);
  if (dx >= 0) angle += 180.0 / 360.0 * 2 * kPi;
  return angle;
}

double Metafile::Aspect() const {
  const MetaRect f = FrameRect();
  const double height = f.bottom - f.top + 1;
  return std::abs((f.right - f.left + 1) / height);
}

// ---- lines and shapes ----

void Metafile::DrawLine(float x1, float y1, float x2, float y2, std::optional<std::uint32_t> color,
                        std::optional<int> width) {
  const MetaPen pen = CallPen(color, width);
  MetaRecord& record = Add(MetaRecord::Line);
  record.pen = pen;
  record.points = {P(x1, y1), P(x2, y2)};
}

void Metafile::DrawBox(float x1, float y1, float x2, float y2,
                       std::optional<std::uint32_t> fillColor, bool border) {
  if (fillColor) {
    const MetaBrush brush = BrushFor(*fillColor);
    MetaRecord& record = Add(MetaRecord::FillRect);
    record.brush = brush;
    if (border)
      record.points = {P(x1, y1), P(x2, y2)};
    else  // the fill leaves out the right and bottom edge: cover what a border would
      record.points = {P(x1, y1), P(x2 + 1.0, y2 + static_cast<double>(Sign(y2 - y1)))};
  }
  if (border) {
    MetaRecord& record = Add(MetaRecord::Polyline);
    record.points = {P(x1, y1), P(x2, y1), P(x2, y2), P(x1, y2), P(x1, y1)};
  }
}

void Metafile::DrawPoly(const std::vector<QPoint>& points, std::optional<std::uint32_t> color,
                        bool border) {
  if (points.empty()) return;
  if (color) {
    const MetaBrush brush = BrushFor(*color);
    MetaRecord& record = Add(MetaRecord::Polygon);
    record.brush = brush;
    record.points = points;
  }
  if (border || !color) {
    MetaRecord& outline = Add(MetaRecord::Polyline);
    outline.points = points;
    MetaRecord& closing = Add(MetaRecord::Line);
    closing.points = {points.back(), points.front()};
  }
}

void Metafile::DrawTriangle(float x1, float y1, float x2, float y2, float x3, float y3,
                            std::optional<std::uint32_t> color, bool border) {
  DrawPoly({P(x1, y1), P(x2, y2), P(x3, y3)}, color, border);
}

void Metafile::DrawDiamond(float x1, float y1, float x2, float y2,
                           std::optional<std::uint32_t> color, bool border) {
  const double cx = (double(x1) + x2) / 2, cy = (double(y1) + y2) / 2;
  DrawPoly({P(x1, cy), P(cx, y2), P(x2, cy), P(cx, y1)}, color, border);
}

void Metafile::DrawHexagon(float x1, float y1, float x2, float y2,
                           std::optional<std::uint32_t> color, bool border) {
  const int d = Round(std::abs(double(x2) - x1) / 4);
  const double cy = (double(y1) + y2) / 2;
  DrawPoly({P(x1, cy), P(x1 + d, y1), P(x2 - d, y1), P(x2, cy), P(x2 - d, y2), P(x1 + d, y2)},
           color, border);
}

void Metafile::DrawInvHouse(float x1, float y1, float x2, float y2,
                            std::optional<std::uint32_t> color, bool border) {
  const int d = Round(std::abs(double(y2) - y1) / 3);
  const double cx = (double(x1) + x2) / 2;
  DrawPoly({P(x1, y2), P(x1, y1 + d), P(cx, y1), P(x2, y1 + d), P(x2, y2)}, color, border);
}

void Metafile::DrawParallelogram(float x1, float y1, float x2, float y2,
                                 std::optional<std::uint32_t> color, bool inset) {
  const int d = Round((double(x2) - x1) / 5);
  const std::vector<QPoint> outer = {P(x1 + d, y2), P(x2, y2), P(x2 - d, y1), P(x1, y1)};
  if (inset) DrawPoly(outer, std::nullopt, false);
  DrawPoly(outer, color, true);
  if (!inset) return;
  const double h = double(y2) - y1;
  const int t = Round(h * 0.15);
  const int u = h == 0 ? 0 : Round(d * t / (h / 2));
  DrawPoly({P(x1 + d, y2 - t), P(x2 - u, y2 - t), P(x2 - d, y1 + t), P(x1 + u, y1 + t)}, color,
           true);
}

void Metafile::DrawPolygon(float x1, float y1, float x2, float y2, int sides,
                           std::optional<std::uint32_t> color) {
  if (sides <= 0) return;
  const double rx = (double(x2) - x1) / 2, ry = (double(y2) - y1) / 2;
  const double cx = (double(x1) + x2) / 2, cy = (double(y1) + y2) / 2;
  double sx = 1, sy = 1;
  if (rx > ry)
    sy = rx == 0 ? 1 : ry / rx;
  else
    sx = ry == 0 ? 1 : rx / ry;
  const int r = Round(std::max(rx, ry));
  std::vector<QPoint> points;
  points.reserve(sides);
  for (int k = 0; k < sides; ++k) {
    const double angle = kTwoPi * k / sides + kPi / 2;
    const int px = Round(std::cos(angle) * r);
    const int py = Round(std::sin(angle) * r);
    points.push_back(P(px * sx + cx, py * sy + cy));
  }
  DrawPoly(points, color, true);
}

void Metafile::DrawArrowHead(float x1, float y1, float x2, float y2, std::uint32_t color,
                             bool pushForward, int style) {
  const double a = GetLineAngle(Round(double(x2) - x1), Round(double(y2) - y1));
  const double len = m_mode == 3 ? 400 : m_mode == 2 ? 40 : 0;
  double tx = x2, ty = y2;
  if (pushForward) {
    tx -= (2 * len / 3) * std::cos(a);
    ty -= (2 * len / 3) * std::sin(a);
  }
  const double w1x = tx + len * std::cos(a + kArrowWing), w1y = ty + len * std::sin(a + kArrowWing);
  const double w2x = tx + len * std::cos(a - kArrowWing), w2y = ty + len * std::sin(a - kArrowWing);
  const auto f = [](double v) { return static_cast<float>(v); };
  switch (style) {
    case 1:
      DrawTriangle(f(tx), f(ty), f(w1x), f(w1y), f(w2x), f(w2y), color, false);
      break;
    case 2:
      DrawTriangle(f(tx), f(ty), f(w1x), f(w1y), f(w2x), f(w2y), kWhite, true);
      break;
    case 3:
      DrawLine(f(tx), f(ty), f(w1x), f(w1y), color);
      DrawLine(f(tx), f(ty), f(w2x), f(w2y), color);
      break;
    case 4: {
      const double q = len / 4;
      DrawCircle(Round(tx + q * std::cos(a + kArrowWing)), Round(ty + q * std::sin(a + kArrowWing)),
                 Round(q), 0, kWhite);
      break;
    }
    default:
      break;
  }
}

void Metafile::DrawBezier(const std::vector<float>& points, std::optional<std::uint32_t> color,
                          std::optional<int> width, int arrowStyle) {
  const size_t n = points.size() / 2;
  if (n < 2) return;
  const MetaPen pen = CallPen(color, width);
  MetaRecord& record = Add(MetaRecord::Bezier);
  record.pen = pen;
  record.points.reserve(n);
  for (size_t i = 0; i < n; ++i) record.points.push_back(P(points[2 * i], points[2 * i + 1]));
  if (arrowStyle == 0) return;
  size_t before = n - 2;
  if (points[2 * before] == points[2 * (n - 1)] &&
      points[2 * before + 1] == points[2 * (n - 1) + 1] && n >= 4)
    before = n - 4;  // the chain's last control point lies on its end
  DrawArrowHead(points[2 * before], points[2 * before + 1], points[2 * (n - 1)],
                points[2 * (n - 1) + 1], color.value_or(0), false, arrowStyle);
}

void Metafile::DrawPieAngle(int x, int y, int radius, float angle1, float angle2,
                            std::uint32_t color) {
  const MetaBrush brush = BrushFor(color);
  MetaRecord& record = Add(MetaRecord::Pie);
  record.brush = brush;
  const double r = radius;
  record.points = {QPoint(x - radius, y - radius), QPoint(x + radius, y + radius),
                   P(x + r * std::cos(angle1), y + r * std::sin(angle1)),
                   P(x + r * std::cos(angle2), y + r * std::sin(angle2))};
}

void Metafile::DrawPie(float x1, float y1, float x2, float y2, float x3, float y3, float x4,
                       float y4, std::uint32_t color) {
  const MetaBrush brush = BrushFor(color);
  MetaRecord& record = Add(MetaRecord::Pie);
  record.brush = brush;
  record.points = {P(x1, y1), P(x2, y2), P(x3, y3), P(x4, y4)};
}

void Metafile::DrawEllipse(int x1, int y1, int x2, int y2, int penWidth,
                           std::optional<std::uint32_t> fillColor) {
  MetaBrush brush{0, MetaBrush::Null};
  if (fillColor) brush = BrushFor(*fillColor);
  MetaRecord& record = Add(MetaRecord::Ellipse);
  record.brush = brush;
  if (penWidth != 0) record.pen = MetaPen{m_penColor, penWidth, MetaPen::Solid};
  record.points = {QPoint(x1, y1), QPoint(x2, y2)};
}

void Metafile::DrawCircle(int x, int y, int radius, int penWidth,
                          std::optional<std::uint32_t> fillColor) {
  DrawEllipse(x - radius, y - radius, x + radius, y + radius, penWidth, fillColor);
}

void Metafile::Fill(float x, float y, std::uint32_t color, std::uint32_t borderColor) {
  const MetaBrush brush = BrushFor(color);
  MetaRecord& record = Add(MetaRecord::FloodFill);
  record.brush = brush;
  record.borderColor = MapColor(borderColor);
  record.points = {P(x, y)};
}

void Metafile::DrawEMF(std::shared_ptr<const MetaPicture> picture) {
  if (!picture || !m_picture) return;
  const MetaRect r = m_picture->playRect;
  MetaRecord& record = Add(MetaRecord::Picture);
  record.points = {QPoint(r.left, r.top), QPoint(r.right, r.bottom)};
  record.picture = std::move(picture);
}

// ---- text ----

MetafileFont& Metafile::Font() {
  if (!m_fontObject) m_fontObject.emplace();
  return *m_fontObject;
}

void Metafile::SetFont(const MetafileFont& font) { m_fontObject = font; }

void Metafile::ApplyFont(bool sizeInPoints) {
  const MetafileFont& f = Font();
  MetaFont font;
  font.face = f.name;
  font.height = sizeInPoints ? -PointsToLogical(f.size, m_mode) : -Round(f.size);
  font.weight = f.Weight();
  font.italic = f.italic;
  font.underline = f.underline;
  font.strikeout = f.strikethrough;
  font.charset = f.charset;
  if (!(font == m_font)) m_measure.reset();
  m_font = font;
}

const TextMeasure& Metafile::Measure() const {
  if (!m_measure) m_measure = std::make_shared<TextMeasure>(m_font, m_mode);
  return *m_measure;
}

float Metafile::TextWidth(const QString& text) const {
  QString rest = text;
  float widest = 0;
  do {
    widest = std::max(widest, Measure().LineWidth(FirstLine(rest)));
  } while (!rest.isEmpty());
  return widest;
}

float Metafile::TextHeight(const QString& text) const {
  QString rest = text;
  float sum = 0;
  do {
    FirstLine(rest);
    sum += Measure().LineHeight();
  } while (!rest.isEmpty());
  return sum;
}

void Metafile::PrintText(const QString& text, float x, float y) {
  MetaRecord& record = Add(MetaRecord::DrawText);
  record.text = text;
  record.font = m_font;
  record.textColor = m_textColor;
  record.flags = 0x900;  // no clipping, no prefix
  record.points = {P(x, y), P(x, y)};
  RememberColor(m_textColor);
}

void Metafile::PrintTextRect(const QString& text, float x1, float y1, float x2, float y2,
                             int hAlign, int vAlign) {
  std::uint32_t flags = 0x800;
  if (hAlign == 1) flags = 0x802;
  if (hAlign == 2) flags = 0x801;
  double top = y1;
  const double th = TextHeight(text);
  if (th <= std::abs(double(y2) - y1)) {
    if (vAlign == 2) top = Round(Round(y1) + (double(y2) - y1) / 2 + th / 2);
    if (vAlign == 1) top = Round(Round(y2) + th);
  }
  MetaRecord& record = Add(MetaRecord::DrawText);
  record.text = text;
  record.font = m_font;
  record.textColor = m_textColor;
  record.flags = flags;
  record.points = {P(x1, top), P(x2, y2)};
  RememberColor(m_textColor);
}

void Metafile::PrintTextBox(const QString& text, float x1, float y1, float x2, float y2,
                            bool border, std::optional<std::uint32_t> fillColor) {
  if (m_blackWhite)
    DrawBox(x1, y1, x2, y2, std::nullopt, true);
  else
    DrawBox(x1, y1, x2, y2, fillColor, border);
  QString rest = text;
  double y = y2;
  const double x = (double(x1) + x2) / 2;
  do {
    const QString line = FirstLine(rest);
    MetaRecord& record = Add(MetaRecord::ExtTextOut);
    record.text = line;
    record.font = m_font;
    record.textColor = m_textColor;
    record.align = 6;  // centred across, top at y
    record.flags = 4;  // clipped to the box
    record.points = {P(x, y), P(x1, y1), P(x2, y2)};
    y -= TextHeight(line);
  } while (!rest.isEmpty());
  RememberColor(m_textColor);
}

}  // namespace ombrelle
