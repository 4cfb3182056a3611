#pragma once

#include <QChar>
#include <QString>
#include <QtGlobal>

namespace ombrelle {

// What the grid raises at its owner. The grid holds no cell data: every cell
// it paints is asked for through DataRequest. Every handler has an empty
// default, so an owner overrides only what it uses.
class OwnerGridEvents {
 public:
  virtual ~OwnerGridEvents() = default;

  // A cell is being painted: `text` comes in empty, `colour` (0x00BBGGRR or a
  // system colour) as the text colour in force; the owner may change both.
  virtual void DataRequest(int /*row*/, int /*column*/, QString& /*text*/, quint32& /*colour*/) {}
  // First thing on a key; the owner may change the key or the shift state
  // (a key code of 0 swallows the key).
  virtual void KeyDown(int& /*keyCode*/, int& /*shift*/) {}
  virtual void KeyPress(QChar /*character*/) {}
  virtual void KeyUp(int /*keyCode*/, int /*shift*/) {}
  // Before a new sort mark is set; the owner re-orders its data and may
  // change the column (0 for unsorted, negative for descending).
  virtual void SortBy(int& /*column*/) {}
  virtual void EnterColumn(int /*column*/) {}
  virtual void EnterRow(int /*row*/) {}
  virtual void EnterCell(int /*row*/, int /*column*/) {}
  virtual void Popup(int /*row*/, int /*column*/) {}
  virtual void DblClickCell(int /*row*/, int /*column*/) {}
};

}  // namespace ombrelle
