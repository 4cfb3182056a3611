#pragma once

#include <vector>

#include <QFont>
#include <QFontMetricsF>
#include <QPoint>
#include <QRect>
#include <QString>
#include <QVariantMap>
#include <Qt>

#include "grid/OwnerGridHost.h"

class QPainter;
class QRegion;

namespace ombrelle {

class OwnerGridEvents;

// Key codes the grid acts on, as its KeyDown event reports them.
namespace GridKey {
constexpr int PageUp = 0x21;
constexpr int PageDown = 0x22;
constexpr int End = 0x23;
constexpr int Home = 0x24;
constexpr int Left = 0x25;
constexpr int Up = 0x26;
constexpr int Right = 0x27;
constexpr int Down = 0x28;
constexpr int ContextMenu = 0x5D;
constexpr int KeypadPlus = 0x6B;
constexpr int KeypadMinus = 0x6D;
}  // namespace GridKey

// Bits of the shift state of a key.
namespace GridShift {
constexpr int Shift = 1;
constexpr int Ctrl = 2;
constexpr int Alt = 4;
}  // namespace GridShift

// The grid's key code and shift state of a Qt key.
int GridKeyFromQt(int qtKey, Qt::KeyboardModifiers modifiers);
int GridShiftFromQt(Qt::KeyboardModifiers modifiers);

// Everything of the owner-drawn table that is not a widget: its geometry
// (rows, columns, widths, alignments, captions, fixed columns), cursor, sort
// mark, scroll bar state, hit testing, keys, events and painting onto any
// QPainter. It stores no cell data; the owner answers DataRequest for each
// painted cell.
class OwnerGridLogic {
 public:
  static constexpr int MaxColumns = 262144;

  enum class Bar { Vertical, Horizontal };
  enum class Button { Left, Right };

  // One scroll bar as the logic sees it; the host mirrors it.
  struct ScrollBar {
    int minimum = 1;
    int maximum = 1;
    int value = 1;
    int largeChange = 1;
    bool visible = false;
  };

  struct Range {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
  };

  struct Hit {
    bool hit = false;
    int row = 0;
    int column = 0;
  };

  // Neither pointer is owned; both may be null (no events, no surface).
  explicit OwnerGridLogic(OwnerGridEvents* owner = nullptr, OwnerGridHost* host = nullptr);
  OwnerGridLogic(const OwnerGridLogic&) = delete;
  OwnerGridLogic& operator=(const OwnerGridLogic&) = delete;

  void SetOwner(OwnerGridEvents* owner);
  void SetHost(OwnerGridHost* host);

  // Properties.
  quint32 BackColor() const { return m_backColor; }
  void SetBackColor(quint32 colour);
  quint32 ForeColor() const { return m_foreColor; }
  void SetForeColor(quint32 colour);
  bool Enabled() const { return m_enabled; }
  void SetEnabled(bool enabled);
  const QFont& CellFont() const { return m_cellFont; }
  void SetCellFont(const QFont& font);
  const QFont& HeaderFont() const { return m_headerFont; }
  void SetHeaderFont(const QFont& font);
  qint16 BorderStyle() const { return m_borderStyle; }
  void SetBorderStyle(qint16 style);
  quint32 GridColor() const { return m_gridColor; }
  void SetGridColor(quint32 colour) { m_gridColor = colour; }
  int Columns() const { return m_columns; }
  void SetColumns(int columns);
  int Rows() const { return m_rows; }
  void SetRows(int rows);
  float ColumnWidth(int column) const;
  void SetColumnWidth(int column, float width);
  quint8 ColumnAlignment(int column) const;
  void SetColumnAlignment(int column, quint8 alignment);
  QString ColumnCaption(int column) const;
  void SetColumnCaption(int column, const QString& caption);
  int SortColumn() const { return m_sortColumn; }
  void SetSortColumn(int column);
  bool Sortable() const { return m_sortable; }
  void SetSortable(bool sortable);
  qint16 FixedColumns() const { return m_fixedColumns; }
  void SetFixedColumns(int fixed);
  bool AutoPopup() const { return m_autoPopup; }
  void SetAutoPopup(bool autoPopup) { m_autoPopup = autoPopup; }

  // The stored form of the properties, under their property names.
  QVariantMap StoreProperties() const;
  void LoadProperties(const QVariantMap& properties);

  // Methods.
  void DisableRefresh() { m_refreshDisabled = true; }
  void EnableRefresh();
  void PlaceCursor(int row, int column);
  void Refresh();
  int GetCurColumn() const { return m_cursorColumn; }
  int GetCurRow() const { return m_cursorRow; }
  void Mouse_Scroll(int x, int y, bool page);

  // Input from the surface.
  void OnMouseDown(int x, int y, Button button);
  void OnMouseMove(int x, int y, bool buttonDown);
  void OnMouseUp(int x, int y, Button button);
  void OnDoubleClick();
  void OnKeyDown(int keyCode, int shift);
  void OnKeyPress(QChar character);
  void OnKeyUp(int keyCode, int shift);
  // The user moved a scroll bar to `value`.
  void OnScrollBar(Bar bar, int value);
  void OnResize();
  void OnFirstShow();

  // Geometry and behaviour.
  int VScale() const { return m_vScale; }
  int HScale() const { return m_hScale; }
  int HeaderHeight() const { return m_headerHeight; }
  int RowHeight() const { return m_rowHeight; }
  const ScrollBar& VScroll() const { return m_vScroll; }
  const ScrollBar& HScroll() const { return m_hScroll; }
  int TopRow() const;
  int LeftColumn() const;
  Range VisibleRange(bool forceHScroll) const;
  bool MakeVisible(int row, int column);
  void PlaceScrollBars();
  Hit HitTest(int x, int y) const;
  void MouseAction(int x, int y, int phase);
  void HeaderClick(int column);
  void SortClick(int column);
  void MoveCursor(int rows, int columns);
  void ShowCellPopup(int column, int row);
  void UpdateHeaderPointer(int x, int y);
  // Where a cell is on the surface; empty when it is out of view.
  QRect CellRect(int row, int column) const;

  // Colours of the private state.
  quint32 HeaderBackColor() const { return m_headerBackColor; }
  quint32 HighlightBackColor() const { return m_highlightBackColor; }
  quint32 HighlightForeColor() const { return m_highlightForeColor; }
  quint32 CursorBackColor() const { return m_cursorBackColor; }

  // Painting: one Redraw is one paint of the surface. Only cells that meet
  // `clip` are asked for. Does nothing while refresh is disabled.
  void Redraw(QPainter& painter, const QRegion& clip);
  int DrawHeader(QPainter& painter, const QRegion& clip);
  void DrawBody(QPainter& painter, const QRegion& clip);
  // The fonts as painted and measured: point sizes turned into pixel sizes at
  // the reference resolution, so that neither depends on the screen.
  const QFont& CellPaintFont() const { return m_cellPaintFont; }
  const QFont& HeaderPaintFont() const { return m_headerPaintFont; }

 private:
  void MeasureRows();
  bool WriteTopValue(int value);
  bool WriteTopRow(int row);
  bool WriteLeftColumn(int column);
  bool WriteLeftValue(int value);
  void ScrollBy(Bar bar, int amount);
  void PaintCellAt(int row, int column);
  void RepaintHeader();
  double FixedWidth() const;
  int SurfaceWidth() const;
  int SurfaceHeight() const;
  int PaintWidth() const;
  int PaintHeight() const;
  quint32 TextColour(bool highlighted) const;
  void PaintCell(QPainter& painter, const QRegion& clip, int row, int column, int state, int x,
                 int y, int height);
  static bool ValidColumnIndex(int column) { return column >= 1 && column <= MaxColumns; }

  OwnerGridEvents* m_owner = nullptr;
  OwnerGridHost* m_host = nullptr;

  quint32 m_backColor;
  quint32 m_foreColor;
  bool m_enabled = true;
  QFont m_cellFont;
  QFont m_headerFont;
  QFont m_cellPaintFont;
  QFont m_headerPaintFont;
  qint16 m_borderStyle = 0;
  quint32 m_gridColor = 0xE0E0E0;
  int m_columns = 3;
  int m_rows = 1;
  std::vector<float> m_widths;
  std::vector<quint8> m_alignments;
  std::vector<QString> m_captions;
  int m_sortColumn = 0;
  bool m_sortable = false;
  qint16 m_fixedColumns = 0;
  bool m_autoPopup = false;

  int m_cursorRow = 0;
  int m_cursorColumn = 0;
  quint32 m_headerBackColor;
  quint32 m_highlightBackColor;
  quint32 m_highlightForeColor;
  quint32 m_cursorBackColor;
  int m_headerHeight = 0;
  int m_rowHeight = 1;
  int m_vScale = 1;
  int m_hScale = 1;
  bool m_refreshDisabled = false;
  bool m_refreshPending = false;
  ScrollBar m_vScroll;
  ScrollBar m_hScroll;
  bool m_buttonDown = false;
  QPoint m_lastMouse{-1, -1};
};

}  // namespace ombrelle
