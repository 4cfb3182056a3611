#include "support/StringsUniq.h"

#include <algorithm>

namespace ombrelle {

std::vector<int>::const_iterator StringsUniq::LowerBound(const QString& text) const {
  return std::lower_bound(m_sorted.begin(), m_sorted.end(), text,
                          [this](int item, const QString& t) { return m_items[item] < t; });
}

int StringsUniq::Find(const QString& text) const {
  const auto at = LowerBound(text);
  return at != m_sorted.end() && m_items[*at] == text ? *at + 1 : 0;
}

int StringsUniq::Store(const QString& text) {
  const auto at = LowerBound(text);
  if (at != m_sorted.end() && m_items[*at] == text) return *at + 1;
  const int item = static_cast<int>(m_items.size());
  m_items << text;
  m_sorted.insert(m_sorted.begin() + (at - m_sorted.cbegin()), item);
  return item + 1;
}

QString StringsUniq::Item(int position) const {
  return position >= 1 && position <= count() ? m_items[position - 1] : QString();
}

QStringList StringsUniq::GetList() const {
  QStringList list;
  list.reserve(count());
  for (const int item : m_sorted) list << m_items[item];
  return list;
}

QStringList StringsUniq::GetUnsortedList() const { return m_items; }

QString StringsUniq::Join(const QString& separator) const { return m_items.join(separator); }

bool StringsUniq::Replace(int position, const QString& text) {
  if (position < 1 || position > count()) return false;
  const int item = position - 1;
  if (m_items[item] == text) return true;
  if (Find(text) != 0) return false;
  m_sorted.erase(std::find(m_sorted.begin(), m_sorted.end(), item));
  m_items[item] = text;
  const auto at = LowerBound(text);
  m_sorted.insert(m_sorted.begin() + (at - m_sorted.cbegin()), item);
  return true;
}

void StringsUniq::Clear() {
  m_items.clear();
  m_sorted.clear();
}

}  // namespace ombrelle
