#include "support/Text.h"

#include <algorithm>

#include <QStringList>

namespace ombrelle {

QString ExpandTabs(const QString& text, int column) {
  if (!text.contains(QLatin1Char('\t'))) return text;
  QStringList lines = text.split(QLatin1Char('\n'));
  for (QString& line : lines) {
    qsizetype tab;
    while ((tab = line.indexOf(QLatin1Char('\t'))) >= 0) {
      // The tab sits at 1-based position tab + 1; the text after it should
      // start at `column`.
      const qsizetype blanks = std::max<qsizetype>(1, column - (tab + 1));
      line.replace(tab, 1, QString(blanks, QLatin1Char(' ')));
    }
  }
  return lines.join(QLatin1Char('\n'));
}

QString NextToken(QString& text, const QString& separator) {
  const qsizetype at = separator.isEmpty() ? -1 : text.indexOf(separator);
  if (at < 0) {
    QString all = text;
    text.clear();
    return all;
  }
  QString token = text.left(at);
  text.remove(0, at + separator.size());
  return token;
}

QString WrapText(const QString& text, int width) {
  if (width < 1) return text;
  const QString crlf = QStringLiteral("\r\n");
  QStringList out;
  for (QString line : text.split(crlf)) {
    while (line.size() > width) {
      // The last blank or "-" among the first `width` characters (a blank just
      // behind them also fits, since it is dropped).
      qsizetype breakAt = -1;
      for (qsizetype i = std::min<qsizetype>(width, line.size() - 1); i > 0; --i) {
        const QChar c = line[i];
        if (c == QLatin1Char(' ') || (c == QLatin1Char('-') && i < width)) {
          breakAt = i;
          break;
        }
      }
      if (breakAt < 0) {
        out << line.left(width);
        line.remove(0, width);
      } else if (line[breakAt] == QLatin1Char(' ')) {
        out << line.left(breakAt);
        line.remove(0, breakAt + 1);
      } else {
        out << line.left(breakAt + 1);
        line.remove(0, breakAt + 1);
      }
    }
    out << line;
  }
  return out.join(crlf);
}

QString ToAscii7(const QString& text) {
  QString result;
  result.reserve(text.size());
  for (const QChar c : text) {
    if (c.unicode() < 128)
      result += c;
    else
      result += ToAscii7Char(c.unicode());
  }
  return result;
}

double ScanNumber(const QString& text) {
  qsizetype i = 0;
  const qsizetype n = text.size();
  while (i < n && (text[i] == QLatin1Char(' ') || text[i] == QLatin1Char('\t'))) ++i;
  QByteArray number;
  if (i < n && (text[i] == QLatin1Char('+') || text[i] == QLatin1Char('-')))
    number += char(text[i++].unicode());
  bool digits = false;
  bool point = false;
  for (; i < n; ++i) {
    const QChar c = text[i];
    if (c >= QLatin1Char('0') && c <= QLatin1Char('9')) {
      digits = true;
    } else if (c == QLatin1Char('.') && !point) {
      point = true;
    } else {
      break;
    }
    number += char(c.unicode());
  }
  if (!digits) return 0.0;
  // An exponent counts only when digits follow it.
  if (i < n && (text[i] == QLatin1Char('e') || text[i] == QLatin1Char('E'))) {
    qsizetype j = i + 1;
    QByteArray exponent = "e";
    if (j < n && (text[j] == QLatin1Char('+') || text[j] == QLatin1Char('-')))
      exponent += char(text[j++].unicode());
    const qsizetype firstDigit = j;
    while (j < n && text[j] >= QLatin1Char('0') && text[j] <= QLatin1Char('9'))
      exponent += char(text[j++].unicode());
    if (j > firstDigit) number += exponent;
  }
  bool ok = false;
  const double value = number.toDouble(&ok);
  return ok ? value : 0.0;
}

}  // namespace ombrelle
