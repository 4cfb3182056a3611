#pragma once

#include <QString>
#include <QStringView>

namespace ombrelle {

struct DecimalDigits;

// Text pieces of the XML export, which is pure ASCII by construction: every
// character outside printable ASCII, and the five characters XML reserves,
// become numeric character references of their 16-bit code; numbers are
// written in the short general form with "." as the decimal point.

// Longest output of XmlEscapeCode ("&#65535;") and of XmlNumber.
inline constexpr int kXmlEscapeMaxBytes = 8;
inline constexpr int kXmlNumberMaxBytes = 32;

// Whether `code` stands for itself: printable ASCII other than ' < > " &.
constexpr bool XmlPlainCode(char16_t code) {
  return code >= 32 && code <= 126 && code != u'\'' && code != u'<' && code != u'>' &&
         code != u'"' && code != u'&';
}

// Writes the escaped form of one 16-bit code to `out` (room for
// kXmlEscapeMaxBytes) and returns the number of bytes written.
int XmlEscapeCode(char16_t code, char* out);

// `text` with every code that is not XmlPlainCode written as "&#" code ";"
// (the code as unsigned 16 bits, so a surrogate half is referenced on its own).
// The named entities of XML are never used.
QString EscapeXml(QStringView text);
// The same, replacing `text`.
void EscapeXmlInPlace(QString& text);

// The raw form of a value: at most 15 significant digits, "." as decimal
// point, no zero before the point (".5", "-.5"), fixed notation for decimal
// exponents -4 to 14 and "1E+20" / "1.5E-05" form beyond, the exponent with
// at least two digits. Zero reads "0"; values that are not finite read "NaN",
// "Inf" and "-Inf". Writes to `out` (room for kXmlNumberMaxBytes) and returns
// the number of bytes.
int XmlNumber(double value, char* out);
// The same with the ShortestDigits of `value` at hand (or null).
int XmlNumber(double value, const DecimalDigits* digits, char* out);
// The same as text.
QString XmlNumberText(double value);

// Room for any XmlValueLine.
inline constexpr int kXmlValueLineMax = 800;
// One value line of the export, "   <value display='" text "'>" raw
// "</value>" CR LF, with the display text of FormatMetricChars for `format`
// and the raw form of XmlNumber, written to `out`; the number of bytes, or
// -1 (nothing written) for a date whose text only the locale can write.
int XmlValueLine(int format, double value, char* out);
// The lines of XmlValueLine for values[0..count) one after another in `out`,
// which has room for `room` bytes, while at least kXmlValueLineMax of them
// are left; stops before a value that XmlValueLine cannot write. Gives the
// bytes written and sets `done` to the number of values written.
qsizetype XmlValueLines(int format, const double* values, qsizetype count, char* out,
                        qsizetype room, qsizetype& done);

}  // namespace ombrelle
