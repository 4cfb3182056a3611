#include <gtest/gtest.h>

#include "support/Codepage.h"

using namespace ombrelle;

// Bytes 80 to 9F of Windows-1252, written out by hand from the code page chart.
static const char16_t kExpected80To9F[32] = {
    u'\u20AC', u'\u0081', u'\u201A', u'\u0192', u'\u201E', u'\u2026', u'\u2020', u'\u2021',
    u'\u02C6', u'\u2030', u'\u0160', u'\u2039', u'\u0152', u'\u008D', u'\u017D', u'\u008F',
    u'\u0090', u'\u2018', u'\u2019', u'\u201C', u'\u201D', u'\u2022', u'\u2013', u'\u2014',
    u'\u02DC', u'\u2122', u'\u0161', u'\u203A', u'\u0153', u'\u009D', u'\u017E', u'\u0178'};

TEST(Codepage, AnsiDecodesEveryByteAsWindows1252) {
  for (int b = 0; b < 256; ++b) {
    const QString text = MultiByteToText(QByteArray(1, static_cast<char>(b)), kCodepageAnsi);
    ASSERT_EQ(text.size(), 1);
    const char16_t expected = (b >= 0x80 && b <= 0x9F) ? kExpected80To9F[b - 0x80] : char16_t(b);
    EXPECT_EQ(text.at(0).unicode(), expected) << "byte " << b;
  }
}

TEST(Codepage, AnsiRoundTripsAllBytesIncludingUnassigned) {
  QByteArray all;
  for (int b = 0; b < 256; ++b) all.append(static_cast<char>(b));
  EXPECT_EQ(TextToMultiByte(MultiByteToText(all, kCodepageAnsi), kCodepageAnsi), all);
}

TEST(Codepage, AnsiEncodingReplacesMissingCharactersWithQuestionMark) {
  const struct {
    QString text;
    QByteArray bytes;
  } cases[] = {
      {QStringLiteral("Caf\u00E9 \u20AC5"), QByteArray("Caf\xE9 \x80"
                                                       "5")},
      {QStringLiteral("\u201Cq\u201D \u2122"), QByteArray("\x93q\x94 \x99")},
      {QStringLiteral("a\u4E2Db"), QByteArray("a?b")},
      {QStringLiteral("x\U0001F600y"), QByteArray("x?y")},  // a surrogate pair is one character
      {QStringLiteral("\u0100"), QByteArray("?")},
      {QString(), QByteArray()},
  };
  for (const auto& c : cases)
    EXPECT_EQ(TextToMultiByte(c.text, kCodepageAnsi), c.bytes) << c.text.toStdString();
}

TEST(Codepage, Utf8BothWays) {
  const QString text = QStringLiteral("\u00E9\u4E2D\U0001F600");
  const QByteArray bytes("\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80");
  EXPECT_EQ(TextToMultiByte(text, kCodepageUtf8), bytes);
  EXPECT_EQ(MultiByteToText(bytes, kCodepageUtf8), text);
  // A sequence cut short decodes to the replacement character.
  EXPECT_EQ(MultiByteToText(QByteArray("a\xC3"), kCodepageUtf8), QStringLiteral("a\uFFFD"));
}

TEST(Codepage, ZeroBytesAreKept) {
  EXPECT_EQ(MultiByteToText(QByteArray("a\0b", 3), kCodepageAnsi).size(), 3);
  EXPECT_EQ(MultiByteToText("a\0b", 3, kCodepageUtf8), QString::fromUtf16(u"a\0b", 3));
}
