// The wildcard patterns of the line search.
#include <gtest/gtest.h>

#include "support/WildcardMatch.h"

namespace ombrelle {
namespace {

TEST(WildcardMatch, Table) {
  const struct {
    const char* text;
    const char* pattern;
    bool expected;
  } cases[] = {
      {"", "", true},
      {"", "*", true},
      {"a", "", false},
      {"abc", "abc", true},
      {"abc", "ab", false},
      {"abc", "*b*", true},
      {"abc", "*d*", false},
      {"abc", "a?c", true},
      {"ac", "a?c", false},
      {"a1c", "a#c", true},
      {"abc", "a#c", false},
      {"abc", "a[xb]c", true},
      {"abc", "a[!b]c", false},
      {"axc", "a[!b]c", true},
      {"a5c", "a[0-9]c", true},
      {"a[c", "a[[]c", true},
      {"a*c", "a[*]c", true},
      {"abc", "a[*]c", false},
      {"a?c", "a[?]c", true},
      {"abc", "a[b", false},
      {"abc", "a[]c", false},
      {"main & init", "*n & i*", true},
      {"zeta[1]", "*[1]*", true},
      {"zeta", "*[1]*", false},
      {"Abc", "abc", false},
      {"aaa", "*a*a*a*", true},
      {"aa", "*a*a*a*", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.text) + " like " + c.pattern);
    EXPECT_EQ(WildcardMatch(QString::fromUtf8(c.text), QString::fromUtf8(c.pattern)), c.expected);
  }
}

}  // namespace
}  // namespace ombrelle
