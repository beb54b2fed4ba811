// SPDX-License-Identifier: MIT
// Sweeps on the paced simulated instrument, in real time: sweeps a second over what the wire
// allows (bytes of a sweep at 11520 bytes a second), for each mode and size, with a channel in the
// time domain, and with the picture drawn.

#include <benchmark/benchmark.h>

#include <ctime>
#include <memory>

#include "benchmarks/all_additions.h"
#include "benchmarks/fixtures.h"
#include "benchmarks/idle_host.h"
#include "benchmarks/offscreen.h"
#include "control/controller.h"
#include "sim/simulated_port.h"
#include "sweep/frequency_plan.h"
#include "tests/support/blank_surface.h"
#include "ui/qt_canvas.h"

namespace qk::benchmarks {
namespace {

void SelectMode(CalState& cal, SweepMode mode) {
  cal.CalDataReady = cal.CalThruReady = true;
  cal.CalS11 = mode == SweepMode::S11;
  cal.CalS21 = mode == SweepMode::S21;
  cal.CalS11S21 = mode == SweepMode::S11S21;
  cal.Cal12Term = mode == SweepMode::All;
}

// The program's loop over an instrument on the wire.
struct PacedLoop {
  PacedLoop(SweepMode mode, int points, PictureSurface& surface)
      : session(MakeMeasuringSession(points)),
        wireSeconds(points * WireOf(mode).BytesPerPoint / 11520.0),
        graphs(*session, surface) {
    SelectMode(session->Cal, mode);
    session->Id.PortNumber = link.FindInstrument();
    session->Id.FirmwareVersion = "1.2";
    ready = session->Id.PortNumber != 0 && LoadFreqSweep(rig);
  }

  struct Run {
    double Seconds, OfTheWire, OfACore;
  };
  // About two seconds of wire, two sweeps at least. The first sweep is not counted.
  Run Measure(const std::function<void()>& onEvents = [] {}) {
    const long sweeps = std::max(2L, static_cast<long>(2 / wireSeconds));
    const long first = controller.SweepsEnded() + 1;
    std::chrono::steady_clock::time_point begin, end;
    std::clock_t cpuBegin = 0, cpuEnd = 0;
    host.OnEvents = [&] {
      onEvents();
      const long ended = controller.SweepsEnded();
      if (ended < first) {
        begin = std::chrono::steady_clock::now();
        cpuBegin = std::clock();
      }
      if (ended <= first + sweeps - 1) {
        end = std::chrono::steady_clock::now();
        cpuEnd = std::clock();
      }
      if (ended >= first + sweeps) controller.StopMeasurement();
    };
    controller.StartMeasurement();
    const double seconds = std::chrono::duration<double>(end - begin).count();
    const double cpu = static_cast<double>(cpuEnd - cpuBegin) / CLOCKS_PER_SEC;
    return {seconds, static_cast<double>(sweeps) * wireSeconds / seconds, cpu / seconds};
  }

  std::unique_ptr<Session> session;
  double wireSeconds;
  bool ready = false;
  IdleHost host;
  sim::Instrument instrument;
  sim::SimulatedPort port{instrument, sim::RealClock(), sim::Pace::Baud115200};
  Host h = host.host();
  InstrumentLink link{port, *session, h};
  Rig rig{*session, h, link};
  Graphs graphs;
  Controller controller{rig, graphs};
};

void PacedSweeps(benchmark::State& state) {
  test::BlankSurface surface;
  PacedLoop loop(static_cast<SweepMode>(state.range(0)), static_cast<int>(state.range(1)), surface);
  if (!loop.ready) return state.SkipWithError("no instrument");
  for (auto _ : state) {
    const PacedLoop::Run run = loop.Measure();
    state.SetIterationTime(run.Seconds);
    state.counters["of_the_wire"] = run.OfTheWire;
  }
}

void EveryModeAndSize(benchmark::internal::Benchmark* bench) {
  for (const SweepMode mode : {SweepMode::S11, SweepMode::S21, SweepMode::S11S21, SweepMode::All})
    for (const int points : {51, 101, 201, 401, 801, 1024})
      bench->Args({static_cast<int>(mode), points});
}
BENCHMARK(PacedSweeps)->Apply(EveryModeAndSize)->UseManualTime()->Iterations(1);

// A channel in the time domain, its response computed at the end of each sweep.
void PacedTimeDomain(benchmark::State& state) {
  test::BlankSurface surface;
  PacedLoop loop(SweepMode::S11, kMaxPoints, surface);
  if (!loop.ready) return state.SkipWithError("no instrument");
  loop.session->Channel(1).GraphType = GraphType::Td;
  loop.session->Channel(1).Units = Unit::U;
  for (auto _ : state) {
    const PacedLoop::Run run = loop.Measure();
    state.SetIterationTime(run.Seconds);
    state.counters["of_the_wire"] = run.OfTheWire;
  }
}
BENCHMARK(PacedTimeDomain)->UseManualTime()->Iterations(1);

// The picture is drawn when a frame of 16 ms is due, as its view does. The cost of drawing, in
// parts of a core, is the difference to the same loop without drawing.
void DrawPaced(benchmark::State& state, bool all) {
  NeedFonts();
  const auto mode = static_cast<SweepMode>(state.range(0));
  constexpr int kPoints = 401;
  test::BlankSurface nothing;
  PacedLoop bare(mode, kPoints, nothing);
  QtPicture picture({static_cast<int>(state.range(1)), static_cast<int>(state.range(2))});
  PacedLoop loop(mode, kPoints, picture);
  if (!bare.ready || !loop.ready) return state.SkipWithError("no instrument");
  loop.graphs.View = {.AxisNumbers = true, .Remarks = true};
  if (all)
    for (PacedLoop* each : {&bare, &loop}) {
      AddAll(*each->session);
      CheckAll(each->controller.quality(), *each->session);
      each->graphs.View = kAllAdditions;
    }
  // The trace is only noise, over the full height of the graph.
  if (state.range(3) != 0)
    for (PacedLoop* each : {&bare, &loop}) {
      each->instrument.Bench("connect open");
      each->session->Channel(1).Scale = 1;
      each->session->Channel(1).Reference = -100;
      each->session->Channel(1).Parameter = Parameter::S21;
    }
  bool due = false;
  picture.OnPresent = [&] { due = true; };
  auto drawn = std::chrono::steady_clock::now();
  const auto drawWhenDue = [&] {
    const auto now = std::chrono::steady_clock::now();
    if (!due || now - drawn < std::chrono::milliseconds(16)) return;
    due = false;
    drawn = now;
    benchmark::DoNotOptimize(picture.Image().constBits());
    picture.TakeChanged();
  };
  for (auto _ : state) {
    const PacedLoop::Run without = bare.Measure();
    const PacedLoop::Run with = loop.Measure(drawWhenDue);
    state.SetIterationTime(with.Seconds);
    state.counters["of_the_wire"] = with.OfTheWire;
    state.counters["of_a_core"] = with.OfACore - without.OfACore;
  }
}
void PacedDrawing(benchmark::State& state) {
  DrawPaced(state, false);
}
BENCHMARK(PacedDrawing)
    ->Args({static_cast<int>(SweepMode::S11), 3840, 2100, 0})
    ->Args({static_cast<int>(SweepMode::S21), 3840, 2100, 1})
    ->Args({static_cast<int>(SweepMode::All), 3840, 2100, 0})
    ->Args({static_cast<int>(SweepMode::All), 1600, 1000, 0})
    ->UseManualTime()
    ->Iterations(1);

// With everything else that can be shown with the traces.
void PacedDrawingWithAll(benchmark::State& state) {
  DrawPaced(state, true);
}
BENCHMARK(PacedDrawingWithAll)
    ->Args({static_cast<int>(SweepMode::All), 3840, 2100, 0})
    ->UseManualTime()
    ->Iterations(1);

}  // namespace
}  // namespace qk::benchmarks
