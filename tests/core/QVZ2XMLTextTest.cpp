#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include <QString>

#include "core/XmlText.h"
#include "support/FormatNum.h"

using namespace ombrelle;

namespace {

TEST(QVZ2XMLEscape, ReferencesEveryCodeOutsidePrintableAscii) {
  struct Case {
    QString text;
    const char* expected;
  };
  const Case cases[] = {
      {QStringLiteral("R&D"), "R&#38;D"},
      {QStringLiteral("a<b>c"), "a&#60;b&#62;c"},
      {QStringLiteral("it's \"x\""), "it&#39;s &#34;x&#34;"},
      {QStringLiteral("tab\there"), "tab&#9;here"},
      {QStringLiteral("line\r\nbreak"), "line&#13;&#10;break"},
      {QString(QChar(0)), "&#0;"},
      {QString(QChar(31)) + QChar(32) + QChar(126) + QChar(127), "&#31; ~&#127;"},
      {QString::fromUtf8("K\xC3\xB6ln"), "K&#246;ln"},              // o with diaeresis, 246
      {QString(QChar(0x9AD8)), "&#39640;"},                         // above 32767: positive
      {QString(QChar(0xFFFF)), "&#65535;"},                         // the largest code
      {QString::fromUtf8("\xF0\x9F\x98\x80"), "&#55357;&#56832;"},  // each 16-bit half
      {QStringLiteral("plain text 0-9 {[]}|~/\\=?!"), "plain text 0-9 {[]}|~/\\=?!"},
      {QString(), ""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(EscapeXml(c.text).toStdString(), c.expected) << c.text.toStdString();
    QString inPlace = c.text;
    EscapeXmlInPlace(inPlace);
    EXPECT_EQ(inPlace.toStdString(), c.expected);
  }
}

TEST(QVZ2XMLNumber, ShortGeneralForm) {
  struct Case {
    double value;
    const char* expected;
  };
  const Case cases[] = {
      {0.0, "0"},
      {-0.0, "0"},
      {1.0, "1"},
      {-1.0, "-1"},
      {0.5, ".5"},
      {-0.5, "-.5"},
      {1.5, "1.5"},
      {10.0, "10"},
      {0.1 + 0.2, ".3"},  // 15 significant digits hide the binary rest
      {1.0 / 3.0, ".333333333333333"},
      {-2.0 / 3.0, "-.666666666666667"},
      {123.456, "123.456"},
      {45678.75, "45678.75"},  // a date with a time of day
      // The fixed-notation window: decimal exponents -4 to 14.
      {0.0001, ".0001"},
      {-0.0001, "-.0001"},
      {0.00012345, ".00012345"},
      {0.00009999999999999999, ".0001"},  // rounds up into the window
      {0.00001, "1E-05"},
      {0.000099999, "9.9999E-05"},
      {-0.000015, "-1.5E-05"},
      {1e14, "100000000000000"},
      {123456789012345.0, "123456789012345"},
      {999999999999999.0, "999999999999999"},
      {999999999999999.5, "1E+15"},  // rounding carries into the exponent
      {1e15, "1E+15"},
      {-1e15, "-1E+15"},
      {1234567890123456.0, "1.23456789012346E+15"},
      {1e20, "1E+20"},
      {1.5e20, "1.5E+20"},
      {1e100, "1E+100"},
      {1e-100, "1E-100"},
      {std::numeric_limits<double>::max(), "1.79769313486232E+308"},
      {std::numeric_limits<double>::denorm_min(), "4.94065645841247E-324"},
      {12345.678901234567, "12345.6789012346"},
      {0.1234567890123456, ".123456789012346"},
      {2147483647.0, "2147483647"},
      {std::numeric_limits<double>::quiet_NaN(), "NaN"},
      {std::numeric_limits<double>::infinity(), "Inf"},
      {-std::numeric_limits<double>::infinity(), "-Inf"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(XmlNumberText(c.value).toStdString(), c.expected) << c.value;
  }
}

// The raw form is the program's general number form without the zero before
// the point; both are computed independently, so they are compared over
// values of every magnitude and of many digit counts.
TEST(QVZ2XMLNumber, AgreesWithTheGeneralFormOverEveryMagnitude) {
  std::mt19937_64 random(20240131);
  std::uniform_real_distribution<double> mantissa(1.0, 10.0);
  for (int exponent = -30; exponent <= 30; ++exponent) {
    for (int i = 0; i < 200; ++i) {
      double value = mantissa(random) * std::pow(10.0, exponent);
      if (i % 4 == 1) value = std::round(value * 1000) / 1000;  // fewer digits
      if (i % 2 == 1) value = -value;
      QString expected = GeneralNumber(value);
      if (expected.startsWith(QStringLiteral("0.")))
        expected.remove(0, 1);
      else if (expected.startsWith(QStringLiteral("-0.")))
        expected.remove(1, 1);
      ASSERT_EQ(XmlNumberText(value).toStdString(), expected.toStdString()) << value;
    }
  }
}

}  // namespace
