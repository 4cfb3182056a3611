#pragma once

#include <QString>

namespace ombrelle {

class ReportPage;

// The current page written out as it is shown: CSV, an HTML table report or
// tab-delimited text (ExportKind). Every cell is entity-encoded, in every
// kind; captions stand as they are.

// The decimal separator of the locale, "." when it gives none; at most 5
// characters.
QString GetDecimalSeparator();
// The CSV field separator for the locale (see ListSeparatorFor).
QString GetListSeparator();
// The separator rule: the list separator ("," when empty) unless it equals
// the decimal separator, in which case ";" (or "," when the list separator
// is ";" itself), so that numbers and fields can be told apart. At most 5
// characters.
QString ListSeparatorFor(const QString& listSeparator, const QString& decimalSeparator);

// The whole file text of the page in `kind`: lines ended by CR LF. `summary`
// adds the summary table to the HTML kind; `listSeparator` separates CSV
// fields; `savedBy` is the closing line of the HTML kind.
QString TableText(const ReportPage& page, int kind, bool summary, const QString& listSeparator,
                  const QString& savedBy);

// Writes TableText to `file` (Windows-1252 bytes, through a temporary name)
// and opens it with the default handler. Refuses a name that cannot be
// replaced ("Cannot overwrite " file) and tells a file that cannot be made
// ("Cannot create " file CR LF the reason). True when the file was written.
bool WriteTable(const ReportPage& page, const QString& file, int kind, bool summary);

}  // namespace ombrelle
