#pragma once

#include <QString>

namespace ombrelle {

// The folder of the program's own files named `name` ("www" for the help,
// "sample" for the sample databases): beside the program as the build
// leaves them, or, for an installed program in "<prefix>/bin", in
// "<prefix>/share/ombrelle/<name>". The folder beside the program when
// neither exists.
QString ProgramDataFolder(const QString& programFolder, const QString& name);

}  // namespace ombrelle
