#include "support/WindowPlacement.h"

#include <algorithm>
#include <optional>

#include "support/SettingsStore.h"

namespace ombrelle {

namespace {

const QString kSection = QStringLiteral("WindowPlacement");

std::optional<int> ReadSide(const QString& name, int index, const QString& suffix) {
  const QString key = WindowPlacementKey(name, index, suffix);
  if (GetSetting(kSection, key).isEmpty()) return std::nullopt;
  return static_cast<int>(GetSettingNumber(kSection, key));
}

void SaveSide(const QString& name, int index, const QString& suffix, int value) {
  SaveSetting(kSection, WindowPlacementKey(name, index, suffix), QString::number(value));
}

// Applies the stored bounds of one dimension: both bounds set the span, the
// first alone moves it.
void ApplyDimension(std::optional<int> low, std::optional<int> high, int& start, int& length) {
  if (low && high) {
    start = *low;
    length = *high - *low;
  } else if (low) {
    start = *low;
  }
}

}  // namespace

QString WindowPlacementKey(const QString& name, int index, const QString& suffix) {
  QString key = name;
  if (index >= 0) key += QLatin1Char('(') + QString::number(index) + QLatin1Char(')');
  return key + suffix;
}

void SaveWindowPlacement(const QString& name, int index, const WindowGeometry& window) {
  if (window.windowState == 0) {
    const QRect& r = window.rect;
    SaveSide(name, index, QStringLiteral(".Left"), r.x());
    SaveSide(name, index, QStringLiteral(".Top"), r.y());
    if (window.sizable) {
      SaveSide(name, index, QStringLiteral(".Right"), r.x() + r.width());
      SaveSide(name, index, QStringLiteral(".Bottom"), r.y() + r.height());
    }
  }
  SaveSide(name, index, QStringLiteral(".WindowState"), window.windowState);
}

bool RestoreWindowPlacement(const QString& name, int index, WindowGeometry& window,
                            const std::vector<QRect>& screens) {
  const auto left = ReadSide(name, index, QStringLiteral(".Left"));
  const auto top = ReadSide(name, index, QStringLiteral(".Top"));
  const auto right = ReadSide(name, index, QStringLiteral(".Right"));
  const auto bottom = ReadSide(name, index, QStringLiteral(".Bottom"));
  const auto state = ReadSide(name, index, QStringLiteral(".WindowState"));
  int x = window.rect.x();
  int y = window.rect.y();
  int width = window.rect.width();
  int height = window.rect.height();
  ApplyDimension(left, right, x, width);
  ApplyDimension(top, bottom, y, height);
  if ((left || top) && width > 0 && height > 0)
    window.rect = FitToScreens(QRect(x, y, width, height), screens);
  if (state && *state == 2) window.windowState = 2;
  return left || top || right || bottom || state;
}

QRect FitToScreens(const QRect& rect, const std::vector<QRect>& screens) {
  if (screens.empty()) return rect;
  const QRect* best = &screens.front();
  long long bestArea = 0;
  for (const QRect& screen : screens) {
    const QRect overlap = screen.intersected(rect);
    const long long area = overlap.isEmpty() ? 0 : 1LL * overlap.width() * overlap.height();
    if (area > bestArea) {
      bestArea = area;
      best = &screen;
    }
  }
  const QRect& screen = *best;
  const int width = std::min(rect.width(), screen.width());
  const int height = std::min(rect.height(), screen.height());
  const int x = std::clamp(rect.x(), screen.x(), screen.x() + screen.width() - width);
  const int y = std::clamp(rect.y(), screen.y(), screen.y() + screen.height() - height);
  return QRect(x, y, width, height);
}

}  // namespace ombrelle
