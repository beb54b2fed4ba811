// What follows the correction of a point: planes, networks, impedance and formats on four channels;
// the time response against its sum term by term; a replot of everything.

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <memory>

#include "benchmarks/fixtures.h"
#include "benchmarks/idle_host.h"
#include "cal/correction.h"
#include "display/graphs.h"
#include "sweep/reduction.h"
#include "tests/support/blank_surface.h"
#include "trace/de_embed.h"
#include "trace/formatting.h"
#include "trace/time_domain.h"
#include "trace/zo.h"

namespace qk::benchmarks {
namespace {

constexpr double kWireSecondsPerPoint = 36.0 / 11520;
constexpr std::array kOrder{Parameter::S21, Parameter::S12, Parameter::S11, Parameter::S22};

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

// As the response is defined: 1025 by 2048 terms, each with its own sine and cosine.
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

// From 36 bytes to four plotted values, with everything switched on that can be.
void RoadOfAPointWithEverything(benchmark::State& state) {
  constexpr int kPoints = 401;
  const auto session = MakeMeasuringSession(kPoints);
  PlaneState& planes = session->Planes;
  planes.PlaneS11 = planes.PlaneS21 = planes.PlaneS12 = planes.PlaneS22 = 0.1f;
  planes.DelayS11 = planes.DelayS21 = planes.DelayS12 = planes.DelayS22 = 0.33e-9f;
  for (const int port : {1, 2}) {
    Network& network = session->Networks.OfPort(port);
    network.S11.Fill({0.1, 0.05});
    network.S21.Fill({0.7, -0.3});
    network.S12.Fill({0.7, -0.3});
    network.S22.Fill({0.05, 0.1});
  }
  session->Networks.Port1NetOn = session->Networks.Port2NetOn = true;
  session->Impedance.SystemZo = 75;
  test::BlankSurface surface;
  Graphs graphs(*session, surface);
  graphs.RedrawAll(true);
  std::array<std::uint8_t, 36> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<std::uint8_t>(i % 3 == 0 ? 0 : 90 + 5 * i);

  int k = 0;
  for (auto _ : state) {
    const RawPoint raw = ReducePoint(SweepMode::All, bytes.data(), session->Receiver, 1);
    session->Data.RawS11.Set(k, raw.S11);
    session->Data.RawS21.Set(k, raw.S21);
    session->Data.RawS12.Set(k, raw.S12);
    session->Data.RawS22.Set(k, raw.S22);
    Correct12TermPoint(*session, k);
    for (const Parameter parameter : kOrder) {
      ComplexArray& array = ArrayOf(session->Data, parameter);
      array.Set(k, ApplyReferencePlane(*session, array[k], k + 1, parameter));
    }
    DeEmbedPointAll(*session, k);
    ConvertPointZo(*session, k, kOrder);
    for (const Parameter parameter : kOrder)
      DispatchPoint(*session, graphs, ArrayOf(session->Data, parameter)[k], k + 1, parameter);
    if (++k == kPoints) k = 0;
  }
  benchmark::DoNotOptimize(session->Channel(1).Value[1]);
  state.counters["share_of_wire"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * kWireSecondsPerPoint,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(RoadOfAPointWithEverything);

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
  state.SetLabel("goal: under 10 ms");
}
BENCHMARK(ReplotOfEverything);

}  // namespace
}  // namespace qk::benchmarks
