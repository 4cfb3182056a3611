#include "stats/CStats.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "stats/PositionQuickSort.h"

namespace ombrelle {

namespace {

// A value and the element it came from, sorted together so the permutation follows the
// values with one move per swap.
struct SortItem {
  double value;
  std::int32_t element;
};

struct SortItemOps {
  SortItem* a;
  bool Before(std::int32_t i, std::int32_t j) const { return a[i].value < a[j].value; }
  bool After(std::int32_t i, std::int32_t j) const { return a[i].value > a[j].value; }
  void Swap(std::int32_t i, std::int32_t j) const { std::swap(a[i], a[j]); }
};

void QuickSortValues(SortItem* items, std::int32_t n) {
  SortItemOps ops{items};
  detail::QuickSortPositions(ops, 0, n - 1);
}

}  // namespace

Fixed4 Fixed4::FromDouble(double value) {
  if (std::isnan(value)) return {};
  const double scaled = std::nearbyint(value * 10000.0);  // ties to even
  // 2^63 is exactly representable; anything at or past it saturates.
  constexpr double kLimit = 9223372036854775808.0;
  if (scaled >= kLimit) return {std::numeric_limits<std::int64_t>::max()};
  if (scaled < -kLimit) return {std::numeric_limits<std::int64_t>::min()};
  return {static_cast<std::int64_t>(scaled)};
}

void CStats::SetCount(std::int32_t n) { m_count = std::clamp(n, 0, m_capacity); }

std::int32_t CStats::DefinedAt(std::int32_t row) const {
  return (row >= 1 && row <= static_cast<std::int32_t>(m_definedIndex.size()))
             ? m_definedIndex[row - 1]
             : 0;
}

std::int32_t CStats::SortedAt(std::int32_t place) const {
  return (place >= 1 && place <= static_cast<std::int32_t>(m_sortedIndex.size()))
             ? m_sortedIndex[place - 1]
             : 0;
}

void CStats::Resize(std::int32_t newSize) {
  if (newSize <= 0) {
    m_values.clear();
    m_values.shrink_to_fit();
    m_definedIndex.clear();
    m_definedIndex.shrink_to_fit();
    m_capacity = 0;
    m_count = 0;
    return;
  }
  const std::size_t old = m_values.size();
  m_values.resize(static_cast<std::size_t>(newSize));
  if (m_values.size() > old) std::fill(m_values.begin() + old, m_values.end(), 0.0);
  // Only a series that currently reads in defined order keeps its row index growing.
  if (m_currentOrder == 2) m_definedIndex.resize(static_cast<std::size_t>(newSize), 0);
  m_capacity = newSize;
  m_count = std::min(m_count, m_capacity);
}

void CStats::Init(std::int32_t NewMaxSize, bool UseDefinedOrder) {
  Sum = Mean = StdDev = Min = Max = Skew = Kurtosis = 0;
  DataType = 0;
  TheorMin = TheorMax = false;
  TheorMinValue = TheorMaxValue = 0;
  m_medianValue = m_q5Value = m_q95Value = m_q1Value = m_q3Value = 0;
  m_medianValid = m_q5Valid = m_q95Valid = m_quartilesValid = false;
  m_count = 0;
  m_sortValid = false;
  m_currentOrder = m_defaultOrder = UseDefinedOrder ? 2 : 0;
  m_capacity = 0;
  m_values.clear();
  m_definedIndex.clear();
  Resize(NewMaxSize);
  m_sortedIndex.clear();
  m_sortedIndex.shrink_to_fit();
}

void CStats::AddValue(double Value) {
  if (m_count >= m_capacity) {
    const std::int64_t grown = 2 * (static_cast<std::int64_t>(m_count) + 1);
    Resize(static_cast<std::int32_t>(std::min<std::int64_t>(grown, INT32_MAX)));
    if (m_count >= m_capacity) return;  // cannot hold more than 2^31 - 1 values
  }
  m_values[m_count++] = Value;
}

void CStats::AddValueQuick(double Value) {
  if (m_count < m_capacity) [[likely]] {
    m_values[m_count++] = Value;
  } else {
    AddValue(Value);
  }
}

void CStats::AddValueIndex(double Value, std::int32_t Index) {
  AddValue(Value);
  if (Index >= 1 && Index <= static_cast<std::int32_t>(m_definedIndex.size()))
    m_definedIndex[Index - 1] = m_count;
}

void CStats::InitFromArray(std::span<const double> NewValues, std::int32_t Mode, double Limit,
                           std::int32_t MaxIndex, std::int32_t MaxCount) {
  Init(MaxCount, false);
  const std::size_t n = std::min<std::size_t>(MaxIndex < 1 ? 0 : MaxIndex, NewValues.size());
  switch (Mode) {
    case 0:
      for (std::size_t i = 0; i < n; ++i)
        if (NewValues[i] < Limit) AddValueQuick(NewValues[i]);
      break;
    case 1:
      for (std::size_t i = 0; i < n; ++i)
        if (NewValues[i] <= Limit) AddValueQuick(NewValues[i]);
      break;
    case 2:
      for (std::size_t i = 0; i < n; ++i)
        if (NewValues[i] > Limit) AddValueQuick(NewValues[i]);
      break;
    default:
      break;
  }
}

CStats CStats::Clone(std::int32_t Mode, double Limit) const {
  CStats copy;
  copy.InitFromArray(std::span<const double>(m_values.data(), m_values.size()), Mode, Limit,
                     m_count, m_count);
  return copy;
}

void CStats::CalcStatsQuick() {
  Sum = 0;
  m_medianValid = m_q5Valid = m_q95Valid = m_quartilesValid = false;
  if (m_count <= 0) {
    Min = Max = Mean = StdDev = 0;
    return;
  }
  const double* v = m_values.data();
  double lo = v[0], hi = v[0], s = 0, s2 = 0;
  for (std::int32_t i = 0; i < m_count; ++i) {
    const double x = v[i];
    s += x;
    s2 += x * x;
    lo = x < lo ? x : lo;
    hi = x > hi ? x : hi;
  }
  Sum = s;
  Min = lo;
  Max = hi;
  const double n = m_count;
  Mean = s / n;
  // Population deviation from the raw sums in one pass; rounding can make D slightly
  // negative for constant series.
  double d = n * s2 - s * s;
  if (d < 0) d = 0;
  StdDev = std::sqrt(d) / n;
}

void CStats::CalcStats() {
  CalcStatsQuick();
  // Above 1.1e77 the fourth power of a deviation would leave the range of a double.
  if (m_count < 1 || !(StdDev > 0) || StdDev > 1.1e77) {
    Skew = Kurtosis = 0;
    return;
  }
  const double* v = m_values.data();
  double s3 = 0, s4 = 0;
  for (std::int32_t i = 0; i < m_count; ++i) {
    const double d = v[i] - Mean;
    const double d3 = d * d * d;
    s3 += d3;
    s4 += d3 * d;
  }
  const double sd2 = StdDev * StdDev;
  Skew = (s3 / (sd2 * StdDev)) / m_count;
  Kurtosis = (s4 / (sd2 * sd2)) / m_count - 3.0;
}

void CStats::SelectPositions(const std::int32_t* positions, double* results, int n) const {
  if (n <= 0) return;
  if (m_count < 1) {
    std::fill(results, results + n, 0.0);
    return;
  }
  // Scratch copy without NaN, so the selection always sees a consistent order; a position
  // beyond the numbers reads NaN, as if NaN sorted last.
  std::unique_ptr<double[]> scratch = std::make_unique_for_overwrite<double[]>(m_count);
  double* s = scratch.get();
  std::int32_t m = 0;
  const double* v = m_values.data();
  for (std::int32_t i = 0; i < m_count; ++i) {
    s[m] = v[i];
    m += (v[i] == v[i]);
  }
  // Positions past the numbers read NaN; being ascending they are the last ones.
  int valid = n;
  while (valid > 0 && std::clamp(positions[valid - 1], 1, m_count) > m) {
    --valid;
    results[valid] = std::numeric_limits<double>::quiet_NaN();
  }
  // Divide and conquer: the middle position splits the scratch range, and the positions
  // on either side are selected within their own part, so k positions cost about log2(k)
  // passes over the values instead of k.
  auto select = [&](auto&& self, int a, int b, std::int32_t lo, std::int32_t hi) -> void {
    if (a >= b) return;
    const int mid = a + (b - a) / 2;
    const std::int32_t p = std::clamp(positions[mid], 1, m_count) - 1;
    std::nth_element(s + lo, s + p, s + hi);
    const double value = s[p];
    int left = mid, right = mid + 1;
    while (left > a && std::clamp(positions[left - 1], 1, m_count) - 1 == p) --left;
    while (right < b && std::clamp(positions[right], 1, m_count) - 1 == p) ++right;
    for (int idx = left; idx < right; ++idx) results[idx] = value;
    self(self, a, left, lo, p);
    self(self, right, b, p + 1, hi);
  };
  select(select, 0, valid, 0, m);
}

double CStats::ValueAtPosition(std::int32_t Index) const {
  if (m_count < 1) return 0;
  if (m_count == 1) return m_values[0];
  double result = 0;
  SelectPositions(&Index, &result, 1);
  return result;
}

double CStats::Median() {
  if (!m_medianValid) {
    const std::int32_t n = m_count;
    if (n <= 0) {
      m_medianValue = 0;
    } else if (n % 2 == 0) {
      const std::int32_t positions[2] = {n / 2, n / 2 + 1};
      double values[2];
      SelectPositions(positions, values, 2);
      m_medianValue = (values[1] + values[0]) / 2;
    } else {
      m_medianValue = ValueAtPosition((n + 1) / 2);
    }
    m_medianValid = true;
  }
  return m_medianValue;
}

void CStats::CalcQuartiles() {
  if (m_quartilesValid) return;
  // Plain order statistics, never averaged: p1 = (n - 1) \ 4 + 1 and its mirror.
  const std::int32_t n = m_count;
  const std::int32_t p1 = (n - 1) / 4 + 1;
  const std::int32_t positions[2] = {p1, n - p1 + 1};
  double values[2];
  SelectPositions(positions, values, 2);
  m_q1Value = values[0];
  m_q3Value = values[1];
  m_quartilesValid = true;
}

double CStats::Q1() {
  CalcQuartiles();
  return m_q1Value;
}

double CStats::Q3() {
  CalcQuartiles();
  return m_q3Value;
}

double CStats::Q5() {
  if (!m_q5Valid) {
    m_q5Value = m_count > 0 ? ValueAtPosition((m_count - 1) / 20 + 1) : 0;
    m_q5Valid = true;
  }
  return m_q5Value;
}

double CStats::Q95() {
  if (!m_q95Valid) {
    m_q95Value = m_count > 0 ? ValueAtPosition(m_count - ((m_count - 1) / 20 + 1) + 1) : 0;
    m_q95Valid = true;
  }
  return m_q95Value;
}

double CStats::OutlierTails(double factor, Fence which) {
  if (m_count < 10) return which == Fence::Lower ? Min : Max;
  const double q1 = Q1(), q3 = Q3();
  const double iqr = q3 - q1;
  if (which == Fence::Upper) {
    const double upper = q3 + factor * iqr;
    return upper > Max ? Max : upper;
  }
  const double lower = q1 - factor * iqr;
  return lower < Min ? Min : lower;
}

double CStats::OutlierLowerTail() { return OutlierTails(1.5, Fence::Lower); }
double CStats::ExtremeOutlierLowerTail() { return OutlierTails(3.0, Fence::Lower); }
double CStats::ExtremeOutlierUpperTail() { return OutlierTails(3.0, Fence::Upper); }
double CStats::OutlierUpperTail() { return OutlierTails(1.5, Fence::Upper); }

std::int32_t CStats::Sort(std::int32_t Direction) {
  const std::int32_t previous = m_currentOrder;
  std::int32_t order = Direction;
  if (Direction == 0) order = m_defaultOrder;
  if (Direction == 3) order = 0;
  m_currentOrder = order;
  if ((order != 1 && order != -1) || m_sortValid) return previous;

  const std::int32_t n = m_count;
  std::vector<SortItem> items(static_cast<std::size_t>(n));
  for (std::int32_t i = 0; i < n; ++i) items[i] = {m_values[i], i + 1};
  QuickSortValues(items.data(), n);

  if (m_defaultOrder != 2) {
    m_sortedIndex.resize(static_cast<std::size_t>(n));
    for (std::int32_t i = 0; i < n; ++i) m_sortedIndex[i] = items[i].element;
  } else {
    // Rows without a value come first, as negated row numbers in row order; then the
    // permutation in row order, which is ascending because rows are added in rising order.
    m_sortedIndex.assign(static_cast<std::size_t>(m_capacity), 0);
    std::int32_t front = 0;
    std::int32_t back = m_capacity - n;
    for (std::int32_t row = 1; row <= m_capacity; ++row) {
      const std::int32_t e = DefinedAt(row);
      if (e == 0) {
        if (front < m_capacity) m_sortedIndex[front++] = -row;
      } else if (back < m_capacity) {
        m_sortedIndex[back++] = (e >= 1 && e <= n) ? items[e - 1].element : 0;
      }
    }
  }
  m_sortValid = true;
  return previous;
}

double CStats::ValueAtIndex(std::int32_t Index) const {
  std::int32_t e;
  switch (m_currentOrder) {
    case 0:
      return ValueAt(Index);
    case 1:
      e = SortedAt(Index);
      return e >= 1 ? ValueAt(e) : 0;
    case -1:
      // Counts back from count, not Capacity: in a series with holes the descending reading
      // here and in ValueAtIndexDefined differ, and callers rely on each as it stands.
      e = SortedAt(m_count - Index + 1);
      return e >= 1 ? ValueAt(e) : 0;
    case 2:
      e = DefinedAt(Index);
      return e != 0 ? ValueAt(e) : 0;
    default:
      return 0;
  }
}

bool CStats::ValueAtIndexDefined(std::int32_t Index, double& value) const {
  if (Index < 1 || Index > m_capacity) return false;
  std::int32_t e;
  switch (m_currentOrder) {
    case 0:
      value = ValueAt(Index);
      return true;
    case 1:
      e = SortedAt(Index);
      break;
    case -1:
      e = SortedAt(m_capacity - Index + 1);
      break;
    case 2:
      e = DefinedAt(Index);
      break;
    default:
      return false;
  }
  if (e < 1 || e > m_capacity) return false;
  value = ValueAt(e);
  return true;
}

std::int32_t CStats::GetOriginalIndex(std::int32_t CurrentIndex) const {
  if (m_defaultOrder != 2) {
    switch (m_currentOrder) {
      case -1:
        return SortedAt(m_count - CurrentIndex + 1);
      case 0:
        return CurrentIndex;
      case 1:
        return SortedAt(CurrentIndex);
      default:
        return 0;
    }
  }
  std::int32_t e;
  switch (m_currentOrder) {
    case -1:
      e = SortedAt(m_capacity - CurrentIndex + 1);
      break;
    case 0:
    case 2:
      if (CurrentIndex < 1) return 0;
      e = CurrentIndex;
      break;
    case 1:
      e = SortedAt(CurrentIndex);
      break;
    default:
      return 0;
  }
  if (e < 1) return -e;
  for (std::size_t j = 0; j < m_definedIndex.size(); ++j)
    if (m_definedIndex[j] == e) return static_cast<std::int32_t>(j + 1);
  return 0;
}

}  // namespace ombrelle
