// SPDX-License-Identifier: MIT
// The road of one point in 12-term mode: from its 36 bytes to four channels' plotted values, plain
// and with everything switched on. share_of_wire compares it with the 3125 microseconds that the
// line needs for the 36 bytes.

#include <benchmark/benchmark.h>

#include <optional>

#include "benchmarks/road.h"

namespace qk::benchmarks {
namespace {

constexpr double kWireSecondsPerPoint = 36.0 / 11520;

void RoadOfAPoint(benchmark::State& state, Road::Extras extras,
                  std::optional<GraphType> type = {}) {
  Road road(extras);
  if (type) road.ShowEverywhere(*type);
  int k = 0;
  for (auto _ : state) {
    road.Carry(k);
    if (++k == kRoadPoints) k = 0;
  }
  benchmark::DoNotOptimize(road.InSession().Channel(1).Value[1]);
  state.counters["share_of_wire"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * kWireSecondsPerPoint,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK_CAPTURE(RoadOfAPoint, plain, Road::Extras::None);
BENCHMARK_CAPTURE(RoadOfAPoint, with_everything, Road::Extras::All);
BENCHMARK_CAPTURE(RoadOfAPoint, of_magnitude, Road::Extras::None, GraphType::ImpedanceMagnitude);
BENCHMARK_CAPTURE(RoadOfAPoint, of_resistance, Road::Extras::None, GraphType::Resistance);
BENCHMARK_CAPTURE(RoadOfAPoint, of_reactance, Road::Extras::None, GraphType::Reactance);
BENCHMARK_CAPTURE(RoadOfAPoint, of_inductance, Road::Extras::None, GraphType::Inductance);
BENCHMARK_CAPTURE(RoadOfAPoint, of_capacitance, Road::Extras::None, GraphType::Capacitance);
BENCHMARK_CAPTURE(RoadOfAPoint, of_quality, Road::Extras::None, GraphType::Quality);
BENCHMARK_CAPTURE(RoadOfAPoint, of_unwrapped_phase, Road::Extras::None, GraphType::UnwrappedPhase);

}  // namespace
}  // namespace qk::benchmarks
