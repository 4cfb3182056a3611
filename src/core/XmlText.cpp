#include "core/XmlText.h"

#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>

#include "support/NumberChars.h"

namespace ombrelle {

int XmlEscapeCode(char16_t code, char* out) {
  if (XmlPlainCode(code)) {
    out[0] = static_cast<char>(code);
    return 1;
  }
  out[0] = '&';
  out[1] = '#';
  const auto end = std::to_chars(out + 2, out + kXmlEscapeMaxBytes - 1,
                                 static_cast<unsigned>(static_cast<uint16_t>(code)))
                       .ptr;
  *end = ';';
  return static_cast<int>(end - out) + 1;
}

QString EscapeXml(QStringView text) {
  QString result;
  result.reserve(text.size());
  char piece[kXmlEscapeMaxBytes];
  for (const QChar c : text) {
    const int length = XmlEscapeCode(c.unicode(), piece);
    result.append(QLatin1StringView(piece, length));
  }
  return result;
}

void EscapeXmlInPlace(QString& text) {
  // Most names need nothing; they are left as they are, without a copy.
  for (const QChar c : std::as_const(text)) {
    if (!XmlPlainCode(c.unicode())) {
      text = EscapeXml(text);
      return;
    }
  }
}

int XmlNumber(double value, char* out) { return XmlNumber(value, nullptr, out); }

int XmlNumber(double value, const DecimalDigits* known, char* out) {
  if (std::isnan(value)) {
    std::memcpy(out, "NaN", 3);
    return 3;
  }
  if (std::isinf(value)) {
    if (value < 0) {
      std::memcpy(out, "-Inf", 4);
      return 4;
    }
    std::memcpy(out, "Inf", 3);
    return 3;
  }
  if (value == 0) {  // -0 as well
    out[0] = '0';
    return 1;
  }

  // Whole numbers of up to 15 digits are written as they are: the common case.
  if (std::fabs(value) < 1e15 && value == std::trunc(value))
    return static_cast<int>(
        std::to_chars(out, out + kXmlNumberMaxBytes, static_cast<long long>(value)).ptr - out);

  // Fifteen significant digits, rounded once. When the shortest digits that
  // read back are no more than fifteen they are that rounding already: a
  // normal double lies closer to them than half a step of fifteen digits.
  DecimalDigits shortest;
  if (known)
    shortest = *known;
  else
    ShortestDigits(value, shortest);
  char sci[kXmlNumberMaxBytes];
  char digitsRounded[15];
  const char* digits = shortest.Digits;
  int count = shortest.Count;
  int exponent = shortest.Point - 1;
  if (count > 15 || std::fabs(value) < DBL_MIN) {
    // "d.dddddddddddddde+XX"
    const auto sciEnd =
        std::to_chars(sci, sci + sizeof sci, std::fabs(value), std::chars_format::scientific, 14)
            .ptr;
    digitsRounded[0] = sci[0];
    std::memcpy(digitsRounded + 1, sci + 2, 14);
    count = 15;
    while (count > 1 && digitsRounded[count - 1] == '0') --count;
    const char* exponentText = sci + 17;  // behind "e"
    std::from_chars(exponentText + (*exponentText == '+' ? 1 : 0), sciEnd, exponent);
    digits = digitsRounded;
  }

  char* p = out;
  if (value < 0) *p++ = '-';
  if (exponent >= -4 && exponent <= 14) {
    if (exponent < 0) {
      *p++ = '.';
      for (int i = -1; i > exponent; --i) *p++ = '0';
      std::memcpy(p, digits, count);
      p += count;
    } else {
      // Whole part: digits 0..exponent, filled with zeros past the last digit.
      for (int i = 0; i <= exponent; ++i) *p++ = i < count ? digits[i] : '0';
      if (count > exponent + 1) {
        *p++ = '.';
        std::memcpy(p, digits + exponent + 1, count - exponent - 1);
        p += count - exponent - 1;
      }
    }
  } else {
    *p++ = digits[0];
    if (count > 1) {
      *p++ = '.';
      std::memcpy(p, digits + 1, count - 1);
      p += count - 1;
    }
    *p++ = 'E';
    *p++ = exponent < 0 ? '-' : '+';
    const int magnitude = exponent < 0 ? -exponent : exponent;
    if (magnitude < 10) *p++ = '0';
    p = std::to_chars(p, out + kXmlNumberMaxBytes, magnitude).ptr;
  }
  return static_cast<int>(p - out);
}

QString XmlNumberText(double value) {
  char buffer[kXmlNumberMaxBytes];
  return QString::fromLatin1(buffer, XmlNumber(value, buffer));
}

}  // namespace ombrelle
