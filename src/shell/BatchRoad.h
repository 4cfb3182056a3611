#pragma once

#include <functional>

#include <QString>

#include "core/MetricDefinitions.h"

namespace ombrelle {

struct StartupState;

// Page of the files, classes, procedures or variables of one analysis for a
// class's short name ("file", "cls", "proc", "var", any case); 0 for any
// other text.
int PageOfClassName(const QString& name);

// A metric given by its number ("4120") or as class and abbreviation
// ("proc.CC", any case); 0 when the text names no supported metric.
MetricId ParseMetricText(const QString& text, const MetricDefinitions& definitions);

// The road of the report, table and chart switches: builds the page model
// without a window, as the window would stand after its commands, and writes
// the one file asked for through the same code as the window's command, to
// a temporary name renamed into place. Settings changed on the way (the
// limit set and selection of "/LIMIT" and "/SELECTION", the folder of the
// input) are changed for this run only. Nothing is shown: every message the
// commands raise, and the reason of a failure, goes to `writeErr` one line
// each. The exit status: 0 when the file was written, 1 otherwise (and then
// no file was made or changed).
int RunBatchReport(const StartupState& state, const std::function<void(const QString&)>& writeErr);

}  // namespace ombrelle
