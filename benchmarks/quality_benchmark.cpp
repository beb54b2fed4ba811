// SPDX-License-Identifier: MIT
// The cost at the end of a sweep of hints and of a run of repeated sweeps. share_of_wire compares
// it with the time that the line needs for the sweep's points.

#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <random>

#include "benchmarks/fixtures.h"
#include "control/quality_bands.h"
#include "quality/quality_state.h"

namespace qk::benchmarks {
namespace {

constexpr double kWireSecondsPerPoint = 36.0 / 11520;
constexpr std::array<Parameter, 4> kFour{Parameter::S11, Parameter::S21, Parameter::S12,
                                         Parameter::S22};

std::unique_ptr<Session> MeasuredSession(int points) {
  auto session = MakeMeasuringSession(points);
  session->Data.S11 = session->Data.RawS11;
  session->Data.S21 = session->Data.RawS21;
  session->Data.S12 = session->Data.RawS12;
  session->Data.S22 = session->Data.RawS22;
  session->Cal.Cal12Term = true;
  return session;
}

void HintsAndStatistics(benchmark::State& state) {
  const int points = static_cast<int>(state.range(0));
  const auto session = MeasuredSession(points);
  const auto quality = std::make_unique<QualityState>();
  for (auto _ : state) {
    if (!quality->Run.Running()) {
      state.PauseTiming();
      quality->Run.Start(SweepRun::kMostSweeps);
      state.ResumeTiming();
    }
    quality->Hints.SweepEnded({*session, kFour, {0, 0}, {2026, 3, 9, 12, 5, 0}, 1773065130});
    quality->Run.SweepEnded(*session, kFour);
  }
  state.counters["share_of_wire"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * points * kWireSecondsPerPoint,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(HintsAndStatistics)->Arg(51)->Arg(401)->Arg(1024);

// The values of the uncertainty band of four channels, which the picture requests once a frame.
void UncertaintyOfAFrame(benchmark::State& state) {
  const auto session = MeasuredSession(kMaxPoints);
  for (int n = 1; n <= 4; ++n)
    session->Channel(n).Parameter = n % 2 == 1 ? Parameter::S11 : Parameter::S21;
  const auto quality = std::make_unique<QualityState>();
  const std::vector<double> sizes(kMaxPoints, 0.01);
  for (std::size_t i = 0; i < kCheckTerms; ++i)
    quality->Check.Take(static_cast<CheckTerm>(i), session->Plan, 0, kMaxPoints - 1, sizes,
                        CheckMethod::Standards, 0);
  std::mt19937 random(1);
  std::normal_distribution<double> noise(0, 1e-5);
  for (int n = 0; n < 5; ++n) {  // the noise is known, and pooled over neighbouring points
    for (ComplexArray* array : {&session->Data.S11, &session->Data.S21})
      for (int k = 0; k < kMaxPoints; ++k)
        array->Set(k, {(*array)[k].re + noise(random), (*array)[k].im + noise(random)});
    quality->Hints.SweepEnded({*session, kFour, {0, 0}, {2026, 3, 9, 12, 5, 0}, 1773065130});
  }
  const QualityBands bands(*session, *quality);
  double sum = 0;
  for (auto _ : state)
    for (int n = 1; n <= 4; ++n)
      for (int k = 0; k < kMaxPoints; ++k)
        if (const auto region = bands.RegionAt(BandKind::Uncertainty, n, k)) sum += region->Radius;
  benchmark::DoNotOptimize(sum);
}
BENCHMARK(UncertaintyOfAFrame);

}  // namespace
}  // namespace qk::benchmarks
