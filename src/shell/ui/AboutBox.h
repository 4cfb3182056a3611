#pragma once

#include <QDialog>

class QTimer;

namespace ombrelle {

// The About box: the program's title and a line on what the program is. At
// start-up it closes itself after a few seconds; a click anywhere closes it
// at once. From the Help menu it stays until clicked or closed.
class AboutBox : public QDialog {
  Q_OBJECT

 public:
  // `autoCloseMs` above 0 closes the box by itself after that many milliseconds.
  AboutBox(const QString& title, QWidget* parent = nullptr, int autoCloseMs = 0);

  // The line under the title.
  static QString Description();
  // Shows a modeless box that closes itself after `autoCloseMs`; deleted on close.
  static AboutBox* ShowAtStart(const QString& title, QWidget* parent, int autoCloseMs = 4000);

  QTimer* CloseTimer() const { return m_timer; }

 protected:
  void mousePressEvent(QMouseEvent* event) override;

 private:
  QTimer* m_timer = nullptr;
};

}  // namespace ombrelle
