#include "shell/ui/TableMenus.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

#include "shell/PageModel.h"
#include "shell/TableExport.h"

namespace ombrelle {

namespace {

QAction* NewEntry(QMenu* menu, QAction* before, const char* name, const char* caption) {
  auto* action = new QAction(QString::fromUtf8(caption), menu);
  action->setObjectName(QString::fromLatin1(name));
  menu->insertAction(before, action);
  return action;
}

}  // namespace

QMenu* WindowMenu(QMainWindow& window, const char* name, const char* caption, const char* before) {
  QMenuBar* bar = window.menuBar();
  if (auto* existing =
          bar->findChild<QMenu*>(QString::fromLatin1(name), Qt::FindDirectChildrenOnly))
    return existing;
  auto* menu = new QMenu(QString::fromUtf8(caption), bar);
  menu->setObjectName(QString::fromLatin1(name));
  QAction* place = nullptr;
  if (before) {
    if (auto* next =
            bar->findChild<QMenu*>(QString::fromLatin1(before), Qt::FindDirectChildrenOnly))
      place = next->menuAction();
  }
  bar->insertMenu(place, menu);
  return menu;
}

void AddTableMenus(QMainWindow& window, PageModel& model, QMenu* file, QAction* fileExit) {
  PageModel* page = &model;
  QObject::connect(NewEntry(file, fileExit, "mFileExport", "&Export table..."), &QAction::triggered,
                   file, [page] { TableExport(*page).ExportTableDialog(); });
  QObject::connect(NewEntry(file, fileExit, "mFileXML", "Export X&ML..."), &QAction::triggered,
                   file, [page] { TableExport(*page).ExportXmlDialog(); });

  QMenu* edit = WindowMenu(window, "mEdit", "&Edit", "mOptions");
  QObject::connect(NewEntry(edit, nullptr, "mEditCopy", "&Copy table"), &QAction::triggered, edit,
                   [page] { TableExport(*page).CopyTable(); });
  QObject::connect(NewEntry(edit, nullptr, "mEditFind", "&Find line..."), &QAction::triggered, edit,
                   [page] { TableExport(*page).FindLine(false); });
  QObject::connect(NewEntry(edit, nullptr, "mEditFindAgain", "Find &again"), &QAction::triggered,
                   edit, [page] { TableExport(*page).FindLine(true); });

  QMenu* report = WindowMenu(window, "mReport", "&Report", "mOptions");
  QObject::connect(NewEntry(report, nullptr, "mReportView0", "&Data on current page"),
                   &QAction::triggered, report, [page] { TableExport(*page).ReportView(false); });
  QObject::connect(NewEntry(report, nullptr, "mReportView1", "D&ata+Summary on current page"),
                   &QAction::triggered, report, [page] { TableExport(*page).ReportView(true); });
}

}  // namespace ombrelle
