#pragma once

#include <QDateTime>
#include <QString>

namespace ombrelle {

class ReportPage;

// The reports of the current page that are plain HTML: its statistics, and
// the correlation analysis made from the chart commands' correlation texts.

// The statistics report of the page: per series (grouped by class as in the
// summary table) the range and count, and where the page allows full
// statistics the average, median, deviation, shape, sum, percentiles and
// outlier fences. `when` is the save time in the closing line (now when
// invalid).
QString StatisticsReportText(const ReportPage& page, const QDateTime& when = QDateTime());
// Saves it under "Stats" and opens it; the file name, "" on failure.
QString WriteStatisticsReport(const ReportPage& page);

// The correlation report: the matrix (tab-separated, negative values marked
// "@@…$$") as a table and the regression lines as paragraphs, with the
// paragraph that explains how to read them.
QString CorrelationReportText(const QString& matrix, const QString& regression);
// Saves it under "Correlations" and opens it; the file name, "" on failure.
QString WriteCorrelationReport(const QString& matrix, const QString& regression);

}  // namespace ombrelle
