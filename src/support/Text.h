#pragma once

#include <QString>

namespace ombrelle {

// For each line (split at line feed) that holds tabs, every tab becomes as many
// blanks as bring the text after it to the 1-based `column` (at least one
// blank, so columns never run together). Text without a tab is returned as it
// stands.
QString ExpandTabs(const QString& text, int column);

}  // namespace ombrelle
