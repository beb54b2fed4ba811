// SPDX-License-Identifier: MIT
// The per-point arrays of a calibration, listed once by name. Code that handles all error terms
// (files, interpolation) iterates over CalArrays(); the console looks up one array by its name.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "core/session.h"

namespace qk {

// One of the eighteen error term arrays. A reverse array has the name of its forward array plus
// "'".
struct CalArray {
  std::string_view Name;
  PortTerms ErrorTerms::*Port = nullptr;  // with OfPort: an array of one drive direction
  ComplexArray PortTerms::*OfPort = nullptr;
  ComplexArray ErrorTerms::*Own = nullptr;  // an array that is a direct member of ErrorTerms

  // Terms is ErrorTerms or const ErrorTerms.
  template <class Terms>
  auto& In(Terms& terms) const {
    return Own != nullptr ? terms.*Own : terms.*Port.*OfPort;
  }
};

// In the order of the saved terms in a session file: ED, ERT, ES, EX, ETT, the same five in
// reverse, EL, EL', then the isolation arrays, forward and reverse alternating.
std::span<const CalArray> CalArrays();

// The array with this name: an error term, or one of the ten raw ratio arrays of the standards
// ("CalOpen1"). nullptr if there is none.
const ComplexArray* FindCalArray(const Session& session, std::string_view name);

// True if the active calibration corrects nothing: a twelve-term calibration as calibrated, with
// tracking 1 and all other terms 0 at every point.
bool TermsAreIdeal(const Session& session);
// CalStatusText of the active calibration; "Ideal Terms" if no standard was measured.
std::string CalInForceText(const Session& session);

}  // namespace qk
