#include "shell/ui/DatabasesMenu.h"

#include <QAction>
#include <QMenu>
#include <QWidget>

#include "core/ui/frmMetricDatabases.h"
#include "shell/PageModel.h"

namespace ombrelle {

void AddDatabasesMenuEntry(QMenu& file, PageModel& model, QWidget& window) {
  QAction* action = file.addAction(QStringLiteral("&Databases..."));
  action->setObjectName(QStringLiteral("mFileDatabases"));
  QObject::connect(action, &QAction::triggered, &window, [&model, &window] {
    model.ManageDatabases([&window] { frmMetricDatabases::Display(&window); });
  });
}

}  // namespace ombrelle
