// SPDX-License-Identifier: MIT
// The limit test at the end of a sweep, and its alarm.
#pragma once

#include <span>

#include "core/host.h"
#include "core/session.h"

namespace qk {

// Tests each channel with limits that shows one of the measured parameters, Smith charts left out,
// when limits are shown and the alarm is on. A value equal to its limit passes; one that is no
// number fails. A failure beeps once, starts the alarm (Timer3) and is told in panel 3; a test that
// everything passes ends all that.
void LimitTest(Session& session, Host& host, std::span<const Parameter> measured);

// No channel has failed, the alarm is off, panel 3 tells the calibration.
void ClearLimitFailure(Session& session, Host& host);

}  // namespace qk
