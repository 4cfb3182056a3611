#include "shell/ui/MainWindowRoad.h"

#include "support/UiServices.h"

namespace ombrelle {

void RunMainWindow() {
  // The table view is not built yet; until it is, the interactive road says
  // so and ends.
  Ui().MsgBox(QStringLiteral("The table view is not part of this build yet. "
                             "Use /SAVEXML to export a database; qvzview /? lists the options."),
              MsgStyle::Information, UiServices::AppTitle());
}

}  // namespace ombrelle
