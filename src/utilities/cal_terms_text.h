// SPDX-License-Identifier: MIT
// The calibration terms in force as a text table, for other programs.
#pragma once

#include <string>

#include "core/session.h"

namespace qk {

// A key, a header, then a line of 24 values for each point, in the order of the header; CR LF ends
// each line, blanks stand around each value.
std::string CalTermsText(const ErrorTerms& terms, int numPoints);

}  // namespace qk
