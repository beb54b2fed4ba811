// SPDX-License-Identifier: MIT
// The median of values.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

namespace qk {

// The larger middle value for an even number. At least one value; reorders them.
template <class Value>
Value UpperMedian(std::span<Value> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// The mean of the two middle values for an even number. At least one value; reorders them.
inline double Median(std::span<double> values) {
  const double upper = UpperMedian(values);
  if (values.size() % 2 == 1) return upper;
  return (upper + *std::ranges::max_element(values.first(values.size() / 2))) / 2;
}

}  // namespace qk
