#include "measure/SourceText.h"

#include "support/Codepage.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ombrelle {

namespace {

bool IsValidUtf8(const unsigned char* p, qsizetype size) {
  qsizetype i = 0;
  while (i < size) {
    const unsigned char c = p[i];
    if (c < 0x80) {
      ++i;
      continue;
    }
    int follow = 0;
    unsigned int code = 0;
    if (c >= 0xC2 && c <= 0xDF) {
      follow = 1;
      code = c & 0x1F;
    } else if (c >= 0xE0 && c <= 0xEF) {
      follow = 2;
      code = c & 0x0F;
    } else if (c >= 0xF0 && c <= 0xF4) {
      follow = 3;
      code = c & 0x07;
    } else {
      return false;
    }
    if (i + follow >= size) return false;
    for (int k = 1; k <= follow; ++k) {
      const unsigned char f = p[i + k];
      if ((f & 0xC0) != 0x80) return false;
      code = (code << 6) | (f & 0x3F);
    }
    // Overlong forms, surrogates and values beyond the last character.
    if ((follow == 2 && code < 0x800) || (follow == 3 && (code < 0x10000 || code > 0x10FFFF)) ||
        (code >= 0xD800 && code <= 0xDFFF))
      return false;
    i += follow + 1;
  }
  return true;
}

// No byte has its high bit set; eight bytes are looked at in one step.
bool IsAscii(const unsigned char* p, qsizetype size) {
  qsizetype i = 0;
  std::uint64_t high = 0;
  for (; i + 8 <= size; i += 8) {
    std::uint64_t word;
    std::memcpy(&word, p + i, 8);
    high |= word;
  }
  for (; i < size; ++i) high |= p[i];
  return (high & 0x8080808080808080ull) == 0;
}

}  // namespace

QString DecodeSource(const QByteArray& bytes) {
  if (bytes.startsWith("\xEF\xBB\xBF"))
    return QString::fromUtf8(bytes.constData() + 3, bytes.size() - 3);
  const auto* data = reinterpret_cast<const unsigned char*>(bytes.constData());
  if (IsAscii(data, bytes.size()))
    return QString::fromLatin1(bytes);  // plain ASCII, the common case, converted fastest
  if (IsValidUtf8(data, bytes.size())) return QString::fromUtf8(bytes);
  return MultiByteToText(bytes, kCodepageAnsi);
}

void DecodeSource(const QByteArray& bytes, QString& text) {
  if (bytes.isEmpty()) {
    text.clear();
    return;
  }
  // Taken as ASCII, each byte being its character, while the bytes are
  // looked at for a high bit in the same pass; a high bit anywhere (a
  // byte-order mark has them too) and the text is decoded the slower way.
  // resize() keeps the string's memory when it is large enough and not shared.
  const auto* data = reinterpret_cast<const unsigned char*>(bytes.constData());
  const qsizetype size = bytes.size();
  text.resize(size);
  auto* out = reinterpret_cast<char16_t*>(text.data());
  unsigned high = 0;
  qsizetype i = 0;
#ifdef __SSE2__
  // Sixteen bytes at a time, each widened to a character by a zero high byte.
  const __m128i zero = _mm_setzero_si128();
  __m128i highBits = zero;
  for (; i + 16 <= size; i += 16) {
    const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data + i));
    highBits = _mm_or_si128(highBits, chunk);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_unpacklo_epi8(chunk, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i + 8), _mm_unpackhi_epi8(chunk, zero));
  }
  high = static_cast<unsigned>(_mm_movemask_epi8(highBits));
#endif
  for (; i < size; ++i) {
    high |= data[i] & 0x80u;
    out[i] = data[i];
  }
  if (high != 0) text = DecodeSource(bytes);
}

bool LooksBinary(const QByteArray& bytes) {
  const qsizetype n = std::min<qsizetype>(bytes.size(), 65536);
  return std::memchr(bytes.constData(), 0, static_cast<size_t>(n)) != nullptr;
}

std::vector<PhysicalLine> SplitPhysicalLines(const QString& text) {
  std::vector<PhysicalLine> lines;
  SplitPhysicalLines(text, lines);
  return lines;
}

void SplitPhysicalLines(const QString& text, std::vector<PhysicalLine>& lines) {
  lines.clear();
  const char16_t* p = reinterpret_cast<const char16_t*>(text.constData());
  const qsizetype size = text.size();
  lines.reserve(static_cast<size_t>(size / 32 + 1));  // about one line per 32 characters
  qsizetype start = 0;
  qsizetype crAt = -2;  // the last CR that ended a line
  // Each CR or LF at `at` ends a line, but the LF of a CR LF only moves the
  // next line's start past it.
  auto lineEnd = [&](qsizetype at) __attribute__((always_inline)) {
    if (p[at] == u'\n' && at == crAt + 1) {
      start = at + 1;
      return;
    }
    lines.push_back({start, at - start});
    start = at + 1;
    if (p[at] == u'\r') crAt = at;
  };
  qsizetype i = 0;
#ifdef __SSE2__
  // Eight characters at a time: a mask with two bits for each CR or LF, whose
  // set bits are taken lowest first.
  const __m128i cr = _mm_set1_epi16('\r');
  const __m128i lf = _mm_set1_epi16('\n');
  for (; i + 8 <= size; i += 8) {
    const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
    auto mask = static_cast<unsigned>(
        _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi16(chunk, cr), _mm_cmpeq_epi16(chunk, lf))));
    while (mask != 0) {
      const int bit = std::countr_zero(mask);
      lineEnd(i + bit / 2);
      mask &= ~(3u << bit);
    }
  }
#endif
  for (; i < size; ++i)
    if (p[i] == u'\n' || p[i] == u'\r') lineEnd(i);
  if (start < size) lines.push_back({start, size - start});
}

}  // namespace ombrelle
