#include "stats/Significance.h"

#include <cmath>

namespace ombrelle {

double TCritical95(std::int32_t df) {
  static constexpr double kTable[10] = {12.7061503,  4.302655725, 3.182449291, 2.776450856,
                                        2.570577635, 2.446913641, 2.36462256,  2.306005626,
                                        2.262158887, 2.228139238};
  if (df < 1) return 0;
  if (df <= 10) return kTable[df - 1];
  const double l = std::log(static_cast<double>(df));
  if (df <= 30) return l * -0.151 + 2.5454;
  if (df <= 100) return l * -0.0443 + 2.1843;
  if (df <= 499) return l * -0.0122 + 2.0305;
  return 1.96;
}

bool CorrelationIsSignificant(double r, std::int32_t N) {
  if (N < 3) return false;
  const double magnitude = std::fabs(r);
  if (magnitude < 1) {
    const double t = r / std::sqrt((1 - r * r) / (N - 2));
    return TCritical95(N - 2) < std::fabs(t);
  }
  return magnitude == 1;
}

const char* RegressionSlopePattern(double b) {
  if (b == 0) return "0";
  return std::log10(std::fabs(b)) >= -1 ? "0.00" : "0.########";
}

}  // namespace ombrelle
