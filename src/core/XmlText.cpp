#include "core/XmlText.h"

#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>

#include "support/FormatNum.h"
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
    return IntegerChars(static_cast<long long>(value), out);

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
  if (count > 15 && std::fabs(value) >= DBL_MIN && !(count == 16 && digits[15] == '5')) {
    // More than fifteen shortest digits: they lie on the same side of every
    // fifteen-digit midpoint as the value itself, unless they are that
    // midpoint (sixteen digits ending in 5), so rounding them half up is
    // rounding the value.
    std::memcpy(digitsRounded, digits, 15);
    count = 15;
    if (digits[15] >= '5') {
      int i = 15;
      while (i > 0 && digitsRounded[i - 1] == '9') --i;
      if (i == 0) {
        digitsRounded[0] = '1';
        count = 1;
        ++exponent;
      } else {
        ++digitsRounded[i - 1];
        count = i;
      }
    }
    while (count > 1 && digitsRounded[count - 1] == '0') --count;
    digits = digitsRounded;
  } else if (count > 15 || std::fabs(value) < DBL_MIN) {
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

namespace {
constexpr std::string_view kLineOpen = "   <value display='";
constexpr std::string_view kLineMiddle = "'>";
constexpr std::string_view kLineClose = "</value>\r\n";
static_assert(kLineOpen.size() + kNumberCharsMax + kLineMiddle.size() + kXmlNumberMaxBytes +
                  kLineClose.size() <=
              kXmlValueLineMax);

// Room for the digits of a whole number below 10^15 with its sign, and more.
constexpr size_t kDigitsRoom = 24;
static_assert(kLineOpen.size() + 1 + kDigitsRoom + kLineMiddle.size() + kDigitsRoom <=
              kXmlValueLineMax);

char* Put(char* out, std::string_view text) {
  std::memcpy(out, text.data(), text.size());
  return out + text.size();
}
}  // namespace

int XmlValueLine(int format, double value, char* out) {
  char* const display = out + kLineOpen.size();
  char* p = nullptr;
  // Whole numbers below a million in the whole-number formats: the display
  // is the raw digits, grouped by "," from a thousand on.
  if ((format == 0 || format == 1 || format == 2) && value < 1e6 && value > -1e15) {
    const auto whole = static_cast<long long>(value);
    if (static_cast<double>(whole) == value) {
      // The copies take the whole digit buffer, a fixed size that needs no
      // call; the line has room for it and what follows overwrites the rest.
      char digits[kDigitsRoom];
      const int n = IntegerChars(whole, digits);
      p = display;
      std::memcpy(p, digits, sizeof digits);
      if (whole >= 1000) {
        p[n - 3] = ',';
        std::memcpy(p + n - 2, digits + n - 3, 3);
        ++p;
      }
      p = Put(p + n, kLineMiddle);
      std::memcpy(p, digits, sizeof digits);
      p += n;
    }
  }
  if (!p) {
    // A fraction's digits are found once for its display and its raw form.
    DecimalDigits digits;
    const DecimalDigits* known = nullptr;
    if (std::isfinite(value) && !(std::fabs(value) < 1e15 && value == std::trunc(value))) {
      ShortestDigits(value, digits);
      known = &digits;
    }
    const int length = FormatMetricChars(format, value, known, display);
    if (length < 0) return -1;
    p = Put(display + length, kLineMiddle);
    p += XmlNumber(value, known, p);
  }
  Put(out, kLineOpen);
  p = Put(p, kLineClose);
  return static_cast<int>(p - out);
}

QString XmlNumberText(double value) {
  char buffer[kXmlNumberMaxBytes];
  return QString::fromLatin1(buffer, XmlNumber(value, buffer));
}

}  // namespace ombrelle
