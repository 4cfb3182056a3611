#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>

namespace ombrelle {

// Date values throughout the program are doubles: whole days since
// 1899-12-30, the time of day as the fraction. Before the epoch the whole part
// is negative and the fraction still counts forward from that day's midnight,
// so -1.25 is 1899-12-29 06:00. Clock times are local times.

// The day `year`-`month`-`day`, rolling over as calendar arithmetic does:
// month 13 is January of the next year, day 0 the last day of the month
// before, and so on. Proleptic Gregorian calendar.
double DateSerial(int year, int month, int day);
// A time of day as a fraction of a day; hours above 23 run into further days.
double TimeSerial(int hours, int minutes, int seconds);

double DateFromQDate(const QDate& date);
double DateFromQDateTime(const QDateTime& dateTime);
// The same as DateFromQDateTime of QDateTime::fromMSecsSinceEpoch(`msecs`)
// (a local time), for many files in a row: the system's time zone is taken
// as it was at the last tzset(), which the caller runs once before the loop.
double DateFromEpochMSecsLocal(qint64 msecs);
QDate DateToQDate(double value);
// The local date and time, to the millisecond.
QDateTime DateToQDateTime(double value);

// A text of exactly 14 decimal digits, "yyyymmddhhnnss", as a date value; any
// other text gives 0.
double ParseTimestamp14(const QString& text);
// The same of `size` ANSI bytes.
double ParseTimestamp14(const char* text, qsizetype size);

}  // namespace ombrelle
