// SPDX-License-Identifier: MIT
// The limit test at the end of a sweep, and its alarm.
#pragma once

#include <array>
#include <span>

#include "core/host.h"
#include "core/session.h"
#include "display/records.h"

namespace qk {

// Tests each channel that has limits and shows one of the measured parameters, except Smith charts,
// if limits are shown and the alarm is on. A value equal to its limit passes; NaN fails. A failure
// beeps once, starts the alarm (Timer3) and is shown in panel 3. If all channels pass, the alarm
// and the message end.
void LimitTest(Session& session, Host& host, std::span<const Parameter> measured);

// The margins of the channels to their limits after a sweep of those parameters; not tested where
// LimitTest tests nothing. Points without a limit have no margin; NaN has the worst possible
// margin.
std::array<LimitVerdict, kChannels> LimitVerdicts(const Session& session,
                                                  std::span<const Parameter> measured);

// Clears all failures, switches the alarm off, and shows the calibration in panel 3.
void ClearLimitFailure(Session& session, Host& host);

}  // namespace qk
