#pragma once

#include <QString>

#include "core/MetricDefinitions.h"

namespace ombrelle {

class MetricRead;
class MetricRetriever;

// The pictures of the project status report. Each returns "" when nothing
// can be drawn, and the report then leaves the picture out with its tag.
class StatusPictures {
 public:
  virtual ~StatusPictures() = default;
  // The URL of the chart comparing the lines of the two analyses.
  virtual QString LinesCompare(MetricRead& first, MetricRead& second) = 0;
  // The URL of the pie of code, comment and empty lines of analysis
  // `number` (1 or 2).
  virtual QString LinesPie(MetricRead& reader, int number) = 0;
  // The whole IMG tag of the histogram of `metric` over both analyses.
  virtual QString Histogram(const MetricRetriever& retriever, MetricId metric) = 0;
};

// The body of the project status report, from the line naming the analyses
// to the paragraph on class design. `name` and `name2` are the analyses'
// names, already escaped ("" for no comparison).
QString StatusReportBody(const MetricRetriever& retriever, StatusPictures& pictures,
                         const QString& name, const QString& name2);

}  // namespace ombrelle
