#include "support/DateValue.h"

#include <cmath>
#include <ctime>

namespace ombrelle {

namespace {

constexpr qint64 kEpochJulianDay = 2415019;  // 1899-12-30
constexpr double kMsPerDay = 86400000.0;

// Days since 1970-01-01 of a proleptic Gregorian date (month 1..12).
qint64 DaysFromCivil(qint64 y, qint64 m, qint64 d) {
  y -= m <= 2 ? 1 : 0;
  const qint64 era = (y >= 0 ? y : y - 399) / 400;
  const qint64 yoe = y - era * 400;
  const qint64 doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const qint64 doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

// 1899-12-30 counted from 1970-01-01.
const qint64 kEpochFromUnix = DaysFromCivil(1899, 12, 30);

qint64 FloorDiv(qint64 a, qint64 b) {
  return a / b - ((a % b != 0) && ((a < 0) != (b < 0)) ? 1 : 0);
}

// A count of whole days and a time fraction as one date value.
double Combine(qint64 days, double fraction) {
  return days >= 0 ? static_cast<double>(days) + fraction : static_cast<double>(days) - fraction;
}

}  // namespace

double DateSerial(int year, int month, int day) {
  const qint64 months = static_cast<qint64>(year) * 12 + (month - 1);
  const qint64 y = FloorDiv(months, 12);
  const qint64 m = months - y * 12 + 1;
  return static_cast<double>(DaysFromCivil(y, m, 1) - kEpochFromUnix + (day - 1));
}

double TimeSerial(int hours, int minutes, int seconds) {
  return (static_cast<double>(hours) * 3600.0 + minutes * 60.0 + seconds) / 86400.0;
}

double DateFromQDate(const QDate& date) {
  if (!date.isValid()) return 0.0;
  return static_cast<double>(date.toJulianDay() - kEpochJulianDay);
}

double DateFromQDateTime(const QDateTime& dateTime) {
  if (!dateTime.isValid()) return 0.0;
  const QDateTime local = dateTime.toLocalTime();
  const qint64 days = local.date().toJulianDay() - kEpochJulianDay;
  return Combine(days, local.time().msecsSinceStartOfDay() / kMsPerDay);
}

double DateFromEpochMSecsLocal(qint64 msecs) {
#ifdef Q_OS_UNIX
  const auto seconds = static_cast<time_t>(FloorDiv(msecs, 1000));
  const qint64 milliseconds = msecs - static_cast<qint64>(seconds) * 1000;
  tm local{};
  if (localtime_r(&seconds, &local) && local.tm_sec < 60) {
    const qint64 days =
        DaysFromCivil(local.tm_year + 1900LL, local.tm_mon + 1, local.tm_mday) - kEpochFromUnix;
    const qint64 ofDay =
        (local.tm_hour * 3600LL + local.tm_min * 60LL + local.tm_sec) * 1000 + milliseconds;
    return Combine(days, ofDay / kMsPerDay);
  }
#endif
  return DateFromQDateTime(QDateTime::fromMSecsSinceEpoch(msecs));
}

QDate DateToQDate(double value) {
  if (!std::isfinite(value) || std::fabs(value) > 1e9) return QDate();
  return QDate::fromJulianDay(kEpochJulianDay + static_cast<qint64>(std::trunc(value)));
}

QDateTime DateToQDateTime(double value) {
  if (!std::isfinite(value) || std::fabs(value) > 1e9) return QDateTime();
  qint64 days = static_cast<qint64>(std::trunc(value));
  qint64 ms = std::llround(std::fabs(value - static_cast<double>(days)) * kMsPerDay);
  if (ms >= static_cast<qint64>(kMsPerDay)) {
    ++days;
    ms = 0;
  }
  const QDate date = QDate::fromJulianDay(kEpochJulianDay + days);
  return QDateTime(date, QTime::fromMSecsSinceStartOfDay(static_cast<int>(ms)));
}

double ParseTimestamp14(const QString& text) {
  if (text.size() != 14) return 0.0;
  char digits[14];
  for (int i = 0; i < 14; ++i) {
    const QChar c = text.at(i);
    if (c < u'0' || c > u'9') return 0.0;
    digits[i] = static_cast<char>(c.unicode());
  }
  return ParseTimestamp14(digits, 14);
}

double ParseTimestamp14(const char* text, qsizetype size) {
  // Bytes other than the ten digits stand for no digit in any code page used here.
  if (size != 14) return 0.0;
  for (int i = 0; i < 14; ++i)
    if (text[i] < '0' || text[i] > '9') return 0.0;
  const auto part = [text](int from, int length) {
    int value = 0;
    for (int i = from; i < from + length; ++i) value = value * 10 + (text[i] - '0');
    return value;
  };
  const double time = TimeSerial(part(8, 2), part(10, 2), part(12, 2));
  const double wholeDays = std::floor(time);
  const auto days = static_cast<qint64>(DateSerial(part(0, 4), part(4, 2), part(6, 2)) + wholeDays);
  return Combine(days, time - wholeDays);
}

}  // namespace ombrelle
