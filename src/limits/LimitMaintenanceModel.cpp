#include "limits/LimitMaintenanceModel.h"

#include <algorithm>

#include "limits/MetricLimits.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

const QString kExtension = QStringLiteral("mtl");

void ShowError(const QString& text) {
  Ui().MsgBox(text, MsgStyle::Exclamation, UiServices::AppTitle());
}

}  // namespace

QString LimitMaintenanceModel::ProposedFileName(const QString& setName) {
  static const QString forbidden = QStringLiteral("\\/:*?\"<>|");
  QString name;
  for (const QChar c : setName)
    if (!forbidden.contains(c) && c.unicode() >= 0x20) name += c;
  name = name.trimmed();
  // A name of dots alone would be no file name.
  if (name.isEmpty() || name.count(QLatin1Char('.')) == name.size())
    name = QStringLiteral("limits");
  return name + QLatin1Char('.') + kExtension;
}

LimitMaintenanceModel::LimitMaintenanceModel() { MetricLimits().FillList(m_list); }

void LimitMaintenanceModel::Refill(std::int32_t selected) {
  MetricLimits().FillList(m_list);
  m_list.SetSelected(m_list.FindData(selected));
}

QString LimitMaintenanceModel::EditCaption() const {
  return HasSelection() && SelectedSet() < 1 ? QStringLiteral("&View") : QStringLiteral("&Edit");
}

void LimitMaintenanceModel::Select() {
  if (!HasSelection()) return;
  MetricLimits::SetCurrentLimitID(SelectedSet());
  m_closed = true;
}

void LimitMaintenanceModel::Add() {
  MetricLimits limits;
  limits.Generate();
  if (limits.Edit()) Refill(limits.GetID());
}

void LimitMaintenanceModel::Edit() {
  if (!HasSelection()) return;
  const std::int32_t nr = SelectedSet();
  MetricLimits limits;
  if (!limits.Load(nr)) {
    ShowError(QStringLiteral("Cannot load limits to edit.\n") + limits.ErrorMessage);
    return;
  }
  if (limits.ReadOnly()) {
    limits.View();
  } else if (limits.Edit()) {
    Refill(nr);  // the name may have changed
  }
}

void LimitMaintenanceModel::Remove() {
  if (!RemoveEnabled()) return;
  if (Ui().MsgBox(QStringLiteral("Delete the selected limits?"), MsgStyle::YesNoQuestion,
                  UiServices::AppTitle()) != MsgResult::Yes)
    return;
  const int index = m_list.Selected();
  MetricLimits::Delete(static_cast<std::int16_t>(SelectedSet()));
  MetricLimits().FillList(m_list);
  // The item that took the deleted one's place, or the last one.
  m_list.SetSelected(std::min(index, m_list.Count() - 1));
}

void LimitMaintenanceModel::Import() {
  FileDialogRequest request;
  request.title = QStringLiteral("Import from file");
  request.filter = ImportFilter();
  request.defaultExtension = kExtension;
  request.overwritePrompt = false;
  const QString file = Ui().OpenFileDialog(request);
  if (file.isEmpty()) return;
  const std::int32_t nr = MetricLimits().Import(file);
  if (nr > 0) Refill(nr);
}

void LimitMaintenanceModel::Export() {
  if (!HasSelection()) return;
  MetricLimits limits;
  if (!limits.Load(SelectedSet())) {
    ShowError(QStringLiteral("Cannot load limits to export.\n") + limits.ErrorMessage);
    return;
  }
  FileDialogRequest request;
  request.title = QStringLiteral("Export to file");
  request.filter = ExportFilter();
  request.defaultExtension = kExtension;
  request.fileName = ProposedFileName(limits.GetName());
  const QString file = Ui().SaveFileDialog(request);
  if (!file.isEmpty()) limits.Export(file);
}

}  // namespace ombrelle
