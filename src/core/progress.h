// SPDX-License-Identifier: MIT
// How a long routine tells its progress: to a callback of its caller's, so that no routine names a
// window.
#pragma once

#include <functional>

namespace qk {

// Takes a percentage, 0 to 100. An empty one is not called.
using Progress = std::function<void(int percent)>;

inline void TellProgress(const Progress& progress, int percent) {
  if (progress) progress(percent);
}

}  // namespace qk
