#pragma once

#include <cstddef>
#include <cstdint>

#include <QString>

#include "support/ScriptedUiServices.h"

namespace ombrelle::fuzz {

// A file that lives in memory (memfd) and is reachable by name, for readers
// that open their input by path. Falls back to a file in the temporary folder
// where memory files are not available.
class MemoryFile {
 public:
  explicit MemoryFile(const char* name);
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  // Replaces the content with `size` bytes of `data`; false when the write
  // failed.
  bool Write(const uint8_t* data, size_t size);
  const QString& Path() const { return m_path; }

 private:
  int m_fd = -1;
  QString m_path;
};

// A template for QTemporaryDir: a folder in memory (/dev/shm) where the system
// offers it, else in the temporary folder. Files written at every input cost
// a disk flush each time on a disk.
QString PrivateFolderTemplate();

// The user-interface service of a fuzz run: answers every box and input box
// from a script and forgets what was asked at each new input, so memory stays
// flat over millions of runs.
class FuzzUi {
 public:
  FuzzUi();
  // Clears what the previous input asked; `inputAnswer` answers the next
  // input box.
  void NewInput(const QString& inputAnswer = {});
  ScriptedUiServices& Scripted() { return m_ui.ui; }

 private:
  ScopedScriptedUi m_ui;
};

}  // namespace ombrelle::fuzz
