// SPDX-License-Identifier: MIT
// The time response against its sum term by term; a replot of everything.

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "benchmarks/fixtures.h"
#include "display/graphs.h"
#include "tests/support/blank_surface.h"
#include "trace/formatting.h"
#include "trace/time_domain.h"

namespace qk::benchmarks {
namespace {

void FillSpectrum(TimeDomainArrays& td) {
  for (std::size_t k = 1; k <= kMaxPoints; ++k) {
    const double angle = 0.07 * static_cast<double>(k);
    td.TdInRe[k] = 0.9 * std::cos(angle);
    td.TdInIm[k] = -0.9 * std::sin(angle);
  }
}

void TimeResponse(benchmark::State& state) {
  const auto td = std::make_unique<TimeDomainArrays>();
  FillSpectrum(*td);
  for (auto _ : state) {
    ComputeTimeDomain(*td, TdWindow::Rect, TdDcTerm::Auto, 5, 50);
    benchmark::DoNotOptimize(td->TdStepResponse[2047]);
  }
}
BENCHMARK(TimeResponse);

// The response by its definition: 1025 by 2048 terms, each with its own sine and cosine.
void TimeResponseTermByTerm(benchmark::State& state) {
  const auto td = std::make_unique<TimeDomainArrays>();
  FillSpectrum(*td);
  for (auto _ : state) {
    BuildSpectrum(*td, TdWindow::Rect, TdDcTerm::Auto, 5, 50);
    double sum = 0;
    for (int n = 0; n < 2048; ++n) {
      double impulse = 0;
      for (int k = 0; k <= 1024; ++k) {
        const double a = k * 6.2831853 * n / 2048;
        impulse += std::cos(a) * td->TdSpecRe[static_cast<std::size_t>(k)];
        impulse += std::sin(a) * td->TdSpecIm[static_cast<std::size_t>(k)];
      }
      sum += impulse;
      td->TdStepResponse[static_cast<std::size_t>(n)] = sum;
    }
    benchmark::DoNotOptimize(td->TdStepResponse[2047]);
  }
}
BENCHMARK(TimeResponseTermByTerm);

// A gated channel from its 1024 points to its plotted values; the gate itself is nearly all of it.
void GateOfASweep(benchmark::State& state) {
  const auto session = MakeMeasuringSession(kMaxPoints);
  session->Channel(1).Parameter = Parameter::S11;
  session->Channel(1).Gated = true;
  session->TimeDomain.Gate = GateKind::Gate;
  test::BlankSurface surface;
  Graphs graphs(*session, surface);
  graphs.RedrawAll(true);
  for (auto _ : state)
    for (int i = 1; i <= kMaxPoints; ++i)
      DispatchPointToChannel(*session, graphs, 1, session->Data.RawS11[i - 1], i, Parameter::S11);
  benchmark::DoNotOptimize(session->Channel(1).Value[1]);
}
BENCHMARK(GateOfASweep);

// Four channels of 1024 points, a time response among them; the picture itself is not drawn.
void ReplotOfEverything(benchmark::State& state) {
  const auto session = MakeMeasuringSession(kMaxPoints);
  session->Data.S11 = session->Data.RawS11;
  session->Data.S21 = session->Data.RawS21;
  session->Data.S12 = session->Data.RawS12;
  session->Data.S22 = session->Data.RawS22;
  session->Channel(4).GraphType = GraphType::Td;
  session->Channel(4).Units = Unit::U;
  test::BlankSurface surface;
  Graphs graphs(*session, surface);
  for (auto _ : state) graphs.ReplotAll();
}
BENCHMARK(ReplotOfEverything);

}  // namespace
}  // namespace qk::benchmarks
