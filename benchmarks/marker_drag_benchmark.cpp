// SPDX-License-Identifier: MIT
// One movement of a dragged marker: the live layer of four graphs of 1024 points is drawn again on
// the real canvas, 1600 by 1000 pixels. Beside it, as the ratio told, what a full redraw costs.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>

#include "benchmarks/offscreen.h"
#include "display/graphs.h"
#include "ui/qt_canvas.h"

namespace qk::benchmarks {
namespace {

void PlotAll(const Session& session, Graphs& graphs) {
  for (int n = 1; n <= 4; ++n)
    for (int i = 1; i <= session.Plan.NumPoints; ++i)
      graphs.PlotPoint(n, i, 30 * std::sin(i / 40.0 + n), 0);
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
      MoveMarker(*session, 0, point);
      graphs.RedrawOverlay();
    });
    drags += drag;
    redraws += seconds([&] { graphs.RedrawAll(true); });
    state.SetIterationTime(drag);
  }
  state.counters["ms"] = 1000 * drags / static_cast<double>(state.iterations());
  state.counters["of_full_redraw"] = drags / redraws;
}
BENCHMARK(MarkerDrag)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace qk::benchmarks
