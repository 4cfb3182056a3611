// The line splitting and the ASCII test look at several characters in one
// step: line ends and high bytes must be found at every offset of a step.
#include <gtest/gtest.h>

#include "measure/SourceText.h"

#include <utility>
#include <vector>

using namespace ombrelle;

namespace {

// The same rule one character at a time.
std::vector<std::pair<qsizetype, qsizetype>> PlainSplit(const QString& text) {
  std::vector<std::pair<qsizetype, qsizetype>> lines;
  qsizetype start = 0;
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (text[i] != u'\n' && text[i] != u'\r') continue;
    lines.emplace_back(start, i - start);
    if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
    start = i + 1;
  }
  if (start < text.size()) lines.emplace_back(start, text.size() - start);
  return lines;
}

std::vector<std::pair<qsizetype, qsizetype>> Split(const QString& text) {
  std::vector<std::pair<qsizetype, qsizetype>> lines;
  for (const PhysicalLine& l : SplitPhysicalLines(text)) lines.emplace_back(l.begin, l.length);
  return lines;
}

}  // namespace

TEST(SourceTextScan, EveryShortMixOfLineEndsSplitsAsOneByOne) {
  const QChar alphabet[] = {u'a', u'\r', u'\n'};
  for (int length = 0; length <= 7; ++length) {
    int combinations = 1;
    for (int k = 0; k < length; ++k) combinations *= 3;
    for (int n = 0; n < combinations; ++n) {
      QString text;
      for (int k = 0, rest = n; k < length; ++k, rest /= 3) text += alphabet[rest % 3];
      ASSERT_EQ(Split(text), PlainSplit(text)) << text.toStdString();
    }
  }
}

TEST(SourceTextScan, LineEndsAtEveryOffsetOfLongLines) {
  for (const char* end : {"\r", "\n", "\r\n"}) {
    for (int at = 0; at < 40; ++at) {
      QString text(40, u'x');
      text.insert(at, QLatin1String(end));
      text += QStringLiteral("\u00E9\u20AC tail");
      ASSERT_EQ(Split(text), PlainSplit(text)) << at;
      ASSERT_EQ(Split(text).size(), 2u);
    }
  }
}

TEST(SourceTextScan, AHighByteAnywhereIsNotAscii) {
  for (int at = 0; at < 21; ++at) {
    QByteArray bytes(21, 'x');
    bytes[at] = '\x80';  // the euro sign in Windows-1252, a control character as Latin-1
    const QString text = DecodeSource(bytes);
    ASSERT_EQ(text.size(), 21);
    EXPECT_EQ(text[at], QChar(0x20AC)) << at;
  }
}

TEST(SourceTextScan, DecodingFileAfterFileIntoOneStringGivesEachItsOwnText) {
  // Longer and shorter, ASCII and not, one string serving them all in turn.
  const QByteArray files[] = {
      QByteArray(100, 'a') + "\r\nb", "x = 1", "\x80 \xE9", QByteArray(33, 'z'), "",
      "\xEF\xBB\xBFy\xC3\xA9",        "ab"};
  QString text;
  for (const QByteArray& bytes : files) {
    DecodeSource(bytes, text);
    EXPECT_EQ(text, DecodeSource(bytes)) << bytes.toStdString();
  }
}
