#pragma once

#include <QString>

namespace ombrelle {

// The correlation matrix (tab-separated cells, CR LF rows, negative values
// marked "@@…$$") as an HTML table whose negative cells have the class "neg".
QString CorrelationMatrixHtml(const QString& matrix);
// The regression text (one formula a line, a blank line between groups) as
// paragraphs.
QString RegressionHtml(const QString& regression);

}  // namespace ombrelle
