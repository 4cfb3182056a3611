#pragma once

#include <cstdint>

#include <QString>

#include "limits/ChoiceList.h"

namespace ombrelle {

// The dialog that chooses, adds, edits, deletes, imports and exports limit
// sets ("Metric limits"), without its widgets: the list of sets and what each
// button does. Editing runs through MetricLimits::Edit and View; messages and
// file dialogs go through the user-interface service.
class LimitMaintenanceModel {
 public:
  static QString Title() { return QStringLiteral("Metric limits"); }
  // Filters of the file dialogs.
  static QString ImportFilter() { return QStringLiteral("Metric limits (*.mtl);;All files (*)"); }
  static QString ExportFilter() { return QStringLiteral("Metric limits (*.mtl)"); }
  // A file name for a set: its name without the characters file names
  // cannot hold on any desktop, and ".mtl".
  static QString ProposedFileName(const QString& setName);

  // Fills the list, selecting the current set.
  LimitMaintenanceModel();

  // LimitList.
  const ChoiceList& List() const { return m_list; }
  void SetListIndex(int index) { m_list.SetSelected(index); }
  // The number of the selected set; 0 (no limits) when none is selected.
  std::int32_t SelectedSet() const { return m_list.SelectedData(0); }
  bool HasSelection() const { return m_list.Selected() >= 0; }

  // bEdit's caption: "&View" for a built-in set, "&Edit" for a stored one.
  QString EditCaption() const;
  // bRemove is for stored sets only.
  bool RemoveEnabled() const { return HasSelection() && SelectedSet() > 0; }

  // bSelect: the selected set becomes current and the dialog closes.
  void Select();
  // bAdd: a new set, edited; when accepted it joins the list, selected.
  void Add();
  // bEdit: edits a stored set, shows a built-in one.
  void Edit();
  // bRemove: asks, then deletes the stored set.
  void Remove();
  // bImport: asks for a file and imports it as a new set.
  void Import();
  // bExport: asks for a file name and writes the selected set to it.
  void Export();
  // bClose and Esc: close without changing the current set.
  void Close() { m_closed = true; }
  bool Closed() const { return m_closed; }

 private:
  // Refills the list and selects the set `selected`.
  void Refill(std::int32_t selected);

  ChoiceList m_list;
  bool m_closed = false;
};

}  // namespace ombrelle
