#include "limits/MetricSelection.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <QSet>

#include "limits/ChoiceList.h"
#include "limits/LimitNumbers.h"
#include "support/SettingsStore.h"

namespace ombrelle {

namespace {

const QString kSelectionsSection = QStringLiteral("Selections");
constexpr std::int32_t kMaxStored = std::numeric_limits<std::int16_t>::max();

// The order in which lists show the built-in selections.
constexpr std::int16_t kBuiltInOrder[] = {
    SelectionSet::Simple,          SelectionSet::Classic,       SelectionSet::LineCounts,
    SelectionSet::ObjectOriented,  SelectionSet::Complexity,    SelectionSet::All,
    SelectionSet::StatementCounts, SelectionSet::Documentation, SelectionSet::Variables,
    SelectionSet::Constants,       SelectionSet::Starter,
};

}  // namespace

QString MetricSelection::BuiltInName(std::int32_t SelectionNr) {
  switch (SelectionNr) {
    case SelectionSet::Simple:
      return QStringLiteral("<Simple metrics>");
    case SelectionSet::Classic:
      return QStringLiteral("<Tarnwick Classic>");
    case SelectionSet::All:
      return QStringLiteral("<All>");
    case SelectionSet::ObjectOriented:
      return QStringLiteral("<Object Oriented>");
    case SelectionSet::Complexity:
      return QStringLiteral("<Complexity metrics>");
    case SelectionSet::LineCounts:
      return QStringLiteral("<Line counts>");
    case SelectionSet::StatementCounts:
      return QStringLiteral("<Statement counts>");
    case SelectionSet::Documentation:
      return QStringLiteral("<Documentation metrics>");
    case SelectionSet::Variables:
      return QStringLiteral("<Variable metrics>");
    case SelectionSet::Constants:
      return QStringLiteral("<Constant metrics>");
    case SelectionSet::Starter:
      return QStringLiteral("<Starter metrics>");
    default:
      return {};
  }
}

QString MetricSelection::SelectionKey(std::int32_t SelectionNr) {
  return kSelectionsSection + QLatin1Char('\\') + QString::number(SelectionNr);
}

void MetricSelection::Load(std::int32_t SelectionNr) {
  ClearSelected();
  m_selectionNr = static_cast<std::int16_t>(
      std::clamp<std::int32_t>(SelectionNr, std::numeric_limits<std::int16_t>::min(),
                               std::numeric_limits<std::int16_t>::max()));
  if (m_selectionNr > 0) {
    LoadFromSettings(m_selectionNr);
  } else {
    LoadBuiltIn(m_selectionNr);
  }
  // Every table shows when each row was measured.
  if (!IsSelected(kMetricDate)) AddSelected(kMetricDate);
  if (!IsSelected(kMetricDays)) AddSelected(kMetricDays);
}

void MetricSelection::AddRange(std::initializer_list<MetricId> metrics) {
  m_selected.insert(m_selected.end(), metrics.begin(), metrics.end());
}

void MetricSelection::AddSupportedOfClass(MetricId first, MetricClass metricClass) {
  for (MetricId id = first; id <= kLastMetricId; ++id)
    if (MetricDefinitions::GetMetricClass(id) == metricClass && m_catalogue.MetricSupported(id))
      AddSelected(id);
}

void MetricSelection::LoadBuiltIn(std::int32_t SelectionNr) {
  m_name = BuiltInName(SelectionNr);
  switch (SelectionNr) {
    case SelectionSet::Simple:
      AddRange({1002, 1009, 2001, 2012, 3101, 3112, 3001, 3212, 4001, 4012, 4120, 4140, 1100, 2100,
                3150, 4050, 5001, 5002, 5010});
      break;
    case SelectionSet::Classic:
      AddRange({1002, 1009, 1010, 1011, 1015, 1240, 1243, 1241, 1242, 1244, 2001, 2012,
                2013, 2014, 2020, 2040, 2041, 3101, 3112, 3113, 3114, 4001, 4012, 4013,
                4014, 4020, 4120, 4140, 4141, 4100, 4101, 4102, 4103, 4200, 4201, 4180});
      break;
    case SelectionSet::LineCounts:
      AddRange({1002, 1008, 1009, 1010, 1011, 1012, 1013, 1014, 2001, 2011, 2012, 2013, 2014,
                2015, 2016, 2017, 3101, 3111, 3112, 3113, 3114, 4001, 4011, 4012, 4013, 4014});
      break;
    case SelectionSet::ObjectOriented:
      AddRange({1500, 1501, 1490, 1491, 1504, 1505, 1510, 1511, 1512, 1513, 1400, 1405, 1406, 1401,
                1402, 1403, 1404, 1421, 1420});
      AddSupportedOfClass(1, ClassClass);
      break;
    case SelectionSet::Complexity:
      AddRange({4120, 4121, 4122, 1301, 1300, 1302, 1303, 4103, 4160, 4161, 4162,
                1325, 1326, 1009, 2012, 4012, 4140, 4141, 4142, 4143, 4201, 4200,
                2041, 2040, 3320, 1111, 2111, 3161, 4061, 5001, 5002, 5010, 5013});
      break;
    case SelectionSet::All:
      for (MetricId id = 1; id <= kLastMetricId; ++id)
        if (m_catalogue.MetricSupported(id)) AddSelected(id);
      break;
    case SelectionSet::StatementCounts:
      AddRange({1100, 1101, 1102, 1103, 1104, 1110, 1111, 2100, 2101, 2102,
                2103, 2104, 2110, 2111, 3150, 3151, 3152, 3153, 3154, 3160,
                3161, 4050, 4051, 4052, 4053, 4054, 4060, 4061});
      break;
    case SelectionSet::Documentation:
      AddRange({1008, 1009, 1010, 1013, 1015, 1016, 1240, 1243, 1241, 1242, 2011,
                2012, 2013, 2016, 3111, 3112, 3113, 4011, 4012, 4013, 4020, 4180});
      break;
    case SelectionSet::Variables:
      AddRange({1202, 1207, 1208, 1222, 1241, 1600, 1601, 1602, 1603, 1622, 2035, 3212, 3213, 3214,
                4030, 4035, 4080, 4081, 4082});
      AddSupportedOfClass(5000, ClassVariable);
      break;
    case SelectionSet::Constants:
      AddRange({1203, 1223, 1205, 1206, 1228, 1229, 1280, 1285, 1340, 2036});
      break;
    case SelectionSet::Starter:
      AddRange({1002, 1009, 1010, 1013, 1019, 1100, 1200, 1201, 1202, 1203, 1204, 1205, 1206,
                1207, 1208, 1210, 1211, 1230, 1400, 2001, 2012, 2013, 2016, 2034, 2035, 3001,
                3101, 3212, 4001, 4012, 4013, 4030, 4120, 4140, 5001, 5002, 5010});
      break;
    default:
      break;
  }
}

void MetricSelection::LoadFromSettings(std::int32_t SelectionNr) {
  const QString section = SelectionKey(SelectionNr);
  m_name = GetSetting(section, QStringLiteral("Name"));
  const std::int32_t count = ToWholeNumber(
      ParseLimitNumber(GetSetting(section, QStringLiteral("Count"), QStringLiteral("0"))), 0,
      kMaxStored);
  for (std::int32_t i = 1; i <= count; ++i) {
    const double metric = ParseLimitNumber(
        GetSetting(section, QStringLiteral("Selected") + QString::number(i), QStringLiteral("0")));
    AddSelected(ToWholeNumber(metric, std::numeric_limits<std::int32_t>::min(),
                              std::numeric_limits<std::int32_t>::max()));
  }
}

void MetricSelection::AddSelected(MetricId metric) { m_selected.push_back(metric); }

bool MetricSelection::IsSelected(MetricId metric) const {
  return std::find(m_selected.begin(), m_selected.end(), metric) != m_selected.end();
}

void MetricSelection::SetIsSelected(MetricId metric, bool selected) {
  if (ReadOnly() || IsSelected(metric) == selected) return;
  if (selected) {
    AddSelected(metric);
  } else {
    RemoveSelected(metric);
  }
}

void MetricSelection::RemoveSelected(MetricId metric) {
  const auto found = std::find(m_selected.begin(), m_selected.end(), metric);
  if (found != m_selected.end()) m_selected.erase(found);
}

void MetricSelection::FillList(ChoiceList& list) const {
  list.Clear();
  for (std::int16_t nr : kBuiltInOrder) list.AddItem(BuiltInName(nr), nr);
  const QStringList keys = EnumSubkeys(kSelectionsSection);
  for (const QString& key : keys) {
    const std::int32_t nr =
        ToWholeNumber(ParseLimitNumber(key), std::numeric_limits<std::int16_t>::min(), kMaxStored);
    list.AddItem(GetSetting(kSelectionsSection + QLatin1Char('\\') + key, QStringLiteral("Name")),
                 nr);
  }
  list.SetSelected(list.FindData(Current()));
}

void MetricSelection::Save() const {
  if (ReadOnly()) return;
  const SettingsBatch batch;
  const QString section = SelectionKey(m_selectionNr);
  DeleteSettingsTree(section);
  SaveSetting(section, QStringLiteral("Name"), m_name);
  SaveSetting(section, QStringLiteral("Count"), QString::number(m_selected.size()));
  for (size_t i = 0; i < m_selected.size(); ++i)
    SaveSetting(section, QStringLiteral("Selected") + QString::number(i + 1),
                QString::number(m_selected[i]));
}

void MetricSelection::Delete(std::int32_t SelectionNr) {
  if (SelectionNr > 0) DeleteSettingsTree(SelectionKey(SelectionNr));
}

std::int16_t MetricSelection::FindFreeSelectionID() {
  const QStringList keys = EnumSubkeys(kSelectionsSection);
  const QSet<QString> taken(keys.begin(), keys.end());
  std::int16_t nr = 1;
  while (nr < kMaxStored && taken.contains(QString::number(nr))) ++nr;
  return nr;
}

void MetricSelection::Create(const QString& name) {
  ClearSelected();
  m_selectionNr = FindFreeSelectionID();
  m_name = name;
}

void MetricSelection::Rename(const QString& NewName) {
  if (!ReadOnly()) m_name = NewName;
}

std::int16_t MetricSelection::Current() {
  const double value = ParseLimitNumber(
      GetSetting(kSelectionsSection, QStringLiteral("CurrentSelection"), QStringLiteral("-1000")));
  const std::int32_t nr = ToWholeNumber(value, std::numeric_limits<std::int16_t>::min(),
                                        std::numeric_limits<std::int16_t>::max());
  if (nr == -1000) return SelectionSet::Starter;
  if (nr >= 1) {
    return GetSetting(SelectionKey(nr), QStringLiteral("Name")).isEmpty()
               ? SelectionSet::Starter
               : static_cast<std::int16_t>(nr);
  }
  return static_cast<std::int16_t>(nr);
}

void MetricSelection::SetCurrent(std::int32_t SelectionNr) {
  SaveSetting(kSelectionsSection, QStringLiteral("CurrentSelection"), QString::number(SelectionNr));
}

}  // namespace ombrelle
