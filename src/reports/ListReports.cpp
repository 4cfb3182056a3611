#include "reports/ListReports.h"

#include "core/MetricRead.h"
#include "limits/MetricLimits.h"
#include "reports/English.h"
#include "reports/ReportFrame.h"
#include "support/CString.h"
#include "support/FormatNum.h"
#include "support/SeriesText.h"
#include "support/StringList.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

constexpr int kRuleOutliers = LimitNoOutliers;
constexpr int kRuleExtremeOutliers = LimitNoExtremeOutliers;

void MetricRow(CString& text, const MetricDefinitions& definitions, MetricId id) {
  text.AppendLine(QStringLiteral("<TR VALIGN=\"TOP\" ID=\"m%1\">").arg(id));
  text.AppendLine(QStringLiteral("<TD CLASS=\"abbr\">") +
                  EscapedHTML(definitions.GetMetricName(id, NameAbbreviation)) +
                  QStringLiteral("</TD>"));
  text.AppendLine(QStringLiteral("<TD CLASS=\"name\">") +
                  EscapedHTML(definitions.GetMetricName(id, NameLong)) + QStringLiteral("</TD>"));
  text.AppendLine(QStringLiteral("<TD CLASS=\"descr\">") +
                  EscapedHTML(definitions.GetMetricName(id, NameDescription)) +
                  QStringLiteral("</TD>"));
  text.AppendLine(QStringLiteral("</TR>"));
}

}  // namespace

QString MetricsListText(const MetricDefinitions& definitions, bool sorted) {
  CString text;
  const QString title =
      (sorted ? QStringLiteral("Sorted metrics list by ") : QStringLiteral("Metrics list by ")) +
      UiServices::AppTitle() + QLatin1Char(' ') + VersionText(false);
  text.Append(ReportHead(title, false));
  text.Append(ReportStyle());
  text.AppendLine(QStringLiteral("</HEAD>"));
  text.AppendLine(QStringLiteral("<BODY>"));
  text.AppendLine(sorted ? QStringLiteral("<H1>Metrics list, sorted</H1>")
                         : QStringLiteral("<H1>Metrics list</H1>"));
  text.AppendLine(QStringLiteral(
      "<TABLE ID=\"metricslist\" SUMMARY=\"Metrics list. Abbreviation, name, description.\">"));
  if (sorted) {
    StringList list;
    for (MetricId id = kFirstMetricId; id <= kLastMetricId; ++id) {
      if (definitions.MetricSupported(id)) {
        list.Add(definitions.GetMetricName(id, NameAbbreviation), id);
      }
    }
    list.Sort();
    for (int i = 1; i <= list.count(); ++i) MetricRow(text, definitions, list.Data(i));
  } else {
    int lastClass = -1;
    for (MetricId id = kFirstMetricId; id <= kLastMetricId; ++id) {
      if (!definitions.MetricSupported(id)) continue;
      const int metricClass = MetricDefinitions::GetMetricClass(id);
      if (metricClass != lastClass) {
        lastClass = metricClass;
        text.AppendLine(QStringLiteral("<TR CLASS=\"hdr\">"));
        text.AppendLine(QStringLiteral("<TH COLSPAN=\"3\">") +
                        MetricDefinitions::GetMetricClassName(metricClass, false) +
                        QStringLiteral(" metrics</TH>"));
        text.AppendLine(QStringLiteral("</TR>"));
      }
      MetricRow(text, definitions, id);
    }
  }
  text.AppendLine(QStringLiteral("</TABLE>"));
  text.Append(ReportFooter(QString()));
  text.AppendLine(QStringLiteral("</BODY></HTML>"));
  return text.Value();
}

QString WriteMetricsList(const MetricDefinitions& definitions, bool sorted) {
  return SaveAndOpenReport(
      MetricsListText(definitions, sorted),
      sorted ? QStringLiteral("MetricsListSorted") : QStringLiteral("MetricsList"));
}

QString LimitsReportText(MetricRead& reader, int database, const MetricLimits& limits) {
  if (!reader.OpenDatabase2(database)) return {};
  const MetricDefinitions& definitions = reader.Definitions();
  CString text;
  text.Append(ReportHead(QStringLiteral("Metric limits report"), false));
  text.Append(ReportStyle());
  text.AppendLine(QStringLiteral("</HEAD><BODY>"));
  text.AppendLine(QStringLiteral("<H1>Metric limits report</H1>"));
  text.AppendLine(QStringLiteral("<P>") + EscapedHTML(reader.GetDatabaseName(database)) +
                  QStringLiteral("</P>"));
  text.AppendLine(QStringLiteral("<P>Limits: ") + EscapedHTML(limits.GetName()) +
                  QStringLiteral("</P>"));
  text.AppendLine(QStringLiteral("<TABLE>"));
  int lastClass = -1;
  bool outlierNote = false;
  bool extremeNote = false;
  for (MetricId id = kFirstMetricId; id <= kLastMetricId; ++id) {
    if (!limits.RuleExists(id)) continue;
    CStats series = reader.GetValues(id);
    if (series.count() <= 0) continue;
    const int metricClass = MetricDefinitions::GetMetricClass(id);
    if (metricClass != lastClass) {
      lastClass = metricClass;
      const QString className = MetricDefinitions::GetMetricClassName(metricClass, false);
      text.AppendLine(QStringLiteral("<TR><TH COLSPAN=\"2\">") + className +
                      QStringLiteral(" metrics</TH><TH>Good values</TH><TH>Problematic</TH>"
                                     "<TH>Total ") +
                      PluralNoun(className.toLower()) +
                      QStringLiteral("</TH><TH>Problematic %</TH></TR>"));
    }
    const QString abbreviation = definitions.GetMetricName(id, NameAbbreviation);
    text.AppendLine(QStringLiteral("<TR><TD>") + EscapedHTML(abbreviation) +
                    QStringLiteral("</TD>"));
    text.AppendLine(QStringLiteral(" <TD>") + EscapedHTML(definitions.GetMetricName(id, NameLong)) +
                    QStringLiteral("</TD>"));
    const int type = limits.LimitType(id);
    const std::int32_t outside = limits.CalcOutsideLimits(series, id);
    if (type != kRuleOutliers && type != kRuleExtremeOutliers) {
      text.AppendLine(QStringLiteral(" <TD>") + EscapedHTML(limits.GetRuleString(id, false)) +
                      QStringLiteral("</TD>"));
    } else {
      const bool extreme = type == kRuleExtremeOutliers;
      const QString rule =
          outside > 0 ? abbreviation + QStringLiteral(" in ") +
                            OutlierText(series, definitions.GetMetricFormat(id), extreme, true)
                      : QStringLiteral("All");
      text.AppendLine(QStringLiteral(" <TD>") + EscapedHTML(rule) +
                      (extreme ? QStringLiteral(" **</TD>") : QStringLiteral(" *</TD>")));
      (extreme ? extremeNote : outlierNote) = true;
    }
    const std::int32_t total = series.count();
    const auto cell = [&text](const QString& value) {
      text.AppendLine(QStringLiteral(" <TD CLASS=\"data\">") + value + QStringLiteral("</TD>"));
    };
    cell(FormatMetric(1, total - outside));
    cell(FormatMetric(1, outside));
    cell(FormatMetric(1, total));
    cell(FormatMetric(5, static_cast<double>(outside) / total));
    text.AppendLine(QStringLiteral("</TR>"));
  }
  text.AppendLine(QStringLiteral("</TABLE>"));
  if (outlierNote) {
    text.AppendLine(QStringLiteral("<P CLASS=\"outliers\">* = Limits based on outliers</P>"));
  }
  if (extremeNote) {
    text.AppendLine(
        QStringLiteral("<P CLASS=\"outliers\">** = Limits based on extreme outliers</P>"));
  }
  text.AppendLine(QStringLiteral("<P></P>"));
  text.Append(ReportFooter(QString()));
  text.AppendLine(QStringLiteral("</BODY></HTML>"));
  return text.Value();
}

QString WriteLimitsReport(MetricRead& reader, int database, const MetricLimits& limits) {
  const QString text = LimitsReportText(reader, database, limits);
  if (text.isEmpty()) return {};
  return SaveAndOpenReport(text, QStringLiteral("Limits"));
}

}  // namespace ombrelle
