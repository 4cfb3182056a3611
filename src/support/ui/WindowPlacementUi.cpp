#include "support/ui/WindowPlacementUi.h"

#include <vector>

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include "support/WindowPlacement.h"

namespace ombrelle {

namespace {

QString WindowName(const QWidget& window) {
  const QString name = window.objectName();
  return name.isEmpty() ? QString::fromLatin1(window.metaObject()->className()) : name;
}

std::vector<QRect> AvailableScreens() {
  std::vector<QRect> screens;
  if (QScreen* primary = QGuiApplication::primaryScreen())
    screens.push_back(primary->availableGeometry());
  for (QScreen* screen : QGuiApplication::screens())
    if (screen != QGuiApplication::primaryScreen()) screens.push_back(screen->availableGeometry());
  return screens;
}

}  // namespace

void SaveWindowPlacement(const QWidget& window, int index) {
  WindowGeometry geometry;
  geometry.rect = window.normalGeometry().isValid() ? window.normalGeometry() : window.geometry();
  geometry.windowState = window.isMinimized() ? 1 : window.isMaximized() ? 2 : 0;
  geometry.sizable = window.minimumSize() != window.maximumSize();
  SaveWindowPlacement(WindowName(window), index, geometry);
}

bool RestoreWindowPlacement(QWidget& window, int index) {
  WindowGeometry geometry;
  geometry.rect = window.geometry();
  geometry.sizable = window.minimumSize() != window.maximumSize();
  if (!RestoreWindowPlacement(WindowName(window), index, geometry, AvailableScreens()))
    return false;
  window.setGeometry(geometry.rect);
  if (geometry.windowState == 2) window.setWindowState(window.windowState() | Qt::WindowMaximized);
  return true;
}

}  // namespace ombrelle
