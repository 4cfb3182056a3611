#include <gtest/gtest.h>

#include "reports/CorrelationHtml.h"

namespace ombrelle {
namespace {

TEST(CorrelationHtml, MatrixCellsRowsAndNegativeMarks) {
  const QString matrix =
      "\tCC\tLINES<x>\r\nCC\t1.00\t@@-0.52$$\r\nLINES<x>\t@@-0.52$$\t1.00\r\n\tCC\tLINES<x>\r\n";
  EXPECT_EQ(
      CorrelationMatrixHtml(matrix),
      "<TABLE CLASS=\"grid\"><TR><TD "
      "CLASS=\"head\"></TD><TD>CC</TD><TD>LINES&lt;x&gt;</TD></TR>\r\n"
      "<TR><TD CLASS=\"head\">CC</TD><TD>1.00</TD><TD CLASS=\"neg\">-0.52</TD></TR>\r\n"
      "<TR><TD CLASS=\"head\">LINES&lt;x&gt;</TD><TD CLASS=\"neg\">-0.52</TD><TD>1.00</TD></TR>\r\n"
      "<TR><TD CLASS=\"head\"></TD><TD>CC</TD><TD>LINES&lt;x&gt;</TD></TR></TABLE>");
  EXPECT_EQ(CorrelationMatrixHtml(""),
            "<TABLE CLASS=\"grid\"><TR><TD CLASS=\"head\"></TD></TR></TABLE>");
}

TEST(CorrelationHtml, RegressionParagraphsAndBreaks) {
  EXPECT_EQ(RegressionHtml("CC = 1.50 -0.25 * X\r\nR² > 0\r\n\r\nA & B"),
            QString::fromUtf8("<P CLASS=\"regression\">CC = 1.50 -0.25 * X</P>\r\n"
                              "<P CLASS=\"regression\">R² &gt; 0</P><P CLASS=\"regressionbreak\">"
                              "A &amp; B</P>"));
}

}  // namespace
}  // namespace ombrelle
