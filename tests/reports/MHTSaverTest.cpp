#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimeZone>

#include "reports/MHTSaver.h"

namespace ombrelle {
namespace {

QByteArray ReadAll(const QString& path) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The Date line is the one part of an archive that depends on the clock.
QByteArray WithoutDate(QByteArray bytes) {
  const qsizetype at = bytes.indexOf("\r\nDate: ");
  if (at < 0) return bytes;
  const qsizetype end = bytes.indexOf("\r\n", at + 2);
  return bytes.left(at) + "\r\nDate: *" + bytes.mid(end);
}

const QByteArray Header =
    "From: \"Saved by Gen \"\"X\"\"\"<>\r\n"
    "Subject: =?utf-8?B?Q2Fmw6kgJiA8eD4=?=\r\n"
    "Date: *\r\n"
    "MIME-Version: 1.0\r\n"
    "Bcc:\r\n"
    "Content-Type: multipart/related;\r\n"
    "\ttype=\"text/html\";\r\n"
    "\tboundary=\"----====::::MIME.boundary::::====----\"\r\n"
    "\r\n"
    "This is a web file archive in MIME format.\r\n";

TEST(MHTSaver, WritesHeaderPartsAndClosingBoundaryExactly) {
  QTemporaryDir dir;
  const QString path = dir.filePath("r.mht");
  MHTSaver mht;
  ASSERT_TRUE(mht.Start(path, QString::fromUtf8("Café & <x>"), "Gen \"X\""));
  EXPECT_EQ(mht.GetFileNr(), 1);
  ASSERT_TRUE(mht.SaveHTML_UTF8(QString::fromUtf8("<p>é</p>"), "index.html"));
  ASSERT_TRUE(mht.SaveBase64(QByteArray(57, 'a').toBase64(), "image/bmp", "p1.bmp"));
  ASSERT_TRUE(mht.SaveHTML(QString::fromUtf8("é"), {}, "text/plain"));
  EXPECT_FALSE(QFile::exists(path)) << "the archive appears only when it is done";
  ASSERT_TRUE(mht.Done(false));
  EXPECT_EQ(mht.GetFileNr(), 0);

  const QByteArray expected =
      Header + "\r\n--" + MHTSaver::Boundary +
      "\r\nContent-Type: text/html;\r\n        charset=\"utf-8\"\r\n"
      "Content-Location: https://ombrelle.example.org/archive/index.html\r\n"
      "Content-Transfer-Encoding: 8bit\r\n\r\n"
      "\r\n<p>\xc3\xa9</p>"
      "\r\n--" +
      MHTSaver::Boundary +
      "\r\nContent-Type: image/bmp\r\nContent-Transfer-Encoding: base64\r\n"
      "Content-Location: https://ombrelle.example.org/archive/p1.bmp\r\n\r\n" +
      QByteArray(57, 'a').toBase64() +
      "\r\n"
      "\r\n--" +
      MHTSaver::Boundary +
      "\r\nContent-Type: text/plain\r\nContent-Transfer-Encoding: 8bit\r\n\r\n\xe9"
      "\r\n\r\n--" +
      MHTSaver::Boundary + "--\r\n";
  EXPECT_EQ(WithoutDate(ReadAll(path)), expected);
  EXPECT_EQ(QByteArray(57, 'a').toBase64().size(), 76);
}

TEST(MHTSaver, Base64LinesHoldSeventySixCharacters) {
  QTemporaryDir dir;
  const QString path = dir.filePath("b.mht");
  MHTSaver mht;
  ASSERT_TRUE(mht.Start(path, "t"));
  ASSERT_TRUE(mht.SaveBase64(QByteArray(58, 'b').toBase64(), "image/gif", "x.gif"));
  ASSERT_TRUE(mht.Done(false));
  const QByteArray base64 = QByteArray(58, 'b').toBase64();
  EXPECT_TRUE(ReadAll(path).endsWith(
      "Content-Location: https://ombrelle.example.org/archive/x.gif\r\n\r\n" + base64.left(76) +
      "\r\n" + base64.mid(76) + "\r\n\r\n\r\n--" + MHTSaver::Boundary + "--\r\n"));
  EXPECT_TRUE(QByteArray(58, 'b').toBase64().endsWith("=="));
}

TEST(MHTSaver, ArchiveWithoutPartsHasOnlyTheClosingBoundary) {
  QTemporaryDir dir;
  const QString path = dir.filePath("e.mht");
  MHTSaver mht;
  ASSERT_TRUE(mht.Start(path, "t"));
  ASSERT_TRUE(mht.Done(false));
  EXPECT_EQ(ReadAll(path), QByteArray("\r\n--") + MHTSaver::Boundary + "--\r\n");
}

TEST(MHTSaver, ClosedArchiveRefusesEveryPart) {
  MHTSaver mht;
  EXPECT_FALSE(mht.SaveHTML("x", {}, "text/html"));
  EXPECT_FALSE(mht.SaveHTML_UTF8("x", {}));
  EXPECT_FALSE(mht.SaveBase64("eA==", "image/bmp", "a"));
  EXPECT_FALSE(mht.SaveBinaryFile("/nonexistent", "image/bmp", "a"));
  EXPECT_FALSE(mht.Done(false));
  EXPECT_FALSE(mht.Start("/nonexistent-folder/x.mht", "t"));
  EXPECT_EQ(mht.GetFileNr(), 0);
}

TEST(MHTSaver, AbandonedArchiveLeavesTheOldFileAsItWas) {
  QTemporaryDir dir;
  const QString path = dir.filePath("old.mht");
  {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("old");
  }
  {
    MHTSaver mht;
    ASSERT_TRUE(mht.Start(path, "t"));
    ASSERT_TRUE(mht.SaveHTML("new", {}, "text/html"));
  }
  EXPECT_EQ(ReadAll(path), "old");
  EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"old.mht"});
}

TEST(MHTSaver, AppendGoesOnAfterDoneContinues) {
  QTemporaryDir dir;
  const QString path = dir.filePath("c.mht");
  MHTSaver first;
  ASSERT_TRUE(first.Start(path, "t"));
  ASSERT_TRUE(first.SaveHTML("<p>1</p>", "index.html", "text/html"));
  ASSERT_TRUE(first.Done(true));
  const QByteArray part = ReadAll(path);
  EXPECT_FALSE(part.contains(QByteArray(MHTSaver::Boundary) + "--"));

  MHTSaver second;
  ASSERT_TRUE(second.Append(path));
  EXPECT_EQ(second.Title(), path);
  ASSERT_TRUE(second.SaveBase64("eA==", "image/bmp", "p.bmp"));
  ASSERT_TRUE(second.Done(false));
  const QByteArray whole = ReadAll(path);
  EXPECT_TRUE(whole.startsWith(part));
  EXPECT_EQ(whole.count("From: "), 1) << "the header is written once";
  EXPECT_TRUE(whole.endsWith(QByteArray(MHTSaver::Boundary) + "--\r\n"));

  MHTSaver fresh;
  ASSERT_TRUE(fresh.Append(dir.filePath("new.mht")));
  EXPECT_EQ(fresh.Title(), "");
}

TEST(MHTSaver, HeaderTextAndDateForms) {
  EXPECT_EQ(MHTSaver::EncodeHeaderText("Plain ~ text"), "Plain ~ text");
  EXPECT_EQ(MHTSaver::EncodeHeaderText(QString::fromUtf8("Entrepôt")), "=?utf-8?B?RW50cmVww7R0?=");
  EXPECT_EQ(MHTSaver::EncodeHeaderText("tab\there"), "=?utf-8?B?dGFiCWhlcmU=?=");
  EXPECT_EQ(MHTSaver::QuoteHeaderText("a \"b\""), "\"a \"\"b\"\"\"");
  const QDateTime utc(QDate(2026, 3, 7), QTime(4, 5, 9), Qt::UTC);
  EXPECT_EQ(MHTSaver::DateRFC1123(utc), "7 Mar 2026 04:05:09 +0000");
  const QDateTime east(QDate(2026, 12, 31), QTime(23, 0, 0), Qt::OffsetFromUTC, 19800);
  EXPECT_EQ(MHTSaver::DateRFC1123(east), "31 Dec 2026 23:00:00 +0530");
  const QDateTime west(QDate(2026, 1, 1), QTime(0, 0, 0), Qt::OffsetFromUTC, -3600);
  EXPECT_EQ(MHTSaver::DateRFC1123(west), "1 Jan 2026 00:00:00 -0100");
}

// An outside reader: Python's email package sees a multipart/related message
// with the HTML first and the picture decoding to its bytes.
TEST(MHTSaver, PythonEmailParsesTheArchive) {
  QTemporaryDir dir;
  const QString path = dir.filePath("p.mht");
  MHTSaver mht;
  ASSERT_TRUE(mht.Start(path, QString::fromUtf8("Entrepôt <6.2>")));
  // A picture made before the HTML still follows it in the archive.
  ASSERT_TRUE(mht.SaveBase64(QByteArray(1000, '\x7f').toBase64(), "image/bmp", "a.bmp"));
  ASSERT_TRUE(mht.SaveHTML_UTF8(QString::fromUtf8("<html><body><img src=\"a.bmp\">é</body></html>"),
                                "index.html"));
  ASSERT_TRUE(mht.Done(false));
  const char* script = R"(
import email, email.policy, sys
m = email.message_from_binary_file(open(sys.argv[1], 'rb'), policy=email.policy.default)
assert m.get_content_type() == 'multipart/related', m.get_content_type()
parts = list(m.iter_parts())
assert [p.get_content_type() for p in parts] == ['text/html', 'image/bmp']
assert '\u00e9' in parts[0].get_content()
assert parts[1].get_content() == b'\x7f' * 1000
print(str(m['subject']))
)";
  QProcess python;
  python.start("python3", {"-c", script, path});
  ASSERT_TRUE(python.waitForFinished(30000));
  EXPECT_EQ(python.exitCode(), 0) << python.readAllStandardError().toStdString();
  EXPECT_EQ(QString::fromUtf8(python.readAllStandardOutput()).trimmed(),
            QString::fromUtf8("Entrepôt <6.2>"));
}

}  // namespace
}  // namespace ombrelle
