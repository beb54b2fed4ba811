// SPDX-License-Identifier: MIT
// Two-port matrices: S-parameters to impedances and back, for a change of the reference impedance,
// and to transfer parameters and back, for cascades of two-ports. Textbook relations for equal,
// real reference impedances at both ports. Every division uses ComplexDivide, so nothing here
// fails.
#pragma once

#include "numeric/complex.h"

namespace qk {

// The four parameters of a two-port: scattering, impedance (in ohms) or transfer.
struct TwoPort {
  Complex p11, p12, p21, p22;
};

// S-parameters at zRef ohms to impedances.
TwoPort SToZ(double zRef, const TwoPort& s);
// Impedances to S-parameters at zNew ohms.
TwoPort ZToS(double zNew, const TwoPort& z);
// S-parameters converted from a reference impedance of zRef ohms to zNew ohms.
TwoPort ConvertZo(double zRef, double zNew, const TwoPort& s);

// Transfer parameters, (b1, a1) = T (a2, b2): the T of a cascade is the product of its stages, port
// 1 first. An S21 of 0 makes them large but finite.
TwoPort SToT(const TwoPort& s);
TwoPort TToS(const TwoPort& t);
// The inverse and the product of 2 by 2 matrices.
TwoPort InvertT(const TwoPort& t);
TwoPort MultiplyT(const TwoPort& a, const TwoPort& b);

}  // namespace qk
