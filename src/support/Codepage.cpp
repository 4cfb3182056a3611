#include "support/Codepage.h"

#include <array>

namespace ombrelle {

namespace {

// Windows-1252 bytes 0x80 to 0x9F; the rest of the code page equals Latin-1.
// The unassigned bytes 0x81, 0x8D, 0x8F, 0x90 and 0x9D keep their own number.
constexpr std::array<char16_t, 32> kHigh1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 80-87
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  // 88-8F
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90-97
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,  // 98-9F
};

constexpr std::array<char16_t, 256> MakeTable() {
  std::array<char16_t, 256> table{};
  for (int b = 0; b < 256; ++b) table[b] = static_cast<char16_t>(b);
  for (int b = 0; b < 32; ++b) table[0x80 + b] = kHigh1252[b];
  return table;
}

constexpr std::array<char16_t, 256> kToUnicode = MakeTable();

char EncodeChar(char32_t c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<char>(c);
  for (int b = 0; b < 32; ++b)
    if (kHigh1252[b] == c) return static_cast<char>(0x80 + b);
  return '?';
}

}  // namespace

QString MultiByteToText(const char* data, qsizetype size, int codepage) {
  if (codepage == kCodepageUtf8) return QString::fromUtf8(data, size);
  QString text(size, Qt::Uninitialized);
  QChar* out = text.data();
  for (qsizetype i = 0; i < size; ++i)
    out[i] = QChar(kToUnicode[static_cast<unsigned char>(data[i])]);
  return text;
}

QString MultiByteToText(const QByteArray& bytes, int codepage) {
  return MultiByteToText(bytes.constData(), bytes.size(), codepage);
}

QByteArray TextToMultiByte(const QString& text, int codepage) {
  if (codepage == kCodepageUtf8) return text.toUtf8();
  QByteArray bytes;
  bytes.reserve(text.size());
  for (qsizetype i = 0; i < text.size(); ++i) {
    const QChar c = text.at(i);
    if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
      bytes.append('?');
      ++i;
      continue;
    }
    bytes.append(EncodeChar(c.unicode()));
  }
  return bytes;
}

}  // namespace ombrelle
