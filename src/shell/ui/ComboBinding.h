#pragma once

#include <functional>

#include <QObject>

class QComboBox;

namespace ombrelle {

class ListModel;

// Keeps a drop-down widget showing a ListModel: its items, its selected
// position and its visibility. A choice of the user goes to `chosen` with the
// position; the list itself is changed only by the model.
class ComboBinding : public QObject {
  Q_OBJECT

 public:
  ComboBinding(ListModel& list, QComboBox& combo, std::function<void(int)> chosen,
               QObject* parent = nullptr);

  // Copies the items and the selection into the widget, raising no signal.
  void SyncItems();
  // Copies the items when they changed since the last copy.
  void SyncIfChanged();
  // Copies the selected position only.
  void SyncSelection();
  // Shows or hides the widget as the list says; true when that changed.
  bool SyncVisibility();

  QComboBox& Widget() const { return m_combo; }

 private:
  ListModel& m_list;
  QComboBox& m_combo;
  std::function<void(int)> m_chosen;
  // The model adds items one by one; the widget is refilled once, later.
  bool m_itemsChanged = false;
  bool m_syncQueued = false;
};

}  // namespace ombrelle
