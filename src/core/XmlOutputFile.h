#pragma once

#include <cstring>
#include <memory>
#include <string_view>

#include <QString>
#include <QStringView>

namespace ombrelle {

// The output file of an export: a buffered byte stream written to a temporary
// file beside the final name and renamed into place by Commit, so that a
// failed or abandoned export never leaves a half-written file under the final
// name, and a file that was there stays as it was. Holds one buffer of fixed
// size whatever the length of the output. After a failure the stream ignores
// further writes and keeps the system's error number and text.
class XmlOutputFile {
 public:
  static constexpr qsizetype kDefaultBufferSize = 256 * 1024;

  explicit XmlOutputFile(qsizetype bufferSize = kDefaultBufferSize);
  // Discards an uncommitted file.
  ~XmlOutputFile();
  XmlOutputFile(const XmlOutputFile&) = delete;
  XmlOutputFile& operator=(const XmlOutputFile&) = delete;

  // Prepares to write `path`, replacing what is there. Fails, with the
  // system's error, when `path` is a folder, an existing file that may not be
  // written, or when the temporary file cannot be made in its folder.
  bool Create(const QString& path);
  bool IsOpen() const { return m_fd >= 0; }
  const QString& Path() const { return m_path; }

  void Write(const char* data, qsizetype size) {
    if (size <= m_capacity - m_used) {
      std::memcpy(m_buffer.get() + m_used, data, static_cast<size_t>(size));
      m_used += size;
    } else {
      WriteSlow(data, size);
    }
  }
  void Write(std::string_view text) { Write(text.data(), static_cast<qsizetype>(text.size())); }
  // Each 16-bit code escaped for XML (see XmlText.h).
  void WriteEscaped(QStringView text);
  // The same for bytes below 128, each standing for the code of its value.
  void WriteEscaped(std::string_view ascii);
  // A number in the raw form of XmlNumber.
  void WriteNumber(double value);
  // Room for `size` bytes at the end of the buffer, written out first when
  // the buffer is too full; Advance then keeps what was put there. Null
  // after a failure or when `size` is more than the buffer holds.
  char* Claim(qsizetype size) {
    return size <= m_capacity - m_used ? m_buffer.get() + m_used : ClaimSlow(size);
  }
  void Advance(qsizetype size) { m_used += size; }
  // The line end of the export: CR LF.
  void EndLine() { Write("\r\n", 2); }

  // Writes out the buffer, closes the file and renames it to the final name.
  // False on any failure, after which nothing is left under the temporary name.
  bool Commit();
  // Closes and deletes the temporary file; the final name is not touched.
  void Discard();

  bool Failed() const { return m_errorNumber != 0; }
  int ErrorNumber() const { return m_errorNumber; }
  const QString& ErrorText() const { return m_errorText; }
  // Bytes handed to the stream since Create.
  qint64 BytesWritten() const { return m_flushed + m_used; }

 private:
  void WriteSlow(const char* data, qsizetype size);
  char* ClaimSlow(qsizetype size);
  bool Flush();
  bool WriteAll(const char* data, qsizetype size);
  void SetError(int number);

  std::unique_ptr<char[]> m_buffer;
  qsizetype m_capacity;
  qsizetype m_used = 0;
  qint64 m_flushed = 0;
  int m_fd = -1;
  QString m_path;
  QString m_tempPath;
  int m_errorNumber = 0;
  QString m_errorText;
};

}  // namespace ombrelle
