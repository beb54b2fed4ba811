// SPDX-License-Identifier: MIT
#include "quality/repeats.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "numeric/median.h"

namespace qk {

void PointStatistics::Add(const ComplexArray& sweep, int numPoints) {
  ++sweeps_;
  const double weight = 1.0 / sweeps_;
  double reOfLast = 0, imOfLast = 0;
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
    if (k > 0) common_[k - 1] += reOfLast * reAfter + imOfLast * imAfter;
    reOfLast = re;
    imOfLast = im;
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

NoiseEstimate PointStatistics::NoiseAt(int k, int numPoints) const {
  if (sweeps_ < 2) return {};
  const double n = sweeps_ - 1;
  const auto variance = [&](int i) {
    const auto at = static_cast<std::size_t>(i);
    return (re_[at] + im_[at]) / n;
  };
  const auto common = [&](int i) { return common_[static_cast<std::size_t>(i)] / n; };
  return PooledNoise(WindowAbout(k, numPoints, 2 * n, variance, common));
}

namespace {
// Distances of sweeps to their point-wise median.
struct Distances {
  std::vector<double> Rms;  // of each sweep
  double Correlation = 0;   // median over the sweeps, of neighbouring points
  double Points = 0;        // effective number of points, by their shares of the noise
};

Distances DistancesOf(std::span<const ComplexArray* const> sweeps, int numPoints) {
  const std::size_t count = sweeps.size();
  struct Last {
    double Re = 0, Im = 0;
  };
  Distances distances;
  distances.Rms.resize(count);
  std::vector<double> values(count), squares(count), products(count);
  std::vector<Last> last(count);
  double sum = 0, sumOfSquares = 0;
  for (std::size_t k = 0; k < static_cast<std::size_t>(numPoints); ++k) {
    for (std::size_t n = 0; n < count; ++n) values[n] = sweeps[n]->re[k];
    const double re = Median(values);
    for (std::size_t n = 0; n < count; ++n) values[n] = sweeps[n]->im[k];
    const double im = Median(values);
    for (std::size_t n = 0; n < count; ++n) {
      const double dr = sweeps[n]->re[k] - re, di = sweeps[n]->im[k] - im;
      squares[n] = dr * dr + di * di;
      distances.Rms[n] += squares[n];
      products[n] += dr * last[n].Re + di * last[n].Im;
      last[n] = {dr, di};
    }
    const double noise = Median(squares);
    sum += noise;
    sumOfSquares += noise * noise;
  }
  for (std::size_t n = 0; n < count; ++n)
    products[n] = distances.Rms[n] > 0 ? products[n] / distances.Rms[n] : 1;
  distances.Correlation = Median(products);
  for (double& d : distances.Rms) d = std::sqrt(d / numPoints);
  distances.Points = sumOfSquares > 0 ? std::min<double>(numPoints, sum * sum / sumOfSquares) : 1;
  return distances;
}

std::vector<int> SweepsApart(std::span<const ComplexArray* const> sweeps, int numPoints) {
  constexpr double kDeviations = 5, kMadToSigma = 1.4826;
  const std::size_t count = sweeps.size();
  const Distances distances = DistancesOf(sweeps, numPoints);
  std::vector<double> values = distances.Rms;
  const double middle = Median(values);
  for (std::size_t n = 0; n < count; ++n) values[n] = std::abs(distances.Rms[n] - middle);
  const double ofNoise = middle / (2 * std::sqrt(distances.Points));
  const bool independent =
      std::abs(distances.Correlation) < 1 / (2 * std::sqrt(static_cast<double>(numPoints)));
  const double spread = independent ? ofNoise : std::max(kMadToSigma * Median(values), ofNoise);
  const double limit = middle + kDeviations * spread;
  std::vector<int> outliers;
  for (std::size_t n = 0; n < count; ++n)
    if (distances.Rms[n] > limit) outliers.push_back(static_cast<int>(n));
  return outliers;
}

// von Neumann's ratio of a series: 1 if successive values do not depend on each other.
struct Successive {
  double Steps = 0, Squares = 0;
  // True if the ratio is below 1 by more than this.
  bool IsBelowOneBy(double difference) const {
    return Squares > 0 && Steps < 2 * Squares * (1 - difference);
  }
};

// Over all points.
Successive SuccessiveOf(std::span<const ComplexArray* const> sweeps, int numPoints) {
  const auto count = static_cast<double>(sweeps.size());
  Successive all;
  for (std::size_t k = 0; k < static_cast<std::size_t>(numPoints); ++k) {
    double re = 0, im = 0;  // the mean
    for (const ComplexArray* sweep : sweeps) {
      re += sweep->re[k] / count;
      im += sweep->im[k] / count;
    }
    for (std::size_t n = 0; n < sweeps.size(); ++n) {
      const double dr = sweeps[n]->re[k] - re, di = sweeps[n]->im[k] - im;
      all.Squares += dr * dr + di * di;
      if (n == 0) continue;
      const double sr = sweeps[n]->re[k] - sweeps[n - 1]->re[k];
      const double si = sweeps[n]->im[k] - sweeps[n - 1]->im[k];
      all.Steps += sr * sr + si * si;
    }
  }
  return all;
}

// Along the direction in which one sweep lies apart from the middle one. The noise of independent
// points averages out in it, and a drift does not.
Successive SuccessiveTowards(const ComplexArray& apart, std::span<const ComplexArray* const> sweeps,
                             int numPoints) {
  const ComplexArray& from = *sweeps[sweeps.size() / 2];
  std::vector<double> way;
  way.reserve(sweeps.size());
  double mean = 0;
  for (const ComplexArray* sweep : sweeps) {
    double along = 0;
    for (std::size_t k = 0; k < static_cast<std::size_t>(numPoints); ++k)
      along +=
          sweep->re[k] * (apart.re[k] - from.re[k]) + sweep->im[k] * (apart.im[k] - from.im[k]);
    way.push_back(along);
    mean += along / static_cast<double>(sweeps.size());
  }
  Successive series;
  for (std::size_t n = 0; n < way.size(); ++n) {
    series.Squares += (way[n] - mean) * (way[n] - mean);
    if (n > 0) series.Steps += (way[n] - way[n - 1]) * (way[n] - way[n - 1]);
  }
  return series;
}

// The RMS distance of two sweeps.
double DistanceOf(const ComplexArray& a, const ComplexArray& b, int numPoints) {
  double sum = 0;
  for (std::size_t k = 0; k < static_cast<std::size_t>(numPoints); ++k) {
    const double re = a.re[k] - b.re[k], im = a.im[k] - b.im[k];
    sum += re * re + im * im;
  }
  return std::sqrt(sum / numPoints);
}

// Those that lie apart from the sweeps before and after them, by more than kUsual times the median
// distance of successive sweeps.
std::vector<int> ApartFromNeighbours(const std::vector<int>& apart,
                                     std::span<const ComplexArray* const> sweeps, int numPoints) {
  constexpr double kUsual = 5;
  std::vector<double> steps;
  steps.reserve(sweeps.size());
  for (std::size_t n = 1; n < sweeps.size(); ++n)
    steps.push_back(DistanceOf(*sweeps[n - 1], *sweeps[n], numPoints));
  std::vector<double> sorted = steps;
  const double limit = kUsual * Median(sorted);
  std::vector<int> outliers;
  for (const int index : apart) {
    const auto n = static_cast<std::size_t>(index);
    if ((n == 0 || steps[n - 1] > limit) && (n + 1 == sweeps.size() || steps[n] > limit))
      outliers.push_back(index);
  }
  return outliers;
}
}  // namespace

SweepJudgement JudgeSweeps(std::span<const ComplexArray* const> sweeps, int numPoints) {
  constexpr std::size_t kLeastSweeps = 5, kLeastOfDrift = 8;
  constexpr double kOverall = 3.5, kTowards = 2.5;  // standard deviations
  SweepJudgement judged;
  if (sweeps.size() < kLeastSweeps || numPoints < 1) return judged;
  judged.Outliers = SweepsApart(sweeps, numPoints);
  const auto without = [&](const std::vector<int>& left) {
    std::vector<const ComplexArray*> others;
    others.reserve(sweeps.size());
    for (std::size_t n = 0; n < sweeps.size(); ++n)
      if (!std::ranges::binary_search(left, static_cast<int>(n))) others.push_back(sweeps[n]);
    return others;
  };
  const std::vector<const ComplexArray*> others = without(judged.Outliers);
  if (others.size() < kLeastOfDrift) return judged;
  const auto deviation = [](std::size_t count) {
    const auto n = static_cast<double>(count);
    return std::sqrt((n - 2) / (n * n - 1));
  };
  judged.Drift =
      SuccessiveOf(others, numPoints)
          .IsBelowOneBy(kOverall * deviation(others.size()) / std::numbers::sqrt2) ||
      std::ranges::any_of(judged.Outliers, [&](int n) {
        return SuccessiveTowards(*sweeps[static_cast<std::size_t>(n)], without({n}), numPoints)
            .IsBelowOneBy(kTowards * deviation(sweeps.size() - 1));
      });
  if (judged.Drift) judged.Outliers = ApartFromNeighbours(judged.Outliers, sweeps, numPoints);
  return judged;
}

}  // namespace qk
