#include "shell/ui/MainWindowRoad.h"

#include <QApplication>

#include "shell/StartupState.h"
#include "shell/ui/frmMetrics.h"
#include "support/UiServices.h"

namespace ombrelle {

void RunMainWindow() {
  if (!qobject_cast<QApplication*>(QCoreApplication::instance())) {
    Ui().MsgBox(QStringLiteral("The table view needs a display."), MsgStyle::Exclamation,
                UiServices::AppTitle());
    return;
  }
  frmMetrics window;
  window.Load(Startup().InputFile);
  QApplication::exec();
}

}  // namespace ombrelle
