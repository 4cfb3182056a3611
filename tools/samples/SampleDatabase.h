#pragma once

#include <vector>

#include <QString>
#include <QStringList>

#include "core/MetricDefinitions.h"

namespace ombrelle::samples {

// One stored column of a sample table: a metric and its value for each row,
// in row order.
struct SampleSeries {
  MetricId Id = 0;
  std::vector<double> Values;
};

// One class of objects of a sample database: its row names and its stored
// metrics, in rising metric number.
struct SampleTable {
  int ClassNr = 0;
  QStringList Names;
  std::vector<SampleSeries> Series;

  int RowCount() const { return static_cast<int>(Names.size()); }
  // The values of `id`; nullptr when the table does not store it.
  const std::vector<double>* Find(MetricId id) const;
  // The mean of `id` over the rows; 0 for an empty or missing column.
  double Mean(MetricId id) const;
  double Sum(MetricId id) const;
  double Max(MetricId id) const;
};

// Everything one sample database holds, ready for the writer: header fields
// and one table per class of object, in class order.
struct SampleDatabase {
  QString FileName;  // without folder, "yyyy-mm-dd Name.qvz"
  QString Title;
  QString Project;
  double AnalysisDate = 0;  // days since 1899-12-30, time of day as the fraction
  std::vector<SampleTable> Tables;

  // The table of class `classNr`; nullptr when the database has none.
  const SampleTable* Table(int classNr) const;
};

}  // namespace ombrelle::samples
