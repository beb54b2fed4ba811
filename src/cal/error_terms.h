// SPDX-License-Identifier: MIT
// The mathematics of calibration: error terms from measured standards, for the five kinds.
// Per point and pure arithmetic on the session's arrays, in a fixed order of operations.
#pragma once

#include "core/session.h"

namespace qk {

// Where a kit's capacitance polynomial is raised to 1e-20 F: wherever it is below (the 12-term
// kinds), or only where it is exactly 0, negative values standing as they come (the one-port kind).
enum class CapacitanceFloor { Below, ZeroOnly };

// Ideal reflection of a kit's open at f (hertz): (-Zo + jX) / (Zo + jX), X = -1 / (w C), with the
// session's system impedance for Zo.
Complex OpenGamma(const CalKit& kit, double f, double systemZo,
                  CapacitanceFloor floor = CapacitanceFloor::Below);

// Each works in place on Terms and Standards, for the points of the plan; run once on a set of
// measurements. isoDone: the isolation step was done; without it EX is taken as 0. Those that read
// a kit's tables give false when a table had two equal frequencies where its value was needed (the
// terms are finite even so).
bool ComputeOnePortTerms(Session& session);
void ComputeResponseTerms(Session& session, bool isoDone);
void ComputeEnhancedTerms(Session& session, bool isoDone);  // after ComputeOnePortTerms
bool ComputeInsertableTerms(Session& session);
bool ComputeNonInsertableTerms(Session& session);

// The four coefficient arrays of device-dependent isolation to 0 at all points of the plan.
void ClearIsolationCoefficients(Session& session);

// The base of later interpolations: copies plan and terms of the calibration just applied.
void SaveCalForInterpolation(Session& session);
// Plan and terms back as they were calibrated.
void RestoreCal(Session& session);
// The saved terms, by cubic spline of real and imaginary parts, on the present plan's grid.
void InterpolateCal(Session& session);

}  // namespace qk
