// SPDX-License-Identifier: MIT
// The origin of measured values, for the header of output files and for reports.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/session.h"

namespace qk {

// A name and its value: "Averages" and "16".
struct Fact {
  std::string Name, Value;
};

// Program and version, instrument, times of measuring and of writing, sweep, level, averages,
// smoothing, calibration with its time, temperature, kits and whether it is interpolated, reference
// planes, de-embedded networks, and system impedance, in this order; then whether the line was
// disturbed. unixSeconds: the time of writing in seconds since 1970-01-01T00:00:00Z.
std::vector<Fact> ProvenanceOf(const Session& session, std::int64_t unixSeconds);

// One line per fact: lead, "Name: Value", end. A value never contains a line end.
std::string FactLines(const std::vector<Fact>& facts, std::string_view lead, std::string_view end);

}  // namespace qk
