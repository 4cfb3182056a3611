#pragma once

#include <QString>

#include "core/MetricDefinitions.h"

namespace ombrelle {

class MetricRead;
class MetricRetriever;
class MHTSaver;

// The pictures of the project status report. Each returns "" when nothing
// can be drawn, and the report then leaves the picture out with its tag.
class StatusPictures {
 public:
  virtual ~StatusPictures() = default;
  // The URL of the chart comparing the lines of the two analyses.
  virtual QString LinesCompare(MHTSaver& saver, MetricRead& first, MetricRead& second) = 0;
  // The URL of the pie of code, comment and empty lines of analysis
  // `number` (1 or 2).
  virtual QString LinesPie(MHTSaver& saver, MetricRead& reader, int number) = 0;
  // The whole IMG tag of the histogram of `metric` over both analyses.
  virtual QString Histogram(MHTSaver& saver, const MetricRetriever& retriever, MetricId metric) = 0;
};

// The body of the project status report, from the line naming the analyses
// to the paragraph on class design. `name` and `name2` are the analyses'
// names, already escaped ("" for no comparison).
QString StatusReportBody(const MetricRetriever& retriever, StatusPictures& pictures,
                         MHTSaver& saver, const QString& name, const QString& name2);

// Writes the project status report of `database` (compared with `database2`
// when above 0; indexes of `reader`'s list) as a web archive in the reports
// folder and opens it. A failure is shown in a box and leaves no file.
// Returns the archive's name, "" on failure.
QString WriteStatusReport(MetricRead& reader, int database, int database2,
                          StatusPictures& pictures);
// The same report written to `file`, which is not opened. True when written;
// a failure has been shown in a box.
bool WriteStatusReportFile(MetricRead& reader, int database, int database2,
                           StatusPictures& pictures, const QString& file);

}  // namespace ombrelle
