#include "shell/OptionsCommands.h"

#include "shell/PageModel.h"

namespace ombrelle {

void OptionsSelections(PageModel& model, const std::function<bool()>& dialog) {
  model.SetSelectionGuard(true);
  const bool changed = dialog && dialog();
  if (changed) model.ReloadPage();
  model.FillSelectionCombo();
  model.SetSelectionGuard(false);
}

void OptionsLimits(PageModel& model, const std::function<void()>& dialog) {
  if (dialog) dialog();
  model.FillLimitCombo();
  model.Panel().UpdateLimitView();
}

}  // namespace ombrelle
