// SPDX-License-Identifier: MIT
// One complex value per sweep point, as stored in the session.
#pragma once

#include <array>
#include <cstddef>

#include "core/instrument_limits.h"
#include "numeric/complex.h"

namespace qk {

// Real and imaginary parts per point. Index 0 is the first point.
struct ComplexArray {
  std::array<double, kMaxPoints> re{};
  std::array<double, kMaxPoints> im{};

  Complex operator[](int i) const {
    return {re[static_cast<std::size_t>(i)], im[static_cast<std::size_t>(i)]};
  }
  void Set(int i, Complex z) {
    re[static_cast<std::size_t>(i)] = z.re;
    im[static_cast<std::size_t>(i)] = z.im;
  }
  void Fill(Complex z) {
    re.fill(z.re);
    im.fill(z.im);
  }
};

}  // namespace qk
