#include <gtest/gtest.h>

#include "support/StringList.h"

using namespace ombrelle;

namespace {

StringList Fill(const QStringList& texts) {
  StringList list;
  for (const QString& text : texts) list.Add(text, list.count() + 1);  // Data: original position
  return list;
}

}  // namespace

TEST(StringList, AddsReadsAndSetsOneBased) {
  StringList list;
  EXPECT_EQ(list.Add("b", 20), 1);
  EXPECT_EQ(list.Add("a", -5), 2);
  EXPECT_EQ(list.Add("c"), 3);
  EXPECT_EQ(list.count(), 3);
  EXPECT_EQ(list.Item(1), "b");
  EXPECT_EQ(list.Data(2), -5);
  EXPECT_EQ(list.Data(3), 0);
  EXPECT_EQ(list.Item(0), "");
  EXPECT_EQ(list.Item(4), "");
  EXPECT_EQ(list.Data(4), 0);
  list.SetItem(3, "z");
  list.SetData(3, 2147483647);
  list.SetItem(9, "ignored");
  EXPECT_EQ(list.ToArray(), QStringList({"b", "a", "z"}));
  EXPECT_EQ(list.ToDataArray(), std::vector<std::int32_t>({20, -5, 2147483647}));
  list.Clear();
  EXPECT_EQ(list.count(), 0);
  EXPECT_EQ(list.Find("b"), 0);
}

TEST(StringList, SortCarriesDataWithItems) {
  const QStringList original = {"pear", "Apple", "fig", "apple", "Banana"};
  StringList list = Fill(original);
  list.Sort(StringCompare::Binary);
  EXPECT_EQ(list.ToArray(), QStringList({"Apple", "Banana", "apple", "fig", "pear"}));
  EXPECT_EQ(list.ToDataArray(), std::vector<std::int32_t>({2, 5, 4, 3, 1}));
  list.Sort(StringCompare::Text);
  const QStringList texts = list.ToArray();
  EXPECT_EQ(texts.mid(2), QStringList({"Banana", "fig", "pear"}));
  for (int i = 1; i <= list.count(); ++i) EXPECT_EQ(list.Item(i), original[list.Data(i) - 1]);
}

TEST(StringList, SortByDataRisingAndFalling) {
  StringList list;
  const std::pair<const char*, int> entries[] = {
      {"c", 30}, {"a", -1}, {"d", 7}, {"b", 30}, {"e", 0}};
  for (const auto& [text, data] : entries) list.Add(text, data);
  list.SortByData();
  EXPECT_EQ(list.ToDataArray(), std::vector<std::int32_t>({-1, 0, 7, 30, 30}));
  EXPECT_EQ(list.ToArray().mid(0, 3), QStringList({"a", "e", "d"}));
  EXPECT_FALSE(list.IsSorted());
  list.SortByData(true);
  EXPECT_EQ(list.ToDataArray(), std::vector<std::int32_t>({30, 30, 7, 0, -1}));
}

TEST(StringList, FindSortedAndUnsorted) {
  StringList list = Fill({"delta", "alpha", "charlie", "bravo", "alpha", "echo"});
  // Unsorted: a scan, the first equal item.
  EXPECT_EQ(list.Find("alpha"), 2);
  EXPECT_EQ(list.Find("ALPHA"), 0);
  EXPECT_EQ(list.Find("zulu"), 0);
  list.Sort();
  ASSERT_TRUE(list.IsSorted());
  EXPECT_EQ(list.Find("alpha"), 1);  // the lowest of the two equal items
  EXPECT_EQ(list.Item(2), "alpha");
  EXPECT_EQ(list.Find("charlie"), 4);
  EXPECT_EQ(list.Find("echo"), 6);
  EXPECT_EQ(list.Find("aaa"), 0);
  EXPECT_EQ(list.Find("zulu"), 0);
  EXPECT_EQ(list.Find("bz"), 0);
  // Text mode finds regardless of case.
  list.Sort(StringCompare::Text);
  EXPECT_EQ(list.Item(list.Find("ECHO")), "echo");
  // A change ends the sorted state; the scan takes over.
  list.Add("Zulu");
  EXPECT_FALSE(list.IsSorted());
  EXPECT_EQ(list.Find("zulu"), 7);
  // A copy of a sorted list searches on its own index.
  list.Sort();
  const StringList copy = list;
  list.Clear();
  EXPECT_EQ(copy.Item(copy.Find("delta")), "delta");
}

TEST(StringList, LargeListAgreesWithScan) {
  StringList list;
  for (int i = 0; i < 3000; ++i) list.Add(QString::number((i * 7919) % 1000), i);
  list.Sort();
  const QStringList texts = list.ToArray();
  ASSERT_TRUE(std::is_sorted(texts.begin(), texts.end()));
  for (int v = 0; v < 1000; v += 37) {
    const QString term = QString::number(v);
    const int found = list.Find(term);
    EXPECT_EQ(found, static_cast<int>(texts.indexOf(term)) + 1) << v;
  }
  EXPECT_EQ(list.Find("x"), 0);
  StringList empty;
  empty.Sort();
  EXPECT_EQ(empty.Find(""), 0);
}
