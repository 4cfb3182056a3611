#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include <QString>

#include "SampleNames.h"
#include "SampleProjects.h"

// The code base behind a sample project, shared by the generator's files:
// every entity the project will ever have, with the traits drawn for it once,
// and the values a procedure takes at a given point of the story.

namespace ombrelle::samples {

// Keys that separate the random streams of the kinds of entity.
enum StreamTag : std::uint64_t {
  TagFile = 1,
  TagClass = 2,
  TagProc = 3,
  TagVar = 4,
  TagFileDate = 5,
  TagKinds = 6,
  TagFileShape = 11,
  TagClassShape = 12,
  TagProcShape = 13,
  TagProject = 20,
};

// Ratios are kept to four decimals, counts to whole numbers.
inline double Round4(double v) { return std::nearbyint(v * 10000.0) / 10000.0; }
inline double Whole(double v) { return std::max(0.0, std::nearbyint(v)); }

// A source file: its path and what it attracts of the code base.
struct FileEntity {
  QString Path;
  QString Base;
  SampleFileKind Kind = FileModule;
  double Birth = 0;
  double Weight = 1;  // share of the procedures and variables it attracts
  double ConstTrait = 0;
  double FaninTrait = 0;
  double LineLength = 32;  // bytes per physical line
  double DesignerLines = 0;
  double CommentTrait = 1;
  std::vector<int> Classes;
  bool Accented = false;
  bool AccentUsed = false;
};

// A class: its place in the hierarchy and its habits.
struct ClassEntity {
  QString Name;
  int File = 0;
  double Birth = 0;
  int Parent = -1;
  int Depth = 0;
  bool Abstract = false;
  int Impl = 0;
  int Events = 0;
  int Ctors = 0;
  double PublicFields = 0;
  double PublicMethods = 0.6;
  double Cohesion = 0.5;
  double Coupling = 1;
};

// A procedure: its owner and the traits its values grow from.
struct ProcEntity {
  QString Name;
  int File = 0;
  int Class = -1;
  double Birth = 0;
  bool Event = false;
  bool Dead = false;
  bool Function = false;
  double Size = 9;
  double Decision = 0.12;
  double Comment = 1;
  double Fanin = 0;
  int Params = 0;
  int NameLength = 1;
  bool Helper = false;  // split off a long procedure by the refactoring
};

// A global or module-level variable.
struct VarEntity {
  QString Name;
  int File = 0;
  int Class = -1;
  double Birth = 0;
  int NameLength = 1;
  double Reads = 0;
  double Writes = 0;
  double Users = 1;
};

// Every entity a sample project will ever have, with its traits.
struct SampleUniverse {
  std::vector<FileEntity> Files;
  std::vector<ClassEntity> Classes;
  std::vector<ProcEntity> Procs;
  std::vector<VarEntity> Vars;
};

// The values of one procedure at one save.
struct ProcValues {
  double Lines = 0, Lloc = 0, Comments = 0, Blank = 0, Continued = 0, Mcomm = 0, LlocTree = 0;
  double Params = 0, Locals = 0, Stmt = 0, StmtD = 0, StmtC = 0, IoG = 0, IoP = 0;
  double IfIn = 0, IfOut = 0, Cc = 0, Cc2 = 0, Cc3 = 0, DCond = 0, DLoop = 0;
  double DCallT = 0, SCallT = 0, Dc = 0, SfIn = 0, SfOut = 0;
};

// Draws every file, class, procedure and variable of `p`.
SampleUniverse BuildUniverse(const SampleProject& p);

// The date value of a save's analysis, with its time of day.
double AnalysisDateOf(const SampleSave& s);

// A procedure grows a little after its birth; the refactoring halves the
// long ones and takes a third of their decisions out. The shape draws come
// from the same stream at every save, so a procedure changes only as the
// story moves it.
ProcValues ProcAt(const SampleProject& p, int j, const ProcEntity& e, double growth,
                  double commentLevel, bool refactored);

// Whole-day file dates at save `save`: a new file was last touched a while
// before the analysis; an existing one often again since the save before.
std::vector<double> FileDates(const SampleProject& p, const SampleUniverse& u, int save);

}  // namespace ombrelle::samples
