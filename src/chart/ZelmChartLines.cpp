// Time charts, scatter, dot plot with box plot.
#include <algorithm>
#include <cmath>

#include "chart/ZelmChart.h"
#include "pictures/Metafile.h"
#include "stats/Significance.h"

namespace ombrelle {

namespace {

constexpr std::uint32_t kExtremeColor = 0xFF00FF;
constexpr std::uint32_t kOutlierColor = 255;
constexpr std::uint32_t kBoxColor = 0xFF0000;
constexpr std::uint32_t kQuantileColor = 0x800080;
constexpr int kTestedFrom = 10;  // outlier colouring from this many values up

}  // namespace

void ZelmChart::DrawTimeChart(bool Stepped) {
  CStats& xs = m_series[0];
  SetScale(xs.Max, SeriesHigh(2), xs.Min, SeriesLow(2));
  SetMargins(true);
  DrawXAxis();
  DrawYGrid();
  DrawYAxis();
  DrawDateTicks();
  for (int s = 2; s <= SeriesCount(); ++s) {
    CStats& ys = m_series[s - 1];
    const std::uint32_t color = SeriesColor(s);
    bool running = false;
    double px = 0, py = 0;
    for (int i = 1; i <= xs.count(); ++i) {
      double value = 0;
      if (!ys.ValueAtIndexDefined(i, value)) {
        running = false;  // a gap: the next defined point starts a new run
        continue;
      }
      const double x = XPos(xs.ValueAtIndex(i));
      const double y = ValueToY(value);
      if (running) {
        if (Stepped) {
          m_picture->DrawLine(px, py, px, y, color, 6);
          m_picture->DrawLine(px, y, x, y, color, 6);
        } else {
          m_picture->DrawLine(px, py, x, y, color, 6);
        }
      }
      running = true;
      px = x;
      py = y;
    }
  }
}

void ZelmChart::DrawScatter(bool Paired) {
  if (Paired) {
    CStats& xs = m_series[0];
    SetScale(xs.Max, SeriesHigh(2), xs.Min, SeriesLow(2));
    SetMargins(true);
    m_plot.Bottom += 50;  // a line for the regression text under the plot
    DrawXAxis();
    DrawYGrid();
    DrawYAxis();
    DrawXTicks();
    const double lineHeight = TextH(QStringLiteral("Tg"));
    for (int s = 2; s <= SeriesCount(); ++s) {
      CStats& ys = m_series[s - 1];
      const std::uint32_t color = SeriesColor(s);
      for (int i = 1; i <= xs.count(); ++i) {
        double x = 0, y = 0;
        if (xs.ValueAtIndexDefined(i, x) && ys.ValueAtIndexDefined(i, y))
          DrawPoint(ys, x, y, color, true);
      }
      double a = 0, b = 0, r = 0;
      std::int32_t n = 0;
      if (ys.count() == 0 || !xs.Regression(ys, a, b, r, n)) continue;
      const bool significant = CorrelationIsSignificant(r, n);
      if (significant) {
        m_picture->DrawLine(m_plot.Left, ValueToY(a + b * m_scale.XMin), m_plot.Right,
                            ValueToY(a + b * m_scale.XMax), color, 3);
      }
      const QString yName =
          LegendGiven && m_legendData.size() >= s ? m_legendData[s - 1] : QStringLiteral("y");
      const QString xName =
          LegendGiven && !m_legendData.isEmpty() ? m_legendData[0] : QStringLiteral("x");
      m_picture->PrintText(RegressionLabel(significant, b, a, r, yName, xName), m_plot.Left,
                           m_plot.Bottom - 50 - (s - 2) * lineHeight);
    }
    return;
  }

  // The distribution command leaves the first place empty (it is where the
  // spread of x belongs) and hands its values in the second.
  const int index = SeriesCount() >= 2 && m_series[0].count() == 0 ? 2 : 1;
  CStats& data = m_series[index - 1];
  data.Sort(1);
  CStats spread;
  for (int i = 1; i <= data.count(); ++i) {
    const double r = static_cast<double>(m_spread() >> 11) * 0x1.0p-53;  // uniform in [0, 1)
    spread.AddValue((r - 0.5) / 5 + 1);
  }
  spread.CalcStats();
  const double m = spread.Min, M = spread.Max;
  double xLow, xHigh;
  if (m == M) {
    xLow = m;
    xHigh = m + 1;
  } else {
    xHigh = spread.Mean + 3 * (M - m);
    xLow = spread.Mean - 3 * (M - m);
    if (!(xLow < xHigh)) xHigh = xLow + 1;
  }
  SetScale(xHigh, data.Max, xLow, data.Min);
  SetMargins(true);
  DrawXAxis();
  DrawYGrid();
  DrawYAxis();
  const std::uint32_t color = SeriesColor(index);
  for (int i = 1; i <= data.count(); ++i)
    DrawPoint(data, spread.ValueAtIndex(i), data.ValueAtIndex(i), color, false);
  m_spreadX = std::move(spread);
  if (data.count() >= kTestedFrom) {
    DrawBoxPlot(index, 2);
    DrawQuantileMarks(index);
  }
}

void ZelmChart::DrawPoint(CStats& series, double x, double y, std::uint32_t color, bool) {
  const double px = XPos(x), py = ValueToY(y);
  std::uint32_t pen = color;
  std::optional<std::uint32_t> fill;
  if (series.count() >= kTestedFrom) {
    if (y < series.ExtremeOutlierLowerTail() || y > series.ExtremeOutlierUpperTail()) {
      pen = kExtremeColor;
      fill = kExtremeColor;
    } else if (y < series.OutlierLowerTail() || y > series.OutlierUpperTail()) {
      fill = color;
    }
  }
  m_picture->SetLineProperties(2, pen);
  m_picture->DrawCircle(static_cast<int>(std::nearbyint(px)), static_cast<int>(std::nearbyint(py)),
                        5, 5, fill);
  m_picture->SetLineProperties(2, m_foreColor);
}

void ZelmChart::DrawBoxPlot(int index, int) {
  CStats& data = m_series[index - 1];
  const CStats& xs = m_spreadX;
  const double xa = XPos(xs.Min - 0.1), xb = XPos(xs.Max + 0.1), xm = (xa + xb) / 2;
  m_picture->SetLineProperties(2, kBoxColor);
  const double q1 = data.Q1(), q3 = data.Q3(), median = data.Median();
  m_picture->DrawBox(xa, ValueToY(q3), xb, ValueToY(q1), std::nullopt, true);
  const double h = TextH(QStringLiteral("Median"));
  for (const auto& [text, q] :
       {std::pair{QStringLiteral("Q1"), q1}, std::pair{QStringLiteral("Q3"), q3}})
    m_picture->PrintText(text, xa - 10 - TextW(text), ValueToY(q) + h / 2);
  m_picture->DrawLine(xa, ValueToY(median), xb, ValueToY(median));
  m_picture->PrintText(QStringLiteral("Median"), xb + 10, ValueToY(median) + h / 2);

  // A fence is drawn where values lie beyond it; the fences of a series without outliers
  // sit on its extremes, where the whisker ends anyway.
  auto fence = [&](double value, std::uint32_t color, const QString& text) {
    const double y = ValueToY(value);
    m_picture->DrawLine(xa, y, xb, y, color);
    m_picture->PrintText(text, xb + 10, y + h / 2);
  };
  const double upper = data.OutlierUpperTail(), extremeUpper = data.ExtremeOutlierUpperTail();
  m_picture->DrawLine(xm, ValueToY(q3), xm, ValueToY(upper));
  if (upper < data.Max) fence(upper, kOutlierColor, QStringLiteral("Outliers"));
  if (extremeUpper < data.Max && extremeUpper > upper)
    fence(extremeUpper, kExtremeColor, QStringLiteral("Extreme Outliers"));
  const double lower = data.OutlierLowerTail(), extremeLower = data.ExtremeOutlierLowerTail();
  m_picture->DrawLine(xm, ValueToY(q1), xm, ValueToY(lower));
  if (lower > data.Min) fence(lower, kOutlierColor, QStringLiteral("Outliers"));
  if (extremeLower > data.Min && extremeLower < lower)
    fence(extremeLower, kExtremeColor, QStringLiteral("Extreme Outliers"));
  m_picture->SetLineProperties(2, m_foreColor);
}

void ZelmChart::DrawQuantileMarks(int index) {
  CStats& data = m_series[index - 1];
  const double q5 = data.Q5(), q95 = data.Q95();
  // A vertical scale 300 units right of the plot's left edge, from Q5 to Q95, with a tick
  // at every fifth of that span and the two ends named.
  const double x = m_plot.Left + 300;
  m_picture->DrawLine(x, ValueToY(q5), x, ValueToY(q95), kQuantileColor);
  for (int k = 0; k <= 5; ++k) {
    const double y = ValueToY(q5 + k * (q95 - q5) / 5);
    m_picture->DrawLine(x - 15, y, x + 15, y, kQuantileColor);
  }
  const double h = TextH(QStringLiteral("Q5"));
  m_picture->SetTextColor(kQuantileColor);
  m_picture->PrintText(QStringLiteral("Q5"), x + 25, ValueToY(q5) + h / 2);
  m_picture->PrintText(QStringLiteral("Q95"), x + 25, ValueToY(q95) + h / 2);
  m_picture->SetTextColor(m_foreColor);
}

}  // namespace ombrelle
