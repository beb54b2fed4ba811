// SPDX-License-Identifier: MIT
// Compares two sessions; the result is text for people and for further comparison by tools.
#pragma once

#include <string>
#include <vector>

#include "core/session.h"
#include "files/provenance.h"

namespace qk {

// Every setting in a session file, by name and in words, in the order of the file.
std::vector<Fact> SessionFacts(const Session& session);

// The differences, after "--- NAME" and "+++ NAME" of the two sessions. For a setting: its name,
// then one line "- VALUE" of the first and one line "+ VALUE" of the second. For an error term, a
// stored trace or the limits of a channel: the largest difference and its position. "No
// differences." if there are none. Lines end with LF.
std::string CompareSessions(const Session& first, const std::string& firstName,
                            const Session& second, const std::string& secondName);

}  // namespace qk
