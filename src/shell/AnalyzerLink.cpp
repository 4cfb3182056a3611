#include "shell/AnalyzerLink.h"

namespace ombrelle {

bool SendToAnalyzer(const QString&) {
  // No analysis program can listen here: the link server is absent, which
  // is not reported.
  return false;
}

}  // namespace ombrelle
