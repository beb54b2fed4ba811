// SPDX-License-Identifier: MIT
#include "cal/kit_reflection.h"

#include "cal/error_terms.h"
#include "numeric/rotation.h"

namespace qk {

KitReflections ReflectionsOf(const CalKit& kit, LoadTable& load, double f, double zo) {
  // The product in 32 bits, as in the calibration.
  const auto delay = static_cast<double>(2.0f * kit.KitDelay);
  const auto atThePort = [&](Complex z) { return Rotate(z, delay, f); };
  return {atThePort(OpenGamma(kit, f, zo)), atThePort({-1, 0}), atThePort(load.At(f))};
}

}  // namespace qk
