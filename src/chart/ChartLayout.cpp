#include "chart/ChartLayout.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include <QDate>

#include "stats/Significance.h"
#include "support/DateValue.h"
#include "support/FormatNum.h"

namespace ombrelle {

namespace {

constexpr double kTwoPi = 6.28318530717958;
constexpr double kArrowWing = 0.2617993877991492;  // 15 degrees
constexpr double kArrowLength = 40;                // 4 mm

std::int32_t RoundEven(double v) { return static_cast<std::int32_t>(std::nearbyint(v)); }

}  // namespace

float PageAspectFor(std::int32_t chartType) {
  return (chartType == 3 || chartType == 9) ? 1.0f : 4.0f / 3.0f;
}

std::int32_t PageHeightFor(std::int32_t chartType) {
  return RoundEven(150.0 / PageAspectFor(chartType));
}

ChartRect PageFrame(std::int32_t pageHeight) { return {0, 0, 1499, 1 - 10 * pageHeight}; }

ChartRect LegendBoxFor(const ChartRect& frame) {
  return {frame.Left + 100, frame.Bottom + 130, frame.Right - 20, frame.Bottom + 80};
}

ChartRect ComputePlot(const MarginInput& in, const MarginMeasure& measure) {
  ChartRect plot;
  plot.Top = in.Title.isEmpty() ? -50 : RoundEven(-50 - measure.Height(QStringLiteral("Tg"), 60));
  // Above a legend a line of axis labels must fit between the axis and the box.
  plot.Bottom = in.ShowLegend
                    ? in.LegendBox.Top + 20 + RoundEven(measure.Height(QStringLiteral("Tg"), 30))
                    : in.Frame.Bottom + 50;
  if (!in.AxisCaption.isEmpty()) plot.Bottom += 45;
  plot.Left =
      in.WithYLabels ? RoundEven(measure.Width(QStringLiteral(".0  ") + in.YMaxLabel, 30)) : 50;
  double w = 50;
  for (const QString& label : in.YLineLabels)
    w = std::max(w, measure.Width(label + QLatin1Char(' '), 30));
  plot.Right = RoundEven(in.Frame.Right - w);
  return plot;
}

std::vector<double> LegendCellLefts(const ChartRect& box, int count, double gap, double& cell) {
  std::vector<double> lefts;
  cell = 0;
  if (count <= 0) return lefts;
  cell = (box.Right - box.Left - gap) / count;
  for (int i = 0; i < count; ++i) lefts.push_back(i * cell + box.Left + gap);
  return lefts;
}

Triangle AxisArrowHead(double x1, double y1, double x2, double y2) {
  const double dx = x2 - x1, dy = y2 - y1;
  double a = dx == 0 ? (dy > 0 ? 1 : dy < 0 ? -1 : 0) * kTwoPi / 4 : std::atan(dy / dx);
  if (dx > 0) a += kTwoPi / 2;
  Triangle t;
  t.X[0] = x2;
  t.Y[0] = y2;
  t.X[1] = x2 + kArrowLength * std::cos(a + kArrowWing);
  t.Y[1] = y2 - kArrowLength * std::sin(a + kArrowWing);
  t.X[2] = x2 + kArrowLength * std::cos(a - kArrowWing);
  t.Y[2] = y2 - kArrowLength * std::sin(a - kArrowWing);
  return t;
}

std::vector<double> KiviatAngles(int count) {
  std::vector<double> angles;
  if (count <= 0) return angles;
  double a = static_cast<double>(1.5707964f);
  for (int i = 1; i <= count; ++i) {
    a -= kTwoPi / count;
    angles.push_back(a);
  }
  return angles;
}

void KiviatLabelPosition(int i, int count, double xe, double ye, double cx, double cy, double width,
                         double height, double& x, double& y) {
  const double half = count / 2.0, quarter = count / 4.0;
  if (i == half || i == count)
    x = xe - width / 2;
  else if (xe < cx)
    x = xe - width;
  else
    x = xe;
  if (i != quarter && i != 3 * quarter)
    y = ye > cy ? ye + height : ye;
  else
    y = ye + height / 2;
}

std::vector<PieSlice> PieSlices(const std::vector<double>& values, double total) {
  std::vector<PieSlice> slices;
  if (total == 0 || !std::isfinite(total)) return slices;
  double start = 0;
  const int c = static_cast<int>(values.size());
  for (int i = 1; i <= c; ++i) {
    const double sweep = values[i - 1] / total * kTwoPi;
    const double end = i == c ? kTwoPi : start + sweep;
    if (sweep > 0) slices.push_back({i, start, end});
    start = end;
  }
  return slices;
}

std::vector<HistogramClass> HistogramClasses(const std::vector<double>& bounds, double low,
                                             double high) {
  std::vector<HistogramClass> classes;
  const int n = static_cast<int>(bounds.size()) - 1;
  if (n < 1) return classes;
  const double span = high == low ? 1 : high - low;
  int joined = 0;
  double left = bounds[0];
  for (int i = 1; i <= n; ++i) {
    const double rel = (bounds[i] - bounds[i - 1]) / span;
    if (rel == 0 && i < n) {
      ++joined;
      continue;
    }
    const double share = static_cast<double>(joined + 1) / n;
    if (rel > 0) {
      classes.push_back({left, rel, share / rel});
    } else if (!classes.empty()) {
      // The top classes have no width (the highest values are all equal): their share
      // goes to the class below, so no box is infinitely tall.
      HistogramClass& last = classes.back();
      last.Density += share / last.RelWidth;
    } else {
      // Every value is the same: one class across the whole axis.
      classes.push_back({left, 1, 1});
    }
    left = bounds[i];
    joined = 0;
  }
  return classes;
}

std::vector<DateTick> DateTicks(double start, double end) {
  std::vector<DateTick> ticks;
  if (!std::isfinite(start) || !std::isfinite(end) || std::fabs(start) > 3e6 ||
      std::fabs(end) > 3e6)
    return ticks;
  const QDate s = DateToQDate(start), e = DateToQDate(end);
  const int years = e.year() - s.year();
  const int months = years * 12 + e.month() - s.month();
  int stepMonths = 0, stepDays = 0;
  if (years > 8)
    stepMonths = 24;
  else if (years > 4)
    stepMonths = 12;
  else if (years > 1)
    stepMonths = 6;
  else if (months > 6)
    stepMonths = 3;
  else if (end - start > 60)
    stepMonths = 1;
  else
    stepDays = 7;
  const double fraction = start - std::floor(start);
  QDate d = DateToQDate(std::floor(start));
  constexpr int kMaxTicks = 2000;
  for (int n = 0; n < kMaxTicks; ++n) {
    const double value = DateFromQDate(d) + fraction;
    if (value > end) break;
    ticks.push_back(
        {value, stepDays ? FormatDateShort(value) : d.toString(QStringLiteral("yy/MM"))});
    d = stepDays ? d.addDays(stepDays) : d.addMonths(stepMonths);
  }
  return ticks;
}

std::uint32_t GeneratedDataColor(int i, int count) {
  if (count <= 0) return 0;
  const std::uint32_t v =
      static_cast<std::uint32_t>(std::clamp(RoundEven(i * 200.0 / count + 55), 0, 255));
  const std::uint32_t r = v, g = v << 8, b = v << 16;
  switch (((i % 7) + 7) % 7) {
    case 0:
      return r;
    case 1:
      return b;
    case 2:
      return g;
    case 3:
      return r | b;
    case 4:
      return b | g;
    case 5:
      return r | g;
    default:
      return r | g | b;
  }
}

QStringList DistributionLabels(int classes, double low, double width, double high, bool whole,
                               const std::function<QString(double)>& format) {
  QStringList labels;
  for (int i = 1; i <= classes; ++i) {
    const double a = low + (i - 1) * width;
    double b = whole ? a + width - 1 : a + width;
    if (i == classes && b < high) b = high;
    if (whole)
      labels << (b > a ? format(a) + QLatin1Char('-') + format(b) : format(a));
    else
      labels << format(a) + QStringLiteral("..") + format(b);
  }
  return labels;
}

QString FormatPattern(double value, const char* pattern) {
  if (std::strcmp(pattern, "0%") == 0) return FormatFixed(value * 100, 0) + QLatin1Char('%');
  if (std::strcmp(pattern, "0") == 0) return FormatFixed(value, 0);
  if (std::strcmp(pattern, "0.00") == 0) return FormatFixed(value, 2);
  // "0." and up to eight optional places.
  QString text = FormatFixed(value, 8);
  while (text.endsWith(QLatin1Char('0'))) text.chop(1);
  if (text.endsWith(QLatin1Char('.'))) text.chop(1);
  if (text == QLatin1String("-0")) text = QStringLiteral("0");
  return text;
}

QString RegressionLabel(bool significant, double slope, double intercept, double r,
                        const QString& yName, const QString& xName) {
  const QString r2 = QStringLiteral("(R²=") + FormatPattern(r * r, "0%") + QLatin1Char(')');
  if (!significant) return QStringLiteral("Correlation not significant ") + r2;
  const char* pattern = RegressionSlopePattern(slope);  // the intercept takes it too
  const QString b = FormatPattern(slope, pattern);
  const QString a = FormatPattern(intercept, pattern);
  const QString joiner =
      a.startsWith(QLatin1Char('-')) ? QStringLiteral(" ") : QStringLiteral(" + ");
  return yName + QStringLiteral(" = ") + b + QStringLiteral(" x ") + xName + joiner + a +
         QStringLiteral("  ") + r2;
}

}  // namespace ombrelle
