#include "shell/ui/ProjectDialogsUi.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFontMetrics>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/ListModel.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

QListWidget* FilledList(QWidget* parent, const ListModel& list, const char* name) {
  auto* widget = new QListWidget(parent);
  widget->setObjectName(QString::fromLatin1(name));
  for (int i = 0; i < list.ListCount(); ++i) {
    auto* item = new QListWidgetItem(list.List(i), widget);
    item->setData(Qt::UserRole, list.ItemData(i));
  }
  if (list.ListIndex() >= 0 && list.ListIndex() < list.ListCount()) {
    widget->setCurrentRow(list.ListIndex());
  }
  // Wide enough for the longest entry, within reason.
  const QFontMetrics metrics(widget->font());
  int width = metrics.horizontalAdvance(QStringLiteral("W")) * 30;
  for (int i = 0; i < list.ListCount(); ++i) {
    width = std::max(width, metrics.horizontalAdvance(list.List(i)) + 40);
  }
  widget->setMinimumWidth(std::min(width, 900));
  return widget;
}

int ItemData(const QListWidget* list) {
  const QListWidgetItem* item = list->currentItem();
  return item ? item->data(Qt::UserRole).toInt() : 0;
}

QDialogButtonBox* OkCancel(QDialog& dialog) {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
  buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("OK"));
  buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("Cancel"));
  QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  return buttons;
}

}  // namespace

int ProjectDialogsUi::ListSelect(const QString& title, const ListModel& list) {
  QDialog dialog(m_parent);
  dialog.setObjectName(QStringLiteral("ListSelect"));
  dialog.setWindowTitle(title);
  auto* layout = new QVBoxLayout(&dialog);
  QListWidget* widget = FilledList(&dialog, list, "List");
  widget->setMinimumHeight(240);
  layout->addWidget(widget);
  QDialogButtonBox* buttons = OkCancel(dialog);
  QPushButton* ok = buttons->button(QDialogButtonBox::Ok);
  ok->setEnabled(false);
  layout->addWidget(buttons);
  QObject::connect(widget, &QListWidget::itemClicked, ok, [ok] { ok->setEnabled(true); });
  QObject::connect(widget, &QListWidget::itemDoubleClicked, &dialog, &QDialog::accept);
  return dialog.exec() == QDialog::Accepted ? ItemData(widget) : 0;
}

bool ProjectDialogsUi::SelectProjects(const ListModel& list, int& first, int& second) {
  QDialog dialog(m_parent);
  dialog.setObjectName(QStringLiteral("frmSelectProjects"));
  dialog.setWindowTitle(QStringLiteral("Compare project status"));
  auto* layout = new QGridLayout(&dialog);
  auto* label1 = new QLabel(QStringLiteral("&Project:"), &dialog);
  label1->setObjectName(QStringLiteral("Label1"));
  auto* label2 = new QLabel(QStringLiteral("Compare &to:"), &dialog);
  label2->setObjectName(QStringLiteral("lblCompareTo"));
  QListWidget* list0 = FilledList(&dialog, list, "List0");
  QListWidget* list1 = FilledList(&dialog, list, "List1");
  label1->setBuddy(list0);
  label2->setBuddy(list1);
  layout->addWidget(label1, 0, 0);
  layout->addWidget(list0, 1, 0);
  layout->addWidget(label2, 0, 1);
  layout->addWidget(list1, 1, 1);
  QDialogButtonBox* buttons = OkCancel(dialog);
  layout->addWidget(buttons, 2, 0, 1, 2);
  QPushButton* ok = buttons->button(QDialogButtonBox::Ok);
  const auto update = [=] { ok->setEnabled(ItemData(list0) != ItemData(list1)); };
  QObject::connect(list0, &QListWidget::currentRowChanged, ok, update);
  QObject::connect(list1, &QListWidget::currentRowChanged, ok, update);
  update();
  if (dialog.exec() != QDialog::Accepted) return false;
  first = ItemData(list0);
  second = ItemData(list1);
  return first != second;
}

}  // namespace ombrelle
