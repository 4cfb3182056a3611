#pragma once

#include <QChar>
#include <QString>

#include <cstdint>

// Words of the language: names as hashes, and the keywords the counting looks
// for as numbers. The lexer works both out once, while it reads each word, so
// that the counting compares integers instead of going back to the text.

namespace ombrelle {

enum class Keyword : std::uint8_t {
  None,  // any other word, and every token that is no word
  And,
  AndAlso,
  ByRef,
  ByVal,
  Case,
  Const,
  Declare,
  Dim,
  Do,
  Each,
  Else,
  ElseIf,
  End,
  Enum,
  Event,
  Exit,
  For,
  Friend,
  Function,
  Get,
  Global,
  GoSub,
  GoTo,
  If,
  Implements,
  Let,
  Loop,
  Next,
  On,
  Optional,
  Or,
  OrElse,
  ParamArray,
  Preserve,
  Private,
  Property,
  PtrSafe,
  Public,
  ReDim,
  Resume,
  Return,
  Select,
  Set,
  Static,
  Stop,
  Sub,
  Then,
  Type,
  Until,
  Wend,
  While,
  WithEvents,
  Xor,
};

// A name as a 64-bit hash (FNV-1a) of its letters folded to lower case, a
// type-suffix character ($ % & ! # @) at its end left out.
using NameHash = std::uint64_t;
NameHash HashName(const QChar* data, qsizetype size);
NameHash HashName(const QString& name);

// The steps of HashName over ASCII text, for the lexer, which hashes a word
// while it reads it: start, add each character in lower case, finish.
constexpr NameHash kNameHashStart = 14695981039346656037ull;
constexpr NameHash HashStep(NameHash h, char16_t lowerCase) {
  return (h ^ lowerCase) * 1099511628211ull;
}
constexpr NameHash HashEnd(NameHash h) { return h == 0 ? 1 : h; }

// The keyword the word `text` spells in any letter case, or Keyword::None;
// `hash` is HashName of the word. Only ASCII letters make a keyword: a word
// holding any other character, a type suffix included, is none.
Keyword KeywordOf(const QChar* text, qsizetype length, NameHash hash);

}  // namespace ombrelle
