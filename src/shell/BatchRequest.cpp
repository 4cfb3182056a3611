#include "shell/BatchRequest.h"

namespace ombrelle {

namespace {

struct ReportSwitch {
  const char* name;  // upper case, without the ":"
  BatchReport report;
  bool argument;  // takes a text after ":"
};

constexpr ReportSwitch kReportSwitches[] = {
    {"/STATUS", BatchReport::Status, false},
    {"/TABLE", BatchReport::Table, true},
    {"/STATS", BatchReport::Stats, true},
    {"/CHARTS", BatchReport::Charts, true},
    {"/CORRELATION", BatchReport::Correlation, true},
    {"/LIMITREPORT", BatchReport::LimitReport, false},
    {"/CHART", BatchReport::Chart, true},
};

}  // namespace

bool ParseBatchSwitch(const QString& param, BatchRequest& request) {
  const qsizetype colon = param.indexOf(QLatin1Char(':'));
  const QString name = (colon < 0 ? param : param.left(colon)).toUpper();
  const bool hasArgument = colon >= 0;
  const QString argument = hasArgument ? param.mid(colon + 1) : QString();

  if (name == QLatin1String("/WIDTH") && hasArgument) {
    request.Width = argument;
    return true;
  }
  if (name == QLatin1String("/LIMIT") && hasArgument) {
    request.Limit = argument;
    return true;
  }
  if (name == QLatin1String("/SELECTION") && hasArgument) {
    request.Selection = argument;
    return true;
  }
  for (const ReportSwitch& entry : kReportSwitches) {
    if (name != QLatin1String(entry.name)) continue;
    // "/STATUS:x" is no switch of ours; "/TABLE" without a class is, and is
    // told that it lacks one.
    if (hasArgument && !entry.argument) return false;
    request.Report = entry.report;
    request.ReportSwitch = param;
    request.Argument = argument;
    return true;
  }
  return false;
}

}  // namespace ombrelle
