#pragma once

#include <memory>

#include <QFrame>

#include "pictures/MetaViewModel.h"

class QMenu;

namespace ombrelle {

class Metafile;

// Writes `picture` as an SVG drawing of width x height pixels, through a
// temporary name; false (with a message) when the file cannot be written.
bool SaveSvgPicture(const Metafile& picture, const QString& file, int width, int height);

// The control that shows one picture, scaled to its client area with the
// aspect kept, and offers Copy, Print, Save and Zoom in its popup menu (the
// right button or the menu key opens it); a double click zooms.
class MetaView : public QFrame {
  Q_OBJECT

 public:
  explicit MetaView(QWidget* parent = nullptr);

  std::shared_ptr<Metafile> GetMetafile() const { return m_model.GetMetafile(); }
  // Shows `metafile` (null: no picture) and repaints.
  void SetMetafile(std::shared_ptr<Metafile> metafile);

  MetaViewModel& Model() { return m_model; }
  bool CanZoom() const { return m_model.CanZoom; }
  void SetCanZoom(bool canZoom) { m_model.CanZoom = canZoom; }
  bool Centered() const { return m_model.Centered; }
  void SetCentered(bool centered);

  bool CopyToClipboard();
  bool PrintOut();
  // The save dialog, then the picture sized from this control.
  bool Save();
  // Opens the picture in a picture viewer window of its own.
  void Zoom();

  // The popup at `position` (control coordinates); returns when it closes.
  void ShowPopup(const QPoint& position);
  // Made on first use; named mPopupCopy, mPopupPrint, mPopupSave, mPopupZoom.
  QMenu* Popup();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  // A double click zooms, as the popup's Zoom does.
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  QSize PictureSize() const;

  MetaViewModel m_model;
  QMenu* m_popup = nullptr;
};

}  // namespace ombrelle
