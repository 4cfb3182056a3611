#include "reports/StatusPictures.h"

#include "chart/ZelmChart.h"
#include "core/MetricRead.h"
#include "pictures/Bitmap.h"
#include "reports/MHTSaver.h"
#include "reports/MetricRetriever.h"
#include "reports/ReportFrame.h"
#include "support/FormatNum.h"

namespace ombrelle {

namespace {

constexpr int ChartHistogram = 1;
constexpr int ChartBars = 0;
constexpr int ChartPie = 9;

// Code, comment and empty lines of an analysis as one series of three values.
CStats LineShares(MetricRead& reader) {
  CStats lines;
  lines.Init(3);
  for (MetricId id : {1009, 1010, 1011}) lines.AddValue(reader.GetSingleValue(id));
  lines.CalcStatsQuick();
  return lines;
}

// Draws the chart and embeds it; the URL on success, "" otherwise.
QString Embed(ZelmChart& chart, MHTSaver& saver, const QString& url) {
  chart.Draw(false);
  std::unique_ptr<Bitmap> bitmap;
  try {
    bitmap = chart.GetBitmap(ChartStatusPictures::Width, 0);
  } catch (const BitmapError&) {
    return {};
  }
  return Bitmap2MHT(bitmap.get(), saver, url) ? url : QString();
}

}  // namespace

bool Bitmap2MHT(const Bitmap* bitmap, MHTSaver& saver, const QString& url) {
  if (!bitmap) return false;
  return saver.SaveBase64(bitmap->EncodeBMP(bitmap->Compress()).toBase64(),
                          QStringLiteral("image/bmp"), url);
}

QString ChartStatusPictures::LinesCompare(MHTSaver& saver, MetricRead& first, MetricRead& second) {
  ZelmChart chart;
  chart.SetChartType(ChartBars);
  chart.Title = QStringLiteral("Lines");
  chart.SetData({LineShares(first), LineShares(second)});
  chart.SetDataLabels({QStringLiteral("Code"), QStringLiteral("Comment"), QStringLiteral("Empty")});
  return Embed(chart, saver, QStringLiteral("StatusLOC.bmp"));
}

QString ChartStatusPictures::LinesPie(MHTSaver& saver, MetricRead& reader, int number) {
  CStats lines = LineShares(reader);
  ZelmChart chart;
  chart.SetChartType(ChartPie);
  chart.Title = QStringLiteral("Logical lines");
  const int format = reader.Definitions().GetMetricFormat(1009);
  chart.SetDataLabels(
      {QStringLiteral("Code (") + FormatMetric(format, lines.ValueAtIndex(1)) + ")",
       QStringLiteral("Comment (") + FormatMetric(format, lines.ValueAtIndex(2)) + ")",
       QStringLiteral("Empty (") + FormatMetric(format, lines.ValueAtIndex(3)) + ")"});
  chart.ShowLegend = true;
  chart.SetData({lines});
  return Embed(chart, saver, QStringLiteral("StatusPie%1.bmp").arg(number));
}

QString ChartStatusPictures::Histogram(MHTSaver& saver, const MetricRetriever& retriever,
                                       MetricId metric) {
  std::vector<CStats> series;
  for (MetricRead* reader : {retriever.GetReader(), retriever.GetReader2()}) {
    if (reader && reader->MetricAvailable(metric)) series.push_back(reader->GetValues(metric));
  }
  if (series.empty() || series.front().count() < 1) return {};
  const MetricDefinitions& definitions = retriever.GetReader()->Definitions();
  const QString shortName = definitions.GetMetricName(metric, NameAbbreviation);
  const QString longName = definitions.GetMetricName(metric, NameLong);
  ZelmChart chart;
  chart.SetChartType(ChartHistogram);
  chart.Title = shortName + QStringLiteral(" ") + longName;
  chart.SetData(series);
  const QString url = Embed(chart, saver, QStringLiteral("%1Histogram.bmp").arg(metric));
  if (url.isEmpty()) return {};
  return QStringLiteral("<IMG SRC=\"") + url + QStringLiteral("\" ALT=\"") +
         EscapedHTML(longName + QStringLiteral(" (") +
                     MetricDefinitions::GetMetricClassName(
                         MetricDefinitions::GetMetricClass(metric), false) +
                     QStringLiteral(")")) +
         QStringLiteral("\" WIDTH=\"") + QString::number(Width) + QStringLiteral("\" />");
}

}  // namespace ombrelle
