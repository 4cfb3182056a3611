#include "reports/MHTSaver.h"

#include <QDateTime>
#include <QFile>
#include <QSaveFile>
#include <QTemporaryFile>
#include <QTimeZone>

#include "reports/ReportFrame.h"
#include "support/Codepage.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

constexpr int Ansi = 1252;
constexpr qsizetype Base64LineLength = 76;
const QByteArray CrLf("\r\n");

bool IsPlainText(const QString& text) {
  for (QChar c : text) {
    if (c.unicode() < 32 || c.unicode() > 126) return false;
  }
  return true;
}

}  // namespace

MHTSaver::MHTSaver() = default;

MHTSaver::~MHTSaver() {
  if (m_file) m_file->cancelWriting();
}

QString MHTSaver::DateRFC1123(const QDateTime& when) {
  static const char* const Months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const QDate date = when.date();
  QString zone = QStringLiteral("+0000");
  if (when.timeSpec() != Qt::UTC) {
    const int offset = when.offsetFromUtc() / 60;
    const int magnitude = offset < 0 ? -offset : offset;
    zone = QStringLiteral("%1%2%3")
               .arg(offset < 0 ? QLatin1Char('-') : QLatin1Char('+'))
               .arg(magnitude / 60, 2, 10, QLatin1Char('0'))
               .arg(magnitude % 60, 2, 10, QLatin1Char('0'));
  }
  return QStringLiteral("%1 %2 %3 %4 %5")
      .arg(date.day())
      .arg(QLatin1String(Months[date.month() - 1]))
      .arg(date.year())
      .arg(when.time().toString(QStringLiteral("hh:mm:ss")), zone);
}

QString MHTSaver::EncodeHeaderText(const QString& text) {
  if (IsPlainText(text)) return text;
  return QStringLiteral("=?utf-8?B?") + QString::fromLatin1(text.toUtf8().toBase64()) +
         QStringLiteral("?=");
}

QString MHTSaver::QuoteHeaderText(const QString& text) {
  QString encoded = EncodeHeaderText(text);
  encoded.replace(QLatin1Char('"'), QStringLiteral("\"\""));
  return QLatin1Char('"') + encoded + QLatin1Char('"');
}

QString MHTSaver::PartLocation(const QString& url, bool html) {
  if (url.isEmpty()) return html ? kMakerWebAddress + QStringLiteral("archive/index.html") : url;
  if (url.contains(QStringLiteral("://"))) return url;
  return kMakerWebAddress + QStringLiteral("archive/") + url;
}

int MHTSaver::GetFileNr() const { return m_file ? 1 : 0; }

bool MHTSaver::Open(const QString& fileName) {
  if (m_file) m_file->cancelWriting();
  m_file = std::make_unique<QSaveFile>(fileName);
  m_spool.reset();
  m_failed = false;
  m_error.clear();
  if (!m_file->open(QIODevice::WriteOnly)) {
    m_error = m_file->errorString();
    m_file.reset();
    return false;
  }
  m_fileName = fileName;
  return true;
}

bool MHTSaver::Start(const QString& fileName, const QString& title, const QString& generatorApp) {
  if (!Open(fileName)) return false;
  m_title = title;
  m_generatorApp = generatorApp.isEmpty() ? UiServices::AppTitle() : generatorApp;
  m_headerDone = false;
  m_htmlWritten = false;
  return true;
}

bool MHTSaver::Append(const QString& fileName) {
  QFile old(fileName);
  if (!old.exists()) return Start(fileName, {}, {});
  // The earlier parts are copied into the new temporary file, so the old
  // archive stays whole until this one is done.
  if (!old.open(QIODevice::ReadOnly) || !Open(fileName)) return false;
  while (!old.atEnd()) {
    if (!Write(old.read(1 << 20))) return false;
  }
  m_headerDone = true;
  m_htmlWritten = true;
  m_title = fileName;
  return true;
}

bool MHTSaver::Write(const QByteArray& bytes) {
  if (!m_file) return false;
  if (m_file->write(bytes) != bytes.size()) m_failed = true;
  return !m_failed;
}

bool MHTSaver::WriteText(const QString& text) { return Write(TextToMultiByte(text, Ansi)); }

bool MHTSaver::EnsureHeader() {
  if (!m_file) return false;
  if (m_headerDone) return true;
  m_headerDone = true;
  QString header;
  const auto line = [&header](const QString& text) { header += text + QStringLiteral("\r\n"); };
  line(QStringLiteral("From: ") + QuoteHeaderText(QStringLiteral("Saved by ") + m_generatorApp) +
       QStringLiteral("<>"));
  line(QStringLiteral("Subject: ") + EncodeHeaderText(m_title));
  line(QStringLiteral("Date: ") + DateRFC1123(QDateTime::currentDateTime()));
  line(QStringLiteral("MIME-Version: 1.0"));
  line(QStringLiteral("Bcc:"));
  line(QStringLiteral("Content-Type: multipart/related;"));
  line(QStringLiteral("\ttype=\"text/html\";"));
  line(QStringLiteral("\tboundary=\"%1\"").arg(QLatin1String(Boundary)));
  line({});
  line(QStringLiteral("This is a web file archive in MIME format."));
  return WriteText(header);
}

// Each part starts by ending the line before it and leaves its own last line
// open; Done ends it.
bool MHTSaver::SaveHTML(const QString& html, const QString& url, const QString& contentType) {
  if (!EnsureHeader()) return false;
  QString head =
      QStringLiteral("\r\n--%1\r\nContent-Type: %2\r\n").arg(QLatin1String(Boundary), contentType);
  const QString location =
      PartLocation(url, contentType.startsWith(QLatin1String("text/html"), Qt::CaseInsensitive));
  if (!location.isEmpty()) {
    head += QStringLiteral("Content-Location: ") + location + QStringLiteral("\r\n");
  }
  head += QStringLiteral("Content-Transfer-Encoding: 8bit\r\n\r\n");
  if (!FlushSpool() || !WriteText(head + html)) return false;
  m_htmlWritten = true;
  return true;
}

bool MHTSaver::SaveHTML_UTF8(const QString& html, const QString& url) {
  if (!SaveHTML({}, url, QStringLiteral("text/html;\r\n        charset=\"utf-8\""))) return false;
  return Write(CrLf + html.toUtf8());
}

bool MHTSaver::SaveBase64(const QByteArray& base64, const QString& contentType,
                          const QString& url) {
  if (!EnsureHeader()) return false;
  QByteArray block;
  block.reserve(base64.size() + base64.size() / Base64LineLength * 2 + 256);
  block += CrLf + "--" + Boundary + CrLf;
  block += "Content-Type: " + TextToMultiByte(contentType, Ansi) + CrLf;
  block += "Content-Transfer-Encoding: base64" + CrLf;
  block += "Content-Location: " + TextToMultiByte(PartLocation(url, false), Ansi) + CrLf + CrLf;
  for (qsizetype at = 0; at < base64.size(); at += Base64LineLength) {
    block += base64.mid(at, Base64LineLength);
    block += CrLf;
  }
  if (m_htmlWritten) return FlushSpool() && Write(block);
  if (!m_spool) {
    m_spool = std::make_unique<QTemporaryFile>();
    if (!m_spool->open()) {
      m_spool.reset();
      m_failed = true;
      return false;
    }
  }
  if (m_spool->write(block) != block.size()) m_failed = true;
  return !m_failed;
}

bool MHTSaver::FlushSpool() {
  if (!m_spool || !m_htmlWritten) return !m_failed;
  m_spool->seek(0);
  while (!m_spool->atEnd()) {
    if (!Write(m_spool->read(1 << 20))) break;
  }
  m_spool.reset();
  return !m_failed;
}

bool MHTSaver::SaveBinaryFile(const QString& file, const QString& contentType, const QString& url) {
  if (!m_file) return false;
  QFile in(file);
  if (!in.open(QIODevice::ReadOnly)) return false;
  return SaveBase64(in.readAll().toBase64(), contentType, url);
}

bool MHTSaver::Done(bool continues) {
  if (!m_file) return false;
  m_htmlWritten = true;
  FlushSpool();
  QByteArray tail;
  if (m_headerDone) tail += CrLf;
  if (!continues) tail += CrLf + "--" + Boundary + "--" + CrLf;
  Write(tail);
  const bool ok = !m_failed && m_file->commit();
  if (!ok) m_error = m_file->errorString();
  m_file.reset();
  return ok;
}

}  // namespace ombrelle
