#include "reports/PageReports.h"

#include "reports/CorrelationHtml.h"
#include "reports/ReportFrame.h"
#include "reports/ReportPage.h"
#include "reports/SummaryTable.h"
#include "stats/CStats.h"
#include "support/CString.h"
#include "support/FormatNum.h"
#include "support/SeriesText.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

const QString kNotFull = QStringLiteral(
    "<P>Not all statistics are available on the selected page. Full statistics are not shown "
    "because several versions of the same project can be visible, which causes distorted "
    "statistics. Select another page.</P>");

// The heading row of a class group.
QString StatsHeader(const ReportPage& page, int metricClass, bool full) {
  QString header = QStringLiteral("<TR><TH>") + ClassHeading(page, metricClass) +
                   QStringLiteral("</TH><TH>Name</TH>") +
                   QStringLiteral("<TH CLASS=\"min\">Min</TH><TH CLASS=\"max\">Max</TH>") +
                   QStringLiteral("<TH>Count</TH>");
  if (full) {
    header += QStringLiteral(
        "<TH>Average</TH><TH>Median</TH><TH>StdDev</TH><TH>Skew</TH><TH>Kurtosis</TH>"
        "<TH>Sum</TH><TH>5%..95%</TH><TH>Outliers</TH><TH>Extreme outliers</TH>");
  }
  return header + QStringLiteral("</TR>");
}

}  // namespace

QString StatisticsReportText(const ReportPage& page, const QDateTime& when) {
  const QString title = QStringLiteral("Metric statistics");
  CString text;
  text.Append(ReportHead(title, false));
  text.Append(ReportStyle());
  text.AppendLine(QStringLiteral("</HEAD><BODY>"));
  text.AppendLine(QStringLiteral("<H1>") + title + QStringLiteral("</H1>"));
  text.AppendLine(QStringLiteral("<P>") + EscapedHTML(page.PageTitle()) + QStringLiteral("</P>"));
  const bool full = page.FullStatsAvailable();
  if (!full) text.AppendLine(kNotFull);
  text.AppendLine(QStringLiteral("<TABLE CLASS=\"stats\">"));
  if (page.Loaded()) {
    const MetricDefinitions& definitions = page.Definitions();
    int lastClass = -1;
    int counter = 0;
    for (int i = 1; i <= page.SeriesCount(); ++i) {
      CStats* stats = page.SeriesStats(i);
      if (!stats) continue;
      const MetricId id = page.SeriesMetric(i);
      const int metricClass = MetricDefinitions::GetMetricClass(id);
      if (metricClass != lastClass) {
        lastClass = metricClass;
        text.AppendLine(StatsHeader(page, metricClass, full));
      }
      const auto cell = [&text](const char* kind, const QString& value) {
        text.AppendLine(QStringLiteral(" <TD CLASS=\"data ") + QLatin1String(kind) +
                        QStringLiteral("\">") + EscapedHTML(value) + QStringLiteral("</TD>"));
      };
      text.AppendLine(QStringLiteral("<TR VALIGN=\"TOP\" CLASS=\"R") +
                      QString::number(counter % 2 + 1) + QStringLiteral("\">"));
      ++counter;
      text.AppendLine(QStringLiteral(" <TD CLASS=\"abbr\">") + EscapedHTML(page.SeriesCaption(i)) +
                      QStringLiteral("</TD>"));
      text.AppendLine(QStringLiteral(" <TD CLASS=\"name\">") +
                      EscapedHTML(definitions.GetMetricName(id, NameLong)) +
                      QStringLiteral("</TD>"));
      // The texts of the statistics panel: a blank series has its count
      // only, and dashes where the fences would be.
      const bool any = stats->count() > 0;
      const int f0 = page.MetricFormatOnPage(id, 0);
      const int f1 = page.MetricFormatOnPage(id, 1);
      const int f2 = page.MetricFormatOnPage(id, 2);
      cell("min", any ? FormatMetric(f0, stats->Min) : QString());
      cell("max", any ? FormatMetric(f0, stats->Max) : QString());
      cell("count", FormatMetric(1, stats->count()));
      if (full) {
        cell("avg", any ? FormatMetric(f1, stats->Mean) : QString());
        cell("median", any ? FormatMetric(f1, stats->Median()) : QString());
        cell("stddev", any ? FormatMetric(f2, stats->StdDev) : QString());
        cell("skew", any ? SkewText(*stats, QString()) : QString());
        cell("kurt", any ? KurtosisText(*stats, QString()) : QString());
        cell("sum", any ? page.SumText(i) : QString());
        cell("q5q95", any ? FormatMetric(f0, stats->Q5()) + QStringLiteral("..") +
                                FormatMetric(f0, stats->Q95())
                          : QString());
        cell("out", OutlierText(*stats, f0, false, false));
        cell("exout", OutlierText(*stats, f0, true, false));
      }
      text.AppendLine(QStringLiteral("</TR>"));
    }
  }
  text.AppendLine(QStringLiteral("</TABLE>"));
  text.AppendLine(SavedByText(QStringLiteral("Saved by "), when));
  text.AppendLine(QStringLiteral("</BODY></HTML>"));
  return text.Value();
}

QString WriteStatisticsReport(const ReportPage& page) {
  BusyCursor busy;
  return SaveAndOpenReport(StatisticsReportText(page), QStringLiteral("Stats"));
}

QString CorrelationReportText(const QString& matrix, const QString& regression) {
  CString text;
  text.Append(ReportHead(QStringLiteral("Correlation analysis"), false));
  text.Append(ReportStyle());
  text.AppendLine(QStringLiteral("</HEAD><BODY>"));
  text.AppendLine(QStringLiteral("<H1>Correlation analysis</H1>"));
  text.AppendLine(CorrelationMatrixHtml(matrix));
  text.AppendLine(
      QStringLiteral("<P>Correlation varies in the range -1..+1. Values close to -1 or 1 indicate "
                     "heavy correlation. A value closer to 0 means lower correlation. "
                     "Each pair of metrics for which a correlation value is given is "
                     "significantly correlated: correlation passed the significance test "
                     "(p&lt;5%). An empty cell means that pair of metrics is not correlated.</P>"));
  text.AppendLine(QStringLiteral("<H2>Regression analysis</H2>"));
  text.AppendLine(RegressionHtml(regression));
  text.AppendLine(ReportFooter(QString()));
  text.AppendLine(QStringLiteral("</BODY></HTML>"));
  return text.Value();
}

QString WriteCorrelationReport(const QString& matrix, const QString& regression) {
  return SaveAndOpenReport(CorrelationReportText(matrix, regression),
                           QStringLiteral("Correlations"));
}

}  // namespace ombrelle
