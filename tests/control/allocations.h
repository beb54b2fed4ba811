// SPDX-License-Identifier: MIT
// What the whole test program has allocated with operator new, counted since its start.
#pragma once

namespace qk::test {

struct Allocations {
  long Made = 0;    // ever
  long Living = 0;  // not given back yet
};
Allocations AllocationsSoFar();

}  // namespace qk::test
