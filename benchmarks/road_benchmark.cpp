// The road of one point in 12-term mode: from its 36 bytes to four channels' plotted values, plain
// and with everything switched on that can be. share_of_wire compares it with the 3125 microseconds
// that the wire needs for the 36 bytes.

#include <benchmark/benchmark.h>

#include <array>
#include <memory>

#include "benchmarks/fixtures.h"
#include "cal/correction.h"
#include "display/graphs.h"
#include "sweep/reduction.h"
#include "tests/support/blank_surface.h"
#include "trace/de_embed.h"
#include "trace/formatting.h"
#include "trace/reference_plane.h"
#include "trace/zo.h"

namespace qk::benchmarks {
namespace {

constexpr double kWireSecondsPerPoint = 36.0 / 11520;
constexpr std::array kOrder{Parameter::S21, Parameter::S12, Parameter::S11, Parameter::S22};

enum class Extras { None, All };

// Planes, two networks, a system impedance.
void SwitchOn(Session& session) {
  PlaneState& planes = session.Planes;
  planes.PlaneS11 = planes.PlaneS21 = planes.PlaneS12 = planes.PlaneS22 = 0.1f;
  planes.DelayS11 = planes.DelayS21 = planes.DelayS12 = planes.DelayS22 = 0.33e-9f;
  for (const int port : {1, 2}) {
    Network& network = session.Networks.OfPort(port);
    network.S11.Fill({0.1, 0.05});
    network.S21.Fill({0.7, -0.3});
    network.S12.Fill({0.7, -0.3});
    network.S22.Fill({0.05, 0.1});
  }
  session.Networks.Port1NetOn = session.Networks.Port2NetOn = true;
  session.Impedance.SystemZo = 75;
}

void StoreRaw(Session& session, int k, const RawPoint& raw) {
  session.Data.RawS11.Set(k, raw.S11);
  session.Data.RawS21.Set(k, raw.S21);
  session.Data.RawS12.Set(k, raw.S12);
  session.Data.RawS22.Set(k, raw.S22);
}

void RoadOfAPoint(benchmark::State& state, Extras extras) {
  constexpr int kPoints = 401;
  const auto session = MakeMeasuringSession(kPoints);
  if (extras == Extras::All) SwitchOn(*session);
  test::BlankSurface surface;
  Graphs graphs(*session, surface);
  graphs.RedrawAll(true);
  std::array<std::uint8_t, 36> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<std::uint8_t>(i % 3 == 0 ? 0 : 90 + 5 * i);

  int k = 0;
  for (auto _ : state) {
    StoreRaw(*session, k, ReducePoint(SweepMode::All, bytes.data(), session->Receiver, 1));
    Correct12TermPoint(*session, k);
    for (const Parameter parameter : kOrder) {
      ComplexArray& array = ArrayOf(session->Data, parameter);
      array.Set(k, ApplyReferencePlane(*session, array[k], k + 1, parameter));
    }
    if (extras == Extras::All) {
      DeEmbedPointAll(*session, k);
      ConvertPointZo(*session, k, kOrder);
    }
    for (const Parameter parameter : kOrder)
      DispatchPoint(*session, graphs, ArrayOf(session->Data, parameter)[k], k + 1, parameter);
    if (++k == kPoints) k = 0;
  }
  benchmark::DoNotOptimize(session->Channel(1).Value[1]);
  state.counters["share_of_wire"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * kWireSecondsPerPoint,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK_CAPTURE(RoadOfAPoint, plain, Extras::None);
BENCHMARK_CAPTURE(RoadOfAPoint, with_everything, Extras::All);

}  // namespace
}  // namespace qk::benchmarks
