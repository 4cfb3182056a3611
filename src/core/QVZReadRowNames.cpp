// The row names of one class served straight from the file, name by name,
// for readers that walk them once (the XML export) and need neither a list of
// strings nor the display order. The names are exactly those of
// GetRowHeaders: the block split at its zero bytes, cut to the class's row
// count, and "#<row>" for rows the block does not name.

#include <algorithm>
#include <cstring>
#include <string>

#include "core/QVZRead.h"
#include "core/RowNameSink.h"
#include "support/Codepage.h"

namespace ombrelle {

namespace {

// Whether every byte is below 128: such bytes read as themselves in UTF-8 and
// in the single-byte code page alike.
bool AllAscii(const char* bytes, qsizetype size) {
  unsigned char any = 0;
  for (qsizetype i = 0; i < size; ++i) any |= static_cast<unsigned char>(bytes[i]);
  return any < 0x80;
}

}  // namespace

void QVZRead::ForEachRowName(int metricClass, RowNameSink& sink) {
  const ClassSlot& slot = Slot(metricClass);
  if (m_rowNamesRead || !IsVersion3() || slot.ItemCount < 0) {
    // The names are loaded already, or the file keeps them in records: the list road.
    LoadRowNames();
    for (const QString& name : std::as_const(Slot(metricClass).RowNames)) sink.TextName(name);
    return;
  }
  if (!EnsureFileOpen()) return;

  // The blocks follow each other in the order of the class table; a class
  // listed twice takes its last block, as when every block is loaded.
  qint64 offset = m_rowNamesStart - 1;
  bool listed = false;
  qint64 textOffset = 0;
  qint64 textLength = 0;
  int32_t encoding = 0;
  for (const int16_t classNr : m_classOrder) {
    char bytes[kRowBlockHeadSize];
    RowBlockHead block;
    if (ReadExact(offset, bytes, kRowBlockHeadSize)) block = RowBlockHead::Decode(bytes);
    offset += kRowBlockHeadSize;
    const qint64 length = std::max<int32_t>(block.Length, 0);
    if (classNr == metricClass) {
      listed = true;
      textOffset = offset;
      textLength = length;
      encoding = block.Encoding;
    }
    offset += length;
  }
  if (!listed || slot.ItemCount > RowLimit(slot)) return;

  const qsizetype rows = slot.ItemCount;
  qsizetype named = 0;
  // A text that no longer fits in the file (it may have been replaced since
  // it was opened) names no rows.
  if (textLength > 0 && textOffset + textLength <= m_fileLength) {
    QByteArray text(textLength, Qt::Uninitialized);
    if (ReadExact(textOffset, text.data(), textLength)) {
      const char* const begin = text.constData();
      const char* const end = begin + text.size();
      if (AllAscii(begin, text.size())) {
        // Every zero byte ends a name; the text after the last is a name too.
        for (const char* name = begin; named < rows; ++named) {
          const char* zero =
              static_cast<const char*>(std::memchr(name, 0, static_cast<size_t>(end - name)));
          const char* const stop = zero ? zero : end;
          sink.AsciiName(std::string_view(name, static_cast<size_t>(stop - name)));
          if (!zero) {
            ++named;
            break;
          }
          name = zero + 1;
        }
      } else {
        const int codepage = (encoding & kRowEncodingUtf8) ? kCodepageUtf8 : kCodepageAnsi;
        const QString decoded = MultiByteToText(text, codepage);
        const QStringView all(decoded);
        qsizetype start = 0;
        for (; named < rows; ++named) {
          const qsizetype zero = all.indexOf(QChar(u'\0'), start);
          const qsizetype stop = zero < 0 ? all.size() : zero;
          sink.TextName(all.mid(start, stop - start));
          if (zero < 0) {
            ++named;
            break;
          }
          start = zero + 1;
        }
      }
    }
  }
  std::string filler = "#";
  for (qsizetype row = named + 1; row <= rows; ++row) {
    filler.resize(1);
    filler += std::to_string(row);
    sink.AsciiName(filler);
  }
}

}  // namespace ombrelle
