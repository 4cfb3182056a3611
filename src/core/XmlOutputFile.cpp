#include "core/XmlOutputFile.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <random>

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/XmlText.h"

namespace ombrelle {

namespace {

QByteArray Native(const QString& path) { return QFile::encodeName(path); }

}  // namespace

XmlOutputFile::XmlOutputFile(qsizetype bufferSize)
    : m_buffer(new char[static_cast<size_t>(std::max<qsizetype>(bufferSize, 64))]),
      m_capacity(std::max<qsizetype>(bufferSize, 64)) {}

XmlOutputFile::~XmlOutputFile() { Discard(); }

void XmlOutputFile::SetError(int number) {
  if (m_errorNumber != 0) return;  // the first failure is the one to tell
  m_errorNumber = number != 0 ? number : EIO;
  m_errorText = QString::fromLocal8Bit(std::strerror(m_errorNumber));
}

bool XmlOutputFile::Create(const QString& path) {
  Discard();
  m_errorNumber = 0;
  m_errorText.clear();
  m_used = 0;
  m_flushed = 0;
  m_path = path;

  // What opening the final name for writing would have refused.
  const QByteArray native = Native(path);
  struct stat info {};
  const bool exists = ::stat(native.constData(), &info) == 0;
  if (exists) {
    if (S_ISDIR(info.st_mode)) {
      SetError(EISDIR);
      return false;
    }
    if (::access(native.constData(), W_OK) != 0) {
      SetError(errno);
      return false;
    }
  }

  // A new name beside the final one, so that the rename stays on one file system.
  std::random_device seed;
  std::mt19937 random(seed());
  for (int attempt = 0; attempt < 100; ++attempt) {
    const QString candidate =
        path + QStringLiteral(".%1.tmp").arg(random() % 0x1000000, 6, 16, QLatin1Char('0'));
    const int fd =
        ::open(Native(candidate).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd >= 0) {
      // A replaced file keeps its permissions.
      if (exists) ::fchmod(fd, info.st_mode & 07777);
      m_fd = fd;
      m_tempPath = candidate;
      return true;
    }
    if (errno != EEXIST) {
      SetError(errno);
      return false;
    }
  }
  SetError(EEXIST);
  return false;
}

void XmlOutputFile::WriteSlow(const char* data, qsizetype size) {
  if (!IsOpen() || Failed()) return;
  if (!Flush()) return;
  if (size >= m_capacity) {
    // A piece larger than the buffer goes straight out.
    if (WriteAll(data, size)) m_flushed += size;
    return;
  }
  std::memcpy(m_buffer.get(), data, static_cast<size_t>(size));
  m_used = size;
}

char* XmlOutputFile::ClaimSlow(qsizetype size) {
  if (!IsOpen() || Failed() || size > m_capacity || !Flush()) return nullptr;
  return m_buffer.get();
}

void XmlOutputFile::WriteEscaped(QStringView text) {
  char piece[kXmlEscapeMaxBytes];
  const QChar* begin = text.data();
  const QChar* const end = begin + text.size();
  while (begin != end) {
    // Runs of plain characters are copied as bytes.
    const QChar* run = begin;
    while (run != end && XmlPlainCode(run->unicode())) ++run;
    if (run != begin) {
      const qsizetype length = run - begin;
      if (length <= m_capacity - m_used) {
        char* out = m_buffer.get() + m_used;
        for (qsizetype i = 0; i < length; ++i) out[i] = static_cast<char>(begin[i].unicode());
        m_used += length;
      } else {
        for (const QChar* c = begin; c != run; ++c) {
          const char byte = static_cast<char>(c->unicode());
          Write(&byte, 1);
        }
      }
      begin = run;
      continue;
    }
    Write(piece, XmlEscapeCode(begin->unicode(), piece));
    ++begin;
  }
}

void XmlOutputFile::WriteEscaped(std::string_view ascii) {
  // Every byte takes at most kXmlEscapeMaxBytes; a text that fits is written
  // in place in one go.
  const qsizetype most = static_cast<qsizetype>(ascii.size()) * kXmlEscapeMaxBytes;
  if (char* out = most <= m_capacity / 4 ? Claim(most) : nullptr) {
    // Runs of plain bytes are copied whole.
    static constexpr auto kPlain = [] {
      std::array<bool, 256> plain{};
      for (int c = 0; c < 128; ++c) plain[c] = XmlPlainCode(static_cast<char16_t>(c));
      return plain;
    }();
    char* p = out;
    const char* c = ascii.data();
    const char* const end = c + ascii.size();
    while (c != end) {
      const char* run = c;
      while (run != end && kPlain[static_cast<unsigned char>(*run)]) ++run;
      std::memcpy(p, c, static_cast<size_t>(run - c));
      p += run - c;
      if (run == end) break;
      p += XmlEscapeCode(static_cast<unsigned char>(*run), p);
      c = run + 1;
    }
    Advance(p - out);
    return;
  }
  char piece[kXmlEscapeMaxBytes];
  for (const char c : ascii) Write(piece, XmlEscapeCode(static_cast<unsigned char>(c), piece));
}

void XmlOutputFile::WriteNumber(double value) {
  char number[kXmlNumberMaxBytes];
  Write(number, XmlNumber(value, number));
}

bool XmlOutputFile::WriteAll(const char* data, qsizetype size) {
  while (size > 0) {
    const ssize_t written = ::write(m_fd, data, static_cast<size_t>(size));
    if (written < 0) {
      if (errno == EINTR) continue;
      SetError(errno);
      return false;
    }
    data += written;
    size -= written;
  }
  return true;
}

bool XmlOutputFile::Flush() {
  if (m_used == 0) return true;
  if (!WriteAll(m_buffer.get(), m_used)) return false;
  m_flushed += m_used;
  m_used = 0;
  return true;
}

bool XmlOutputFile::Commit() {
  if (!IsOpen()) {
    if (!Failed()) SetError(EBADF);
    return false;
  }
  bool ok = !Failed() && Flush();
  // On disc before it takes the final name, so that not even a crash of the
  // system leaves a short file under that name.
  if (ok && ::fdatasync(m_fd) != 0) {
    SetError(errno);
    ok = false;
  }
  const int fd = m_fd;
  m_fd = -1;
  if (::close(fd) != 0 && ok) {
    SetError(errno);
    ok = false;
  }
  if (ok && ::rename(Native(m_tempPath).constData(), Native(m_path).constData()) != 0) {
    SetError(errno);
    ok = false;
  }
  if (!ok) ::unlink(Native(m_tempPath).constData());
  m_tempPath.clear();
  return ok;
}

void XmlOutputFile::Discard() {
  if (m_fd >= 0) {
    ::close(m_fd);
    m_fd = -1;
  }
  if (!m_tempPath.isEmpty()) {
    ::unlink(Native(m_tempPath).constData());
    m_tempPath.clear();
  }
  m_used = 0;
}

}  // namespace ombrelle
