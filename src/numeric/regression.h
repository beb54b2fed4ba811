// SPDX-License-Identifier: MIT
// Least-squares polynomials of degree 0 to 4, from running sums: pairs are added one by one and
// never stored.
#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace qk {

// A degree that there is not. what() is the whole text.
class RegressionError : public std::runtime_error {
 public:
  explicit RegressionError(std::int32_t value);
  int Number = 6000;
  std::string Source = "RegressionObject";
};

class RegressionObject {
 public:
  static constexpr std::int32_t kMaxDegree = 4;

  // Forgets all pairs; the degree stays.
  void init();
  std::int32_t Degree() const { return degree_; }
  // Throws RegressionError, and changes nothing, outside 0 to 4; forgets all pairs otherwise. To
  // be set before pairs are added, since only powers up to twice the degree are summed.
  void SetDegree(std::int32_t value);

  void XYAdd(double x, double y);
  double XYCount() const { return sum_x_[0]; }
  // The coefficient of x^k, k from 0; 0 beyond the degree in force, which is one less than the
  // number of pairs where these are too few.
  double Coeff(int k);
  // The fitted polynomial at x; 0 without pairs.
  double RegVal(double x);

 private:
  void Compute();
  void BuildEquations(int d);
  bool Solve(int d);

  std::int32_t degree_ = 2;
  bool calculated_ = false;
  int in_force_ = -1;  // working degree of the last solve
  std::array<double, 9> sum_x_{};
  std::array<double, 5> sum_yx_{};
  std::array<std::array<double, 5>, 6> m_{};  // column, row; augmented
  std::array<double, 5> coeff_{};
};

}  // namespace qk
