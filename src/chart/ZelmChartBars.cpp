// Bars, histogram and distribution.
#include <algorithm>
#include <cmath>

#include "chart/ZelmChart.h"
#include "pictures/Metafile.h"
#include "support/FormatNum.h"

namespace ombrelle {

namespace {

constexpr int kLinesAbove = 100;  // bars become lines above this many values

// Drops a last class that starts above the data and holds nothing: the class walk can end
// with one when the highest value lies inside the class before.
void DropEmptyTail(CStats& shares, double low, double width, double high) {
  const int c = shares.count();
  if (c > 1 && shares.ValueAtIndex(c) == 0 && low + (c - 1) * width > high) {
    shares.SetCount(c - 1);
    shares.CalcStats();
  }
}

}  // namespace

void ZelmChart::DrawBars(std::vector<CStats>& series, const QStringList& labels, bool showValues,
                         const std::vector<QStringList>* valueTexts) {
  SetMargins(true);
  DrawXAxis();
  DrawYGrid();
  DrawYAxis();
  if (!(m_scale.XMax > 0)) return;
  const double u = (m_plot.Right - m_plot.Left) / m_scale.XMax;
  const int k = static_cast<int>(series.size());
  const double b = k > 1 ? u / (k + 1) : u;
  // Bars stand on zero; a date scale starts above zero, so there they stand
  // on the axis instead of reaching below the plot.
  const double y0 = ValueToY(std::max(0.0, m_scale.YMin));
  for (int s = 1; s <= k; ++s) {
    CStats& one = series[s - 1];
    const int n = one.count();
    if (n < 1) continue;
    const std::uint32_t color = SeriesColor(s);
    const bool lines = n > kLinesAbove;
    if (lines) m_picture->SetLineProperties(2, color);
    double x = k > 1 ? (s - 1) * u / (k + 1) + m_plot.Left : m_plot.Left;
    for (int i = 1; i <= n; ++i) {
      const double v = one.ValueAtIndex(i);
      const double y = ValueToY(v);
      const std::uint32_t barColor = m_hasDataColors ? DataColor(i) : color;
      if (lines)
        m_picture->DrawLine(x, y0, x, y, barColor);
      else
        m_picture->DrawBox(x, y0, x + b, y, barColor, true);
      if (showValues) {
        QString text = FormatAxisValue(v);
        if (valueTexts && s <= static_cast<int>(valueTexts->size()) &&
            i <= (*valueTexts)[s - 1].size())
          text = (*valueTexts)[s - 1][i - 1];
        const double h = TextH(text), w = TextW(text);
        // Inside a bar that is tall enough, else resting on its top.
        const double top = y - y0 >= h ? y : std::max(y, y0) + h;
        m_picture->PrintText(text, x + b / 2 - w / 2, top);
      }
      x += u;
    }
    if (lines) m_picture->SetLineProperties(2, m_foreColor);
  }
  double x = m_plot.Left;
  for (int j = 0; j < labels.size(); ++j) {
    const QString& label = labels[j];
    const double w = TextW(label);
    if (w < u) {
      m_picture->PrintText(label, x + u / 2 - w / 2, m_plot.Bottom);
    } else {
      // Cut at its unit; the last one has three units of room, within the page.
      const double room = j == labels.size() - 1 ? std::min(3 * u, m_frame.Right - x) : u;
      m_picture->PrintTextRect(label, x, m_plot.Bottom, x + room, m_plot.Bottom - TextH(label), 0,
                               0);
    }
    m_picture->DrawLine(x, m_plot.Bottom, x, m_plot.Bottom - 10);
    x += u;
  }
  if (MarkIndex > 0) {
    const double mx = (MarkIndex - 0.5) * u + m_plot.Left;
    const double h = TextH(QStringLiteral("X"));
    const std::uint32_t color = m_hasDataColors ? DataColor(MarkIndex) : 0;
    const double bottom = m_plot.Bottom;
    m_picture->DrawLine(mx, bottom, mx, bottom - h, color);
    m_picture->DrawLine(mx, bottom, mx - h / 3, bottom - h / 3, color);
    m_picture->DrawLine(mx, bottom, mx + h / 3, bottom - h / 3, color);
  }
}

void ZelmChart::DrawHistogram() {
  CStats& data = m_series[0];
  const double low = data.Min, high = data.Max;
  const std::vector<HistogramClass> classes = HistogramClasses(data.CalcHistogram(20), low, high);
  double largest = 0;
  for (const HistogramClass& c : classes) largest = std::max(largest, c.Density);
  m_scale.YFormat = kAxisPercent;
  SetScale(high, largest, low, 0);
  SetMargins(false);
  DrawYAxis();
  DrawXAxis();
  DrawXTicks();
  if (!(largest > 0)) return;
  const double span = high == low ? 1 : high - low;
  const double width = m_plot.Right - m_plot.Left;
  for (const HistogramClass& c : classes) {
    const double x = width * (c.Left - low) / span + m_plot.Left;
    const double top = (m_plot.Top - m_plot.Bottom) * c.Density / largest + m_plot.Bottom;
    m_picture->DrawBox(x, m_plot.Bottom, x + c.RelWidth * width, top, SeriesColor(1), true);
  }
}

void ZelmChart::DrawDistribution() {
  bool allWhole = true;
  for (const CStats& s : m_series) allWhole = allWhole && s.DataType == 1;
  double low = SeriesLow(1), high = SeriesHigh(1);
  std::int16_t decimals = 0;
  double width;
  if (m_scale.XFormat == kAxisDate) {
    width = DateStep(4, low, high);
    low = RoundDateDown(low, width);
  } else {
    width = NiceStep(7, low, high, decimals);
  }
  if (allWhole) {
    if (width < 1) width = 1;
    decimals = 0;
  } else if (!(width > 0)) {
    width = 1;
  }
  const Fixed4 blockWidth = Fixed4::FromDouble(width);
  width = blockWidth.ToDouble();
  const double unit = std::pow(10.0, decimals);
  low = std::floor(low * unit) / unit;

  std::vector<CStats> shares;
  int classes = 0;
  double largest = 0;
  for (const CStats& s : m_series) {
    CStats one = s.count() > 0 ? s.CalcHistogram2(low, blockWidth, 1 - 0.1f, 8) : CStats();
    if (one.count() > 0) {
      DropEmptyTail(one, low, width, high);
      largest = std::max(largest, one.Max);
    }
    classes = std::max(classes, one.count());
    shares.push_back(std::move(one));
  }
  m_scale.XDecimals = decimals;
  const QStringList labels = DistributionLabels(
      classes, low, width, high, allWhole, [this](double v) { return FormatAxisValue(v, true); });
  std::vector<QStringList> texts;
  for (CStats& one : shares) {
    QStringList t;
    for (int i = 1; i <= one.count(); ++i) t << FormatPercent(one.ValueAtIndex(i));
    texts.push_back(t);
  }
  m_scale.YFormat = kAxisPercent;
  SetScale(classes, largest, 1, 0);
  m_scale.XDecimals = 0;
  DrawBars(shares, labels, true, &texts);
}

}  // namespace ombrelle
