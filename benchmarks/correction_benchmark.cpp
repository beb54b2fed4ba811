// SPDX-License-Identifier: MIT
// The 12-term correction of 1024 points one by one, and the terms of each calibration kind, per
// point.

#include <benchmark/benchmark.h>

#include <memory>

#include "benchmarks/fixtures.h"
#include "cal/correction.h"
#include "cal/error_terms.h"

namespace qk::benchmarks {
namespace {

void PerPoint(benchmark::State& state, int points) {
  state.counters["seconds_per_point"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * points,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void Correct12Term(benchmark::State& state) {
  const auto session = MakeMeasuringSession(kMaxPoints);
  for (auto _ : state) {
    for (int k = 0; k < kMaxPoints; ++k) Correct12TermPoint(*session, k);
    benchmark::ClobberMemory();
  }
  PerPoint(state, kMaxPoints);
}
BENCHMARK(Correct12Term);

template <class Compute>
void ComputeTerms(benchmark::State& state, Compute compute) {
  const auto measured = MakeMeasuringSession(kMaxPoints);
  measured->Kit1.KitDelay = measured->Kit2.KitDelay = 2e-11f;  // offsets cost the rotations
  FillStandards(*measured);
  const auto session = MakeSession();
  for (auto _ : state) {
    state.PauseTiming();  // a compute works in place: each run starts from the measurements
    *session = *measured;
    state.ResumeTiming();
    compute(*session);
    benchmark::ClobberMemory();
  }
  PerPoint(state, kMaxPoints);
}
BENCHMARK_CAPTURE(ComputeTerms, one_port, [](Session& s) { ComputeOnePortTerms(s); });
BENCHMARK_CAPTURE(ComputeTerms, response, [](Session& s) { ComputeResponseTerms(s, true); });
BENCHMARK_CAPTURE(ComputeTerms, enhanced, [](Session& s) {
  ComputeOnePortTerms(s);
  ComputeEnhancedTerms(s, true);
});
BENCHMARK_CAPTURE(ComputeTerms, insertable, [](Session& s) { ComputeInsertableTerms(s); });
BENCHMARK_CAPTURE(ComputeTerms, non_insertable, [](Session& s) { ComputeNonInsertableTerms(s); });

}  // namespace
}  // namespace qk::benchmarks
