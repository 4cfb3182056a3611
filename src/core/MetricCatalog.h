#pragma once

#include <array>
#include <span>

// The raw rows of the compiled-in metric catalogue. MetricDefinitions is the
// interface the rest of the program uses; these rows are what it reads.

namespace ombrelle {

// Kind of a theoretical bound of a metric's value.
enum MetricBoundKind : int {
  BoundNone = 0,    // no bound
  BoundClosed = 1,  // the value can reach the bound
  BoundOpen = 2,    // the value cannot reach it
};

// Theoretical range of a metric's value.
struct MetricRange {
  int LowKind = BoundNone;
  double Low = 0.0;
  int HighKind = BoundNone;
  double High = 0.0;

  bool operator==(const MetricRange&) const = default;
};

// One metric of the catalogue, ascending by Id. The numbers that serve only as
// terms of recipes have empty texts.
struct MetricCatalogEntry {
  int Id;
  const char* Abbreviation;
  const char* Name;
  int Format;  // code of FormatMetric
  int LowKind;
  double Low;
  int HighKind;
  double High;
  const char* FormulaText;
};

// A description and the metric numbers that share it (unused slots 0).
struct MetricDescriptionEntry {
  std::array<int, 4> Ids;
  const char* Text;
};

// The recipe of one derived metric or stored summary.
struct MetricRecipeEntry {
  int Id;
  int StepCount;
  std::array<int, 10> Terms;
  std::array<int, 10> Operators;
  bool WholeNumber;
  int SummaryMetric;
  int SummaryKind;
};

std::span<const MetricCatalogEntry> MetricCatalogEntries();
std::span<const MetricDescriptionEntry> MetricDescriptionEntries();
std::span<const MetricRecipeEntry> MetricRecipeEntries();

// The row of `id`, or nullptr when the catalogue has none.
const MetricCatalogEntry* FindMetricEntry(int id);

// The range of a row: its stated bounds, or 0 to 1 (both closed) for a
// percentage or ratio (formats 5 and 6) whose row states none.
MetricRange CatalogRange(const MetricCatalogEntry& entry);

}  // namespace ombrelle
