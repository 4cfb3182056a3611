#pragma once

#include <vector>

#include <QRect>
#include <QString>

namespace ombrelle {

// The placement of a window as the settings store keeps it, free of any
// widget: the rectangle of the normal (not minimised, not maximised) window
// and its state.
struct WindowGeometry {
  QRect rect;           // the normal rectangle, in screen pixels
  int windowState = 0;  // 0 normal, 1 minimised, 2 maximised
  bool sizable = true;  // a window with a sizable border keeps its size too
};

// Key of one side under section "WindowPlacement": the window's name, the
// index in round brackets when `index` is 0 or more, and `suffix`
// (".Left", ".Top", ".Right", ".Bottom", ".WindowState").
QString WindowPlacementKey(const QString& name, int index, const QString& suffix);

// Saves the placement: ".Left" and ".Top", ".Right" and ".Bottom" only for a
// sizable window, then ".WindowState". A minimised or maximised window saves
// only its state, so it never overwrites the normal rectangle. Right and
// Bottom are exclusive (left + width, top + height).
void SaveWindowPlacement(const QString& name, int index, const WindowGeometry& window);

// Restores a placement into `window` (which holds the current one): a side
// that is stored replaces the current one, a side pair stored alone moves the
// window keeping its size; the result is applied only with a positive width and
// height, fitted to `screens` (their available rectangles, the primary first).
// A stored state 2 makes the window maximised. Returns whether anything was
// stored for the window.
bool RestoreWindowPlacement(const QString& name, int index, WindowGeometry& window,
                            const std::vector<QRect>& screens);

// `rect` fitted to the screen it overlaps most (the first when it overlaps
// none): made no larger than that screen and moved inside it. With no screens
// the rectangle stays.
QRect FitToScreens(const QRect& rect, const std::vector<QRect>& screens);

}  // namespace ombrelle
