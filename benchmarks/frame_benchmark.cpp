// SPDX-License-Identifier: MIT
// One frame of the live layer at 3840 by 2100 pixels, wiped and drawn: shapes of traces that cost
// most, one graph or four, at each scale factor of a screen; and the effect of drawing on the
// arithmetic that follows it.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <random>
#include <string>

#include "benchmarks/offscreen.h"
#include "benchmarks/road.h"
#include "display/graphs.h"
#include "files/touchstone.h"
#include "numeric/spline.h"
#include "trace/time_domain.h"
#include "ui/qt_canvas.h"
#include "ui/vector_registers.h"

namespace qk::benchmarks {
namespace {

enum Shape { kNoise, kSteps, kOnTheFrame, kSmooth, kNoisyChart };

// In divisions from the reference, or on the chart.
Complex PointOf(Shape shape, int i, std::mt19937& dice) {
  std::uniform_real_distribution<double> any(-1, 1);
  switch (shape) {
    case kNoise:
      return {40 * any(dice), 0};
    case kSteps:
      return {i / 8 % 2 == 0 ? -30.0 : 30.0, 0};
    case kOnTheFrame:
      return {i % 2 == 0 ? -1000.0 : 1000.0, 0};
    case kSmooth:
      return {30 * std::sin(i / 40.0), 0};
    case kNoisyChart:
      break;
  }
  return {any(dice), any(dice)};
}

struct Frame {
  Frame(Shape shape, int points, int graphCount, double ratio) {
    NeedFonts();
    session->Plan.NumPoints = static_cast<std::int16_t>(points);
    session->Display.DisplaySet = graphCount == 4 ? DisplaySet::All : DisplaySet::One;
    picture.Resize({qRound(3840 / ratio), qRound(2100 / ratio)}, ratio);
    for (int n = 1; n <= 4; ++n) {
      session->Channel(n).Parameter = Parameter::S11;
      session->Channel(n).GraphType = shape == kNoisyChart ? GraphType::Smith : GraphType::LogMag;
    }
    graphs.RedrawAll(true);
    std::mt19937 dice(1);
    for (int n = 1; n <= graphCount; ++n)
      for (int i = 1; i <= points; ++i) {
        const Complex value = PointOf(shape, i, dice);
        graphs.PlotPoint(n, i, value.re, value.im);
      }
    graphs.RedrawOverlay();
  }

  std::unique_ptr<Session> session = MakeSession();
  QtPicture picture{{100, 100}};
  Graphs graphs{*session, picture};
};

void NoisyFrame(benchmark::State& state) {
  const double ratio = static_cast<double>(state.range(3)) / 4;
  Frame frame(static_cast<Shape>(state.range(0)), static_cast<int>(state.range(1)),
              static_cast<int>(state.range(2)), ratio);
  for (auto _ : state) frame.graphs.RedrawOverlay();
}

void EveryShape(benchmark::internal::Benchmark* bench) {
  bench->ArgNames({"shape", "points", "graphs", "quarters"});
  for (const Shape shape : {kNoise, kSteps, kOnTheFrame, kSmooth, kNoisyChart})
    for (const int points : {401, 1024})
      for (const int graphs : {1, 4})
        for (const int quarters : {4, 5, 6, 8, 12}) bench->Args({shape, points, graphs, quarters});
}
BENCHMARK(NoisyFrame)->Apply(EveryShape)->Unit(benchmark::kMillisecond)->MinTime(0.05);

// ---- arithmetic after a picture ----------------------------------------------------------------

// The time with the registers as drawing leaves them, relative to clean ones.
void AfterDrawing(benchmark::State& state, const std::function<std::function<void()>()>& make) {
  Frame frame(kSmooth, 401, 1, 1);
  const std::function<void()> work = make();
  using Clock = std::chrono::steady_clock;
  const auto seconds = [&work] {
    const auto begin = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - begin).count();
  };
  double after = 0, clean = 0, uncleared = 0;
  QImage scratch(512, 512, QImage::Format_RGB32);
  for (auto _ : state) {
    ClearVectorRegisters();
    clean += seconds();
    frame.graphs.RedrawOverlay();
    benchmark::DoNotOptimize(frame.picture.Image().constBits());
    const double behind = seconds();
    after += behind;
    state.SetIterationTime(behind);
    scratch.fill(Qt::white);  // as the toolkit leaves it
    uncleared += seconds();
  }
  state.counters["ratio"] = after / clean;
  state.counters["uncleared"] = uncleared / clean;
}

std::function<void()> Spline() {
  auto spline = std::make_shared<CSplineObject>();
  return [spline] {
    spline->init();
    for (int i = 0; i < CSplineObject::kCapacity; ++i)
      spline->XYAdd(3e6 + 3e6 * i, std::sin(0.01 * i));
    spline->DoCoeffs();
    benchmark::DoNotOptimize(spline->GetY(1e9));
  };
}

std::function<void()> DecibelFile() {
  auto bytes = std::make_shared<std::string>("# MHZ S DB R 50\n");
  for (int i = 0; i < 1000; ++i) {
    char row[160];
    std::snprintf(row, sizeof row, "%.4f %.5f %.3f %.5f %.3f %.5f %.3f %.5f %.3f\n", 3.0 + i,
                  -20.1 - i * 0.001, 17.25 + i * 0.01, -3.2 - i * 0.001, -40.5 + i * 0.01,
                  -3.3 - i * 0.001, -41.5 + i * 0.01, -18.4 - i * 0.001, 99.1 - i * 0.01);
    *bytes += row;
  }
  return [bytes] { benchmark::DoNotOptimize(ReadTouchstone(*bytes, Reference::Ignored)); };
}

std::function<void()> Response() {
  auto td = std::make_shared<TimeDomainArrays>();
  for (std::size_t k = 1; k <= kMaxPoints; ++k) {
    td->TdInRe[k] = 0.9 * std::cos(0.07 * static_cast<double>(k));
    td->TdInIm[k] = -0.9 * std::sin(0.07 * static_cast<double>(k));
  }
  return [td] {
    ComputeTimeDomain(*td, TdWindow::Rect, TdDcTerm::Auto, 5, 50);
    benchmark::DoNotOptimize(td->TdStepResponse[2047]);
  };
}

std::function<void()> Points() {
  auto road = std::make_shared<Road>(Road::Extras::All);
  return [road] {
    for (int k = 0; k < kRoadPoints; ++k) road->Carry(k);
  };
}

BENCHMARK_CAPTURE(AfterDrawing, spline, Spline)->UseManualTime();
BENCHMARK_CAPTURE(AfterDrawing, decibel_file, DecibelFile)->UseManualTime();
BENCHMARK_CAPTURE(AfterDrawing, time_response, Response)->UseManualTime();
BENCHMARK_CAPTURE(AfterDrawing, points, Points)->UseManualTime();

}  // namespace
}  // namespace qk::benchmarks
