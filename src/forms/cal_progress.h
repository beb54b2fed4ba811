// SPDX-License-Identifier: MIT
// The progress bar of the calibration window. It shows every sweep of a standard, whichever window
// started it.
#pragma once

#include "core/host.h"
#include "core/progress.h"
#include "core/window_names.h"

namespace qk {

inline Progress Bar(Host& host) {
  return [&windows = host.windows](int percent) {
    windows.Progress(window::kCalibration, "ProgressBar1", percent);
  };
}

}  // namespace qk
