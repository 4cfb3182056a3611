#pragma once

#include <functional>

namespace ombrelle {

class PageModel;

// Options > Selections...: the selections dialog runs with the selection
// combo's clicks held back; when it says the selection changed the page is
// loaded again; the combo is refilled either way. `dialog` shows the dialog
// and answers whether the selection changed.
void OptionsSelections(PageModel& model, const std::function<bool()>& dialog);

// Options > Limits...: the limit sets dialog, then the limit combo is
// refilled and the current set judges the table again.
void OptionsLimits(PageModel& model, const std::function<void()>& dialog);

}  // namespace ombrelle
