// SPDX-License-Identifier: MIT
// System Zo conversion: the 50 ohm measurement in another system impedance. The calibration itself
// is always at 50 ohms.
#pragma once

#include <span>

#include "core/session.h"

namespace qk {

// What stands for a parameter that the sweep does not deliver.
inline constexpr Complex kNotMeasured{1e-6, 0};

// Point i (from 0) of the session's data, from 50 ohms to SystemZo, in place. A parameter that is
// not delivered counts as kNotMeasured; all four results are written.
void ConvertPointZo(Session& session, int i, std::span<const Parameter> delivered);

// The sweep as it stands and the stored traces of all channels, from one impedance to another. On
// the way back to 50 ohms the four parameters of the stored traces go back with them, so that the
// traces return as they were.
void ReconvertZo(Session& session, double fromOhms, double toOhms,
                 std::span<const Parameter> delivered);

}  // namespace qk
