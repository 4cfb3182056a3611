#pragma once

class QWidget;

namespace ombrelle {

// Saves and restores a top-level widget's placement under "WindowPlacement",
// keyed by its object name (its class name when it has none) and `index`
// (-1 for a window without one).
void SaveWindowPlacement(const QWidget& window, int index = -1);
// Returns whether a placement was stored for the window.
bool RestoreWindowPlacement(QWidget& window, int index = -1);

}  // namespace ombrelle
