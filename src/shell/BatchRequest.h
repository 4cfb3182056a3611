#pragma once

#include <QString>

namespace ombrelle {

// The report, table or chart a command-line switch asks to be written
// without a window.
enum class BatchReport {
  None,
  Status,       // "/STATUS": project status report (web archive)
  Table,        // "/TABLE:CLASS": the page as the table export writes it
  Stats,        // "/STATS:CLASS": statistics report of the page
  Charts,       // "/CHARTS:CLASS": charts report of the page (web archive)
  Correlation,  // "/CORRELATION:CLASS": correlation report of the page
  LimitReport,  // "/LIMITREPORT": limits report with the limit set in force
  Chart,        // "/CHART:KIND:METRIC": one chart as a picture
};

// The batch switches of one command line, as given; checked when the road
// runs, so that every fault is told with the switch that caused it.
struct BatchRequest {
  BatchReport Report = BatchReport::None;  // the last report switch wins
  QString ReportSwitch;                    // that switch as typed ("/table:proc")
  QString Argument;                        // its text after the first ":"
  QString Width;                           // "/WIDTH:N", the N; empty when not given
  QString Limit;                           // "/LIMIT:N", number or name
  QString Selection;                       // "/SELECTION:N", number or name
};

// Takes `param`, a switch, into `request` when it is one of the batch
// switches (any case); false for any other switch. Names and numbers after
// the ":" keep their case.
bool ParseBatchSwitch(const QString& param, BatchRequest& request);

}  // namespace ombrelle
