#pragma once

#include <cstdint>

#include <QString>

namespace ombrelle {

// Number format kinds of a chart axis.
enum AxisFormat : std::int32_t { kAxisNumber = 0, kAxisPercent = 1, kAxisDate = 2 };

// A step from the 1, 2, 5, 10 family that cuts Low..High into about Count intervals;
// Decimals receives the places that step needs. 0 (and Decimals 0) when Low = High.
double NiceStep(int Count, double Low, double High, std::int16_t& Decimals);
// A step in days for date axes: whole years, half and quarter years, months, two weeks, a
// week or whole days. 0 when Low = High; never 0 otherwise.
double DateStep(int Count, double Low, double High);
// The start of the year, quarter or month that holds Date, for steps of at least 365, 90 or
// 30 days; smaller steps leave Date as it is.
double RoundDateDown(double Date, double Step);

// The scale of a chart: ranges, steps and number formats of both axes. The Y axis always
// holds zero (but for dates at the low end) and its steps are whole numbers of YStep.
struct ChartScale {
  double XMin = 0, YMax = 0, XMax = 0, YMin = 0;
  double YStep = 0, XStep = 0;
  std::int16_t YSteps = 0;
  std::int16_t YDecimals = 0, XDecimals = 0;
  std::int32_t YFormat = kAxisNumber, XFormat = kAxisNumber;

  void SetScale(double XHigh, double YHigh, double XLow, double YLow);
  // Position of v on a Y axis that runs from PlotBottom (YMin) to PlotTop (YMax).
  double ValueToY(double v, double PlotTop, double PlotBottom) const;
  // The axis text of Value in the kind and decimals of X (IsX) or Y. Multiply gives a
  // percent as a bare number of hundredths.
  QString FormatAxisValue(double Value, bool IsX = false, bool Multiply = false) const;
};

}  // namespace ombrelle
