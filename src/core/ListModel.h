#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <QString>
#include <QStringList>

namespace ombrelle {

// One entry of a ListModel: its text, the 32-bit number that travels with it,
// the texts of the further columns of a list view and a tag of its own.
struct ListItem {
  QString Text;
  std::int32_t ItemData = 0;
  QStringList SubItems;  // SubItems[0] is sub-item 1, the second column
  QString Tag;
};

// The content of a drop-down list, list box or list view, kept apart from any
// widget: items, the selected position, a tag and visibility. The model layer
// fills it; a window binds a widget to it and follows its notifications.
// Positions are 0-based, as in the widgets; -1 means no selection.
class ListModel {
 public:
  void Clear();
  // Appends an item; returns its position.
  int AddItem(const QString& text, std::int32_t itemData = 0);
  // Removes the item at `index`; the selection stays on the same item, or
  // moves to the item that takes its place when the selected one goes.
  void RemoveItem(int index);

  int ListCount() const { return static_cast<int>(m_items.size()); }
  // Text and number of an item; "" and 0 outside the list.
  QString List(int index) const;
  std::int32_t ItemData(int index) const;
  // The item itself; only for positions 0..ListCount() - 1.
  const ListItem& Item(int index) const { return m_items.at(static_cast<size_t>(index)); }

  // Sub-item `subItem` (1 for the second column) of an item; "" when unset.
  QString SubItem(int index, int subItem) const;
  void SetSubItem(int index, int subItem, const QString& text);
  QString ItemTag(int index) const;
  void SetItemTag(int index, const QString& tag);

  // The selected position, -1 for none. Setting a position outside the list
  // selects nothing. Each change of the selection is reported to the
  // selection handler, which can read Tag() to tell a change made by the
  // program from one made by the user.
  int ListIndex() const { return m_listIndex; }
  void SetListIndex(int index);
  // Text of the selected item; "" without a selection.
  QString Text() const { return List(m_listIndex); }

  const QString& Tag() const { return m_tag; }
  void SetTag(const QString& tag) { m_tag = tag; }
  bool Visible() const { return m_visible; }
  void SetVisible(bool visible) { m_visible = visible; }

  // Called after the items change (Clear, AddItem, RemoveItem, item texts).
  void SetItemsChangedHandler(std::function<void()> handler) {
    m_itemsChanged = std::move(handler);
  }
  // Called after the selected position changes, with the new position.
  void SetSelectionChangedHandler(std::function<void(int)> handler) {
    m_selectionChanged = std::move(handler);
  }

 private:
  bool Valid(int index) const { return index >= 0 && index < ListCount(); }
  void ItemsChanged() const;

  std::vector<ListItem> m_items;
  int m_listIndex = -1;
  QString m_tag;
  bool m_visible = true;
  std::function<void()> m_itemsChanged;
  std::function<void(int)> m_selectionChanged;
};

}  // namespace ombrelle
