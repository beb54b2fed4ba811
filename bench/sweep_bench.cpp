// Sweeps on the paced simulated instrument, in real time: sweeps a second over what the wire
// allows (bytes of a sweep at 11520 bytes a second), for each mode and size.

#include <benchmark/benchmark.h>

#include <memory>

#include "bench/bench_host.h"
#include "bench/fixtures.h"
#include "control/controller.h"
#include "sim/simulated_port.h"
#include "sweep/frequency_plan.h"

namespace qk::bench {
namespace {

void SelectMode(CalState& cal, SweepMode mode) {
  cal.CalDataReady = cal.CalThruReady = true;
  cal.CalS11 = mode == SweepMode::S11;
  cal.CalS21 = mode == SweepMode::S21;
  cal.CalS11S21 = mode == SweepMode::S11S21;
  cal.Cal12Term = mode == SweepMode::All;
}

void PacedSweeps(benchmark::State& state) {
  const auto mode = static_cast<SweepMode>(state.range(0));
  const int points = static_cast<int>(state.range(1));
  // About two seconds of wire, two sweeps at least. The first sweep is not counted.
  const double wireSeconds = points * WireOf(mode).BytesPerPoint / 11520.0;
  const long sweeps = std::max(2L, static_cast<long>(2 / wireSeconds));

  const auto session = MakeMeasuringSession(points);
  SelectMode(session->Cal, mode);
  BenchHost host;
  BenchSurface surface;
  sim::Instrument instrument;
  sim::SimulatedPort port(instrument, sim::RealClock(), sim::Pace::Baud115200);
  Host h = host.host();
  InstrumentLink link(port, *session, h);
  Rig rig{*session, h, link};
  Graphs graphs(*session, surface);
  Controller controller(rig, graphs);
  session->Id.PortNumber = link.FindInstrument();
  session->Id.FirmwareVersion = "1.2";
  if (session->Id.PortNumber == 0 || !LoadFreqSweep(rig)) {
    state.SkipWithError("no instrument");
    return;
  }

  for (auto _ : state) {
    const long first = controller.SweepsEnded() + 1;
    std::chrono::steady_clock::time_point begin, end;
    host.OnEvents = [&] {
      const long ended = controller.SweepsEnded();
      if (ended < first) begin = std::chrono::steady_clock::now();
      if (ended <= first + sweeps - 1) end = std::chrono::steady_clock::now();
      if (ended >= first + sweeps) controller.StopMeasurement();
    };
    controller.StartMeasurement();
    const double seconds = std::chrono::duration<double>(end - begin).count();
    state.SetIterationTime(seconds);
    state.counters["of_the_wire"] = static_cast<double>(sweeps) * wireSeconds / seconds;
  }
}

void EveryModeAndSize(benchmark::internal::Benchmark* bench) {
  for (const SweepMode mode : {SweepMode::S11, SweepMode::S21, SweepMode::S11S21, SweepMode::All})
    for (const int points : {51, 101, 201, 401, 801, 1024})
      bench->Args({static_cast<int>(mode), points});
}
BENCHMARK(PacedSweeps)->Apply(EveryModeAndSize)->UseManualTime()->Iterations(1);

}  // namespace
}  // namespace qk::bench
