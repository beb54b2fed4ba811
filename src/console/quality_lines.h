// SPDX-License-Identifier: MIT
// The replies of "data hints", "data check" and "data statistics": how far to trust a number.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"
#include "quality/quality_state.h"

namespace qk {

// hints: "NAME TEXT" a line, the worst first. check TERM: "INDEX FREQUENCY SIZE" at each point
// where the term is known. statistics PARAMETER: "INDEX RE IM S". uncertainty PARAMETER: "INDEX
// FREQUENCY U", linear, coverage 2. INDEX from 0. Nothing when the words ask for something else.
std::optional<Result<std::vector<std::string>>> QualityLines(
    const QualityState& quality, const Session& session, std::span<const std::string_view> words);

}  // namespace qk
