#pragma once

#include <cstdint>
#include <vector>

#include <QString>

namespace ombrelle::samples {

// One save of a sample project: when it was analysed and where the story
// stands at that moment.
struct SampleSave {
  QString Version;  // "2.3": the title is the project's name, a blank and this
  int Year = 0, Month = 0, Day = 0;
  int Hour = 0, Minute = 0, Second = 0;
  double Growth = 1;        // 0 at the first save, 1 at the last: how much of the code exists
  double CommentLevel = 0;  // full-line comments per line of code
  int MaxDepth = 0;         // deepest inheritance the code base has reached
};

// A sample project: its size when its story ends and the saves that tell it.
struct SampleProject {
  QString Name;         // "Billing"
  QString ProjectFile;  // "Billing.vbp"
  bool DotNet = false;  // classes inherit and files hold several classes
  std::uint64_t Seed = 0;
  int Files = 0;
  int Classes = 0;
  int Procedures = 0;
  int Variables = 0;  // global and module-level variables
  // The save from which long procedures are split and dead code removed; -1
  // when the project has no such save.
  int RefactoringSave = -1;
  std::vector<SampleSave> Saves;

  QString Title(int save) const { return Name + QLatin1Char(' ') + Saves.at(save).Version; }
};

// The three sample projects: small, medium and large.
const std::vector<SampleProject>& SampleProjects();

}  // namespace ombrelle::samples
