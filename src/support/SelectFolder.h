#pragma once

#include <QString>

namespace ombrelle {

// The program's folder chooser: what its buttons do and the checks its
// "Select" button makes before a folder is taken. The chooser itself is shown
// by the user-interface service (UiServices::ChooseFolder), which calls back
// into these routines; messages go through the same service.
class SelectFolder {
 public:
  // Lets the user pick an existing folder or name a new one; `allowCreate`
  // offers "&Create". `preset` is a name below `folder` to start on. "" when
  // cancelled.
  static QString GetAnyFolder(const QString& folder, const QString& prompt, bool allowCreate = true,
                              const QString& preset = {});
  // Lets the user pick a folder that is to receive files: it must be a
  // folder and writable and, with `warn`, hold no files and no sub-folders.
  // `minFree` is the space the caller expects to need, in bytes; it is shown
  // to nobody and not checked, as free space can change before the write.
  static QString GetEmptyFolder(const QString& folder, double minFree, const QString& prompt,
                                bool warn);

  // --- The buttons ------------------------------------------------------------
  // "Select" for a folder that is to be empty: in order "... is not a
  // directory.", with `emptyCheck` "Directory not empty." and "Directory ...
  // has sub-directories.", then the write test. True when the folder is taken.
  static bool CheckEmptyTarget(const QString& name, bool emptyCheck);
  // "Select" for any folder: an existing folder or a name that is still free
  // (the caller decides what a missing folder means); a file of that name is
  // refused with "... is not a directory.".
  static bool CheckAnyTarget(const QString& name);
  // Writes and deletes a file "$test...tmp" in `folder`; the messages
  // "Cannot write to directory" and "Internal error. Cannot get unique
  // filename in " on failure.
  static bool WriteTest(const QString& folder);
  // "&Create": makes the folder with its parents.
  static bool Create(const QString& name);
  // "&View": opens the folder in the desktop's file browser.
  static void View(const QString& name);
  // "Delete all files": asks, then deletes the files of the folder (not its
  // sub-folders). Returns how many files were deleted.
  static int DeleteAllFiles(const QString& name);
  // Whether the folder holds anything (the "Directory not empty." label).
  static bool NotEmpty(const QString& name);

  // The content of the write test's file.
  static QString WriteTestContent() {
    return QStringLiteral(" write test, you can delete this file.");
  }
};

}  // namespace ombrelle
