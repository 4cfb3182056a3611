#include <gtest/gtest.h>

#include "support/Text.h"

using namespace ombrelle;

TEST(ToAscii7, NamedRows) {
  const std::pair<char16_t, const char*> rows[] = {
      {162, "c"},    {163, "L"},     {164, "#"},    {165, "Y"},     {166, "|"},    {167, "S"},
      {168, "\""},   {8220, "\""},   {8221, "\""},  {8222, "\""},   {8223, "\""},  {221, "Y"},
      {169, "(C)"},  {174, "(R)"},   {177, "+/-"},  {188, "1/4"},   {189, "1/2"},  {190, "3/4"},
      {223, "ss"},   {338, "OE"},    {339, "oe"},   {306, "IJ"},    {455, "LJ"},   {458, "NJ"},
      {1035, "TSH"}, {233, "e"},     {252, "u"},    {197, "A"},     {198, "AE"},   {216, "O"},
      {321, "L"},    {1046, "ZH"},   {1078, "zh"},  {1065, "SHCH"}, {1103, "ya"},  {937, "O"},
      {952, "th"},   {960, "p"},     {8364, "EUR"}, {8482, "TM"},   {8230, "..."}, {8211, "-"},
      {9312, "(1)"}, {9331, "(20)"}, {9398, "(A)"}, {9449, "(z)"},  {9372, "(a)"}, {160, " "},
      {'A', "A"},    {0, ""},        {127, "\x7f"},
  };
  for (const auto& [code, text] : rows) {
    if (code == 0) {
      EXPECT_EQ(ToAscii7Char(code), QString(QChar(0)));
      continue;
    }
    EXPECT_EQ(ToAscii7Char(code).toStdString(), text) << int(code);
  }
}

TEST(ToAscii7, UnknownCodesVanish) {
  EXPECT_EQ(ToAscii7Char(0x4E2D), "");
  EXPECT_EQ(ToAscii7Char(128), "");  // C1 controls
  EXPECT_EQ(ToAscii7Char(159), "");
  EXPECT_EQ(ToAscii7Char(1066), "");  // the hard sign has no sound
  EXPECT_EQ(ToAscii7(QString::fromUtf8("Stra\u00dfe \u2013 \u00bd \u65e5 \u00c5ngstr\u00f6m")),
            "Strasse - 1/2  Angstrom");
  EXPECT_EQ(ToAscii7(QString::fromUtf8(
                "\u041c\u043e\u0441\u043a\u0432\u0430 \u0391\u03b8\u03ae\u03bd\u03b1")),
            "Moskva Athina");
  EXPECT_EQ(ToAscii7("plain ASCII\t~"), "plain ASCII\t~");
}

TEST(MacRomanByte, LatinLetters) {
  const std::pair<int, int> cases[] = {{196, 128}, {197, 129},  {199, 130},  {201, 131}, {209, 132},
                                       {214, 133}, {220, 134},  {225, 135},  {224, 136}, {233, 142},
                                       {223, 167}, {169, 169},  {8364, 219}, {255, 216}, {65, 65},
                                       {0, 0},     {0x4E2D, 63}};
  for (const auto& [code, byte] : cases) EXPECT_EQ(MacRomanByte(code), byte) << code;
}

TEST(NextToken, TakesTheTextBeforeTheSeparator) {
  QString text = "a, b,, c";
  EXPECT_EQ(NextToken(text, ", "), "a");
  EXPECT_EQ(text, "b,, c");
  EXPECT_EQ(NextToken(text, ","), "b");
  EXPECT_EQ(NextToken(text, ","), "");
  EXPECT_EQ(text, " c");
  EXPECT_EQ(NextToken(text, ","), " c");
  EXPECT_EQ(text, "");
  EXPECT_EQ(NextToken(text, ","), "");
  QString noSeparator = "whole";
  EXPECT_EQ(NextToken(noSeparator, ""), "whole");
  EXPECT_TRUE(noSeparator.isEmpty());
}

TEST(WrapText, BreaksAtBlankHyphenOrWidth) {
  struct Case {
    const char* text;
    int width;
    const char* expected;
  };
  const Case cases[] = {
      {"hello world again", 10, "hello\r\nworld\r\nagain"},
      {"helloworld x", 10, "helloworld\r\nx"},
      {"well-known words", 8, "well-\r\nknown\r\nwords"},
      {"abcdefghijklmnop", 5, "abcde\r\nfghij\r\nklmno\r\np"},
      {"short\r\nlines stay", 20, "short\r\nlines stay"},
      {"first line is long\r\nok", 10, "first line\r\nis long\r\nok"},
      {"", 5, ""},
      {"unchanged text", 0, "unchanged text"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(WrapText(c.text, c.width).toStdString(), c.expected) << c.text;
}

TEST(ScanNumber, PlainDecimalScan) {
  const std::pair<const char*, double> cases[] = {
      {"12", 12}, {"12abc", 12},  {".2", 0.2},   {"-1.5", -1.5}, {"  7", 7},
      {"x", 0},   {"", 0},        {"1e3", 1000}, {"1e", 1},      {"2.5E-1x", 0.25},
      {"+3", 3},  {"1.2.3", 1.2}, {"-", 0},      {"1e999", 0}};
  for (const auto& [text, value] : cases) EXPECT_DOUBLE_EQ(ScanNumber(text), value) << text;
}

TEST(ExpandTabs, AlignsTextAfterTabToColumn) {
  EXPECT_EQ(ExpandTabs("ab\tc\r\nabcd\te\r\n", 6), "ab   c\r\nabcd e\r\n");
  EXPECT_EQ(ExpandTabs("no tabs", 10), "no tabs");
  EXPECT_EQ(ExpandTabs("long\tx", 2), "long x");
}
