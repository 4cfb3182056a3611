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
  else if (!FifteenDigitsExact(std::fabs(value), shortest))
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
// The longest display of a whole number: its digits and "00%".
static_assert(kLineOpen.size() + kDigitsRoom + 3 + kLineMiddle.size() + kDigitsRoom <=
              kXmlValueLineMax);

char* Put(char* out, std::string_view text) {
  std::memcpy(out, text.data(), text.size());
  return out + text.size();
}

// "00" to "99": two digits at a time.
constexpr char kPairs[] =
    "0001020304050607080910111213141516171819"
    "2021222324252627282930313233343536373839"
    "4041424344454647484950515253545556575859"
    "6061626364656667686970717273747576777879"
    "8081828384858687888990919293949596979899";

// The digits of a whole number with its sign; below 10,000 without a loop.
inline int WholeDigits(long long whole, char* out) {
  if (whole < 0 || whole >= 10000) return IntegerChars(whole, out);
  const auto v = static_cast<unsigned>(whole);
  if (v < 10) {
    out[0] = static_cast<char>('0' + v);
    return 1;
  }
  if (v < 100) {
    std::memcpy(out, kPairs + 2 * v, 2);
    return 2;
  }
  const unsigned high = v / 100;
  const unsigned low = v % 100;
  if (v < 1000) {
    out[0] = static_cast<char>('0' + high);
    std::memcpy(out + 1, kPairs + 2 * low, 2);
    return 3;
  }
  std::memcpy(out, kPairs + 2 * high, 2);
  std::memcpy(out + 2, kPairs + 2 * low, 2);
  return 4;
}

// The display of a whole number (below 10^15 in magnitude) whose digits with
// sign are digits[0..n), as FormatMetricChars writes it for `format`, at `p`;
// the end of the display, or null for a format or size this road leaves to
// FormatMetricChars.
char* WholeDisplay(int format, long long whole, const char* digits, int n, char* p) {
  switch (format) {
    case 10:
      // From ten on the size form shows whole numbers as the whole-number
      // formats do; below, with two decimals.
      if (whole > -10 && whole < 10) break;
      [[fallthrough]];
    case 0:
    case 1:
    case 2:
      // The digits, grouped by "," from a thousand to below a million.
      if (whole >= 1000000) return nullptr;
      // The copies take the whole digit buffer, a fixed size that needs no
      // call; the line has room for it and what follows overwrites the rest.
      std::memcpy(p, digits, kDigitsRoom);
      if (whole >= 1000) {
        p[n - 3] = ',';
        std::memcpy(p + n - 2, digits + n - 3, 3);
        return p + n + 1;
      }
      return p + n;
    case 3:
    case 4:
    case 5:
      // A hundred times the value, exact below 10^12; 0 reads "0%".
      if (whole == 0) return Put(p, "0%");
      if (whole <= -1000000000000LL || whole >= 1000000000000LL) return nullptr;
      std::memcpy(p, digits, kDigitsRoom);
      return Put(p + n, "00%");
    case 7:
      std::memcpy(p, digits, kDigitsRoom);
      return Put(p + n, ".0");
    case 6:
    case 8:
      break;
    default:
      return nullptr;
  }
  // Two decimals: formats 6 and 8, and the size form below ten.
  std::memcpy(p, digits, kDigitsRoom);
  return Put(p + n, ".00");
}
}  // namespace

// Inlined into the loop of XmlValueLines.
[[gnu::always_inline]] inline int ValueLine(int format, double value, char* out) {
  char* const display = out + kLineOpen.size();
  char* p = nullptr;
  // Whole numbers: the raw form is their digits, and the display is made
  // from the same digits for the formats in common use.
  if (value > -1e15 && value < 1e15) {
    const auto whole = static_cast<long long>(value);
    if (static_cast<double>(whole) == value) {
      char digits[kDigitsRoom];
      const int n = WholeDigits(whole, digits);  // -0 reads "0"
      p = WholeDisplay(format, whole, digits, n, display);
      if (p) {
        p = Put(p, kLineMiddle);
        std::memcpy(p, digits, sizeof digits);
        p += n;
      }
    }
  }
  if (!p) {
    const int length = FormatMetricChars(format, value, nullptr, display);
    if (length < 0) return -1;
    p = Put(display + length, kLineMiddle);
    p += XmlNumber(value, nullptr, p);
  }
  Put(out, kLineOpen);
  p = Put(p, kLineClose);
  return static_cast<int>(p - out);
}

int XmlValueLine(int format, double value, char* out) { return ValueLine(format, value, out); }

qsizetype XmlValueLines(int format, const double* values, qsizetype count, char* out,
                        qsizetype room, qsizetype& done) {
  char* p = out;
  char* const last = out + room - kXmlValueLineMax;  // the last start with room for any line
  qsizetype i = 0;
  for (; i < count && p <= last; ++i) {
    const int length = ValueLine(format, values[i], p);
    if (length < 0) break;
    p += length;
  }
  done = i;
  return p - out;
}

QString XmlNumberText(double value) {
  char buffer[kXmlNumberMaxBytes];
  return QString::fromLatin1(buffer, XmlNumber(value, buffer));
}

}  // namespace ombrelle
