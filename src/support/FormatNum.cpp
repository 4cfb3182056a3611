#include "support/FormatNum.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

#include <QDate>
#include <QLocale>

#include "support/DateValue.h"
#include "support/NumberChars.h"

namespace ombrelle {

namespace {

QString Latin1(const char* text, int size) { return QString::fromLatin1(text, size); }

// Text of a value that is not finite.
QString NonFinite(double value) {
  char text[8];
  return Latin1(text, NonFiniteChars(value, text));
}

// `value` rounded half away from zero to `decimals` places (0 or more) in
// fixed notation with "." as the decimal point. A result of zero has no sign.
QString RoundDecimal(double value, int decimals) {
  if (!std::isfinite(value)) return NonFinite(value);
  if (decimals < 0) decimals = 0;
  // Past kMaxDecimals nothing is left to round: the text only gains zeros.
  const int extra = decimals > kMaxDecimals ? decimals - kMaxDecimals : 0;
  char text[kNumberCharsMax];
  QString result = Latin1(text, RoundDecimalChars(value, decimals - extra, text));
  if (extra > 0) result.append(QString(extra, QLatin1Char('0')));
  return result;
}

// Codes 1 and 2 of the cell style: whole numbers, thousands grouped with ","
// below a million, then "k" and "M".
int ShortWholeChars(double value, char* out) {
  if (!std::isfinite(value)) return NonFiniteChars(value, out);
  if (value < 1000) {
    const double whole = std::trunc(value);
    if (whole > -1e15) return IntegerChars(static_cast<long long>(whole), out);  // -0 reads "0"
    return RoundDecimalChars(whole, 0, out);
  }
  if (value < 1e6) {
    // Half away from zero to a whole number.
    const long long whole = std::llround(value);
    int n = IntegerChars(whole / 1000, out);
    const int rest = static_cast<int>(whole % 1000);
    out[n++] = ',';
    out[n++] = static_cast<char>('0' + rest / 100);
    out[n++] = static_cast<char>('0' + rest / 10 % 10);
    out[n++] = static_cast<char>('0' + rest % 10);
    return n;
  }
  if (value < 1e9) {
    const int n = IntegerChars(std::llround(value / 1000), out);
    out[n] = 'k';
    return n + 1;
  }
  const int n = RoundDecimalChars(value / 1e6, 0, out);
  out[n] = 'M';
  return n + 1;
}

int PercentChars(double value, char* out) {
  if (!std::isfinite(value)) return NonFiniteChars(value, out);
  const int decimals = value != 0 && std::fabs(value) < 0.02 ? 2 : 0;
  const int n = RoundDecimalChars(100 * value, decimals, out);
  out[n] = '%';
  return n + 1;
}

int GeneralChars(double value, char* out) {
  if (!std::isfinite(value)) return NonFiniteChars(value, out);
  if (value == 0) {
    out[0] = '0';
    return 1;
  }
  char text[64];
  const char* end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::scientific, 14).ptr;
  const char* e = static_cast<const char*>(std::memchr(text, 'e', static_cast<size_t>(end - text)));
  int exponent = 0;
  std::from_chars(e + (e[1] == '+' ? 2 : 1), end, exponent);
  if (exponent >= -4 && exponent <= 14) {
    // Fixed notation of the value rounded to 15 significant digits.
    double rounded = 0;
    std::from_chars(text, end, rounded);
    int n = RoundDecimalChars(rounded, std::max(0, 14 - exponent), out);
    if (std::memchr(out, '.', static_cast<size_t>(n))) {
      while (out[n - 1] == '0') --n;
      if (out[n - 1] == '.') --n;
    }
    return n;
  }
  int n = static_cast<int>(e - text);
  std::memcpy(out, text, static_cast<size_t>(n));
  if (std::memchr(out, '.', static_cast<size_t>(n))) {
    while (out[n - 1] == '0') --n;
    if (out[n - 1] == '.') --n;
  }
  out[n++] = 'E';
  out[n++] = exponent < 0 ? '-' : '+';
  const int magnitude = std::abs(exponent);
  if (magnitude < 10) out[n++] = '0';
  return n + IntegerChars(magnitude, out + n);
}

// Decimals of code 10 for a value of magnitude m below 0.
int SizeDecimals(int magnitude) { return 2 * (-magnitude / 2) + 2; }

// Dates further out than the calendar of this program goes read as numbers.
bool DateInRange(double date) { return std::isfinite(date) && std::fabs(date) < 3e6; }

// The short date pattern of the locale, read once, and the same pattern as a
// list of steps when it holds nothing but day, month, four-digit year and
// plain separators: 'd' and 'D' the day without and with a leading zero,
// 'm' and 'M' the month alike, 'y' the year; any other byte stands for itself.
struct DateShortFormat {
  QString Pattern;
  std::string Steps;
  bool Simple = false;
};

DateShortFormat& DateShort() {
  static DateShortFormat format;
  if (format.Pattern.isEmpty()) {
    const QLocale locale;
    QString pattern;
    if (locale.language() != QLocale::C) pattern = locale.dateFormat(QLocale::ShortFormat).left(81);
    if (pattern.isEmpty()) pattern = QStringLiteral("yyyy-MM-dd");
    if (!pattern.contains(QLatin1String("yyyy")))
      pattern.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    format.Pattern = pattern;
    format.Steps.clear();
    format.Simple = true;
    for (qsizetype i = 0; i < pattern.size() && format.Simple;) {
      const char16_t c = pattern.at(i).unicode();
      qsizetype run = 1;
      while (i + run < pattern.size() && pattern.at(i + run) == c) ++run;
      if (c == u'd' && run <= 2) {
        format.Steps.append(run == 1 ? "d" : "D");
      } else if (c == u'M' && run <= 2) {
        format.Steps.append(run == 1 ? "m" : "M");
      } else if (c == u'y' && run == 4) {
        format.Steps.append("y");
      } else if (c >= 32 && c <= 126 && !QChar::isLetter(c) && c != u'\'' && c != u'"' &&
                 c != u'<' && c != u'>' && c != u'&') {
        format.Steps.append(static_cast<size_t>(run), static_cast<char>(c));
      } else {
        format.Simple = false;
      }
      i += run;
    }
  }
  return format;
}

int TwoDigits(int value, bool pad, char* out) {
  if (value < 10 && !pad) {
    out[0] = static_cast<char>('0' + value);
    return 1;
  }
  out[0] = static_cast<char>('0' + value / 10);
  out[1] = static_cast<char>('0' + value % 10);
  return 2;
}

// The short date, or -1 when only the locale can write it.
int DateShortChars(double date, char* out) {
  if (!DateInRange(date)) return GeneralChars(date, out);
  const DateShortFormat& format = DateShort();
  if (!format.Simple) return -1;
  int year = 0, month = 0, day = 0;
  DateToQDate(date).getDate(&year, &month, &day);
  if (year < 1000 || year > 9999) return -1;
  int n = 0;
  for (const char step : format.Steps) {
    switch (step) {
      case 'd':
      case 'D':
        n += TwoDigits(day, step == 'D', out + n);
        break;
      case 'm':
      case 'M':
        n += TwoDigits(month, step == 'M', out + n);
        break;
      case 'y':
        n += IntegerChars(year, out + n);
        break;
      default:
        out[n++] = step;
    }
  }
  return n;
}

}  // namespace

QString GeneralNumber(double value) {
  char text[kNumberCharsMax];
  return Latin1(text, GeneralChars(value, text));
}

QString FormatFixed(double value, int decimals) {
  return RoundDecimal(value, decimals > 0 ? decimals : 0);
}

QString FormatPercent(double value) {
  char text[kNumberCharsMax];
  return Latin1(text, PercentChars(value, text));
}

int OrderOfMagnitude(double value) {
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

void ResetDateShortPattern() { DateShort().Pattern.clear(); }

QString FormatDateShort(double date) {
  if (!DateInRange(date)) return GeneralNumber(date);
  return QLocale().toString(DateToQDate(date), DateShort().Pattern);
}

namespace {

// `value` to `decimals` places, on its digits when they are at hand.
int RoundChars(double value, const DecimalDigits* digits, int decimals, char* out) {
  return digits ? RoundDecimalChars(value, *digits, decimals, out)
                : RoundDecimalChars(value, decimals, out);
}

}  // namespace

int FormatMetricChars(int format, double value, char* out) {
  return FormatMetricChars(format, value, nullptr, out);
}

int FormatMetricChars(int format, double value, const DecimalDigits* digits, char* out) {
  if (!std::isfinite(value)) return NonFiniteChars(value, out);
  switch (format) {
    case 0:
      return value == std::trunc(value) ? ShortWholeChars(value, out)
                                        : RoundChars(value, digits, 2, out);
    case 1:
    case 2:
      return ShortWholeChars(value, out);
    case 3:
    case 4:
    case 5:
      return PercentChars(value, out);
    case 6:
    case 8:
      return RoundChars(value, digits, 2, out);
    case 7:
      return RoundChars(value, digits, 1, out);
    case 9:
      return DateShortChars(value, out);
    case 10: {
      const int m = OrderOfMagnitude(value);
      if (m < 0) return RoundChars(value, digits, std::min(6, SizeDecimals(m)), out);
      if (m > 0) return ShortWholeChars(value, out);
      return RoundChars(value, digits, 2, out);
    }
    default: {
      // Rounded to 2 decimals, then in the general form.
      const int n = RoundChars(value, digits, 2, out);
      double rounded = 0;
      std::from_chars(out, out + n, rounded);
      return GeneralChars(rounded, out);
    }
  }
}

QString FormatMetric(int format, double value) {
  char text[kNumberCharsMax];
  const int n = FormatMetricChars(format, value, text);
  return n >= 0 ? Latin1(text, n) : FormatDateShort(value);
}

QString FormatMetricPlain(int format, double value) {
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

QString VersionText(bool full) {
  QString text = QString::number(OMBRELLE_VERSION_MAJOR) + QLatin1Char('.') +
                 QString::number(OMBRELLE_VERSION_MINOR);
  if (full) text += QLatin1Char('.') + QString::number(OMBRELLE_VERSION_PATCH);
  return text;
}

}  // namespace ombrelle
