#include "core/ListModel.h"

namespace ombrelle {

void ListModel::Clear() {
  const bool hadSelection = m_listIndex != -1;
  m_items.clear();
  m_listIndex = -1;
  ItemsChanged();
  if (hadSelection && m_selectionChanged) m_selectionChanged(-1);
}

int ListModel::AddItem(const QString& text, std::int32_t itemData) {
  ListItem item;
  item.Text = text;
  item.ItemData = itemData;
  m_items.push_back(std::move(item));
  ItemsChanged();
  return ListCount() - 1;
}

void ListModel::RemoveItem(int index) {
  if (!Valid(index)) return;
  m_items.erase(m_items.begin() + index);
  const int before = m_listIndex;
  if (m_listIndex > index) {
    --m_listIndex;
  } else if (m_listIndex == index && m_listIndex >= ListCount()) {
    m_listIndex = ListCount() - 1;
  }
  ItemsChanged();
  // The selected item changed when it was the one removed.
  if ((before == index || before != m_listIndex) && m_selectionChanged) {
    m_selectionChanged(m_listIndex);
  }
}

QString ListModel::List(int index) const { return Valid(index) ? m_items[index].Text : QString(); }

std::int32_t ListModel::ItemData(int index) const {
  return Valid(index) ? m_items[index].ItemData : 0;
}

QString ListModel::SubItem(int index, int subItem) const {
  if (!Valid(index) || subItem < 1) return QString();
  return m_items[index].SubItems.value(subItem - 1);
}

void ListModel::SetSubItem(int index, int subItem, const QString& text) {
  if (!Valid(index) || subItem < 1) return;
  QStringList& subItems = m_items[index].SubItems;
  while (subItems.size() < subItem) subItems.append(QString());
  subItems[subItem - 1] = text;
  ItemsChanged();
}

QString ListModel::ItemTag(int index) const {
  return Valid(index) ? m_items[index].Tag : QString();
}

void ListModel::SetItemTag(int index, const QString& tag) {
  if (Valid(index)) m_items[index].Tag = tag;
}

void ListModel::SetListIndex(int index) {
  const int next = Valid(index) ? index : -1;
  if (next == m_listIndex) return;
  m_listIndex = next;
  if (m_selectionChanged) m_selectionChanged(m_listIndex);
}

void ListModel::ItemsChanged() const {
  if (m_itemsChanged) m_itemsChanged();
}

}  // namespace ombrelle
