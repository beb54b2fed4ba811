// SPDX-License-Identifier: MIT
// The road of one point in 12-term mode, from its 36 bytes to four channels' plotted values.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "benchmarks/fixtures.h"
#include "display/graphs.h"
#include "tests/support/blank_surface.h"

namespace qk::benchmarks {

inline constexpr int kRoadPoints = 401;

class Road {
 public:
  // Plain, or with planes, two networks and a system impedance.
  enum class Extras { None, All };
  explicit Road(Extras extras);

  // Point k, 0 to 400.
  void Carry(int k);
  // All four channels show the graph type, in its natural unit.
  void ShowEverywhere(GraphType type) {
    for (ChannelSettings& channel : session_->Channels) {
      channel.GraphType = type;
      channel.Units = RowOf(type).NaturalUnit.value_or(Unit::U);
    }
  }
  const Session& InSession() const { return *session_; }

 private:
  void StoreRaw(int k);

  Extras extras_;
  std::unique_ptr<Session> session_;
  test::BlankSurface surface_;
  Graphs graphs_{*session_, surface_};
  std::array<std::uint8_t, 36> bytes_{};
};

}  // namespace qk::benchmarks
