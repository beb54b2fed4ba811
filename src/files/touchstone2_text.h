// SPDX-License-Identifier: MIT
// The S-parameters of the last sweep as a Touchstone file of version 2, in hertz, as real and
// imaginary part, with full precision:
//
//     ! Program: qk47-vna 0.2.0
//     ! ...
//     [Version] 2.0
//     # HZ S RI R 50
//     [Number of Ports] 2
//     [Two-Port Data Order] 21_12
//     [Number of Frequencies] 101
//     [Reference] 50 50
//     [Network Data]
//     3000000 0.0125 -0.25 0.99 -0.01 0.99 -0.01 0.0125 -0.25
//     [End]
#pragma once

#include <string>
#include <vector>

#include "core/result.h"
#include "files/measurement_text.h"
#include "files/provenance.h"

namespace qk {

// The complete file: all four parameters, or a one-port file of only S11 or S22; fails for any
// other choice. A comment that is not blank comes first. The reference is the system impedance.
Result<std::string> Touchstone2Text(Session& session, const MeasurementChoice& choice,
                                    const std::string& comment,
                                    const std::vector<Fact>& provenance);

}  // namespace qk
