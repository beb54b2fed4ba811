// SPDX-License-Identifier: MIT
// Two sessions compared, as lines of text that a person reads and a tool can compare further.
#pragma once

#include <string>
#include <vector>

#include "core/session.h"
#include "files/provenance.h"

namespace qk {

// Every setting that a session file holds, named and in words, in the order of the file.
std::vector<Fact> SessionFacts(const Session& session);

// What differs, after "--- NAME" and "+++ NAME" of the two: for a setting its name, then "- VALUE"
// of the first and "+ VALUE" of the second, a line each; for an error term, a stored trace or the
// limits of a channel the largest difference and where it is. "No differences." when there are
// none. Lines end with LF.
std::string CompareSessions(const Session& first, const std::string& firstName,
                            const Session& second, const std::string& secondName);

}  // namespace qk
