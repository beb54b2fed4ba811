// SPDX-License-Identifier: MIT
// "Apply Cal": turns measured standards into an active calibration, and removes it again.
#pragma once

#include "core/host.h"
#include "core/session.h"

namespace qk {

// The kinds offered by the calibration window.
enum class CalChoice { S11, S21, S11S21, Insertable, NonInsertable };

// Applies a calibration to the session, once the standards that the choice requires have been
// measured: computes the terms (this consumes the measurements), sets the kind and its flags,
// panels 3 and 4, the time and temperature, no reference planes, the level, and the base for later
// interpolation. The caller does the checks before it, the captions, the redraw and the log line.
// isoDone: the isolation step was done; only S21 works without it. If a kit table has equal
// frequencies where they are needed, this is reported once: "Cubic Spline Data Error", titled "CS
// Computation".
void ApplyCalibration(Session& session, Host& host, CalChoice choice, bool isoDone);

// Activates the session's error terms, from any source, as a calibration of this kind: flags,
// panels 3 and 4, no reference planes, the level, and the base for later interpolation.
void PutTermsInForce(Session& session, Host& host, SweepMode mode);

// Deactivates the calibration; panel 3 "UnCal". Intentional: CalDataReady is kept.
void DropCal(Session& session, Windows& windows);

}  // namespace qk
