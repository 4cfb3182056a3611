#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

// The bytes of a source file as text, and its physical lines.

namespace ombrelle {

// Start and length of one physical line within the decoded text, without its
// line end.
struct PhysicalLine {
  qsizetype begin = 0;
  qsizetype length = 0;
};

// UTF-8 when the bytes start with its byte-order mark or are valid UTF-8
// throughout, else Windows-1252 (which has a character for every byte).
QString DecodeSource(const QByteArray& bytes);

// True when `bytes` holds a NUL byte in its first 64 kilobytes: no text file of
// the language does.
bool LooksBinary(const QByteArray& bytes);

// Lines end at CR LF, LF or a lone CR. A last line without an end counts; an
// empty text has no line.
std::vector<PhysicalLine> SplitPhysicalLines(const QString& text);

}  // namespace ombrelle
