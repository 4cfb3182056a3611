#pragma once

// The number texts as the QString road wrote them before the byte road took
// over: the oracle the faster formatting is held against, value by value.

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

#include <QDate>
#include <QLocale>

#include "support/DateValue.h"
#include "support/FormatNum.h"

namespace ombrelle::reference {

// clang-format off
// Text of a value that is not finite.
inline QString NonFinite(double value) {
  if (std::isnan(value)) return QStringLiteral("NaN");
  return value < 0 ? QStringLiteral("-Inf") : QStringLiteral("Inf");
}

// The shortest decimal digits that read back as `value` (no sign, no leading
// zeros) and the exponent of the first digit: value = 0.d1d2d3... x 10^point.
inline void ShortestDigits(double value, std::string& digits, int& point) {
  char buffer[64];
  const auto end =
      std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value), std::chars_format::scientific)
          .ptr;
  const std::string text(buffer, end);
  const auto e = text.find('e');
  digits.clear();
  for (size_t i = 0; i < e; ++i)
    if (text[i] != '.') digits += text[i];
  point = std::atoi(text.c_str() + e + 1) + 1;
}

// `value` rounded half away from zero to `decimals` places (0 or more) in
// fixed notation with "." as the decimal point. A result of zero has no sign.
inline QString RoundDecimal(double value, int decimals) {
  if (!std::isfinite(value)) return NonFinite(value);
  if (decimals < 0) decimals = 0;
  std::string digits;
  int point = 0;
  if (value == 0) {
    digits = "0";
    point = 1;
  } else {
    ShortestDigits(value, digits, point);
  }
  if (point < 1) {
    digits.insert(0, static_cast<size_t>(1 - point), '0');
    point = 1;
  }
  const size_t keep = static_cast<size_t>(point) + static_cast<size_t>(decimals);
  if (digits.size() > keep) {
    const bool up = digits[keep] >= '5';
    digits.resize(keep);
    if (up) {
      size_t i = keep;
      while (i > 0 && digits[i - 1] == '9') digits[--i] = '0';
      if (i == 0) {
        digits.insert(0, 1, '1');
        ++point;
      } else {
        ++digits[i - 1];
      }
    }
  } else {
    digits.append(keep - digits.size(), '0');
  }
  std::string text = digits.substr(0, static_cast<size_t>(point));
  const size_t firstNonZero = text.find_first_not_of('0');
  text = firstNonZero == std::string::npos ? "0" : text.substr(firstNonZero);
  if (decimals > 0) text += '.' + digits.substr(static_cast<size_t>(point));
  const bool zero = digits.find_first_not_of('0') == std::string::npos;
  if (value < 0 && !zero) text.insert(0, 1, '-');
  return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

// Half away from zero to a whole number that fits in 64 bits (the callers
// stay below 10^9).
inline long long RoundWhole(double value) { return static_cast<long long>(std::llround(value)); }

// Codes 1 and 2 of the cell style: whole numbers, thousands grouped with ","
// below a million, then "k" and "M".
inline QString ShortWholeNumber(double value) {
  if (!std::isfinite(value)) return NonFinite(value);
  if (value < 1000) return RoundDecimal(std::trunc(value), 0);
  if (value < 1e6) {
    const long long whole = RoundWhole(value);
    return QString::number(whole / 1000) + QLatin1Char(',') +
           QStringLiteral("%1").arg(whole % 1000, 3, 10, QLatin1Char('0'));
  }
  if (value < 1e9) return QString::number(RoundWhole(value / 1000)) + QLatin1Char('k');
  return RoundDecimal(value / 1e6, 0) + QLatin1Char('M');
}

// Decimals of code 10 for a value of magnitude m below 0.
inline int SizeDecimals(int magnitude) { return 2 * (-magnitude / 2) + 2; }

// Dates further out than the calendar of this program goes read as numbers.
inline bool DateInRange(double date) { return std::isfinite(date) && std::fabs(date) < 3e6; }

inline QString& DateShortPattern() {
  static QString pattern;
  return pattern;
}

inline QString GeneralNumber(double value) {
  if (!std::isfinite(value)) return NonFinite(value);
  if (value == 0) return QStringLiteral("0");
  char buffer[64];
  const auto end =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific, 14).ptr;
  std::string text(buffer, end);
  const auto e = text.find('e');
  const int exponent = std::atoi(text.c_str() + e + 1);
  if (exponent >= -4 && exponent <= 14) {
    // Fixed notation of the value rounded to 15 significant digits.
    const double rounded = std::strtod(text.c_str(), nullptr);
    const int decimals = std::max(0, 14 - exponent);
    QString fixed = RoundDecimal(rounded, decimals);
    if (fixed.contains(QLatin1Char('.'))) {
      while (fixed.endsWith(QLatin1Char('0'))) fixed.chop(1);
      if (fixed.endsWith(QLatin1Char('.'))) fixed.chop(1);
    }
    return fixed;
  }
  std::string mantissa = text.substr(0, e);
  if (mantissa.find('.') != std::string::npos) {
    while (mantissa.back() == '0') mantissa.pop_back();
    if (mantissa.back() == '.') mantissa.pop_back();
  }
  const int magnitude = std::abs(exponent);
  std::string exponentText = std::to_string(magnitude);
  if (exponentText.size() < 2) exponentText.insert(0, 1, '0');
  return QString::fromStdString(mantissa + (exponent < 0 ? "E-" : "E+") + exponentText);
}

inline QString FormatFixed(double value, int decimals) {
  return RoundDecimal(value, decimals > 0 ? decimals : 0);
}

inline QString FormatPercent(double value) {
  if (!std::isfinite(value)) return NonFinite(value);
  if (value != 0 && std::fabs(value) < 0.02) return RoundDecimal(100 * value, 2) + QLatin1Char('%');
  return RoundDecimal(100 * value, 0) + QLatin1Char('%');
}

inline int OrderOfMagnitude(double value) {
  const double a = std::fabs(value);
  if (a == 0 || !std::isfinite(a)) return 0;
  int m = static_cast<int>(std::floor(std::log10(a)));
  // log10 may land a hair off at exact powers of ten.
  if (std::pow(10.0, m + 1) <= a)
    ++m;
  else if (std::pow(10.0, m) > a)
    --m;
  return m;
}

inline void ResetDateShortPattern() { DateShortPattern().clear(); }

inline QString FormatDateShort(double date) {
  if (!DateInRange(date)) return GeneralNumber(date);
  QString& pattern = DateShortPattern();
  if (pattern.isEmpty()) {
    const QLocale locale;
    if (locale.language() != QLocale::C) pattern = locale.dateFormat(QLocale::ShortFormat).left(81);
    if (pattern.isEmpty()) pattern = QStringLiteral("yyyy-MM-dd");
    if (!pattern.contains(QLatin1String("yyyy")))
      pattern.replace(QLatin1String("yy"), QLatin1String("yyyy"));
  }
  return QLocale().toString(DateToQDate(date), pattern);
}

inline QString FormatMetric(int format, double value) {
  if (!std::isfinite(value)) return NonFinite(value);
  switch (format) {
    case 0:
      return value == std::trunc(value) ? ShortWholeNumber(value) : RoundDecimal(value, 2);
    case 1:
    case 2:
      return ShortWholeNumber(value);
    case 3:
    case 4:
    case 5:
      return FormatPercent(value);
    case 6:
    case 8:
      return RoundDecimal(value, 2);
    case 7:
      return RoundDecimal(value, 1);
    case 9:
      return FormatDateShort(value);
    case 10: {
      const int m = OrderOfMagnitude(value);
      if (m < 0) return RoundDecimal(value, std::min(6, SizeDecimals(m)));
      if (m > 0) return ShortWholeNumber(value);
      return RoundDecimal(value, 2);
    }
    default:
      return GeneralNumber(RoundDecimal(value, 2).toDouble());
  }
}

inline QString FormatMetricPlain(int format, double value) {
  if (!std::isfinite(value)) return NonFinite(value);
  switch (format) {
    case 0:
      return value == std::trunc(value) ? RoundDecimal(value, 0) : RoundDecimal(value, 2);
    case 1:
    case 2:
      return RoundDecimal(value, 0);
    case 3:
    case 4:
    case 5:
      if (value != 0 && std::fabs(value) < 0.02)
        return FormatMetricPlain(10, 100 * value) + QLatin1Char('%');
      return RoundDecimal(100 * value, 0) + QLatin1Char('%');
    case 6:
    case 8:
      return RoundDecimal(value, 2);
    case 7:
      return RoundDecimal(value, 1);
    case 9:
      if (!DateInRange(value)) return GeneralNumber(value);
      return QLocale().toString(DateToQDate(value), QLocale::ShortFormat);
    case 10: {
      const int m = OrderOfMagnitude(value);
      if (m < 0) return RoundDecimal(value, SizeDecimals(m));
      if (m > 0) return RoundDecimal(value, 0);
      return RoundDecimal(value, 2);
    }
    default:
      return GeneralNumber(value);
  }
}


// clang-format on

}  // namespace ombrelle::reference
