// SPDX-License-Identifier: MIT
// The mathematics of calibration: error terms from measured standards, for the five kinds. Pure
// arithmetic per point on the session's arrays, in a fixed order of operations.
#pragma once

#include "core/session.h"

namespace qk {

// When a kit's capacitance polynomial is raised to 1e-20 F: whenever it is less (the 12-term
// kinds), or only when it is exactly 0, keeping negative values (the one-port kind).
enum class CapacitanceFloor { Below, ZeroOnly };

// Ideal reflection of a kit's open at f (hertz): (-Zo + jX) / (Zo + jX), X = -1 / (w C), where Zo
// is the session's system impedance.
Complex OpenGamma(const CalKit& kit, double f, double systemZo,
                  CapacitanceFloor floor = CapacitanceFloor::Below);

// Each works in place on Terms and Standards for the points of the plan; call it once per set of
// measurements. isoDone: the isolation step was done; otherwise EX is 0. Functions that read a
// kit's tables return false if a table had two equal frequencies where its value was needed (the
// terms are still finite).
bool ComputeOnePortTerms(Session& session);
void ComputeResponseTerms(Session& session, bool isoDone);
void ComputeEnhancedTerms(Session& session, bool isoDone);  // after ComputeOnePortTerms
bool ComputeInsertableTerms(Session& session);
bool ComputeNonInsertableTerms(Session& session);

// Sets the four coefficient arrays of device-dependent isolation to 0 at all points of the plan.
void ClearIsolationCoefficients(Session& session);

// Copies plan and terms of the calibration just applied as the base for later interpolation.
void SaveCalForInterpolation(Session& session);
// Restores plan and terms as calibrated.
void RestoreCal(Session& session);
// Interpolates the saved terms to the current plan's grid, by cubic spline of real and imaginary
// parts.
void InterpolateCal(Session& session);

}  // namespace qk
