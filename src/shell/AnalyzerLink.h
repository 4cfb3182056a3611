#pragma once

#include <QString>

namespace ombrelle {

// Asks the running analysis program to move to a source location ("Move F ",
// "Move C ", "Move P " commands). The text link it listens on does not exist
// on this platform, so no command is delivered and the result is false.
bool SendToAnalyzer(const QString& command);

}  // namespace ombrelle
