#pragma once

#include <functional>

#include <QString>
#include <QStringList>

#include "support/Filename.h"

namespace ombrelle {

class TabMsgBox;
class UiServices;
struct StartupState;

// Exports database `input` to XML file `output` (which the export may
// replace); `interactive` allows the overwrite question. True on success.
using XmlExportFunction =
    std::function<bool(const QString& input, QString& output, bool interactive)>;
// Shows the header dialog for an existing database, modally.
using HeaderEditFunction = std::function<void(const QString& file)>;

// The export used until the XML writer is part of the build: says so and fails.
bool XmlExportUnavailable(const QString& input, QString& output, bool interactive);
// The header dialog used until it is part of the build: says so.
void HeaderEditUnavailable(const QString& file);

// The program's version, as "--version" prints it after the program name.
QString ProgramVersion();

// What Main needs from the process and from the window library. The program
// fills it from the real process; tests fill it with fakes.
struct StartupHooks {
  QString programPath;  // full path of the program
  QString currentDir;   // base for relative file names; empty: the process's
  bool hasDisplay = false;

  std::function<void(const QString&)> writeOut;  // standard output, one line
  std::function<void(const QString&)> writeErr;  // standard error, one line

  // The user-interface services of the roads; null keeps the service in force.
  UiServices* interactiveUi = nullptr;  // main window and usage box
  UiServices* batchUi = nullptr;        // the "/EDIT" and "/SAVEXML" roads

  // The main window: shows it and runs until the last window closes.
  std::function<void()> runMainWindow;
  HeaderEditFunction editHeader = HeaderEditUnavailable;
  XmlExportFunction exportXml = XmlExportUnavailable;
  // Deletes the input after an export; failures are not reported.
  std::function<bool(const QString&)> deleteFile = DeleteFile;
};

// The roads of the program: the three described ones and the report,
// table and chart switches.
enum class StartupRoad { MainWindow, EditHeader, SaveXml, BatchReport };

// The entry point: reads the start-up setting, names the help file, parses
// `arguments` (element 0 the program, as the process got them) into Startup()
// and takes one road. The exit status: 0, but for the report, table and
// chart switches, which end with 1 when their file was not written.
int Main(const QStringList& arguments, const StartupHooks& hooks);

// The road `state` asks for: "/EDIT" wins over the export switches, which
// win over the report, table and chart switches.
StartupRoad ChooseRoad(const StartupState& state);

// True when `arguments` (as Main takes them) ask for a report, table or
// chart file: that road draws text and pictures and so needs the GUI
// module's fonts even where there is no display.
bool TakesBatchReportRoad(const QStringList& arguments);

// The usage box's content.
TabMsgBox UsageBox();
// The usage box's title.
QString UsageTitle();
// Writes the usage to standard output and, with a display, shows the box.
void ShowUsage(const StartupHooks& hooks);

// The "/EDIT" road: checks the name, then hands an existing file to `editor`.
// `rawCommandLine` is quoted when the name is missing.
void EditDatabaseFile(const QString& file, const QString& rawCommandLine,
                      const HeaderEditFunction& editor);

// The "/SAVEXML" road: exports, confirms unless silent and deletes the input
// when asked, only after success. True when the export succeeded.
bool SaveDatabaseAsXml(StartupState& state, const XmlExportFunction& exportXml,
                       const std::function<bool(const QString&)>& deleteFile);

// The numeric value of the "DisplayCharts" setting text: anything but zero
// (a text without a leading number counts as zero) draws charts.
bool DisplayChartsFromSetting(const QString& value);

}  // namespace ombrelle
