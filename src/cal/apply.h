// SPDX-License-Identifier: MIT
// "Apply Cal": from measured standards to a calibrated session, and the way back.
#pragma once

#include "core/host.h"
#include "core/session.h"

namespace qk {

// What the calibration window offers.
enum class CalChoice { S11, S21, S11S21, Insertable, NonInsertable };

// All that applying a calibration does to the session, when the standards that the choice needs
// have been measured: computes the terms (which uses the measurements up), sets the kind and its
// flags, panels 3 and 4, when and how warm it was made, no reference planes, the level, and the
// base of later interpolations. The checks before it, the captions, the redraw and the log line are
// the caller's. isoDone: the isolation step was done; only S21 goes without. A kit table with equal
// frequencies where they are needed is reported once: "Cubic Spline Data Error", titled "CS
// Computation".
void ApplyCalibration(Session& session, Host& host, CalChoice choice, bool isoDone);

// The session's error terms, whoever made them, as the calibration of this kind: flags, panels 3
// and 4, no reference planes, the level, and the base of later interpolations.
void PutTermsInForce(Session& session, Host& host, SweepMode mode);

// No kind in force any more; panel 3 "UnCal". Intended: CalDataReady stays.
void DropCal(Session& session, Windows& windows);

}  // namespace qk
