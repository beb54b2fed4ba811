// SPDX-License-Identifier: MIT
#include "quality/residuals.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/text.h"
#include "numeric/complex.h"
#include "numeric/complex_solve.h"
#include "numeric/median.h"

namespace qk {

namespace {
constexpr double kLight = 299792458.0;  // m/s
constexpr double kNeperPerDb = std::numbers::ln10 / 20;
constexpr int kLeastPoints = 12;  // in one period of the ripple: twice the six unknowns
constexpr std::size_t kUnknowns = 6;
constexpr int kRefinements = 3;  // of the length
constexpr double kLeastOfShort = 0.5, kMostTracking = 0.5;
constexpr const char* kNoShortedLine =
    "What was measured is not a short behind a line of this length.";

// Least squares fit of y = slope x + constant.
class StraightLine {
 public:
  void Take(double x, double y) {
    ++count_;
    const double dx = x - x_, dy = y - y_;
    x_ += dx / count_;
    y_ += dy / count_;
    xx_ += dx * (x - x_);
    xy_ += dx * (y - y_);
  }
  double Slope() const { return xx_ > 0 ? xy_ / xx_ : 0; }

 private:
  int count_ = 0;
  double x_ = 0, y_ = 0, xx_ = 0, xy_ = 0;
};

// Number of points in half a window of the ripple's period.
int HalfWindow(std::span<const double> f, const AirLine& line) {
  const double step = f.size() > 1 ? f[1] - f[0] : 0;
  if (!(step > 0)) return 0;
  return static_cast<int>(std::lround(line.RipplePeriod() / step / 2));
}

// The one-way length with the best phase fit: a straight line, by least squares, through the
// unwrapped phase of m relative to that of the line with its assumed length. The constant is part
// of the tracking.
double FitLength(std::span<const double> f, std::span<const Cplx> m, double metres) {
  const AirLine thought{metres, 0};
  StraightLine phases;
  double previous = 0, turns = 0;
  for (std::size_t k = 0; k < f.size(); ++k) {
    const double phase = std::arg(m[k] / thought.ShortBehind(f[k]));
    if (k > 0) turns -= std::round((phase - previous) / (2 * std::numbers::pi));
    previous = phase;
    phases.Take(f[k], phase + 2 * std::numbers::pi * turns);
  }
  return metres - phases.Slope() * kLight / (4 * std::numbers::pi);
}

// ln |m| = ln |1 + T| - 2 a sqrt(f): a by least squares, returned as one-way decibels at 1 GHz.
// Without the constant, a tracking error would be taken for loss.
double FitLoss(std::span<const double> f, std::span<const Cplx> m) {
  StraightLine sizes;
  for (std::size_t k = 0; k < f.size(); ++k)
    sizes.Take(std::sqrt(f[k]), std::log(std::max(std::abs(m[k]), 1e-11)));
  return std::max(0.0, -sizes.Slope() / 2 * std::sqrt(1e9) / kNeperPerDb);
}

// The terms of the model beyond D + (1 + T) g + M g^2.
Cplx HigherOrders(const Residual& r, Cplx g) {
  return MeasuredWith(r, g) - (r.Directivity + (1.0 + r.Tracking) * g + r.SourceMatch * g * g);
}

// D, T and M at point k, each linear over the window; repeated without the higher-order terms that
// they cause, which would otherwise leak from a large source match into the directivity.
std::optional<Residual> FitWindow(std::span<const double> f, std::span<const Cplx> m,
                                  const AirLine& line, int k, int half) {
  std::array<std::array<Cplx, kUnknowns>, kUnknowns> normal{};
  std::array<Cplx, kUnknowns> found{};
  constexpr int kPasses = 3;
  for (int pass = 0; pass < kPasses; ++pass) {
    std::array<Cplx, kUnknowns> right{};
    for (int i = k - half; i <= k + half; ++i) {
      const auto at = static_cast<std::size_t>(i);
      const double x = static_cast<double>(i - k) / half;
      const Cplx g = line.ShortBehind(f[at]);
      const std::array<Cplx, kUnknowns> row{1.0, x, g, x * g, g * g, x * g * g};
      Cplx value = m[at] - g;
      if (pass > 0)
        value -= HigherOrders(
            {found[0] + x * found[1], found[4] + x * found[5], found[2] + x * found[3]}, g);
      for (std::size_t a = 0; a < kUnknowns; ++a) {
        if (pass == 0)
          for (std::size_t b = 0; b < kUnknowns; ++b) normal[a][b] += std::conj(row[a]) * row[b];
        right[a] += std::conj(row[a]) * value;
      }
    }
    const auto x = SolveComplex<kUnknowns>(normal, right);
    if (!x) return std::nullopt;
    found = *x;
  }
  return Residual{found[0], found[4], found[2]};
}

// Fits length and loss of the line again, from m without the ripple caused by D and M. These are
// determined at some points, and the other points use the nearest of them. False if a window cannot
// be fitted.
bool RefineLine(std::span<const double> f, std::span<const Cplx> m, AirLine& line, int half) {
  constexpr int kStepsInHalf = 8;
  const int last = static_cast<int>(m.size()) - 1, step = std::max(1, half / kStepsInHalf);
  std::vector<Cplx> smooth(m.begin(), m.end());
  std::optional<Residual> nearest;
  int foundAt = 0;
  for (int k = 0; k <= last; ++k) {
    const int inside = std::clamp(k, half, last - half);
    if (!nearest || inside - foundAt >= step) {
      nearest = FitWindow(f, m, line, inside, half);
      if (!nearest) return false;
      foundAt = inside;
    }
    const auto at = static_cast<std::size_t>(k);
    const Cplx g = line.ShortBehind(f[at]);
    smooth[at] -= MeasuredWith(*nearest, g) - (1.0 + nearest->Tracking) * g;
  }
  line.Metres = FitLength(f, smooth, line.Metres);
  line.LossDbAt1GHz = FitLoss(f, smooth);
  return line.Metres > 0;
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

  const std::string period =
      FormatNumber(AirLine{nominalMetres, 0}.RipplePeriod() / 1e6, "#0") + " MHz";
  const int half = HalfWindow(f, AirLine{nominalMetres, 0});
  if (2 * half + 1 < kLeastPoints)
    return refuse("More points are needed: at least 12 in " + period + ".");
  sweep.First = half;
  sweep.Last = static_cast<int>(m.size()) - 1 - half;
  if (sweep.Empty())
    return refuse("A longer line or a wider span is needed: the span must exceed " + period + ".");

  if (const double size = MedianSize(m); !(size > kLeastOfShort))
    return refuse("What was measured reflects " + FormatNumber(20 * Log10Floored(size), "#0.0") +
                  " dB: it is not a short behind a line.");
  sweep.Line.Metres = LengthByPhase(f, m, nominalMetres);
  if (!IsLength(sweep.Line.Metres, nominalMetres))
    return refuse("The phase is that of a line of " +
                  FormatNumber(sweep.Line.Metres * 1000, "#0.0") + " mm, not of " +
                  FormatNumber(nominalMetres * 1000, "#0.0") +
                  " mm: the length, the short or the calibration is wrong.");
  sweep.Line.LossDbAt1GHz = FitLoss(f, m);
  for (int i = 0; i < kRefinements; ++i)
    if (!RefineLine(f, m, sweep.Line, half)) return refuse(kNoShortedLine);
  if (!IsLength(sweep.Line.Metres, nominalMetres)) return refuse(kNoShortedLine);
  std::vector<Cplx> tracking;
  tracking.reserve(m.size());
  for (int k = sweep.First; k <= sweep.Last; ++k) {
    const auto fitted = FitWindow(f, m, sweep.Line, k, half);
    if (!fitted) return refuse(kNoShortedLine);
    sweep.Points[static_cast<std::size_t>(k)] = *fitted;
    tracking.push_back(fitted->Tracking);
  }
  if (MedianSize(tracking) > kMostTracking) return refuse(kNoShortedLine);
  return sweep;
}

double LengthByPhase(std::span<const double> f, std::span<const Cplx> m, double nominalMetres) {
  double metres = nominalMetres;
  for (int i = 0; i < kRefinements; ++i) metres = FitLength(f, m, metres);
  return metres;
}

bool IsLength(double metres, double nominalMetres) {
  constexpr double kPart = 0.05, kOffset = 5e-3;
  return std::abs(metres - nominalMetres) <= std::max(kPart * nominalMetres, kOffset);
}

double MedianSize(std::span<const Cplx> m) {
  if (m.empty()) return 0;
  std::vector<double> sizes;
  sizes.reserve(m.size());
  for (const Cplx& value : m) sizes.push_back(std::abs(value));
  return UpperMedian(std::span(sizes));
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
