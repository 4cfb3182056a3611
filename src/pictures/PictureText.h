#pragma once

#include <vector>

#include <QString>
#include <QStringList>

#include "pictures/MetaRecord.h"

namespace ombrelle {

// Text measured the way the metafile writers lay it out: the font's face at a
// pixel size of |height| logical units, unhinted, so the result is the same
// on every screen.
class PictureText {
 public:
  explicit PictureText(const MetaFont& font);
  double LineHeight() const;
  // Advance of each UTF-16 unit of `line`, rounded so that the sum stays
  // within half a unit of the line's width.
  std::vector<int> Advances(const QString& line) const;
  // Lines of a text cut at CR LF.
  static QStringList Lines(const QString& text);

 private:
  MetaFont m_font;
};

}  // namespace ombrelle
