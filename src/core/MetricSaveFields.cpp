#include "core/MetricSaveFields.h"

#include <cmath>

#include <QDate>

#include "support/Codepage.h"
#include "support/DateValue.h"

namespace ombrelle {

namespace {

// The calendar day and the second of that day of a date value. The fraction
// counts forward from the day's midnight, also before the epoch, and is
// rounded to the nearest second so that a value read back from a 14-digit
// stamp gives the same stamp again.
struct DayAndSecond {
  QDate day;
  int second = 0;
};

DayAndSecond SplitDate(double date) {
  if (!std::isfinite(date) || std::fabs(date) > 1e7) return {QDate(1899, 12, 30), 0};
  const double whole = std::trunc(date);
  QDate day = DateToQDate(whole);
  long long second = std::llround(std::fabs(date - whole) * 86400.0);
  if (second >= 86400) {
    day = day.addDays(1);
    second = 0;
  }
  return {day, static_cast<int>(second)};
}

}  // namespace

void SetTextFieldUtf8(std::array<char, kTextFieldSize>& field, const QString& text) {
  field.fill('\0');
  const QByteArray bytes = text.toUtf8();
  // Walk whole characters: a lead byte and its continuation bytes go in
  // together or not at all.
  qsizetype fits = 0;
  qsizetype i = 0;
  while (i < bytes.size()) {
    qsizetype next = i + 1;
    while (next < bytes.size() && (static_cast<unsigned char>(bytes[next]) & 0xC0) == 0x80) ++next;
    if (next > kTextFieldSize) break;
    fits = next;
    i = next;
  }
  std::copy(bytes.constBegin(), bytes.constBegin() + fits, field.begin());
}

void SetTextFieldAnsi(std::array<char, kTextFieldSize>& field, const QString& text) {
  const QByteArray bytes = TextToMultiByte(text + QString(kTextFieldSize, u' '), kCodepageAnsi);
  std::copy(bytes.constBegin(), bytes.constBegin() + kTextFieldSize, field.begin());
}

QByteArray DateToIsoText(double date) {
  return SplitDate(date).day.toString(QStringLiteral("yyyy-MM-dd")).toLatin1();
}

QByteArray DateToStamp14(double date) {
  const DayAndSecond at = SplitDate(date);
  const int s = at.second;
  return (at.day.toString(QStringLiteral("yyyyMMdd")) +
          QStringLiteral("%1%2%3")
              .arg(s / 3600, 2, 10, QLatin1Char('0'))
              .arg(s / 60 % 60, 2, 10, QLatin1Char('0'))
              .arg(s % 60, 2, 10, QLatin1Char('0')))
      .toLatin1();
}

void SetAnalysisDate(DatabaseHeader& header, double date) {
  SetBlankPadded(header.AnalysisDate, DateToIsoText(date));
  SetBlankPadded(header.AnalysisStamp, DateToStamp14(date));
}

void StampChecksum(DatabaseHeader& header, qint64 fileLength) {
  SetBlankPadded(header.Checksum, HeaderChecksum(header, fileLength));
}

ValueEncoding ChooseValueEncoding(int format, double min, double max) {
  if (min == max) return {kValueConstant, 0};
  if (format == 1 || format == 2 || format == 9) {
    // Written as ">=" and "<=" so that a NaN extreme fails every test and
    // the series is kept as doubles.
    if (min >= 0 && max <= 255) return {kValueByte, 1};
    if (min >= -32768 && max <= 32767) return {kValueInt16, 2};
    if (min >= -2147483648.0 && max <= 2147483647.0) return {kValueInt32, 4};
  }
  return {kValueDouble, 8};
}

}  // namespace ombrelle
