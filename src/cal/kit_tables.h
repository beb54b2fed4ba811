// SPDX-License-Identifier: MIT
// The tabulated standards of a kit at any frequency: the load's reflection and the through
// standard's S-parameters, by cubic spline over the kit's 101 rows.
#pragma once

#include <array>

#include "core/session.h"
#include "numeric/spline.h"

namespace qk {

// The load: from its table, or a perfect 0 without one.
class LoadTable {
 public:
  explicit LoadTable(const CalKit& kit);
  Complex At(double f);
  // No lookup so far was between two equal frequencies.
  bool Good() const { return !re_.DataError() && !im_.DataError(); }

 private:
  CSplineObject re_, im_;
};

struct ThruStandard {
  Complex T11, T21, T12, T22;
};

// The through standard: from its table, or all 0 without one.
class ThruTable {
 public:
  explicit ThruTable(const CalKit& kit);
  ThruStandard At(double f);
  bool Good() const;

 private:
  std::array<CSplineObject, 8> rows_;  // re and im of T11, T21, T12, T22
};

}  // namespace qk
