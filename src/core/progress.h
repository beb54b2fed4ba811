// SPDX-License-Identifier: MIT
// Progress reporting: a long routine calls a callback of its caller, so that it does not depend on
// a window.
#pragma once

#include <functional>

namespace qk {

// Called with a percentage, 0 to 100. An empty function is not called.
using Progress = std::function<void(int percent)>;

inline void ReportProgress(const Progress& progress, int percent) {
  if (progress) progress(percent);
}

}  // namespace qk
