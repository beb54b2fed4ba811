// SPDX-License-Identifier: MIT
// The progress bar of the calibration window, which shows every sweep of a standard, from whichever
// window it was asked for.
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
