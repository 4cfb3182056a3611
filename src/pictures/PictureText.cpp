#include "pictures/PictureText.h"

#include <cmath>

namespace ombrelle {

std::vector<int> PictureText::Advances(const QString& line) const {
  std::vector<int> advances;
  advances.reserve(line.size());
  int placed = 0;
  for (int i = 0; i < line.size(); ++i) {
    const int next = static_cast<int>(m_measure.LineWidth(line.left(i + 1)));
    advances.push_back(next - placed);
    placed = next;
  }
  return advances;
}

int PictureText::StoredHeight(const MetaFont& font, int mapMode) {
  if (font.height != 0) return font.height;
  return -static_cast<int>(
      std::nearbyint(TextMeasure::EmMillimetres(font, mapMode) / TextMeasure::MmPerUnit(mapMode)));
}

}  // namespace ombrelle
