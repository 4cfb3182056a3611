#include "support/Text.h"

#include <QStringList>

namespace ombrelle {

QString ExpandTabs(const QString& text, int column) {
  if (!text.contains(QLatin1Char('\t'))) return text;
  QStringList lines = text.split(QLatin1Char('\n'));
  for (QString& line : lines) {
    qsizetype tab;
    while ((tab = line.indexOf(QLatin1Char('\t'))) >= 0) {
      // The tab sits at 1-based position tab + 1; the text after it should
      // start at `column`.
      const qsizetype blanks = std::max<qsizetype>(1, column - (tab + 1));
      line.replace(tab, 1, QString(blanks, QLatin1Char(' ')));
    }
  }
  return lines.join(QLatin1Char('\n'));
}

}  // namespace ombrelle
