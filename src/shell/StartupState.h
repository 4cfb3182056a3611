#pragma once

#include <QString>

#include "shell/BatchRequest.h"

namespace ombrelle {

// What the command line and the one start-up setting decided. Written once by
// Main and ParseCommandLine, read by the main window afterwards; the XML export
// may replace OutputFile and the charts menu entry toggles DisplayCharts.
struct StartupState {
  QString InputFile;         // first file name, absolute
  QString OutputFile;        // second file name, absolute
  QString CompareFile;       // third file name, absolute: the analysis "/STATUS" compares with
  bool EditMode = false;     // "/EDIT"
  bool SaveMode = false;     // one of the "/SAVEXML" switches
  bool DeleteInput = false;  // delete the input after a successful export
  bool SilentMode = false;   // no overwrite question, no confirmation
  bool DisplayCharts = true;
  BatchRequest Batch;      // the report, table or chart switches
  QString RawCommandLine;  // the parameters as one line, without the program
  QString HelpFile;        // the help start page beside the program
};

// The program's one start-up state.
StartupState& Startup();

}  // namespace ombrelle
