#pragma once

#include <vector>

#include <QString>
#include <QStringList>

#include "pictures/MetaRecord.h"
#include "pictures/TextMeasure.h"

namespace ombrelle {

// Text laid out for the metafile writers with the measurements the player
// uses, so that a saved picture places its lines as the screen does.
class PictureText {
 public:
  PictureText(const MetaFont& font, int mapMode) : m_measure(font, mapMode) {}
  double LineHeight() const { return m_measure.LineHeight(); }
  // Advance of each UTF-16 unit of `line` in logical units; they add up to
  // the line's width.
  std::vector<int> Advances(const QString& line) const;
  // Lines of a text cut at CR LF.
  static QStringList Lines(const QString& text) { return text.split(QStringLiteral("\r\n")); }
  // The height a font record stores: a height of 0 (the default size of
  // 8 points) written out in logical units.
  static int StoredHeight(const MetaFont& font, int mapMode);

 private:
  TextMeasure m_measure;
};

}  // namespace ombrelle
