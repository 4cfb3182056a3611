#include "support/MD5.h"

#include <QCryptographicHash>
#include <QFile>

#include "support/Codepage.h"

namespace ombrelle {

namespace {
QString HexUpper(const QByteArray& digest) { return QString::fromLatin1(digest.toHex().toUpper()); }
}  // namespace

QString MD5::DigestStrToHexStr(const QString& text) {
  return DigestBytesToHexStr(TextToMultiByte(text, kCodepageAnsi));
}

QString MD5::DigestBytesToHexStr(const QByteArray& bytes) {
  return HexUpper(QCryptographicHash::hash(bytes, QCryptographicHash::Md5));
}

QString MD5::DigestFileToHexStr(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return QString();
  QCryptographicHash hash(QCryptographicHash::Md5);
  if (!hash.addData(&file)) return QString();
  return HexUpper(hash.result());
}

bool MD5::Compare(const QString& digest1, const QString& digest2) {
  return digest1.size() == 32 && digest1 == digest2;
}

}  // namespace ombrelle
