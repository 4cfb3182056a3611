#include "shell/TabMsgBox.h"

#include <QStringList>

#include "support/Text.h"
#include "support/UiServices.h"

namespace ombrelle {

void TabMsgBox::AddLine(const QString& text) {
  m_text += text;
  m_text += QStringLiteral("\r\n");
}

void TabMsgBox::AddTabLine(const QString& left, const QString& right) {
  m_text += left;
  m_text += QLatin1Char('\t');
  m_text += right;
  m_text += QStringLiteral("\r\n");
}

QString TabMsgBox::ExpandedText() const {
  qsizetype widest = 0;  // largest 1-based tab position over all lines
  for (const QString& line : m_text.split(QStringLiteral("\r\n"))) {
    const qsizetype tab = line.lastIndexOf(QLatin1Char('\t'));
    if (tab >= 0) widest = std::max(widest, tab + 1);
  }
  return ExpandTabs(m_text, static_cast<int>(widest + 1));
}

void TabMsgBox::Display(const QString& title) const { Ui().TextBox(title, ExpandedText()); }

}  // namespace ombrelle
