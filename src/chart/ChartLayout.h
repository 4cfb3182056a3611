#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <QString>
#include <QStringList>

namespace ombrelle {

// The plain computations of a chart's layout: page, plot margins, legend cells, axis
// arrows, Kiviat axes, pie slices, histogram classes, date ticks and texts. They return
// values and draw nothing, so they can be checked apart from any drawing surface.
// Coordinates are 0.1 mm with y upwards: the page runs from y = 0 down to negative y.

struct ChartRect {
  std::int32_t Left = 0, Top = 0, Right = 0, Bottom = 0;
  friend bool operator==(const ChartRect&, const ChartRect&) = default;
};

// 1 for the round pages (types 3 and 9), else 4/3.
float PageAspectFor(std::int32_t chartType);
// Height of the page in mm: 150 wide over the aspect, so 112 or 150.
std::int32_t PageHeightFor(std::int32_t chartType);
// The page in 0.1 mm: left 0, top 0, right 1499, bottom 1 - 10 x height.
ChartRect PageFrame(std::int32_t pageHeight);
// The legend box in the band at the foot of the page.
ChartRect LegendBoxFor(const ChartRect& frame);

// Width and height of a text at a font size (logical units), as the surface measures them.
using TextMeasureFn = std::function<double(const QString& text, int size)>;
struct MarginMeasure {
  TextMeasureFn Width;
  TextMeasureFn Height;
};

// Everything the plot margins depend on.
struct MarginInput {
  ChartRect Frame;
  ChartRect LegendBox;
  bool ShowLegend = false;
  QString Title;
  QString AxisCaption;
  bool WithYLabels = false;
  QString YMaxLabel;        // the formatted top of the Y axis
  QStringList YLineLabels;  // labels of the horizontal reference lines
};
// The plot area: room for the title above, the legend (with a line of axis labels above it)
// and the caption below, the Y labels on the left and the reference-line labels on the right.
ChartRect ComputePlot(const MarginInput& in, const MarginMeasure& measure);

// Left ends of the legend cells: cell i (First .. First + Count - 1) starts at
// (i - First) x cell + left + gap, with cell = (right - left - gap) / Count.
std::vector<double> LegendCellLefts(const ChartRect& box, int count, double gap, double& cell);

// The three corners of the arrow head at the end (x2, y2) of an axis.
struct Triangle {
  double X[3];
  double Y[3];
};
Triangle AxisArrowHead(double x1, double y1, double x2, double y2);

// The directions of the Kiviat axes, 1 .. count: clockwise, the first one step after the
// top, the last at the top.
std::vector<double> KiviatAngles(int count);
// Where the label of axis i of count goes, given the axis end (xe, ye), the centre and the
// label's size: centred at the top and bottom axes, ending at the axis on the left.
void KiviatLabelPosition(int i, int count, double xe, double ye, double cx, double cy, double width,
                         double height, double& x, double& y);

// One pie slice: the 1-based index of its value and its angles in radians, counter-
// clockwise from 3 o'clock.
struct PieSlice {
  int Index = 0;
  double Start = 0, End = 0;
};
// The slices of values whose share is above 0; none when the total is 0.
std::vector<PieSlice> PieSlices(const std::vector<double>& values, double total);

// One histogram class after classes of no width are joined to the next one.
struct HistogramClass {
  double Left = 0;      // lower bound, in values
  double RelWidth = 0;  // width over the span of the data
  double Density = 0;   // share of the data over the relative width
};
// Classes from the 21 bounds of the twentieths of the sorted data; span is max - min, or
// 1 when they are equal.
std::vector<HistogramClass> HistogramClasses(const std::vector<double>& bounds, double low,
                                             double high);

// One tick of a date axis.
struct DateTick {
  double Date = 0;
  QString Label;
};
// Ticks from start while not past end: every 2 years, year, 6, 3 or 1 months or 7 days by
// the span, labelled "yy/mm" or with the short date for weekly ticks.
std::vector<DateTick> DateTicks(double start, double end);

// Colour i of Count made by EnsureDataColors.
std::uint32_t GeneratedDataColor(int i, int count);

// Labels of distribution classes from Low in steps of Width; the last one ends at High.
// Whole numbers: "a-b" with b = a + Width - 1, or "a" alone; reals "a..b".
QStringList DistributionLabels(int classes, double low, double width, double high, bool whole,
                               const std::function<QString(double)>& format);

// The text under a paired scatter: the regression equation with R², or the note that the
// correlation is not significant.
QString RegressionLabel(bool significant, double slope, double intercept, double r,
                        const QString& yName, const QString& xName);
// A number in a pattern of the form "0", "0.00", "0.########" or "0%".
QString FormatPattern(double value, const char* pattern);

}  // namespace ombrelle
