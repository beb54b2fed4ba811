// Two-port matrices: S-parameters to impedances and back, for a change of the reference impedance.
// Textbook relations for equal, real reference impedances at both ports. Every quotient has the
// floor of ComplexDivide, so nothing here fails.
#pragma once

#include "numeric/complex.h"

namespace qk {

// The four parameters of a two-port, scattering or impedance (in ohms).
struct TwoPort {
  Complex p11, p12, p21, p22;
};

// Impedances from S-parameters at zRef ohms.
TwoPort SToZ(double zRef, const TwoPort& s);
// S-parameters at zNew ohms from impedances.
TwoPort ZToS(double zNew, const TwoPort& z);
// S-parameters at zRef ohms as they are at zNew ohms.
TwoPort ConvertZo(double zRef, double zNew, const TwoPort& s);

}  // namespace qk
