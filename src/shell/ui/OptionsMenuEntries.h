#pragma once

class QMenu;
class QWidget;

namespace ombrelle {

class PageModel;

// Puts "&Selections..." (mOptionsSelections) and "&Limits..." (mOptionsLimits)
// at the top of the Options menu of the main window `window`, whose page
// model they refresh after their dialogs.
void AddOptionsDialogEntries(QMenu& options, PageModel& model, QWidget* window);

}  // namespace ombrelle
