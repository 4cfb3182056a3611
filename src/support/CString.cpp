#include "support/CString.h"

#include <algorithm>

#include "support/FileIO.h"

namespace ombrelle {

void CString::Reserve(qsizetype needed) {
  if (needed <= m_text.capacity()) return;
  m_text.reserve(std::max<qsizetype>({needed, 2 * m_text.capacity(), 256}));
}

void CString::Append(const QString& text) {
  Reserve(m_text.size() + text.size());
  m_text += text;
}

void CString::AppendLine(const QString& text) {
  Reserve(m_text.size() + text.size() + 2);
  m_text += text;
  m_text += QLatin1String("\r\n");
}

void CString::SetLength(qsizetype length) {
  if (length >= 0 && length < m_text.size()) m_text.truncate(length);
}

QString CString::Right(qsizetype n) const { return n <= 0 ? QString() : m_text.right(n); }

void CString::SetBufferSize(qsizetype n) {
  if (n > m_text.capacity()) m_text.reserve(n);
}

bool CString::WriteToFileUnicode(const QString& path) const {
  return SaveUnicodeFile(path, m_text);
}

}  // namespace ombrelle
