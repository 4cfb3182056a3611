#pragma once

#include <cmath>
#include <cstdint>
#include <initializer_list>

namespace ombrelle::samples {

// Deterministic random source of the sample generator: SplitMix64, with the
// few distributions the generator needs built on it by hand, so that the same
// seed gives the same numbers with every compiler and standard library.
class SampleRandom {
 public:
  explicit SampleRandom(std::uint64_t seed) : m_state(seed) {}

  // A generator for one entity: the project's seed mixed with a tag and up to
  // three numbers, so that an entity's values never depend on how many
  // numbers were drawn for the entities before it.
  static SampleRandom For(std::uint64_t seed, std::initializer_list<std::uint64_t> keys) {
    std::uint64_t state = seed;
    for (std::uint64_t key : keys) state = Mix(state ^ Mix(key + 0x632BE59BD9B4E019ull));
    return SampleRandom(state);
  }

  std::uint64_t Next() {
    m_state += 0x9E3779B97F4A7C15ull;
    return Mix(m_state);
  }
  // Uniform in [0, 1), 53 bits.
  double Uniform() { return static_cast<double>(Next() >> 11) * 0x1.0p-53; }
  double Uniform(double low, double high) { return low + (high - low) * Uniform(); }
  // A whole number from `low` to `high`, both included.
  int Range(int low, int high) {
    if (high <= low) return low;
    const auto span = static_cast<std::uint64_t>(high - low) + 1;
    return low + static_cast<int>(Next() % span);
  }
  bool Chance(double probability) { return Uniform() < probability; }
  // Standard normal by the Box-Muller transform.
  double Normal() {
    const double u = 1.0 - Uniform();  // (0, 1]
    const double v = Uniform();
    return std::sqrt(-2.0 * std::log(u)) * std::cos(6.283185307179586 * v);
  }
  // Log-normal with the given median and spread of the logarithm.
  double LogNormal(double median, double sigma) { return median * std::exp(sigma * Normal()); }

 private:
  static std::uint64_t Mix(std::uint64_t z) {
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }

  std::uint64_t m_state;
};

}  // namespace ombrelle::samples
