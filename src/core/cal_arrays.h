// SPDX-License-Identifier: MIT
// The per-point arrays of a calibration by name, once: what walks the error terms (files and
// interpolation) walks their list, and who has a name (the console) finds the array here.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "core/session.h"

namespace qk {

// One of the eighteen arrays of error terms; a reverse twin bears its forward name and "'".
struct CalArray {
  std::string_view Name;
  PortTerms ErrorTerms::*Port = nullptr;  // with OfPort: an array of one drive direction
  ComplexArray PortTerms::*OfPort = nullptr;
  ComplexArray ErrorTerms::*Own = nullptr;  // an array that stands by itself

  // Terms: ErrorTerms, constant or not.
  template <class Terms>
  auto& In(Terms& terms) const {
    return Own != nullptr ? terms.*Own : terms.*Port.*OfPort;
  }
};

// In the order of a session file's saved terms: ED, ERT, ES, EX, ETT, their reverse twins, EL, EL',
// then the isolation's, forward and reverse in turn.
std::span<const CalArray> CalArrays();

// The array of this name, a term's or one of the ten of raw ratios of the standards ("CalOpen1");
// nullptr when there is none.
const ComplexArray* FindCalArray(const Session& session, std::string_view name);

// Whether the calibration in force corrects nothing: twelve terms as it was calibrated, tracking 1
// and all others 0 at every point.
bool TermsAreIdeal(const Session& session);
// CalStatusText of the calibration in force; "Ideal Terms" where no standard was measured.
std::string CalInForceText(const Session& session);

}  // namespace qk
