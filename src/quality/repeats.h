// SPDX-License-Identifier: MIT
// Repeated sweeps of one device: mean and spread per point, and detection of outlier sweeps.
#pragma once

#include <array>
#include <complex>
#include <cstddef>
#include <span>
#include <vector>

#include "core/complex_array.h"

namespace qk {

// Running mean and covariance of the complex values of one parameter, point by point (Welford's
// update; West, CACM 22, 1979). The individual sweeps are not stored.
class PointStatistics {
 public:
  void Clear() { *this = PointStatistics(); }
  // Adds one sweep of numPoints values.
  void Add(const ComplexArray& sweep, int numPoints);

  int Sweeps() const { return sweeps_; }
  Complex Mean(int k) const { return mean_[k]; }
  // Variances of the real and the imaginary part, and their covariance, for a single sweep; 0 for
  // fewer than two sweeps.
  struct Covariance {
    double Re = 0, Im = 0, Cross = 0;
  };
  Covariance CovarianceOf(int k) const;
  // Standard deviation s of the complex value of a single sweep: square root of Re + Im.
  double Deviation(int k) const;
  // Standard deviation of the mean: s / sqrt(N).
  double DeviationOfMean(int k) const;

 private:
  int sweeps_ = 0;
  ComplexArray mean_;
  std::array<double, kMaxPoints> re_{}, im_{}, cross_{};  // sums of products of differences
};

// Finds outlier sweeps (Hampel's identifier): those whose RMS distance to the point-wise median is
// above the distances' median + 5 times their spread. sweeps: complete sweeps of numPoints values
// each; with fewer than five there are no outliers. Returns indices from 0, ascending.
//
// The spread of the distances is 1.4826 * MAD, but at least median / (2 sqrt(numPoints)), which is
// the scatter of the RMS of so many complex values for white noise alone. With 20 sweeps the MAD is
// often much smaller by chance, and a normal sweep would then be reported: without this minimum in
// about 1.5 sweeps per 200 runs of 20, with it in less than 0.1, so that a run may test each of its
// parameters.
std::vector<int> OutlierSweeps(std::span<const ComplexArray* const> sweeps, int numPoints);

}  // namespace qk
