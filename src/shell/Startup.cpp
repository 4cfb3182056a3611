#include "shell/Startup.h"

#include <QFileInfo>
#include <QRegularExpression>

#include "shell/BatchRoad.h"
#include "shell/CommandLine.h"
#include "shell/StartupState.h"
#include "shell/TabMsgBox.h"
#include "support/ProgramFolders.h"
#include "support/SettingsStore.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

// The command line is split into at most this many parameters.
constexpr int kMaxParams = 100;

// Puts a road's user-interface service in force for the life of the object;
// a null service keeps the one in force.
class ScopedUiService {
 public:
  explicit ScopedUiService(UiServices* service)
      : m_installed(service != nullptr), m_previous(m_installed ? SetUi(service) : nullptr) {}
  ~ScopedUiService() {
    if (m_installed) SetUi(m_previous);
  }
  ScopedUiService(const ScopedUiService&) = delete;
  ScopedUiService& operator=(const ScopedUiService&) = delete;

 private:
  bool m_installed;
  UiServices* m_previous;
};

void WriteLine(const std::function<void(const QString&)>& write, const QString& text) {
  if (write) write(text);
}

QString NeedsDisplay(const QString& what) {
  return QStringLiteral(
             "qvzview: %1 needs a display, and neither DISPLAY nor WAYLAND_DISPLAY "
             "is set. Without a display, use /SAVEXML to export a database to XML; "
             "qvzview /? lists the options.")
      .arg(what);
}

}  // namespace

bool XmlExportUnavailable(const QString&, QString&, bool) {
  Ui().MsgBox(QStringLiteral("Cannot export: XML export is not available in this build."),
              MsgStyle::Exclamation, UiServices::AppTitle());
  return false;
}

void HeaderEditUnavailable(const QString&) {
  Ui().MsgBox(QStringLiteral("Cannot edit: header editing is not available in this build."),
              MsgStyle::Exclamation, UiServices::AppTitle());
}

QString ProgramVersion() { return QStringLiteral(OMBRELLE_VERSION); }

bool DisplayChartsFromSetting(const QString& value) {
  // The leading number of the text, as a number reader that stops at the
  // first character it cannot use; no number at all counts as zero.
  static const QRegularExpression leadingNumber(
      QStringLiteral("^\\s*([+-]?(?:\\d+\\.?\\d*|\\.\\d+)(?:[eE][+-]?\\d+)?)"));
  const QRegularExpressionMatch match = leadingNumber.match(value);
  if (!match.hasMatch()) return false;
  return match.captured(1).toDouble() != 0.0;
}

StartupRoad ChooseRoad(const StartupState& state) {
  if (state.EditMode) return StartupRoad::EditHeader;
  if (state.SaveMode) return StartupRoad::SaveXml;
  if (state.Batch.Report != BatchReport::None) return StartupRoad::BatchReport;
  return StartupRoad::MainWindow;
}

bool TakesBatchReportRoad(const QStringList& arguments) {
  StartupState state;
  const QStringList params =
      GetCommandLineParams(kMaxParams, JoinCommandLine(arguments.mid(1)), arguments.value(0));
  return ParseCommandLine(params, state) == CommandLineRequest::Run &&
         ChooseRoad(state) == StartupRoad::BatchReport;
}

namespace {

// The report, table and chart switches in the usage box.
void AddBatchUsage(TabMsgBox& box) {
  box.AddLine(QStringLiteral("qvzview in.qvz out.EXT [other.qvz] /SWITCH"));
  box.AddTabLine(QStringLiteral("/STATUS"),
                 QStringLiteral("Project status report (.mht), compared with other.qvz"));
  box.AddTabLine(QStringLiteral("/TABLE:CLASS"), QStringLiteral("Page of CLASS (.csv .html .txt)"));
  box.AddTabLine(QStringLiteral("/STATS:CLASS"), QStringLiteral("Statistics report (.html)"));
  box.AddTabLine(QStringLiteral("/CHARTS:CLASS"), QStringLiteral("Charts report (.mht)"));
  box.AddTabLine(QStringLiteral("/CORRELATION:CLASS"),
                 QStringLiteral("Correlation report (.html)"));
  box.AddTabLine(QStringLiteral("/LIMITREPORT"), QStringLiteral("Limits report (.html)"));
  box.AddTabLine(QStringLiteral("/CHART:KIND:METRIC"),
                 QStringLiteral("Chart (.gif .bmp .emf .wmf .png .svg)"));
  box.AddTabLine(QString(),
                 QStringLiteral("KIND bar, histogram, distribution, pie, kiviat or scatter:Y"));
  box.AddTabLine(QStringLiteral("/WIDTH:N"), QStringLiteral("Width of a chart bitmap (1500)"));
  box.AddTabLine(QStringLiteral("/LIMIT:N"), QStringLiteral("Limit set, by number or name"));
  box.AddTabLine(QStringLiteral("/SELECTION:N"),
                 QStringLiteral("Metric selection, by number or name"));
  box.AddTabLine(QStringLiteral("CLASS, METRIC:"),
                 QStringLiteral("file, cls, proc or var; 4120 or proc.CC"));
  box.AddTabLine(QStringLiteral("Exit status:"), QStringLiteral("0 written, 1 not written"));
}

}  // namespace

TabMsgBox UsageBox() {
  TabMsgBox box;
  box.AddTabLine(QStringLiteral("qvzview in.qvz"), QStringLiteral("Open in.qvz"));
  box.AddTabLine(QStringLiteral("qvzview in.qvz /EDIT"), QStringLiteral("Edit in.qvz"));
  box.AddLine(QString());
  box.AddLine(QStringLiteral("qvzview in.qvz /SAVE... out.xml"));
  box.AddTabLine(QStringLiteral("/SAVEXML"), QStringLiteral("Save in.qvz to out.xml"));
  box.AddTabLine(QStringLiteral("/SAVEXMLDEL"),
                 QStringLiteral("Save in.qvz to out.xml, delete in.qvz"));
  box.AddTabLine(QStringLiteral("/SAVEXMLDELS"), QStringLiteral("Like /SAVEXMLDEL but silent"));
  box.AddLine(QString());
  AddBatchUsage(box);
  box.AddLine(QString());
  box.AddTabLine(QStringLiteral("No parameters:"), QStringLiteral("Open databases on search path"));
  box.AddLine(QString());
  box.AddLine(QStringLiteral("Include files in double quotation marks."));
  return box;
}

QString UsageTitle() { return UiServices::AppTitle() + QStringLiteral(" command line options"); }

void ShowUsage(const StartupHooks& hooks) {
  const TabMsgBox box = UsageBox();
  // The usage always reaches standard output, with line feeds only, so it can
  // be read in a terminal or piped.
  QString text = box.ExpandedText();
  text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  if (text.endsWith(QLatin1Char('\n'))) text.chop(1);
  WriteLine(hooks.writeOut, UsageTitle());
  WriteLine(hooks.writeOut, text);
  if (hooks.hasDisplay) box.Display(UsageTitle());
}

void EditDatabaseFile(const QString& file, const QString& rawCommandLine,
                      const HeaderEditFunction& editor) {
  if (file.isEmpty()) {
    Ui().MsgBox(QStringLiteral("Missing file name parameter: \r\n") + rawCommandLine,
                MsgStyle::Exclamation, UiServices::AppTitle());
    return;
  }
  if (QFileInfo(file).isFile()) {
    if (editor) editor(file);
    return;
  }
  Ui().MsgBox(QStringLiteral("File not found: ") + file, MsgStyle::Exclamation,
              UiServices::AppTitle());
}

bool SaveDatabaseAsXml(StartupState& state, const XmlExportFunction& exportXml,
                       const std::function<bool(const QString&)>& deleteFile) {
  const XmlExportFunction run = exportXml ? exportXml : XmlExportFunction(XmlExportUnavailable);
  if (!run(state.InputFile, state.OutputFile, !state.SilentMode)) return false;  // input stays
  if (!state.SilentMode) {
    Ui().MsgBox(QStringLiteral("Metrics saved to ") + state.OutputFile, MsgStyle::Information,
                QStringLiteral("Save metrics as XML"));
  }
  // A failed delete is not reported: the export itself succeeded.
  if (state.DeleteInput && deleteFile) deleteFile(state.InputFile);
  return true;
}

int Main(const QStringList& arguments, const StartupHooks& hooks) {
  StartupState& state = Startup();
  state = StartupState{};
  state.DisplayCharts = DisplayChartsFromSetting(
      GetSetting(QStringLiteral("Options"), QStringLiteral("DisplayCharts"), QStringLiteral("-1")));
  state.HelpFile =
      ProgramDataFolder(QFileInfo(hooks.programPath).absolutePath(), QStringLiteral("www")) +
      QStringLiteral("/pm-index.html");

  // The process got its arguments already split; joined back into one line
  // they are split by the program's own rules, which also caps their number.
  state.RawCommandLine = JoinCommandLine(arguments.mid(1));
  const QStringList params =
      GetCommandLineParams(kMaxParams, state.RawCommandLine, hooks.programPath);

  switch (ParseCommandLine(params, state, hooks.currentDir)) {
    case CommandLineRequest::ShowUsage: {
      ScopedUiService ui(hooks.interactiveUi);
      ShowUsage(hooks);
      return 0;
    }
    case CommandLineRequest::ShowVersion:
      WriteLine(hooks.writeOut, QStringLiteral("qvzview ") + ProgramVersion());
      return 0;
    case CommandLineRequest::Run:
      break;
  }

  switch (ChooseRoad(state)) {
    case StartupRoad::EditHeader: {
      ScopedUiService ui(hooks.batchUi);
      HeaderEditFunction editor = hooks.editHeader;
      if (!hooks.hasDisplay) {
        editor = [&hooks](const QString&) {
          WriteLine(hooks.writeErr, NeedsDisplay(QStringLiteral("editing a database header")));
        };
      }
      EditDatabaseFile(state.InputFile, state.RawCommandLine, editor);
      return 0;
    }
    case StartupRoad::SaveXml: {
      ScopedUiService ui(hooks.batchUi);
      SaveDatabaseAsXml(state, hooks.exportXml, hooks.deleteFile);
      return 0;
    }
    case StartupRoad::BatchReport:
      return RunBatchReport(state, hooks.writeErr);
    case StartupRoad::MainWindow:
      break;
  }

  if (!hooks.hasDisplay) {
    WriteLine(hooks.writeErr, NeedsDisplay(QStringLiteral("the viewer window")));
    return 0;
  }
  ScopedUiService ui(hooks.interactiveUi);
  if (hooks.runMainWindow) hooks.runMainWindow();
  return 0;
}

}  // namespace ombrelle
