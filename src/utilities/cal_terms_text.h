// SPDX-License-Identifier: MIT
// The active calibration terms as a text table, for other programs.
#pragma once

#include <string>

#include "core/session.h"

namespace qk {

// A key, a header, then one line of 24 values per point, in the order of the header; each line ends
// with CR LF, each value has blanks around it.
std::string CalTermsText(const ErrorTerms& terms, int numPoints);

}  // namespace qk
