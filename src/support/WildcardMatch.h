#pragma once

#include <QString>

namespace ombrelle {

// Whether `text` matches the wildcard `pattern`, character by character and
// case-sensitive: "*" any run of characters (none included), "?" any one
// character, "#" one digit 0-9, "[abc]" one of the listed characters,
// "[a-z]" one in the range, "[!...]" one not listed. A "[" without its "]"
// matches nothing; "[]" matches nothing either. Any other character matches
// itself, so "*", "?", "#" and "[" stand for themselves only inside brackets.
bool WildcardMatch(const QString& text, const QString& pattern);

}  // namespace ombrelle
