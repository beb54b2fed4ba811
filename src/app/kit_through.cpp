// SPDX-License-Identifier: MIT
#include "app/kit_through.h"

#include <cstddef>
#include <utility>

#include "sim/devices.h"
#include "sim/instrument_state.h"

namespace qk {

void ConnectThroughOf(const CalKit& kit, sim::Instrument& bench) {
  if (!kit.KitHasThru || bench.state().ThroughNamed) return;
  const auto& rows = kit.KitThruData;
  sim::TouchstoneData data;
  data.Ports = 2;
  for (std::size_t i = 0; i < rows[0].size(); ++i) {
    const auto hertz = static_cast<double>(rows[0][i]);
    if (!data.Hz.empty() && !(hertz > data.Hz.back())) return;
    const auto value = [&rows, i](std::size_t row) {
      return sim::Complex(static_cast<double>(rows[row][i]), static_cast<double>(rows[row + 1][i]));
    };
    data.Hz.push_back(hertz);
    data.Points.push_back({value(1), value(3), value(5), value(7)});
  }
  bench.state().ThroughStandard =
      sim::MakeMeasured(std::move(data), "through standard of kit " + kit.KitName);
}

void FollowPrompt(const Message& prompt, const Session& session, sim::Instrument& bench) {
  ConnectThroughOf(session.Kit1, bench);
  bench.FollowPrompt(prompt.Text);
}

}  // namespace qk
