// The reports of the current page on a page made up in the test: the
// statistics report with and without full statistics, the correlation report
// and the charts archive with its pictures.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "chart/ZelmChart.h"
#include "common/OutsideReaders.h"
#include "common/ScopedFileSizeLimit.h"
#include "reports/ChartsReport.h"
#include "reports/CorrelationHtml.h"
#include "reports/FakeReportPage.h"
#include "reports/PageReports.h"
#include "reports/ReportFrame.h"
#include "support/Filename.h"
#include "support/ScriptedUiServices.h"

namespace ombrelle {
namespace {

const QDateTime kWhen(QDate(2026, 3, 7), QTime(14, 5));

std::unique_ptr<CStats> Series(std::vector<double> values) {
  auto series = std::make_unique<CStats>();
  series->Init(static_cast<std::int32_t>(values.size()));
  for (double v : values) series->AddValue(v);
  series->CalcStats();
  return series;
}

// A project page: a project metric with an outlier above, an empty column
// and a constant procedure average of five values.
FakePage ProjectPage(bool full) {
  FakePage page;
  page.pageClass = ClassProject;
  page.full = full;
  page.pageTitle = QString::fromUtf8("Project metrics, Harbour & <Zoë> +/-");
  page.formats = {1, 7, 7};
  page.ids = {1008, 1201, 4001};
  page.series.push_back(Series({5, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 90}));
  page.series.push_back(Series({}));
  page.series.push_back(Series({3, 3, 3, 3, 3}));
  page.sums = {"210", "", ""};
  return page;
}

QString Golden(const char* name, const QString& actual) {
  const QString path = JoinPath(OMBRELLE_TEST_DATA, QStringLiteral("reports/") + name);
  QFile file(path);
  if (qEnvironmentVariableIsSet("OMBRELLE_WRITE_GOLDEN") && file.open(QIODevice::WriteOnly)) {
    file.write(actual.toUtf8());
    file.close();
  }
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QStringLiteral("?");
}

// The text from `from` up to and with `to`.
QString Between(const QString& text, const QString& from, const QString& to) {
  const qsizetype start = text.indexOf(from);
  const qsizetype end = text.indexOf(to, start);
  if (start < 0 || end < 0) return {};
  return text.mid(start, end + to.size() - start);
}

TEST(StatisticsReport, FullAndPartialStatisticsAgainstGoldenText) {
  struct Case {
    bool full;
    const char* golden;
  };
  for (const Case& c : {Case{true, "stats-full.html"}, Case{false, "stats-partial.html"}}) {
    const QString text = StatisticsReportText(ProjectPage(c.full), kWhen);
    EXPECT_TRUE(text.startsWith(ReportHead("Metric statistics", false) + ReportStyle()));
    const QString body = Between(text, "</HEAD><BODY>", "</TABLE>\r\n");
    EXPECT_EQ(body.toStdString(), Golden(c.golden, body).toStdString()) << c.golden;
    EXPECT_TRUE(
        text.endsWith("</TABLE>\r\n" + SavedByText("Saved by ", kWhen) + "\r\n</BODY></HTML>\r\n"));
  }
}

TEST(StatisticsReport, EmptyPageHasATableWithoutRows) {
  FakePage page = ProjectPage(true);
  page.loaded = false;
  EXPECT_TRUE(StatisticsReportText(page, kWhen).contains("<TABLE CLASS=\"stats\">\r\n</TABLE>"));
}

TEST(StatisticsReport, SavedUnderItsWordAndOpened) {
  ScopedScriptedUi scripted;
  const QString first = WriteStatisticsReport(ProjectPage(true));
  const QString second = WriteStatisticsReport(ProjectPage(false));
  EXPECT_EQ(first, JoinPath(ReportsFolder(), "Stats.html"));
  EXPECT_NE(second, first);
  EXPECT_EQ(scripted.ui.opened, (std::vector<QString>{first, second}));
  QFile file(first);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_TRUE(file.readAll().startsWith("\xEF\xBB\xBF<HTML><HEAD>"));
  test::ExpectXmllintHtmlAccepts(first);
  test::ExpectXmllintHtmlAccepts(second);
}

TEST(CorrelationReport, MatrixRegressionAndReadingHelpAgainstGoldenText) {
  const QString matrix =
      "Correlation r\tLOC\tCC<2>\r\nCC<2>\t0.9512\r\nNEST\t@@-0.6021$$\t\r\n\tLOC\tCC<2>\r\n";
  const QString regression = QString::fromUtf8(
      "CC<2> = 1.00 + 0.50 * LOC (R²=90%)\r\n\r\nNEST = 4.00 -0.20 * LOC (R²=36%)\r\n\r\n");
  const QString text = CorrelationReportText(matrix, regression);
  EXPECT_TRUE(text.startsWith(ReportHead("Correlation analysis", false) + ReportStyle()));
  const QString body = Between(text, "</HEAD><BODY>", "<H2>Regression analysis</H2>\r\n");
  EXPECT_EQ(body.toStdString(), Golden("correlation.html", body).toStdString());
  EXPECT_EQ(text.count("CLASS=\"neg\""), 1) << "only the negative value is set off";
  EXPECT_TRUE(text.endsWith(RegressionHtml(regression) + "\r\n" + ReportFooter("") +
                            "\r\n</BODY></HTML>\r\n"));
  ScopedScriptedUi scripted;
  const QString name = WriteCorrelationReport(matrix, regression);
  EXPECT_TRUE(name.startsWith(JoinPath(ReportsFolder(), "Correlations")));
  EXPECT_EQ(scripted.ui.opened, std::vector<QString>{name});
  test::ExpectXmllintHtmlAccepts(name);
}

// Bars of the series' values for the charts the test names, null otherwise.
class FixedCharts : public ReportCharts {
 public:
  explicit FixedCharts(const FakePage& page) : m_page(page) {}
  std::unique_ptr<ZelmChart> PageChart(int index) override { return Make(index, pageCharts); }
  std::unique_ptr<ZelmChart> BarChart(int index) override { return Make(index, barCharts); }
  std::vector<int> pageCharts;
  std::vector<int> barCharts;

 private:
  std::unique_ptr<ZelmChart> Make(int index, const std::vector<int>& which) {
    if (std::find(which.begin(), which.end(), index) == which.end()) return nullptr;
    auto chart = std::make_unique<ZelmChart>();
    chart->SetChartType(0);
    chart->SetData({*m_page.SeriesStats(index)});
    chart->Title = QString::fromUtf8("Chart & Zoë %1").arg(index);
    chart->Draw(false);
    return chart;
  }
  const FakePage& m_page;
};

TEST(ChartsReport, OneArchiveWithThePicturesThereAreInPageOrder) {
  struct Case {
    bool loaded;
    std::vector<int> pageCharts, barCharts;
    QStringList images;
  };
  const Case cases[] = {
      {true, {1}, {1, 3}, {"MetricSeriesChart1.bmp", "MetricBarChart1.bmp", "MetricBarChart3.bmp"}},
      {false, {1}, {1}, {}},
  };
  for (const Case& c : cases) {
    ScopedScriptedUi scripted;
    FakePage page = ProjectPage(true);
    page.loaded = c.loaded;
    FixedCharts charts(page);
    charts.pageCharts = c.pageCharts;
    charts.barCharts = c.barCharts;
    const QString name = WriteChartsReport(page, charts, kWhen);
    ASSERT_TRUE(name.startsWith(JoinPath(ReportsFolder(), "Charts"))) << name.toStdString();
    EXPECT_TRUE(name.endsWith(".mht"));
    EXPECT_TRUE(scripted.ui.messages.empty());
    EXPECT_EQ(scripted.ui.opened, std::vector<QString>{name});
    QTemporaryDir dir;
    const QString html = dir.filePath("charts.html");
    const QStringList read = test::WebArchiveImages(name, html);
    ASSERT_FALSE(read.isEmpty());
    EXPECT_EQ(read.first(), "Metric charts");
    EXPECT_EQ(read.mid(1), c.images);
    test::ExpectXmllintHtmlAccepts(html);
    QFile file(html);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    // The email package hands the part over with plain line ends.
    const QString text = QString::fromUtf8(file.readAll()).replace("\n", "\r\n");
    EXPECT_TRUE(
        text.contains("<BODY>\r\n<H1>Metric charts</H1>\r\n"
                      "<P>Project metrics, Harbour &amp; &lt;Zo&#235;&gt; &#177;</P>\r\n"));
    EXPECT_EQ(text.contains("ALT=\"Chart &amp; Zo&#235; 1\" WIDTH=\"450\""), c.loaded);
    EXPECT_EQ(text.count("<P>\r\n"), c.loaded ? 3 : 0) << "a paragraph per series";
    EXPECT_TRUE(text.contains(SavedByText("Saved by ", kWhen) + "\r\n</BODY></HTML>\r\n"));
  }
}

// A disc that fills up half way: the box says which file, nothing is opened
// and no part of the archive is left in the folder.
TEST(ChartsReport, AFullDiscLeavesNoArchive) {
  ScopedScriptedUi scripted;
  FakePage page = ProjectPage(true);
  FixedCharts charts(page);
  charts.pageCharts = {1, 2, 3};
  charts.barCharts = {1, 2, 3};
  const QStringList before = QDir(ReportsFolder()).entryList(QDir::Files);
  {
    test::ScopedFileSizeLimit full(6000);
    EXPECT_EQ(WriteChartsReport(page, charts, kWhen), "");
  }
  ASSERT_EQ(scripted.ui.messages.size(), 1u);
  EXPECT_TRUE(scripted.ui.messages[0].text.startsWith("Cannot write to " +
                                                      JoinPath(ReportsFolder(), "Charts")));
  EXPECT_TRUE(scripted.ui.opened.empty());
  EXPECT_EQ(QDir(ReportsFolder()).entryList(QDir::Files), before);
}

}  // namespace
}  // namespace ombrelle
