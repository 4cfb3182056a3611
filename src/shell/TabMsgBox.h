#pragma once

#include <QString>

namespace ombrelle {

// A modal text box with tab columns: lines are collected with their tabs, and
// on display every tab is expanded so that the right-hand texts line up one
// column behind the longest left-hand text.
class TabMsgBox {
 public:
  // Appends `text` and CR LF.
  void AddLine(const QString& text);
  // Appends `left`, a tab, `right` and CR LF.
  void AddTabLine(const QString& left, const QString& right);

  // The collected text with its tabs.
  const QString& Text() const { return m_text; }
  // The text as shown: tabs expanded to one column behind the largest tab
  // position of any line.
  QString ExpandedText() const;

  // Shows the expanded text under `title` through the user-interface service.
  void Display(const QString& title) const;

 private:
  QString m_text;
};

}  // namespace ombrelle
