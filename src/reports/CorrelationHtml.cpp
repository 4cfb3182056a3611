#include "reports/CorrelationHtml.h"

#include "reports/ReportFrame.h"

namespace ombrelle {

QString CorrelationMatrixHtml(const QString& matrix) {
  QString text = matrix;
  EscapeHTML(text);
  if (text.endsWith(QStringLiteral("\r\n"))) text.chop(2);
  text.replace(QLatin1Char('\t'), QStringLiteral("</TD><TD>"));
  text.replace(QStringLiteral("\r\n"), QStringLiteral("</TD></TR>\r\n<TR><TD CLASS=\"head\">"));
  text = QStringLiteral("<TABLE CLASS=\"grid\"><TR><TD CLASS=\"head\">") + text +
         QStringLiteral("</TD></TR></TABLE>");
  text.replace(QStringLiteral("<TD>@@"), QStringLiteral("<TD CLASS=\"neg\">"));
  text.remove(QStringLiteral("$$"));
  return text;
}

QString RegressionHtml(const QString& regression) {
  QString text = regression;
  EscapeHTML(text);
  text.replace(QStringLiteral("\r\n\r\n"), QStringLiteral("</P><P CLASS=\"regressionbreak\">"));
  text.replace(QStringLiteral("\r\n"), QStringLiteral("</P>\r\n<P CLASS=\"regression\">"));
  return QStringLiteral("<P CLASS=\"regression\">") + text + QStringLiteral("</P>");
}

}  // namespace ombrelle
