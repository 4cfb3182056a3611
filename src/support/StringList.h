#pragma once

#include <cstdint>
#include <vector>

#include <QString>
#include <QStringList>

#include "stats/SortedFinder.h"
#include "stats/Sorter.h"

namespace ombrelle {

// How StringList compares its texts.
namespace StringCompare {
constexpr int Binary = 0;  // by character codes, case counts
constexpr int Text = 1;    // case does not count
}  // namespace StringCompare

// A growing list of strings, each with a 32-bit Data value that travels with
// it. Items are 1-based and in order of addition until a sort. Sorting moves
// the items through Sorter; while the list stays sorted by text, Find searches
// with a SortedFinder, else it scans.
class StringList {
 public:
  StringList();
  StringList(const StringList& other);
  StringList& operator=(const StringList& other);

  // Appends; returns the new item's position.
  int Add(const QString& text, std::int32_t data = 0);
  // The lowest position whose text equals `text` under the list's compare
  // mode (that of the last Sort, Binary before any); 0 when none does.
  int Find(const QString& text) const;

  // Read and set by position; positions outside 1..count read "" and 0 and
  // are not set.
  QString Item(int i) const;
  void SetItem(int i, const QString& text);
  std::int32_t Data(int i) const;
  void SetData(int i, std::int32_t data);
  int count() const { return static_cast<int>(m_items.size()); }

  // Sorts by text in `mode` (StringCompare). Equal texts keep no particular
  // order.
  void Sort(int mode = StringCompare::Binary);
  // Sorts by Data, rising or falling.
  void SortByData(bool descending = false);
  // Whether the list is sorted by text and unchanged since.
  bool IsSorted() const { return m_sortedByText; }

  // The texts and the Data values in current order, 0-based.
  QStringList ToArray() const { return m_items; }
  std::vector<std::int32_t> ToDataArray() const { return m_data; }

  void Clear();

 private:
  // Sorter events over the list's positions, by text or by Data.
  class ItemSorter : public SorterEvents {
   public:
    ItemSorter(StringList& list, bool byData, bool descending)
        : m_list(list), m_byData(byData), m_descending(descending) {}
    int Compare(std::int32_t Item1, std::int32_t Item2) override;
    void Swap(std::int32_t Item1, std::int32_t Item2) override;

   private:
    StringList& m_list;
    bool m_byData;
    bool m_descending;
  };

  // SortedFinder events: items compared by text, the search term, the
  // matches.
  class ItemFinder : public SortedFinderEvents {
   public:
    explicit ItemFinder(const StringList& list) : m_list(&list) {}
    int Compare(std::int32_t Item1, std::int32_t Item2) override;
    int CompareToSearchTerm(std::int32_t Item) override;
    bool Found(std::int32_t Item) override;

    QString term;
    std::int32_t lowest = 0;

   private:
    const StringList* m_list;
  };

  int CompareTexts(const QString& a, const QString& b) const;
  bool InRange(int i) const { return i >= 1 && i <= count(); }

  QStringList m_items;
  std::vector<std::int32_t> m_data;
  int m_mode = StringCompare::Binary;
  bool m_sortedByText = false;
  // The search machinery; Find is a read, so it may use it on a const list.
  mutable ItemFinder m_events;
  mutable SortedFinder m_finder;
};

}  // namespace ombrelle
