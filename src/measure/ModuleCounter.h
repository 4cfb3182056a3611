#pragma once

#include "measure/BasicWords.h"
#include "measure/SourceText.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <vector>

// The counts of one source file: its lines and statements, its procedures and
// module-level variables, and the names each procedure reads and writes (kept
// as hashes, resolved against the variables of every file afterwards).

namespace ombrelle {

struct LineCounts {
  int physical = 0;    // physical lines
  int code = 0;        // logical lines of code
  int comment = 0;     // logical lines of comment only
  int blank = 0;       // logical lines of whitespace
  int meaningful = 0;  // comments holding a letter or digit
  int statements = 0;
  int declarative = 0;
  int control = 0;
};

// An occurrence of a name in an executable statement. `qualifier` is the hash
// of the word before a dot ("Module.Name"), 0 when there is none.
struct NameUse {
  NameHash name = 0;
  NameHash qualifier = 0;
  bool write = false;
};

enum class ProcedureKind { Sub, Function, PropertyGet, PropertyLet, PropertySet, Declare };

struct ProcedureCount {
  QString name;  // as written in the header
  ProcedureKind kind = ProcedureKind::Sub;
  bool isPrivate = false;
  int firstLine = 0;  // 0-based physical lines, inclusive
  int lastLine = 0;
  LineCounts lines;
  int parameters = 0;
  int locals = 0;
  int decisions = 0;         // If, ElseIf, Case (not Case Else), For, While, Do/Loop While/Until
  int booleanOperators = 0;  // And, Or, Xor, AndAlso, OrElse in those conditions
  int cases = 0;             // the Case clauses among the decisions
  int selects = 0;           // Select Case blocks
  int maxConditionDepth = 0;
  int maxLoopDepth = 0;
  std::vector<NameHash> localNames;  // parameters first, then local variables
  std::vector<int> localLengths;     // their lengths in characters
  // The procedure's names in executable statements: [firstUse, endUse) of
  // the module's uses (one vector for the whole module, not one per procedure).
  size_t firstUse = 0;
  size_t endUse = 0;
};

struct ModuleVariable {
  QString name;
  bool isPublic = false;  // declared Public or Global
};

// A procedure named Prefix_Member handles an event of, or implements, Prefix.
bool IsHandlerName(const QString& procedure, const QStringList& prefixes);

struct ModuleCount {
  QString moduleName;  // Attribute VB_Name, else the file's base name
  LineCounts lines;
  std::vector<ProcedureCount> procedures;
  std::vector<ModuleVariable> variables;  // module-level
  QStringList constants;                  // names, module-level and local
  int types = 0;
  int enums = 0;
  int enumConstants = 0;
  int events = 0;
  int implements = 0;
  // Names the file defines besides variables, procedures and constants: Type
  // and Enum names, Type fields, Enum members and the designer's controls.
  QStringList otherNames;
  // What procedures named Prefix_Member handle or implement: controls,
  // WithEvents variables and implemented interfaces.
  QStringList handlerPrefixes;
  QStringList problems;
  std::vector<NameUse> uses;  // of every procedure, in order
};

// Counts one file's text. `baseName` names the module when the file does not.
ModuleCount CountModule(const QString& text, const QString& baseName);

}  // namespace ombrelle
