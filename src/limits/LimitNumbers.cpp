#include "limits/LimitNumbers.h"

#include "support/FormatNum.h"

#include <QByteArray>

#include <cmath>
#include <string>

namespace ombrelle {

QString LimitNumberText(double value) {
  QString text = GeneralNumber(value);
  if (text.startsWith(QLatin1String("0."))) {
    text.remove(0, 1);
  } else if (text.startsWith(QLatin1String("-0."))) {
    text.remove(1, 1);
  }
  return text;
}

double ParseLimitNumber(const QString& text) {
  const qsizetype n = text.size();
  qsizetype i = 0;
  while (i < n && (text[i] == QLatin1Char(' ') || text[i] == QLatin1Char('\t'))) ++i;

  std::string number;
  auto isDigit = [&](qsizetype k) {
    return k < n && text[k] >= QLatin1Char('0') && text[k] <= QLatin1Char('9');
  };
  if (i < n && (text[i] == QLatin1Char('+') || text[i] == QLatin1Char('-'))) {
    number += static_cast<char>(text[i].unicode());
    ++i;
  }
  bool digits = false;
  while (isDigit(i)) {
    number += static_cast<char>(text[i++].unicode());
    digits = true;
  }
  if (i < n && text[i] == QLatin1Char('.')) {
    number += '.';
    ++i;
    while (isDigit(i)) {
      number += static_cast<char>(text[i++].unicode());
      digits = true;
    }
  }
  if (!digits) return 0.0;
  // An exponent counts only when digits follow it ("2E" reads 2).
  if (i < n && (text[i] == QLatin1Char('E') || text[i] == QLatin1Char('e') ||
                text[i] == QLatin1Char('D') || text[i] == QLatin1Char('d'))) {
    qsizetype k = i + 1;
    std::string exponent = "e";
    if (k < n && (text[k] == QLatin1Char('+') || text[k] == QLatin1Char('-'))) {
      exponent += static_cast<char>(text[k].unicode());
      ++k;
    }
    if (isDigit(k)) {
      while (isDigit(k) && exponent.size() < 12) exponent += static_cast<char>(text[k++].unicode());
      number += exponent;
    }
  }
  // QByteArray reads with "." whatever the locale says.
  bool ok = false;
  const double value = QByteArray::fromStdString(number).toDouble(&ok);
  return ok && std::isfinite(value) ? value : 0.0;
}

std::int32_t ToWholeNumber(double value, std::int32_t low, std::int32_t high) {
  const double rounded = std::nearbyint(value);
  if (!(rounded >= low)) return low;
  if (rounded > high) return high;
  return static_cast<std::int32_t>(rounded);
}

}  // namespace ombrelle
