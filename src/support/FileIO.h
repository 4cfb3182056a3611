#pragma once

#include <QByteArray>
#include <QString>

namespace ombrelle {

// Whole-file writers, the save dialog wrapper and the shell folders.
//
// The three writers share their checks and messages: a relative path is
// refused ("Error saving to " path CR LF "Path not absolute."); a name that
// cannot be replaced (a folder, say) gives "Error overwriting file " path; any
// other failure "Error #" n " saving to " path ":" CR LF the system's text, n
// being the system's error number. Each writes to a temporary name beside the
// file and renames it into place, so a failure never leaves a half-written
// file under the final name and an old file stays as it was. Messages use the
// exclamation style; the result tells whether the file was written.

// `text` as Windows-1252 bytes; characters that code page lacks become "?".
bool SaveTextFile(const QString& path, const QString& text);
// `text` as UTF-16 little-endian with a byte-order mark.
bool SaveUnicodeFile(const QString& path, const QString& text);
bool SaveBinaryFile(const QString& path, const QByteArray& bytes);

// The save dialog through the user-interface service. `filter` is in Qt's
// form ("CSV files (*.csv);;All files (*)"); `extension` (without the dot) is
// added when the chosen name has none; the dialog asks before overwriting.
// Returns the chosen path, or "" when cancelled.
QString SaveFileDialog(const QString& extension, const QString& filter, const QString& folder,
                       const QString& fileName, const QString& title);

// Codes of GetSpecialFolder.
namespace SpecialFolder {
constexpr int Desktop = 0;
constexpr int Documents = 5;
constexpr int Music = 13;
constexpr int Videos = 14;
constexpr int AppData = 26;
constexpr int LocalAppData = 28;
constexpr int Pictures = 39;
constexpr int Profile = 40;
}  // namespace SpecialFolder

// A shell folder by its code (SpecialFolder); "" for a code this platform has
// no folder for. The folder need not exist yet.
QString GetSpecialFolder(int code);

}  // namespace ombrelle
