// SPDX-License-Identifier: MIT
// The points of a sweep, where a test of the control loop does not ask for others.
#pragma once

namespace qk::test {

inline constexpr int kPoints = 51;

}  // namespace qk::test
