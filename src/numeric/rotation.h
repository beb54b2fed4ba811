// SPDX-License-Identifier: MIT
// The phase turn of a complex value by a delay: reference planes and the offsets of calibration
// kits.
#pragma once

#include "numeric/complex.h"

namespace qk {

// z turned by -360 * frequencyHz * delaySeconds degrees: a positive delay subtracts phase, as a
// longer path does. The magnitude is kept; the phase passes through the 32 bits of PhaseDeg, and
// the result is rebuilt by quadrant with 0.01745329 for pi / 180. Meant: a turn by 0 agrees with z
// only to the accuracy of these two (about 1e-7 of the magnitude).
Complex Rotate(Complex z, double delaySeconds, double frequencyHz);

}  // namespace qk
