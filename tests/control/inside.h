// SPDX-License-Identifier: MIT
// Compares the state of the simulated instrument with the session.
#pragma once

#include <algorithm>
#include <memory>
#include <string>

#include "sim/instrument_state.h"
#include "support/link_fixture.h"
#include "sweep/frequency_plan.h"

namespace qk::test {

// Empty if averages, dwell, number of points and the record of each point (with its level code) are
// those of the session; otherwise the first difference.
inline std::string WhatIsWrongInside(sim::Instrument& instrument, const Session& session) {
  const sim::CommandInterpreter& inside = instrument.state().Commands;
  const auto differs = [](const std::string& what, int held, int wanted) {
    return what + " " + std::to_string(held) + " for " + std::to_string(wanted);
  };
  if (inside.Averages() != session.Averaging.Averages)
    return differs("averages", inside.Averages(), session.Averaging.Averages);
  if (inside.DwellOn() != session.Flags.DwellOn)
    return differs("dwell", inside.DwellOn(), session.Flags.DwellOn);
  if (inside.Points() != session.Plan.NumPoints)
    return differs("points", inside.Points(), session.Plan.NumPoints);
  static const std::unique_ptr<Session> wanted = MakeSession();  // a session is large
  wanted->Plan = session.Plan;
  wanted->Levels = session.Levels;
  for (int i = 0; i < session.Plan.NumPoints; ++i) {
    BuildPointRecord(*wanted, session.Plan.Frequency(i), i);
    const sim::Record record = inside.RecordOf(i);
    if (!std::equal(record.begin(), record.end(), wanted->FreqTable.begin() + 22 * i + 3))
      return "record of point " + std::to_string(i);
  }
  return "";
}

template <class Fixture>
std::string WhatIsWrongInside(Fixture& fixture) {
  return WhatIsWrongInside(fixture.instrument, *fixture.session);
}

}  // namespace qk::test
