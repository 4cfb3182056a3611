#pragma once

#include <QString>
#include <QStringList>

namespace ombrelle {

// The names (not paths) of the databases in `folder`: files whose names end
// in ".qvz" in any case, hidden ones (a leading dot) left out, as are
// folders, broken links and other special entries, in the order of the
// names' 16-bit codes. Read straight from the folder, with no status call
// for plain files. A folder that is missing or cannot be read lists nothing.
QStringList ListDatabaseFiles(const QString& folder);

}  // namespace ombrelle
