#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "support/MD5.h"

using namespace ombrelle;

TEST(Md5, KnownDigestsOfRfc1321TestSuite) {
  const struct {
    const char* text;
    const char* digest;
  } cases[] = {
      {"", "D41D8CD98F00B204E9800998ECF8427E"},
      {"a", "0CC175B9C0F1B6A831C399E269772661"},
      {"abc", "900150983CD24FB0D6963F7D28E17F72"},
      {"message digest", "F96B697D7CB7938D525A2F31AAF161D0"},
      {"abcdefghijklmnopqrstuvwxyz", "C3FCD3D76192E4007DFB496CCA67E13B"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "57EDF4A22BE3C955AC49DA2E2107B67A"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(MD5::DigestStrToHexStr(QString::fromLatin1(c.text)).toStdString(), c.digest)
        << c.text;
    EXPECT_EQ(MD5::DigestBytesToHexStr(QByteArray(c.text)).toStdString(), c.digest) << c.text;
  }
}

TEST(Md5, TextIsHashedOneAnsiBytePerCharacter) {
  // "é" is byte E9 and "€" byte 80 in the ANSI code page, not their UTF-8 forms.
  EXPECT_EQ(MD5::DigestStrToHexStr(QStringLiteral("\u00E9\u20AC")),
            MD5::DigestBytesToHexStr(QByteArray("\xE9\x80")));
  EXPECT_NE(MD5::DigestStrToHexStr(QStringLiteral("\u00E9")),
            MD5::DigestBytesToHexStr(QStringLiteral("\u00E9").toUtf8()));
}

TEST(Md5, FileDigestMatchesBytesAndMissingFileGivesEmpty) {
  QTemporaryDir dir;
  const QString path = dir.filePath("abc.bin");
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("abc");
  file.close();
  EXPECT_EQ(MD5::DigestFileToHexStr(path).toStdString(), "900150983CD24FB0D6963F7D28E17F72");
  EXPECT_EQ(MD5::DigestFileToHexStr(dir.filePath("missing.bin")), QString());
}

TEST(Md5, CompareNeedsTwoEqualDigestsOf32Digits) {
  const QString digest = "900150983CD24FB0D6963F7D28E17F72";
  EXPECT_TRUE(MD5::Compare(digest, digest));
  EXPECT_FALSE(MD5::Compare(digest, "900150983CD24FB0D6963F7D28E17F73"));
  EXPECT_FALSE(MD5::Compare(digest, digest.toLower()));
  EXPECT_FALSE(MD5::Compare("", ""));
}
