#include "chart/ZelmChart.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "pictures/Bitmap.h"
#include "pictures/Metafile.h"

namespace ombrelle {

namespace {

constexpr std::uint32_t Rgb(std::uint32_t r, std::uint32_t g, std::uint32_t b) {
  return r | (g << 8) | (b << 16);
}

constexpr std::uint32_t kDefaultSeriesColors[10] = {Rgb(84, 104, 159),
                                                    Rgb(138, 72, 72),
                                                    Rgb(204, 116, 29),
                                                    Rgb(87, 121, 26),
                                                    Rgb(244, 31, 121),
                                                    Rgb(255, 219, 0),
                                                    Rgb(153, 164, 201),
                                                    Rgb(185, 148, 148),
                                                    0,
                                                    0};

constexpr std::uint32_t kSystemWindow = 0x80000005;
constexpr std::uint32_t kSystemWindowText = 0x80000008;

}  // namespace

ZelmChart::ZelmChart()
    : m_picture(std::make_unique<Metafile>()),
      m_spread(
          static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count())) {
  std::copy(std::begin(kDefaultSeriesColors), std::end(kDefaultSeriesColors), m_seriesColors);
  m_dataColors.assign(std::begin(kDefaultSeriesColors), std::end(kDefaultSeriesColors));
}

ZelmChart::~ZelmChart() = default;

void ZelmChart::SetData(const std::vector<CStats>& series) {
  m_series = series;
  for (CStats& s : m_series) {
    if (s.count() > 0) s.CalcStats();
  }
}

void ZelmChart::SetDataKiviat(const std::vector<CStats>& series, const QStringList& labels,
                              bool percent) {
  SetData(series);
  m_axisCount = 0;
  for (const CStats& s : m_series) m_axisCount = std::max(m_axisCount, s.count());
  m_scale.YFormat = percent ? kAxisPercent : kAxisNumber;
  m_kiviatLabels = labels;
  m_kiviatLabels.resize(m_axisCount);
}

void ZelmChart::SetLegendData(const QStringList& names) {
  ShowLegend = true;
  LegendGiven = true;
  m_legendData = names;
  m_legendData.resize(SeriesCount());
}

void ZelmChart::SetDataLabels(const QStringList& labels) {
  m_dataLabels = labels;
  HasLabels = true;
}

void ZelmChart::SetDataColors(const std::vector<std::uint32_t>& colors) {
  m_dataColors = colors;
  m_hasDataColors = true;
}

std::uint32_t ZelmChart::SeriesColor(int index) const {
  return index >= 1 && index <= 10 ? m_seriesColors[index - 1] : 0;
}

void ZelmChart::SetSeriesColor(int index, std::uint32_t color) {
  if (index >= 1 && index <= 10) m_seriesColors[index - 1] = color;
}

void ZelmChart::SetNumberFormat(std::int32_t yKind, std::int32_t xKind) {
  m_scale.YFormat = yKind;
  m_scale.XFormat = xKind;
}

void ZelmChart::AddYLine(double value, const QString& label, std::uint32_t color) {
  m_yLines.push_back({value, label, color});
}

void ZelmChart::EnsureDataColors(int count) {
  const int old = static_cast<int>(m_dataColors.size());
  for (int i = old + 1; i <= count; ++i) m_dataColors.push_back(GeneratedDataColor(i, count));
}

std::uint32_t ZelmChart::DataColor(int index) const {
  if (index >= 1 && index <= static_cast<int>(m_dataColors.size())) return m_dataColors[index - 1];
  return SeriesColor(index);
}

double ZelmChart::SeriesHigh(int from) const {
  double high = 0;
  bool any = false;
  for (int s = from; s <= SeriesCount(); ++s) {
    const CStats& series = m_series[s - 1];
    if (series.count() == 0) continue;
    high = any ? std::max(high, series.Max) : series.Max;
    any = true;
  }
  return high;
}

double ZelmChart::SeriesLow(int from) const {
  double low = 0;
  bool any = false;
  for (int s = from; s <= SeriesCount(); ++s) {
    const CStats& series = m_series[s - 1];
    if (series.count() == 0) continue;
    low = any ? std::min(low, series.Min) : series.Min;
    any = true;
  }
  return low;
}

void ZelmChart::Draw(bool BlackWhite) {
  m_picture = std::make_unique<Metafile>();
  const bool hasData = !m_series.empty() && m_series[0].count() > 0;
  if (hasData) SetScale(m_series[0].count(), SeriesHigh(1), 1, SeriesLow(1));
  if (BlackWhite) {
    m_backColor = 0xFFFFFF;
    m_foreColor = 0;
    m_axisColor = 0;
  } else {
    m_backColor = kSystemWindow;
    m_foreColor = kSystemWindowText;
    m_axisColor = Rgb(64, 0, 128);
  }
  if (m_chartKind == 9 && hasData) EnsureDataColors(m_series[0].count());
  if (m_chartKind == 1) ShowLegend = false;  // a histogram has one series and no legend
  m_pageAspect = PageAspectFor(m_chartKind);
  m_pageHeight = PageHeightFor(m_chartKind);
  m_frame = PageFrame(m_pageHeight);
  m_plot = m_frame;
  if (ShowLegend) m_legendBox = LegendBoxFor(m_frame);
  m_picture->Create(150, m_pageHeight, BlackWhite, QString(), Title, 2);
  m_picture->SetLineProperties(2, m_foreColor);
  m_picture->SetTextColor(m_foreColor);
  MetafileFont font;
  font.name = QStringLiteral("Verdana");
  m_picture->SetFont(font);
  SetFontSize(80);
  DrawTitle();
  DrawAxisCaption();
  const bool known = m_chartKind >= 0 && m_chartKind <= 9;
  // A dot plot may come with its values in the second place (see DrawScatter).
  const bool dotsInSecond = m_chartKind == 7 && m_series.size() >= 2 && m_series[1].count() > 0;
  if (known && (hasData || m_chartKind == 8 || dotsInSecond)) {
    switch (m_chartKind) {
      case 0:
        DrawBars(m_series, m_dataLabels, HasLabels, nullptr);
        break;
      case 1:
        DrawHistogram();
        break;
      case 2:
        DrawDistribution();
        break;
      case 3:
        DrawDistributionPie();
        break;
      case 4:
      case 5:
        DrawTimeChart(m_chartKind == 5);
        break;
      case 6:
      case 7:
        DrawScatter(m_chartKind == 6);
        break;
      case 8:
        DrawKiviat();
        break;
      case 9:
        DrawPieChart(m_series[0]);
        break;
    }
    if (m_chartKind <= 7 && m_chartKind != 3) DrawYLines();
    DrawLegend();
  }
  m_picture->Ready();
}

// --- Text and scale -------------------------------------------------------------------------

void ZelmChart::SetFontSize(int size) {
  m_picture->Font().size = static_cast<float>(size) * TextScale;
  m_picture->ApplyFont(false);
  m_fontSize = size;
}

double ZelmChart::TextW(const QString& text) const { return m_picture->TextWidth(text); }
double ZelmChart::TextH(const QString& text) const { return m_picture->TextHeight(text); }

double ZelmChart::TextWidthAt(const QString& text, int size) {
  SetFontSize(size);
  return TextW(text);
}

double ZelmChart::TextHeightAt(const QString& text, int size) {
  SetFontSize(size);
  return TextH(text);
}

void ZelmChart::SetScale(double XHigh, double YHigh, double XLow, double YLow) {
  m_scale.SetScale(XHigh, YHigh, XLow, YLow);
}

void ZelmChart::SetMargins(bool WithYLabels) {
  MarginInput in;
  in.Frame = m_frame;
  in.LegendBox = m_legendBox;
  in.ShowLegend = ShowLegend;
  in.Title = Title;
  in.AxisCaption = AxisCaption;
  in.WithYLabels = WithYLabels;
  in.YMaxLabel = FormatAxisValue(m_scale.YMax);
  for (const YLine& line : m_yLines) in.YLineLabels << line.Label;
  MarginMeasure measure;
  measure.Width = [this](const QString& t, int size) { return TextWidthAt(t, size); };
  measure.Height = [this](const QString& t, int size) { return TextHeightAt(t, size); };
  m_plot = ComputePlot(in, measure);
}

double ZelmChart::ValueToY(double v) const {
  return m_scale.ValueToY(v, m_plot.Top, m_plot.Bottom);
}

double ZelmChart::XPos(double v) const {
  const double range = m_scale.XMax == m_scale.XMin ? 1 : m_scale.XMax - m_scale.XMin;
  return (m_plot.Right - m_plot.Left) * (v - m_scale.XMin) / range + m_plot.Left;
}

QString ZelmChart::FormatAxisValue(double v, bool IsX, bool Multiply) const {
  return m_scale.FormatAxisValue(v, IsX, Multiply);
}

// --- Frame, axes and grid -------------------------------------------------------------------

void ZelmChart::DrawTitle() {
  if (Title.isEmpty()) return;
  SetFontSize(60);
  const double w = TextW(Title);
  m_picture->PrintText(Title, (m_frame.Left + m_frame.Right) / 2.0 - w / 2, m_frame.Top);
}

void ZelmChart::DrawAxisCaption() {
  if (AxisCaption.isEmpty()) return;
  SetFontSize(30);
  const double x = m_frame.Right - TextW(QLatin1Char(' ') + AxisCaption);
  const double y = m_frame.Bottom + 1.5 * TextH(AxisCaption);
  m_picture->PrintText(AxisCaption, x, y);
}

void ZelmChart::DrawYGrid() {
  SetFontSize(30);
  if (m_scale.YStep == 0) return;
  for (int i = 0; i <= m_scale.YSteps; ++i) {
    const double v = i * m_scale.YStep + m_scale.YMin;
    const double y = ValueToY(v);
    if (v != m_scale.YMin) m_picture->DrawLine(m_plot.Left, y, m_plot.Right, y, GridColor);
    const QString label = FormatAxisValue(v) + QLatin1Char(' ');
    m_picture->PrintText(label, m_plot.Left - TextW(label), y + TextH(label) / 2);
  }
}

void ZelmChart::DrawXAxis() {
  const double y = ValueToY(m_scale.YMin);
  m_picture->DrawLine(m_plot.Left, y, m_frame.Right, y, m_axisColor);
  DrawAxisArrow(m_plot.Left, y, m_frame.Right, y, m_axisColor);
}

void ZelmChart::DrawYAxis() {
  m_picture->DrawLine(m_plot.Left, m_plot.Bottom, m_plot.Left, m_frame.Top, m_axisColor);
  DrawAxisArrow(m_plot.Left, m_plot.Bottom, m_plot.Left, m_frame.Top, m_axisColor);
}

void ZelmChart::DrawAxisArrow(double x1, double y1, double x2, double y2, std::uint32_t color) {
  const Triangle t = AxisArrowHead(x1, y1, x2, y2);
  m_picture->DrawTriangle(t.X[0], t.Y[0], t.X[1], t.Y[1], t.X[2], t.Y[2], color, true);
}

void ZelmChart::DrawXTicks() {
  SetFontSize(30);
  if (m_scale.XMax == m_scale.XMin || !(m_scale.XStep > 0)) return;
  const double axisY = ValueToY(m_scale.YMin);
  constexpr int kMaxTicks = 1000;
  for (int i = 0; i < kMaxTicks; ++i) {
    const double v = i * m_scale.XStep + m_scale.XMin;
    if (v + m_scale.XStep > m_scale.XMax) break;
    const double x = XPos(v);
    // This grid line takes x for both of its y coordinates, so it lies above the page and
    // never shows: a numeric X axis has no visible grid.
    if (i > 0) m_picture->DrawLine(m_plot.Left, x, m_plot.Right, x, GridColor);
    m_picture->DrawLine(x, axisY, x, axisY - 10);
    const QString label = FormatAxisValue(v, true);
    // Below the tick, so that it does not cross the digits.
    m_picture->PrintText(label, x - TextW(label) / 2, axisY - 10);
  }
}

void ZelmChart::DrawDateTicks() {
  if (m_series.empty() || m_series[0].count() == 0) return;
  const double start = m_series[0].Min, end = m_series[0].Max;
  const double range = end == start ? 1 : end - start;
  // On the zero line, or on the axis when the values are dates above zero.
  const double y = ValueToY(std::max(0.0, m_scale.YMin));
  SetFontSize(30);
  for (const DateTick& tick : DateTicks(start, end)) {
    const double x =
        (m_plot.Right - m_plot.Left) * (tick.Date - m_scale.XMin) / range + m_plot.Left;
    m_picture->DrawLine(x, y, x, y + 20);
    // The label starts at its tick, but the last ones stay on the page.
    m_picture->PrintText(tick.Label, std::min(x, m_frame.Right - TextW(tick.Label)), y);
  }
}

void ZelmChart::DrawYLines() {
  for (const YLine& line : m_yLines) {
    const double y = ValueToY(line.Value);
    m_picture->DrawLine(m_plot.Left, y, m_plot.Right, y, line.Color);
    m_picture->PrintText(line.Label + QLatin1Char(' '), m_plot.Right, y + TextH(line.Label) / 2);
  }
}

// --- Legend ---------------------------------------------------------------------------------

void ZelmChart::DrawLegend() {
  std::vector<std::uint32_t> seriesColors(m_seriesColors, m_seriesColors + 10);
  switch (m_chartKind) {
    case 3:
      DrawLegendBox(static_cast<int>(m_dataLabels.size()), m_dataLabels, m_dataColors, 1);
      break;
    case 4:
    case 5:
    case 6:
      DrawLegendBox(SeriesCount() - 1, m_legendData, seriesColors, 2);
      break;
    case 9:
      if (HasLabels && !m_series.empty())
        DrawLegendBox(m_series[0].count(), m_dataLabels, m_dataColors, 1);
      break;
    default:
      DrawLegendBox(SeriesCount(), m_legendData, seriesColors, 1);
      break;
  }
}

void ZelmChart::DrawLegendBox(int count, const QStringList& names,
                              const std::vector<std::uint32_t>& colors, int first) {
  if (!ShowLegend || count <= 0) return;
  const ChartRect& box = m_legendBox;
  m_picture->DrawBox(box.Left, box.Top, box.Right, box.Bottom, std::nullopt, true);
  SetFontSize(30);
  const double h = TextH(QStringLiteral("Tg"));
  const double y = (box.Top + box.Bottom) / 2.0 + h / 2;
  const double g = TextW(QStringLiteral("  "));
  double cell = 0;
  const std::vector<double> lefts = LegendCellLefts(box, count, g, cell);
  const bool lineSwatch =
      m_chartKind == 4 || m_chartKind == 5 || m_chartKind == 6 || m_chartKind == 8;
  const double swatch = lineSwatch ? 1.5 * h : h;
  const double space = TextW(QStringLiteral(" "));
  for (int n = 0; n < count; ++n) {
    const int i = first + n;
    const double x = lefts[n];
    const std::uint32_t color = i >= 1 && i <= static_cast<int>(colors.size()) ? colors[i - 1] : 0;
    if (lineSwatch)
      m_picture->DrawLine(x, y - h / 2, x + swatch, y - h / 2, color, 6);
    else
      m_picture->DrawBox(x, y, x + swatch, y - h, color, true);
    const QString name = i >= 1 && i <= names.size() ? names[i - 1] : QString();
    m_picture->PrintTextRect(name, x + swatch + space, y, x - g + cell, y - h, 0, 0);
  }
}

// --- Output ---------------------------------------------------------------------------------

void ZelmChart::Display(QPainter& painter, int x1, int y1, int x2, int y2) const {
  m_picture->Play(painter, x1, y1, x2, y2, false);
}

bool ZelmChart::PrintOut(QPagedPaintDevice* printer) { return m_picture->PrintOut(printer); }

bool ZelmChart::SaveBMP(const QString& file, int width, int depth) {
  return m_picture->SaveBMP(file, width, 0, depth, true);
}

std::unique_ptr<Bitmap> ZelmChart::GetBitmap(int width, int depth) {
  return m_picture->MakeBitmap(width, 0, depth, true);
}

bool ZelmChart::SaveWMF(const QString& file, float scale) {
  return m_picture->SavePlaceableWMF(file, scale, 0);
}

bool ZelmChart::CopyToClipboard() { return m_picture->CopyToClipboard(0, 0); }

const Metafile& ZelmChart::GetMetafile() const { return *m_picture; }

Metafile& ZelmChart::GetMetafile() { return *m_picture; }

}  // namespace ombrelle
