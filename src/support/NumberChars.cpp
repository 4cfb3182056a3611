#include "support/NumberChars.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>

namespace ombrelle {

namespace {

using Wide = unsigned __int128;

constexpr unsigned long long kPowersOfTen[] = {1ULL,
                                               10ULL,
                                               100ULL,
                                               1000ULL,
                                               10000ULL,
                                               100000ULL,
                                               1000000ULL,
                                               10000000ULL,
                                               100000000ULL,
                                               1000000000ULL,
                                               10000000000ULL,
                                               100000000000ULL,
                                               1000000000000ULL,
                                               10000000000000ULL,
                                               100000000000000ULL,
                                               1000000000000000ULL,
                                               10000000000000000ULL,
                                               100000000000000000ULL,
                                               1000000000000000000ULL,
                                               10000000000000000000ULL};

// A finite double above 0 as mantissa x 2^exponent, the mantissa below 2^53.
void SplitDouble(double value, unsigned long long& mantissa, int& exponent) {
  unsigned long long bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  const int biased = static_cast<int>((bits >> 52) & 0x7FF);
  mantissa = bits & ((1ULL << 52) - 1);
  if (biased == 0) {
    exponent = -1074;  // below the smallest normal: no hidden bit
  } else {
    mantissa |= 1ULL << 52;
    exponent = biased - 1075;
  }
}

// The value m x 2^-shift x 10^power split at the point as whole x 2^shift +
// rest, with the whole part below 2^64; false when it is larger or out of
// the range of the arithmetic.
bool ScaledParts(unsigned long long mantissa, int shift, int power, Wide& whole, Wide& rest) {
  if (shift < 1 || shift > 120 || power < 0 || power > 19) return false;
  const Wide product = static_cast<Wide>(mantissa) * kPowersOfTen[power];  // below 2^117
  whole = product >> shift;
  if (whole >> 64) return false;
  rest = product - (whole << shift);
  return true;
}

// Whether the rest lies more than one unit in the last place of the value
// (10^power in the units of the rest) from the halfway point, so that the
// value's shortest digits, which lie within half a unit of it, fall on the
// same side of every rounding boundary and on none.
bool ClearOfHalf(const Wide& rest, int shift, int power) {
  const Wide half = static_cast<Wide>(1) << (shift - 1);
  const Wide distance = rest > half ? rest - half : half - rest;
  return distance > kPowersOfTen[power];
}

}  // namespace

bool RoundScaledExact(double magnitude, int decimals, unsigned long long& units) {
  if (!(magnitude > 0) || !std::isfinite(magnitude)) return false;
  unsigned long long mantissa = 0;
  int exponent = 0;
  SplitDouble(magnitude, mantissa, exponent);
  Wide whole = 0, rest = 0;
  if (!ScaledParts(mantissa, -exponent, decimals, whole, rest)) return false;
  if (whole >= (static_cast<Wide>(1) << 62) || !ClearOfHalf(rest, -exponent, decimals))
    return false;
  units =
      static_cast<unsigned long long>(whole) + (rest > (static_cast<Wide>(1) << (-exponent - 1)));
  return true;
}

bool FifteenDigitsExact(double magnitude, DecimalDigits& digits) {
  if (!(magnitude >= 1e-5 && magnitude < 1e14)) return false;
  unsigned long long mantissa = 0;
  int exponent = 0;
  SplitDouble(magnitude, mantissa, exponent);
  // The power of ten that brings the value to fifteen digits before the
  // point: an estimate from the binary exponent, then corrected.
  const int shift = -exponent;
  // The value lies in [2^top, 2^(top + 1)); top x log10(2), rounded down
  // (78913 / 2^18 is a hair below log10(2)), is its decimal exponent or one
  // less, and the loop takes the power one down when needed.
  const int top = 63 - __builtin_clzll(mantissa) + exponent;
  int power = 14 - ((top * 78913) >> 18);
  Wide whole = 0, rest = 0;
  for (int attempt = 0; attempt < 3; ++attempt) {
    if (!ScaledParts(mantissa, shift, power, whole, rest)) return false;
    if (whole >= kPowersOfTen[15])
      --power;
    else if (whole < kPowersOfTen[14])
      ++power;
    else
      break;
  }
  if (whole < kPowersOfTen[14] || whole >= kPowersOfTen[15] || !ClearOfHalf(rest, shift, power))
    return false;
  unsigned long long rounded =
      static_cast<unsigned long long>(whole) + (rest > (static_cast<Wide>(1) << (shift - 1)));
  int point = 15 - power;
  if (rounded == kPowersOfTen[15]) {
    rounded = kPowersOfTen[14];
    ++point;
  }
  UnsignedChars(rounded, digits.Digits);  // fifteen digits
  int count = 15;
  while (count > 1 && digits.Digits[count - 1] == '0') --count;
  digits.Count = count;
  digits.Point = point;
  return true;
}

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
    char* end =
        digits.Digits + UnsignedChars(static_cast<unsigned long long>(value), digits.Digits);
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
  unsigned long long units = 0;
  if (decimals >= 0 && decimals < static_cast<int>(std::size(kPowersOfTen)) &&
      value != std::trunc(value) && RoundScaledExact(std::fabs(value), decimals, units)) {
    // The rounded value in units of the last decimal: its digits with the
    // point set in, zeros in front when it is below one.
    char* p = out;
    if (value < 0 && units != 0) *p++ = '-';
    char digits[24];
    const int count = UnsignedChars(units, digits);
    if (count > decimals) {
      std::memcpy(p, digits, static_cast<size_t>(count - decimals));
      p += count - decimals;
    } else {
      *p++ = '0';
    }
    if (decimals > 0) {
      *p++ = '.';
      const int zeros = count < decimals ? decimals - count : 0;
      std::memset(p, '0', static_cast<size_t>(zeros));
      p += zeros;
      std::memcpy(p, digits + count - (decimals - zeros), static_cast<size_t>(decimals - zeros));
      p += decimals - zeros;
    }
    return static_cast<int>(p - out);
  }
  DecimalDigits digits;
  ShortestDigits(value, digits);
  return RoundDecimalChars(value, digits, decimals, out);
}

namespace {

// "00" to "99": two digits at a time.
constexpr char kDigitPairs[] =
    "0001020304050607080910111213141516171819"
    "2021222324252627282930313233343536373839"
    "4041424344454647484950515253545556575859"
    "6061626364656667686970717273747576777879"
    "8081828384858687888990919293949596979899";

// Four digits of `value` (below 10,000), with leading zeros.
inline void FourDigits(unsigned value, char* out) {
  std::memcpy(out, kDigitPairs + 2 * (value / 100), 2);
  std::memcpy(out + 2, kDigitPairs + 2 * (value % 100), 2);
}

// Eight digits of `value` (below 10^8), with leading zeros.
inline void EightDigits(unsigned value, char* out) {
  FourDigits(value / 10000, out);
  FourDigits(value % 10000, out + 4);
}

// The digits of `value` below 10,000, without leading zeros.
inline int UpToFourDigits(unsigned value, char* out) {
  if (value < 10) {
    out[0] = static_cast<char>('0' + value);
    return 1;
  }
  if (value < 100) {
    std::memcpy(out, kDigitPairs + 2 * value, 2);
    return 2;
  }
  if (value < 1000) {
    out[0] = static_cast<char>('0' + value / 100);
    std::memcpy(out + 1, kDigitPairs + 2 * (value % 100), 2);
    return 3;
  }
  FourDigits(value, out);
  return 4;
}

// The digits of `value` below 10^8, without leading zeros.
inline int UpToEightDigits(unsigned value, char* out) {
  if (value < 10000) return UpToFourDigits(value, out);
  const int n = UpToFourDigits(value / 10000, out);
  FourDigits(value % 10000, out + n);
  return n + 4;
}

}  // namespace

int UnsignedChars(unsigned long long value, char* out) {
  // In pieces of eight digits, each in 32-bit arithmetic.
  constexpr unsigned long long kEight = 100000000ULL;
  if (value < kEight) return UpToEightDigits(static_cast<unsigned>(value), out);
  if (value < kEight * kEight) {
    const int n = UpToEightDigits(static_cast<unsigned>(value / kEight), out);
    EightDigits(static_cast<unsigned>(value % kEight), out + n);
    return n + 8;
  }
  const int n = UpToEightDigits(static_cast<unsigned>(value / (kEight * kEight)), out);
  const unsigned long long rest = value % (kEight * kEight);
  EightDigits(static_cast<unsigned>(rest / kEight), out + n);
  EightDigits(static_cast<unsigned>(rest % kEight), out + n + 8);
  return n + 16;
}

int IntegerChars(long long value, char* out) {
  if (value >= 0) return UnsignedChars(static_cast<unsigned long long>(value), out);
  out[0] = '-';
  // The magnitude in unsigned arithmetic, so that the smallest value has one.
  return 1 + UnsignedChars(0ULL - static_cast<unsigned long long>(value), out + 1);
}

}  // namespace ombrelle
