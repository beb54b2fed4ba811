// SPDX-License-Identifier: MIT
// Graphs with remarks, and limits tested with a given outcome.
#pragma once

#include <array>

#include "display/remarks.h"
#include "graphs_fixture.h"

namespace qk::test {

class Remarks : public GraphsFixture {
 protected:
  Remarks() {
    session->Cal.CalS11 = true;
    graphs.View = {.AxisNumbers = false, .Remarks = true};
  }
  bool Drawn(const char* text) { return FindText(surface.Overlay(), text) != nullptr; }
  // Limits of -10 to 10 on channel 1, tested with this outcome.
  void Tested(const LimitVerdict& verdict) {
    Channel(1).UpperLimit.fill(10);
    Channel(1).LowerLimit.fill(-10);
    Channel(1).LimitsOn = session->Display.ShowLimits = session->Display.LimitAlarmOn = true;
    std::array<LimitVerdict, 4> verdicts{};
    verdicts[0] = verdict;
    Sweep(1, 0);
    graphs.TakeVerdicts(verdicts);
  }
};

}  // namespace qk::test
