// SPDX-License-Identifier: MIT
// The reflections of a kit's standards at the port, by the same model as a calibration uses.
#pragma once

#include "cal/kit_tables.h"
#include "core/session.h"

namespace qk {

struct KitReflections {
  Complex Open, Short, Load;
};

// At f hertz with system impedance zo in ohms; load is the load of the kit. All three are behind
// the kit's offset.
KitReflections ReflectionsOf(const CalKit& kit, LoadTable& load, double f, double zo);

}  // namespace qk
