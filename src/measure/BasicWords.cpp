#include "measure/BasicWords.h"

namespace ombrelle {

NameHash HashName(const QChar* data, qsizetype size) {
  // A type-suffix character is no part of the name: s$ and s are one variable.
  if (size > 1) {
    const char16_t last = data[size - 1].unicode();
    if (last == u'$' || last == u'%' || last == u'&' || last == u'!' || last == u'#' ||
        last == u'@')
      --size;
  }
  NameHash h = kNameHashStart;
  for (qsizetype i = 0; i < size; ++i) {
    char16_t c = data[i].unicode();
    if (c >= u'A' && c <= u'Z')
      c = static_cast<char16_t>(c + 32);
    else if (c >= 0x80)
      c = QChar(c).toLower().unicode();
    h = HashStep(h, c);
  }
  return HashEnd(h);
}

NameHash HashName(const QString& name) { return HashName(name.constData(), name.size()); }

}  // namespace ombrelle
