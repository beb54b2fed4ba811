// SPDX-License-Identifier: MIT
// Interprets the program's prompts to connect something.
#pragma once

#include <optional>
#include <string_view>

#include "sim/connection.h"

namespace qk::sim {

// True if the prompt asks for the device under test ("Connect DUT").
bool NamesDevice(std::string_view text);

// The connection named in a prompt of a calibration, of the power tests or of the diagnostics, with
// its offsets in mm; empty if it names nothing that can be connected. A prompt for one port leaves
// the standard at the other port in place. now is the previous connection, device the device under
// test.
std::optional<Connection> ConnectionOfPrompt(std::string_view text, const Connection& now,
                                             const Connection& device,
                                             const DevicePtr& throughStandard);

}  // namespace qk::sim
