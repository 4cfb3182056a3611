#include "chart/ChartScale.h"

#include <algorithm>
#include <cmath>

#include <QDate>

#include "support/DateValue.h"
#include "support/FormatNum.h"

namespace ombrelle {

double NiceStep(int Count, double Low, double High, std::int16_t& Decimals) {
  if (Low == High || Count == 0) {
    Decimals = 0;
    return 0;
  }
  const double raw = (High - Low) / Count;
  if (!std::isfinite(raw) || raw <= 0) {
    Decimals = 0;
    return raw;
  }
  const int e = static_cast<int>(std::floor(std::log10(raw))) + 1;
  Decimals = static_cast<std::int16_t>(std::max(1 - e, 0));
  const double m = std::nearbyint(raw * std::pow(10.0, 1 - e));  // ties to even
  const double unit = std::pow(10.0, e - 1);
  double step;
  if (m == 1)
    step = unit;
  else if (m == 2)
    step = 2 * unit;
  else if (m >= 3 && m <= 5)
    step = 5 * unit;
  else
    step = 10 * unit;
  return step == 0 ? raw : step;
}

double DateStep(int Count, double Low, double High) {
  if (Low == High || Count == 0) return 0;
  const double raw = (High - Low) / Count;
  double step;
  if (raw > 365)
    step = std::nearbyint(raw / 365.25) * 365.25;
  else if (raw >= 180)
    step = 365.25 / 2;
  else if (raw >= 90)
    step = 365.25 / 4;
  else if (raw >= 30)
    step = std::nearbyint(raw / 30.4375) * 30.4375;
  else if (raw >= 14)
    step = 14;
  else if (raw >= 7)
    step = 7;
  else
    step = std::nearbyint(raw);
  return step == 0 ? 1 : step;
}

double RoundDateDown(double Date, double Step) {
  if (Step < 30 || !std::isfinite(Date) || std::fabs(Date) > 3e6) return Date;
  const QDate d = DateToQDate(Date);
  if (Step >= 365) return DateSerial(d.year(), 1, 1);
  if (Step >= 90) return DateSerial(d.year(), (d.month() - 1) / 3 * 3 + 1, 1);
  return DateSerial(d.year(), d.month(), 1);
}

void ChartScale::SetScale(double XHigh, double YHigh, double XLow, double YLow) {
  if (YFormat != kAxisDate && YLow > 0) YLow = 0;
  if (YHigh < 0) YHigh = 0;
  XMin = XLow;
  XMax = XHigh;
  YMax = YHigh;
  YMin = YLow;
  if (XLow > XHigh) XMin = XHigh;
  if (!(YLow < YHigh)) YMax = YLow + 1;
  if (YFormat == kAxisDate) {
    YStep = DateStep(5, YMin, YMax);
    YMin = RoundDateDown(YMin, YStep);
  } else {
    YStep = NiceStep(5, YMin, YMax, YDecimals);
  }
  if (YMin < 0 && YStep != 0 && std::fmod(YMin, YStep) != 0)
    YMin = -(std::floor(-YMin / YStep) + 1) * YStep;
  YSteps = YStep == 0 ? 1 : static_cast<std::int16_t>(std::floor((YMax - YMin) / YStep));
  if (YSteps * YStep + YMin < YMax) {
    ++YSteps;
    YMax = YSteps * YStep + YMin;
  }
  XStep = NiceStep(10, XMin, XMax, XDecimals);
}

double ChartScale::ValueToY(double v, double PlotTop, double PlotBottom) const {
  return (v - YMin) / (YMax - YMin) * (PlotTop - PlotBottom) + PlotBottom;
}

namespace {

bool IsWhole(double v) { return std::isfinite(v) && v == std::floor(v); }

}  // namespace

QString ChartScale::FormatAxisValue(double Value, bool IsX, bool Multiply) const {
  const std::int32_t kind = IsX ? XFormat : YFormat;
  const int decimals = IsX ? XDecimals : YDecimals;
  if (kind == kAxisPercent) {
    const int d = std::max(decimals - 2, 0);
    const QString number = FormatFixed(Value * 100, d);
    return Multiply ? number : number + QLatin1Char('%');
  }
  if (kind == kAxisDate) return FormatDateShort(Value);
  if (decimals <= 0) {
    if (Value >= 10000000 && IsWhole(Value) && IsWhole(Value / 1000000))
      return FormatFixed(Value / 1000000, 0) + QLatin1Char('M');
    if (Value >= 10000 && IsWhole(Value) && IsWhole(Value / 1000))
      return FormatFixed(Value / 1000, 0) + QLatin1Char('k');
    return FormatFixed(Value, 0);
  }
  return FormatFixed(Value, decimals);
}

}  // namespace ombrelle
