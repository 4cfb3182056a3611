#include "FuzzSupport.h"

#include <sys/mman.h>
#include <unistd.h>

#include <fcntl.h>

#include <QDir>

namespace ombrelle::fuzz {

MemoryFile::MemoryFile(const char* name) {
  m_fd = memfd_create(name, 0);
  if (m_fd >= 0) {
    m_path = QStringLiteral("/proc/self/fd/%1").arg(m_fd);
    return;
  }
  m_path =
      QDir::temp().filePath(QStringLiteral("%1-%2").arg(QString::fromLatin1(name)).arg(getpid()));
  m_fd = open(m_path.toLocal8Bit().constData(), O_RDWR | O_CREAT | O_TRUNC, 0600);
}

MemoryFile::~MemoryFile() {
  if (m_fd >= 0) close(m_fd);
  if (!m_path.startsWith(QStringLiteral("/proc/"))) unlink(m_path.toLocal8Bit().constData());
}

bool MemoryFile::Write(const uint8_t* data, size_t size) {
  if (m_fd < 0 || ftruncate(m_fd, 0) != 0) return false;
  size_t done = 0;
  while (done < size) {
    const ssize_t n = pwrite(m_fd, data + done, size - done, static_cast<off_t>(done));
    if (n <= 0) return false;
    done += static_cast<size_t>(n);
  }
  return true;
}

QString PrivateFolderTemplate() {
  const QString shm = QStringLiteral("/dev/shm");
  return QDir(shm).exists() ? shm + QStringLiteral("/ombrelle-fuzz-XXXXXX")
                            : QDir::temp().filePath(QStringLiteral("ombrelle-fuzz-XXXXXX"));
}

FuzzUi::FuzzUi() = default;

void FuzzUi::NewInput(const QString& inputAnswer) {
  ScriptedUiServices& ui = m_ui.ui;
  ui.messages.clear();
  ui.textBoxes.clear();
  ui.inputPrompts.clear();
  ui.fileRequests.clear();
  ui.opened.clear();
  ui.msgAnswers.clear();
  ui.fileAnswers.clear();
  ui.inputAnswers.clear();
  if (!inputAnswer.isEmpty()) ui.inputAnswers.push_back(inputAnswer);
}

}  // namespace ombrelle::fuzz
