// SPDX-License-Identifier: MIT
// When and under which conditions the active calibration was made. The fixed format of session
// files has no room for this; files/cal_info stores it in a separate file next to the session file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace qk {

struct CalRecord {
  std::optional<std::int64_t> MadeUtc;  // seconds since 1970-01-01T00:00:00Z
  std::optional<float> DegC;            // receiver temperature at that time, degrees Celsius
  std::string Kit1, Kit2;               // names of the kits

  bool operator==(const CalRecord&) const = default;
};

}  // namespace qk
