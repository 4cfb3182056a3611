#include "grid/OwnerGridLogic.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include <QImage>

#include "grid/GridColours.h"
#include "grid/OwnerGridEvents.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

// Rows or columns one step of a 16-bit scroll bar stands for.
int ScaleFor(int count) { return static_cast<int>((qint64(count) + 1 + 32767) / 32768); }

int CeilDiv(int a, int b) {
  return static_cast<int>(a >= 0 ? (qint64(a) + b - 1) / b : -((-qint64(a)) / b));
}

// Text is measured as if on a 96 dpi device, whatever the screen.
constexpr double kReferenceDpi = 96.0;

const QImage& ReferenceDevice() {
  static const QImage device = [] {
    QImage image(1, 1, QImage::Format_ARGB32);
    const int dotsPerMeter = qRound(kReferenceDpi / 0.0254);
    image.setDotsPerMeterX(dotsPerMeter);
    image.setDotsPerMeterY(dotsPerMeter);
    return image;
  }();
  return device;
}

QFont PixelSized(const QFont& font) {
  QFont result = font;
  if (font.pixelSize() <= 0) {
    const double points = font.pointSizeF() > 0 ? font.pointSizeF() : 8.0;
    result.setPixelSize(std::max(1, qRound(points * kReferenceDpi / 72.0)));
  }
  return result;
}

// Height of "Wg" in `font` at the reference resolution.
int TextHeight(const QFont& font) {
  const QFontMetricsF metrics(font, &ReferenceDevice());
  return static_cast<int>(std::ceil(metrics.height()));
}

}  // namespace

int GridKeyFromQt(int qtKey, Qt::KeyboardModifiers modifiers) {
  switch (qtKey) {
    case Qt::Key_PageUp:
      return GridKey::PageUp;
    case Qt::Key_PageDown:
      return GridKey::PageDown;
    case Qt::Key_End:
      return GridKey::End;
    case Qt::Key_Home:
      return GridKey::Home;
    case Qt::Key_Left:
      return GridKey::Left;
    case Qt::Key_Up:
      return GridKey::Up;
    case Qt::Key_Right:
      return GridKey::Right;
    case Qt::Key_Down:
      return GridKey::Down;
    case Qt::Key_Menu:
      return GridKey::ContextMenu;
    case Qt::Key_Plus:
      return (modifiers & Qt::KeypadModifier) ? GridKey::KeypadPlus : int('+');
    case Qt::Key_Minus:
      return (modifiers & Qt::KeypadModifier) ? GridKey::KeypadMinus : int('-');
    default:
      break;
  }
  if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F24) return 0x70 + (qtKey - Qt::Key_F1);
  // Letters and digits share their codes.
  if ((qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9) || (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z))
    return qtKey;
  return 0;
}

int GridShiftFromQt(Qt::KeyboardModifiers modifiers) {
  int shift = 0;
  if (modifiers & Qt::ShiftModifier) shift |= GridShift::Shift;
  if (modifiers & Qt::ControlModifier) shift |= GridShift::Ctrl;
  if (modifiers & Qt::AltModifier) shift |= GridShift::Alt;
  return shift;
}

OwnerGridLogic::OwnerGridLogic(OwnerGridEvents* owner, OwnerGridHost* host)
    : m_owner(owner),
      m_host(host),
      m_backColor(SysColour::ButtonFace),
      m_foreColor(SysColour::ButtonText),
      m_widths(MaxColumns + 1, 100.0f),
      m_alignments(MaxColumns + 1, 1),
      m_captions(MaxColumns + 1),
      m_headerBackColor(MixColours(SysColour::ButtonFace, 0xFFFFFF)),
      m_highlightBackColor(13811126),
      m_highlightForeColor(0),
      m_cursorBackColor(0xFFF0F0) {
  m_cellPaintFont = PixelSized(m_cellFont);
  m_headerPaintFont = PixelSized(m_headerFont);
  m_hScroll.minimum = m_hScroll.maximum = m_hScroll.value = 1;
  MeasureRows();
  PlaceScrollBars();
  PlaceCursor(1, 1);
}

void OwnerGridLogic::SetOwner(OwnerGridEvents* owner) { m_owner = owner; }

void OwnerGridLogic::SetHost(OwnerGridHost* host) {
  m_host = host;
  if (m_host) {
    m_host->ApplyBorderStyle(m_borderStyle);
    PlaceScrollBars();
    m_host->ScrollBarsChanged();
  }
}

// ---- properties -----------------------------------------------------------

void OwnerGridLogic::SetBackColor(quint32 colour) {
  m_backColor = colour;
  Refresh();
}

void OwnerGridLogic::SetForeColor(quint32 colour) {
  m_foreColor = colour;
  Refresh();
}

void OwnerGridLogic::SetEnabled(bool enabled) {
  m_enabled = enabled;
  Refresh();
}

void OwnerGridLogic::SetCellFont(const QFont& font) {
  m_cellFont = font;
  m_cellPaintFont = PixelSized(font);
  MeasureRows();
  PlaceScrollBars();
  Refresh();
}

void OwnerGridLogic::SetHeaderFont(const QFont& font) {
  m_headerFont = font;
  m_headerPaintFont = PixelSized(font);
  MeasureRows();
  PlaceScrollBars();
  Refresh();
}

void OwnerGridLogic::SetBorderStyle(qint16 style) {
  m_borderStyle = style;
  if (m_host) m_host->ApplyBorderStyle(style);
}

void OwnerGridLogic::SetColumns(int columns) {
  m_columns = std::clamp(columns, 0, MaxColumns);
  m_hScale = ScaleFor(m_columns);
  PlaceScrollBars();
  if (m_cursorColumn > m_columns) PlaceCursor(m_cursorRow, m_cursorColumn);
  if (std::abs(m_sortColumn) > m_columns) m_sortColumn = 0;
  Refresh();
}

void OwnerGridLogic::SetRows(int rows) {
  m_rows = std::max(rows, 0);
  m_vScale = ScaleFor(m_rows);
  PlaceScrollBars();
  if (m_cursorRow > m_rows) PlaceCursor(m_rows, m_cursorColumn);
  Refresh();
}

float OwnerGridLogic::ColumnWidth(int column) const {
  Q_ASSERT(ValidColumnIndex(column));
  return ValidColumnIndex(column) ? m_widths[column] : 0.0f;
}

void OwnerGridLogic::SetColumnWidth(int column, float width) {
  Q_ASSERT(ValidColumnIndex(column));
  if (!ValidColumnIndex(column)) return;
  m_widths[column] = std::max(width, 0.0f);
  if (m_refreshDisabled) {
    m_refreshPending = true;
    return;
  }
  PlaceScrollBars();
  Refresh();
}

quint8 OwnerGridLogic::ColumnAlignment(int column) const {
  Q_ASSERT(ValidColumnIndex(column));
  return ValidColumnIndex(column) ? m_alignments[column] : 0;
}

void OwnerGridLogic::SetColumnAlignment(int column, quint8 alignment) {
  Q_ASSERT(ValidColumnIndex(column));
  if (!ValidColumnIndex(column)) return;
  m_alignments[column] = alignment;
  Refresh();
}

QString OwnerGridLogic::ColumnCaption(int column) const {
  Q_ASSERT(ValidColumnIndex(column));
  return ValidColumnIndex(column) ? m_captions[column] : QString();
}

void OwnerGridLogic::SetColumnCaption(int column, const QString& caption) {
  Q_ASSERT(ValidColumnIndex(column));
  if (!ValidColumnIndex(column)) return;
  m_captions[column] = caption;
  RepaintHeader();
}

void OwnerGridLogic::SetSortColumn(int column) {
  if (std::abs(column) > m_columns) return;
  m_sortColumn = column;
  RepaintHeader();
}

void OwnerGridLogic::SetSortable(bool sortable) {
  m_sortable = sortable;
  if (!sortable) {
    int column = 0;
    if (m_owner) m_owner->SortBy(column);
    m_sortColumn = 0;
    RepaintHeader();
  }
}

void OwnerGridLogic::SetFixedColumns(int fixed) {
  if (fixed < 0 || fixed > m_columns) return;
  m_fixedColumns = static_cast<qint16>(fixed);
  const int hScrollMinimum = m_fixedColumns + 1;
  m_hScroll.minimum = hScrollMinimum;
  m_hScroll.value = std::max(m_hScroll.value, hScrollMinimum);
  PlaceScrollBars();
  if (m_cursorColumn <= m_fixedColumns) PlaceCursor(m_cursorRow, m_fixedColumns + 1);
  Refresh();
}

QVariantMap OwnerGridLogic::StoreProperties() const {
  QVariantMap map;
  map.insert(QStringLiteral("BackColor"), m_backColor);
  map.insert(QStringLiteral("ForeColor"), m_foreColor);
  map.insert(QStringLiteral("Enabled"), m_enabled);
  map.insert(QStringLiteral("CellFont"), m_cellFont);
  map.insert(QStringLiteral("BorderStyle"), m_borderStyle);
  map.insert(QStringLiteral("Columns"), m_columns);
  map.insert(QStringLiteral("GridColor"), m_gridColor);
  map.insert(QStringLiteral("Rows"), m_rows);
  map.insert(QStringLiteral("HeaderFont"), m_headerFont);
  map.insert(QStringLiteral("SortColumn"), m_sortColumn);
  map.insert(QStringLiteral("Sortable"), m_sortable);
  map.insert(QStringLiteral("FixedColumns"), m_fixedColumns);
  map.insert(QStringLiteral("AutoPopup"), m_autoPopup);
  for (int c = 1; c <= m_columns; ++c) {
    const QString n = QString::number(c);
    map.insert(QStringLiteral("ColumnWidth") + n, m_widths[c]);
    map.insert(QStringLiteral("ColumnAlignment") + n, m_alignments[c]);
    map.insert(QStringLiteral("ColumnCaption") + n, m_captions[c]);
  }
  return map;
}

void OwnerGridLogic::LoadProperties(const QVariantMap& properties) {
  auto has = [&](const char* name) { return properties.contains(QLatin1String(name)); };
  auto get = [&](const char* name) { return properties.value(QLatin1String(name)); };
  const bool wasDisabled = m_refreshDisabled;
  DisableRefresh();
  if (has("BackColor")) m_backColor = get("BackColor").toUInt();
  if (has("ForeColor")) m_foreColor = get("ForeColor").toUInt();
  if (has("Enabled")) m_enabled = get("Enabled").toBool();
  if (has("CellFont")) SetCellFont(get("CellFont").value<QFont>());
  if (has("HeaderFont")) SetHeaderFont(get("HeaderFont").value<QFont>());
  if (has("BorderStyle")) SetBorderStyle(static_cast<qint16>(get("BorderStyle").toInt()));
  if (has("GridColor")) m_gridColor = get("GridColor").toUInt();
  if (has("Columns")) SetColumns(get("Columns").toInt());
  if (has("Rows")) SetRows(get("Rows").toInt());
  for (int c = 1; c <= m_columns; ++c) {
    const QString n = QString::number(c);
    const auto width = properties.find(QStringLiteral("ColumnWidth") + n);
    if (width != properties.end()) m_widths[c] = std::max(width->toFloat(), 0.0f);
    const auto alignment = properties.find(QStringLiteral("ColumnAlignment") + n);
    if (alignment != properties.end()) m_alignments[c] = static_cast<quint8>(alignment->toUInt());
    const auto caption = properties.find(QStringLiteral("ColumnCaption") + n);
    if (caption != properties.end()) m_captions[c] = caption->toString();
  }
  m_refreshPending = true;  // the widths above bypass their setter
  if (has("FixedColumns")) SetFixedColumns(get("FixedColumns").toInt());
  if (has("Sortable")) m_sortable = get("Sortable").toBool();
  if (has("SortColumn")) SetSortColumn(get("SortColumn").toInt());
  if (has("AutoPopup")) m_autoPopup = get("AutoPopup").toBool();
  if (!wasDisabled) EnableRefresh();
  Refresh();
}

// ---- methods --------------------------------------------------------------

void OwnerGridLogic::EnableRefresh() {
  m_refreshDisabled = false;
  if (m_refreshPending) {
    m_refreshPending = false;
    PlaceScrollBars();
  }
}

void OwnerGridLogic::Refresh() {
  if (m_host) m_host->RepaintAll();
}

void OwnerGridLogic::PlaceCursor(int row, int column) {
  if (row > m_rows || row < 1) row = 0;
  if (column > m_columns) column = m_columns;
  if (column <= m_fixedColumns) column = m_fixedColumns + 1 > m_columns ? 0 : m_fixedColumns + 1;

  const int oldRow = m_cursorRow;
  const int oldColumn = m_cursorColumn;
  m_cursorRow = row;
  m_cursorColumn = column;

  if (!MakeVisible(row, column)) {
    // Only the cells whose look changed are painted again.
    const Range range = VisibleRange(false);
    if (oldRow >= range.top && oldRow <= range.bottom && oldColumn >= range.left &&
        oldColumn <= range.right)
      PaintCellAt(oldRow, oldColumn);
    for (int c = 1; c <= m_fixedColumns; ++c) PaintCellAt(oldRow, c);
    PaintCellAt(row, column);
    for (int c = 1; c <= m_fixedColumns; ++c) PaintCellAt(row, c);
    RepaintHeader();
  }

  const bool columnChanged = column != oldColumn;
  const bool rowChanged = row != oldRow;
  if (columnChanged && column > m_fixedColumns && m_owner) m_owner->EnterColumn(column);
  if (rowChanged && row >= 1 && m_owner) m_owner->EnterRow(row);
  if (!columnChanged && !rowChanged) return;
  if (column > m_fixedColumns && row >= 1 && m_owner) m_owner->EnterCell(row, column);
}

void OwnerGridLogic::Mouse_Scroll(int x, int y, bool page) {
  if (y != 0)
    ScrollBy(Bar::Vertical, page ? y * m_vScroll.largeChange : y);
  else if (x != 0)
    ScrollBy(Bar::Horizontal, page ? x * m_hScroll.largeChange : x);
}

void OwnerGridLogic::ScrollBy(Bar bar, int amount) {
  ScrollBar& sb = bar == Bar::Vertical ? m_vScroll : m_hScroll;
  int value;
  if (amount < 0) {
    if (sb.value <= sb.minimum) return;
    value = sb.value + amount < sb.minimum ? sb.minimum : sb.value + amount;
  } else if (amount > 0) {
    if (sb.value >= sb.maximum) return;
    value = sb.value + amount > sb.maximum ? sb.maximum : sb.value + amount;
  } else {
    return;
  }
  if (bar == Bar::Vertical)
    WriteTopValue(value);
  else
    WriteLeftValue(value);
}

// ---- input ----------------------------------------------------------------

void OwnerGridLogic::OnMouseDown(int x, int y, Button) {
  m_buttonDown = true;
  m_lastMouse = QPoint(x, y);
  MouseAction(x, y, 0);
}

void OwnerGridLogic::OnMouseMove(int x, int y, bool buttonDown) {
  m_lastMouse = QPoint(x, y);
  if (buttonDown && m_buttonDown)
    MouseAction(x, y, 1);
  else
    UpdateHeaderPointer(x, y);
}

void OwnerGridLogic::OnMouseUp(int x, int y, Button button) {
  m_buttonDown = false;
  m_lastMouse = QPoint(x, y);
  MouseAction(x, y, 2);
  if (button == Button::Right) {
    const Hit hit = HitTest(x, y);
    if (hit.hit) ShowCellPopup(hit.column, hit.row);
  }
}

void OwnerGridLogic::OnDoubleClick() {
  if (m_cursorColumn > m_fixedColumns && m_cursorRow >= 1 && m_owner)
    m_owner->DblClickCell(m_cursorRow, m_cursorColumn);
}

void OwnerGridLogic::OnKeyDown(int keyCode, int shift) {
  if (m_owner) m_owner->KeyDown(keyCode, shift);
  const bool ctrl = (shift & GridShift::Ctrl) != 0;
  const int firstData = m_fixedColumns + 1;
  switch (keyCode) {
    case GridKey::Home:
      PlaceCursor(ctrl ? 1 : m_cursorRow, firstData);
      break;
    case GridKey::End:
      PlaceCursor(ctrl ? m_rows : m_cursorRow, m_columns);
      break;
    case GridKey::Left:
      if (ctrl)
        PlaceCursor(m_cursorRow, firstData);
      else
        MoveCursor(0, -1);
      break;
    case GridKey::Right:
      if (ctrl)
        PlaceCursor(m_cursorRow, m_columns);
      else
        MoveCursor(0, 1);
      break;
    case GridKey::Up:
      if (ctrl)
        PlaceCursor(1, m_cursorColumn);
      else
        MoveCursor(-1, 0);
      break;
    case GridKey::Down:
      if (ctrl)
        PlaceCursor(m_rows, m_cursorColumn);
      else
        MoveCursor(1, 0);
      break;
    case GridKey::PageUp:
    case GridKey::PageDown: {
      // A page is a fixed five rows, or with Alt five columns.
      const int step = keyCode == GridKey::PageUp ? -5 : 5;
      if (shift == 0)
        MoveCursor(step, 0);
      else if (shift == GridShift::Alt)
        MoveCursor(0, step);
      break;
    }
    case GridKey::ContextMenu:
      if (!m_autoPopup) ShowCellPopup(m_cursorColumn, m_cursorRow);
      break;
    case GridKey::KeypadPlus:
      if (m_sortable) SortClick(m_sortColumn == m_cursorColumn ? 0 : m_cursorColumn);
      break;
    case GridKey::KeypadMinus:
      if (m_sortable) SortClick(m_sortColumn == -m_cursorColumn ? 0 : -m_cursorColumn);
      break;
    default:
      break;
  }
}

void OwnerGridLogic::OnKeyPress(QChar character) {
  if (m_owner) m_owner->KeyPress(character);
}

void OwnerGridLogic::OnKeyUp(int keyCode, int shift) {
  if (m_owner) m_owner->KeyUp(keyCode, shift);
}

void OwnerGridLogic::OnScrollBar(Bar bar, int value) {
  if (bar == Bar::Vertical) {
    WriteTopValue(value);
  } else {
    WriteLeftValue(value);
  }
}

void OwnerGridLogic::OnResize() {
  PlaceScrollBars();
  PlaceCursor(m_cursorRow, m_cursorColumn);
}

void OwnerGridLogic::OnFirstShow() { PlaceCursor(1, 1); }

// ---- geometry -------------------------------------------------------------

void OwnerGridLogic::MeasureRows() {
  m_headerHeight = TextHeight(m_headerPaintFont) + 3;
  m_rowHeight = TextHeight(m_cellPaintFont) + 2;
}

int OwnerGridLogic::TopRow() const { return (m_vScroll.value - 1) * m_vScale + 1; }

int OwnerGridLogic::LeftColumn() const {
  return (m_hScroll.value - m_hScroll.minimum) * m_hScale + m_hScroll.minimum;
}

bool OwnerGridLogic::WriteTopValue(int value) {
  value = std::clamp(value, m_vScroll.minimum, std::max(m_vScroll.minimum, m_vScroll.maximum));
  if (value == m_vScroll.value) return false;
  m_vScroll.value = value;
  if (m_host) {
    m_host->ScrollBarsChanged();
    m_host->RepaintAll();
  }
  return true;
}

bool OwnerGridLogic::WriteTopRow(int row) { return WriteTopValue((row - 1) / m_vScale + 1); }

bool OwnerGridLogic::WriteLeftColumn(int column) {
  return WriteLeftValue((column - m_hScroll.minimum) / m_hScale + m_hScroll.minimum);
}

bool OwnerGridLogic::WriteLeftValue(int value) {
  value = std::clamp(value, m_hScroll.minimum, std::max(m_hScroll.minimum, m_hScroll.maximum));
  if (value == m_hScroll.value) return false;
  m_hScroll.value = value;
  if (m_host) {
    m_host->ScrollBarsChanged();
    m_host->RepaintAll();
  }
  return true;
}

double OwnerGridLogic::FixedWidth() const {
  double width = 0;
  for (int c = 1; c <= m_fixedColumns && c <= m_columns; ++c) width += m_widths[c];
  return width;
}

int OwnerGridLogic::SurfaceWidth() const { return m_host ? m_host->SurfaceSize().width() : 0; }

int OwnerGridLogic::SurfaceHeight() const { return m_host ? m_host->SurfaceSize().height() : 0; }

int OwnerGridLogic::PaintWidth() const {
  return SurfaceWidth() - (m_vScroll.visible && m_host ? m_host->ScrollBarExtent() : 0);
}

int OwnerGridLogic::PaintHeight() const {
  return SurfaceHeight() - (m_hScroll.visible && m_host ? m_host->ScrollBarExtent() : 0);
}

OwnerGridLogic::Range OwnerGridLogic::VisibleRange(bool forceHScroll) const {
  const int extent = m_host ? m_host->ScrollBarExtent() : 0;
  const int dataHeight = SurfaceHeight() - (m_hScroll.visible || forceHScroll ? extent : 0);
  const int usableWidth = SurfaceWidth() - extent;
  Range range;
  range.top = TopRow();
  range.bottom = range.top + (dataHeight - (m_headerHeight + 1)) / m_rowHeight - 1;
  range.left = LeftColumn();
  if (range.left > m_columns) {
    range.right = range.left - 1;
    return range;
  }
  double sum = FixedWidth() + m_widths[range.left];
  range.right = range.left;
  while (range.right < m_columns && sum + m_widths[range.right + 1] <= usableWidth) {
    ++range.right;
    sum += m_widths[range.right];
  }
  return range;
}

bool OwnerGridLogic::MakeVisible(int row, int column) {
  if (column <= m_fixedColumns || row < 1 || column > m_columns || row > m_rows) return false;
  const Range range = VisibleRange(false);
  bool scrolled = false;
  if (row < range.top) {
    scrolled = WriteTopRow(row) || scrolled;
  } else if (row > range.bottom) {
    // `hidden` rows above the new top, a multiple of the scale, so that the
    // row comes in at the bottom; one that cannot also fit on a step of the
    // scale comes in at the top instead.
    const int span = std::max(0, range.bottom - range.top);
    int hidden = CeilDiv(row - span - 1, m_vScale) * m_vScale;
    if (hidden > row - 1) hidden = (row - 1) / m_vScale * m_vScale;
    scrolled = WriteTopValue(hidden / m_vScale + 1) || scrolled;
  }
  if (column < range.left) {
    scrolled = WriteLeftColumn(column) || scrolled;
  } else if (column > range.right) {
    const int extent = m_host ? m_host->ScrollBarExtent() : 0;
    double space = SurfaceWidth() - extent - FixedWidth() - m_widths[column];
    int left = column;
    while (left - 1 > m_fixedColumns && space - m_widths[left - 1] >= 0) {
      --left;
      space -= m_widths[left];
    }
    // Round to a step of the scroll bar; up, so that the column stays in view.
    const int minimum = m_hScroll.minimum;
    int rounded = minimum + CeilDiv(left - minimum, m_hScale) * m_hScale;
    if (rounded > column) rounded = minimum + (left - minimum) / m_hScale * m_hScale;
    scrolled = WriteLeftValue((rounded - minimum) / m_hScale + minimum) || scrolled;
  }
  return scrolled;
}

void OwnerGridLogic::PlaceScrollBars() {
  if (m_refreshDisabled) {
    m_refreshPending = true;
    return;
  }
  const int extent = m_host ? m_host->ScrollBarExtent() : 0;
  // The leftmost column that can stand at the left with the table's end in view.
  int last = m_columns;
  if (last > m_fixedColumns) {
    double space = SurfaceWidth() - extent - FixedWidth() - m_widths[last];
    while (last - 1 > m_fixedColumns && space - m_widths[last - 1] >= 0) {
      --last;
      space -= m_widths[last];
    }
  }
  m_hScroll.minimum = m_fixedColumns + 1;
  if (last > m_hScroll.minimum && last > 1) {
    // Rounded up, so that with several columns a step the end still comes
    // into view; with one column a step this is the plain quotient.
    m_hScroll.maximum = CeilDiv(last - m_hScroll.minimum, m_hScale) + m_hScroll.minimum;
    m_hScroll.visible = true;
  } else {
    m_hScroll.maximum = m_hScroll.minimum;
    m_hScroll.visible = false;
  }
  m_hScroll.value = std::clamp(m_hScroll.value, m_hScroll.minimum, m_hScroll.maximum);

  const Range range = VisibleRange(true);
  const int span = std::max(0, range.bottom - range.top);
  if (m_rows <= span) {
    m_vScroll.maximum = 1;
  } else {
    // The last step must show the last row, which a whole-number division
    // alone misses once a step stands for several rows.
    const int reachLast = CeilDiv(m_rows - span - 1, m_vScale) + 1;
    const int plain = static_cast<int>((qint64(m_rows) - span + 1) / m_vScale);
    m_vScroll.maximum = std::max(plain, reachLast);
  }
  m_vScroll.minimum = 1;
  m_vScroll.visible = m_vScroll.maximum > 1;
  // A page is what shows now, with the horizontal bar as just decided.
  const Range shown = VisibleRange(false);
  m_vScroll.largeChange = std::max(1, (shown.bottom - shown.top + 1) / m_vScale);
  m_hScroll.largeChange = std::max(1, (shown.right - shown.left + 1) / m_hScale);

  const int topValue = std::clamp(m_vScroll.value, 1, m_vScroll.maximum);
  const bool moved = topValue != m_vScroll.value;
  m_vScroll.value = topValue;
  if (m_host) {
    m_host->ScrollBarsChanged();
    if (moved) m_host->RepaintAll();
  }
}

OwnerGridLogic::Hit OwnerGridLogic::HitTest(int x, int y) const {
  Hit result;
  if (y <= m_headerHeight) {
    result.row = 0;
  } else {
    result.row = (y - m_headerHeight) / m_rowHeight + TopRow();
    if (result.row > m_rows) return result;
  }
  if (x < 0) return result;
  double right = 0;
  for (int c = 1; c <= m_fixedColumns && c <= m_columns; ++c) {
    right += m_widths[c];
    if (x < right) {
      result.column = c;
      result.hit = true;
      return result;
    }
  }
  for (int c = LeftColumn(); c <= m_columns && right <= x; ++c) {
    right += m_widths[c];
    if (x < right) {
      result.column = c;
      result.hit = true;
      return result;
    }
  }
  return result;
}

void OwnerGridLogic::MouseAction(int x, int y, int phase) {
  const Hit hit = HitTest(x, y);
  if (!hit.hit) return;
  if (hit.row >= 1 && hit.column >= 1) {
    PlaceCursor(hit.row, hit.column);
    return;
  }
  if (phase == 0) {
    if (m_sortable && hit.column >= 1) HeaderClick(hit.column);
  } else if (phase == 1) {
    // Dragging above the table scrolls it up a row at a time.
    if (hit.row == 0) MoveCursor(-1, 0);
    if (hit.column == 0) MoveCursor(0, -1);
  }
}

void OwnerGridLogic::HeaderClick(int column) {
  if (std::abs(m_sortColumn) != column)
    SortClick(column);
  else
    SortClick(-m_sortColumn);
}

void OwnerGridLogic::SortClick(int column) {
  if (column == m_sortColumn) return;
  if (m_owner) m_owner->SortBy(column);
  m_sortColumn = std::abs(column) <= m_columns ? column : 0;
  Refresh();
  if (m_lastMouse.x() >= 0) UpdateHeaderPointer(m_lastMouse.x(), m_lastMouse.y());
}

void OwnerGridLogic::MoveCursor(int rows, int columns) {
  if (columns < 0 && -columns >= m_cursorColumn) return;
  if (columns > 0 && m_cursorColumn >= m_columns) return;
  const qint64 row = std::max<qint64>(1, std::min<qint64>(qint64(m_cursorRow) + rows, m_rows));
  const int column = std::max(1, std::min(m_cursorColumn + columns, m_columns));
  PlaceCursor(static_cast<int>(row), column);
}

void OwnerGridLogic::ShowCellPopup(int column, int row) {
  if (m_autoPopup) {
    QString text;
    if (row < 1) {
      text = ValidColumnIndex(column) ? m_captions[column] : QString();
    } else {
      quint32 colour = TextColour(false);
      if (m_owner) m_owner->DataRequest(row, column, text, colour);
    }
    Ui().MsgBox(text, MsgStyle::Information, QString());
  } else if (row > 0 && m_owner) {
    m_owner->Popup(row, column);
  }
}

void OwnerGridLogic::UpdateHeaderPointer(int x, int y) {
  if (!m_host) return;
  GridPointer shape = GridPointer::Default;
  if (m_sortable && y <= m_headerHeight) {
    const Hit hit = HitTest(x, y);
    if (hit.hit && hit.column >= 1)
      shape = hit.column == m_sortColumn ? GridPointer::Up : GridPointer::Down;
  }
  m_host->SetPointer(shape);
}

QRect OwnerGridLogic::CellRect(int row, int column) const {
  if (row < 1 || row > m_rows || column < 1 || column > m_columns) return QRect();
  const Range range = VisibleRange(false);
  if (row < range.top) return QRect();
  const int y = m_headerHeight + 1 + (row - range.top) * m_rowHeight;
  if (y >= PaintHeight()) return QRect();
  double x = 0;
  if (column <= m_fixedColumns) {
    for (int c = 1; c < column; ++c) x += m_widths[c];
  } else {
    if (column < range.left) return QRect();
    x = FixedWidth();
    for (int c = range.left; c < column && x < PaintWidth(); ++c) x += m_widths[c];
    if (x >= PaintWidth()) return QRect();
  }
  const int left = qRound(x);
  return QRect(left, y, qRound(x + m_widths[column]) - left, m_rowHeight);
}

void OwnerGridLogic::PaintCellAt(int row, int column) {
  if (!m_host) return;
  const QRect rect = CellRect(row, column);
  if (!rect.isEmpty()) m_host->RepaintRect(rect);
}

void OwnerGridLogic::RepaintHeader() {
  if (m_host) m_host->RepaintRect(QRect(0, 0, std::max(PaintWidth(), 0), m_headerHeight));
}

quint32 OwnerGridLogic::TextColour(bool highlighted) const {
  if (!m_enabled) return SysColour::GrayText;
  return highlighted ? m_highlightForeColor : m_foreColor;
}

}  // namespace ombrelle
