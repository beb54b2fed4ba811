// SPDX-License-Identifier: MIT
#include "quality/repeats.h"

#include <algorithm>
#include <cmath>

namespace qk {

namespace {
// The median; the mean of the two middle values for an even number. Reorders values.
double Median(std::span<double> values) {
  const std::size_t half = values.size() / 2;
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(half),
                   values.end());
  const double upper = values[half];
  if (values.size() % 2 == 1) return upper;
  return (upper +
          *std::max_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(half))) /
         2;
}
}  // namespace

void PointStatistics::Add(const ComplexArray& sweep, int numPoints) {
  ++sweeps_;
  const double weight = 1.0 / sweeps_;
  for (std::size_t k = 0; k < static_cast<std::size_t>(numPoints); ++k) {
    const double re = sweep.re[k] - mean_.re[k];
    const double im = sweep.im[k] - mean_.im[k];
    mean_.re[k] += re * weight;
    mean_.im[k] += im * weight;
    const double reAfter = sweep.re[k] - mean_.re[k];
    const double imAfter = sweep.im[k] - mean_.im[k];
    re_[k] += re * reAfter;
    im_[k] += im * imAfter;
    cross_[k] += re * imAfter;
  }
}

PointStatistics::Covariance PointStatistics::CovarianceOf(int k) const {
  if (sweeps_ < 2) return {};
  const auto at = static_cast<std::size_t>(k);
  const double n = sweeps_ - 1;
  return {re_[at] / n, im_[at] / n, cross_[at] / n};
}

double PointStatistics::Deviation(int k) const {
  const Covariance c = CovarianceOf(k);
  return std::sqrt(c.Re + c.Im);
}

double PointStatistics::DeviationOfMean(int k) const {
  return sweeps_ == 0 ? 0 : Deviation(k) / std::sqrt(static_cast<double>(sweeps_));
}

std::vector<int> OutlierSweeps(std::span<const ComplexArray* const> sweeps, int numPoints) {
  constexpr std::size_t kLeastSweeps = 5;
  constexpr double kDeviations = 5, kMadToSigma = 1.4826;
  const std::size_t count = sweeps.size();
  if (count < kLeastSweeps || numPoints < 1) return {};

  std::vector<double> distances(count), values(count);
  for (std::size_t k = 0; k < static_cast<std::size_t>(numPoints); ++k) {
    for (std::size_t n = 0; n < count; ++n) values[n] = sweeps[n]->re[k];
    const double re = Median(values);
    for (std::size_t n = 0; n < count; ++n) values[n] = sweeps[n]->im[k];
    const double im = Median(values);
    for (std::size_t n = 0; n < count; ++n) {
      const double dr = sweeps[n]->re[k] - re, di = sweeps[n]->im[k] - im;
      distances[n] += dr * dr + di * di;
    }
  }
  for (double& d : distances) d = std::sqrt(d / numPoints);

  values = distances;
  const double middle = Median(values);
  for (std::size_t n = 0; n < count; ++n) values[n] = std::abs(distances[n] - middle);
  const double least = middle / (2 * std::sqrt(static_cast<double>(numPoints)));
  const double limit = middle + kDeviations * std::max(kMadToSigma * Median(values), least);
  std::vector<int> outliers;
  for (std::size_t n = 0; n < count; ++n)
    if (distances[n] > limit) outliers.push_back(static_cast<int>(n));
  return outliers;
}

}  // namespace qk
