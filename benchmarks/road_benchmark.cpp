// The road of one point in 12-term mode: from its 36 bytes to four channels' plotted values.
// share_of_wire compares it with the 3125 microseconds that the wire needs for the 36 bytes.

#include <benchmark/benchmark.h>

#include <array>
#include <memory>

#include "benchmarks/fixtures.h"
#include "benchmarks/idle_host.h"
#include "cal/correction.h"
#include "display/graphs.h"
#include "sweep/reduction.h"
#include "tests/support/blank_surface.h"
#include "trace/formatting.h"

namespace qk::benchmarks {
namespace {

constexpr double kWireSecondsPerPoint = 36.0 / 11520;

void StoreRaw(Session& session, int k, const RawPoint& raw) {
  session.Data.RawS11.Set(k, raw.S11);
  session.Data.RawS21.Set(k, raw.S21);
  session.Data.RawS12.Set(k, raw.S12);
  session.Data.RawS22.Set(k, raw.S22);
}

void RoadOfAPoint(benchmark::State& state) {
  constexpr int kPoints = 401;
  const auto session = MakeMeasuringSession(kPoints);
  test::BlankSurface surface;
  Graphs graphs(*session, surface);
  graphs.RedrawAll(true);
  std::array<std::uint8_t, 36> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<std::uint8_t>(i % 3 == 0 ? 0 : 90 + 5 * i);
  constexpr Parameter kOrder[] = {Parameter::S21, Parameter::S12, Parameter::S11, Parameter::S22};

  int k = 0;
  for (auto _ : state) {
    StoreRaw(*session, k, ReducePoint(SweepMode::All, bytes.data(), session->Receiver, 1));
    Correct12TermPoint(*session, k);
    for (const Parameter parameter : kOrder) {
      const Complex z =
          ApplyReferencePlane(*session, ArrayOf(session->Data, parameter)[k], k + 1, parameter);
      DispatchPoint(*session, graphs, z, k + 1, parameter);
    }
    if (++k == kPoints) k = 0;
  }
  benchmark::DoNotOptimize(session->Channel(1).Value[1]);
  state.counters["share_of_wire"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * kWireSecondsPerPoint,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(RoadOfAPoint);

}  // namespace
}  // namespace qk::benchmarks
