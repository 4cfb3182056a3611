#pragma once

#include <QString>

namespace ombrelle {

// Path surgery, file tests and safe file names. Paths are POSIX paths: "/"
// separates, an absolute path starts with "/". The string routines never
// touch the file system.

// `path` made absolute against `base` with "." and ".." folded. An absolute
// `path` (starting with "/") stands for itself, folded; an empty `base` means
// the current directory. A trailing "/" of `base` is dropped unless it is the
// root. ".." never climbs above the root.
QString ResolvePath(const QString& base, const QString& path);

// `folder`, "/" when it does not end in one, `name`; "." and ".." folded as in
// ResolvePath. An absolute `name` stands for itself. A relative result stays
// relative: a ".." that has nothing left to fold is kept.
QString JoinPath(const QString& folder, const QString& name);
// The part before the last "/" ("" for "/a.txt" and for "a.txt").
QString FileFolder(const QString& path);
// The part behind the last "/".
QString FileNameOnly(const QString& path);
// The part behind the last "." of the file name, without the dot; "" for none.
QString FileExtension(const QString& path);
// The path without the last "." of its file name and what follows it.
QString RemoveExtension(const QString& path);
// RemoveExtension, ".", `extension`.
QString ReplaceExtension(const QString& path, const QString& extension);
// True for a path that starts with "/".
bool IsAbsolutePath(const QString& path);
// True when the path holds "*" or "?".
bool PathHasWildcards(const QString& path);

// File tests. None of them can fail: an unreadable path simply tests false.
bool FileExists(const QString& path);
bool FolderExists(const QString& path);
// Whether the folder lists no entry (hidden ones included; "." and ".."
// skipped). A folder that cannot be listed counts as empty.
bool FolderIsEmpty(const QString& path);
bool FolderHasSubfolders(const QString& path);

// Deletes a file for good. Refuses (false) a relative path and a path that
// names no file but holds wildcards; a folder of that name gives false. A file
// that does not exist counts as success. True when the file is gone.
bool DeleteFile(const QString& path);
// Moves a file to the desktop's trash (`undo`) or deletes it for good. Every
// failure shows an exclamation box; `silent` only suppresses progress
// feedback, which this platform does not show.
bool RecycleFile(const QString& path, bool undo = true, bool silent = true);
// Creates the folder and every missing parent; failures show an exclamation
// box. True when the folder exists afterwards.
bool CreateFolderPath(const QString& path);

// The temporary folder: the system's when it exists, else "Temp" below the
// local application data folder, then below the application data folder.
QString GetTempFolder();
// A full path of a file that does not exist yet in the temporary folder:
// `prefix` (the first three letters or digits of the application title when
// empty, "$" when that has none) filled to at least six characters with
// random characters, then "." and `extension` when one is given.
QString GetUniqueTempName(const QString& prefix = {}, const QString& extension = {});

// Bijective base 26 in lower-case letters: 1 "a", 26 "z", 27 "aa". "" for n < 1.
QString NumberToLetters(long long n);

// How MakeUniqueFilename treats the bare `base`.
namespace UniqueName {
constexpr int TryBaseFirst = 0;  // `base` itself, then `base` "x" "a", "xb", ...
constexpr int AlwaysNumber = 1;  // the letters are always added
}  // namespace UniqueName

// The full path of the first name in `folder` that no file or folder has:
// `base` (per `mode`), then `base` + "x" + NumberToLetters(n) for n = 1..9999,
// each + "." + `extension` when one is given. `base` is shortened to keep the
// path within 259 characters. "" when no name is free.
QString MakeUniqueFilename(const QString& folder, const QString& base, const QString& extension,
                           int mode = UniqueName::TryBaseFirst);

// Any text made into a safe file name: transliterated to 7-bit text, control
// characters removed, reserved characters replaced, device names marked with
// "#", "." and ".." replaced, and cut to 63 characters at a word break.
QString MakeValidFilename(const QString& name);

}  // namespace ombrelle
