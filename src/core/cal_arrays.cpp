// SPDX-License-Identifier: MIT
#include "core/cal_arrays.h"

#include <algorithm>
#include <array>

namespace qk {

namespace {
constexpr CalArray Forward(std::string_view name, ComplexArray PortTerms::*term) {
  return {.Name = name, .Port = &ErrorTerms::Forward, .OfPort = term};
}
constexpr CalArray Reverse(std::string_view name, ComplexArray PortTerms::*term) {
  return {.Name = name, .Port = &ErrorTerms::Reverse, .OfPort = term};
}
constexpr CalArray Isolation(std::string_view name, ComplexArray ErrorTerms::*term) {
  return {.Name = name, .Own = term};
}

constexpr std::array kTerms = {
    Forward("ED", &PortTerms::ED),
    Forward("ERT", &PortTerms::ERT),
    Forward("ES", &PortTerms::ES),
    Forward("EX", &PortTerms::EX),
    Forward("ETT", &PortTerms::ETT),
    Reverse("ED'", &PortTerms::ED),
    Reverse("ERT'", &PortTerms::ERT),
    Reverse("ES'", &PortTerms::ES),
    Reverse("EX'", &PortTerms::EX),
    Reverse("ETT'", &PortTerms::ETT),
    Forward("EL", &PortTerms::EL),
    Reverse("EL'", &PortTerms::EL),
    Isolation("IsoFwd0", &ErrorTerms::IsoFwd0),
    Isolation("IsoRev0", &ErrorTerms::IsoRev0),
    Isolation("IsoFwd1", &ErrorTerms::IsoFwd1),
    Isolation("IsoRev1", &ErrorTerms::IsoRev1),
    Isolation("IsoFwd2", &ErrorTerms::IsoFwd2),
    Isolation("IsoRev2", &ErrorTerms::IsoRev2),
};

struct StandardArray {
  std::string_view Name;
  ComplexArray StandardsMeasured::*Array;
};
constexpr std::array<StandardArray, 10> kStandards{
    {{"CalLoad1", &StandardsMeasured::CalLoad1},
     {"CalShort1", &StandardsMeasured::CalShort1},
     {"CalOpen1", &StandardsMeasured::CalOpen1},
     {"CalLoad2", &StandardsMeasured::CalLoad2},
     {"CalShort2", &StandardsMeasured::CalShort2},
     {"CalOpen2", &StandardsMeasured::CalOpen2},
     {"CalThruRefl1", &StandardsMeasured::CalThruRefl1},
     {"CalThruRefl2", &StandardsMeasured::CalThruRefl2},
     {"CalDutRefl1", &StandardsMeasured::CalDutRefl1},
     {"CalDutRefl2", &StandardsMeasured::CalDutRefl2}}};
}  // namespace

std::span<const CalArray> CalArrays() {
  return kTerms;
}

const ComplexArray* FindCalArray(const Session& session, std::string_view name) {
  for (const CalArray& row : kTerms)
    if (row.Name == name) return &row.In(session.Terms);
  for (const StandardArray& row : kStandards)
    if (row.Name == name) return &(session.Standards.*row.Array);
  return nullptr;
}

bool TermsAreIdeal(const Session& session) {
  if (!session.Cal.Cal12Term) return false;
  const int count = std::min<int>(session.Plan.SavedPlan.NumPoints, kMaxPoints);
  for (const CalArray& array : CalArrays()) {
    const bool tracking = array.OfPort == &PortTerms::ERT || array.OfPort == &PortTerms::ETT;
    const Complex ideal{tracking ? 1.0 : 0.0, 0};
    for (int i = 0; i < count; ++i)
      if (!(array.In(session.SavedTerms)[i] == ideal)) return false;
  }
  return count > 0;
}

std::string CalInForceText(const Session& session) {
  return TermsAreIdeal(session) ? "Ideal Terms" : CalStatusText(session.Cal);
}

}  // namespace qk
