#pragma once

#include <sys/resource.h>

#include <csignal>

namespace ombrelle::test {

// Lowers the largest file this process may write, the way a full disc stops a
// write half way, and restores the limit afterwards.
class ScopedFileSizeLimit {
 public:
  explicit ScopedFileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &m_previous);
    m_handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit lowered = m_previous;
    lowered.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &lowered);
  }
  ~ScopedFileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &m_previous);
    std::signal(SIGXFSZ, m_handler);
  }
  ScopedFileSizeLimit(const ScopedFileSizeLimit&) = delete;
  ScopedFileSizeLimit& operator=(const ScopedFileSizeLimit&) = delete;

 private:
  rlimit m_previous{};
  void (*m_handler)(int) = nullptr;
};

}  // namespace ombrelle::test
