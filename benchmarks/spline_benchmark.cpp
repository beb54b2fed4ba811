// SPDX-License-Identifier: MIT
// Building and evaluating a natural cubic spline of 1024 knots.

#include <benchmark/benchmark.h>

#include <cmath>

#include "numeric/spline.h"

namespace qk::benchmarks {
namespace {

constexpr int kKnots = CSplineObject::kCapacity;

void AddKnots(CSplineObject& spline) {
  spline.init();
  for (int i = 0; i < kKnots; ++i) spline.XYAdd(3e6 + 3e6 * i, std::sin(0.01 * i));
}

void PerPoint(benchmark::State& state) {
  state.counters["seconds_per_point"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * kKnots,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void SplineBuild(benchmark::State& state) {
  CSplineObject spline;
  for (auto _ : state) {
    AddKnots(spline);
    spline.DoCoeffs();
    benchmark::DoNotOptimize(spline.GetY(1e9));
  }
  PerPoint(state);
}
BENCHMARK(SplineBuild);

void SplineEvaluate(benchmark::State& state) {
  CSplineObject spline;
  AddKnots(spline);
  spline.DoCoeffs();
  for (auto _ : state)
    for (int i = 0; i < kKnots; ++i) benchmark::DoNotOptimize(spline.GetY(4.1e6 + 2.9e6 * i));
  PerPoint(state);
}
BENCHMARK(SplineEvaluate);

}  // namespace
}  // namespace qk::benchmarks
