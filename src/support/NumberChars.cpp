#include "support/NumberChars.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace ombrelle {

void ShortestDigits(double value, DecimalDigits& digits) {
  value = std::fabs(value);
  if (value == 0) {
    digits.Digits[0] = '0';
    digits.Count = 1;
    digits.Point = 1;
    return;
  }
  if (value < 1e15 && value == std::trunc(value)) {
    // Below 10^15 every whole number is exact, and its own digits are the
    // shortest that read back.
    char* end = std::to_chars(digits.Digits, digits.Digits + sizeof digits.Digits,
                              static_cast<long long>(value))
                    .ptr;
    digits.Point = static_cast<int>(end - digits.Digits);
    while (end[-1] == '0') --end;
    digits.Count = static_cast<int>(end - digits.Digits);
    return;
  }
  // "d.ddde+XX" or "de-XXX": the digits without the point, then the exponent.
  char text[40];
  const char* end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::scientific).ptr;
  const char* e = static_cast<const char*>(std::memchr(text, 'e', static_cast<size_t>(end - text)));
  int count = 0;
  for (const char* p = text; p != e; ++p)
    if (*p != '.') digits.Digits[count++] = *p;
  digits.Count = count;
  int exponent = 0;
  std::from_chars(e + (e[1] == '+' ? 2 : 1), end, exponent);
  digits.Point = exponent + 1;
}

int NonFiniteChars(double value, char* out) {
  if (std::isnan(value)) {
    std::memcpy(out, "NaN", 3);
    return 3;
  }
  if (value < 0) {
    std::memcpy(out, "-Inf", 4);
    return 4;
  }
  std::memcpy(out, "Inf", 3);
  return 3;
}

int RoundDecimalChars(double value, const DecimalDigits& digits, int decimals, char* out) {
  if (decimals < 0) decimals = 0;
  // The digits with zeros in front, so that the point falls after at least
  // one of them; position 0 stays free for a carry out of the first digit.
  char work[kNumberCharsMax + 2];
  char* d = work + 1;
  int point = digits.Point;
  int n = 0;
  if (point < 1) {
    n = 1 - point;
    std::memset(d, '0', static_cast<size_t>(n));
    point = 1;
  }
  std::memcpy(d + n, digits.Digits, static_cast<size_t>(digits.Count));
  n += digits.Count;
  const int keep = point + decimals;
  if (n > keep) {
    const bool up = d[keep] >= '5';
    n = keep;
    if (up) {
      int i = keep;
      while (i > 0 && d[i - 1] == '9') d[--i] = '0';
      if (i == 0) {
        *--d = '1';
        ++n;
        ++point;
      } else {
        ++d[i - 1];
      }
    }
  } else {
    std::memset(d + n, '0', static_cast<size_t>(keep - n));
    n = keep;
  }
  bool zero = true;
  for (int i = 0; i < n && zero; ++i) zero = d[i] == '0';
  char* p = out;
  if (value < 0 && !zero) *p++ = '-';
  int first = 0;
  while (first < point && d[first] == '0') ++first;
  if (first == point) {
    *p++ = '0';
  } else {
    std::memcpy(p, d + first, static_cast<size_t>(point - first));
    p += point - first;
  }
  if (decimals > 0) {
    *p++ = '.';
    std::memcpy(p, d + point, static_cast<size_t>(decimals));
    p += decimals;
  }
  return static_cast<int>(p - out);
}

int RoundDecimalChars(double value, int decimals, char* out) {
  if (!std::isfinite(value)) return NonFiniteChars(value, out);
  if (std::fabs(value) < 1e15 && value == std::trunc(value)) {
    // A whole number: its digits, then zeros behind the point.
    int n = IntegerChars(static_cast<long long>(value), out);  // -0 reads "0"
    if (decimals > 0) {
      out[n++] = '.';
      std::memset(out + n, '0', static_cast<size_t>(decimals));
      n += decimals;
    }
    return n;
  }
  DecimalDigits digits;
  ShortestDigits(value, digits);
  return RoundDecimalChars(value, digits, decimals, out);
}

int IntegerChars(long long value, char* out) {
  return static_cast<int>(std::to_chars(out, out + 24, value).ptr - out);
}

}  // namespace ombrelle
