#include "measure/BasicWords.h"

#include <array>
#include <string_view>

namespace ombrelle {

NameHash HashName(const QChar* data, qsizetype size) {
  // A type-suffix character is no part of the name: s$ and s are one variable.
  if (size > 1) {
    const char16_t last = data[size - 1].unicode();
    if (last == u'$' || last == u'%' || last == u'&' || last == u'!' || last == u'#' ||
        last == u'@')
      --size;
  }
  NameHash h = kNameHashStart;
  for (qsizetype i = 0; i < size; ++i) {
    char16_t c = data[i].unicode();
    if (c >= u'A' && c <= u'Z')
      c = static_cast<char16_t>(c + 32);
    else if (c >= 0x80)
      c = QChar(c).toLower().unicode();
    h = HashStep(h, c);
  }
  return HashEnd(h);
}

NameHash HashName(const QString& name) { return HashName(name.constData(), name.size()); }

namespace {

// The spellings in the order of the enumeration, in lower case.
constexpr std::string_view kSpellings[] = {
    "",       "and",        "andalso",  "byref",    "byval",      "case",    "const",    "declare",
    "dim",    "do",         "each",     "else",     "elseif",     "end",     "enum",     "event",
    "exit",   "for",        "friend",   "function", "get",        "global",  "gosub",    "goto",
    "if",     "implements", "let",      "loop",     "next",       "on",      "optional", "or",
    "orelse", "paramarray", "preserve", "private",  "property",   "ptrsafe", "public",   "redim",
    "resume", "return",     "select",   "set",      "static",     "stop",    "sub",      "then",
    "type",   "until",      "wend",     "while",    "withevents", "xor"};
constexpr int kKeywords = static_cast<int>(std::size(kSpellings));
static_assert(kSpellings[kKeywords - 1] == "xor" &&
              static_cast<int>(Keyword::Xor) == kKeywords - 1);

constexpr NameHash SpellingHash(std::string_view s) {
  NameHash h = kNameHashStart;
  for (char c : s) h = HashStep(h, static_cast<char16_t>(c));
  return HashEnd(h);
}

// The keywords by their hashes, in an open-addressing table indexed by the
// top bits of the hash (the best mixed ones of FNV-1a): most words find an
// empty slot at once, and a keyword its own slot after a probe or two.
constexpr int kSlotBits = 7;
constexpr size_t kSlots = size_t{1} << kSlotBits;
static_assert(kSlots >= 2 * kKeywords);

struct Slot {
  NameHash hash = 0;
  Keyword keyword = Keyword::None;
};
using Table = std::array<Slot, kSlots>;

constexpr size_t SlotOf(NameHash h) { return static_cast<size_t>(h >> (64 - kSlotBits)); }

constexpr Table MakeTable() {
  Table table{};
  for (int k = 1; k < kKeywords; ++k) {
    const NameHash h = SpellingHash(kSpellings[k]);
    size_t slot = SlotOf(h);
    while (table[slot].keyword != Keyword::None) slot = (slot + 1) % kSlots;
    table[slot] = {h, static_cast<Keyword>(k)};
  }
  return table;
}
constexpr Table kTable = MakeTable();

// No two keywords share a hash, so a hash that matches one keyword can belong
// to no other.
constexpr bool HashesDistinct() {
  for (int a = 1; a < kKeywords; ++a)
    for (int b = a + 1; b < kKeywords; ++b)
      if (SpellingHash(kSpellings[a]) == SpellingHash(kSpellings[b])) return false;
  return true;
}
static_assert(HashesDistinct());

}  // namespace

Keyword KeywordOf(const QChar* text, qsizetype length, NameHash hash) {
  for (size_t slot = SlotOf(hash); kTable[slot].keyword != Keyword::None;
       slot = (slot + 1) % kSlots) {
    if (kTable[slot].hash != hash) continue;
    // The hash matches: the letters decide (another word may share the hash,
    // and a type suffix is left out of it). Setting the lower-case bit (0x20)
    // maps the two cases of an ASCII letter onto the lower-case one; no other
    // character lands on a lower-case letter.
    const Keyword k = kTable[slot].keyword;
    const std::string_view s = kSpellings[static_cast<size_t>(k)];
    if (length != static_cast<qsizetype>(s.size())) return Keyword::None;
    for (qsizetype i = 0; i < length; ++i)
      if ((text[i].unicode() | 0x20) != static_cast<unsigned char>(s[static_cast<size_t>(i)]))
        return Keyword::None;
    return k;
  }
  return Keyword::None;
}

}  // namespace ombrelle
