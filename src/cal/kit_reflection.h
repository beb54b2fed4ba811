// SPDX-License-Identifier: MIT
// What the standards of a kit reflect at the port, by the same model as a calibration uses.
#pragma once

#include "cal/kit_tables.h"
#include "core/session.h"

namespace qk {

struct KitReflections {
  Complex Open, Short, Load;
};

// At f hertz, system impedance zo in ohms; load is that of the kit. All three stand behind the
// kit's offset.
KitReflections ReflectionsOf(const CalKit& kit, LoadTable& load, double f, double zo);

}  // namespace qk
