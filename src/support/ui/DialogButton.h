#pragma once

#include <QPushButton>

namespace ombrelle {

// A named push button that leaves the Return key to the dialog's own default.
inline QPushButton* MakeDialogButton(const QString& name, const QString& caption, QWidget* parent) {
  auto* button = new QPushButton(caption, parent);
  button->setObjectName(name);
  button->setAutoDefault(false);
  return button;
}

}  // namespace ombrelle
