#pragma once

class QAction;
class QMainWindow;
class QMenu;

namespace ombrelle {

class PageModel;

// The main window's top-level menu named `name` ("mEdit", "mReport"), made
// with `caption` and placed before the menu named `before` (at the end when
// there is none) the first time it is asked for. Every part of the window
// that adds entries to a shared menu goes through this.
QMenu* WindowMenu(QMainWindow& window, const char* name, const char* caption, const char* before);

// The entries of the table commands: File > Export table... and Export XML...
// (placed before `fileExit`), Edit > Copy table, Find line..., Find again,
// and Report > Data on current page, Data+Summary on current page.
void AddTableMenus(QMainWindow& window, PageModel& model, QMenu* file, QAction* fileExit);

}  // namespace ombrelle
