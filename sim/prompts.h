// SPDX-License-Identifier: MIT
// What the program's prompts ask the user to connect.
#pragma once

#include <optional>
#include <string_view>

#include "sim/connection.h"

namespace qk::sim {

// The prompt asks for the device under test itself ("Connect DUT").
bool NamesDevice(std::string_view text);

// The connection that a prompt of a calibration, of the power tests or of the diagnostics names,
// with the offsets in mm it tells; none when it names nothing that could be connected. A prompt for
// one port leaves the other port's standard where it is; now is what is connected before, device
// the device under test.
std::optional<Connection> ConnectionOfPrompt(std::string_view text, const Connection& now,
                                             const Connection& device,
                                             const DevicePtr& throughStandard);

}  // namespace qk::sim
