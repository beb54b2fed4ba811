// SPDX-License-Identifier: MIT
// Session files of 1024 points with every array filled, relative to copying the same bytes and to
// converting their numbers; a calibration interpolated to another plan.
#include <benchmark/benchmark.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "benchmarks/number_walk.h"
#include "cal/error_terms.h"
#include "core/cal_arrays.h"
#include "files/session_file.h"
#include "files/whole_file.h"

namespace qk::benchmarks {
namespace {

std::string Path() {
  return (std::filesystem::temp_directory_path() / "qk47-bench.cal").string();
}

// Seventeen digits in every number, as in measurements.
std::unique_ptr<Session> Filled() {
  auto session = MakeSession();
  std::mt19937_64 dice(1);
  const auto number = [&dice] { return std::ldexp(static_cast<double>(dice() >> 11), -53) - 0.5; };
  const auto fill = [&number](ComplexArray& array) {
    for (int k = 0; k < kMaxPoints; ++k) array.Set(k, {number(), number()});
  };
  static_cast<PlanGrid&>(session->Plan) = {3e6, 3072e6, 3e6, kMaxPoints};
  for (const CalArray& array : CalArrays()) fill(array.In(session->Terms));
  SaveCalForInterpolation(*session);
  for (ComplexArray* array :
       {&session->Data.S11, &session->Data.S21, &session->Data.S12, &session->Data.S22})
    fill(*array);
  for (ChannelSettings& channel : session->Channels)
    for (std::size_t i = 1; i <= kMaxPoints; ++i) {
      channel.Value[i] = number();
      channel.MemoryRe[i] = number();
      channel.MemoryIm[i] = number();
      channel.SmoothValue[i] = static_cast<float>(number());
    }
  return session;
}

void SessionSave(benchmark::State& state) {
  const auto session = Filled();
  for (auto _ : state) benchmark::DoNotOptimize(SaveSession(Path(), *session));
}
BENCHMARK(SessionSave)->Unit(benchmark::kMillisecond);

void SessionBytesRawWrite(benchmark::State& state) {
  const std::string bytes = SessionBytes(*Filled());
  for (auto _ : state) benchmark::DoNotOptimize(WriteWhole(Path(), bytes));
  state.counters["bytes"] = static_cast<double>(bytes.size());
}
BENCHMARK(SessionBytesRawWrite)->Unit(benchmark::kMillisecond);

void SessionLoad(benchmark::State& state) {
  const auto session = Filled();
  (void)SaveSession(Path(), *session).Ok();
  for (auto _ : state) benchmark::DoNotOptimize(LoadSession(Path(), *session));
}
BENCHMARK(SessionLoad)->Unit(benchmark::kMillisecond);

void SessionBytesRawRead(benchmark::State& state) {
  (void)SaveSession(Path(), *Filled()).Ok();
  for (auto _ : state) benchmark::DoNotOptimize(ReadWhole(Path(), std::size_t{1} << 24));
  std::remove(Path().c_str());
}
BENCHMARK(SessionBytesRawRead)->Unit(benchmark::kMillisecond);

void SessionNumbersFromChars(benchmark::State& state) {
  const std::string bytes = SessionBytes(*Filled());
  for (auto _ : state) benchmark::DoNotOptimize(SumOfNumbers(bytes));
}
BENCHMARK(SessionNumbersFromChars)->Unit(benchmark::kMillisecond);

void SessionNumbersToChars(benchmark::State& state) {
  std::vector<double> numbers;
  EachNumber(SessionBytes(*Filled()), [&numbers](double number) { numbers.push_back(number); });
  char digits[40];
  for (auto _ : state)
    for (const double number : numbers)
      benchmark::DoNotOptimize(std::to_chars(digits, digits + sizeof digits, number));
}
BENCHMARK(SessionNumbersToChars)->Unit(benchmark::kMillisecond);

void CalInterpolation(benchmark::State& state) {
  const auto session = Filled();
  static_cast<PlanGrid&>(session->Plan) = {10e6, 3058.3e6, 2.98e6, kMaxPoints};
  for (auto _ : state) InterpolateCal(*session);
}
BENCHMARK(CalInterpolation)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace qk::benchmarks
