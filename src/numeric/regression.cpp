// SPDX-License-Identifier: MIT
#include "numeric/regression.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace qk {

RegressionError::RegressionError(std::int32_t value)
    : std::runtime_error(std::to_string(value) +
                         " is an invalid property value! Use 0<= Degree <= " +
                         std::to_string(RegressionObject::kMaxDegree)) {}

void RegressionObject::init() {
  sum_x_.fill(0);
  sum_yx_.fill(0);
  coeff_.fill(0);
  calculated_ = false;
  in_force_ = -1;
}

void RegressionObject::SetDegree(std::int32_t value) {
  if (value < 0 || value > kMaxDegree) throw RegressionError(value);
  init();
  degree_ = value;
}

void RegressionObject::XYAdd(double x, double y) {
  calculated_ = false;
  const auto degree = static_cast<std::size_t>(degree_);
  sum_x_[0] += 1;
  sum_yx_[0] += y;
  double t = 1;
  for (std::size_t k = 1; k <= 2 * degree; ++k) {
    t *= x;
    sum_x_[k] += t;
    if (k <= degree) sum_yx_[k] += y * t;
  }
}

double RegressionObject::Coeff(int k) {
  if (!calculated_) Compute();
  return k >= 0 && k <= in_force_ ? coeff_[static_cast<std::size_t>(k)] : 0;
}

double RegressionObject::RegVal(double x) {
  if (!calculated_) Compute();
  double sum = 0;
  double t = 1;
  for (int k = 0; k <= in_force_; ++k) {
    sum += coeff_[static_cast<std::size_t>(k)] * t;
    t *= x;
  }
  return sum;
}

// With equal or nearly equal x values the equations have no solution: the degree is then reduced
// until they have one.
void RegressionObject::Compute() {
  int d = degree_;
  if (XYCount() <= d) d = static_cast<int>(XYCount()) - 1;
  coeff_.fill(0);
  in_force_ = d;
  if (d < 0) return;
  BuildEquations(d);
  while (!Solve(d) && d > 0) {
    coeff_[static_cast<std::size_t>(d)] = 0;
    BuildEquations(--d);
  }
  in_force_ = d;
  calculated_ = true;
}

void RegressionObject::BuildEquations(int d) {
  const auto last = static_cast<std::size_t>(d);
  for (std::size_t i = 0; i <= last; ++i) {
    for (std::size_t j = 0; j <= last; ++j) m_[j][i] = sum_x_[i + j];
    m_[last + 1][i] = sum_yx_[i];
  }
}

// Gaussian elimination with partial pivoting, then back substitution. False on a numeric failure: a
// division by a zero pivot, or a value beyond the range of a double, leaves a coefficient that is
// not finite.
bool RegressionObject::Solve(int d) {
  const auto last = static_cast<std::size_t>(d);
  for (std::size_t i = 0; i <= last; ++i) {
    std::size_t pivot = i;
    for (std::size_t row = i + 1; row <= last; ++row)
      if (std::fabs(m_[i][row]) > std::fabs(m_[i][pivot])) pivot = row;
    if (pivot != i)
      for (std::size_t column = i; column <= last + 1; ++column)
        std::swap(m_[column][i], m_[column][pivot]);
    for (std::size_t row = i + 1; row <= last; ++row) {
      const double factor = m_[i][row] / m_[i][i];
      for (std::size_t column = i; column <= last + 1; ++column)
        m_[column][row] -= factor * m_[column][i];
    }
  }
  for (std::size_t row = last + 1; row-- > 0;) {
    double sum = m_[last + 1][row];
    for (std::size_t column = row + 1; column <= last; ++column)
      sum -= m_[column][row] * coeff_[column];
    coeff_[row] = sum / m_[row][row];
    if (!std::isfinite(coeff_[row])) {
      coeff_[row] = 0;
      return false;
    }
  }
  return true;
}

}  // namespace qk
