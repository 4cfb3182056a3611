#include "reports/English.h"

#include <cmath>

namespace ombrelle {

namespace {

QString AddS(const QString& word) {
  if (word.endsWith(QLatin1Char('s'))) return word + QStringLiteral("es");
  if (word.endsWith(QLatin1Char('y'))) return word.chopped(1) + QStringLiteral("ies");
  return word + QLatin1Char('s');
}

}  // namespace

QString PluralNoun(const QString& noun) { return AddS(noun); }

QString SingularVerb(const QString& verb) {
  if (verb == QLatin1String("have")) return QStringLiteral("has");
  if (verb.isEmpty()) return verb;
  return AddS(verb);
}

QString SizeWord(double lines) {
  const double n = std::nearbyint(lines);
  if (n <= 9999) return QStringLiteral("Small");
  if (n <= 49999) return QStringLiteral("Medium");
  if (n <= 99999) return QStringLiteral("Semi-large");
  if (n <= 499999) return QStringLiteral("Large");
  return QStringLiteral("Very large");
}

}  // namespace ombrelle
