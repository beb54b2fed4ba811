// SPDX-License-Identifier: MIT
// System Zo conversion: converts the 50 ohm measurement to another system impedance. The
// calibration itself is always at 50 ohms.
#pragma once

#include <span>

#include "core/session.h"

namespace qk {

// Replaces a parameter that the sweep does not deliver.
inline constexpr Complex kNotMeasured{1e-6, 0};

// Converts point i (from 0) of the session's data from 50 ohms to SystemZo, in place. A parameter
// that is not delivered is taken as kNotMeasured; all four results are written.
void ConvertPointZo(Session& session, int i, std::span<const Parameter> delivered);

// Converts the current sweep and the stored traces of all channels from one impedance to another.
// When converting back to 50 ohms, all four parameters of the stored traces are converted too, so
// that the original traces are restored.
void ReconvertZo(Session& session, double fromOhms, double toOhms,
                 std::span<const Parameter> delivered);

}  // namespace qk
