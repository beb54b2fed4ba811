// SPDX-License-Identifier: MIT
#include "quality/residuals.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/text.h"
#include "numeric/complex_solve.h"

namespace qk {

namespace {
constexpr double kLight = 299792458.0;  // m/s
constexpr double kNeperPerDb = std::numbers::ln10 / 20;
constexpr int kLeastPoints = 12;  // in one period of the ripple: six unknowns, twice over
constexpr std::size_t kUnknowns = 6;

// Points in half a window of the ripple's period.
int HalfWindow(std::span<const double> f, const AirLine& line) {
  const double step = f.size() > 1 ? f[1] - f[0] : 0;
  if (!(step > 0)) return 0;
  return static_cast<int>(std::lround(line.RipplePeriod() / step / 2));
}

// The one-way length whose phase fits best: a straight line through zero, by least squares, fitted
// to the unwrapped phase of m against that of the line as it is thought to be.
double FitLength(std::span<const double> f, std::span<const Cplx> m, double metres) {
  const AirLine thought{metres, 0};
  double previous = 0, turns = 0, sumFp = 0, sumFf = 0;
  for (std::size_t k = 0; k < f.size(); ++k) {
    const double phase = std::arg(m[k] / thought.ShortBehind(f[k]));
    if (k > 0) turns -= std::round((phase - previous) / (2 * std::numbers::pi));
    previous = phase;
    const double unwrapped = phase + 2 * std::numbers::pi * turns;
    sumFp += f[k] * unwrapped;
    sumFf += f[k] * f[k];
  }
  return metres - sumFp / sumFf * kLight / (4 * std::numbers::pi);
}

// ln |m| = -2 a sqrt(f): a by least squares, as decibels one way at 1 GHz.
double FitLoss(std::span<const double> f, std::span<const Cplx> m) {
  double sum = 0, weights = 0;
  for (std::size_t k = 0; k < f.size(); ++k) {
    sum -= std::sqrt(f[k]) * std::log(std::max(std::abs(m[k]), 1e-11)) / 2;
    weights += f[k];
  }
  return std::max(0.0, sum / weights * std::sqrt(1e9) / kNeperPerDb);
}

// D, T and M at point k, each linear over the window.
std::optional<Residual> FitWindow(std::span<const double> f, std::span<const Cplx> m,
                                  const AirLine& line, int k, int half) {
  std::array<std::array<Cplx, kUnknowns>, kUnknowns> normal{};
  std::array<Cplx, kUnknowns> right{};
  for (int i = k - half; i <= k + half; ++i) {
    const auto at = static_cast<std::size_t>(i);
    const double x = static_cast<double>(i - k) / half;
    const Cplx g = line.ShortBehind(f[at]);
    const std::array<Cplx, kUnknowns> row{1.0, x, g, x * g, g * g, x * g * g};
    const Cplx value = m[at] - g;
    for (std::size_t a = 0; a < kUnknowns; ++a) {
      for (std::size_t b = 0; b < kUnknowns; ++b) normal[a][b] += std::conj(row[a]) * row[b];
      right[a] += std::conj(row[a]) * value;
    }
  }
  const auto x = SolveComplex<kUnknowns>(normal, right);
  if (!x) return std::nullopt;
  return Residual{(*x)[0], (*x)[4], (*x)[2]};
}
}  // namespace

std::optional<Residual> ResidualFromThree(const std::array<Cplx, 3>& g,
                                          const std::array<Cplx, 3>& m) {
  std::array<std::array<Cplx, 3>, 3> a;
  for (std::size_t i = 0; i < 3; ++i) a[i] = {1.0, g[i] * m[i], -g[i]};
  const auto x = SolveComplex<3>(a, {m[0], m[1], m[2]});
  if (!x) return std::nullopt;
  const auto [e00, e11, d] = *x;
  return Residual{e00, e11, e00 * e11 - d - 1.0};
}

Cplx AirLine::ShortBehind(double f) const {
  const double loss = LossDbAt1GHz * kNeperPerDb * std::sqrt(f / 1e9);
  return -std::polar(std::exp(-2 * loss), -4 * std::numbers::pi * f * Metres / kLight);
}

double AirLine::RipplePeriod() const {
  return kLight / (2 * Metres);
}

ResidualSweep ResidualFromShortedLine(std::span<const double> f, std::span<const Cplx> m,
                                      double nominalMetres, std::string* why) {
  ResidualSweep sweep;
  sweep.Points.resize(m.size());
  const auto refuse = [&](std::string text) {
    if (why != nullptr) *why = std::move(text);
    sweep.First = 0;
    sweep.Last = -1;
    return sweep;
  };
  if (!(nominalMetres > 0) || f.size() < 3 || !(f[1] > f[0]))
    return refuse("The length of the line is not known.");

  constexpr int kRefinements = 3;
  sweep.Line.Metres = nominalMetres;
  for (int i = 0; i < kRefinements; ++i) sweep.Line.Metres = FitLength(f, m, sweep.Line.Metres);
  if (!(sweep.Line.Metres > nominalMetres / 2) || !(sweep.Line.Metres < nominalMetres * 2))
    return refuse("What was measured is not a short behind a line of this length.");
  sweep.Line.LossDbAt1GHz = FitLoss(f, m);

  const std::string period = FormatNumber(sweep.Line.RipplePeriod() / 1e6, "#0") + " MHz";
  const int half = HalfWindow(f, sweep.Line);
  if (2 * half + 1 < kLeastPoints)
    return refuse("More points are needed: at least 12 in " + period + ".");
  sweep.First = half;
  sweep.Last = static_cast<int>(m.size()) - 1 - half;
  if (sweep.Empty())
    return refuse("A longer line or a wider span is needed: the span must exceed " + period + ".");
  for (int k = sweep.First; k <= sweep.Last; ++k) {
    const auto fitted = FitWindow(f, m, sweep.Line, k, half);
    if (!fitted) return refuse("What was measured is not a short behind a line of this length.");
    sweep.Points[static_cast<std::size_t>(k)] = *fitted;
  }
  return sweep;
}

std::vector<double> HalfRipple(std::span<const double> f, std::span<const Cplx> m,
                               const AirLine& line, int& first, int& last) {
  const int half = HalfWindow(f, line);
  first = half;
  last = half < 2 ? -1 : static_cast<int>(m.size()) - 1 - half;
  std::vector<double> ripple(m.size());
  for (int k = first; k <= last; ++k) {
    double low = HUGE_VAL, high = 0;
    for (int i = k - half; i <= k + half; ++i) {
      const double size = std::abs(m[static_cast<std::size_t>(i)]);
      low = std::min(low, size);
      high = std::max(high, size);
    }
    ripple[static_cast<std::size_t>(k)] = (high - low) / 2;
  }
  return ripple;
}

}  // namespace qk
