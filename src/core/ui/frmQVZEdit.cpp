#include "core/ui/frmQVZEdit.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace ombrelle {

namespace {

QLineEdit* AddField(QFormLayout* form, QWidget* parent, const QString& name, const QString& label,
                    const QString& hint) {
  auto* edit = new QLineEdit(parent);
  edit->setObjectName(name);
  edit->setToolTip(hint);
  auto* caption = new QLabel(label, parent);
  caption->setBuddy(edit);
  form->addRow(caption, edit);
  return edit;
}

QLabel* AddLine(QVBoxLayout* layout, QWidget* parent, const QString& name) {
  auto* label = new QLabel(parent);
  label->setObjectName(name);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  layout->addWidget(label);
  return label;
}

}  // namespace

frmQVZEdit::frmQVZEdit(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmQVZEdit"));
  auto* layout = new QVBoxLayout(this);
  auto* form = new QFormLayout;
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  m_project = AddField(form, this, QStringLiteral("txtProject"), QStringLiteral("&Project:"),
                       QStringLiteral("Identifies the project. Should be constant accross "
                                      "different versions of the same program."));
  m_title = AddField(form, this, QStringLiteral("txtTitle"), QStringLiteral("&Title:"),
                     QStringLiteral("Descriptive human-readable name for the analyzed data. "
                                    "Example: MyProject v1.2"));
  m_date = AddField(form, this, QStringLiteral("txtDate"), QStringLiteral("&DATE:"),
                    QStringLiteral("Code last modified (yyyy-mm-dd)"));
  m_date->setMaxLength(10);
  layout->addLayout(form);
  layout->addSpacing(6);
  m_saved = AddLine(layout, this, QStringLiteral("lblSaved"));
  m_version = AddLine(layout, this, QStringLiteral("lblVersion"));
  m_fileDate = AddLine(layout, this, QStringLiteral("lblFileDate"));
  m_flags = AddLine(layout, this, QStringLiteral("lblFileFlags"));
  auto* buttons = new QDialogButtonBox(this);
  m_save = buttons->addButton(QStringLiteral("&Save"), QDialogButtonBox::AcceptRole);
  m_save->setObjectName(QStringLiteral("bSave"));
  m_save->setDefault(true);
  m_cancel = buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
  m_cancel->setObjectName(QStringLiteral("bCancel"));
  layout->addWidget(buttons);
  connect(m_save, &QPushButton::clicked, this, &frmQVZEdit::SaveClicked);
  connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);
  setMinimumWidth(460);
}

bool frmQVZEdit::Load(const QString& file) {
  setWindowTitle(QStringLiteral("Edit ") + file.section(u'/', -1));
  if (!m_model.Open(file)) return false;
  setWindowTitle(m_model.Caption());
  m_title->setText(m_model.Title);
  m_project->setText(m_model.Project);
  m_date->setText(m_model.DateText);
  m_saved->setText(m_model.SavedText());
  m_version->setText(m_model.VersionText());
  m_fileDate->setText(m_model.FileDateText());
  m_flags->setText(m_model.FlagsText());
  m_date->setFocus();
  m_date->selectAll();
  return true;
}

void frmQVZEdit::SaveClicked() {
  m_model.Title = m_title->text();
  m_model.Project = m_project->text();
  m_model.DateText = m_date->text();
  if (m_model.Save()) {
    accept();
    return;
  }
  QLineEdit* focus = nullptr;
  switch (m_model.FocusField()) {
    case QVZEditModel::Field::Title:
      focus = m_title;
      break;
    case QVZEditModel::Field::Project:
      focus = m_project;
      break;
    case QVZEditModel::Field::Date:
      focus = m_date;
      break;
    case QVZEditModel::Field::None:
      break;
  }
  if (focus) {
    focus->setFocus();
    focus->selectAll();
  }
}

bool frmQVZEdit::Display(const QString& file, QWidget* parent) {
  frmQVZEdit dialog(parent);
  if (!dialog.Load(file)) return false;
  return dialog.exec() == QDialog::Accepted;
}

}  // namespace ombrelle
