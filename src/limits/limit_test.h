// SPDX-License-Identifier: MIT
// The limit test at the end of a sweep, and its alarm.
#pragma once

#include <array>
#include <span>

#include "core/host.h"
#include "core/session.h"
#include "display/records.h"

namespace qk {

// Tests each channel with limits that shows one of the measured parameters, Smith charts left out,
// when limits are shown and the alarm is on. A value equal to its limit passes; one that is no
// number fails. A failure beeps once, starts the alarm (Timer3) and is shown in panel 3; a test
// that everything passes ends all that.
void LimitTest(Session& session, Host& host, std::span<const Parameter> measured);

// How far the channels are from their limits after a sweep that has measured those parameters; not
// tested where LimitTest tests nothing. Points without any limit have no margin; a value that is no
// number has the worst there is.
std::array<LimitVerdict, kChannels> LimitVerdicts(const Session& session,
                                                  std::span<const Parameter> measured);

// No channel has failed, the alarm is off, panel 3 shows the calibration.
void ClearLimitFailure(Session& session, Host& host);

}  // namespace qk
