// SPDX-License-Identifier: MIT
// The replies to "data hints", "data check" and "data statistics": the quality of the measurement.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"
#include "quality/quality_state.h"

namespace qk {

// hints: one "NAME TEXT" line each, the worst first. check TERM: "INDEX FREQUENCY SIZE" for each
// point where the term is known. statistics PARAMETER: "INDEX RE IM S". uncertainty PARAMETER:
// "INDEX FREQUENCY U", linear, coverage factor 2. INDEX counts from 0. Empty if the words request
// something else.
std::optional<Result<std::vector<std::string>>> QualityLines(
    const QualityState& quality, const Session& session, std::span<const std::string_view> words);

}  // namespace qk
