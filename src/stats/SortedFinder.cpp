#include "stats/SortedFinder.h"

#include <bit>
#include <utility>

#include "stats/Sorter.h"

namespace ombrelle {

namespace {

// Lets the Sorter work on the index: compares go to the owner with the items the index
// holds, swaps move only index entries.
class IndexSortEvents final : public SorterEvents {
 public:
  IndexSortEvents(SortedFinderEvents& owner, std::vector<std::int32_t>& index, std::int32_t first)
      : m_owner(owner), m_index(index), m_first(first) {}
  int Compare(std::int32_t Item1, std::int32_t Item2) override {
    return m_owner.Compare(m_index[Item1 - m_first], m_index[Item2 - m_first]);
  }
  void Swap(std::int32_t Item1, std::int32_t Item2) override {
    std::swap(m_index[Item1 - m_first], m_index[Item2 - m_first]);
  }

 private:
  SortedFinderEvents& m_owner;
  std::vector<std::int32_t>& m_index;
  std::int32_t m_first;
};

inline bool IsMatch(int result) { return result != 1 && result != -1; }

}  // namespace

std::int32_t SortedFinder::Log2Step(std::int32_t n) {
  if (n < 1) return 0;
  return static_cast<std::int32_t>(std::bit_width(static_cast<std::uint32_t>(n))) - 1;
}

void SortedFinder::Sort(std::int32_t First, std::int32_t Last) {
  m_firstIndex = First;
  m_lastIndex = Last;
  if (First > Last) {
    m_sortIndex.clear();
    m_firstStep = 0;
    return;
  }
  const std::int64_t n = static_cast<std::int64_t>(Last) - First + 1;
  m_sortIndex.resize(static_cast<std::size_t>(n));
  for (std::int64_t k = 0; k < n; ++k) m_sortIndex[k] = static_cast<std::int32_t>(First + k);
  IndexSortEvents events(*m_owner, m_sortIndex, First);
  Sorter(events).QuickSort(First, Last);
  m_firstStep = n == 1 ? 1 : std::int32_t{1} << Log2Step(static_cast<std::int32_t>(n));
}

std::int32_t SortedFinder::GetIndex(std::int32_t Position) const {
  if (Position < m_firstIndex || Position > m_lastIndex || m_sortIndex.empty()) return 0;
  return m_sortIndex[Position - m_firstIndex];
}

std::int32_t SortedFinder::GetSortedIndex(std::int32_t Item) const {
  for (std::size_t k = 0; k < m_sortIndex.size(); ++k)
    if (m_sortIndex[k] == Item) return m_firstIndex + static_cast<std::int32_t>(k);
  return 0;
}

std::int32_t SortedFinder::Find() {
  if (m_sortIndex.empty()) return 0;
  std::int32_t result = 0;
  std::int32_t step = m_firstStep;
  std::int32_t pos = m_firstIndex + step - 1;
  auto termAt = [this](std::int32_t place) {
    return m_owner->CompareToSearchTerm(m_sortIndex[place - m_firstIndex]);
  };
  while (step != 0) {
    const int c = termAt(pos);
    if (c == 1) {
      step /= 2;
      pos -= step;
    } else if (c == -1) {
      do {
        step /= 2;
      } while (pos + step > m_lastIndex);
      pos += step;
    } else {
      std::int32_t first = pos;
      while (first > m_firstIndex && IsMatch(termAt(first - 1))) --first;
      std::int32_t last = pos;
      while (last < m_lastIndex && IsMatch(termAt(last + 1))) ++last;
      for (std::int32_t place = first; place <= last; ++place) {
        result = m_sortIndex[place - m_firstIndex];
        if (!m_owner->Found(result)) break;
      }
      step = 0;
    }
  }
  return result;
}

}  // namespace ombrelle
