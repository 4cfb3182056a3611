#pragma once

#include <memory>

class QCoreApplication;

namespace ombrelle {

// The application object a run needs: the full widget application with a
// display; without one, a GUI application on the offscreen platform for the
// report, table and chart switches (they measure and draw text), else a plain
// core application.
std::unique_ptr<QCoreApplication> MakeApplicationObject(int& argc, char** argv, bool hasDisplay,
                                                        bool batchReports);

}  // namespace ombrelle
