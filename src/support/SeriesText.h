#pragma once

#include <QString>

namespace ombrelle {

class CStats;

// Texts describing a series that the statistics panel and the reports share.

// The skew, or `defaultText` when the series has no spread.
QString SkewText(const CStats& stats, const QString& defaultText);
// The kurtosis, or `defaultText` when the series has no spread.
QString KurtosisText(const CStats& stats, const QString& defaultText);
// The outlier fences (extreme ones with `extreme`) of a series of at least 10
// values in `format`: "<low, >high" naming only the fences values lie beyond,
// or with `bracketed` both as "[low, high]"; "-" otherwise.
QString OutlierText(CStats& stats, int format, bool extreme, bool bracketed);

}  // namespace ombrelle
