#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>

#include "common/OutsideReaders.h"
#include "core/MetricRead.h"
#include "core/MetricReadTestSupport.h"
#include "limits/MetricLimits.h"
#include "reports/ListReports.h"
#include "reports/ReportFrame.h"
#include "support/Filename.h"
#include "support/ScriptedUiServices.h"

namespace ombrelle {
namespace {

TEST(MetricsList, ByClassAndSortedByAbbreviation) {
  ScopedScriptedUi scripted;
  MetricDefinitions definitions;
  int supported = 0;
  for (MetricId id = kFirstMetricId; id <= kLastMetricId; ++id)
    supported += definitions.MetricSupported(id);

  const QString byClass = MetricsListText(definitions, false);
  EXPECT_TRUE(byClass.contains("<TITLE>Metrics list by Ombrelle Viewer "));
  EXPECT_TRUE(byClass.contains(
      "<H1>Metrics list</H1>\r\n<TABLE ID=\"metricslist\" SUMMARY=\"Metrics list. Abbreviation, "
      "name, description.\">\r\n<TR CLASS=\"hdr\">\r\n<TH COLSPAN=\"3\">Project "
      "metrics</TH>\r\n</TR>\r\n<TR VALIGN=\"TOP\" ID=\"m1000\">\r\n<TD CLASS=\"abbr\">"));
  EXPECT_EQ(byClass.count("<TR CLASS=\"hdr\">"), 5);
  EXPECT_EQ(byClass.count("<TR VALIGN=\"TOP\""), supported);

  const QString sorted = MetricsListText(definitions, true);
  EXPECT_TRUE(sorted.contains("<TITLE>Sorted metrics list by Ombrelle Viewer "));
  EXPECT_TRUE(sorted.contains("<H1>Metrics list, sorted</H1>"));
  EXPECT_EQ(sorted.count("<TR CLASS=\"hdr\">"), 0);
  QStringList abbreviations;
  const QRegularExpression abbr("<TD CLASS=\"abbr\">([^<]*)</TD>");
  for (auto it = abbr.globalMatch(sorted); it.hasNext();) abbreviations << it.next().captured(1);
  ASSERT_EQ(abbreviations.size(), supported);
  for (int i = 1; i < abbreviations.size(); ++i) {
    EXPECT_LE(abbreviations[i - 1], abbreviations[i]) << i;
  }

  const QString file = WriteMetricsList(definitions, true);
  ASSERT_TRUE(file.endsWith("/MetricsListSorted.html"));
  EXPECT_EQ(scripted.ui.opened, std::vector<QString>{file});
  test::ExpectXmllintHtmlAccepts(file);
}

class LimitsReportTest : public test::AccessTest {};

TEST_F(LimitsReportTest, RulesCountsAndNotes) {
  ScopedScriptedUi scripted;
  // Twelve procedures: 1..11 and 100, so 100 lies beyond both fences of CC.
  std::vector<double> cc;
  for (int i = 1; i <= 11; ++i) cc.push_back(i);
  cc.push_back(100);
  test::SaveSpec spec = test::ProjectSave("Limits & <test>", "p.vbp", 46000, {{1008, 500}});
  QStringList procs;
  for (int i = 1; i <= 12; ++i) procs << QStringLiteral("m.P%1").arg(i);
  spec.classes.push_back(
      test::SaveClass{3, procs, {{4120, cc}, {4030, std::vector<double>(12, 2)}}});
  spec.classes.push_back(test::SaveClass{1, {"m.bas"}, {{2001, {1200}}}});
  const QString path = Write(Folder("db"), "limits.qvz", spec);

  MetricLimits limits;
  limits.SetRules("Mine <1>", {{1008, LimitAtMost, 1000, 0},
                               {2001, LimitRange, 0, 1000},
                               {4120, LimitNoExtremeOutliers, 0, 0},
                               {4030, LimitNoOutliers, 0, 0},
                               {5001, LimitAtMost, 3, 0}});
  MetricRead reader;
  int database = 0;
  for (int i = 1; i <= reader.DatabaseCount(); ++i) {
    if (reader.Database(i).Path == path) database = i;
  }
  ASSERT_GT(database, 0);
  const QString text = LimitsReportText(reader, database, limits);
  const QString golden = JoinPath(OMBRELLE_TEST_DATA, "reports/limits.html");
  QFile file(golden);
  const QString body =
      text.mid(text.indexOf("<H1>"), text.indexOf("<P><A HREF") - text.indexOf("<H1>"));
  if (qEnvironmentVariableIsSet("OMBRELLE_WRITE_GOLDEN") && file.open(QIODevice::WriteOnly)) {
    file.write(body.toUtf8());
    file.close();
  }
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(body.toStdString(), QString::fromUtf8(file.readAll()).toStdString());

  const QString saved = WriteLimitsReport(reader, database, limits);
  ASSERT_FALSE(saved.isEmpty());
  test::ExpectXmllintHtmlAccepts(saved);
  EXPECT_EQ(WriteLimitsReport(reader, 999, limits), "");
  EXPECT_EQ(scripted.ui.opened, std::vector<QString>{saved});
}

}  // namespace
}  // namespace ombrelle
