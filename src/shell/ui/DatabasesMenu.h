#pragma once

class QMenu;
class QWidget;

namespace ombrelle {

class PageModel;

// Adds "&Databases..." (mFileDatabases) to the File menu: the database
// manager over `window`, with the pages and the access object of `model`
// released around it.
void AddDatabasesMenuEntry(QMenu& file, PageModel& model, QWidget& window);

}  // namespace ombrelle
