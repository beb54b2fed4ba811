// SPDX-License-Identifier: MIT
// Least-squares polynomials of degree 0 to 4, computed from running sums: pairs are added one by
// one and not stored.
#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace qk {

// Invalid degree. what() is the complete message.
class RegressionError : public std::runtime_error {
 public:
  explicit RegressionError(std::int32_t value);
  int Number = 6000;
  std::string Source = "RegressionObject";
};

class RegressionObject {
 public:
  static constexpr std::int32_t kMaxDegree = 4;

  // Discards all pairs; keeps the degree.
  void init();
  std::int32_t Degree() const { return degree_; }
  // Sets the degree and discards all pairs. Throws RegressionError outside 0 to 4, without a
  // change. Call it before adding pairs, because only powers up to twice the degree are summed.
  void SetDegree(std::int32_t value);

  void XYAdd(double x, double y);
  double XYCount() const { return sum_x_[0]; }
  // The coefficient of x^k, k from 0; 0 beyond the working degree. With too few pairs, the working
  // degree is the number of pairs minus one.
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
