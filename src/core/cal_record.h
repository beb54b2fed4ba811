// SPDX-License-Identifier: MIT
// When and under which conditions the calibration in force was made. Session files have a fixed
// form without room for this; files/cal_info keeps it in a file beside them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace qk {

struct CalRecord {
  std::optional<std::int64_t> MadeUtc;  // seconds since 1970-01-01T00:00:00Z
  std::optional<float> DegC;            // receiver temperature then, degrees Celsius
  std::string Kit1, Kit2;               // names of the kits

  bool operator==(const CalRecord&) const = default;
};

}  // namespace qk
