#pragma once

namespace ombrelle {

// The interactive road: shows the main window and returns when the last
// window has closed. Runs with the application object and the dialog service
// in place.
void RunMainWindow();

}  // namespace ombrelle
