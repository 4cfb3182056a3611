#include <gtest/gtest.h>

#include <QStringList>

#include "shell/CommandLine.h"
#include "shell/Startup.h"
#include "shell/StartupState.h"

using namespace ombrelle;

namespace {

std::string Joined(const QStringList& list) { return list.join(QStringLiteral("|")).toStdString(); }

QStringList NumberedWords(int first, int last) {
  QStringList words;
  for (int n = first; n <= last; ++n) words.append(QStringLiteral("p%1").arg(n));
  return words;
}

}  // namespace

TEST(SplitCommandLine, SplitsQuotesBlanksAndRecordsPositions) {
  struct Case {
    QString text;
    int maxParts;
    QStringList params;       // elements 1 to n
    std::vector<int> starts;  // their 1-based positions
  };
  const Case cases[] = {
      {"a b  c", 100, {"a", "b", "c"}, {1, 3, 6}},
      {"\"my file.qvz\" /EDIT", 100, {"my file.qvz", "/EDIT"}, {1, 15}},
      {"\"say \"\"hi\"\" now\"", 100, {"say \"hi\" now"}, {1}},
      {"\"\"\"\"", 100, {"\""}, {1}},
      // A quote never closed: an empty parameter, then the rest as a word.
      {"\"abc.qvz", 100, {"", "abc.qvz"}, {1, 2}},
      // A doubled quote does not close, so this one stays open...
      {"\"abc\"\"", 100, {"", "abc\"\""}, {1, 2}},
      // ...and one more quote closes it.
      {"\"abc\"\"\"", 100, {"abc\""}, {1}},
      // Text glued to a closing quote starts a new parameter.
      {"\"a\"b", 100, {"a", "b"}, {1, 4}},
      // A quote inside a word is an ordinary character.
      {"ab\"c d", 100, {"ab\"c", "d"}, {1, 6}},
      {"a\tb", 100, {"a", "b"}, {1, 3}},
      {"\"\" x", 100, {"", "x"}, {1, 4}},
      {"", 100, {}, {}},
      {"   ", 100, {}, {}},
      // Beyond the limit, one further parameter holds the rest unchanged.
      {"a b \"c  d\" e", 2, {"a", "b", "\"c  d\" e"}, {1, 3, 5}},
      {" x  y", 0, {"x  y"}, {2}},
  };
  for (const Case& c : cases) {
    std::vector<int> positions;
    const QStringList result = SplitCommandLine(c.text, c.maxParts, positions);
    SCOPED_TRACE(c.text.toStdString());
    ASSERT_FALSE(result.isEmpty());
    EXPECT_TRUE(result[0].isEmpty());
    EXPECT_EQ(Joined(result.mid(1)), Joined(c.params));
    ASSERT_EQ(positions.size(), result.size());
    EXPECT_EQ(positions[0], 0);
    EXPECT_EQ(std::vector<int>(positions.begin() + 1, positions.end()), c.starts);
  }
}

TEST(GetCommandLineParams, KeepsTheRestUnparsedBeyondHundredParameters) {
  const QString line = NumberedWords(1, 100).join(' ') + QStringLiteral(" \"x  y\" p102  p103");
  const QStringList params = GetCommandLineParams(100, line, "/opt/ombrelle/qvzview");
  ASSERT_EQ(params.size(), 102);
  EXPECT_EQ(params[0], "/opt/ombrelle/qvzview");
  EXPECT_EQ(params[1], "p1");
  EXPECT_EQ(params[100], "p100");
  EXPECT_EQ(params[101], "\"x  y\" p102  p103");
  // Exactly a hundred: no tail.
  EXPECT_EQ(GetCommandLineParams(100, NumberedWords(1, 100).join(' '), "q").size(), 101);
}

TEST(JoinCommandLine, SplitsBackIntoTheSameArguments) {
  const QStringList arguments = {"plain",    "with blank", "tab\there", "",          "\"leading",
                                 "in\"side", "\"\"",       "end\"",     "a \"b\" c", "/EDIT"};
  const QString line = JoinCommandLine(arguments);
  EXPECT_EQ(line.toStdString(),
            "plain \"with blank\" \"tab\there\" \"\" \"\"\"leading\" in\"side \"\"\"\"\"\" end\" "
            "\"a \"\"b\"\" c\" /EDIT");
  std::vector<int> positions;
  EXPECT_EQ(Joined(SplitCommandLine(line, 100, positions).mid(1)), Joined(arguments));
}

TEST(ParseCommandLine, FillsStartupStateFromParameters) {
  struct Case {
    QStringList params;  // without the program
    CommandLineRequest request;
    const char* input;
    const char* output;
    const char* modes;  // E edit, S save, D delete input, Q silent
    StartupRoad road;
  };
  using R = CommandLineRequest;
  using Road = StartupRoad;
  const Case cases[] = {
      {{}, R::Run, "", "", "", Road::MainWindow},
      {{"a.qvz"}, R::Run, "/base/a.qvz", "", "", Road::MainWindow},
      // A third file name is ignored.
      {{"a.qvz", "b.xml", "c.txt"}, R::Run, "/base/a.qvz", "/base/b.xml", "", Road::MainWindow},
      // An absolute path is a file name, not a switch.
      {{"/home/me/a.qvz", "/SAVEXML"}, R::Run, "/home/me/a.qvz", "", "S", Road::SaveXml},
      {{"/savexml", "a.qvz", "out/../b.xml"},
       R::Run,
       "/base/a.qvz",
       "/base/b.xml",
       "S",
       Road::SaveXml},
      {{"a.qvz", "/SAVEXMLDEL"}, R::Run, "/base/a.qvz", "", "SD", Road::SaveXml},
      {{"/SaveXmlDelS", "a.qvz", "b.xml"},
       R::Run,
       "/base/a.qvz",
       "/base/b.xml",
       "SDQ",
       Road::SaveXml},
      // "/EDIT" wins over an export switch.
      {{"/EDIT", "/SAVEXML", "a.qvz"}, R::Run, "/base/a.qvz", "", "ES", Road::EditHeader},
      {{"a.qvz", "/edit"}, R::Run, "/base/a.qvz", "", "E", Road::EditHeader},
      // Unknown switches are accepted and do nothing.
      {{"/FOO", "x.qvz", "/", "/savexmlx"}, R::Run, "/base/x.qvz", "", "", Road::MainWindow},
      // An empty name leaves its slot empty for the next one.
      {{"", "b.qvz"}, R::Run, "/base/b.qvz", "", "", Road::MainWindow},
      {{"../up/x.qvz"}, R::Run, "/up/x.qvz", "", "", Road::MainWindow},
      // Usage stops the parse: what follows has no effect.
      {{"a.qvz", "/?", "/EDIT", "b.xml"}, R::ShowUsage, "/base/a.qvz", "", "", Road::MainWindow},
      {{"-h", "/EDIT"}, R::ShowUsage, "", "", "", Road::MainWindow},
      {{"--help"}, R::ShowUsage, "", "", "", Road::MainWindow},
      {{"--version", "/SAVEXML"}, R::ShowVersion, "", "", "", Road::MainWindow},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(Joined(c.params));
    StartupState state;
    const CommandLineRequest request =
        ParseCommandLine(QStringList{"/usr/bin/qvzview"} + c.params, state, "/base");
    const QString modes = QString::fromLatin1(c.modes);
    EXPECT_EQ(request, c.request);
    EXPECT_EQ(state.InputFile.toStdString(), c.input);
    EXPECT_EQ(state.OutputFile.toStdString(), c.output);
    EXPECT_EQ(state.EditMode, modes.contains('E'));
    EXPECT_EQ(state.SaveMode, modes.contains('S'));
    EXPECT_EQ(state.DeleteInput, modes.contains('D'));
    EXPECT_EQ(state.SilentMode, modes.contains('Q'));
    EXPECT_EQ(ChooseRoad(state), c.road);
  }
}

TEST(ParseCommandLine, UnclosedQuoteLetsTheWordBehindFillTheInput) {
  StartupState state;
  ParseCommandLine(GetCommandLineParams(100, "\"abc.qvz out.xml", "q"), state, "/base");
  EXPECT_EQ(state.InputFile, "/base/abc.qvz");
  EXPECT_EQ(state.OutputFile, "/base/out.xml");
}

TEST(IsSwitch, OnlyOneLeadingSlash) {
  EXPECT_TRUE(IsSwitch("/EDIT"));
  EXPECT_TRUE(IsSwitch("/?"));
  EXPECT_TRUE(IsSwitch("/"));
  EXPECT_FALSE(IsSwitch("/tmp/a.qvz"));
  EXPECT_FALSE(IsSwitch("/SAVEXML/"));
  EXPECT_FALSE(IsSwitch("EDIT"));
  EXPECT_FALSE(IsSwitch(""));
}
