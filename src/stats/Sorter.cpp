#include "stats/Sorter.h"

#include <random>
#include <vector>

#include "stats/PositionQuickSort.h"

namespace ombrelle {

namespace {

struct OwnerOps {
  SorterEvents* owner;
  bool Before(std::int32_t i, std::int32_t j) const { return owner->Compare(i, j) < 0; }
  bool After(std::int32_t i, std::int32_t j) const { return owner->Compare(i, j) > 0; }
  void Swap(std::int32_t i, std::int32_t j) const { owner->Swap(i, j); }
};

}  // namespace

void Sorter::QuickSort(std::int32_t Left, std::int32_t Right) {
  OwnerOps ops{m_owner};
  detail::QuickSortPositions(ops, Left, Right);
}

std::int32_t Sorter::FindPosition(std::int32_t Position, std::int32_t First, std::int32_t Last) {
  if (First > Last || Position < First || Position > Last) return 0;
  static thread_local std::minstd_rand random{20260419u};
  std::vector<std::int32_t> items;
  items.reserve(static_cast<std::size_t>(Last - First) + 1);
  for (std::int32_t item = First; item <= Last; ++item) items.push_back(item);
  std::size_t k = static_cast<std::size_t>(Position - First) + 1;  // 1-based rank wanted
  std::vector<std::int32_t> lower, upper;
  for (;;) {
    if (items.size() == 1) return items[0];
    const std::int32_t pivot =
        items[std::uniform_int_distribution<std::size_t>(0, items.size() - 1)(random)];
    lower.clear();
    upper.clear();
    std::vector<std::int32_t> equal;
    for (std::int32_t item : items) {
      const int c = m_owner->Compare(item, pivot);
      (c < 0 ? lower : c > 0 ? upper : equal).push_back(item);
    }
    // Items not after the pivot are lower + equal; the wanted rank falls in one of the three.
    if (k <= lower.size()) {
      items.swap(lower);
    } else if (k <= lower.size() + equal.size()) {
      return pivot;
    } else {
      k -= lower.size() + equal.size();
      items.swap(upper);
    }
  }
}

}  // namespace ombrelle
