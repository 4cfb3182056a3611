#include <gtest/gtest.h>

#include "support/StringsUniq.h"

using namespace ombrelle;

TEST(StringsUniq, KeepsOrderOfFirstStoring) {
  StringsUniq names;
  EXPECT_EQ(names.Find("main"), 0);
  EXPECT_EQ(names.Store("main"), 1);
  EXPECT_EQ(names.Store("Alpha"), 2);
  EXPECT_EQ(names.Store("zeta"), 3);
  EXPECT_EQ(names.Store("main"), 1);
  EXPECT_EQ(names.Store("alpha"), 4);  // case counts
  EXPECT_EQ(names.Store(""), 5);
  EXPECT_EQ(names.count(), 5);
  EXPECT_EQ(names.Find("zeta"), 3);
  EXPECT_EQ(names.Find("Zeta"), 0);
  EXPECT_EQ(names.Find(""), 5);
  EXPECT_EQ(names.Item(2), "Alpha");
  EXPECT_EQ(names.Item(0), "");
  EXPECT_EQ(names.Item(6), "");
  EXPECT_EQ(names.GetUnsortedList(), QStringList({"main", "Alpha", "zeta", "alpha", ""}));
  EXPECT_EQ(names.GetList(), QStringList({"", "Alpha", "alpha", "main", "zeta"}));
  EXPECT_EQ(names.Join(", "), "main, Alpha, zeta, alpha, ");
}

TEST(StringsUniq, ReplaceKeepsTheIndexSorted) {
  StringsUniq names;
  for (const char* name : {"d", "b", "f"}) names.Store(name);
  EXPECT_TRUE(names.Replace(1, "a"));
  EXPECT_EQ(names.Find("a"), 1);
  EXPECT_EQ(names.Find("d"), 0);
  EXPECT_EQ(names.GetList(), QStringList({"a", "b", "f"}));
  EXPECT_FALSE(names.Replace(2, "f"));  // stored elsewhere
  EXPECT_FALSE(names.Replace(0, "x"));
  EXPECT_FALSE(names.Replace(4, "x"));
  EXPECT_TRUE(names.Replace(3, "f"));
  EXPECT_EQ(names.GetUnsortedList(), QStringList({"a", "b", "f"}));
  names.Clear();
  EXPECT_EQ(names.count(), 0);
  EXPECT_EQ(names.Find("a"), 0);
}

TEST(StringsUniq, ManyNamesFoundByBinarySearch) {
  StringsUniq names;
  for (int i = 0; i < 5000; ++i) names.Store(QString::number((i * 7919) % 5000));
  EXPECT_EQ(names.count(), 5000);
  for (int i = 0; i < 5000; i += 97)
    EXPECT_EQ(names.Item(names.Find(QString::number(i))), QString::number(i));
  const QStringList sorted = names.GetList();
  EXPECT_TRUE(std::is_sorted(sorted.begin(), sorted.end()));
}
