// SPDX-License-Identifier: MIT
// Reading a two-port file of 1000 points, relative to the minimum work of any reader: converting
// the same bytes to numbers, one by one.

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "benchmarks/number_walk.h"
#include "files/touchstone.h"

namespace qk::benchmarks {
namespace {

// Twelve decimals, as an instrument writes them.
std::string TwoPortFile(const char* format) {
  std::string text = "! a two-port of 1000 points\n# GHZ S " + std::string(format) + " R 50\n";
  std::array<char, 32> field{};
  for (int i = 0; i < 1000; ++i) {
    const auto number = [&](double value) {
      text.append(field.data(), static_cast<std::size_t>(
                                    std::snprintf(field.data(), field.size(), "%.12f", value)));
    };
    number(0.001 * (i + 1));
    for (int c = 0; c < 8; ++c) {
      text += ' ';
      number((c % 2 == 0 ? -10.0 : 120.0) * std::sin(0.01 * i + c));
    }
    text += '\n';
  }
  return text;
}

void FromCharsWalk(benchmark::State& state) {
  const std::string text = TwoPortFile("DB");
  for (auto _ : state) benchmark::DoNotOptimize(SumOfNumbers(text));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(FromCharsWalk);

void TouchstoneRead(benchmark::State& state, const char* format) {
  const std::string text = TwoPortFile(format);
  if (!ReadTouchstone(text, Reference::Ignored)) std::abort();
  for (auto _ : state) benchmark::DoNotOptimize(ReadTouchstone(text, Reference::Ignored));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK_CAPTURE(TouchstoneRead, decibels, "DB");
BENCHMARK_CAPTURE(TouchstoneRead, real_imaginary, "RI");

}  // namespace
}  // namespace qk::benchmarks
