#include "reports/SummaryTable.h"

#include "reports/ReportFrame.h"
#include "reports/ReportPage.h"
#include "stats/CStats.h"
#include "support/CString.h"
#include "support/FormatNum.h"

namespace ombrelle {

QString ClassHeading(const ReportPage& page, int metricClass) {
  const int pageClass = page.MetricClassOfPage();
  if (metricClass == ClassProject || metricClass == pageClass)
    return MetricDefinitions::GetMetricClassName(metricClass, false) + QStringLiteral(" metric");
  return MetricDefinitions::GetMetricClassName(pageClass, false) + QStringLiteral(" average");
}

void WriteSummaryTable(const ReportPage& page, CString& out) {
  out.AppendLine(QStringLiteral("<H1>Summary</H1>"));
  out.AppendLine(QStringLiteral("<TABLE CLASS=\"summary\">"));
  if (page.Loaded()) {
    const bool full = page.FullStatsAvailable();
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
        QString header = QStringLiteral("<TR><TH>") + ClassHeading(page, metricClass) +
                         QStringLiteral("</TH><TH>Name</TH>");
        if (full) header += QStringLiteral("<TH>Average</TH>");
        header += QStringLiteral("<TH CLASS=\"min\">Min</TH><TH CLASS=\"max\">Max</TH>");
        if (full) header += QStringLiteral("<TH CLASS=\"outliers\">Outliers</TH>");
        header += QStringLiteral("<TH CLASS=\"description\">Description</TH></TR>");
        out.AppendLine(header);
      }
      const int count = stats->count();
      const int format0 = page.MetricFormatOnPage(id, 0);
      out.AppendLine(QStringLiteral("<TR VALIGN=\"TOP\" CLASS=\"R") +
                     QString::number(counter % 2 + 1) + QStringLiteral("\">"));
      ++counter;
      out.AppendLine(QStringLiteral(" <TD CLASS=\"abbr\">") + EscapedHTML(page.SeriesCaption(i)) +
                     QStringLiteral("</TD>"));
      out.AppendLine(QStringLiteral(" <TD CLASS=\"name\">") +
                     EscapedHTML(definitions.GetMetricName(id, NameLong)) +
                     QStringLiteral("</TD>"));
      if (full) {
        if (count >= 1)
          out.AppendLine(QStringLiteral(" <TD CLASS=\"average\">") +
                         FormatMetric(page.MetricFormatOnPage(id, 1), stats->Mean) +
                         QStringLiteral("</TD>"));
        else
          out.AppendLine(QStringLiteral("<TD CLASS=\"average\">-</TD>"));
      }
      const QString min = count >= 1 ? FormatMetric(format0, stats->Min) : QStringLiteral("-");
      const QString max = count >= 1 ? FormatMetric(format0, stats->Max) : QStringLiteral("-");
      out.AppendLine(QStringLiteral(" <TD CLASS=\"min\">") + min + QStringLiteral("</TD>"));
      out.AppendLine(QStringLiteral(" <TD CLASS=\"max\">") + max + QStringLiteral("</TD>"));
      if (full) {
        const QString outliers =
            count >= 10 ? EscapedHTML(page.OutlierText(i)) : QStringLiteral("-");
        out.AppendLine(QStringLiteral("<TD CLASS=\"outliers\">") + outliers +
                       QStringLiteral("</TD>"));
      }
      out.AppendLine(QStringLiteral("<TD CLASS=\"descr\">") +
                     EscapedHTML(definitions.GetMetricName(id, NameDescription)) +
                     QStringLiteral("</TD></TR>"));
    }
  }
  out.AppendLine(QStringLiteral("</TABLE>"));
}

}  // namespace ombrelle
