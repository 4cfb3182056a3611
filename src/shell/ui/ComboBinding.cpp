#include "shell/ui/ComboBinding.h"

#include <QComboBox>
#include <QSignalBlocker>

#include "core/ListModel.h"

namespace ombrelle {

ComboBinding::ComboBinding(ListModel& list, QComboBox& combo, std::function<void(int)> chosen,
                           QObject* parent)
    : QObject(parent), m_list(list), m_combo(combo), m_chosen(std::move(chosen)) {
  // The model reports changed items here; a selection made by the program
  // comes through the page view.
  m_list.SetItemsChangedHandler([this] {
    m_itemsChanged = true;
    if (m_syncQueued) return;
    m_syncQueued = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
          m_syncQueued = false;
          SyncIfChanged();
        },
        Qt::QueuedConnection);
  });
  // `activated` also comes when the user picks the item already selected,
  // which runs its click again.
  connect(&m_combo, &QComboBox::activated, this, [this](int index) {
    if (m_chosen) m_chosen(index);
  });
  SyncItems();
}

void ComboBinding::SyncIfChanged() {
  if (m_itemsChanged) SyncItems();
}

void ComboBinding::SyncItems() {
  m_itemsChanged = false;
  const QSignalBlocker quiet(&m_combo);
  m_combo.clear();
  for (int i = 0; i < m_list.ListCount(); ++i) m_combo.addItem(m_list.List(i));
  m_combo.setCurrentIndex(m_list.ListIndex());
}

void ComboBinding::SyncSelection() {
  const QSignalBlocker quiet(&m_combo);
  if (m_itemsChanged || m_combo.count() != m_list.ListCount()) {
    SyncItems();
    return;
  }
  m_combo.setCurrentIndex(m_list.ListIndex());
}

bool ComboBinding::SyncVisibility() {
  // isHidden, not isVisible: the window itself may not be shown yet.
  const bool changed = m_combo.isHidden() == m_list.Visible();
  m_combo.setVisible(m_list.Visible());
  return changed;
}

}  // namespace ombrelle
