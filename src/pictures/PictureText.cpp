#include "pictures/PictureText.h"

#include <cmath>
#include <cstdlib>

#include <QFont>
#include <QFontMetricsF>

namespace ombrelle {

namespace {

QFont MakeFont(const MetaFont& f) {
  QFont font(f.face.isEmpty() ? QStringLiteral("Verdana") : f.face);
  font.setPixelSize(std::max(1, std::abs(f.height)));
  font.setWeight(f.weight >= 600 ? QFont::Bold : QFont::Normal);
  font.setItalic(f.italic);
  font.setUnderline(f.underline);
  font.setStrikeOut(f.strikeout);
  font.setHintingPreference(QFont::PreferNoHinting);
  return font;
}

}  // namespace

PictureText::PictureText(const MetaFont& font) : m_font(font) {}

double PictureText::LineHeight() const { return QFontMetricsF(MakeFont(m_font)).height(); }

std::vector<int> PictureText::Advances(const QString& line) const {
  const QFontMetricsF metrics(MakeFont(m_font));
  std::vector<int> advances;
  advances.reserve(line.size());
  double exact = 0;
  int placed = 0;
  for (int i = 0; i < line.size(); ++i) {
    exact += metrics.horizontalAdvance(line.at(i));
    const int next = static_cast<int>(std::lround(exact));
    advances.push_back(next - placed);
    placed = next;
  }
  return advances;
}

QStringList PictureText::Lines(const QString& text) { return text.split(QStringLiteral("\r\n")); }

}  // namespace ombrelle
