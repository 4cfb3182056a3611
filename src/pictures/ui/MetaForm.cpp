#include "pictures/ui/MetaForm.h"

#include <algorithm>
#include <cmath>

#include <QAction>
#include <QGuiApplication>
#include <QScreen>
#include <QToolBar>
#include <QVBoxLayout>
#include <QWheelEvent>

#include "pictures/Metafile.h"
#include "pictures/ui/MetaView.h"

namespace ombrelle {

MetaForm::MetaForm(std::shared_ptr<Metafile> metafile, const QString& title, QWidget* owner)
    : QWidget(owner, Qt::Window) {
  setObjectName(QStringLiteral("MetaForm"));
  setAttribute(Qt::WA_DeleteOnClose);
  QString caption = title.section(QLatin1Char('\n'), 0, 0).trimmed();
  setWindowTitle(caption.isEmpty() ? QStringLiteral("Picture viewer") : caption);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  m_toolBar = new QToolBar(this);
  m_toolBar->setObjectName(QStringLiteral("Toolbar"));
  m_toolBar->setToolButtonStyle(Qt::ToolButtonTextOnly);
  layout->addWidget(m_toolBar);
  m_view = new MetaView(this);
  m_view->setFrameShape(QFrame::NoFrame);
  // The window already is the zoomed picture.
  m_view->SetCanZoom(false);
  layout->addWidget(m_view, 1);

  const auto add = [this](const char* name, const char* caption, auto slot) {
    QAction* action = m_toolBar->addAction(QString::fromLatin1(caption));
    action->setObjectName(QString::fromLatin1(name));
    connect(action, &QAction::triggered, this, slot);
  };
  add("cmdPrint", "Print", [this] { m_view->PrintOut(); });
  add("cmdSave", "Save", [this] { m_view->Save(); });
  add("cmdCopy", "Copy", [this] { m_view->CopyToClipboard(); });
  setMinimumWidth(kMinWidth);

  // First size: the picture's own, within the bounds and the screen.
  int width = 640;
  int height = 480;
  if (metafile) metafile->GetSize(width, height);
  int maxWidth = kMaxStartWidth;
  int maxHeight = kMaxStartHeight;
  if (const QScreen* screen = QGuiApplication::primaryScreen()) {
    maxWidth = std::min(maxWidth, screen->availableGeometry().width() * 9 / 10);
    maxHeight = std::min(maxHeight, screen->availableGeometry().height() * 8 / 10);
  }
  if (width > maxWidth || height > maxHeight) {
    const double scale = std::min(static_cast<double>(maxWidth) / std::max(width, 1),
                                  static_cast<double>(maxHeight) / std::max(height, 1));
    width = static_cast<int>(width * scale);
    height = static_cast<int>(height * scale);
  }
  m_view->SetMetafile(std::move(metafile));
  resize(std::max(width, kMinWidth), height + m_toolBar->sizeHint().height());
}

MetaForm* MetaForm::Display(std::shared_ptr<Metafile> metafile, const QString& title,
                            QWidget* owner) {
  auto* form = new MetaForm(std::move(metafile), title, owner);
  form->show();
  return form;
}

void MetaForm::Zoom(int steps) {
  if (steps == 0) return;
  const double factor = std::pow(1.1, steps);
  const int toolBar = m_toolBar->height();
  const QSize picture = m_view->size();
  const int width = std::max(kMinWidth, static_cast<int>(std::lround(picture.width() * factor)));
  const int height = std::max(40, static_cast<int>(std::lround(picture.height() * factor)));
  resize(width, height + toolBar);
}

void MetaForm::wheelEvent(QWheelEvent* event) {
  // One notch of a wheel is 120 units.
  const int steps = event->angleDelta().y() / 120;
  if (steps != 0) Zoom(steps);
  event->accept();
}

}  // namespace ombrelle
