#include "support/StringList.h"

#include <utility>

namespace ombrelle {

namespace {
int Sign(int value) { return (value > 0) - (value < 0); }
}  // namespace

int StringList::ItemSorter::Compare(std::int32_t Item1, std::int32_t Item2) {
  int result;
  if (m_byData) {
    const std::int32_t a = m_list.m_data[Item1 - 1];
    const std::int32_t b = m_list.m_data[Item2 - 1];
    result = (a > b) - (a < b);
  } else {
    result = m_list.CompareTexts(m_list.m_items[Item1 - 1], m_list.m_items[Item2 - 1]);
  }
  return m_descending ? -result : result;
}

void StringList::ItemSorter::Swap(std::int32_t Item1, std::int32_t Item2) {
  m_list.m_items.swapItemsAt(Item1 - 1, Item2 - 1);
  std::swap(m_list.m_data[Item1 - 1], m_list.m_data[Item2 - 1]);
}

int StringList::ItemFinder::Compare(std::int32_t Item1, std::int32_t Item2) {
  return m_list->CompareTexts(m_list->m_items[Item1 - 1], m_list->m_items[Item2 - 1]);
}

int StringList::ItemFinder::CompareToSearchTerm(std::int32_t Item) {
  return m_list->CompareTexts(m_list->m_items[Item - 1], term);
}

bool StringList::ItemFinder::Found(std::int32_t Item) {
  if (lowest == 0 || Item < lowest) lowest = Item;
  return true;  // every equal item, to report the lowest position
}

StringList::StringList() : m_events(*this), m_finder(m_events) {}

StringList::StringList(const StringList& other)
    : m_items(other.m_items),
      m_data(other.m_data),
      m_mode(other.m_mode),
      m_sortedByText(false),
      m_events(*this),
      m_finder(m_events) {
  if (other.m_sortedByText) Sort(m_mode);
}

StringList& StringList::operator=(const StringList& other) {
  if (this == &other) return *this;
  m_items = other.m_items;
  m_data = other.m_data;
  m_mode = other.m_mode;
  m_sortedByText = false;
  m_finder = SortedFinder(m_events);
  if (other.m_sortedByText) Sort(m_mode);
  return *this;
}

int StringList::CompareTexts(const QString& a, const QString& b) const {
  return Sign(
      a.compare(b, m_mode == StringCompare::Text ? Qt::CaseInsensitive : Qt::CaseSensitive));
}

int StringList::Add(const QString& text, std::int32_t data) {
  m_items << text;
  m_data.push_back(data);
  m_sortedByText = false;
  return count();
}

int StringList::Find(const QString& text) const {
  if (m_sortedByText) {
    m_events.term = text;
    m_events.lowest = 0;
    m_finder.Find();
    return m_events.lowest;
  }
  for (int i = 0; i < count(); ++i)
    if (CompareTexts(m_items[i], text) == 0) return i + 1;
  return 0;
}

QString StringList::Item(int i) const { return InRange(i) ? m_items[i - 1] : QString(); }

void StringList::SetItem(int i, const QString& text) {
  if (!InRange(i)) return;
  m_items[i - 1] = text;
  m_sortedByText = false;
}

std::int32_t StringList::Data(int i) const { return InRange(i) ? m_data[i - 1] : 0; }

void StringList::SetData(int i, std::int32_t data) {
  if (InRange(i)) m_data[i - 1] = data;
}

void StringList::Sort(int mode) {
  m_mode = mode == StringCompare::Text ? StringCompare::Text : StringCompare::Binary;
  ItemSorter events(*this, false, false);
  Sorter(events).QuickSort(1, count());
  // The finder's index over the now sorted items.
  m_finder.Sort(1, count());
  m_sortedByText = true;
}

void StringList::SortByData(bool descending) {
  ItemSorter events(*this, true, descending);
  Sorter(events).QuickSort(1, count());
  m_sortedByText = false;
}

void StringList::Clear() {
  m_items.clear();
  m_data.clear();
  m_sortedByText = false;
}

}  // namespace ombrelle
