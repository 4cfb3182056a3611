#include <gtest/gtest.h>

#include <QDir>

#include "common/TestEnvironment.h"
#include "support/Filename.h"
#include "support/SettingsStore.h"
#include "support/Text.h"

using namespace ombrelle;

TEST(ResolvePath, FoldsDotsAgainstBase) {
  struct Case {
    const char* base;
    const char* path;
    const char* expected;
  };
  const Case cases[] = {
      {"/a/b", "../c", "/a/c"},
      {"/a/b/", "./c/./d", "/a/b/c/d"},
      {"/a/b", "/x/../y", "/y"},
      {"/", "c", "/c"},
      {"/a", "../../..", "/"},
      {"/a//b", "c", "/a/b/c"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(ResolvePath(c.base, c.path).toStdString(), c.expected) << c.base << " + " << c.path;
}

TEST(ResolvePath, EmptyBaseIsCurrentDirectory) {
  EXPECT_EQ(ResolvePath("", "x.qvz"), QDir::currentPath() + "/x.qvz");
}

TEST(ExpandTabs, AlignsTextAfterTabToColumn) {
  EXPECT_EQ(ExpandTabs("ab\tc\r\nabcd\te\r\n", 6), "ab   c\r\nabcd e\r\n");
  EXPECT_EQ(ExpandTabs("no tabs", 10), "no tabs");
  EXPECT_EQ(ExpandTabs("long\tx", 2), "long x");
}

TEST(SettingsStore, RoundTripsNestedSectionsInSandbox) {
  EXPECT_TRUE(SettingsFilePath().startsWith(ombrelle::test::SandboxRoot()));
  EXPECT_EQ(GetSetting("Options", "Missing", "-1"), "-1");
  SaveSetting("Limits\\3", "Name", "Mine");
  SaveSetting("Limits\\3\\Rule1", "Metric", "1200");
  SaveSetting("Limits\\4", "Name", "Other");
  EXPECT_EQ(GetSetting("Limits\\3", "Name"), "Mine");
  EXPECT_EQ(EnumSubkeys("Limits"), QStringList({"3", "4"}));
  EXPECT_EQ(EnumSubkeys("Limits\\3"), QStringList({"Rule1"}));
  const auto all = GetAllSettings("Limits\\3");
  ASSERT_EQ(all.size(), 1u);
  EXPECT_EQ(all[0].first, "Name");
  DeleteSettingsTree("Limits\\3");
  EXPECT_EQ(GetSetting("Limits\\3\\Rule1", "Metric", "gone"), "gone");
  EXPECT_EQ(EnumSubkeys("Limits"), QStringList({"4"}));
  EXPECT_TRUE(GetAllSettings("NoSuchSection").empty());
  DeleteSetting("Limits\\4", "Name");
  EXPECT_EQ(GetSetting("Limits\\4", "Name", "x"), "x");
}
