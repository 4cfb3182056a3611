#include "reports/ChartsReport.h"

#include "chart/ZelmChart.h"
#include "pictures/Bitmap.h"
#include "reports/MHTSaver.h"
#include "reports/ReportFrame.h"
#include "reports/ReportPage.h"
#include "reports/StatusPictures.h"
#include "support/CString.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

constexpr int kPictureWidth = 450;

void CannotWrite(const QString& name, const MHTSaver& saver) {
  Ui().MsgBox(
      QStringLiteral("Cannot write to ") + name + QStringLiteral("\r\n") + saver.ErrorText(),
      MsgStyle::Exclamation, QString());
}

// Embeds a drawn chart as the part `url`; its IMG tag, "" when there is no
// chart or no picture of it.
QString EmbedChart(std::unique_ptr<ZelmChart> chart, MHTSaver& saver, const QString& url) {
  if (!chart) return {};
  std::unique_ptr<Bitmap> bitmap;
  try {
    bitmap = chart->GetBitmap(kPictureWidth, 0);
  } catch (const BitmapError&) {
    return {};
  }
  if (!Bitmap2MHT(bitmap.get(), saver, url)) return {};
  return QStringLiteral("<IMG SRC=\"") + url + QStringLiteral("\" ALT=\"") +
         EscapedHTML(chart->Title) + QStringLiteral("\" WIDTH=\"") +
         QString::number(kPictureWidth) + QStringLiteral("\" />");
}

}  // namespace

QString WriteChartsReport(const ReportPage& page, ReportCharts& charts, const QDateTime& when) {
  BusyCursor busy;
  const QString name = MhtReportName(QStringLiteral("Charts"));
  if (name.isEmpty()) {
    Ui().MsgBox(QStringLiteral("Cannot generate file name."), MsgStyle::Exclamation, QString());
    return {};
  }
  if (!WriteChartsReportFile(page, charts, name, when)) return {};
  OpenReport(name);
  return name;
}

bool WriteChartsReportFile(const ReportPage& page, ReportCharts& charts, const QString& name,
                           const QDateTime& when) {
  BusyCursor busy;
  const QString title = QStringLiteral("Metric charts");
  MHTSaver saver;
  if (!saver.Start(name, title)) {
    CannotWrite(name, saver);
    return false;
  }
  CString text;
  text.Append(ReportHead(title, false));
  text.Append(ReportStyle());
  text.AppendLine(QStringLiteral("</HEAD>"));
  text.AppendLine(QStringLiteral("<BODY>"));
  text.AppendLine(QStringLiteral("<H1>") + title + QStringLiteral("</H1>"));
  // "+/-" in a title (the change pages) reads better as the one sign.
  QString pageTitle = page.PageTitle();
  pageTitle.replace(QStringLiteral("+/-"), QStringLiteral("\u00B1"));
  text.AppendLine(QStringLiteral("<P>") + EscapedHTML(pageTitle) + QStringLiteral("</P>"));
  if (page.Loaded()) {
    for (int i = 1; i <= page.SeriesCount(); ++i) {
      // Pictures go into the archive as they are made; only the text waits.
      text.AppendLine(QStringLiteral("<P>"));
      const QString series =
          EmbedChart(charts.PageChart(i), saver, QStringLiteral("MetricSeriesChart%1.bmp").arg(i));
      if (!series.isEmpty()) text.AppendLine(series);
      const QString bars =
          EmbedChart(charts.BarChart(i), saver, QStringLiteral("MetricBarChart%1.bmp").arg(i));
      if (!bars.isEmpty()) text.AppendLine(bars);
      text.AppendLine(QStringLiteral("</P>"));
    }
  }
  text.AppendLine(SavedByText(QStringLiteral("Saved by "), when));
  text.AppendLine(QStringLiteral("</BODY></HTML>"));
  if (!saver.SaveHTML(text.Value(), QString(), QStringLiteral("text/html")) || !saver.Done(false)) {
    CannotWrite(name, saver);
    return false;
  }
  return true;
}

}  // namespace ombrelle
