#pragma once

#include "core/MetricCatalog.h"
#include "stats/MetricFormula.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace ombrelle {

// A metric number; its range gives its class.
using MetricId = std::int32_t;

// Class of object a metric measures; the rows of one table of a database.
enum MetricClass : int {
  ClassProject = 0,
  ClassFile = 1,
  ClassClass = 2,
  ClassProcedure = 3,
  ClassVariable = 4,
};

inline constexpr int kMetricClassCount = 5;

// Every loop over the catalogue runs through these numbers, ascending.
inline constexpr MetricId kFirstMetricId = 1000;
inline constexpr MetricId kLastMetricId = 5101;
// The analysis date and its age in days: columns of every page, whatever the
// metric class.
inline constexpr MetricId kMetricDate = 1000;
inline constexpr MetricId kMetricDays = 1001;

// Text kinds of GetMetricName.
enum MetricNameKind : int {
  NameAbbreviation = 0,
  NameLong = 1,
  NameDescription = 2,  // description, then " ABBR=formula" when there is a formula text
  NameFormula = 3,
};

// The program's fixed vocabulary of metrics: names, descriptions, display
// formats, theoretical ranges and the recipes of derived metrics, all compiled
// in. Owns only the table of supported numbers, built on first use.
class MetricDefinitions {
 public:
  // Text of `kind` (a MetricNameKind) for `id`; empty for an unknown id or kind.
  QString GetMetricName(MetricId id, int kind) const;

  // "Project", "File", "Class", "Procedure", "Variable" or, with `shortName`,
  // "proj", "file", "cls", "proc", "var"; empty outside 0 to 4.
  static QString GetMetricClassName(int metricClass, bool shortName);

  // Class of any integer: below 2000 project, 5000 and above variable.
  static MetricClass GetMetricClass(MetricId id);

  // True when `id` lies in 1000..5101 and has a long name.
  bool MetricSupported(MetricId id) const;

  // Display format code (of FormatMetric); 0 for anything unknown.
  int GetMetricFormat(MetricId id) const;

  // Format for a kind of display: `use` 0 is the plain value; other uses show
  // averages and the like, which need a decimal more than whole numbers; `use`
  // 2 of a date shows a whole number of days.
  int GetMetricUseFormat(MetricId id, int use) const;

  // Theoretical range; no bounds for an unknown id.
  MetricRange GetMetricRange(MetricId id) const;

  // Recipe of `id`. `formula` is reset first, so WholeNumber is true even
  // when there is no recipe and false is returned.
  bool GetMetricFormula(MetricId id, MetricFormula& formula) const;

  // Project size in words from its line count.
  static QString SizeCategory(double lines);

  // Whether the table of supported numbers has been built (for tests).
  bool SupportTableBuilt() const { return !m_supported.empty(); }

 private:
  mutable std::vector<bool> m_supported;  // index id - kFirstMetricId
};

}  // namespace ombrelle
