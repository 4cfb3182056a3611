#include "core/MetricCatalog.h"

#include <algorithm>

namespace ombrelle {

const MetricCatalogEntry* FindMetricEntry(int id) {
  const std::span<const MetricCatalogEntry> entries = MetricCatalogEntries();
  const auto it = std::lower_bound(entries.begin(), entries.end(), id,
                                   [](const MetricCatalogEntry& e, int v) { return e.Id < v; });
  if (it == entries.end() || it->Id != id) return nullptr;
  return &*it;
}

MetricRange CatalogRange(const MetricCatalogEntry& entry) {
  if (entry.LowKind != BoundNone || entry.HighKind != BoundNone)
    return {entry.LowKind, entry.Low, entry.HighKind, entry.High};
  if (entry.Format == 5 || entry.Format == 6) return {BoundClosed, 0.0, BoundClosed, 1.0};
  return {};
}

}  // namespace ombrelle
