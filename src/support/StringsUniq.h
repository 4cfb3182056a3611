#pragma once

#include <vector>

#include <QString>
#include <QStringList>

namespace ombrelle {

// A set of strings kept in the order of first storing, with a sorted index so
// that Find and Store cost a binary search. Positions are 1-based; strings
// compare exactly (case counts).
class StringsUniq {
 public:
  // Position of `text`, 0 when it was never stored.
  int Find(const QString& text) const;
  // Position of `text`, adding it at the end when new.
  int Store(const QString& text);
  int count() const { return static_cast<int>(m_items.size()); }
  // The string at `position` (1-based); "" outside the range.
  QString Item(int position) const;
  // The strings sorted.
  QStringList GetList() const;
  // The strings in the order of storing.
  QStringList GetUnsortedList() const;
  QString Join(const QString& separator) const;
  // Puts `text` at `position`. False, with nothing changed, when the position
  // is outside the range or `text` is stored at another position already.
  bool Replace(int position, const QString& text);
  void Clear();

 private:
  // First place in the sorted index whose string is not before `text`.
  std::vector<int>::const_iterator LowerBound(const QString& text) const;

  QStringList m_items;
  std::vector<int> m_sorted;  // 0-based item numbers in string order
};

}  // namespace ombrelle
