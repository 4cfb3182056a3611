#pragma once

#include <QByteArray>
#include <QString>

namespace ombrelle {

// Code pages that 8-bit text in files may use. Any other number stands for
// the ANSI code page, which this program fixes to Windows-1252 on every
// platform so that files read the same everywhere.
constexpr int kCodepageAnsi = 1252;
constexpr int kCodepageUtf8 = 65001;

// Bytes in `codepage` to text. UTF-8 sequences that are not valid become
// U+FFFD; every byte of Windows-1252 has a character (the five bytes the code
// page leaves unassigned map to the control characters of the same number).
QString MultiByteToText(const QByteArray& bytes, int codepage);
QString MultiByteToText(const char* data, qsizetype size, int codepage);

// Text to bytes in `codepage`. A character that Windows-1252 lacks becomes
// "?" (one per character, a surrogate pair counting as one).
QByteArray TextToMultiByte(const QString& text, int codepage);

}  // namespace ombrelle
