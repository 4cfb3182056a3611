#include "limits/MetricSelectionDialogModel.h"

#include "support/UiServices.h"

namespace ombrelle {

QString MetricSelectionDialogModel::ColumnCaption(int column) {
  switch (column) {
    case 1:
      return QStringLiteral("Metric");
    case 2:
      return QStringLiteral("Description");
    default:
      return {};
  }
}

QStringList MetricSelectionDialogModel::TabCaptions() {
  QStringList captions;
  for (int c = 0; c < kMetricClassCount; ++c)
    captions << MetricDefinitions::GetMetricClassName(c, false);
  return captions;
}

MetricSelectionDialogModel::MetricSelectionDialogModel() {
  m_startNr = MetricSelection::Current();
  m_shown.Load(m_startNr);
  m_startMetrics = m_shown.Selected();
  RefillList();
  FillRows();
}

void MetricSelectionDialogModel::RefillList() {
  m_shown.FillList(m_list);
  m_list.SetSelected(m_list.FindData(m_shown.GetID()));
}

void MetricSelectionDialogModel::Show(std::int32_t selectionNr) {
  m_shown.Load(selectionNr);
  FillRows();
}

void MetricSelectionDialogModel::PickSelection(int index) {
  if (index < 0 || index >= m_list.Count()) return;
  m_shown.Save();
  m_list.SetSelected(index);
  Show(m_list.At(index).data);
}

void MetricSelectionDialogModel::SetTabIndex(int index) {
  if (index < 0 || index >= kMetricClassCount) return;
  m_tab = index;
  FillRows();
}

void MetricSelectionDialogModel::FillRows() {
  m_rows.clear();
  m_description.clear();
  for (MetricId id = kFirstMetricId; id <= kLastMetricId; ++id) {
    if (MetricDefinitions::GetMetricClass(id) != m_tab || !m_catalogue.MetricSupported(id))
      continue;
    Row row;
    row.key = QStringLiteral("mtr") + QString::number(id);
    row.metric = id;
    row.abbreviation = m_catalogue.GetMetricName(id, NameAbbreviation);
    row.description = m_catalogue.GetMetricName(id, NameLong);
    row.checked = m_shown.IsSelected(id);
    m_rows.push_back(row);
  }
}

bool MetricSelectionDialogModel::SetChecked(int row, bool checked) {
  if (row < 0 || row >= static_cast<int>(m_rows.size())) return false;
  Row& r = m_rows[static_cast<size_t>(row)];
  m_shown.SetIsSelected(r.metric, checked);
  r.checked = m_shown.IsSelected(r.metric);
  return r.checked;
}

void MetricSelectionDialogModel::SetCurrentRow(int row) {
  if (row < 0 || row >= static_cast<int>(m_rows.size())) {
    m_description.clear();
    return;
  }
  const MetricId id = m_rows[static_cast<size_t>(row)].metric;
  m_description = m_catalogue.GetMetricName(id, NameDescription).trimmed();
  if (m_description.isEmpty()) m_description = m_catalogue.GetMetricName(id, NameLong);
}

void MetricSelectionDialogModel::Add() {
  const QString name = Ui().InputBox(QStringLiteral("Add selection:"), UiServices::AppTitle(),
                                     QStringLiteral("New name"));
  if (name.isEmpty()) return;
  m_shown.Save();
  m_shown.Create(name);
  m_shown.Save();
  // Loaded back, it holds DATE and DAYS like every selection.
  Show(m_shown.GetID());
  RefillList();
}

void MetricSelectionDialogModel::Rename() {
  if (!RenameEnabled()) return;
  const QString name =
      Ui().InputBox(QStringLiteral("Rename as:"), UiServices::AppTitle(), m_shown.GetName());
  if (name.isEmpty()) return;
  m_shown.Rename(name);
  m_shown.Save();
  RefillList();
}

void MetricSelectionDialogModel::Delete() {
  if (!DeleteEnabled()) return;
  if (Ui().MsgBox(QStringLiteral("Delete ") + m_shown.GetName() + QStringLiteral("?"),
                  MsgStyle::YesNoQuestion, UiServices::AppTitle()) != MsgResult::Yes)
    return;
  MetricSelection::Delete(m_shown.GetID());
  Show(MetricSelection::Current());
  RefillList();
}

bool MetricSelectionDialogModel::Close() {
  m_shown.Save();
  MetricSelection::SetCurrent(m_shown.GetID());
  MetricSelection current;
  current.Load(MetricSelection::Current());
  return current.GetID() != m_startNr || current.Selected() != m_startMetrics;
}

}  // namespace ombrelle
