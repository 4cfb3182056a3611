#pragma once

#include <cstdint>
#include <vector>

#include <QString>

namespace ombrelle {

// The content of a list or combo box without the widget: item texts, each
// with a 32-bit number, and the selected item. Windows copy it into their
// control; the limit sets and metric selections fill it.
class ChoiceList {
 public:
  struct Item {
    QString text;
    std::int32_t data = 0;
  };

  void Clear() {
    m_items.clear();
    m_selected = -1;
  }
  // Appends an item; returns its 0-based index.
  int AddItem(const QString& text, std::int32_t data) {
    m_items.push_back({text, data});
    return static_cast<int>(m_items.size()) - 1;
  }
  int Count() const { return static_cast<int>(m_items.size()); }
  const Item& At(int index) const { return m_items.at(static_cast<size_t>(index)); }
  const std::vector<Item>& Items() const { return m_items; }

  // 0-based index of the first item carrying `data`; -1 when none does.
  int FindData(std::int32_t data) const {
    for (size_t i = 0; i < m_items.size(); ++i)
      if (m_items[i].data == data) return static_cast<int>(i);
    return -1;
  }

  // The selected index, -1 for none.
  int Selected() const { return m_selected; }
  void SetSelected(int index) { m_selected = (index >= 0 && index < Count()) ? index : -1; }
  // Data of the selected item; `fallback` when nothing is selected.
  std::int32_t SelectedData(std::int32_t fallback) const {
    return m_selected >= 0 ? m_items[static_cast<size_t>(m_selected)].data : fallback;
  }

 private:
  std::vector<Item> m_items;
  int m_selected = -1;
};

}  // namespace ombrelle
