#pragma once

#include "shell/ReportCommands.h"

class QWidget;

namespace ombrelle {

// The Qt forms of the report commands' list dialogs: `ListSelect` (one list,
// OK enabled by a click, a double click acts as OK) and `frmSelectProjects`
// (two lists, OK only while their choices differ).
class ProjectDialogsUi : public ProjectDialogs {
 public:
  explicit ProjectDialogsUi(QWidget* parent) : m_parent(parent) {}
  int ListSelect(const QString& title, const ListModel& list) override;
  bool SelectProjects(const ListModel& list, int& first, int& second) override;

 private:
  QWidget* m_parent;
};

}  // namespace ombrelle
