// SPDX-License-Identifier: MIT
// One movement of a dragged marker: the live layer of four graphs of 1024 points is drawn again on
// the real canvas, 1600 by 1000 pixels, and with all additions also 3840 by 2100. The result is the
// ratio to a full redraw. Once with traces and markers, once with everything else that can be
// shown.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>

#include "benchmarks/all_additions.h"
#include "benchmarks/fixtures.h"
#include "benchmarks/offscreen.h"
#include "control/quality_bands.h"
#include "display/graphs.h"
#include "ui/qt_canvas.h"

namespace qk::benchmarks {
namespace {

void PlotAll(const Session& session, Graphs& graphs) {
  for (int n = 1; n <= 4; ++n)
    for (int i = 1; i <= session.Plan.NumPoints; ++i)
      graphs.PlotPoint(n, i, 30 * std::sin(i / 40.0 + n), 0);
}

// The time of a step and of a full redraw.
void DragMarker(benchmark::State& state, Session& session, Graphs& graphs) {
  const auto seconds = [](auto work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  };
  int point = 1;
  double drags = 0, redraws = 0;
  for (auto _ : state) {
    const double drag = seconds([&] {
      point = point % kMaxPoints + 1;
      MoveMarker(session, 0, point);
      graphs.RedrawMarkers();
    });
    drags += drag;
    state.SetIterationTime(drag);
  }
  constexpr int kRedraws = 20;
  for (int i = 0; i < kRedraws; ++i) redraws += seconds([&] { graphs.RedrawAll(true); });
  state.counters["ms"] = 1000 * drags / static_cast<double>(state.iterations());
  state.counters["of_full_redraw"] =
      drags / static_cast<double>(state.iterations()) / (redraws / kRedraws);
}

void MarkerDrag(benchmark::State& state) {
  NeedFonts();
  const auto session = MakeSession();
  QtPicture picture({1600, 1000});
  Graphs graphs(*session, picture);
  session->Plan.NumPoints = kMaxPoints;
  session->Display.DisplaySet = DisplaySet::All;
  session->Display.MarkersOn = true;
  for (int m = 0; m < kMarkers; ++m) session->Markers.Set(m) = {true, m == 1, m == 0, 0};
  graphs.View = {.AxisNumbers = true, .Remarks = true};
  graphs.RedrawAll(true);
  PlotAll(*session, graphs);
  DragMarker(state, *session, graphs);
}
BENCHMARK(MarkerDrag)->UseManualTime()->Unit(benchmark::kMillisecond);

void MarkerDragWithAll(benchmark::State& state) {
  NeedFonts();
  const auto session = MakeMeasuringSession(kMaxPoints);
  session->Data.S11 = session->Data.RawS11;
  session->Data.S21 = session->Data.RawS21;
  session->Data.S12 = session->Data.RawS12;
  session->Data.S22 = session->Data.RawS22;
  const auto quality = std::make_unique<QualityState>();
  const QualityBands bands(*session, *quality);
  QtPicture picture({static_cast<int>(state.range(0)), static_cast<int>(state.range(1))});
  Graphs graphs(*session, picture);
  AddAll(*session);
  CheckAll(*quality, *session);
  graphs.Bands = &bands;
  graphs.View = kAllAdditions;
  graphs.RedrawAll(true);
  PlotAll(*session, graphs);
  std::array<LimitVerdict, kChannels> verdicts;
  verdicts.fill({.Tested = true, .Passed = false, .Margin = -1, .Point = 7});
  graphs.TakeVerdicts(verdicts);
  DragMarker(state, *session, graphs);
}
BENCHMARK(MarkerDragWithAll)
    ->Args({1600, 1000})
    ->Args({3840, 2100})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace qk::benchmarks
