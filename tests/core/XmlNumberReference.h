#pragma once

// The raw number of the XML export as it was written before the shortest
// digits served it: the oracle the faster road is held against.

#include <charconv>
#include <cmath>
#include <cstring>

#include "core/XmlText.h"

namespace ombrelle::reference {

// clang-format off
inline int XmlNumber(double value, char* out) {
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

  // Fifteen significant digits, rounded once: "d.dddddddddddddde+XX".
  char sci[kXmlNumberMaxBytes];
  const auto sciEnd =
      std::to_chars(sci, sci + sizeof sci, std::fabs(value), std::chars_format::scientific, 14).ptr;
  char digits[15];
  digits[0] = sci[0];
  std::memcpy(digits + 1, sci + 2, 14);
  int count = 15;
  while (count > 1 && digits[count - 1] == '0') --count;
  const char* exponentText = sci + 17;  // behind "e"
  int exponent = 0;
  std::from_chars(exponentText + (*exponentText == '+' ? 1 : 0), sciEnd, exponent);

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
// clang-format on

}  // namespace ombrelle::reference
