#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "support/IniFile.h"

using namespace ombrelle;

namespace {

using Entries = std::vector<std::pair<QString, QString>>;

QByteArray ReadAll(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

void WriteAll(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(bytes);
}

const QString kMtl = QStringLiteral(OMBRELLE_TEST_DATA "/support/strict.mtl");

}  // namespace

TEST(IniFile, ReadsALimitsFileWithCrLf) {
  ASSERT_TRUE(ReadAll(kMtl).contains("\r\n[Rule1]\r\n"));
  EXPECT_EQ(ReadIniValue(kMtl, "MTL Metric limits", "Version", ""), "1.0");
  EXPECT_EQ(ReadIniValue(kMtl, "mtl metric LIMITS", "name", ""), "Strict rules");
  EXPECT_EQ(ReadIniValue(kMtl, "MTL Metric limits", "Rules", -1), 2);
  EXPECT_EQ(ReadIniValue(kMtl, "Rule1", "LimitMin", "x"), ".2");
  EXPECT_EQ(ReadIniValue(kMtl, "Rule1", "LimitMin", 9), 0);
  EXPECT_EQ(ReadIniValue(kMtl, "Rule2", "Limit", 9), -4);
  EXPECT_EQ(ReadIniValue(kMtl, "Rule2", "Missing", 9), 9);
  EXPECT_EQ(ReadIniValue(kMtl, "Rule3", "Metric", "none"), "none");
  EXPECT_EQ(ReadIniValue("/no/such/file.mtl", "Rule1", "Metric", 5), 5);
  EXPECT_EQ(ReadIniSection(kMtl, "MTL Metric limits"),
            Entries({{"Version", "1.0"}, {"Name", "Strict rules"}, {"Rules", "2"}}));
  EXPECT_EQ(ReadIniSection(kMtl, "Rule2"),
            Entries({{"Metric", "3105"}, {"LimitType", "0"}, {"Limit", "-4.5"}}));
  EXPECT_TRUE(ReadIniSection(kMtl, "Rule9").empty());
  EXPECT_EQ(ReadIniSectionNames(kMtl), QStringList({"MTL Metric limits", "Rule1", "Rule2"}));
}

TEST(IniFile, MalformedLinesAreSkipped) {
  IniFile ini;
  ini.SetText(
      "orphan=before any section\n"
      "[Unclosed\n"
      "garbage line\n"
      "=novalue\n"
      "k=v\n"
      "  spaced key  =  spaced value  \n"
      "quoted=\"  q  \"\n"
      "single='x'\n"
      "half=\"open\n"
      "dup=1\n"
      "dup=2\n"
      ";comment=x\n"
      "empty=\n"
      "eq=a=b\n"
      "[Second]\n"
      "a=1\n"
      "[second]\n"
      "b=2\n"
      "[]\n"
      "c=3\n");
  EXPECT_EQ(ini.Section("Unclosed"), Entries({{"k", "v"},
                                              {"spaced key", "spaced value"},
                                              {"quoted", "  q  "},
                                              {"single", "x"},
                                              {"half", "\"open"},
                                              {"dup", "1"},
                                              {"dup", "2"},
                                              {"empty", ""},
                                              {"eq", "a=b"}}));
  EXPECT_EQ(ini.Value("unclosed", "DUP"), "1");
  EXPECT_EQ(ini.Value("Second", "a"), "1");
  EXPECT_EQ(ini.Value("SECOND", "b"), std::nullopt);  // the first of two equal sections counts
  EXPECT_EQ(ini.Value("", "c"), "3");
  EXPECT_EQ(ini.Value("Unclosed", "orphan"), std::nullopt);
  EXPECT_EQ(ini.SectionNames(), QStringList({"Unclosed", "Second", ""}));
}

TEST(IniFile, WritesChangeOnlyTheirLine) {
  QTemporaryDir dir;
  const QString path = dir.path() + "/copy.mtl";
  const QByteArray original = ReadAll(kMtl);
  WriteAll(path, original);

  ASSERT_TRUE(WriteIniValue(path, "Rule1", "LimitMax", "20"));
  QByteArray expected = original;
  expected.replace("LimitMax=15\r\n", "LimitMax=20\r\n");
  EXPECT_EQ(ReadAll(path), expected);

  ASSERT_TRUE(WriteIniValue(path, "MTL Metric limits", "Author", "me"));
  expected.replace("Rules=2\r\n", "Rules=2\r\nAuthor=me\r\n");
  EXPECT_EQ(ReadAll(path), expected);

  ASSERT_TRUE(WriteIniValue(path, "Rule 3", "Metric", "1009"));
  expected += "\r\n[Rule 3]\r\nMetric=1009\r\n";
  EXPECT_EQ(ReadAll(path), expected);
  EXPECT_EQ(ReadIniValue(path, "rule 3", "metric", 0), 1009);
  EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList({"copy.mtl"}));
}

TEST(IniFile, NewFilesAndLineEnds) {
  QTemporaryDir dir;
  const QString fresh = dir.path() + "/new.ini";
  ASSERT_TRUE(WriteIniValue(fresh, "Section A", "Key", "Value"));
  EXPECT_EQ(ReadAll(fresh), "[Section A]\r\nKey=Value\r\n");

  const QString unix = dir.path() + "/lf.ini";
  WriteAll(unix, "[S]\na=1\n");
  ASSERT_TRUE(WriteIniValue(unix, "S", "b", "2"));
  EXPECT_EQ(ReadAll(unix), "[S]\na=1\nb=2\n");

  EXPECT_FALSE(WriteIniValue(dir.path() + "/missing/folder/x.ini", "S", "k", "v"));
}

TEST(IniFile, Encodings) {
  QTemporaryDir dir;
  const QString ansi = dir.path() + "/ansi.ini";
  WriteAll(ansi, "[S]\r\nName=Caf\xE9 \x80\r\n");
  EXPECT_EQ(ReadIniValue(ansi, "S", "Name", ""), QString::fromUtf8("Caf\u00e9 \u20ac"));
  ASSERT_TRUE(WriteIniValue(ansi, "S", "Other", QString::fromUtf8("\u00fc")));
  EXPECT_EQ(ReadAll(ansi), "[S]\r\nName=Caf\xE9 \x80\r\nOther=\xFC\r\n");
  // A character Windows-1252 lacks turns the file into UTF-8 rather than be lost.
  ASSERT_TRUE(WriteIniValue(ansi, "S", "Name", QString::fromUtf8("\u041c\u0438\u0440")));
  EXPECT_EQ(ReadAll(ansi),
            "\xEF\xBB\xBF[S]\r\nName=\xD0\x9C\xD0\xB8\xD1\x80\r\nOther=\xC3\xBC\r\n");
  EXPECT_EQ(ReadIniValue(ansi, "S", "Name", ""), QString::fromUtf8("\u041c\u0438\u0440"));

  const QString utf8 = dir.path() + "/utf8.ini";
  WriteAll(utf8, "[S]\nName=\xC3\x9C\n");
  EXPECT_EQ(ReadIniValue(utf8, "S", "Name", ""), QString::fromUtf8("\u00dc"));
  ASSERT_TRUE(WriteIniValue(utf8, "S", "k", "v"));
  EXPECT_EQ(ReadAll(utf8), "[S]\nName=\xC3\x9C\nk=v\n");

  const QString utf16 = dir.path() + "/utf16.ini";
  WriteAll(utf16, QByteArray("\xFF\xFE[\0S\0]\0\r\0\n\0k\0=\0\x14\x04\r\0\n\0", 22));
  EXPECT_EQ(ReadIniValue(utf16, "S", "k", ""), QString::fromUtf8("\u0414"));
  ASSERT_TRUE(WriteIniValue(utf16, "S", "k", "A"));
  EXPECT_EQ(ReadAll(utf16), QByteArray("\xFF\xFE[\0S\0]\0\r\0\n\0k\0=\0A\0\r\0\n\0", 22));
}

TEST(IniFile, BareNameIsTakenFromTheProgramFolder) {
  const QString name =
      "ombrelle-ini-test-" + QString::number(QCoreApplication::applicationPid()) + ".ini";
  const QString inProgramFolder = QCoreApplication::applicationDirPath() + "/" + name;
  ASSERT_TRUE(WriteIniValue(name, "S", "k", "here"));
  EXPECT_EQ(ReadAll(inProgramFolder), "[S]\r\nk=here\r\n");
  EXPECT_EQ(ReadIniValue(name, "S", "k", ""), "here");
  QFile::remove(inProgramFolder);
}

TEST(IniFile, EnumTypeText) {
  using Ranges = std::vector<std::pair<int, int>>;
  EXPECT_EQ(ParseIniEnumType("ENUM 1, 3, 5 TO 9"), Ranges({{1, 1}, {3, 3}, {5, 9}}));
  EXPECT_EQ(ParseIniEnumType("enum -2 to 2,10"), Ranges({{-2, 2}, {10, 10}}));
  EXPECT_EQ(ParseIniEnumType("ENUM 9 TO 5"), Ranges({{5, 9}}));
  EXPECT_EQ(ParseIniEnumType("LONG"), std::nullopt);
  EXPECT_EQ(ParseIniEnumType("ENUM"), std::nullopt);
  EXPECT_EQ(ParseIniEnumType("ENUM 1 TO 2 TO 3"), std::nullopt);
  EXPECT_EQ(ParseIniEnumType("ENUM one"), std::nullopt);

  QTemporaryDir dir;
  const QString path = dir.path() + "/t.ini";
  WriteAll(path, "[T]\r\nIn=7\r\nOut=4\r\nText=x\r\n");
  EXPECT_EQ(ReadIniValue(path, "T", "In", -1, "ENUM 1, 3, 5 TO 9"), 7);
  EXPECT_EQ(ReadIniValue(path, "T", "Out", -1, "ENUM 1, 3, 5 TO 9"), -1);
  EXPECT_EQ(ReadIniValue(path, "T", "Out", -1, "LONG"), 4);
  EXPECT_EQ(ReadIniValue(path, "T", "Text", -1, "ENUM 0"), 0);
}

TEST(IniFile, HostileFiles) {
  QTemporaryDir dir;
  const QString big = dir.path() + "/big.ini";
  {
    QFile file(big);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[S]\r\nk=v\r\n");
    ASSERT_TRUE(file.resize(17 * 1024 * 1024));
  }
  EXPECT_EQ(ReadIniValue(big, "S", "k", "default"), "default");
  EXPECT_FALSE(WriteIniValue(big, "S", "k", "new"));
  EXPECT_EQ(QFileInfo(big).size(), 17 * 1024 * 1024);

  const QString garbage = dir.path() + "/garbage.ini";
  QByteArray bytes;
  for (int i = 0; i < 4096; ++i) bytes += static_cast<char>((i * 7919) % 256);
  WriteAll(garbage, bytes);
  ReadIniSection(garbage, "S");
  ReadIniSectionNames(garbage);
  EXPECT_EQ(ReadIniValue(garbage, "nothing here", "k", 3), 3);
}
