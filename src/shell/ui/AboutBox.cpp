#include "shell/ui/AboutBox.h"

#include <QLabel>
#include <QMouseEvent>
#include <QTimer>
#include <QVBoxLayout>

namespace ombrelle {

namespace {

// Labels pass their clicks on to the box, so a click on the text closes it too.
QLabel* MakeLabel(const QString& text, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  label->setAlignment(Qt::AlignCenter);
  label->setAttribute(Qt::WA_TransparentForMouseEvents);
  return label;
}

}  // namespace

AboutBox::AboutBox(const QString& title, QWidget* parent, int autoCloseMs) : QDialog(parent) {
  setObjectName(QStringLiteral("frmAbout"));
  setWindowTitle(QStringLiteral("About Ombrelle"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(32, 24, 32, 24);
  layout->setSpacing(12);

  QLabel* heading = MakeLabel(title, this);
  heading->setObjectName(QStringLiteral("lblTitle"));
  QFont big = heading->font();
  big.setPointSizeF(big.pointSizeF() * 1.6);
  big.setBold(true);
  heading->setFont(big);
  layout->addWidget(heading);

  QLabel* line = MakeLabel(Description(), this);
  line->setObjectName(QStringLiteral("lblDescription"));
  line->setWordWrap(true);
  layout->addWidget(line);

  if (autoCloseMs > 0) {
    m_timer = new QTimer(this);
    m_timer->setSingleShot(true);
    connect(m_timer, &QTimer::timeout, this, &QDialog::accept);
    m_timer->start(autoCloseMs);
  }
}

QString AboutBox::Description() {
  return QStringLiteral(
      "Reads, analyses and reports the software-metrics databases (.qvz) of the Tarnwick code "
      "analyser.");
}

AboutBox* AboutBox::ShowAtStart(const QString& title, QWidget* parent, int autoCloseMs) {
  auto* box = new AboutBox(title, parent, autoCloseMs);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setModal(false);
  box->show();
  return box;
}

void AboutBox::mousePressEvent(QMouseEvent* event) {
  event->accept();
  accept();
}

}  // namespace ombrelle
