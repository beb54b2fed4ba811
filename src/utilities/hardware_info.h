// SPDX-License-Identifier: MIT
// The identity fields of the EEPROM and the controller's firmware version, as one text block.
#pragma once

#include <optional>
#include <string>

#include "link/exchange.h"

namespace qk {

// Ten lines, each ended by CR LF. Fields are shown as stored, padded; bytes above 127 as Latin-1.
// Empty after a failure, which has been shown.
[[nodiscard]] std::optional<std::string> ReadHardwareInfo(Rig& rig, const Complaint& complaint);

}  // namespace qk
