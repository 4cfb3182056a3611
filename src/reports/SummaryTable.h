#pragma once

#include <QString>

namespace ombrelle {

class CString;
class ReportPage;

// The heading of a group of the summary: "<Class> metric" for the project
// class and the page's own class, else "<page class> average" (the per-item
// averages on a project page).
QString ClassHeading(const ReportPage& page, int metricClass);

// Appends the summary table of the page's series (one row per metric,
// grouped by class) to `out`: "<H1>Summary</H1>" and a TABLE of class
// "summary", empty when the page is not loaded.
void WriteSummaryTable(const ReportPage& page, CString& out);

}  // namespace ombrelle
