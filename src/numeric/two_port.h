// SPDX-License-Identifier: MIT
// Two-port matrices: S-parameters to impedances and back, for a change of the reference impedance,
// and to transfer parameters and back, for chains of two-ports. Textbook relations for equal, real
// reference impedances at both ports. Every quotient has the floor of ComplexDivide, so nothing
// here fails.
#pragma once

#include "numeric/complex.h"

namespace qk {

// The four parameters of a two-port: scattering, impedance (in ohms) or transfer.
struct TwoPort {
  Complex p11, p12, p21, p22;
};

// Impedances from S-parameters at zRef ohms.
TwoPort SToZ(double zRef, const TwoPort& s);
// S-parameters at zNew ohms from impedances.
TwoPort ZToS(double zNew, const TwoPort& z);
// S-parameters at zRef ohms as they are at zNew ohms.
TwoPort ConvertZo(double zRef, double zNew, const TwoPort& s);

// Transfer parameters, (b1, a1) = T (a2, b2): those of a chain are the product of its links', port
// 1 first. An S21 of 0 makes them large and nothing else.
TwoPort SToT(const TwoPort& s);
TwoPort TToS(const TwoPort& t);
// The inverse and the product of 2 by 2 matrices.
TwoPort InvertT(const TwoPort& t);
TwoPort MultiplyT(const TwoPort& a, const TwoPort& b);

}  // namespace qk
