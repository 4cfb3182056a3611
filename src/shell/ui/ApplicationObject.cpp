#include "shell/ui/ApplicationObject.h"

#include <QApplication>
#include <QGuiApplication>

namespace ombrelle {

std::unique_ptr<QCoreApplication> MakeApplicationObject(int& argc, char** argv, bool hasDisplay,
                                                        bool batchReports) {
  if (hasDisplay) return std::make_unique<QApplication>(argc, argv);
  if (batchReports) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    return std::make_unique<QGuiApplication>(argc, argv);
  }
  return std::make_unique<QCoreApplication>(argc, argv);
}

}  // namespace ombrelle
