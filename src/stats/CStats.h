#pragma once

#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <utility>
#include <vector>

class QIODevice;

namespace ombrelle {

// A decimal with four places held in 64 bits. Histogram block edges are kept in this form
// so that adding a block width many times gives the same edges on every machine.
struct Fixed4 {
  std::int64_t units = 0;  // value * 10000

  // Rounds to four places, ties to even; saturates at the limits of the 64-bit range and
  // takes NaN as 0.
  static Fixed4 FromDouble(double value);
  double ToDouble() const { return static_cast<double>(units) / 10000.0; }
  friend bool operator==(Fixed4, Fixed4) = default;
};

// One series of metric values (one table column) with every statistic the program asks
// about it: moments, order statistics, fences, sorted and original-order access, histogram
// shares, element-wise arithmetic and regression. Owns its values and its sort index.
//
// Positions are 1-based throughout. A defined-order series keeps a column with holes: the
// values that exist are packed, and a per-row index tells which row each one belongs to.
class CStats {
 public:
  // Statistics, set by CalcStatsQuick / CalcStats; freely writable by the owner.
  double Sum = 0;
  double Mean = 0;
  double StdDev = 0;  // population deviation (divisor n)
  double Min = 0;
  double Max = 0;
  double Skew = 0;
  double Kurtosis = 0;  // excess kurtosis
  // Carried for users of the series; no operation here reads them and the copying
  // operations (Operate, OperateConstant, Clone, InitFromArray) leave them at 0.
  int DataType = 0;
  bool TheorMin = false;
  bool TheorMax = false;
  double TheorMinValue = 0;
  double TheorMaxValue = 0;

  // Number of values stored.
  std::int32_t count() const { return m_count; }
  // Sets the number of values; clamped to 0..Capacity so that readers never run past the
  // stored values.
  void SetCount(std::int32_t n);
  // Rows of a defined-order series; allocated size of the value array otherwise.
  std::int32_t Capacity() const { return m_capacity; }
  std::int32_t CurrentOrder() const { return m_currentOrder; }
  std::int32_t DefaultOrder() const { return m_defaultOrder; }

  // Appends, doubling the storage when it is full.
  void AddValue(double Value);
  // Appends into storage the caller has sized with Init. A call beyond Capacity grows the
  // storage instead of writing past it.
  void AddValueQuick(double Value);
  // Appends and records that row `Index` (1..Capacity) holds the new value. An Index outside
  // the rows still appends the value but records nothing.
  void AddValueIndex(double Value, std::int32_t Index);

  // Init(MaxCount) and copies values 1..MaxIndex of NewValues (position 1 is NewValues[0])
  // that pass the Mode test against Limit: 0 value < Limit, 1 value <= Limit,
  // 2 value > Limit; any other Mode copies nothing.
  void InitFromArray(std::span<const double> NewValues, std::int32_t Mode, double Limit,
                     std::int32_t MaxIndex, std::int32_t MaxCount);
  // A new series with the values of this one (arrival order) that pass the Mode test.
  CStats Clone(std::int32_t Mode, double Limit) const;

  // Cached order statistics; they expect CalcStats or CalcStatsQuick to have run and keep
  // their value until the next of those or Init, even when values are added.
  double Median();
  double Q1();
  double Q3();
  double Q5();
  double Q95();

  // Outlier fences (1.5 and 3 times the interquartile range), clamped to Min..Max. Series
  // with fewer than ten values have no outliers: the fences are Min and Max.
  double OutlierLowerTail();
  double ExtremeOutlierLowerTail();
  double ExtremeOutlierUpperTail();
  double OutlierUpperTail();

  // Sum, Mean, population StdDev, Min, Max in one pass; clears the order-statistic caches.
  void CalcStatsQuick();
  // CalcStatsQuick plus Skew and Kurtosis.
  void CalcStats();

  // Empties the series and every field; NewMaxSize slots are reserved (rows for a
  // defined-order series).
  void Init(std::int32_t NewMaxSize, bool UseDefinedOrder = false);

  // The value at Index in the current order, 0 where there is none (holes, bad Index).
  double ValueAtIndex(std::int32_t Index) const;
  // In the stored order (CurrentOrder 0), the values that ValueAtIndex gives
  // for Index 1 on, as many as are held; empty in any other order.
  std::span<const double> StoredOrderValues() const {
    if (m_currentOrder != 0) return {};
    const std::int32_t n = m_count < m_capacity ? m_count : m_capacity;
    return {m_values.data(), static_cast<size_t>(n > 0 ? n : 0)};
  }
  // True and the value when place Index of the current order holds one; false and `value`
  // untouched for a hole or a place outside 1..Capacity. Tells a real 0 from a hole.
  bool ValueAtIndexDefined(std::int32_t Index, double& value) const;
  // The Index-th smallest value, by selection (the series is not sorted). 0 for an empty
  // series; an Index outside 1..count is taken as the nearest end.
  double ValueAtPosition(std::int32_t Index) const;

  // Values in [Value, Value + 0.5], or in [Value, RangeEnd + 0.5].
  std::int32_t ValueCount(std::int32_t Value) const;
  std::int32_t ValueCount(std::int32_t Value, double RangeEnd) const;
  // Values in [RangeMin, RangeMax] / [RangeMin, RangeMax).
  std::int32_t ValueCountRange(double RangeMin, double RangeMax) const;
  std::int32_t ValueCountRangeOpenMax(double RangeMin, double RangeMax) const;

  // Percentile curve: element 0 is Min, element i (1..Sets) the value at the i-th of Sets
  // equal steps through the sorted data. Empty for a negative Sets.
  std::vector<double> CalcHistogram(std::int32_t Sets) const;
  // Shares of equal-width blocks from MinValue, with everything past the MaxQ quantile
  // lumped into the last block once MinBlocks blocks stand. Statistics are computed on it.
  CStats CalcHistogram2(double MinValue, Fixed4 BlockSize, float MaxQ,
                        std::int16_t MinBlocks) const;

  // Switches the order ValueAtIndex reads in: 0 the default order, 3 arrival order, 1
  // ascending, -1 descending, 2 defined order. Returns the previous order. Ascending and
  // descending share one index, made on the first such call after Init.
  std::int32_t Sort(std::int32_t Direction);
  // The original row of place CurrentIndex in the current order (0 when there is none).
  std::int32_t GetOriginalIndex(std::int32_t CurrentIndex) const;

  // Writes values 1..Capacity as little-endian doubles at the device's position.
  bool Save(QIODevice& Filenr) const;
  // Replace the series with NumberOfValues little-endian values read from the device's
  // position: doubles, 32-bit, 16-bit signed integers or unsigned bytes. A count that the
  // rest of the device cannot hold, or a failed read, gives false and an empty series.
  bool Load(QIODevice& Filenr, std::int32_t NumberOfValues);
  bool LoadLong(QIODevice& Filenr, std::int32_t NumberOfValues);
  bool LoadInt(QIODevice& Filenr, std::int32_t NumberOfValues);
  bool LoadByte(QIODevice& Filenr, std::int32_t NumberOfValues);

  // Element-wise arithmetic over 1..Capacity with x from this series (arrival order) and y
  // from Operand in its current order (or the constant): 0 y + x, 1 y * x, 2 x / y (0 where
  // y is 0), 3 x - y, 4 x raised to y. Unfilled slots take part as zeros.
  CStats Operate(std::int32_t Operation, const CStats& Operand) const;
  CStats OperateConstant(std::int32_t Operation, double Value2) const;

  // Fits y = a + b x over the rows where both series have a value; needs CalcStats on both.
  bool Regression(CStats& YStats, double& a, double& b, double& r, std::int32_t& N);

 private:
  enum class Fence { Lower, Upper };
  double OutlierTails(double factor, Fence which);
  void CalcQuartiles();
  void Resize(std::int32_t newSize);
  bool LoadRaw(QIODevice& file, std::int32_t n, int width);
  // Element e (1-based) of the value array; 0 outside it.
  double ValueAt(std::int32_t e) const {
    return (e >= 1 && e <= m_capacity) ? m_values[e - 1] : 0.0;
  }
  std::int32_t DefinedAt(std::int32_t row) const;
  std::int32_t SortedAt(std::int32_t place) const;
  // Selection of several 1-based positions (ascending) in one scratch copy.
  void SelectPositions(const std::int32_t* positions, double* results, int n) const;

  // Allocator that leaves new doubles uninitialised, so a block read fills the array once.
  template <class T>
  struct NoInitAllocator : std::allocator<T> {
    template <class U>
    struct rebind {
      using other = NoInitAllocator<U>;
    };
    using std::allocator<T>::allocator;
    template <class U>
    void construct(U* p) noexcept {
      ::new (static_cast<void*>(p)) U;
    }
    template <class U, class... Args>
    void construct(U* p, Args&&... args) {
      ::new (static_cast<void*>(p)) U(std::forward<Args>(args)...);
    }
  };

  std::vector<double, NoInitAllocator<double>> m_values;  // element e at [e - 1]
  std::int32_t m_capacity = 0;
  std::int32_t m_count = 0;
  double m_medianValue = 0, m_q5Value = 0, m_q95Value = 0, m_q1Value = 0, m_q3Value = 0;
  bool m_medianValid = false, m_q5Valid = false, m_q95Valid = false, m_quartilesValid = false;
  std::int32_t m_currentOrder = 0;
  std::int32_t m_defaultOrder = 0;
  std::vector<std::int32_t> m_sortedIndex;  // place -> element (negated row for holes)
  bool m_sortValid = false;
  std::vector<std::int32_t> m_definedIndex;  // row - 1 -> element, 0 for a hole
};

}  // namespace ombrelle
