#include "measure/BasicLexer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ombrelle {

namespace {

// Classes of the ASCII characters, looked up rather than compared one by one:
// the lexer asks for them at every character.
enum : unsigned char { kStartClass = 2, kWordClass = 4 };

constexpr std::array<unsigned char, 128> MakeAsciiClasses() {
  std::array<unsigned char, 128> t{};
  for (int c = 'a'; c <= 'z'; ++c) t[c] = kStartClass | kWordClass;
  for (int c = 'A'; c <= 'Z'; ++c) t[c] = kStartClass | kWordClass;
  for (int c = '0'; c <= '9'; ++c) t[c] = kWordClass;
  t['_'] = kWordClass;
  return t;
}
constexpr std::array<unsigned char, 128> kAscii = MakeAsciiClasses();

// ASCII characters in lower case, as names are hashed.
constexpr std::array<char16_t, 128> MakeLowerCase() {
  std::array<char16_t, 128> t{};
  for (int c = 0; c < 128; ++c) t[c] = static_cast<char16_t>(c >= 'A' && c <= 'Z' ? c + 32 : c);
  return t;
}
constexpr std::array<char16_t, 128> kLowerCase = MakeLowerCase();

// Control characters and the space; beyond ASCII the no-break space and the
// byte-order mark. Most characters are told by the first comparison.
inline bool IsBlank(char16_t c) { return c <= u' ' || (c >= 0x80 && (c == 0x00A0 || c == 0xFEFF)); }

inline bool IsWordStart(QChar c) {
  const char16_t u = c.unicode();
  if (u < 0x80) return kAscii[u] & kStartClass;
  return c.isLetter();
}

inline bool IsWordChar(QChar c) {
  const char16_t u = c.unicode();
  if (u < 0x80) return kAscii[u] & kWordClass;
  return c.isLetterOrNumber();
}

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

bool IsDateChar(char16_t c) {
  return IsDigit(c) || c == u'/' || c == u'-' || c == u':' || c == u'.' || c == u',' || c == u' ' ||
         c == u'A' || c == u'P' || c == u'M' || c == u'a' || c == u'p' || c == u'm';
}

// `a` equals the ASCII word `b` (given in lower case), ignoring letter case.
template <size_t N>
inline bool Same(QStringView a, const char (&b)[N]) {
  if (a.size() != static_cast<qsizetype>(N - 1)) return false;
  const QChar* p = a.data();
  for (size_t k = 0; k + 1 < N; ++k) {
    char16_t c = p[k].unicode();
    // Letters beyond ASCII may fold onto ASCII ones: leave those to Qt.
    if (c >= 0x80) return a.compare(QLatin1String(b, N - 1), Qt::CaseInsensitive) == 0;
    if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + 32);
    if (c != static_cast<unsigned char>(b[k])) return false;
  }
  return true;
}

// The scanning positions live in memory while the lexer's helpers share
// them; the runs of blanks and word characters are skipped in registers.
inline qsizetype SkipBlanks(const QChar* p, qsizetype pos, qsizetype end) {
  while (pos < end && IsBlank(p[pos].unicode())) ++pos;
  return pos;
}

inline qsizetype SkipWordChars(const QChar* p, qsizetype pos, qsizetype end) {
  while (pos < end && IsWordChar(p[pos])) ++pos;
  return pos;
}

// Words that may stand first on a line followed by a colon without being a
// label: the colon then separates statements.
bool NeverLabel(QStringView w) {
  switch (w.size()) {
    case 2:
      return Same(w, "do");
    case 3:
      return Same(w, "end");
    case 4:
      return Same(w, "else") || Same(w, "loop") || Same(w, "next") || Same(w, "wend") ||
             Same(w, "stop") || Same(w, "exit");
    case 6:
      return Same(w, "resume") || Same(w, "return");
    default:
      return false;
  }
}

// First word of a line (after blanks), or an empty view.
QStringView FirstWord(QStringView line, qsizetype* after = nullptr) {
  qsizetype i = 0;
  while (i < line.size() && IsBlank(line[i].unicode())) ++i;
  const qsizetype start = i;
  while (i < line.size() && (IsWordChar(line[i]) || line[i] == u'.')) ++i;
  if (after) *after = i;
  return line.mid(start, i - start);
}

}  // namespace

BasicLexer::BasicLexer(const QString& text) : m_text(text) {
  m_hasLine = ReadLine();
  if (m_hasLine) {
    const QStringView first = QStringView(text).mid(m_current.begin, m_current.length);
    if (Same(FirstWord(first), "version")) m_headerDepth = 0;
  }
}

bool BasicLexer::ReadLine() {
  const auto* p = reinterpret_cast<const char16_t*>(m_text.constData());
  const qsizetype size = m_text.size();
  const qsizetype start = m_nextLine;
  if (start >= size) return false;  // a last line without an end was read already
  qsizetype at = start;
#ifdef __SSE2__
  // Sixteen characters at a time: the two halves' comparisons packed into
  // one mask with a bit for each character.
  const __m128i cr = _mm_set1_epi16('\r');
  const __m128i lf = _mm_set1_epi16('\n');
  auto ends = [&](qsizetype from) {
    const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + from));
    return _mm_or_si128(_mm_cmpeq_epi16(chunk, cr), _mm_cmpeq_epi16(chunk, lf));
  };
  for (; at + 16 <= size; at += 16) {
    const auto mask =
        static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(ends(at), ends(at + 8))));
    if (mask != 0) {
      at += std::countr_zero(mask);
      break;
    }
  }
#endif
  while (at < size && p[at] != u'\n' && p[at] != u'\r') ++at;
  m_current = {start, at - start};
  ++m_physicalLines;
  if (at >= size)
    m_nextLine = size;
  else
    m_nextLine = at + (p[at] == u'\r' && at + 1 < size && p[at + 1] == u'\n' ? 2 : 1);
  return true;
}

bool BasicLexer::Is(const Token& t, QStringView word) const {
  return t.kind == TokenKind::Word && Text(t).compare(word, Qt::CaseInsensitive) == 0;
}

bool BasicLexer::Next(LogicalLine& out) {
  m_codeStart = -1;
  out.tokens.clear();
  out.statements.clear();
  out.directive = out.hasComment = out.meaningfulComment = false;
  if (!m_hasLine) {
    if (m_headerDepth > 0) {
      m_problems << QStringLiteral("the designer header is not closed");
      m_headerDepth = -1;
    }
    if (m_unterminatedStrings > 0) {
      m_problems << QStringLiteral("%1 unterminated string(s)").arg(m_unterminatedStrings);
      m_unterminatedStrings = 0;
    }
    return false;
  }
  out.firstLine = static_cast<int>(m_line);
  out.lineCount = 1;
  if (MayBeHidden() && HiddenLine(out)) {
    out.kind = LineKind::Hidden;
    ++m_line;
    m_hasLine = ReadLine();
    return true;
  }
  ScanCode(out);
  return true;
}

inline bool BasicLexer::MayBeHidden() {
  if (m_headerDepth >= 0) return true;
  // Past the designer's header only Attribute lines are hidden: most lines
  // are told apart by their first character, here, without a call.
  const PhysicalLine& pl = m_current;
  const QChar* p = m_text.constData() + pl.begin;
  const qsizetype i = SkipBlanks(p, 0, pl.length);
  m_codeStart = pl.begin + i;  // ScanCode starts there
  if (i == pl.length) return false;
  const char16_t c = p[i].unicode();
  return c >= 0x80 || c == u'A' || c == u'a';
}

bool BasicLexer::HiddenLine(LogicalLine& out) {
  (void)out;
  const PhysicalLine& pl = m_current;
  const QStringView line(m_text.constData() + pl.begin, pl.length);
  qsizetype after = 0;
  const QStringView word = FirstWord(line, &after);
  if (m_headerDepth > 0) {
    if (Same(word, "begin") || Same(word, "beginproperty")) {
      if (Same(word, "begin")) {
        // Begin Library.Kind Name: the name of a control on the form.
        const QStringView rest = line.mid(after);
        qsizetype afterKind = 0;
        FirstWord(rest, &afterKind);
        const QStringView name = FirstWord(rest.mid(afterKind));
        if (!name.isEmpty()) m_controls << name.toString();
      }
      ++m_headerDepth;
    } else if (Same(word, "end") || Same(word, "endproperty")) {
      if (--m_headerDepth == 0) m_headerDepth = -1;  // the header ends with this line
    }
    return true;
  }
  if (m_headerDepth == 0) {
    // Before the outermost Begin: the version line, the component lines.
    if (Same(word, "begin")) {
      m_headerDepth = 1;
      return true;
    }
    if (Same(word, "version") || Same(word, "object") || word.isEmpty()) return true;
    m_headerDepth = -1;
  }
  if (Same(word, "attribute") && after < line.size() && IsBlank(line[after].unicode())) {
    const QStringView rest = line.mid(after);
    qsizetype afterName = 0;
    if (Same(FirstWord(rest, &afterName), "vb_name")) {
      const qsizetype open = rest.indexOf(u'"', afterName);
      const qsizetype close = open < 0 ? -1 : rest.indexOf(u'"', open + 1);
      if (close > open + 1) m_moduleName = rest.mid(open + 1, close - open - 1).toString();
    }
    return true;
  }
  return false;
}

void BasicLexer::EndStatement(LogicalLine& out, int& statementBegin) {
  const int size = static_cast<int>(out.tokens.size());
  if (size > statementBegin) out.statements.emplace_back(statementBegin, size);
  statementBegin = size;
}

// Flattened: the vector's growth and the small helpers are inlined, so that
// the scanning positions stay in registers across them.
__attribute__((flatten)) void BasicLexer::ScanCode(LogicalLine& out) {
  const QChar* p = m_text.constData();
  size_t line = m_line;
  qsizetype lineStart = 0, pos = 0, end = 0, lastNonBlank = 0;
  auto enterLine = [&](size_t l) {
    line = l;
    lineStart = pos = m_current.begin;
    end = lineStart + m_current.length;
    lastNonBlank = end - 1;
    while (lastNonBlank >= lineStart && IsBlank(p[lastNonBlank].unicode())) --lastNonBlank;
  };
  // A "_" that is the last thing on its line and follows a blank joins the next line.
  auto isContinuation = [&](qsizetype at) {
    return at == lastNonBlank && p[at] == u'_' && (at == lineStart || IsBlank(p[at - 1].unicode()));
  };
  auto nextLine = [&]() {
    if (!ReadLine()) return false;
    enterLine(line + 1);
    ++out.lineCount;
    return true;
  };
  // A comment runs to the end of its line, and on to the next line when a
  // continuation ends it; only a continuation can stand last on a line, so
  // the rest of each line is looked at only for a letter or digit.
  auto scanComment = [&]() {
    out.hasComment = true;
    for (;;) {
      for (qsizetype i = pos; i < end && !out.meaningfulComment; ++i)
        if (p[i].isLetterOrNumber()) out.meaningfulComment = true;
      if (lastNonBlank >= pos && isContinuation(lastNonBlank) && nextLine()) continue;
      break;
    }
  };

  // Inlined: it runs once per token, and a call would keep the scanning
  // positions out of registers.
  auto push = [&](TokenKind kind, qsizetype from, qsizetype to) __attribute__((always_inline)) {
    const qsizetype length = std::min<qsizetype>(to - from, std::numeric_limits<int>::max());
    const char16_t punct = kind == TokenKind::Punct && length == 1 ? p[from].unicode() : 0;
    out.tokens.push_back({kind, Keyword::None, punct, static_cast<int>(length), from, 0});
  };

  enterLine(m_line);
  // The leading blanks MayBeHidden() already skipped.
  if (m_codeStart > pos) pos = m_codeStart;
  int statementBegin = 0;
  bool hasCode = false;
  bool first = true;  // nothing seen yet on the logical line
  while (true) {
    pos = SkipBlanks(p, pos, end);
    if (pos >= end) break;
    const char16_t c = p[pos].unicode();
    // Words first: most tokens are words, and a letter is none of the
    // characters checked below.
    const bool letter = IsWordStart(p[pos]);
    if (!letter && c == u'_' && isContinuation(pos)) {
      if (!nextLine()) pos = end;
      continue;
    }
    const bool wasFirst = first;
    first = false;
    // A directive: "#" and a word first on the line's first physical line.
    if (c == u'#' && wasFirst && line == m_line && pos + 1 < end && IsWordStart(p[pos + 1]))
      out.directive = true;
    hasCode = true;
    const qsizetype start = pos;
    if (letter || c == u'[') {
      NameHash hash = 0;
      if (c == u'[') {
        while (pos < end && p[pos] != u']') ++pos;
        if (pos < end) ++pos;
        hash = HashName(p + start, pos - start);
      } else {
        // ASCII letters, digits and "_" are hashed as they are read.
        NameHash h = kNameHashStart;
        for (; pos < end; ++pos) {
          const char16_t w = p[pos].unicode();
          if (w >= 0x80 || !(kAscii[w] & kWordClass)) break;
          h = HashStep(h, kLowerCase[w]);
        }
        if (pos < end && p[pos].unicode() >= 0x80 && IsWordChar(p[pos])) {
          // Letters beyond ASCII: the rest is read, and the whole hashed, by the slower way.
          pos = SkipWordChars(p, pos, end);
          hash = HashName(p + start, pos - start);
        } else {
          hash = HashEnd(h);
        }
        // A type suffix is part of the word but not of its hash.
        if (pos < end) {
          const char16_t s = p[pos].unicode();
          const bool suffix =
              s == u'%' || s == u'&' || s == u'!' || s == u'#' || s == u'@' || s == u'$';
          if (suffix && (pos + 1 >= end || !IsWordChar(p[pos + 1]))) ++pos;
        }
      }
      const QStringView word(p + start, pos - start);
      if (static_cast<int>(out.tokens.size()) == statementBegin && Same(word, "rem") &&
          (pos >= end || !IsWordChar(p[pos]))) {
        hasCode = !out.tokens.empty() || !out.statements.empty() || !wasFirst;
        scanComment();
        break;
      }
      if (wasFirst && !NeverLabel(word)) {
        qsizetype i = pos;
        while (i < end && IsBlank(p[i].unicode())) ++i;
        if (i < end && p[i] == u':' && !(i + 1 < end && p[i + 1] == u'=')) {
          pos = i + 1;  // a label: code, but no statement
          continue;
        }
      }
      push(TokenKind::Word, start, pos);
      Token& t = out.tokens.back();
      t.hash = hash;
      t.keyword = KeywordOf(p + start, pos - start, hash);
      continue;
    }
    if (c == u'\'') {
      hasCode = !out.tokens.empty() || !wasFirst;
      ++pos;
      scanComment();
      break;
    }
    if (c == u'"') {
      ++pos;
      bool closed = false;
      while (pos < end) {
        if (p[pos] == u'"') {
          if (pos + 1 < end && p[pos + 1] == u'"') {
            pos += 2;
            continue;
          }
          ++pos;
          closed = true;
          break;
        }
        ++pos;
      }
      if (!closed) ++m_unterminatedStrings;
      push(TokenKind::String, start, pos);
      continue;
    }
    if (c == u':') {
      if (pos + 1 < end && p[pos + 1] == u'=') {
        push(TokenKind::Punct, start, start + 2);
        pos += 2;
      } else {
        EndStatement(out, statementBegin);
        ++pos;
      }
      continue;
    }
    if (IsDigit(c) || (c == u'.' && pos + 1 < end && IsDigit(p[pos + 1].unicode()))) {
      while (pos < end && (IsWordChar(p[pos]) || p[pos] == u'.')) ++pos;
      if (pos < end) {
        const char16_t s = p[pos].unicode();
        if (s == u'#' || s == u'!' || s == u'@' || s == u'&' || s == u'%') ++pos;
      }
      if (wasFirst) {
        // A line number: a label.
        qsizetype i = pos;
        while (i < end && IsBlank(p[i].unicode())) ++i;
        if (i < end && p[i] == u':' && !(i + 1 < end && p[i + 1] == u'=')) pos = i + 1;
        continue;
      }
      push(TokenKind::Number, start, pos);
      continue;
    }
    if (c == u'&' && pos + 1 < end &&
        (p[pos + 1] == u'H' || p[pos + 1] == u'h' || p[pos + 1] == u'O' || p[pos + 1] == u'o')) {
      pos += 2;
      while (pos < end && IsWordChar(p[pos])) ++pos;
      if (pos < end && p[pos] == u'&') ++pos;
      push(TokenKind::Number, start, pos);
      continue;
    }
    if (c == u'#' && pos + 1 < end && IsDigit(p[pos + 1].unicode())) {
      qsizetype i = pos + 1;
      const qsizetype limit = std::min(end, pos + 40);
      while (i < limit && IsDateChar(p[i].unicode())) ++i;
      if (i < limit && p[i] == u'#') {
        pos = i + 1;
        push(TokenKind::Date, start, pos);
        continue;
      }
    }
    if (c == u'<' || c == u'>' || c == u'=') {
      while (pos < end && (p[pos] == u'<' || p[pos] == u'>' || p[pos] == u'=')) ++pos;
      push(TokenKind::Punct, start, pos);
      continue;
    }
    push(TokenKind::Punct, start, start + 1);
    ++pos;
  }
  EndStatement(out, statementBegin);
  out.kind = hasCode ? LineKind::Code : (out.hasComment ? LineKind::Comment : LineKind::Blank);
  m_line = line + 1;
  m_hasLine = ReadLine();
}

}  // namespace ombrelle
