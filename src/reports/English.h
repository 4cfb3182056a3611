#pragma once

#include <QString>

namespace ombrelle {

// Small English word rules for the prose reports.

// "file" -> "files", "class" -> "classes", "dependency" -> "dependencies".
QString PluralNoun(const QString& noun);
// The third person singular: "have" -> "has", "declare" -> "declares"; ""
// stays "".
QString SingularVerb(const QString& verb);
// The size class of a system with `lines` physical lines: "Small", "Medium",
// "Semi-large", "Large" or "Very large".
QString SizeWord(double lines);

}  // namespace ombrelle
