#include "support/WildcardMatch.h"

#include <vector>

namespace ombrelle {

namespace {

// Tries the bracket item at pattern[p] (a "[") against `ch`. Sets `next` to
// the index behind the "]"; false when there is no closing bracket.
bool MatchBracket(const QString& pattern, qsizetype p, QChar ch, bool& matched, qsizetype& next) {
  qsizetype i = p + 1;
  bool negate = false;
  if (i < pattern.size() && pattern.at(i) == QLatin1Char('!')) {
    negate = true;
    ++i;
  }
  bool inside = false;
  bool any = false;
  while (i < pattern.size() && pattern.at(i) != QLatin1Char(']')) {
    const QChar low = pattern.at(i);
    QChar high = low;
    if (i + 2 < pattern.size() && pattern.at(i + 1) == QLatin1Char('-') &&
        pattern.at(i + 2) != QLatin1Char(']')) {
      high = pattern.at(i + 2);
      i += 3;
    } else {
      ++i;
    }
    any = true;
    if (ch >= low && ch <= high) inside = true;
  }
  if (i >= pattern.size()) return false;  // no closing bracket
  next = i + 1;
  matched = any && (inside != negate);
  return true;
}

}  // namespace

bool WildcardMatch(const QString& text, const QString& pattern) {
  // Dynamic programming over (text position, pattern position): reach[t]
  // says whether text[0..t) is matched by the pattern read so far.
  const qsizetype n = text.size();
  std::vector<char> reach(static_cast<size_t>(n + 1), 0);
  reach[0] = 1;
  qsizetype p = 0;
  while (p < pattern.size()) {
    const QChar item = pattern.at(p);
    std::vector<char> next(static_cast<size_t>(n + 1), 0);
    qsizetype after = p + 1;
    if (item == QLatin1Char('*')) {
      bool seen = false;
      for (qsizetype t = 0; t <= n; ++t) {
        seen = seen || reach[static_cast<size_t>(t)];
        next[static_cast<size_t>(t)] = seen ? 1 : 0;
      }
    } else {
      for (qsizetype t = 0; t < n; ++t) {
        if (!reach[static_cast<size_t>(t)]) continue;
        const QChar ch = text.at(t);
        bool ok = false;
        if (item == QLatin1Char('?')) {
          ok = true;
        } else if (item == QLatin1Char('#')) {
          ok = ch >= QLatin1Char('0') && ch <= QLatin1Char('9');
        } else if (item == QLatin1Char('[')) {
          if (!MatchBracket(pattern, p, ch, ok, after)) return false;
        } else {
          ok = ch == item;
        }
        if (ok) next[static_cast<size_t>(t + 1)] = 1;
      }
      if (item == QLatin1Char('[')) {
        bool unused = false;
        if (!MatchBracket(pattern, p, QChar(), unused, after)) return false;
      }
    }
    reach.swap(next);
    p = after;
  }
  return reach[static_cast<size_t>(n)] != 0;
}

}  // namespace ombrelle
