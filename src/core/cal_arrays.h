// The per-point arrays of a calibration by name, once: what walks all of them (files, the console,
// interpolation) walks these lists.
#pragma once

#include <span>
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

// One of the ten arrays of raw ratios of the standards.
struct StandardArray {
  std::string_view Name;
  ComplexArray StandardsMeasured::*Array;
};

// In the order of a session file's saved terms: ED, ERT, ES, EX, ETT, their reverse twins, EL, EL',
// then the isolation's, forward and reverse in turn.
std::span<const CalArray> CalArrays();
std::span<const StandardArray> StandardArrays();

// The array of this name, a term's or a standard's; nullptr when there is none.
const ComplexArray* FindCalArray(const Session& session, std::string_view name);

}  // namespace qk
