#pragma once

#include <QString>

namespace ombrelle {

// A growing text buffer for reports: appending is cheap because the capacity
// at least doubles when it runs out, and the text is saved once at the end.
class CString {
 public:
  void Append(const QString& text);
  // `text` and CR LF.
  void AppendLine(const QString& text = {});
  QString Value() const { return m_text; }
  qsizetype Length() const { return m_text.size(); }
  // Truncates to `length` characters; a longer length changes nothing.
  void SetLength(qsizetype length);
  void Clear() { m_text.clear(); }
  // The last `n` characters (all of them when there are fewer).
  QString Right(qsizetype n) const;
  // Reserves room for `n` characters.
  void SetBufferSize(qsizetype n);
  qsizetype BufferSize() const { return m_text.capacity(); }
  // Saves the text as UTF-16 with a byte-order mark (SaveUnicodeFile, with its
  // checks and messages).
  bool WriteToFileUnicode(const QString& path) const;

 private:
  void Reserve(qsizetype needed);

  QString m_text;
};

}  // namespace ombrelle
