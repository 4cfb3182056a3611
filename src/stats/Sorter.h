#pragma once

#include <cstdint>

namespace ombrelle {

// What a Sorter asks of the owner of the data: compare two positions and exchange them.
class SorterEvents {
 public:
  // Above 0 when position Item1 sorts after Item2, below 0 when before, 0 when equal.
  virtual int Compare(std::int32_t Item1, std::int32_t Item2) = 0;
  virtual void Swap(std::int32_t Item1, std::int32_t Item2) = 0;

 protected:
  ~SorterEvents() = default;
};

// A quicksort over positions of data it never sees: the owner answers Compare and carries out
// Swap, so one sort serves data of any shape without moving anything the owner does not move.
class Sorter {
 public:
  explicit Sorter(SorterEvents& owner) : m_owner(&owner) {}

  // Sorts positions Left..Right inclusive: median of three, pivot parked next to the right
  // end, not stable.
  void QuickSort(std::int32_t Left, std::int32_t Right);

  // The item that would stand at place Position of First..Last when sorted, found by
  // selection without any Swap; 0 when Position lies outside the range.
  std::int32_t FindPosition(std::int32_t Position, std::int32_t First, std::int32_t Last);

 private:
  SorterEvents* m_owner;
};

}  // namespace ombrelle
