#include "measure/SourceText.h"

#include "support/Codepage.h"

#include <algorithm>
#include <cstring>

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

}  // namespace

QString DecodeSource(const QByteArray& bytes) {
  if (bytes.startsWith("\xEF\xBB\xBF"))
    return QString::fromUtf8(bytes.constData() + 3, bytes.size() - 3);
  const auto* data = reinterpret_cast<const unsigned char*>(bytes.constData());
  if (std::all_of(data, data + bytes.size(), [](unsigned char c) { return c < 0x80; }))
    return QString::fromLatin1(bytes);  // plain ASCII, the common case, converted fastest
  if (IsValidUtf8(data, bytes.size())) return QString::fromUtf8(bytes);
  return MultiByteToText(bytes, kCodepageAnsi);
}

bool LooksBinary(const QByteArray& bytes) {
  const qsizetype n = std::min<qsizetype>(bytes.size(), 65536);
  return std::memchr(bytes.constData(), 0, static_cast<size_t>(n)) != nullptr;
}

std::vector<PhysicalLine> SplitPhysicalLines(const QString& text) {
  std::vector<PhysicalLine> lines;
  const char16_t* p = reinterpret_cast<const char16_t*>(text.constData());
  const qsizetype size = text.size();
  lines.reserve(static_cast<size_t>(size / 32 + 1));  // about one line per 32 characters
  qsizetype start = 0;
  for (qsizetype i = 0; i < size; ++i) {
    const char16_t c = p[i];
    if (c > u'\r' || (c != u'\n' && c != u'\r')) continue;  // one test for most characters
    lines.push_back({start, i - start});
    if (c == u'\r' && i + 1 < size && p[i + 1] == u'\n') ++i;
    start = i + 1;
  }
  if (start < size) lines.push_back({start, size - start});
  return lines;
}

}  // namespace ombrelle
