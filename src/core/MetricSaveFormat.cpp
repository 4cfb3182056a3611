// Kept apart from the writer's other sources: the catalogue's header and the
// file format's header both define the number of metric classes.
#include "core/MetricDefinitions.h"

namespace ombrelle {

int MetricFormatOf(int32_t id) {
  static const MetricDefinitions definitions;
  return definitions.GetMetricFormat(id);
}

}  // namespace ombrelle
