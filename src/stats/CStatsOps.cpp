// Counting, histograms, element-wise arithmetic and regression of CStats.

#include <algorithm>
#include <cmath>

#include "stats/CStats.h"

namespace ombrelle {

std::int32_t CStats::ValueCountRange(double RangeMin, double RangeMax) const {
  std::int32_t found = 0;
  const double* v = m_values.data();
  for (std::int32_t i = 0; i < m_count; ++i) found += (RangeMin <= v[i] && v[i] <= RangeMax);
  return found;
}

std::int32_t CStats::ValueCountRangeOpenMax(double RangeMin, double RangeMax) const {
  std::int32_t found = 0;
  const double* v = m_values.data();
  for (std::int32_t i = 0; i < m_count; ++i) found += (RangeMin <= v[i] && v[i] < RangeMax);
  return found;
}

std::int32_t CStats::ValueCount(std::int32_t Value) const { return ValueCount(Value, Value); }

std::int32_t CStats::ValueCount(std::int32_t Value, double RangeEnd) const {
  const double lower = std::nearbyint(static_cast<double>(Value) - 0.499999999999999);
  return ValueCountRange(lower, RangeEnd + 0.5);
}

std::vector<double> CStats::CalcHistogram(std::int32_t Sets) const {
  if (Sets < 0) return {};
  std::vector<double> bounds(static_cast<std::size_t>(Sets) + 1);
  bounds[0] = Min;
  if (Sets == 0) return bounds;
  std::vector<std::int32_t> positions(static_cast<std::size_t>(Sets));
  const double step = static_cast<double>(m_count - 1) / Sets;
  for (std::int32_t i = 1; i <= Sets; ++i)
    positions[i - 1] = static_cast<std::int32_t>(std::nearbyint(step * i + 1));  // ties to even
  if (m_count == 1) {
    std::fill(bounds.begin() + 1, bounds.end(), m_values[0]);
  } else {
    // The positions rise with i, so one scratch copy serves every bound.
    SelectPositions(positions.data(), bounds.data() + 1, Sets);
  }
  return bounds;
}

CStats CStats::CalcHistogram2(double MinValue, Fixed4 BlockSize, float MaxQ,
                              std::int16_t MinBlocks) const {
  // A bound on the number of blocks keeps a tiny width over a wide range from running for
  // ever; real charts ask for a few dozen.
  constexpr std::int64_t kMaxBlocks = 100000;
  CStats result;
  const double q = ValueAtPosition(
      static_cast<std::int32_t>(std::floor(static_cast<double>(MaxQ) * (m_count - 1))) + 1);
  const std::int64_t start = Fixed4::FromDouble(MinValue).units;
  const std::int64_t width = BlockSize.units;
  const double widthValue = BlockSize.ToDouble();
  std::int64_t low = start;
  for (std::int64_t i = 0; width > 0 && i < kMaxBlocks; ++i) {
    std::int64_t offset, next, high;
    if (__builtin_mul_overflow(i, width, &offset) || __builtin_add_overflow(offset, start, &next) ||
        __builtin_add_overflow(next, width, &high))
      break;
    low = next;
    const double lowValue = Fixed4{low}.ToDouble();
    const double highValue = Fixed4{high}.ToDouble();
    if (lowValue >= q && i >= MinBlocks - 1 && highValue + widthValue < Max) break;
    if (lowValue >= Max) break;
    result.AddValue(m_count > 0
                        ? static_cast<double>(ValueCountRangeOpenMax(lowValue, highValue)) / m_count
                        : 0.0);
  }
  // The last block is closed at Max and takes everything from where the loop stopped.
  if (m_count >= 1)
    result.AddValue(static_cast<double>(ValueCountRange(Fixed4{low}.ToDouble(), Max)) / m_count);
  result.CalcStats();
  return result;
}

namespace {

// One element of Operate: false where the operation adds nothing.
inline bool Combine(std::int32_t operation, double x, double y, double& out) {
  switch (operation) {
    case 0:
      out = y + x;
      return true;
    case 1:
      out = y * x;
      return true;
    case 2:
      out = y == 0 ? 0.0 : x / y;
      return true;
    case 3:
      out = x - y;
      return true;
    case 4:
      out = std::pow(x, y);
      return true;
    default:
      return false;
  }
}

// Element i of `out` from x[i] and y[i], y reading 0 from `shared` on: Combine for a
// known operation, in a loop the compiler sees whole.
template <typename Op>
void CombineAll(Op op, const double* x, const double* y, std::int32_t shared, std::int32_t n,
                double* out) {
  std::int32_t i = 0;
  for (; i < shared; ++i) out[i] = op(x[i], y[i]);
  for (; i < n; ++i) out[i] = op(x[i], 0.0);
}

}  // namespace

// Runs over Capacity, not count: slots not yet filled take part as zeros, so two series
// loaded with the same row count line up row by row even when one is short.
CStats CStats::Operate(std::int32_t Operation, const CStats& Operand) const {
  CStats result;
  result.Init(m_capacity, false);
  if (Operation >= 0 && Operation <= 4 && Operand.m_currentOrder == 0) {
    // Every element is kept and the operand reads in stored order (ValueAt): the values
    // are combined array to array.
    const std::int32_t n = m_capacity;
    const std::int32_t shared = std::min(n, Operand.m_capacity);
    const double* x = m_values.data();
    const double* y = Operand.m_values.data();
    double* out = result.m_values.data();
    switch (Operation) {
      case 0:
        CombineAll([](double a, double b) { return b + a; }, x, y, shared, n, out);
        break;
      case 1:
        CombineAll([](double a, double b) { return b * a; }, x, y, shared, n, out);
        break;
      case 2:
        CombineAll([](double a, double b) { return b == 0 ? 0.0 : a / b; }, x, y, shared, n, out);
        break;
      case 3:
        CombineAll([](double a, double b) { return a - b; }, x, y, shared, n, out);
        break;
      default:
        CombineAll([](double a, double b) { return std::pow(a, b); }, x, y, shared, n, out);
        break;
    }
    result.m_count = n;
    return result;
  }
  double out;
  for (std::int32_t i = 1; i <= m_capacity; ++i)
    if (Combine(Operation, m_values[i - 1], Operand.ValueAtIndex(i), out)) result.AddValue(out);
  return result;
}

CStats CStats::OperateConstant(std::int32_t Operation, double Value2) const {
  CStats result;
  result.Init(m_capacity, false);
  double out;
  for (std::int32_t i = 1; i <= m_capacity; ++i)
    if (Combine(Operation, m_values[i - 1], Value2, out)) result.AddValue(out);
  return result;
}

bool CStats::Regression(CStats& YStats, double& a, double& b, double& r, std::int32_t& N) {
  a = b = r = 0;
  N = 0;
  const std::int32_t xOrder = Sort(0);
  const std::int32_t yOrder = YStats.Sort(0);
  // The deviations are taken from the means of the whole series, not of the paired rows: a
  // row present in one series only still moves the line. Charts and the correlation report
  // show these figures, so they must stay as they are.
  double sxy = 0, sxx = 0, syy = 0;
  double x, y;
  for (std::int32_t i = 1; i <= m_capacity; ++i) {
    if (!ValueAtIndexDefined(i, x) || !YStats.ValueAtIndexDefined(i, y)) continue;
    const double dx = x - Mean;
    const double dy = y - YStats.Mean;
    sxy += dy * dx;
    sxx += dx * dx;
    syy += dy * dy;
    ++N;
  }
  bool fitted = false;
  if (N >= 3 && sxx > 0 && syy > 0) {
    b = sxy / sxx;
    a = YStats.Mean - Mean * b;
    r = sxy / std::sqrt(syy * sxx);
    fitted = true;
  }
  // Order 0 given to Sort means the default order; 3 restores arrival order itself.
  Sort(xOrder == 0 ? 3 : xOrder);
  YStats.Sort(yOrder == 0 ? 3 : yOrder);
  return fitted;
}

}  // namespace ombrelle
