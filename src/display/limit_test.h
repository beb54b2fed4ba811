// The limit test at the end of a sweep, its alarm, and the mark at a failing point.
#pragma once

#include <span>

#include "core/host.h"
#include "core/session.h"
#include "display/canvas.h"

namespace qk {

// Tests each channel with limits that shows one of the measured parameters, Smith charts left out,
// when limits are shown and the alarm is on. A value equal to its limit passes; one that is no
// number fails. A failure beeps once, starts the alarm (Timer3) and is told in panel 3; a test that
// everything passes ends all that.
void LimitTest(Session& session, Host& host, std::span<const Parameter> measured);

// No channel has failed, the alarm is off, panel 3 tells the calibration.
void ClearLimitFailure(Session& session, Host& host);

// A red curl on the pixel of the failing point, in the font in force.
void DrawFailMark(Canvas& canvas, CanvasPoint at);

}  // namespace qk
