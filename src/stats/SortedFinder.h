#pragma once

#include <cstdint>
#include <vector>

namespace ombrelle {

// What a SortedFinder asks of the owner of the items.
class SortedFinderEvents {
 public:
  // Above 0 when item Item1 sorts after Item2, below 0 when before, 0 when equal.
  virtual int Compare(std::int32_t Item1, std::int32_t Item2) = 0;
  // 1: the item sorts after the search term; -1: before it; any other value: equal.
  virtual int CompareToSearchTerm(std::int32_t Item) = 0;
  // A matching item; return true to be offered the next equal one.
  virtual bool Found(std::int32_t Item) = 0;

 protected:
  ~SortedFinderEvents() = default;
};

// A sorted index over the owner's items FirstIndex..LastIndex, and a binary search on it that
// offers every matching item, in index order, until the owner has what it wants. Only the
// index moves; the owner's data stays where it is.
class SortedFinder {
 public:
  explicit SortedFinder(SortedFinderEvents& owner) : m_owner(&owner) {}

  // Sorts the index over items First..Last. An empty range (First above Last) leaves nothing
  // to find.
  void Sort(std::int32_t First, std::int32_t Last);
  // Binary search; the last item handed to Found, 0 when nothing matched or nothing is sorted.
  std::int32_t Find();
  // The item at place Position of the sorted index (FirstIndex..LastIndex); 0 outside it.
  std::int32_t GetIndex(std::int32_t Position) const;
  // The place of Item in the sorted index, 0 when absent.
  std::int32_t GetSortedIndex(std::int32_t Item) const;

  std::int32_t FirstIndex() const { return m_firstIndex; }
  std::int32_t LastIndex() const { return m_lastIndex; }
  // The first jump of the search: the largest power of two not above the item count.
  std::int32_t FirstStep() const { return m_firstStep; }

  // floor(log2(n)) for n >= 1 (exact for powers of two); 0 below 1.
  static std::int32_t Log2Step(std::int32_t n);

 private:
  SortedFinderEvents* m_owner;
  std::int32_t m_firstIndex = 0;
  std::int32_t m_lastIndex = 0;
  std::vector<std::int32_t> m_sortIndex;  // place FirstIndex + k at [k]
  std::int32_t m_firstStep = 0;
};

}  // namespace ombrelle
