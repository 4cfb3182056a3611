#include "pictures/ui/MetaView.h"

#include <QAction>
#include <QBuffer>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QSvgGenerator>

#include "pictures/GIFSaver.h"
#include "pictures/Metafile.h"
#include "pictures/ui/MetaForm.h"
#include "support/UiServices.h"

namespace ombrelle {

bool SaveSvgPicture(const Metafile& picture, const QString& file, int width, int height) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  {
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(QSize(width, height));
    generator.setViewBox(QRect(0, 0, width, height));
    generator.setResolution(96);
    generator.setTitle(picture.Title().section(QLatin1Char('\n'), 0, 0).trimmed());
    QPainter painter(&generator);
    painter.fillRect(QRect(0, 0, width, height), Qt::white);
    picture.PlayCentered(painter, 0, 0, static_cast<float>(width), static_cast<float>(height));
  }
  QString result;
  if (GIFSaver::WriteReplacing(file, bytes, result)) return true;
  Ui().MsgBox(result, MsgStyle::Exclamation, QString());
  return false;
}

MetaView::MetaView(QWidget* parent) : QFrame(parent) {
  setObjectName(QStringLiteral("MetaView"));
  setFocusPolicy(Qt::StrongFocus);
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::Base);
  m_model.SetSvgWriter(&SaveSvgPicture);
}

void MetaView::SetMetafile(std::shared_ptr<Metafile> metafile) {
  m_model.SetMetafile(std::move(metafile));
  update();
}

void MetaView::SetCentered(bool centered) {
  m_model.Centered = centered;
  update();
}

QSize MetaView::PictureSize() const { return contentsRect().size(); }

bool MetaView::CopyToClipboard() {
  return m_model.CopyToClipboard(PictureSize().width(), PictureSize().height());
}

bool MetaView::PrintOut() { return m_model.PrintOut(); }

bool MetaView::Save() { return m_model.Save(PictureSize().width(), PictureSize().height()); }

void MetaView::Zoom() {
  if (!m_model.HasPicture()) return;
  MetaForm::Display(m_model.GetMetafile(), m_model.GetMetafile()->Title(), window());
}

QMenu* MetaView::Popup() {
  if (m_popup) return m_popup;
  m_popup = new QMenu(this);
  m_popup->setObjectName(QStringLiteral("mPopup"));
  const auto add = [this](const char* name, const char* caption, auto slot) {
    QAction* action = m_popup->addAction(QString::fromLatin1(caption));
    action->setObjectName(QString::fromLatin1(name));
    connect(action, &QAction::triggered, this, slot);
    return action;
  };
  add("mPopupCopy", "&Copy", [this] { CopyToClipboard(); });
  add("mPopupPrint", "&Print...", [this] { PrintOut(); });
  add("mPopupSave", "&Save...", [this] { Save(); });
  QAction* zoom = add("mPopupZoom", "&Zoom", [this] { Zoom(); });
  connect(m_popup, &QMenu::aboutToShow, this, [this, zoom] {
    const bool picture = m_model.HasPicture();
    for (QAction* action : m_popup->actions()) action->setEnabled(picture);
    zoom->setVisible(m_model.CanZoom);
  });
  return m_popup;
}

void MetaView::ShowPopup(const QPoint& position) { Popup()->exec(mapToGlobal(position)); }

void MetaView::paintEvent(QPaintEvent* event) {
  QFrame::paintEvent(event);
  const QRect area = contentsRect();
  QPainter painter(this);
  // Smoothed: the small charts beside the grid are drawn at a fraction of their size.
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                         QPainter::SmoothPixmapTransform);
  painter.setClipRect(area);
  painter.translate(area.topLeft());
  m_model.Paint(painter, area.width(), area.height());
}

void MetaView::contextMenuEvent(QContextMenuEvent* event) {
  // The menu key arrives here as a keyboard request: the popup opens at the
  // middle of the control.
  ShowPopup(event->reason() == QContextMenuEvent::Keyboard ? rect().center() : event->pos());
}

void MetaView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (m_model.CanZoom && m_model.HasPicture())
    Zoom();
  else
    QFrame::mouseDoubleClickEvent(event);
}

void MetaView::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Menu) {
    ShowPopup(rect().center());
    return;
  }
  QFrame::keyPressEvent(event);
}

}  // namespace ombrelle
