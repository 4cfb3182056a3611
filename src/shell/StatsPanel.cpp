#include "shell/StatsPanel.h"

#include "grid/OwnerGridLogic.h"
#include "limits/MetricLimits.h"
#include "shell/PageModel.h"
#include "shell/StartupState.h"
#include "stats/CStats.h"
#include "support/FormatNum.h"
#include "support/SeriesText.h"
#include "support/SettingsStore.h"

namespace ombrelle {

namespace {

constexpr int kCountFormat = 1;
constexpr int kAverageFormat = 7;

#define OMBRELLE_PANEL_CAPTION(name, text)               \
  const QString& StatsPanel::name() {                    \
    static const QString caption = QStringLiteral(text); \
    return caption;                                      \
  }

}  // namespace

OMBRELLE_PANEL_CAPTION(CaptionAvg, "Average")
OMBRELLE_PANEL_CAPTION(CaptionMedian, "Median")
OMBRELLE_PANEL_CAPTION(CaptionStdDev, "StdDev")
OMBRELLE_PANEL_CAPTION(CaptionRange, "Min..Max")
OMBRELLE_PANEL_CAPTION(CaptionQ5Q95, "5%..95%")
OMBRELLE_PANEL_CAPTION(CaptionSum, "Sum")
OMBRELLE_PANEL_CAPTION(CaptionCount, "Count")
OMBRELLE_PANEL_CAPTION(CaptionOutliers, "Outliers")
OMBRELLE_PANEL_CAPTION(CaptionExtremeOutliers, "Extreme outl.")
OMBRELLE_PANEL_CAPTION(CaptionSkew, "Skew")
OMBRELLE_PANEL_CAPTION(CaptionKurtosis, "Kurtosis")
OMBRELLE_PANEL_CAPTION(CaptionLimits, "Limit")
OMBRELLE_PANEL_CAPTION(CaptionProblematic, "Problematic")

#undef OMBRELLE_PANEL_CAPTION

bool StatsPanel::FullStatsAvailable() const {
  if (m_page.CurrentPage() == 0) return false;
  if (m_page.CurrentPage() == 2 && m_page.TimeStyle() == 0) return false;
  return true;
}

QString StatsPanel::SkewText(const CStats& stats, const QString& defaultText) {
  return ombrelle::SkewText(stats, defaultText);
}

QString StatsPanel::KurtosisText(const CStats& stats, const QString& defaultText) {
  return ombrelle::KurtosisText(stats, defaultText);
}

QString StatsPanel::SumText(int series) const {
  const CStats* stats = m_page.Series(series);
  if (!stats) return {};
  const int format = m_page.SeriesInfo(series).Format;
  const int metricClass = MetricDefinitions::GetMetricClass(m_page.SeriesMetric(series));
  if (m_page.CurrentPage() <= 2 && metricClass > 0) return {};
  if ((format >= 3 && format <= 6) || format == 9) return {};
  return FormatMetric(format, stats->Sum);
}

QString StatsPanel::OutlierText(CStats& stats, int format, bool extreme, bool bracketed) {
  return ombrelle::OutlierText(stats, format, extreme, bracketed);
}

void StatsPanel::UpdateStats(int series) {
  const MetricDefinitions& definitions = m_page.Definitions();
  const MetricId id = m_page.SeriesMetric(series);
  StatsTexts texts;
  CStats* stats = series >= 1 ? m_page.Series(series) : nullptr;
  if (series >= 1) {
    QString title =
        m_page.SeriesCaption(series) + QLatin1Char(' ') + definitions.GetMetricName(id, NameLong);
    texts.Title = title.replace(QLatin1Char('&'), QStringLiteral("&&"));
    texts.Descr = definitions.GetMetricName(id, NameDescription);
  }
  if (!stats) {
    m_texts = texts;
    if (m_page.View()) m_page.View()->StatsChanged();
    return;
  }

  const int f0 = m_page.MetricFormatOnPage(id, 0);
  const int f1 = m_page.MetricFormatOnPage(id, 1);
  const int f2 = m_page.MetricFormatOnPage(id, 2);
  CStats& s = *stats;
  texts.Count = FormatMetric(kCountFormat, s.count());
  if (s.count() > 0) {
    texts.Range = FormatMetric(f0, s.Min) + QStringLiteral(" .. ") + FormatMetric(f0, s.Max);
    if (FullStatsAvailable()) {
      texts.Avg = FormatMetric(f1, s.Mean);
      texts.Median = FormatMetric(f1, s.Median());
      texts.StdDev = FormatMetric(f2, s.StdDev);
      texts.Q5Q95 = FormatMetric(f0, s.Q5()) + QStringLiteral(" .. ") + FormatMetric(f0, s.Q95());
      texts.Skew = SkewText(s, QString());
      texts.Kurtosis = KurtosisText(s, QString());
      texts.Sum = SumText(series);
      texts.Outliers = OutlierText(s, f0, false, false);
      texts.ExtremeOutliers = OutlierText(s, f0, true, false);
    }
  }

  MetricLimits limits;
  if (limits.Load(MetricLimits::GetCurrentLimitID())) {
    if (!limits.RuleExists(id)) {
      texts.Limits = QStringLiteral("None");
      texts.Problematic = QStringLiteral("-");
    } else {
      const std::int32_t outside = limits.CalcOutsideLimits(s, id);
      texts.Limits = limits.GetRuleString(id, false);
      if (s.count() < 1) {
        texts.Problematic = QStringLiteral("0");
      } else {
        const double share = static_cast<double>(outside) / s.count();
        texts.Problematic = QString::number(outside) + QStringLiteral(" (") +
                            FormatFixed(share * 100.0, 0) + QStringLiteral("%)");
      }
    }
  }
  m_texts = texts;
  if (m_page.View()) m_page.View()->StatsChanged();
}

void StatsPanel::LoadCurrentLimits() { m_page.Limits().Load(MetricLimits::GetCurrentLimitID()); }

void StatsPanel::UpdateLimitView() {
  LoadCurrentLimits();
  UpdateStats(m_page.CurrentSeries());
  if (m_page.Grid()) m_page.Grid()->Refresh();
}

bool StatsPanel::DisplayCharts() const { return Startup().DisplayCharts; }

void StatsPanel::ToggleDisplayCharts() {
  StartupState& state = Startup();
  state.DisplayCharts = !state.DisplayCharts;
  if (m_page.View()) m_page.View()->MenuChecksChanged();
  // Stored as the text of a 16-bit truth value: -1 on, 0 off.
  SaveSetting(QStringLiteral("Options"), QStringLiteral("DisplayCharts"),
              state.DisplayCharts ? QStringLiteral("-1") : QStringLiteral("0"));
  UpdatePageChart(m_page.CurrentSeries());
  UpdateGridChart(3);
}

}  // namespace ombrelle
