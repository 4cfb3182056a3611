#pragma once

#include "measure/BasicWords.h"
#include "measure/SourceText.h"

#include <QString>
#include <QStringList>
#include <QStringView>

#include <cstdint>
#include <vector>

// Cuts the text of one source file into logical lines (physical lines joined
// by line continuations) and each logical line of code into statements of
// tokens. The lexer reads every character once, whatever the input.

namespace ombrelle {

enum class TokenKind : std::uint8_t { Word, Number, String, Date, Punct };

// A token is a range of the decoded text. Words are identifiers and keywords
// (with a type-suffix character when one follows); Punct is one character, or
// a run of the comparison characters < = > such as "<=", or ":=".
struct Token {
  TokenKind kind = TokenKind::Punct;
  Keyword keyword = Keyword::None;  // the keyword a word spells
  int length = 0;
  qsizetype begin = 0;
  NameHash hash = 0;  // of a word: HashName of its text
};

enum class LineKind {
  Code,     // holds code (a label alone counts)
  Comment,  // holds nothing but a comment, even an empty one
  Blank,    // spaces, tabs and continuation characters only
  Hidden    // the designer's header and Attribute lines: not shown as code
};

struct LogicalLine {
  int firstLine = 0;  // 0-based physical line
  int lineCount = 0;  // physical lines joined
  LineKind kind = LineKind::Blank;
  bool directive = false;                       // a #If, #ElseIf, #Else, #End If or #Const line
  bool hasComment = false;                      // full-line or end-of-line
  bool meaningfulComment = false;               // that comment holds a letter or digit
  std::vector<Token> tokens;                    // code tokens, labels and separators left out
  std::vector<std::pair<int, int>> statements;  // [first, last) token of each
};

class BasicLexer {
 public:
  BasicLexer(const QString& text, const std::vector<PhysicalLine>& lines);

  // The next logical line into `out`; false at the end of the text.
  bool Next(LogicalLine& out);

  QStringView Text(const Token& t) const { return QStringView(m_text).mid(t.begin, t.length); }
  bool Is(const Token& t, QStringView word) const;  // a word, compared ignoring case

  // `Attribute VB_Name = "..."`, when the file has one.
  const QString& ModuleName() const { return m_moduleName; }
  // Names given to controls in the designer's header (`Begin Library.Kind Name`).
  const QStringList& ControlNames() const { return m_controls; }
  // Problems met: unterminated strings, an unterminated designer header.
  const QStringList& Problems() const { return m_problems; }

 private:
  bool MayBeHidden();
  bool HiddenLine(LogicalLine& out);
  void ScanCode(LogicalLine& out);
  void EndStatement(LogicalLine& out, int& statementBegin);

  const QString& m_text;
  const std::vector<PhysicalLine>& m_lines;
  size_t m_line = 0;
  int m_headerDepth = -1;  // -1: no designer header (any more); else Begin depth
  bool m_headerOpened = false;
  QString m_moduleName;
  QStringList m_controls;
  QStringList m_problems;
  int m_unterminatedStrings = 0;
  qsizetype m_codeStart = -1;  // the line's first non-blank, once MayBeHidden() found it
};

}  // namespace ombrelle
