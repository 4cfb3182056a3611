#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "common/MessageAssertions.h"
#include "shell/Startup.h"
#include "shell/StartupState.h"
#include "shell/TabMsgBox.h"
#include "support/ScriptedUiServices.h"
#include "support/SettingsStore.h"

using namespace ombrelle;

namespace {

constexpr int kExclamation = 48;
constexpr int kInformation = 64;

// Start-up hooks that record what the roads did instead of touching the process.
struct FakeProcess {
  QTemporaryDir dir;
  QStringList out, err;
  QStringList exported;  // "input -> output (interactive)" per export call
  QStringList edited;
  int mainWindows = 0;
  bool exportResult = true;
  QString replacedOutput;  // when set, the export changes the output name to it
  StartupHooks hooks;

  explicit FakeProcess(bool display) {
    hooks.programPath = "/opt/ombrelle/qvzview";
    hooks.currentDir = dir.path();
    hooks.hasDisplay = display;
    hooks.writeOut = [this](const QString& line) { out.append(line); };
    hooks.writeErr = [this](const QString& line) { err.append(line); };
    hooks.runMainWindow = [this] { ++mainWindows; };
    hooks.editHeader = [this](const QString& file) { edited.append(file); };
    hooks.exportXml = [this](const QString& input, QString& output, bool interactive) {
      exported.append(input + " -> " + output + (interactive ? " (interactive)" : " (silent)"));
      if (!replacedOutput.isEmpty()) output = replacedOutput;
      return exportResult;
    };
  }

  QString Path(const QString& name) const { return dir.filePath(name); }
  QString MakeFile(const QString& name) const {
    QFile file(Path(name));
    file.open(QIODevice::WriteOnly);
    file.write("x");
    return file.fileName();
  }
  int Run(const QStringList& params) { return Main(QStringList{"qvzview"} + params, hooks); }
};

const char* const kUsage =
    "qvzview in.qvz       Open in.qvz\r\n"
    "qvzview in.qvz /EDIT Edit in.qvz\r\n"
    "\r\n"
    "qvzview in.qvz /SAVE... out.xml\r\n"
    "/SAVEXML             Save in.qvz to out.xml\r\n"
    "/SAVEXMLDEL          Save in.qvz to out.xml, delete in.qvz\r\n"
    "/SAVEXMLDELS         Like /SAVEXMLDEL but silent\r\n"
    "\r\n"
    "qvzview in.qvz out.EXT [other.qvz] /SWITCH\r\n"
    "/STATUS              Project status report (.mht), compared with other.qvz\r\n"
    "/TABLE:CLASS         Page of CLASS (.csv .html .txt)\r\n"
    "/STATS:CLASS         Statistics report (.html)\r\n"
    "/CHARTS:CLASS        Charts report (.mht)\r\n"
    "/CORRELATION:CLASS   Correlation report (.html)\r\n"
    "/LIMITREPORT         Limits report (.html)\r\n"
    "/CHART:KIND:METRIC   Chart (.gif .bmp .emf .wmf .png .svg)\r\n"
    "                     KIND bar, histogram, distribution, pie, kiviat or scatter:Y\r\n"
    "/WIDTH:N             Width of a chart bitmap (1500)\r\n"
    "/LIMIT:N             Limit set, by number or name\r\n"
    "/SELECTION:N         Metric selection, by number or name\r\n"
    "CLASS, METRIC:       file, cls, proc or var; 4120 or proc.CC\r\n"
    "Exit status:         0 written, 1 not written\r\n"
    "\r\n"
    "No parameters:       Open databases on search path\r\n"
    "\r\n"
    "Include files in double quotation marks.\r\n";

}  // namespace

TEST(TabMsgBox, ExpandsTabsOneColumnBehindTheLongestLeftText) {
  TabMsgBox box;
  box.AddTabLine("ab", "right");
  box.AddLine("no tab here at all");
  box.AddTabLine("abcde", "x");
  EXPECT_EQ(box.Text(), "ab\tright\r\nno tab here at all\r\nabcde\tx\r\n");
  EXPECT_EQ(box.ExpandedText(), "ab    right\r\nno tab here at all\r\nabcde x\r\n");

  TabMsgBox plain;
  plain.AddLine("only");
  plain.AddLine("");
  EXPECT_EQ(plain.ExpandedText(), "only\r\n\r\n");
}

TEST(ShowUsage, ShowsTheExactBoxAndWritesItToStandardOutput) {
  ScopedScriptedUi scripted;
  FakeProcess process(true);
  EXPECT_EQ(process.Run({"a.qvz", "/?", "/EDIT"}), 0);

  ASSERT_EQ(scripted.ui.textBoxes.size(), 1u);
  EXPECT_EQ(scripted.ui.textBoxes[0].title, "Ombrelle Viewer command line options");
  EXPECT_EQ(scripted.ui.textBoxes[0].text.toStdString(), kUsage);
  QString lines = QString::fromLatin1(kUsage).replace("\r\n", "\n");
  lines.chop(1);
  EXPECT_EQ(process.out, (QStringList{"Ombrelle Viewer command line options", lines}));
  // Parameters around "/?" have no effect.
  EXPECT_TRUE(process.edited.isEmpty());
  EXPECT_EQ(process.mainWindows, 0);
  EXPECT_TRUE(scripted.ui.messages.empty());
}

TEST(ShowUsage, WithoutDisplayOnlyWritesToStandardOutput) {
  ScopedScriptedUi scripted;
  FakeProcess process(false);
  process.Run({"--help"});
  EXPECT_TRUE(scripted.ui.textBoxes.empty());
  ASSERT_EQ(process.out.size(), 2);
  EXPECT_TRUE(process.out[1].startsWith("qvzview in.qvz       Open in.qvz\n"));
  EXPECT_TRUE(process.err.isEmpty());
}

TEST(Main, VersionGoesToStandardOutput) {
  ScopedScriptedUi scripted;
  FakeProcess process(false);
  process.Run({"--version"});
  EXPECT_EQ(process.out, QStringList{"qvzview " + ProgramVersion()});
  EXPECT_FALSE(ProgramVersion().isEmpty());
}

TEST(EditDatabaseFile, ReportsMissingNameOrFileAndOpensExistingOnes) {
  QTemporaryDir dir;
  const QString existing = dir.filePath("db.qvz");
  QFile file(existing);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.close();
  struct Case {
    QString file;
    const char* message;  // empty: the editor opens
  };
  const Case cases[] = {
      {"", "Missing file name parameter: \r\n/EDIT \"a b\""},
      {dir.filePath("none.qvz"), ""},
      {dir.path(), ""},
      {existing, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file.toStdString());
    ScopedScriptedUi scripted;
    QStringList edited;
    EditDatabaseFile(c.file, "/EDIT \"a b\"", [&](const QString& f) { edited.append(f); });
    if (c.file == existing) {
      EXPECT_EQ(edited, QStringList{existing});
      EXPECT_TRUE(scripted.ui.messages.empty());
    } else if (c.file.isEmpty()) {
      EXPECT_TRUE(edited.isEmpty());
      EXPECT_ONLY_UI_MESSAGE(scripted.ui, c.message, kExclamation);
    } else {
      EXPECT_TRUE(edited.isEmpty());
      EXPECT_ONLY_UI_MESSAGE(scripted.ui, ("File not found: " + c.file).toStdString(),
                             kExclamation);
    }
  }
}

TEST(Main, EditRoadQuotesTheRawCommandLine) {
  ScopedScriptedUi scripted;
  FakeProcess process(true);
  process.Run({"/EDIT", "my file"});
  EXPECT_ONLY_UI_MESSAGE(scripted.ui, ("File not found: " + process.Path("my file")).toStdString(),
                         kExclamation);

  ScopedScriptedUi second;
  process.Run({"/edit", "/FOO"});
  EXPECT_ONLY_UI_MESSAGE(second.ui, "Missing file name parameter: \r\n/edit /FOO", kExclamation);
}

TEST(Main, EditWinsOverExport) {
  ScopedScriptedUi scripted;
  FakeProcess process(true);
  const QString db = process.MakeFile("a.qvz");
  process.Run({"/SAVEXML", "a.qvz", "/EDIT", "b.xml"});
  EXPECT_EQ(process.edited, QStringList{db});
  EXPECT_TRUE(process.exported.isEmpty());
  EXPECT_EQ(process.mainWindows, 0);
  EXPECT_TRUE(scripted.ui.messages.empty());
}

TEST(Main, EditWithoutDisplaySaysItNeedsOne) {
  ScopedScriptedUi scripted;
  FakeProcess process(false);
  process.MakeFile("a.qvz");
  process.Run({"a.qvz", "/EDIT"});
  EXPECT_TRUE(process.edited.isEmpty());
  ASSERT_EQ(process.err.size(), 1);
  EXPECT_TRUE(process.err[0].startsWith("qvzview: editing a database header needs a display"));
}

TEST(Main, SaveXmlRoads) {
  struct Case {
    const char* switchText;
    bool exportSucceeds;
    const char* call;  // what the exporter was asked, with the sandbox as "$"
    bool confirmed;
    bool inputKept;
  };
  const Case cases[] = {
      {"/SAVEXML", true, "$/a.qvz -> $/b.xml (interactive)", true, true},
      {"/SAVEXMLDEL", true, "$/a.qvz -> $/b.xml (interactive)", true, false},
      {"/savexmldels", true, "$/a.qvz -> $/b.xml (silent)", false, false},
      {"/SAVEXMLDEL", false, "$/a.qvz -> $/b.xml (interactive)", false, true},
      {"/SAVEXMLDELS", false, "$/a.qvz -> $/b.xml (silent)", false, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.switchText) + (c.exportSucceeds ? " ok" : " failing"));
    ScopedScriptedUi scripted;
    FakeProcess process(false);
    const QString input = process.MakeFile("a.qvz");
    process.exportResult = c.exportSucceeds;
    process.replacedOutput = process.Path("chosen.xml");  // the export may rename the output
    EXPECT_EQ(process.Run({"a.qvz", c.switchText, "b.xml"}), 0);

    EXPECT_EQ(process.exported, QStringList{QString(c.call).replace("$", process.dir.path())});
    if (c.confirmed) {
      EXPECT_ONLY_UI_MESSAGE(scripted.ui,
                             ("Metrics saved to " + process.Path("chosen.xml")).toStdString(),
                             kInformation);
      EXPECT_EQ(scripted.ui.messages[0].title, "Save metrics as XML");
    } else {
      EXPECT_TRUE(scripted.ui.messages.empty());
    }
    EXPECT_EQ(QFile::exists(input), c.inputKept);
    EXPECT_EQ(Startup().OutputFile, process.Path("chosen.xml"));  // the name the export chose
    EXPECT_EQ(process.mainWindows, 0);
  }
}

TEST(Main, ExportUnavailableKeepsTheInput) {
  ScopedScriptedUi scripted;
  FakeProcess process(false);
  process.hooks.exportXml = XmlExportUnavailable;
  const QString input = process.MakeFile("a.qvz");
  process.Run({"a.qvz", "/SAVEXMLDELS"});
  EXPECT_ONLY_UI_MESSAGE(scripted.ui, "Cannot export: XML export is not available in this build.",
                         kExclamation);
  EXPECT_TRUE(QFile::exists(input));
}

TEST(Main, BatchRoadsUseTheBatchServiceAndRestoreTheOneInForce) {
  ScopedScriptedUi scripted;
  ScriptedUiServices batch;
  FakeProcess process(true);
  process.hooks.batchUi = &batch;
  process.Run({"a.qvz", "/SAVEXML"});
  EXPECT_EQ(batch.MessageTexts(), QStringList{"Metrics saved to "});
  EXPECT_TRUE(scripted.ui.messages.empty());
  EXPECT_EQ(&Ui(), &scripted.ui);
}

TEST(Main, InteractiveRoadNeedsADisplay) {
  for (const bool display : {false, true}) {
    SCOPED_TRACE(display ? "display" : "no display");
    ScopedScriptedUi scripted;
    FakeProcess process(display);
    process.Run({"db.qvz"});
    EXPECT_EQ(Startup().InputFile, process.Path("db.qvz"));
    EXPECT_EQ(Startup().HelpFile, "/opt/ombrelle/www/pm-index.html");
    EXPECT_EQ(process.mainWindows, display ? 1 : 0);
    if (display) {
      EXPECT_TRUE(process.err.isEmpty());
    } else {
      ASSERT_EQ(process.err.size(), 1);
      EXPECT_TRUE(process.err[0].startsWith("qvzview: the viewer window needs a display"));
    }
    EXPECT_TRUE(scripted.ui.messages.empty());
  }
}

TEST(Main, DisplayChartsComesFromTheOptionsSetting) {
  ScopedScriptedUi scripted;
  FakeProcess process(false);
  DeleteSetting("Options", "DisplayCharts");
  process.Run({"/SAVEXMLDELS"});
  EXPECT_TRUE(Startup().DisplayCharts);

  SaveSetting("Options", "DisplayCharts", "0");
  process.Run({"/SAVEXMLDELS"});
  EXPECT_FALSE(Startup().DisplayCharts);
  DeleteSetting("Options", "DisplayCharts");
}

TEST(DisplayChartsFromSetting, AnyNonZeroLeadingNumberIsTrue) {
  const std::pair<const char*, bool> cases[] = {
      {"-1", true},  {"1", true},  {"0", false},   {" 0 ", false}, {"0.0", false},
      {"0.5", true}, {"2x", true}, {"abc", false}, {"", false},    {"-0", false},
  };
  for (const auto& [text, expected] : cases)
    EXPECT_EQ(DisplayChartsFromSetting(text), expected) << '"' << text << '"';
}
