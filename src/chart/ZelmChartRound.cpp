// Kiviat and pie charts.
#include <algorithm>
#include <cmath>

#include "chart/ZelmChart.h"
#include "pictures/Metafile.h"
#include "support/FormatNum.h"

namespace ombrelle {

namespace {

constexpr double kHalfPi = 6.28318530717958 / 4;

}  // namespace

void ZelmChart::DrawKiviat() {
  double m = SeriesHigh(1);
  if (m < 1) m = 1;
  SetMargins(false);
  const double cx = (m_plot.Left + m_plot.Right) / 2.0, cy = (m_plot.Top + m_plot.Bottom) / 2.0;
  const double R =
      0.9 * std::min(std::abs(m_plot.Right - m_plot.Left), std::abs(m_plot.Top - m_plot.Bottom)) /
      2;
  const double t = R / 50;
  SetFontSize(40);
  m_picture->PrintText(QStringLiteral("Max = ") + FormatAxisValue(m), cx + R, cy - R);
  const std::vector<double> angles = KiviatAngles(m_axisCount);
  for (int i = 1; i <= m_axisCount; ++i) {
    const double a = angles[i - 1];
    for (int f = 0; f <= 5; ++f) {
      const double p = R * f / 5;
      const double px = cx + p * std::cos(a), py = cy + p * std::sin(a);
      m_picture->DrawLine(px + t * std::cos(a + kHalfPi), py + t * std::sin(a + kHalfPi),
                          px + t * std::cos(a - kHalfPi), py + t * std::sin(a - kHalfPi),
                          m_foreColor);
    }
    const double xe = cx + R * std::cos(a), ye = cy + R * std::sin(a);
    m_picture->DrawLine(cx, cy, xe, ye);
    const QString label = i <= m_kiviatLabels.size() ? m_kiviatLabels[i - 1] : QString();
    double x = 0, y = 0;
    KiviatLabelPosition(i, m_axisCount, xe, ye, cx, cy, TextW(label), TextH(label), x, y);
    m_picture->PrintText(label, x, y);
  }
  for (int s = 1; s <= SeriesCount(); ++s) {
    CStats& series = m_series[s - 1];
    const std::uint32_t color = SeriesColor(s);
    double firstX = 0, firstY = 0, px = 0, py = 0;
    for (int i = 1; i <= m_axisCount; ++i) {
      const double a = angles[i - 1];
      const double r = series.ValueAtIndex(i) / m * R;
      const double x = cx + r * std::cos(a), y = cy + r * std::sin(a);
      if (i == 1) {
        firstX = x;
        firstY = y;
      } else {
        m_picture->DrawLine(px, py, x, y, color);
      }
      px = x;
      py = y;
    }
    if (m_axisCount > 0) m_picture->DrawLine(px, py, firstX, firstY, color);
  }
}

void ZelmChart::DrawPieChart(CStats& series) {
  SetMargins(false);
  const int cx = static_cast<std::int16_t>(std::nearbyint((m_plot.Left + m_plot.Right) / 2.0));
  const int cy = static_cast<std::int16_t>(std::nearbyint((m_plot.Top + m_plot.Bottom) / 2.0));
  const int r = static_cast<int>(std::min(std::abs(m_plot.Right - m_plot.Left) / 2.0,
                                          std::abs(m_plot.Top - m_plot.Bottom) / 2.0));
  const int c = series.count();
  if (c > 1) {
    std::vector<double> values;
    for (int i = 1; i <= c; ++i) values.push_back(series.ValueAtIndex(i));
    for (const PieSlice& slice : PieSlices(values, series.Sum)) {
      // Past the ten series colours the slices take the generated data colours, as the
      // legend does.
      const std::uint32_t color =
          m_hasDataColors || slice.Index > 10 ? DataColor(slice.Index) : SeriesColor(slice.Index);
      m_picture->DrawPieAngle(cx, cy, r, static_cast<float>(slice.Start),
                              static_cast<float>(slice.End), color);
    }
    m_picture->DrawCircle(cx, cy, r, 6);
  } else if (c == 1) {
    if (m_hasDataColors)
      m_picture->DrawCircle(cx, cy, r, 6, DataColor(1));
    else
      m_picture->DrawCircle(cx, cy, r, 6);
  }
}

void ZelmChart::DrawDistributionPie() {
  CStats& data = m_series[0];
  std::int16_t decimals = 0;
  double w = std::nearbyint(NiceStep(9, 0, data.Max, decimals));
  if (!(w >= 1)) w = 1;
  CStats shares = data.CalcHistogram2(0, Fixed4::FromDouble(w), 0.95f, 5);
  const int last = shares.count();
  if (last > 1 && shares.ValueAtIndex(last) == 0 && (last - 1) * w > data.Max) {
    shares.SetCount(last - 1);  // an empty class above the data
    shares.CalcStats();
  }
  const int c = shares.count();
  const QStringList labels =
      DistributionLabels(c, 0, w, data.Max, true, [](double v) { return FormatFixed(v, 0); });
  EnsureDataColors(c);
  SetDataLabels(labels);
  DrawPieChart(shares);
}

}  // namespace ombrelle
