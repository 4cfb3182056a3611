#pragma once

#include <array>
#include <cstdint>

#include <QByteArray>
#include <QString>

#include "core/QVZFormat.h"

namespace ombrelle {

// Field routines shared by the database writer and the header editor: how
// texts and dates go into header fields, the checksum over the guarded fields,
// and the choice of a series' value encoding.

// The longest prefix of `text` whose UTF-8 form fits in the 214 bytes; the rest
// of the field is zero. The cut falls on a whole character.
void SetTextFieldUtf8(std::array<char, kTextFieldSize>& field, const QString& text);
// `text` in ANSI, padded with blanks to 214 bytes and cut there.
void SetTextFieldAnsi(std::array<char, kTextFieldSize>& field, const QString& text);

// `AnalysisDate` as "yyyy-mm-dd" and `AnalysisStamp` as 14 digits
// "yyyymmddhhnnss" from a date value, the time rounded to the second.
void SetAnalysisDate(DatabaseHeader& header, double date);
// A date value as "yyyy-mm-dd", and as the 14 digits of a stamp.
QByteArray DateToIsoText(double date);
QByteArray DateToStamp14(double date);

// `text` in ANSI, blank-padded on the right and cut to `field`'s size.
template <size_t N>
void SetBlankPadded(std::array<char, N>& field, const QByteArray& text) {
  field.fill(' ');
  for (size_t i = 0; i < N && i < static_cast<size_t>(text.size()); ++i) field[i] = text[i];
}

// Puts that checksum into the header's field.
void StampChecksum(DatabaseHeader& header, qint64 fileLength);

// The most compact encoding that holds every value of a series with extremes
// `min` and `max` exactly: constant when they are equal; for whole-number
// counts and dates (formats 1, 2 and 9) the smallest integer that holds the
// range; doubles otherwise.
struct ValueEncoding {
  uint8_t Kind = kValueDouble;
  uint8_t Size = 8;
};
ValueEncoding ChooseValueEncoding(int format, double min, double max);

}  // namespace ombrelle
