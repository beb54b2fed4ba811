// SPDX-License-Identifier: MIT
// Repeated sweeps of one device: mean and spread per point, and detection of outlier sweeps.
#pragma once

#include <array>
#include <complex>
#include <cstddef>
#include <span>
#include <vector>

#include "core/complex_array.h"
#include "quality/noise_pool.h"

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
  // Standard deviation of a single sweep for an uncertainty, pooled over neighbouring points where
  // they have the same noise. numPoints: as added.
  NoiseEstimate NoiseAt(int k, int numPoints) const;

 private:
  int sweeps_ = 0;
  ComplexArray mean_;
  std::array<double, kMaxPoints> re_{}, im_{}, cross_{};  // sums of products of differences
  std::array<double, kMaxPoints> common_{};               // with those of the next point
};

struct SweepJudgement {
  std::vector<int> Outliers;
  bool Drift = false;
};

// Finds outlier sweeps (Hampel's identifier): those whose RMS distance to the point-wise median is
// above the distances' median + 5 times their spread. sweeps: complete sweeps of numPoints values
// each; with fewer than five there are no outliers. Outliers are indices from 0, ascending.
//
// The spread of the distances is 1.4826 * MAD, but at least the scatter that noise alone gives an
// RMS of so many complex values: median / (2 sqrt(n)). n is the number of points, or fewer if some
// of them contain most of the noise. With 20 sweeps the MAD is often much smaller by chance, and a
// normal sweep would then be reported (1.5 sweeps in 200 runs of 20). If neighbouring points are
// independent, the scatter is used instead of the MAD, which is by chance often larger too: with 51
// points it would hide one in 400 sweeps that are shifted by 1.5 s. Neighbours count as independent
// if the median correlation of their deviations is below 1 / (2 sqrt(numPoints)), 2.5 times its
// standard deviation over 20 sweeps.
//
// If the sweeps drift, those found may be the ends of the drift. Then only those are outliers that
// also lie apart from the sweeps before and after them, by more than five times the median distance
// of successive sweeps.
//
// Sweeps drift if successive ones resemble each other more than all of them do: their mean depends
// on when it is taken. von Neumann's ratio (Ann. Math. Stat. 12, 1941), the sum of the squared
// steps over twice that of the squared deviations from the mean, is 1 for sweeps that do not depend
// on each other, with the standard deviation sqrt((N - 2) / (N^2 - 1)) for one real value a sweep.
// The sweeps without those that lie apart drift if the ratio is below 1 by 3.5 times that of one
// complex value (all points may change together), or, along the direction of one that lies apart,
// by 2.5 times that of one real value. Fewer than eight sweeps do not drift.
SweepJudgement JudgeSweeps(std::span<const ComplexArray* const> sweeps, int numPoints);

}  // namespace qk
