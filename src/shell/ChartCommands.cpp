#include "shell/ChartCommands.h"

#include <cmath>

#include "chart/ChartLayout.h"
#include "chart/ZelmChart.h"
#include "core/ListModel.h"
#include "core/MetricRead.h"
#include "grid/OwnerGridLogic.h"
#include "limits/MetricLimits.h"
#include "shell/PageModel.h"
#include "stats/CStats.h"
#include "stats/Significance.h"
#include "support/FormatNum.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

constexpr std::uint32_t kBarColour = 3709564;  // 0x389A7C
constexpr std::uint32_t kMarkedBarColour = 255;
constexpr std::uint32_t kMedianColour = 0xE55500;
constexpr std::uint32_t kFenceColour = 255;
constexpr std::uint32_t kHistogramColour = 16100480;
constexpr MetricId kDateMetric = 1000;
const QString kLineEnd = QStringLiteral("\r\n");

constexpr std::uint32_t Rgb(int red, int green, int blue) {
  return static_cast<std::uint32_t>(red) | static_cast<std::uint32_t>(green) << 8 |
         static_cast<std::uint32_t>(blue) << 16;
}

void Warn(const QString& text) { Ui().MsgBox(text, MsgStyle::Exclamation, QString()); }

// Parent of a format in the family tree; `second` takes the other parent of 5.
int Parent(int format, bool second) {
  switch (format) {
    case 1:
      return 2;
    case 3:
      return 4;
    case 4:
    case 8:
      return 10;
    case 5:
      return second ? 6 : 3;
    case 6:
    case 7:
      return 8;
    case 9:
      return 1;
    default:
      return 0;
  }
}

bool IsBelow(int a, int b) {
  if (a == b) return true;
  if (a == 0) return false;
  if (IsBelow(Parent(a, false), b)) return true;
  return a == 5 && IsBelow(Parent(a, true), b);
}

// `value` with at least `least` and at most `most` decimals.
QString FormatDecimals(double value, int least, int most) {
  QString text = FormatFixed(value, most);
  const int point = static_cast<int>(text.indexOf(QLatin1Char('.')));
  if (point < 0) return text;
  while (text.size() - point - 1 > least && text.endsWith(QLatin1Char('0'))) text.chop(1);
  return text;
}

}  // namespace

std::shared_ptr<Metafile> ChartMetafile(std::unique_ptr<ZelmChart> chart) {
  if (!chart) return nullptr;
  std::shared_ptr<ZelmChart> owner(std::move(chart));
  return std::shared_ptr<Metafile>(owner, &owner->GetMetafile());
}

int ChartFormatKind(int format) {
  if (format >= 3 && format <= 5) return kAxisPercent;
  if (format == 9) return kAxisDate;
  return kAxisNumber;
}

void SetChartNumberFormat(ZelmChart& chart, int yFormat, int xFormat) {
  chart.SetNumberFormat(ChartFormatKind(yFormat), ChartFormatKind(xFormat));
}

int CommonFormat(int a, int b) {
  if (a == b) return a;
  if (IsBelow(a, b)) return b;
  if (IsBelow(b, a)) return a;
  return CommonFormat(Parent(a, false), Parent(b, false));
}

QString LinearFormulaText(double a, double b, const QString& name) {
  QString slope = FormatPattern(b, RegressionSlopePattern(b));
  slope =
      (slope.startsWith(QLatin1Char('-')) ? QStringLiteral(" ") : QStringLiteral(" + ")) + slope;
  QString text = FormatPattern(a, kRegressionConstantPattern) + slope;
  return name.isEmpty() ? text + QLatin1Char('*') : text + QStringLiteral(" * ") + name;
}

QString RegressionFormula(double a, double b, const QString& name) {
  return LinearFormulaText(a, b, name);
}

void AddBarChartLines(ZelmChart& chart, CStats& values) {
  if (values.count() <= 5 || values.StdDev <= 0) return;
  const double median = values.Median();
  if (median > values.Min && median < values.Max)
    chart.AddYLine(median, QStringLiteral("Median"), kMedianColour);
  if (values.count() < 10) return;
  const double lower = values.OutlierLowerTail();
  if (lower > values.Min && lower != median)
    chart.AddYLine(lower, QStringLiteral("Outliers"), kFenceColour);
  const double upper = values.OutlierUpperTail();
  if (upper < values.Max && upper != median)
    chart.AddYLine(upper, QStringLiteral("Outliers"), kFenceColour);
}

std::unique_ptr<ZelmChart> MakeMetricHistogram(int format, const QString& title,
                                               const QString& caption, const CStats& series,
                                               const CStats* otherSeries) {
  auto chart = std::make_unique<ZelmChart>();
  std::vector<CStats> data{series};
  if (otherSeries) data.push_back(*otherSeries);
  chart->SetChartType(2);
  chart->SetData(data);
  if (!otherSeries) chart->SetSeriesColor(1, kHistogramColour);
  SetChartNumberFormat(*chart, 3, format);
  chart->Title = title;
  chart->AxisCaption = caption;
  chart->Draw(false);
  return chart;
}

QString ChartCommands::SeriesTitle(int series) const {
  return m_page.SeriesCaption(series) + QLatin1Char(' ') +
         m_page.Definitions().GetMetricName(m_page.SeriesMetric(series), NameLong);
}

std::unique_ptr<ZelmChart> ChartCommands::MakeBarChart(bool markRow, int series) {
  const OwnerGridLogic* grid = m_page.Grid();
  if (!grid) return nullptr;
  int row = grid->GetCurRow();
  int column = grid->GetCurColumn();
  m_page.SwapRowCol(row, column);
  const PageRecord& record = m_page.Pages(m_page.CurrentPage());
  const CStats* source = m_page.Series(series);
  if (!record.Loaded || series == 0 || !source || row < 0 || row > record.Rows) return nullptr;

  CStats values;
  values.Init(source->count(), false);
  for (int r = 1; r <= record.Rows; ++r) {
    int dataRow = r;
    m_page.GridRowToDataRow(dataRow, column);
    double value = 0;
    if (!source->ValueAtIndexDefined(dataRow, value)) value = 0;
    values.AddValue(value);
  }
  values.CalcStats();

  std::vector<std::uint32_t> colours;
  const bool marked = markRow && row >= 1 && row <= values.count();
  if (marked) {
    colours.assign(static_cast<size_t>(values.count()), kBarColour);
    colours[static_cast<size_t>(row - 1)] = kMarkedBarColour;
  }

  auto chart = std::make_unique<ZelmChart>();
  chart->SetChartType(0);
  chart->SetData({values});
  AddBarChartLines(*chart, values);
  SetChartNumberFormat(*chart, m_page.SeriesInfo(series).Format, 0);
  chart->SetSeriesColor(1, kBarColour);
  if (marked) {
    chart->MarkIndex = row;
    chart->SetDataColors(colours);
  }
  chart->Title = SeriesTitle(series);
  if (!markRow) {
    chart->AxisCaption = m_page.PageTitle();
  } else {
    int dataRow = row;
    m_page.GridRowToDataRow(dataRow, 1);
    QString caption = QStringLiteral("Red = ") + record.RowHeaders.value(dataRow - 1);
    if (grid->FixedColumns() == 2 && !m_page.Rotated()) {
      double date = 0;
      bool defined = false;
      m_page.CellDefined(row, 2, date, defined);
      caption += QLatin1Char(' ') + (defined ? FormatDateShort(date) : QStringLiteral("-"));
    }
    chart->AxisCaption = caption;
  }
  chart->Draw(false);
  return chart;
}

std::unique_ptr<ZelmChart> ChartCommands::MakeHistogram(int series) {
  const CStats* source = m_page.Series(series);
  if (series == 0 || !source) return nullptr;
  return MakeMetricHistogram(m_page.SeriesInfo(series).Format, SeriesTitle(series),
                             m_page.PageTitle(), *source, nullptr);
}

std::unique_ptr<ZelmChart> ChartCommands::MakeDistributionChart(int series) {
  if (series == 0 || !m_page.Series(series)) return nullptr;
  auto chart = std::make_unique<ZelmChart>();
  chart->SetChartType(7);
  // Only the rows with a value become dots: a series keyed by row would read
  // its empty rows (a time page's first change) as zeros when sorted.
  const CStats inRows = m_page.SeriesInRowOrder(series);
  CStats values;
  values.Init(inRows.count());
  for (int row = 1; row <= inRows.Capacity(); ++row) {
    double value = 0;
    if (inRows.ValueAtIndexDefined(row, value)) values.AddValueQuick(value);
  }
  values.DataType = inRows.DataType;
  chart->SetData({CStats(), values});
  SetChartNumberFormat(*chart, m_page.SeriesInfo(series).Format, 0);
  chart->Title = SeriesTitle(series);
  chart->AxisCaption = m_page.PageTitle();
  chart->Draw(false);
  return chart;
}

std::unique_ptr<ZelmChart> ChartCommands::MakeCompareChart(const std::vector<int>& series,
                                                           bool histograms) {
  auto chart = std::make_unique<ZelmChart>();
  std::vector<CStats> data;
  QStringList labels;
  int format = series.empty() ? 0 : m_page.SeriesInfo(series.front()).Format;
  for (int index : series) {
    const CStats* source = m_page.Series(index);
    data.push_back(histograms ? (source ? *source : CStats()) : m_page.SeriesInRowOrder(index));
    labels << m_page.SeriesCaption(index);
    format = CommonFormat(m_page.SeriesInfo(index).Format, format);
  }
  chart->SetChartType(histograms ? 2 : 0);
  chart->SetData(data);
  if (histograms)
    SetChartNumberFormat(*chart, 3, format);
  else
    SetChartNumberFormat(*chart, format, 0);
  chart->SetLegendData(labels);
  chart->AxisCaption = m_page.PageTitle();
  chart->Draw(false);
  return chart;
}

std::unique_ptr<ZelmChart> ChartCommands::CompareMetrics(const std::vector<MetricId>& metrics,
                                                         bool histograms) {
  std::vector<int> series;
  for (MetricId metric : metrics)
    if (const int index = m_page.FindSeries(metric); index > 0) series.push_back(index);
  if (series.empty()) {
    Warn(QStringLiteral("No data"));
    return nullptr;
  }
  return MakeCompareChart(series, histograms);
}

bool ChartCommands::TimeChartPossible() {
  if (m_page.Pages(m_page.CurrentPage()).Rows >= 2) return true;
  Warn(QStringLiteral("This chart requires at least 2 analyses of the same project."));
  return false;
}

std::unique_ptr<ZelmChart> ChartCommands::TimeChartOfMetrics(const std::vector<MetricId>& metrics) {
  if (!TimeChartPossible()) return nullptr;
  return MakeXYChart(kDateMetric, metrics, QString(), true);
}

bool ChartCommands::XYChartPossible() {
  if (m_page.Pages(m_page.CurrentPage()).Rows >= 2) return true;
  Warn(QStringLiteral("XY chart requires at least 2 lines of data."));
  return false;
}

void ChartCommands::FillMetricCombo(ListModel& combo, MetricId selected, bool withNone) const {
  combo.Clear();
  if (withNone) combo.AddItem(QStringLiteral("<None>"), 0);
  const PageRecord& record = m_page.Pages(m_page.CurrentPage());
  for (int i = 0; record.FirstColumn > 0 && i < record.ColumnCount; ++i) {
    const MetricId metric = m_page.SeriesMetric(record.FirstColumn + i);
    combo.AddItem(m_page.MetricCaption(metric), metric);
  }
  int chosen = -1;
  for (int i = 0; i < combo.ListCount() && chosen < 0; ++i)
    if (combo.ItemData(i) == selected) chosen = i;
  if (chosen < 0 && combo.ListCount() > 0) chosen = 0;
  if (chosen >= 0) combo.SetListIndex(chosen);
}

bool ChartCommands::TimePreset(MetricId metric, QString& title, std::vector<MetricId>& metrics) {
  struct Preset {
    std::vector<MetricId> members;
    const char* title;
    std::vector<MetricId> metrics;
  };
  static const std::vector<Preset> presets = {
      {{1201, 1221}, "Procedures and dead procedures", {1201, 1221}},
      {{1202, 1222}, "Variables and dead variables", {1202, 1222}},
      {{1203, 1223}, "Constants and dead constants", {1203, 1223, 1206}},
      {{1206, 1205}, "Enums and enum constants", {1205, 1206}},
      {{1008, 1002}, "Physical and logical lines", {1002, 1008}},
      {{2011, 2001}, "Physical and logical lines/file", {2001, 2011}},
      {{3111, 3101}, "Physical and logical lines/class", {3101, 3111}},
      {{4011, 4001}, "Physical and logical lines/proc", {4001, 4011}},
      {{1226}, "Lines, total and in dead procedures", {1226, 1002}},
      {{1009, 1010, 1011}, "Logical lines", {1009, 1010, 1011}},
      {{2012, 2013, 2014}, "Logical lines/file", {2012, 2013, 2014}},
      {{4012, 4013, 4014}, "Logical lines/proc", {4012, 4013, 4014}},
      {{1012, 1013, 1014}, "Logical line distribution", {1012, 1013, 1014}},
      {{2015, 2016, 2017}, "Logical line distribution file average", {2015, 2016, 2017}},
      {{1420, 1421}, "Reuse and Specialization Ratio", {1420, 1421}},
  };
  for (const Preset& preset : presets) {
    for (MetricId member : preset.members) {
      if (member != metric) continue;
      title = QString::fromUtf8(preset.title);
      metrics = preset.metrics;
      return true;
    }
  }
  return false;
}

std::unique_ptr<ZelmChart> ChartCommands::MakeTimeChart(int series) {
  if (series == 0 || !m_page.Series(series)) return nullptr;
  const MetricId metric = m_page.SeriesMetric(series);
  QString title;
  std::vector<MetricId> metrics;
  if (TimePreset(metric, title, metrics)) return MakeXYChart(kDateMetric, metrics, title, true);
  return MakeXYChart(kDateMetric, metric, QString(), true);
}

std::unique_ptr<ZelmChart> ChartCommands::MakePageChart(int series) {
  return m_page.CurrentPage() == 2 ? MakeTimeChart(series) : MakeHistogram(series);
}

std::unique_ptr<ZelmChart> ChartCommands::MakeXYChart(MetricId x, MetricId y, const QString& title,
                                                      bool timeChart) {
  return XYChart(x, {y}, false, title, timeChart);
}

std::unique_ptr<ZelmChart> ChartCommands::MakeXYChart(MetricId x, const std::vector<MetricId>& y,
                                                      const QString& title, bool timeChart) {
  return XYChart(x, y, true, title, timeChart);
}

std::unique_ptr<ZelmChart> ChartCommands::XYChart(MetricId x, const std::vector<MetricId>& y,
                                                  bool list, const QString& title, bool timeChart) {
  MetricRead& reader = m_page.Reader();
  std::vector<MetricId> ys = y;
  if (list) {
    for (MetricId id : ys) {
      if (reader.MetricAvailable(id)) continue;
      // One metric missing drops the whole list: there is no partial chart.
      ys = {0};
      list = false;
      break;
    }
  }
  if (ys.empty()) ys = {0};
  std::vector<CStats> data;
  QStringList labels;
  data.push_back(reader.GetValues(x));
  labels << m_page.MetricCaption(x);
  for (MetricId id : ys) {
    data.push_back(reader.GetValues(id));
    labels << m_page.MetricCaption(id);
  }
  QString chartTitle = title;
  if (!list && chartTitle.isEmpty()) {
    chartTitle = m_page.Definitions().GetMetricName(ys.front(), NameAbbreviation) +
                 QLatin1Char(' ') + m_page.Definitions().GetMetricName(ys.front(), NameLong);
  }

  auto chart = std::make_unique<ZelmChart>();
  if (!timeChart)
    chart->SetChartType(6);
  else
    chart->SetChartType(m_page.CurrentPage() == 2 && m_page.TimeStyle() > 0 ? 5 : 4);

  if (timeChart) {
    // Points run in rising date: every series is laid out anew in the order
    // of the sorted dates, holes kept.
    CStats& dates = data.front();
    const std::int32_t n = dates.count();
    std::vector<std::int32_t> order(static_cast<size_t>(n));
    dates.Sort(1);
    for (std::int32_t k = 1; k <= n; ++k)
      order[static_cast<size_t>(k - 1)] = dates.GetOriginalIndex(k);
    dates.Sort(0);
    for (CStats& s : data) {
      CStats sorted;
      sorted.Init(n, true);
      for (std::int32_t k = 1; k <= n; ++k) {
        double value = 0;
        if (s.ValueAtIndexDefined(order[static_cast<size_t>(k - 1)], value))
          sorted.AddValueIndex(value, k);
      }
      sorted.CalcStats();
      s = std::move(sorted);
    }
  }

  chart->SetData(data);
  // The values of y stand on the vertical axis, those of x on the horizontal.
  SetChartNumberFormat(*chart, m_page.MetricFormatOnPage(ys.front(), 0),
                       m_page.MetricFormatOnPage(x, 0));
  chart->SetLegendData(labels);
  chart->ShowLegend = ys.size() > 1;
  if (!chartTitle.isEmpty()) chart->Title = chartTitle;
  chart->AxisCaption = m_page.PageTitle();
  chart->Draw(false);
  return chart;
}

std::unique_ptr<ZelmChart> ChartCommands::GetCorrelationChart(MetricId x, MetricId y) {
  if (x == y) return nullptr;
  const MetricDefinitions& names = m_page.Definitions();
  const QString title = QStringLiteral("Y=") + names.GetMetricName(y, NameAbbreviation) +
                        QStringLiteral(", X=") + names.GetMetricName(x, NameAbbreviation);
  return MakeXYChart(x, y, title, false);
}

std::unique_ptr<ZelmChart> ChartCommands::MakePieOfLimits(int series) {
  const CStats* source = m_page.Series(series);
  if (series < 1 || !source) {
    Warn(QStringLiteral("No data selected."));
    return nullptr;
  }
  if (m_page.CurrentPage() == 2 && m_page.TimeStyle() > 0) {
    Warn(QStringLiteral("You are viewing metric changes in time. Limits do not apply."));
    return nullptr;
  }
  MetricLimits limits;
  if (!limits.Load(MetricLimits::GetCurrentLimitID())) return nullptr;
  const MetricId metric = m_page.SeriesMetric(series);
  if (!limits.RuleExists(metric)) {
    Warn(QStringLiteral("No limit for selected metric."));
    return nullptr;
  }
  CStats values = *source;
  const std::int32_t count = values.count();
  const std::int32_t out = limits.CalcOutsideLimits(values, metric);
  CStats pie;
  pie.Init(2, false);
  pie.AddValue(count - out);
  pie.AddValue(out);
  pie.CalcStatsQuick();
  const double share = count > 0 ? static_cast<double>(out) / count : 0.0;
  const QStringList labels{
      m_page.Definitions().GetMetricName(metric, NameAbbreviation) +
          QStringLiteral(" within limits"),
      QStringLiteral("Out of limits (") + FormatPattern(share, "0%") + QLatin1Char(')')};

  auto chart = std::make_unique<ZelmChart>();
  chart->SetChartType(9);
  chart->SetData({pie});
  chart->SetDataColors({Rgb(87, 121, 26), Rgb(220, 54, 50)});
  chart->AxisCaption = m_page.PageTitle();
  chart->Title = SeriesTitle(series);
  chart->SetDataLabels(labels);
  chart->ShowLegend = true;
  chart->Draw(false);
  return chart;
}

std::unique_ptr<ZelmChart> ChartCommands::MakeKiviatOfLimits() {
  MetricLimits limits;
  if (!limits.Load(MetricLimits::GetCurrentLimitID())) {
    Warn(QStringLiteral("No limits loaded, no chart available."));
    return nullptr;
  }
  const int page = m_page.CurrentPage();
  const PageRecord& record = m_page.Pages(page);
  std::vector<double> shares;
  QStringList labels;
  for (int i = 0; record.Loaded && i < record.ColumnCount; ++i) {
    const int index = record.FirstColumn + i;
    const MetricId metric = m_page.SeriesMetric(index);
    if (!limits.RuleExists(metric)) continue;
    if (MetricDefinitions::GetMetricClass(metric) != ClassProject && page < 3) continue;
    double share = 1;
    if (const CStats* source = m_page.Series(index); source && source->count() > 0) {
      CStats values = *source;
      share = static_cast<double>(values.count() - limits.CalcOutsideLimits(values, metric)) /
              values.count();
    }
    shares.push_back(share);
    labels << m_page.SeriesCaption(index);
  }
  if (shares.empty()) {
    Warn(QStringLiteral("No limits in effect, no chart available."));
    return nullptr;
  }
  // A Kiviat needs at least three axes.
  while (shares.size() < 3) {
    shares.push_back(1);
    labels << QStringLiteral("-");
  }
  CStats values;
  values.Init(static_cast<std::int32_t>(shares.size()), false);
  for (double share : shares) values.AddValue(share);
  values.CalcStatsQuick();

  auto chart = std::make_unique<ZelmChart>();
  chart->SetChartType(8);
  chart->SetDataKiviat({values}, labels, true);
  chart->SetSeriesColor(1, 0xFF0000);
  chart->Title =
      QStringLiteral("Metrics within limits: ") + m_page.Combo(PageCombo::MetricLimit).Text();
  chart->AxisCaption = m_page.PageTitle();
  chart->Draw(false);
  return chart;
}

bool ChartCommands::CorrelationText(bool forReport, QString& matrix, QString& regressions) {
  matrix.clear();
  regressions.clear();
  const int page = m_page.CurrentPage();
  const PageRecord& record = m_page.Pages(page);
  if (page == 0) {
    Warn(QStringLiteral(
        "Correlation analysis is not available on this page. See help for explanation."));
    return false;
  }
  if (record.Rows < 3) {
    Warn(QStringLiteral(
        "You need to have at least 3 data lines before correlation analysis is possible."));
    return false;
  }
  if (!record.Loaded) {
    Warn(QStringLiteral("No data loaded on page."));
    return false;
  }
  if (record.ColumnCount < 2) {
    Warn(QStringLiteral("Must have several data series on page."));
    return false;
  }
  BusyCursor busy;
  const bool timeMode = page == 2;
  std::vector<int> usable;
  for (int i = 0; i < record.ColumnCount; ++i) {
    const int index = record.FirstColumn + i;
    const CStats* series = m_page.Series(index);
    if (series && series->count() >= 3 && series->StdDev > 0) usable.push_back(index);
  }
  const auto isColumn = [&](size_t place) {
    return place + 1 < usable.size() &&
           (!timeMode || m_page.SeriesMetric(usable[place]) == kDateMetric);
  };
  QString header;
  for (size_t j = 0; j < usable.size(); ++j)
    if (isColumn(j)) header += QLatin1Char('\t') + m_page.SeriesCaption(usable[j]);

  QString body;
  for (size_t i = 1; i < usable.size(); ++i) {
    CStats& y = *m_page.Series(usable[i]);
    const QString yName = m_page.SeriesCaption(usable[i]);
    QString line = yName;
    bool anyLine = false;
    for (size_t j = 0; j < i; ++j) {
      if (!isColumn(j)) continue;
      CStats& x = *m_page.Series(usable[j]);
      double a = 0, b = 0, r = 0;
      std::int32_t n = 0;
      line += QLatin1Char('\t');
      if (!x.Regression(y, a, b, r, n)) {
        line += QStringLiteral("N/A");
        continue;
      }
      if (!CorrelationIsSignificant(r, n)) {
        if (!forReport) line += QLatin1Char('-');
        continue;
      }
      const QString cell = FormatFixed(r, 4);
      line += forReport && r < 0 ? QStringLiteral("@@") + cell + QStringLiteral("$$") : cell;
      const QString fit = QStringLiteral(" (R²=") + FormatPattern(r * r, "0%") + QLatin1Char(')');
      if (!timeMode) {
        regressions += yName + QStringLiteral(" = ") +
                       LinearFormulaText(a, b, m_page.SeriesCaption(usable[j])) + fit + kLineEnd;
      } else {
        const bool small = std::round(b * 100) == 0;
        regressions += yName + QStringLiteral(": ") + FormatDecimals(b, 1, small ? 8 : 3) +
                       QStringLiteral(" / day") + fit + kLineEnd;
      }
      anyLine = true;
    }
    body += line + kLineEnd;
    if (anyLine) regressions += kLineEnd;
  }
  matrix = QStringLiteral("Correlation r") + header + kLineEnd + body + header + kLineEnd;
  return true;
}

}  // namespace ombrelle
