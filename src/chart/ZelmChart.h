#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include <QString>
#include <QStringList>

#include "chart/ChartLayout.h"
#include "chart/ChartScale.h"
#include "stats/CStats.h"

class QPainter;
class QPagedPaintDevice;

namespace ombrelle {

class Bitmap;
class Metafile;

// One chart: its settings and data, and the recording of the last Draw on a Metafile.
// A caller sets the type, the data, the title, the number formats and what else it wants,
// calls Draw, and then shows, prints, saves or copies the recording.
//
// Types: 0 bars, 1 histogram, 2 distribution, 3 pie of the distribution, 4 time chart in
// lines, 5 time chart in steps, 6 scatter with regression, 7 dot plot with box plot,
// 8 Kiviat, 9 pie. Any other type records an empty page with the title.
class ZelmChart {
 public:
  // A horizontal reference line.
  struct YLine {
    double Value = 0;
    QString Label;
    std::uint32_t Color = 0;
  };

  ZelmChart();
  ~ZelmChart();
  ZelmChart(const ZelmChart&) = delete;
  ZelmChart& operator=(const ZelmChart&) = delete;

  QString Title;
  QString AxisCaption;
  std::uint32_t GridColor = 0xEEEEEE;
  bool ShowLegend = false;
  // Every text of the chart grows by this factor. The small charts beside the
  // grid show the page at a fifth of its size, where the usual 3 mm labels
  // would be a few pixels high.
  float TextScale = 1.0f;
  bool LegendGiven = false;
  bool HasLabels = false;
  std::int32_t MarkIndex = 0;  // the bar marked with an arrow, 1-based; 0 is none

  std::int32_t ChartType() const { return m_chartKind; }
  void SetChartType(std::int32_t type) { m_chartKind = type; }

  // Series 1 is the first element. The chart keeps copies.
  void SetData(const std::vector<CStats>& series);
  // Series of Kiviat values, one value per axis, and the names of the axes; Percent shows
  // the values as percentages.
  void SetDataKiviat(const std::vector<CStats>& series, const QStringList& labels, bool percent);
  // Names of the series, first element for series 1; shows the legend.
  void SetLegendData(const QStringList& names);
  // One label per value (per class, per Kiviat axis).
  void SetDataLabels(const QStringList& labels);
  // One colour per value, first element for value 1.
  void SetDataColors(const std::vector<std::uint32_t>& colors);
  // Colour of series 1..10; other indices read 0 and write nothing.
  std::uint32_t SeriesColor(int index) const;
  void SetSeriesColor(int index, std::uint32_t color);
  // Kinds (AxisFormat) of the Y and X numbers.
  void SetNumberFormat(std::int32_t yKind, std::int32_t xKind);
  void AddYLine(double value, const QString& label, std::uint32_t color);
  // Grows the data colours to count entries, keeping those there are.
  void EnsureDataColors(int count);

  // Records the picture; BlackWhite draws in black on white.
  void Draw(bool BlackWhite);

  // Output of the last Draw.
  void Display(QPainter& painter, int x1, int y1, int x2, int y2) const;
  // A null printer is the default one.
  bool PrintOut(QPagedPaintDevice* printer = nullptr);
  bool SaveBMP(const QString& file, int width, int depth);
  std::unique_ptr<Bitmap> GetBitmap(int width, int depth);
  bool SaveWMF(const QString& file, float scale);
  bool CopyToClipboard();
  const Metafile& GetMetafile() const;
  Metafile& GetMetafile();

  // Kiviat chart of the series; public as Draw's other routines are not.
  void DrawKiviat();

  // The dot plot's random spread comes from here; the constructor seeds it from the clock.
  void SeedSpread(std::uint64_t seed) { m_spread.seed(seed); }

  // Read access for callers that lay things out around the chart, and for checks.
  const ChartScale& Scale() const { return m_scale; }
  const ChartRect& Frame() const { return m_frame; }
  const ChartRect& Plot() const { return m_plot; }
  const ChartRect& LegendBox() const { return m_legendBox; }
  std::int32_t PageHeight() const { return m_pageHeight; }
  float PageAspect() const { return m_pageAspect; }
  const std::vector<std::uint32_t>& DataColors() const { return m_dataColors; }
  const std::vector<YLine>& YLines() const { return m_yLines; }
  int SeriesCount() const { return static_cast<int>(m_series.size()); }
  int AxisCount() const { return m_axisCount; }
  const std::vector<CStats>& SeriesData() const { return m_series; }
  const QStringList& LegendData() const { return m_legendData; }
  const QStringList& DataLabels() const { return m_dataLabels; }
  const QStringList& KiviatLabels() const { return m_kiviatLabels; }

 private:
  // Drawing helpers over the recording (ZelmChart.cpp).
  void SetFontSize(int size);
  double TextW(const QString& text) const;
  double TextH(const QString& text) const;
  // Data colour of value index (1-based); past the stored ones the series colour.
  std::uint32_t DataColor(int index) const;
  double TextWidthAt(const QString& text, int size);
  double TextHeightAt(const QString& text, int size);
  void SetScale(double XHigh, double YHigh, double XLow, double YLow);
  void SetMargins(bool WithYLabels);
  double ValueToY(double v) const;
  double XPos(double v) const;
  QString FormatAxisValue(double v, bool IsX = false, bool Multiply = false) const;
  void DrawTitle();
  void DrawAxisCaption();
  void DrawYGrid();
  void DrawXAxis();
  void DrawYAxis();
  void DrawAxisArrow(double x1, double y1, double x2, double y2, std::uint32_t color);
  void DrawXTicks();
  void DrawDateTicks();
  void DrawYLines();
  void DrawLegend();
  void DrawLegendBox(int count, const QStringList& names, const std::vector<std::uint32_t>& colors,
                     int first);
  double SeriesHigh(int from) const;
  double SeriesLow(int from) const;

  // The kinds (ZelmChartBars.cpp, ZelmChartLines.cpp, ZelmChartRound.cpp).
  void DrawBars(std::vector<CStats>& series, const QStringList& labels, bool showValues,
                const std::vector<QStringList>* valueTexts);
  void DrawHistogram();
  void DrawDistribution();
  void DrawTimeChart(bool Stepped);
  void DrawScatter(bool Paired);
  void DrawPoint(CStats& series, double x, double y, std::uint32_t color, bool paired);
  void DrawBoxPlot(int index, int xIndex);
  void DrawQuantileMarks(int index);
  void DrawPieChart(CStats& series);
  void DrawDistributionPie();

  std::int32_t m_chartKind = 0;
  ChartRect m_frame, m_plot, m_legendBox;
  ChartScale m_scale;
  std::uint32_t m_seriesColors[10] = {};
  std::uint32_t m_backColor = 0, m_foreColor = 0, m_axisColor = 0;
  std::unique_ptr<Metafile> m_picture;
  std::vector<CStats> m_series;
  QStringList m_legendData;
  QStringList m_dataLabels;
  std::vector<std::uint32_t> m_dataColors;
  bool m_hasDataColors = false;
  std::int32_t m_axisCount = 0;
  QStringList m_kiviatLabels;
  std::int32_t m_pageHeight = 112;
  float m_pageAspect = 4.0f / 3.0f;
  std::vector<YLine> m_yLines;
  CStats m_spreadX;  // x of the dot plot, made at each Draw
  std::mt19937_64 m_spread;
  int m_fontSize = 80;
};

}  // namespace ombrelle
