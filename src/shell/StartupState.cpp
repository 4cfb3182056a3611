#include "shell/StartupState.h"

namespace ombrelle {

StartupState& Startup() {
  static StartupState state;
  return state;
}

}  // namespace ombrelle
