#pragma once

#include <memory>
#include <vector>

#include "SampleDatabase.h"
#include "SampleProjects.h"

namespace ombrelle::samples {

// The metrics that a sample database stores for class `classNr`: every metric
// of the catalogue in that class that has no recipe, in rising number. Days
// passed (1001) and the count of module-level variables (1207) are left out:
// the viewer takes them from the dates of the saves and from the row count of
// the variable class.
std::vector<MetricId> StoredSampleMetrics(int classNr);

struct SampleUniverse;

// Draws the code base of one sample project once, with every file, class,
// procedure and variable it will ever have, and gives the database of any of
// its saves from it.
class SampleGenerator {
 public:
  explicit SampleGenerator(const SampleProject& project);
  ~SampleGenerator();
  SampleGenerator(const SampleGenerator&) = delete;
  SampleGenerator& operator=(const SampleGenerator&) = delete;

  // The database of save `save` (0-based).
  SampleDatabase Generate(int save) const;

 private:
  const SampleProject& m_project;
  std::unique_ptr<SampleUniverse> m_universe;
};

// The database of `save` (0-based) of `project`: every class with its row
// names and every stored metric, drawn from the project's seed alone, so the
// same arguments always give the same database.
SampleDatabase GenerateSample(const SampleProject& project, int save);

// The file name of that save: "yyyy-mm-dd Name.qvz".
QString SampleFileName(const SampleProject& project, int save);

}  // namespace ombrelle::samples
