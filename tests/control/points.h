// SPDX-License-Identifier: MIT
// The default number of points in tests of the control loop.
#pragma once

namespace qk::test {

inline constexpr int kPoints = 51;

}  // namespace qk::test
