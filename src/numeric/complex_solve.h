// SPDX-License-Identifier: MIT
// Small systems of linear equations with complex coefficients.
#pragma once

#include <algorithm>
#include <array>
#include <complex>
#include <cstddef>
#include <optional>
#include <utility>

namespace qk {

// Solves a x = b by Gaussian elimination with partial pivoting (Golub and Van Loan, section 3.4).
// Empty if a is singular to working precision.
template <std::size_t N>
std::optional<std::array<std::complex<double>, N>> SolveComplex(
    std::array<std::array<std::complex<double>, N>, N> a, std::array<std::complex<double>, N> b) {
  double largest = 0;
  for (const auto& row : a)
    for (const auto& value : row) largest = std::max(largest, std::norm(value));
  constexpr double kRelative = 1e-26;  // of squared magnitudes
  for (std::size_t column = 0; column < N; ++column) {
    std::size_t pivot = column;
    for (std::size_t row = column + 1; row < N; ++row)
      if (std::norm(a[row][column]) > std::norm(a[pivot][column])) pivot = row;
    if (!(std::norm(a[pivot][column]) > kRelative * largest)) return std::nullopt;
    std::swap(a[pivot], a[column]);
    std::swap(b[pivot], b[column]);
    for (std::size_t row = column + 1; row < N; ++row) {
      const std::complex<double> factor = a[row][column] / a[column][column];
      for (std::size_t k = column; k < N; ++k) a[row][k] -= factor * a[column][k];
      b[row] -= factor * b[column];
    }
  }
  std::array<std::complex<double>, N> x{};
  for (std::size_t row = N; row-- > 0;) {
    std::complex<double> sum = b[row];
    for (std::size_t k = row + 1; k < N; ++k) sum -= a[row][k] * x[k];
    x[row] = sum / a[row][row];
  }
  return x;
}

}  // namespace qk
