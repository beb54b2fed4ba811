// SPDX-License-Identifier: MIT
// Counts the allocations of the whole test program by operator new.
#pragma once

namespace qk::test {

struct Allocations {
  long Made = 0;    // in total
  long Living = 0;  // not yet freed
};
Allocations AllocationsSoFar();

}  // namespace qk::test
