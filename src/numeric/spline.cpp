// SPDX-License-Identifier: MIT
#include "numeric/spline.h"

#include <algorithm>
#include <cstddef>

namespace qk {

namespace {
// a / b, and 0 if b is 0: the slope of an interval of zero length.
double Slope(double a, double b) {
  return b == 0 ? 0 : a / b;
}

// The middle of a bracket, counted from 1, rounded half to even.
std::size_t Middle(std::size_t klo, std::size_t khi) {
  const std::size_t down = (klo + khi) / 2;
  const bool half = (klo + khi) % 2 != 0;
  return half && down % 2 != 0 ? down + 1 : down;
}
}  // namespace

void spline2(std::span<const double> x, std::span<const double> y, std::span<double> y2) {
  const std::size_t n = std::min<std::size_t>(x.size(), kMaxKnots);
  if (n == 0) return;
  std::array<double, kMaxKnots> u;
  y2[0] = 0;
  u[0] = 0;
  for (std::size_t i = 1; i + 1 < n; ++i) {
    const double span = x[i + 1] - x[i - 1];
    const double sig = Slope(x[i] - x[i - 1], span);
    const double p = sig * y2[i - 1] + 2;
    y2[i] = Slope(sig - 1, p);
    const double bend =
        Slope(y[i + 1] - y[i], x[i + 1] - x[i]) - Slope(y[i] - y[i - 1], x[i] - x[i - 1]);
    u[i] = Slope(Slope(6 * bend, span) - sig * u[i - 1], p);
  }
  y2[n - 1] = 0;
  for (std::size_t k = n - 1; k-- > 0;) y2[k] = y2[k] * y2[k + 1] + u[k];
}

double splint2(std::span<const double> x, std::span<const double> y, std::span<const double> y2,
               double at, bool& dataError) {
  std::size_t klo = 1;
  std::size_t khi = x.size();
  if (khi == 0) return 0;
  while (khi - klo >= 2) {
    const std::size_t mid = Middle(klo, khi);
    if (x[mid - 1] <= at) {
      klo = mid;
    } else {
      khi = mid;
    }
  }
  const std::size_t lo = klo - 1;  // for a single knot: the same as hi
  const std::size_t hi = khi - 1;
  const double h = x[hi] - x[lo];
  if (h == 0) {
    dataError = true;
    return y[hi];
  }
  const double a = (x[hi] - at) / h;
  const double b = (at - x[lo]) / h;
  return a * y[lo] + b * y[hi] +
         ((a * a * a - a) * y2[lo] + (b * b * b - b) * y2[hi]) * (h * h) / 6;
}

void CSplineObject::init() {
  *this = CSplineObject();
}

void CSplineObject::XYAdd(double x, double y) {
  if (count_ >= kCapacity) return;
  const auto i = static_cast<std::size_t>(count_++);
  x_[i] = static_cast<double>(static_cast<float>(x));
  y_[i] = static_cast<double>(static_cast<float>(y));
  ready_ = false;
}

void CSplineObject::DoCoeffs() {
  if (ready_ || count_ < 2) return;
  const auto n = static_cast<std::size_t>(count_);
  spline2({x_.data(), n}, {y_.data(), n}, {y2_.data(), n});
  ready_ = true;
}

double CSplineObject::GetY(double x) {
  if (!ready_) return 0;
  const auto n = static_cast<std::size_t>(count_);
  return splint2({x_.data(), n}, {y_.data(), n}, {y2_.data(), n}, x, data_error_);
}

}  // namespace qk
