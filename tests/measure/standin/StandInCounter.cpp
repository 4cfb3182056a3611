// Linked into the measuring tests only while the counting library has no
// MeasureSources of its own: a project row and a row per file with their
// physical lines, enough to exercise gathering, writing and history.
#include "measure/MeasuredProject.h"

namespace ombrelle {

MeasuredProject MeasureSources(const QString& projectName, const std::vector<SourceFile>& files) {
  MeasuredProject project;
  MeasuredClass fileClass;
  fileClass.classNr = ClassFile;
  fileClass.metrics = {2001};
  fileClass.values.resize(1);
  double total = 0;
  for (const SourceFile& file : files) {
    double lines = file.bytes.count('\n');
    if (!file.bytes.isEmpty() && !file.bytes.endsWith('\n')) lines += 1;
    fileClass.names << file.name;
    fileClass.values[0].push_back(lines);
    total += lines;
  }
  MeasuredClass projectClass;
  projectClass.names << projectName;
  projectClass.metrics = {1002};
  projectClass.values = {{total}};
  project.classes.push_back(std::move(projectClass));
  if (!files.empty()) project.classes.push_back(std::move(fileClass));
  return project;
}

}  // namespace ombrelle
