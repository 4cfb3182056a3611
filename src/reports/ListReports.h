#pragma once

#include <QString>

namespace ombrelle {

class MetricDefinitions;
class MetricLimits;
class MetricRead;

// The metrics list: every supported metric with abbreviation, name and
// description, grouped by class, or (with `sorted`) in one table ordered by
// abbreviation.
QString MetricsListText(const MetricDefinitions& definitions, bool sorted);
// Saves the list under "MetricsList" or "MetricsListSorted" and opens it;
// the file name, or "" when it could not be saved.
QString WriteMetricsList(const MetricDefinitions& definitions, bool sorted);

// The limits report of `database` under `limits`: per metric with a rule and
// values, the rule and the counts of good and problematic values. "" when
// the database does not open.
QString LimitsReportText(MetricRead& reader, int database, const MetricLimits& limits);
QString WriteLimitsReport(MetricRead& reader, int database, const MetricLimits& limits);

}  // namespace ombrelle
