#include "shell/ui/OptionsMenuEntries.h"

#include <QAction>
#include <QMenu>

#include "limits/ui/frmMetricLimitMaintenance.h"
#include "limits/ui/frmMetricSelection.h"
#include "shell/OptionsCommands.h"

namespace ombrelle {

void AddOptionsDialogEntries(QMenu& options, PageModel& model, QWidget* window) {
  QAction* first = options.actions().isEmpty() ? nullptr : options.actions().first();
  auto* selections = new QAction(QStringLiteral("&Selections..."), &options);
  selections->setObjectName(QStringLiteral("mOptionsSelections"));
  auto* limits = new QAction(QStringLiteral("&Limits..."), &options);
  limits->setObjectName(QStringLiteral("mOptionsLimits"));
  options.insertAction(first, selections);
  options.insertAction(first, limits);
  if (first) options.insertSeparator(first);
  QObject::connect(selections, &QAction::triggered, window, [&model, window] {
    OptionsSelections(model, [window] { return frmMetricSelection::Display(window); });
  });
  QObject::connect(limits, &QAction::triggered, window, [&model, window] {
    OptionsLimits(model, [window] { frmMetricLimitMaintenance::Display(window); });
  });
}

}  // namespace ombrelle
