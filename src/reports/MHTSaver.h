#pragma once

#include <memory>

#include <QByteArray>
#include <QString>

class QDateTime;
class QSaveFile;
class QTemporaryFile;

namespace ombrelle {

// Writes a web archive (a multipart/related MIME message whose first part is
// the HTML and whose other parts are base64 pictures) part by part, straight
// to disk. The archive is written under a temporary name and renamed into
// place by Done, so an interrupted report never leaves a half file under the
// final name. Calling order: Start (or Append), parts, Done(false). Browsers
// show the first part of an archive, so pictures saved before the HTML (a
// report makes its pictures while it writes its text) wait in a spool file
// and follow the first HTML part. Every operation on a closed archive
// returns false.
class MHTSaver {
 public:
  static constexpr const char* Boundary = "----====::::MIME.boundary::::====----";
  // Browsers match the parts of an archive only by absolute web addresses,
  // so a relative part name ("Chart1.bmp") is placed below this base, and an
  // HTML part without a name becomes its "index.html". Links in the HTML stay
  // relative and resolve against it.
  static QString PartLocation(const QString& url, bool html);

  MHTSaver();
  // An archive still open here is abandoned: nothing reaches the final name.
  ~MHTSaver();
  MHTSaver(const MHTSaver&) = delete;
  MHTSaver& operator=(const MHTSaver&) = delete;

  // Opens `fileName` for a new archive (replacing an old one when Done
  // completes). An empty `generatorApp` becomes the program's title. The header
  // is written before the first part.
  bool Start(const QString& fileName, const QString& title, const QString& generatorApp = {});
  // Goes on with an archive an earlier step ended with Done(true): its header
  // counts as written and the title becomes the file name. A file that does not
  // exist is started afresh with an empty title and generator.
  bool Append(const QString& fileName);

  // A text part. Its text is written in Windows-1252, as plain text files are.
  bool SaveHTML(const QString& html, const QString& url, const QString& contentType);
  // An HTML part in UTF-8, with its charset named.
  bool SaveHTML_UTF8(const QString& html, const QString& url);
  // A part from base64 text, in lines of 76 characters.
  bool SaveBase64(const QByteArray& base64, const QString& contentType, const QString& url);
  // A part holding the whole of `file`, base64-encoded.
  bool SaveBinaryFile(const QString& file, const QString& contentType, const QString& url);
  // Ends the archive (with the closing boundary unless `continues`), closes
  // the file and moves it into place. False when it could not be written.
  bool Done(bool continues);

  QString Filename() const { return m_fileName; }
  // 1 while an archive is open, 0 when closed.
  int GetFileNr() const;
  // Why the last Start, Append or Done failed ("" when nothing failed).
  QString ErrorText() const { return m_error; }
  QString Title() const { return m_title; }
  void SetTitle(const QString& title) { m_title = title; }

  // The mail date form without weekday: "7 Mar 2026 14:05:09 +0100".
  static QString DateRFC1123(const QDateTime& when);
  // Plain printable ASCII stays as it is; other text becomes an RFC 2047 word
  // of its UTF-8 bytes in base64.
  static QString EncodeHeaderText(const QString& text);
  static QString QuoteHeaderText(const QString& text);

 private:
  bool Open(const QString& fileName);
  bool EnsureHeader();
  bool Write(const QByteArray& bytes);
  bool WriteText(const QString& text);
  bool FlushSpool();

  std::unique_ptr<QSaveFile> m_file;
  std::unique_ptr<QTemporaryFile> m_spool;  // parts made before the HTML
  bool m_headerDone = false;
  bool m_htmlWritten = false;
  bool m_failed = false;
  QString m_fileName;
  QString m_error;
  QString m_generatorApp;
  QString m_title;
};

}  // namespace ombrelle
