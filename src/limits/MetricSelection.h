#pragma once

#include <cstdint>
#include <vector>

#include <QString>

#include "core/MetricDefinitions.h"

namespace ombrelle {

class ChoiceList;

// Numbers of the built-in selections; stored selections count from 1 up.
namespace SelectionSet {
constexpr std::int16_t Simple = -1;
constexpr std::int16_t Classic = -2;
constexpr std::int16_t All = -3;
constexpr std::int16_t ObjectOriented = -4;
constexpr std::int16_t Complexity = -5;
constexpr std::int16_t LineCounts = -6;
constexpr std::int16_t StatementCounts = -7;
constexpr std::int16_t Documentation = -8;
constexpr std::int16_t Variables = -9;
constexpr std::int16_t Constants = -10;
constexpr std::int16_t Starter = -11;
}  // namespace SelectionSet

// One named list of metric numbers that decides which columns the pages show:
// a built-in selection or one stored per user under "Selections\<n>". DATE
// and DAYS belong to every loaded selection.
class MetricSelection {
 public:
  // Loads selection `SelectionNr`; an unknown number leaves only DATE and DAYS.
  void Load(std::int32_t SelectionNr);

  // Appends `metric` to the selected metrics.
  void AddSelected(MetricId metric);
  bool IsSelected(MetricId metric) const;
  // Selects or deselects `metric`; nothing for a read-only selection.
  void SetIsSelected(MetricId metric, bool selected);
  // The selected metrics in their order.
  const std::vector<MetricId>& Selected() const { return m_selected; }
  int Count() const { return static_cast<int>(m_selected.size()); }

  // The built-in selections, then the stored ones, each with its number as
  // item data; selects the current selection.
  void FillList(ChoiceList& list) const;

  bool ReadOnly() const { return m_selectionNr < 1; }
  void ClearSelected() { m_selected.clear(); }

  // Writes a stored selection, replacing what was there; nothing for a
  // read-only one.
  void Save() const;
  // Removes stored selection `SelectionNr` from the settings; other numbers
  // do nothing.
  static void Delete(std::int32_t SelectionNr);
  // Makes this a new empty stored selection named `name` with the smallest
  // free number; nothing is written until Save.
  void Create(const QString& name);

  QString GetName() const { return m_name; }
  // Renames a stored selection (Save writes it); nothing for a read-only one.
  void Rename(const QString& NewName);

  // The remembered selection: <Starter metrics> on a fresh installation and
  // in place of a stored selection that is gone.
  static std::int16_t Current();
  static void SetCurrent(std::int32_t SelectionNr);

  std::int16_t GetID() const { return m_selectionNr; }

  // Name of built-in selection `SelectionNr`; empty for other numbers.
  static QString BuiltInName(std::int32_t SelectionNr);

 private:
  void LoadBuiltIn(std::int32_t SelectionNr);
  static QString SelectionKey(std::int32_t SelectionNr);
  void RemoveSelected(MetricId metric);
  static std::int16_t FindFreeSelectionID();
  void LoadFromSettings(std::int32_t SelectionNr);
  void AddRange(std::initializer_list<MetricId> metrics);
  void AddSupportedOfClass(MetricId first, MetricClass metricClass);

  MetricDefinitions m_catalogue;
  std::vector<MetricId> m_selected;
  QString m_name;
  std::int16_t m_selectionNr = 0;
};

}  // namespace ombrelle
