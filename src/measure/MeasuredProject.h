#pragma once

#include "core/MetricDefinitions.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <limits>
#include <vector>

// What the measuring library hands to the program that writes a database: the
// counted rows of each class of objects. The counting lives in
// MeasureSources; writing, finding files and walking history live above it.

namespace ombrelle {

// One source file as the project names it, with its bytes as stored (read from
// disc or from a commit; any encoding, any line ends).
struct SourceFile {
  QString name;  // path relative to the project folder, '/'-separated
  QByteArray bytes;
  // The file's date (days since 1899-12-30, the time as the fraction), or NaN
  // when the caller has none; files without a date leave the date metrics out.
  double date = std::numeric_limits<double>::quiet_NaN();
};

// The rows of one class of a database with one value per metric and row.
// A value that does not apply to a row is NaN (stored as absent).
struct MeasuredClass {
  MetricClass classNr = ClassProject;
  QStringList names;                        // row names, in row order
  std::vector<MetricId> metrics;            // ascending
  std::vector<std::vector<double>> values;  // values[metric index][row]
};

struct MeasuredProject {
  std::vector<MeasuredClass> classes;  // ascending class number; empty classes left out
  QStringList warnings;                // one line per file that could not be measured fully
};

// Counts every file and returns the project's classes; the project row is
// named `projectName`. Never throws; damaged or binary input gives warnings.
MeasuredProject MeasureSources(const QString& projectName, const std::vector<SourceFile>& files);

}  // namespace ombrelle
