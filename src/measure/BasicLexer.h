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
  char16_t punct = 0;               // of a one-character Punct: that character
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
  // Lines end at CR LF, LF or a lone CR, as SplitPhysicalLines() finds them;
  // the lexer finds each end when it comes to the line.
  explicit BasicLexer(const QString& text);

  // The next logical line into `out`; false at the end of the text.
  bool Next(LogicalLine& out);

  QStringView Text(const Token& t) const { return QStringView(m_text).mid(t.begin, t.length); }
  bool Is(const Token& t, QStringView word) const;  // a word, compared ignoring case

  // `Attribute VB_Name = "..."`, when the file has one.
  const QString& ModuleName() const { return m_moduleName; }
  // Names given to controls in the designer's header (`Begin Library.Kind Name`).
  const QStringList& ControlNames() const { return m_controls; }
  // The physical lines read so far: all of them once Next() returned false.
  int PhysicalLines() const { return m_physicalLines; }
  // Problems met: unterminated strings, an unterminated designer header.
  const QStringList& Problems() const { return m_problems; }

 private:
  bool MayBeHidden();
  bool HiddenLine(LogicalLine& out);
  void ScanCode(LogicalLine& out);
  void EndStatement(LogicalLine& out, int& statementBegin);
  // The physical line after the current one into m_current; false at the end.
  bool ReadLine();

  const QString& m_text;
  PhysicalLine m_current;    // the physical line numbered m_line
  bool m_hasLine = false;    // false past the last line
  qsizetype m_nextLine = 0;  // where the line after m_current starts
  int m_physicalLines = 0;
  size_t m_line = 0;
  int m_headerDepth = -1;  // -1: no designer header (any more); else Begin depth
  QString m_moduleName;
  QStringList m_controls;
  QStringList m_problems;
  int m_unterminatedStrings = 0;
  qsizetype m_codeStart = -1;  // the line's first non-blank, once MayBeHidden() found it
};

}  // namespace ombrelle
