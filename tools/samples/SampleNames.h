#pragma once

#include <functional>
#include <set>

#include <QString>

#include "SampleRandom.h"

namespace ombrelle::samples {

// Kinds of source file of a sample project.
enum SampleFileKind : int {
  FileForm = 0,    // a window: a class with event handlers
  FileClass = 1,   // one class (several in .NET files)
  FileModule = 2,  // a standard module: procedures and globals, no class
};

// Makes the names of a sample code base: files in folders, classes, methods
// and variables that read like a real program, each unique in its project.
// A few owners get names with accented letters, to show text beyond ASCII.
class SampleNames {
 public:
  explicit SampleNames(bool dotNet) : m_dotNet(dotNet) {}

  // The file's path with folders, and in `base` its name without folder and
  // extension, which also names its first class or its module. `accented`
  // asks for a name with letters beyond ASCII.
  QString FileName(SampleRandom& random, SampleFileKind kind, bool accented, QString& base);
  // A further class of a .NET file.
  QString ExtraClassName(SampleRandom& random, const QString& fileBase);
  // A method: an event handler of a window when `event`, else a verb and a noun.
  // Unique within its owner; returned without the owner.
  QString MethodName(SampleRandom& random, const QString& owner, SampleFileKind kind, bool event,
                     bool accented);
  // The helper that a refactoring splits off `method` of `owner`.
  QString HelperName(const QString& owner, const QString& method) {
    return Unique(owner, method + QStringLiteral("Step"));
  }
  // A module-level variable, unique within its owner, without the owner.
  QString VariableName(SampleRandom& random, const QString& owner, SampleFileKind kind,
                       bool accented);

 private:
  // `name`, or with a number after it when the owner has the name already.
  QString Unique(const QString& owner, const QString& name);
  // A name from `draw` that the owner has not used, drawing again a few times.
  QString Fresh(const QString& owner, const std::function<QString()>& draw);
  QString DrawMethod(SampleRandom& random, const QString& owner, SampleFileKind kind, bool event,
                     bool accented) const;

  bool m_dotNet;
  std::set<QString> m_used;
};

}  // namespace ombrelle::samples
