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
// The same into `text`, whose memory is used again when the bytes are ASCII
// (the common case): decoding file after file into one string then takes no
// fresh memory for each file.
void DecodeSource(const QByteArray& bytes, QString& text);

// True when `bytes` holds a NUL byte in its first 64 kilobytes: no text file of
// the language does.
bool LooksBinary(const QByteArray& bytes);

// Lines end at CR LF, LF or a lone CR. A last line without an end counts; an
// empty text has no line.
std::vector<PhysicalLine> SplitPhysicalLines(const QString& text);
// The same into `lines`, whose memory is used again.
void SplitPhysicalLines(const QString& text, std::vector<PhysicalLine>& lines);

}  // namespace ombrelle
