// SPDX-License-Identifier: MIT
// Rotation of a complex value by a delay: for reference planes and the offsets of calibration kits.
#pragma once

#include "numeric/complex.h"

namespace qk {

// Rotates z by -360 * frequencyHz * delaySeconds degrees: a positive delay subtracts phase, like a
// longer path. The magnitude is kept. The phase uses the 32 bits of PhaseDeg, and the result is
// rebuilt by quadrant with 0.01745329 for pi / 180. Intentional: because of these two, a rotation
// by 0 equals z only to about 1e-7 of the magnitude.
Complex Rotate(Complex z, double delaySeconds, double frequencyHz);

}  // namespace qk
