#include "support/SeriesText.h"

#include "stats/CStats.h"
#include "support/FormatNum.h"

namespace ombrelle {

namespace {
constexpr int kAverageFormat = 7;
}

QString SkewText(const CStats& stats, const QString& defaultText) {
  return stats.StdDev > 0 ? FormatMetric(kAverageFormat, stats.Skew) : defaultText;
}

QString KurtosisText(const CStats& stats, const QString& defaultText) {
  return stats.StdDev > 0 ? FormatMetric(kAverageFormat, stats.Kurtosis) : defaultText;
}

QString OutlierText(CStats& stats, int format, bool extreme, bool bracketed) {
  if (stats.count() < 10) return QStringLiteral("-");
  const double low = extreme ? stats.ExtremeOutlierLowerTail() : stats.OutlierLowerTail();
  const double high = extreme ? stats.ExtremeOutlierUpperTail() : stats.OutlierUpperTail();
  if (bracketed) {
    return QLatin1Char('[') + FormatMetric(format, low) + QStringLiteral(", ") +
           FormatMetric(format, high) + QLatin1Char(']');
  }
  QString text;
  if (low > stats.Min) text = QLatin1Char('<') + FormatMetric(format, low);
  if (high < stats.Max) {
    if (!text.isEmpty()) text += QStringLiteral(", ");
    text += QLatin1Char('>') + FormatMetric(format, high);
  }
  return text.isEmpty() ? QStringLiteral("-") : text;
}

}  // namespace ombrelle
