#pragma once

#include <QString>

namespace ombrelle {

// `path` made absolute against `base` with "." and ".." folded. An absolute
// `path` (starting with "/") stands for itself, folded; an empty `base` means
// the current directory. A trailing "/" of `base` is dropped unless it is the
// root. ".." never climbs above the root.
QString ResolvePath(const QString& base, const QString& path);

}  // namespace ombrelle
