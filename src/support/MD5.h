#pragma once

#include <QByteArray>
#include <QString>

namespace ombrelle {

// The MD5 digest (RFC 1321) of a byte string, a text or a file, always given
// as 32 upper-case hexadecimal digits, two per byte in digest order.
class MD5 {
 public:
  // Text is hashed one byte per character, each character in its ANSI code.
  static QString DigestStrToHexStr(const QString& text);
  static QString DigestBytesToHexStr(const QByteArray& bytes);
  // The whole file's digest; an empty text when the file cannot be read.
  static QString DigestFileToHexStr(const QString& path);
  // Two digests are the same: equal texts of 32 characters.
  static bool Compare(const QString& digest1, const QString& digest2);
};

}  // namespace ombrelle
