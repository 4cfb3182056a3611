#pragma once

#include <QChar>
#include <QString>

#include <array>
#include <cstdint>
#include <iterator>
#include <string_view>

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

namespace keywords {

// The spellings in the order of the enumeration, in lower case.
inline constexpr std::string_view kSpellings[] = {
    "",       "and",        "andalso",  "byref",    "byval",      "case",    "const",    "declare",
    "dim",    "do",         "each",     "else",     "elseif",     "end",     "enum",     "event",
    "exit",   "for",        "friend",   "function", "get",        "global",  "gosub",    "goto",
    "if",     "implements", "let",      "loop",     "next",       "on",      "optional", "or",
    "orelse", "paramarray", "preserve", "private",  "property",   "ptrsafe", "public",   "redim",
    "resume", "return",     "select",   "set",      "static",     "stop",    "sub",      "then",
    "type",   "until",      "wend",     "while",    "withevents", "xor"};
inline constexpr int kKeywords = static_cast<int>(std::size(kSpellings));
static_assert(kSpellings[kKeywords - 1] == "xor" &&
              static_cast<int>(Keyword::Xor) == kKeywords - 1);

constexpr NameHash SpellingHash(std::string_view s) {
  NameHash h = kNameHashStart;
  for (char c : s) h = HashStep(h, static_cast<char16_t>(c));
  return HashEnd(h);
}

// The keywords by their hashes, in an open-addressing table indexed by the
// top bits of the hash (the best mixed ones of FNV-1a). The table is mostly
// empty, so that a word that is no keyword mostly finds an empty slot at once.
inline constexpr int kSlotBits = 9;
inline constexpr size_t kSlots = size_t{1} << kSlotBits;
static_assert(kSlots >= 8 * kKeywords);

struct Slot {
  NameHash hash = 0;
  Keyword keyword = Keyword::None;
  std::uint8_t length = 0;
};
using Table = std::array<Slot, kSlots>;

constexpr size_t SlotOf(NameHash h) { return static_cast<size_t>(h >> (64 - kSlotBits)); }

constexpr Table MakeTable() {
  Table table{};
  for (int k = 1; k < kKeywords; ++k) {
    const std::string_view s = kSpellings[k];
    const NameHash h = SpellingHash(s);
    size_t slot = SlotOf(h);
    while (table[slot].keyword != Keyword::None) slot = (slot + 1) % kSlots;
    table[slot] = {h, static_cast<Keyword>(k), static_cast<std::uint8_t>(s.size())};
  }
  return table;
}
inline constexpr Table kTable = MakeTable();

// No two keywords share a hash, so a hash that matches one keyword can belong
// to no other.
constexpr bool HashesDistinct() {
  for (int a = 1; a < kKeywords; ++a)
    for (int b = a + 1; b < kKeywords; ++b)
      if (SpellingHash(kSpellings[a]) == SpellingHash(kSpellings[b])) return false;
  return true;
}
static_assert(HashesDistinct());

}  // namespace keywords

// The keyword the word `text` spells in any letter case, or Keyword::None;
// `hash` is HashName of the word. Only ASCII letters make a keyword: a word
// holding any other character, a type suffix included, is none. Inline: the
// lexer asks for every word it reads.
inline Keyword KeywordOf(const QChar* text, qsizetype length, NameHash hash) {
  using namespace keywords;
  for (size_t slot = SlotOf(hash); kTable[slot].keyword != Keyword::None;
       slot = (slot + 1) % kSlots) {
    if (kTable[slot].hash != hash) continue;
    // The hash matches: the letters decide (another word may share the hash,
    // and a type suffix is left out of it). Setting the lower-case bit (0x20)
    // maps the two cases of an ASCII letter onto the lower-case one; no other
    // character lands on a lower-case letter.
    if (length != kTable[slot].length) return Keyword::None;
    const Keyword k = kTable[slot].keyword;
    const std::string_view s = kSpellings[static_cast<size_t>(k)];
    for (qsizetype i = 0; i < length; ++i)
      if ((text[i].unicode() | 0x20) != static_cast<unsigned char>(s[static_cast<size_t>(i)]))
        return Keyword::None;
    return k;
  }
  return Keyword::None;
}

}  // namespace ombrelle
