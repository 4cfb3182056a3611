#pragma once

#include <bit>
#include <cstdint>

namespace ombrelle::detail {

// The quicksort shared by Sorter and CStats::Sort: median of three, the pivot parked at
// hi - 1, partition by compare-to-pivot-position, ties left where the swaps put them. It knows
// only positions; `ops` answers Before(i, j) / After(i, j) (i sorts before / after j) and
// carries out Swap(i, j).
//
// A guard keeps hostile data from hurting the program without changing anything on ordinary
// input: a range nested deeper than random data ever gets (about four times log2 n) is
// finished by heap sort through the same operations, so the stack stays shallow and the time
// n log n.
template <class Ops>
void HeapSortPositions(Ops& ops, std::int32_t lo, std::int32_t hi) {
  const std::int64_t n = static_cast<std::int64_t>(hi) - lo + 1;
  auto siftDown = [&](std::int64_t root, std::int64_t size) {
    for (;;) {
      std::int64_t child = 2 * root + 1;
      if (child >= size) return;
      if (child + 1 < size && ops.Before(static_cast<std::int32_t>(lo + child),
                                         static_cast<std::int32_t>(lo + child + 1)))
        ++child;
      if (!ops.Before(static_cast<std::int32_t>(lo + root), static_cast<std::int32_t>(lo + child)))
        return;
      ops.Swap(static_cast<std::int32_t>(lo + root), static_cast<std::int32_t>(lo + child));
      root = child;
    }
  };
  for (std::int64_t start = n / 2 - 1; start >= 0; --start) siftDown(start, n);
  for (std::int64_t end = n - 1; end > 0; --end) {
    ops.Swap(lo, static_cast<std::int32_t>(lo + end));
    siftDown(0, end);
  }
}

template <class Ops>
void QuickSortPositionsBounded(Ops& ops, std::int32_t lo, std::int32_t hi, int budget) {
  while (lo < hi) {
    if (hi - lo == 1) {
      if (ops.After(lo, hi)) ops.Swap(lo, hi);
      return;
    }
    if (budget-- <= 0) {
      HeapSortPositions(ops, lo, hi);
      return;
    }
    const std::int32_t mid = lo + (hi - lo) / 2;
    if (ops.After(lo, mid)) ops.Swap(lo, mid);
    if (ops.After(lo, hi)) ops.Swap(lo, hi);
    if (ops.After(mid, hi)) ops.Swap(mid, hi);
    if (lo + 1 == mid && mid + 1 == hi) return;  // three items: the median of three sorted them
    const std::int32_t p = hi - 1;
    ops.Swap(mid, p);
    std::int32_t i = lo;
    std::int32_t j = p;
    for (;;) {
      do {
        ++i;
      } while (ops.Before(i, p) && i < p);
      do {
        --j;
      } while (ops.After(j, p) && j > lo);
      if (i >= j) break;
      ops.Swap(i, j);
    }
    ops.Swap(i, p);
    // Left side by recursion, right side by looping: the owner sees its events in the
    // same order as plain recursion would give, and the budget bounds the depth.
    QuickSortPositionsBounded(ops, lo, i - 1, budget);
    lo = i + 1;
  }
}

template <class Ops>
void QuickSortPositions(Ops& ops, std::int32_t lo, std::int32_t hi) {
  if (lo >= hi) return;
  const auto n = static_cast<std::uint64_t>(static_cast<std::int64_t>(hi) - lo + 1);
  QuickSortPositionsBounded(ops, lo, hi, 4 * static_cast<int>(std::bit_width(n)) + 16);
}

}  // namespace ombrelle::detail
