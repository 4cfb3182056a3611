#include "SampleDatabase.h"

#include <algorithm>
#include <numeric>

namespace ombrelle::samples {

const std::vector<double>* SampleTable::Find(MetricId id) const {
  for (const SampleSeries& s : Series)
    if (s.Id == id) return &s.Values;
  return nullptr;
}

double SampleTable::Sum(MetricId id) const {
  const std::vector<double>* values = Find(id);
  return values ? std::accumulate(values->begin(), values->end(), 0.0) : 0.0;
}

double SampleTable::Mean(MetricId id) const {
  const std::vector<double>* values = Find(id);
  return values && !values->empty() ? Sum(id) / static_cast<double>(values->size()) : 0.0;
}

double SampleTable::Max(MetricId id) const {
  const std::vector<double>* values = Find(id);
  return values && !values->empty() ? *std::max_element(values->begin(), values->end()) : 0.0;
}

const SampleTable* SampleDatabase::Table(int classNr) const {
  for (const SampleTable& t : Tables)
    if (t.ClassNr == classNr) return &t;
  return nullptr;
}

}  // namespace ombrelle::samples
