#pragma once

#include <memory>

#include <QWidget>

class QToolBar;

namespace ombrelle {

class Metafile;
class MetaView;

// The picture viewer window: a toolbar with Print, Save and Copy over a
// picture control that fills the rest; the mouse wheel zooms the window.
class MetaForm : public QWidget {
  Q_OBJECT

 public:
  // Size of the first showing: the picture's own size within these bounds.
  static constexpr int kMaxStartWidth = 900;
  static constexpr int kMaxStartHeight = 700;
  // The narrowest the window gets: 2000 twips.
  static constexpr int kMinWidth = 2000 / 15;

  MetaForm(std::shared_ptr<Metafile> metafile, const QString& title, QWidget* owner);

  // Shows `metafile` in a new window owned by `owner`; the caption is
  // `title`, or "Picture viewer" when that is empty. The window frees
  // itself when closed.
  static MetaForm* Display(std::shared_ptr<Metafile> metafile, const QString& title,
                           QWidget* owner);

  MetaView* View() const { return m_view; }
  QToolBar* ToolBar() const { return m_toolBar; }
  // One zoom step of the wheel: positive steps enlarge the window by a
  // tenth of its size, negative ones shrink it, the picture's aspect kept.
  void Zoom(int steps);

 protected:
  void wheelEvent(QWheelEvent* event) override;

 private:
  MetaView* m_view = nullptr;
  QToolBar* m_toolBar = nullptr;
};

}  // namespace ombrelle
