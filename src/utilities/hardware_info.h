// SPDX-License-Identifier: MIT
// The identity fields of the EEPROM and the controller's firmware version, as one text block.
#pragma once

#include <optional>
#include <string>

#include "link/exchange.h"

namespace qk {

// Ten lines, CR LF each. Fields stand as stored, padded; bytes above 127 are shown as Latin-1.
// Nothing after the complaint.
[[nodiscard]] std::optional<std::string> ReadHardwareInfo(Rig& rig, const Complaint& complaint);

}  // namespace qk
