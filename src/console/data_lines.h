// SPDX-License-Identifier: MIT
// The numbers behind the pictures, as reported by the text front panel: one line per point, with 17
// significant digits.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"
#include "core/session.h"

namespace qk {

// The lines of "data WORDS...", without the leading "= ".
Result<std::vector<std::string>> DataLines(const Session& session,
                                           std::span<const std::string_view> words);

}  // namespace qk
