#pragma once

#include <string>
#include <vector>

#include <QRect>
#include <QSize>
#include <QString>

#include "grid/OwnerGridEvents.h"
#include "grid/OwnerGridHost.h"

namespace ombrelle::test {

// A surface of a fixed size that records what the grid asks of it.
class FakeGridHost : public OwnerGridHost {
 public:
  explicit FakeGridHost(QSize size = QSize(400, 300), int extent = 16)
      : size(size), extent(extent) {}
  QSize SurfaceSize() const override { return size; }
  int ScrollBarExtent() const override { return extent; }
  void ScrollBarsChanged() override { ++scrollBarChanges; }
  void RepaintAll() override { ++fullRepaints; }
  void RepaintRect(const QRect& rect) override { rects.push_back(rect); }
  void SetPointer(GridPointer shape) override { pointer = shape; }
  void ApplyBorderStyle(int style) override { borderStyle = style; }
  void Clear() {
    rects.clear();
    fullRepaints = 0;
    scrollBarChanges = 0;
  }

  QSize size;
  int extent;
  int scrollBarChanges = 0;
  int fullRepaints = 0;
  std::vector<QRect> rects;
  GridPointer pointer = GridPointer::Default;
  int borderStyle = -1;
};

// An owner that writes every event into one list, in order, and answers
// DataRequest with "r<row>c<column>".
class RecordingOwner : public OwnerGridEvents {
 public:
  void DataRequest(int row, int column, QString& text, quint32& colour) override {
    ++dataRequests;
    requested.emplace_back(row, column);
    colours.push_back(colour);
    text = QStringLiteral("r%1c%2").arg(row).arg(column);
    if (row == redRow && column == redColumn) colour = 255;
  }
  void KeyDown(int& keyCode, int& shift) override {
    Log("KeyDown " + std::to_string(keyCode) + " " + std::to_string(shift));
    if (swallowKeys) keyCode = 0;
  }
  void KeyPress(QChar character) override { Log("KeyPress " + QString(character).toStdString()); }
  void KeyUp(int keyCode, int shift) override {
    Log("KeyUp " + std::to_string(keyCode) + " " + std::to_string(shift));
  }
  void SortBy(int& column) override {
    Log("SortBy " + std::to_string(column));
    if (sortAnswer != kKeep) column = sortAnswer;
  }
  void EnterColumn(int column) override { Log("EnterColumn " + std::to_string(column)); }
  void EnterRow(int row) override { Log("EnterRow " + std::to_string(row)); }
  void EnterCell(int row, int column) override {
    Log("EnterCell " + std::to_string(row) + " " + std::to_string(column));
  }
  void Popup(int row, int column) override {
    Log("Popup " + std::to_string(row) + " " + std::to_string(column));
  }
  void DblClickCell(int row, int column) override {
    Log("DblClickCell " + std::to_string(row) + " " + std::to_string(column));
  }

  void Log(const std::string& entry) { events.push_back(entry); }

  static constexpr int kKeep = 1 << 30;
  std::vector<std::string> events;
  std::vector<std::pair<int, int>> requested;
  std::vector<quint32> colours;  // as they came in, beside `requested`
  int dataRequests = 0;
  int redRow = -1;
  int redColumn = -1;
  int sortAnswer = kKeep;
  bool swallowKeys = false;
};

}  // namespace ombrelle::test
