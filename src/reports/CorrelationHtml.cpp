#include "reports/CorrelationHtml.h"

namespace ombrelle {

namespace {

QString Escaped(QString text) {
  text.replace(QLatin1Char('&'), QStringLiteral("&amp;"));
  text.replace(QLatin1Char('<'), QStringLiteral("&lt;"));
  text.replace(QLatin1Char('>'), QStringLiteral("&gt;"));
  text.replace(QLatin1Char('"'), QStringLiteral("&quot;"));
  text.replace(QChar(160), QStringLiteral("&#160;"));
  return text;
}

}  // namespace

QString CorrelationMatrixHtml(const QString& matrix) {
  QString text = Escaped(matrix);
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
  QString text = Escaped(regression);
  text.replace(QStringLiteral("\r\n\r\n"), QStringLiteral("</P><P CLASS=\"regressionbreak\">"));
  text.replace(QStringLiteral("\r\n"), QStringLiteral("</P>\r\n<P CLASS=\"regression\">"));
  return QStringLiteral("<P CLASS=\"regression\">") + text + QStringLiteral("</P>");
}

}  // namespace ombrelle
