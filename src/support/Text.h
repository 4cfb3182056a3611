#pragma once

#include <QString>

namespace ombrelle {

// The line break of the program's messages and text files.
inline const QString kCrLf = QStringLiteral("\r\n");

// Free text routines: tabs, tokens, wrapping, transliteration to 7-bit text
// for file names, and the Macintosh Roman code of a Latin letter.

// For each line (split at line feed) that holds tabs, every tab becomes as many
// blanks as bring the text after it to the 1-based `column` (at least one
// blank, so columns never run together). Text without a tab is returned as it
// stands.
QString ExpandTabs(const QString& text, int column);

// Returns what stands before the first `separator` and removes it and the
// separator from `text`. Without a separator the whole text is returned and
// `text` becomes empty. An empty separator counts as absent.
QString NextToken(QString& text, const QString& separator);

// Breaks `text` into lines of at most `width` characters, joined by CR LF.
// Existing CR LF breaks stay. A long line breaks at the last blank (which is
// dropped) or after the last "-" at or before `width`; a line without either
// is cut at `width`. A width below 1 returns the text unchanged.
QString WrapText(const QString& text, int width);

// Seven-bit text for file names: codes 0 to 127 stay, every other character
// becomes its nearest ASCII spelling ("\u00e9" "e", "\u00df" "ss", "\u00a9" "(C)",
// Cyrillic and Greek by sound, enclosed digits and letters in round brackets),
// and a character the table does not know vanishes.
QString ToAscii7(const QString& text);
// The table row of one code; empty for codes it does not name. Codes below
// 128 give themselves.
QString ToAscii7Char(char16_t code);

// The Macintosh Roman byte of a character: codes below 128 stay, Latin letters
// and symbols map to their byte (196 to 128, 197 to 129, 199 to 130, ...);
// anything else gives "?" (63).
int MacRomanByte(int code);

// A plain decimal scan: leading blanks skipped, an optional sign, digits with
// one ".", an optional exponent; it stops at the first character it cannot
// use, so text that is no number reads 0 ("12abc" 12, ".2" 0.2, "x" 0).
double ScanNumber(const QString& text);

}  // namespace ombrelle
