#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "stats/PositionQuickSort.h"
#include "stats/SortedFinder.h"
#include "stats/Sorter.h"

using namespace ombrelle;

namespace {

// Owner of values at positions 1..n that records every event it answers.
struct RecordingOwner final : SorterEvents {
  std::vector<int> values;  // position p at [p - 1]
  std::vector<std::string> events;
  bool record = true;
  explicit RecordingOwner(std::vector<int> v) : values(std::move(v)) {}
  int Compare(std::int32_t a, std::int32_t b) override {
    if (record) events.push_back("C" + std::to_string(a) + std::to_string(b));
    EXPECT_GE(a, 1);
    EXPECT_LE(a, static_cast<int>(values.size()));
    EXPECT_GE(b, 1);
    EXPECT_LE(b, static_cast<int>(values.size()));
    return values[a - 1] < values[b - 1] ? -1 : values[a - 1] > values[b - 1] ? 1 : 0;
  }
  void Swap(std::int32_t a, std::int32_t b) override {
    if (record) events.push_back("S" + std::to_string(a) + std::to_string(b));
    std::swap(values[a - 1], values[b - 1]);
  }
};

using Events = std::vector<std::string>;

}  // namespace

TEST(Sorter, EventSequencesOfSmallRanges) {
  struct Case {
    std::vector<int> values;
    Events events;
  };
  const Case cases[] = {
      {{1}, {}},
      {{2, 1}, {"C12", "S12"}},
      {{1, 2}, {"C12"}},
      // Three items: the median of three alone orders them; no pivot swap.
      {{3, 1, 2}, {"C12", "S12", "C13", "C23", "S23"}},
      // Four: median of three, pivot parked at 3, one partition pass, then 1..2 and 4..4.
      {{4, 3, 2, 1},
       {"C12", "S12", "C14", "S14", "C24", "S24", "S23", "C23", "C33", "C23", "S33", "C12"}},
  };
  for (const Case& c : cases) {
    RecordingOwner owner(c.values);
    Sorter(owner).QuickSort(1, static_cast<int>(c.values.size()));
    EXPECT_EQ(owner.events, c.events);
    EXPECT_TRUE(std::is_sorted(owner.values.begin(), owner.values.end()));
  }
  RecordingOwner owner({2, 1});
  Sorter(owner).QuickSort(2, 1);
  EXPECT_TRUE(owner.events.empty());
}

TEST(Sorter, SortsRandomAndAdversarialData) {
  std::mt19937 random(17);
  for (int n = 0; n <= 300; n += 7) {
    for (int spread : {3, 1000}) {
      std::vector<int> values(n);
      for (int& v : values) v = std::uniform_int_distribution<int>(0, spread)(random);
      RecordingOwner owner(values);
      owner.record = false;
      Sorter(owner).QuickSort(1, n);
      std::sort(values.begin(), values.end());
      EXPECT_EQ(owner.values, values) << n << " " << spread;
    }
  }
  std::vector<int> rising(20000), falling(20000), equal(20000, 4);
  for (int i = 0; i < 20000; ++i) rising[i] = i, falling[i] = -i;
  for (auto* values : {&rising, &falling, &equal}) {
    RecordingOwner owner(*values);
    owner.record = false;
    Sorter(owner).QuickSort(1, 20000);
    EXPECT_TRUE(std::is_sorted(owner.values.begin(), owner.values.end()));
  }
}

TEST(Sorter, HeapSortFallbackSortsThroughTheSameEvents) {
  // With no depth to spend the shared quicksort finishes by heap sort at once.
  std::mt19937 random(8);
  std::vector<int> values(500);
  for (int& v : values) v = std::uniform_int_distribution<int>(0, 50)(random);
  RecordingOwner owner(values);
  owner.record = false;
  struct Ops {
    RecordingOwner& o;
    bool Before(std::int32_t i, std::int32_t j) { return o.Compare(i, j) < 0; }
    bool After(std::int32_t i, std::int32_t j) { return o.Compare(i, j) > 0; }
    void Swap(std::int32_t i, std::int32_t j) { o.Swap(i, j); }
  } ops{owner};
  detail::QuickSortPositionsBounded(ops, 1, 500, 0);
  std::sort(values.begin(), values.end());
  EXPECT_EQ(owner.values, values);
}

TEST(Sorter, FindPositionSelectsWithoutSwapping) {
  std::mt19937 random(23);
  for (int n : {1, 2, 5, 40}) {
    std::vector<int> values(n);
    for (int& v : values) v = std::uniform_int_distribution<int>(0, 9)(random);
    std::vector<int> sorted = values;
    std::sort(sorted.begin(), sorted.end());
    RecordingOwner owner(values);
    for (int k = 1; k <= n; ++k) {
      const int item = Sorter(owner).FindPosition(k, 1, n);
      ASSERT_GE(item, 1);
      EXPECT_EQ(values[item - 1], sorted[k - 1]) << n << " " << k;
    }
    EXPECT_EQ(std::count_if(owner.events.begin(), owner.events.end(),
                            [](const std::string& e) { return e[0] == 'S'; }),
              0);
    EXPECT_EQ(Sorter(owner).FindPosition(n + 1, 1, n), 0);
  }
}

namespace {

// Owner for SortedFinder: items First..Last carry values; the search term is a value.
struct FinderOwner final : SortedFinderEvents {
  std::vector<int> values;  // item i at [i]; [0] unused
  int term = 0;
  bool keepGoing = true;
  std::vector<int> found;
  std::vector<int> looked;  // items given to CompareToSearchTerm
  int Compare(std::int32_t a, std::int32_t b) override {
    return values[a] < values[b] ? -1 : values[a] > values[b] ? 1 : 0;
  }
  int CompareToSearchTerm(std::int32_t item) override {
    looked.push_back(item);
    return values[item] > term ? 1 : values[item] < term ? -1 : 0;
  }
  bool Found(std::int32_t item) override {
    found.push_back(item);
    return keepGoing;
  }
  int FindTerm(SortedFinder& finder, int t, bool more = true) {
    term = t;
    keepGoing = more;
    found.clear();
    looked.clear();
    return finder.Find();
  }
};

}  // namespace

TEST(SortedFinder, FirstStepIsLargestPowerOfTwoNotAboveCount) {
  const std::pair<int, int> cases[] = {{1, 1}, {2, 2}, {3, 2}, {5, 4}, {8, 8}, {9, 8}, {1000, 512}};
  for (auto [n, step] : cases) {
    FinderOwner owner;
    owner.values.assign(n + 1, 0);
    SortedFinder finder(owner);
    finder.Sort(1, n);
    EXPECT_EQ(finder.FirstStep(), step) << n;
  }
  EXPECT_EQ(SortedFinder::Log2Step(1), 0);
  EXPECT_EQ(SortedFinder::Log2Step(1024), 10);
  EXPECT_EQ(SortedFinder::Log2Step(1023), 9);
  EXPECT_EQ(SortedFinder::Log2Step(2147483647), 30);
}

TEST(SortedFinder, SortsOnlyTheIndex) {
  FinderOwner owner;
  owner.values = {0, 0, 0, 50, 10, 40, 20, 30};  // items 3..7 are sorted
  SortedFinder finder(owner);
  finder.Sort(3, 7);
  std::vector<int> order;
  for (int p = 3; p <= 7; ++p) order.push_back(finder.GetIndex(p));
  EXPECT_EQ(order, (std::vector<int>{4, 6, 7, 5, 3}));
  EXPECT_EQ(owner.values[3], 50);  // the owner's data did not move
  EXPECT_EQ(finder.GetSortedIndex(3), 7);
  EXPECT_EQ(finder.GetSortedIndex(1), 0);
  EXPECT_EQ(finder.GetIndex(2), 0);
  EXPECT_EQ(owner.FindTerm(finder, 40), 5);
  EXPECT_EQ(owner.found, (std::vector<int>{5}));
}

TEST(SortedFinder, BinarySearchLooksAtThePlacesOfTheJumps) {
  FinderOwner owner;
  owner.values = {0, 10, 20, 30, 40, 50};
  SortedFinder finder(owner);
  finder.Sort(1, 5);
  struct Case {
    int term;
    int result;
    std::vector<int> looked;
  };
  const Case cases[] = {
      {20, 2, {4, 2, 1, 3}},  // 40 after: back 2; match at 2, then the neighbours differ
      {50, 5, {4, 5, 4}},     // 40 before: 4 + 2 passes 5, so + 1
      {60, 0, {4, 5}},        // after every item: nothing
      {5, 0, {4, 2, 1}},      // before every item
      {35, 0, {4, 2, 3}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(owner.FindTerm(finder, c.term), c.result) << c.term;
    EXPECT_EQ(owner.looked, c.looked) << c.term;
  }
}

TEST(SortedFinder, OffersEveryEqualItemInIndexOrder) {
  FinderOwner owner;
  owner.values.assign(31, 0);
  for (int i = 1; i <= 30; ++i) owner.values[i] = i <= 5 ? 1 : i <= 25 ? 7 : 9;
  std::shuffle(owner.values.begin() + 1, owner.values.end(), std::mt19937(2));
  SortedFinder finder(owner);
  finder.Sort(1, 30);
  std::vector<int> sevens;
  for (int p = 1; p <= 30; ++p)
    if (owner.values[finder.GetIndex(p)] == 7) sevens.push_back(finder.GetIndex(p));
  ASSERT_EQ(sevens.size(), 20u);
  EXPECT_EQ(owner.FindTerm(finder, 7), sevens.back());
  EXPECT_EQ(owner.found, sevens);
  EXPECT_EQ(owner.FindTerm(finder, 7, false), sevens.front());
  EXPECT_EQ(owner.found, std::vector<int>{sevens.front()});
  EXPECT_EQ(owner.FindTerm(finder, 8), 0);
  EXPECT_TRUE(owner.found.empty());
}

TEST(SortedFinder, FindsEveryValueInRandomRanges) {
  std::mt19937 random(31);
  for (int n = 1; n <= 40; ++n) {
    FinderOwner owner;
    owner.values.assign(n + 1, 0);
    for (int i = 1; i <= n; ++i) owner.values[i] = std::uniform_int_distribution<int>(0, 8)(random);
    SortedFinder finder(owner);
    finder.Sort(1, n);
    for (int term = -1; term <= 9; ++term) {
      std::vector<int> expected;
      for (int p = 1; p <= n; ++p)
        if (owner.values[finder.GetIndex(p)] == term) expected.push_back(finder.GetIndex(p));
      owner.FindTerm(finder, term);
      ASSERT_EQ(owner.found, expected) << n << " " << term;
    }
  }
}

TEST(SortedFinder, EmptyAndSingleRanges) {
  FinderOwner owner;
  owner.values = {0, 5};
  SortedFinder finder(owner);
  EXPECT_EQ(owner.FindTerm(finder, 5), 0);  // nothing sorted yet
  EXPECT_TRUE(owner.looked.empty());
  finder.Sort(1, 1);
  EXPECT_EQ(owner.FindTerm(finder, 5), 1);
  EXPECT_EQ(owner.looked, std::vector<int>{1});
  finder.Sort(1, 0);
  EXPECT_EQ(finder.FirstStep(), 0);
  EXPECT_EQ(owner.FindTerm(finder, 5), 0);
}
