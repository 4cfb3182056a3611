#include "support/UiServices.h"

#include "support/ConsoleUiServices.h"

#include <QPagedPaintDevice>

namespace ombrelle {

namespace {
UiServices* g_current = nullptr;

UiServices& ConsoleService() {
  static ConsoleUiServices console;
  return console;
}
}  // namespace

void UiServices::BeginBusy() {
  if (++m_busy == 1) ShowBusy(true);
}

void UiServices::EndBusy() {
  if (m_busy <= 0) return;  // an unmatched end must not drive the count negative
  if (--m_busy == 0) ShowBusy(false);
}

std::unique_ptr<QPagedPaintDevice> UiServices::OpenPrinter(const QString&) { return nullptr; }

std::unique_ptr<QPagedPaintDevice> UiServices::ChoosePrinter(const QString& documentName) {
  return OpenPrinter(documentName);
}
QString UiServices::ChooseFolder(const FolderRequest& request) {
  QString folder = request.folder;
  for (;;) {
    const QString answer =
        BrowseFolder(request.prompt.isEmpty() ? request.title : request.prompt, folder);
    if (answer.isEmpty()) return QString();
    if (!request.accept || request.accept(answer)) return answer;
    folder = answer;
  }
}

QString UiServices::AppTitle() { return QStringLiteral("Ombrelle Viewer"); }

UiServices& Ui() { return g_current ? *g_current : ConsoleService(); }

UiServices* SetUi(UiServices* service) {
  UiServices* previous = g_current;
  g_current = service;
  return previous;
}

}  // namespace ombrelle
