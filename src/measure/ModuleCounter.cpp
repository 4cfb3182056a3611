#include "measure/ModuleCounter.h"

#include "measure/BasicLexer.h"
#include "measure/SourceText.h"

#include <algorithm>

namespace ombrelle {

bool IsHandlerName(const QString& procedure, const QStringList& prefixes) {
  const qsizetype bar = procedure.indexOf(QLatin1Char('_'));
  if (bar <= 0) return false;
  const QStringView prefix = QStringView(procedure).left(bar);
  static const char* const kObjects[] = {"Form",         "MDIForm", "UserControl",
                                         "UserDocument", "Class",   "PropertyPage"};
  for (const char* o : kObjects)
    if (prefix.compare(QLatin1String(o), Qt::CaseInsensitive) == 0) return true;
  for (const QString& p : prefixes)
    if (prefix.compare(p, Qt::CaseInsensitive) == 0) return true;
  return false;
}

namespace {

// Deeper single-line If statements than this are counted as one statement,
// so that no input can exhaust the stack.
constexpr int kMaxSingleLineNesting = 64;

class Counter {
 public:
  explicit Counter(const QString& text) : m_lexer(text) {}

  ModuleCount Run(const QString& baseName) {
    while (m_lexer.Next(m_line)) Line();
    m_result.lines.physical = m_lexer.PhysicalLines();
    if (m_proc >= 0) {
      m_result.problems << QStringLiteral("%1 has no end").arg(m_result.procedures[m_proc].name);
      Close(m_result.lines.physical - 1);
    }
    if (m_block != Block::None)
      m_result.problems << QStringLiteral("a Type or Enum block has no end");
    if (m_inactive > 0 || !m_directives.empty())
      m_result.problems << QStringLiteral("an #If block has no #End If");
    m_result.problems << m_lexer.Problems();
    m_result.otherNames << m_lexer.ControlNames();
    m_result.handlerPrefixes << m_lexer.ControlNames();
    m_result.moduleName = m_lexer.ModuleName().isEmpty() ? baseName : m_lexer.ModuleName();
    return std::move(m_result);
  }

 private:
  enum class Block { None, Type, Enum };

  // --- tokens of the current line
  // The lexer numbered the keywords: a keyword is told by its number.
  bool IsWord(int i, Keyword k) const { return Valid(i) && m_tokens[i].keyword == k; }
  bool IsPunct(int i, char16_t c) const { return Valid(i) && m_tokens[i].punct == c; }
  bool IsAnyWord(int i) const { return Valid(i) && m_tokens[i].kind == TokenKind::Word; }
  // `i` is a token of the line (the comparison as unsigned also refuses -1).
  bool Valid(int i) const { return static_cast<unsigned>(i) < m_tokenCount; }
  QString WordAt(int i) const {
    return m_lexer.Text(m_line.tokens[static_cast<size_t>(i)]).toString();
  }
  NameHash Hash(int i) const { return m_line.tokens[static_cast<size_t>(i)].hash; }
  // Index of the token after the parenthesis that closes the one at `i`.
  int SkipParens(int i, int e) const {
    int depth = 0;
    for (; i < e; ++i) {
      if (IsPunct(i, u'(')) ++depth;
      if (IsPunct(i, u')') && --depth <= 0) return i + 1;
    }
    return e;
  }
  // The first word of each comma-separated item of [b, e), leaving out the
  // words that only qualify a declared name.
  // The result lives in a buffer the counter keeps, valid until the next call.
  const std::vector<int>& ItemNames(int b, int e) {
    std::vector<int>& names = m_items;
    names.clear();
    int depth = 0;
    bool want = true;
    for (int i = b; i < e; ++i) {
      if (IsPunct(i, u'('))
        ++depth;
      else if (IsPunct(i, u')'))
        depth = std::max(0, depth - 1);
      else if (IsPunct(i, u',') && depth == 0)
        want = true;
      else if (want && depth == 0 && IsAnyWord(i) && !IsWord(i, Keyword::Optional) &&
               !IsWord(i, Keyword::ByVal) && !IsWord(i, Keyword::ByRef) &&
               !IsWord(i, Keyword::ParamArray) && !IsWord(i, Keyword::WithEvents)) {
        names.push_back(i);
        want = false;
      }
    }
    return names;
  }

  // --- lines
  void Line() {
    if (m_line.kind == LineKind::Hidden) return;
    m_tokens = m_line.tokens.data();
    m_tokenCount = static_cast<unsigned>(m_line.tokens.size());
    const int ownerBefore = m_proc;
    m_openedOnLine = -1;
    if (m_line.directive) {
      Directive();
    } else if (m_inactive == 0) {
      for (const auto& [b, e] : m_line.statements) Statement(b, e, 0);
    }
    const int owner = m_openedOnLine >= 0 ? m_openedOnLine : ownerBefore;
    AddLine(m_result.lines);
    if (owner >= 0) AddLine(m_result.procedures[owner].lines);
  }

  void AddLine(LineCounts& c) const {
    switch (m_line.kind) {
      case LineKind::Code:
        ++c.code;
        break;
      case LineKind::Comment:
        ++c.comment;
        break;
      case LineKind::Blank:
        ++c.blank;
        break;
      case LineKind::Hidden:
        break;
    }
    if (m_line.meaningfulComment) ++c.meaningful;
  }

  void Directive() {
    // Only the first branch of each #If is measured; the lines of the other
    // branches are counted as lines but hold no statements.
    if (IsWord(1, Keyword::If)) {
      m_directives.push_back(true);
    } else if (IsWord(1, Keyword::ElseIf) || IsWord(1, Keyword::Else)) {
      if (!m_directives.empty() && m_directives.back()) {
        m_directives.back() = false;
        ++m_inactive;
      }
    } else if (IsWord(1, Keyword::End)) {
      if (!m_directives.empty()) {
        if (!m_directives.back()) --m_inactive;
        m_directives.pop_back();
      }
    }
  }

  void Count(int proc, bool declarative, bool control) {
    ++m_result.lines.statements;
    m_result.lines.declarative += declarative;
    m_result.lines.control += control;
    if (proc < 0) return;
    LineCounts& c = m_result.procedures[proc].lines;
    ++c.statements;
    c.declarative += declarative;
    c.control += control;
  }

  // --- statements
  void Statement(int b, int e, int nesting) {
    // The statement's first word, looked at again and again below.
    const Keyword kb = m_line.tokens[static_cast<size_t>(b)].keyword;
    int i = b;
    bool isPrivate = false, isPublic = false;
    for (; i < e; ++i) {
      const Keyword k = m_tokens[i].keyword;
      if (k != Keyword::Public && k != Keyword::Private && k != Keyword::Friend &&
          k != Keyword::Global && k != Keyword::Static)
        break;
      isPrivate |= k == Keyword::Private;
      isPublic |= k == Keyword::Public || k == Keyword::Global;
    }
    // Only these words can begin a procedure's header.
    const Keyword ki = Valid(i) ? m_tokens[i].keyword : Keyword::None;
    const bool mayBeHeader = ki == Keyword::Declare || ki == Keyword::Sub ||
                             ki == Keyword::Function || ki == Keyword::Property;
    if (mayBeHeader && m_block == Block::None && Header(i, e, isPrivate)) return;
    if ((kb == Keyword::End) && (IsWord(b + 1, Keyword::Sub) || IsWord(b + 1, Keyword::Function) ||
                                 IsWord(b + 1, Keyword::Property))) {
      const int proc = m_proc;
      Count(proc, true, false);
      if (proc >= 0) Close(m_line.firstLine + m_line.lineCount - 1);
      return;
    }
    if (m_proc < 0) {
      Count(-1, true, false);
      ModuleLevel(b, i, e, isPublic);
      return;
    }
    ProcedureCount& proc = m_result.procedures[m_proc];
    if ((kb == Keyword::Dim) || (kb == Keyword::Static)) {
      Count(m_proc, true, false);
      for (int n : ItemNames(b + 1, e)) {
        ++proc.locals;
        proc.localNames.push_back(Hash(n));
        proc.localLengths.push_back(m_line.tokens[static_cast<size_t>(n)].length);
      }
      return;
    }
    if ((kb == Keyword::Const)) {
      Count(m_proc, true, false);
      for (int n : ItemNames(b + 1, e))
        m_result.constants << m_lexer.Text(m_line.tokens[n]).toString();
      return;
    }
    Executable(b, e, nesting);
  }

  bool Header(int i, int e, bool isPrivate) {
    ProcedureKind kind;
    bool declare = false;
    if (IsWord(i, Keyword::Declare)) {
      declare = true;
      ++i;
      if (IsWord(i, Keyword::PtrSafe)) ++i;
      if (!IsWord(i, Keyword::Sub) && !IsWord(i, Keyword::Function)) return false;
      kind = ProcedureKind::Declare;
      ++i;
    } else if (IsWord(i, Keyword::Sub)) {
      kind = ProcedureKind::Sub;
      ++i;
    } else if (IsWord(i, Keyword::Function)) {
      kind = ProcedureKind::Function;
      ++i;
    } else if (IsWord(i, Keyword::Property) && IsWord(i + 1, Keyword::Get)) {
      kind = ProcedureKind::PropertyGet;
      i += 2;
    } else if (IsWord(i, Keyword::Property) && IsWord(i + 1, Keyword::Let)) {
      kind = ProcedureKind::PropertyLet;
      i += 2;
    } else if (IsWord(i, Keyword::Property) && IsWord(i + 1, Keyword::Set)) {
      kind = ProcedureKind::PropertySet;
      i += 2;
    } else {
      return false;
    }
    if (!IsAnyWord(i)) return false;
    if (m_proc >= 0) {
      m_result.problems << QStringLiteral("%1 has no end").arg(m_result.procedures[m_proc].name);
      Close(m_line.firstLine - 1);
    }
    ProcedureCount p;
    p.firstUse = p.endUse = m_result.uses.size();
    p.name = m_lexer.Text(m_line.tokens[i]).toString();
    p.kind = kind;
    p.isPrivate = isPrivate;
    p.firstLine = p.lastLine = m_line.firstLine;
    int open = i + 1;
    while (open < e && !IsPunct(open, u'(')) ++open;
    if (open < e) {
      const int close = SkipParens(open, e) - 1;
      for (int n : ItemNames(open + 1, close)) {
        ++p.parameters;
        p.localNames.push_back(Hash(n));
        p.localLengths.push_back(m_line.tokens[static_cast<size_t>(n)].length);
      }
    }
    m_result.procedures.push_back(std::move(p));
    const int index = static_cast<int>(m_result.procedures.size()) - 1;
    m_openedOnLine = index;
    Count(index, true, false);
    if (declare)
      m_result.procedures[index].lastLine = m_line.firstLine + m_line.lineCount - 1;
    else
      m_proc = index;
    return true;
  }

  void Close(int lastLine) {
    ProcedureCount& p = m_result.procedures[m_proc];
    p.lastLine = std::max(p.firstLine, lastLine);
    m_proc = -1;
    m_condDepth = m_loopDepth = 0;
  }

  // Outside procedures every statement is declarative.
  void ModuleLevel(int b, int i, int e, bool isPublic) {
    if (m_block != Block::None) {
      if (IsWord(b, Keyword::End) && (IsWord(b + 1, Keyword::Type) || IsWord(b + 1, Keyword::Enum)))
        m_block = Block::None;
      else if (IsAnyWord(b)) {
        m_result.enumConstants += m_block == Block::Enum;
        m_result.otherNames << WordAt(b);
      }
      return;
    }
    if (IsWord(i, Keyword::Type) && IsAnyWord(i + 1)) {
      ++m_result.types;
      m_block = Block::Type;
      m_result.otherNames << WordAt(i + 1);
    } else if (IsWord(i, Keyword::Enum) && IsAnyWord(i + 1)) {
      ++m_result.enums;
      m_block = Block::Enum;
      m_result.otherNames << WordAt(i + 1);
    } else if (IsWord(i, Keyword::Event)) {
      ++m_result.events;
    } else if (IsWord(i, Keyword::Implements)) {
      ++m_result.implements;
      if (IsAnyWord(i + 1)) m_result.handlerPrefixes << WordAt(i + 1);
    } else if (IsWord(i, Keyword::Const)) {
      for (int n : ItemNames(i + 1, e))
        m_result.constants << m_lexer.Text(m_line.tokens[n]).toString();
    } else if (IsWord(i, Keyword::Dim) || i > b) {
      for (int n : ItemNames(IsWord(i, Keyword::Dim) ? i + 1 : i, e)) {
        m_result.variables.push_back({WordAt(n), isPublic});
        if (IsWord(n - 1, Keyword::WithEvents)) m_result.handlerPrefixes << WordAt(n);
      }
    }
  }

  void Conditions(int b, int e, ProcedureCount& p) {
    for (int i = b; i < e; ++i)
      if (IsWord(i, Keyword::And) || IsWord(i, Keyword::Or) || IsWord(i, Keyword::Xor) ||
          IsWord(i, Keyword::AndAlso) || IsWord(i, Keyword::OrElse))
        ++p.booleanOperators;
  }

  void Deeper(int& depth, int& max) {
    ++depth;
    max = std::max(max, depth);
  }

  void Executable(int b, int e, int nesting) {
    // The statement's first word, looked at again and again below.
    const Keyword kb = m_line.tokens[static_cast<size_t>(b)].keyword;
    ProcedureCount& p = m_result.procedures[m_proc];
    const int proc = m_proc;
    if ((kb == Keyword::If)) {
      int then = b + 1;
      while (then < e && !IsWord(then, Keyword::Then)) ++then;
      ++p.decisions;
      Conditions(b + 1, then, p);
      Uses(b + 1, then, -1);
      Count(proc, false, true);
      if (then + 1 < e && nesting < kMaxSingleLineNesting) {
        // Single-line If: the statements after Then and after Else.
        p.maxConditionDepth = std::max(p.maxConditionDepth, m_condDepth + 1);
        ++m_condDepth;
        int start = then + 1;
        for (int i = start; i <= e; ++i) {
          if (i == e || IsWord(i, Keyword::Else)) {
            if (i > start) Statement(start, i, nesting + 1);
            start = i + 1;
          }
        }
        m_condDepth = std::max(0, m_condDepth - 1);
      } else if (then + 1 < e) {
        Count(proc, false, false);
      } else if (e != m_line.statements.back().second) {
        // "If c Then: s" is a single-line If too: no block opens.
        p.maxConditionDepth = std::max(p.maxConditionDepth, m_condDepth + 1);
      } else {
        Deeper(m_condDepth, p.maxConditionDepth);
      }
      return;
    }
    if ((kb == Keyword::ElseIf)) {
      int then = b + 1;
      while (then < e && !IsWord(then, Keyword::Then)) ++then;
      ++p.decisions;
      Conditions(b + 1, then, p);
      Uses(b + 1, then, -1);
      Count(proc, false, true);
      return;
    }
    if ((kb == Keyword::Else)) {
      Count(proc, false, true);
      if (b + 1 < e && nesting < kMaxSingleLineNesting) Statement(b + 1, e, nesting + 1);
      return;
    }
    if ((kb == Keyword::End)) {
      if (IsWord(b + 1, Keyword::If) || IsWord(b + 1, Keyword::Select)) {
        m_condDepth = std::max(0, m_condDepth - 1);
        Count(proc, false, true);
      } else {
        Count(proc, false, b + 1 == e);  // End alone stops the program
      }
      return;
    }
    if ((kb == Keyword::Select)) {
      ++p.selects;
      Deeper(m_condDepth, p.maxConditionDepth);
      Uses(b + 1, e, -1);
      Count(proc, false, true);
      return;
    }
    if ((kb == Keyword::Case)) {
      if (!IsWord(b + 1, Keyword::Else)) {
        ++p.decisions;
        ++p.cases;
        Uses(b + 1, e, -1);
      }
      Count(proc, false, true);
      return;
    }
    if ((kb == Keyword::For)) {
      ++p.decisions;
      Deeper(m_loopDepth, p.maxLoopDepth);
      Uses(b + 1, e, IsWord(b + 1, Keyword::Each) ? b + 2 : b + 1);
      Count(proc, false, true);
      return;
    }
    if ((kb == Keyword::Next)) {
      int vars = 1;
      for (int i = b + 1; i < e; ++i) vars += IsPunct(i, u',');
      m_loopDepth = std::max(0, m_loopDepth - vars);
      Count(proc, false, true);
      return;
    }
    if ((kb == Keyword::Do) || (kb == Keyword::Loop) || (kb == Keyword::While) ||
        (kb == Keyword::Wend)) {
      if ((kb == Keyword::Do) || (kb == Keyword::While))
        Deeper(m_loopDepth, p.maxLoopDepth);
      else
        m_loopDepth = std::max(0, m_loopDepth - 1);
      if ((kb == Keyword::While) || IsWord(b + 1, Keyword::While) ||
          IsWord(b + 1, Keyword::Until)) {
        ++p.decisions;
        Conditions(b + 1, e, p);
        Uses(b + 1, e, -1);
      }
      Count(proc, false, true);
      return;
    }
    if ((kb == Keyword::GoTo) || (kb == Keyword::GoSub) || (kb == Keyword::Return) ||
        (kb == Keyword::Exit) || (kb == Keyword::Resume) || (kb == Keyword::Stop) ||
        (kb == Keyword::On)) {
      Uses(b + 1, e, -1);
      Count(proc, false, true);
      return;
    }
    // Any other statement: an assignment writes its target.
    int first = b;
    if (IsWord(first, Keyword::Let) || IsWord(first, Keyword::Set)) ++first;
    int target = -1;
    if (IsWord(first, Keyword::ReDim)) {
      target = IsWord(first + 1, Keyword::Preserve) ? first + 2 : first + 1;
    } else if (IsAnyWord(first)) {
      int k = first + 1;
      while (k < e) {
        if (IsPunct(k, u'('))
          k = SkipParens(k, e);
        else if (IsPunct(k, u'.') && IsAnyWord(k + 1))
          k += 2;
        else
          break;
      }
      if (IsPunct(k, u'=')) target = first;
    }
    Uses(b, e, target);
    Count(proc, false, false);
  }

  // Records every word of [b, e) as a read, but the word at `target` (and a
  // name qualified by it) as a write. Words after a dot count only with the
  // word before the dot as their qualifier.
  // Flattened: the vector's growth is inlined, so that the loop stays in registers.
  __attribute__((flatten)) void Uses(int b, int e, int target) {
    if (target >= e || !IsAnyWord(target)) target = -1;
    std::vector<NameUse>& uses = m_result.uses;
    for (int i = b; i < e; ++i) {
      if (!IsAnyWord(i)) continue;
      const bool write =
          i == target || (target >= 0 && i == target + 2 && IsPunct(target + 1, u'.'));
      if (IsPunct(i - 1, u'.')) {
        if (i - 2 >= b && IsAnyWord(i - 2)) uses.push_back({Hash(i), Hash(i - 2), write});
        continue;
      }
      uses.push_back({Hash(i), 0, write});
    }
    m_result.procedures[static_cast<size_t>(m_proc)].endUse = uses.size();
  }

  BasicLexer m_lexer;
  LogicalLine m_line;
  // The line's tokens, kept at hand: they are looked at again and again.
  const Token* m_tokens = nullptr;
  unsigned m_tokenCount = 0;
  ModuleCount m_result;
  int m_proc = -1;
  int m_openedOnLine = -1;
  int m_condDepth = 0;
  int m_loopDepth = 0;
  Block m_block = Block::None;
  std::vector<bool> m_directives;  // per open #If: still in its first branch
  int m_inactive = 0;              // open #If blocks past their first branch
  std::vector<int> m_items;        // ItemNames' result
};

}  // namespace

ModuleCount CountModule(const QString& text, const QString& baseName) {
  Counter counter(text);
  return counter.Run(baseName);
}

}  // namespace ombrelle
